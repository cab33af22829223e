// AutoMatch of state labels, labels of calculated states and the log-book
// functions of the fitting workspace.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <tuple>
#include <cmath>

#include "engine/parameter_file.hpp"
#include "fit/automatch.hpp"
#include "fit/calculated_labels.hpp"
#include "fit/state_label.hpp"
#include "fit/workspace_functions.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

CalculatedState state(double energy, StateLabel main, std::vector<std::pair<StateLabel, double>> minor = {}) {
    CalculatedState s{energy, main, {{main, minor.empty() ? 1.0 : 0.55}}, !minor.empty()};
    for (auto& m : minor) s.multiplets.push_back(m);
    return s;
}

TEST(AutoMatch, ExactNearlyMinorConflictsDoubletsAndKeptRows) {
    const std::vector<CalculatedState> states = {
        state(0, {"3H", 8, "0"}), state(100, {"3H", 8, "1"}), state(100, {"3H", 8, "-1"}),  // 2, 3: one doublet
        state(300, {"3F", 4, "0"}, {{{"3H", 8, "0"}, 0.45}}), state(500, {"3H", 10, "0"})};
    struct Row { const char* label; double energy; int kept; int expected; MatchKind kind; bool minor; };
    const std::vector<std::vector<Row>> cases = {
        {{"3H4(0)", 10, 0, 1, MatchKind::Exact, false}},
        {{"3H4(2)", 90, 0, 2, MatchKind::Nearly, false}},  // 200/250 = 80 %, closest energy
        {{"3H4(0)", 290, 0, 4, MatchKind::Exact, true}, {"3H4(0)", 5, 0, 1, MatchKind::Exact, false}},
        {{"3H5(1)", 500, 0, 0, MatchKind::None, false}, {"3H5(0)", 1000, 0, 5, MatchKind::Exact, false}},
        {{"3H4(1)", 100, 0, 2, MatchKind::Exact, false}, {"3H4(-1)", 100, 0, 1, MatchKind::Nearly, false}},
        {{"", 0, 5, 5, MatchKind::Kept, false}, {"3H5(0)", 500, 0, 0, MatchKind::None, false}}};
    for (std::size_t c = 0; c < cases.size(); ++c) {
        std::vector<ObservedLevel> levels;
        for (const auto& r : cases[c]) levels.push_back({r.kept, r.label, false, r.energy});
        const auto matches = autoMatch(levels, states, FitSettings{});
        for (std::size_t i = 0; i < levels.size(); ++i) {
            const auto& [m, r] = std::tie(matches[i], cases[c][i]);
            EXPECT_EQ(std::tie(m.stateNumber, m.kind, m.throughMinorState), std::tie(r.expected, r.kind, r.minor))
                << "case " << c << " row " << i;
        }
    }
    std::vector<ObservedLevel> levels = {{4, "3H4"}, {0, "1G4"}};
    EXPECT_FALSE(adoptCalculatedLabels(levels, states));
    EXPECT_TRUE(levels[0].stateLabel == "3F2(0)" && levels[0].adopted && !levels[1].adopted);
}

TEST(CalculatedStates, PraseodymiumLaF3LabelsIrrepsAndWeights) {
    const auto set = readParameterFile(test::sourceDirectory() / "examples" / "Pr3plus-LaF3.par");
    const auto model = test::buildModel(set, true, false);
    ModelWorkspace workspace;
    const auto solution = model.solve(parameterVectorOf(set, false), {true, true, kAllEigenvalues, {}, {}}, workspace);
    const auto states = calculatedStates(model, solution.levels);
    ASSERT_EQ(states.size(), 91u);
    EXPECT_EQ(states[0].label, (StateLabel{"3H", 8, "0"}));
    std::vector<double> energies;  // every operator but the identity is traceless: the mean is EAVG
    for (std::size_t i = 0; i < states.size(); ++i) {
        energies.push_back(states[i].energy);
        double total = 0.0;
        for (const auto& m : states[i].multiplets) total += m.second;
        EXPECT_NEAR(total, 1.0, 1e-10);
        // The states of the block have 2 MJ = 2 mu (mod 2p), p = 2.
        const auto& block = model.blocks()[static_cast<std::size_t>(solution.levels[i].block)];
        EXPECT_EQ((block.states.front().twiceM - 2 * std::stoi(states[i].label.irrep) + 16) % 4, 0) << i;
    }
    EXPECT_EQ(calculatedStates(model, solution.freeIon.levels)[0].label, (StateLabel{"3H", 8, ""}));
    // With the site group C2v ("/ptgp= "), the irreps replace mu: the nine 3H4
    // levels branch as J = 4 into C2v, 3 + 2 + 2 + 2 one-dimensional irreps,
    // and AutoMatch pairs an observed level labelled with an irrep.
    const SiteLabelling site{&params::pointGroup(*params::pointGroupNumber("C2v"))};
    const auto labelled = calculatedStates(model, solution.levels, &site);
    std::map<std::string, int> branching;
    for (int i = 0; i < 9; ++i) ++branching[labelled[i].label.irrep];
    std::multiset<int> counts;
    for (const auto& entry : branching) counts.insert(entry.second);
    EXPECT_EQ(counts, (std::multiset<int>{2, 2, 2, 3}));
    std::vector<ObservedLevel> observed = {{0, stateLabelText(labelled[4].label), false, labelled[4].energy}};
    EXPECT_EQ(autoMatch(observed, labelled, FitSettings{})[0].stateNumber, 5);
    EXPECT_EQ(energyAverageLines(energies)[2], "Average =   10133.3000");
    const auto lines = crystalFieldInvariantLines(wybourneParametersOf(parameterVectorOf(set, false)));
    const char* invariants[] = {"s2 =  123.551", "s4 =  431.416", "s6 =  529.268"};  // from its B(k,q)
    for (int k = 0; k < 3; ++k) EXPECT_NE(lines[2 + k].find(invariants[k]), std::string::npos) << lines[2 + k];
}

TEST(WorkspaceFunctions, ElectrostaticStrengthOfF2FromTheSlaterCondonTermEnergies) {
    // f2 term energies over F_k = F^k / D_k (Condon & Shortley 1935): (2S+1)(2L+1), F_2, F_4, F_6 coefficients.
    const double f[3] = {68878 / 225.0, 50347 / 1089.0, 32901 * 25 / 184041.0};
    const double terms[7][4] = {{9, 45, 33, -1287}, {21, -10, -33, -286}, {33, -25, -51, -13}, {1, 60, 198, 1716},
                                {5, 19, -99, 715},  {9, -30, 97, 78},     {13, 25, 9, 1}};
    double states = 0, sum = 0, squares = 0;
    for (const auto& t : terms) {
        const double e = t[1] * f[0] + t[2] * f[1] + t[3] * f[2];
        states += t[0], sum += t[0] * e, squares += t[0] * e * e;
    }
    ParameterVector parameters;
    parameters.set(parameter::kF2, 68878), parameters.set(parameter::kF4, 50347), parameters.set(parameter::kF6, 32901);
    const double expected = std::sqrt(squares / states - sum * sum / states / states);
    EXPECT_NEAR(electrostaticStrength(test::engineTables(2), parameters).total, expected, 1e-9 * expected);
    EXPECT_EQ(energyAverageLines({1, 2, 3, 4})[3], "SD =       1.1180");
}

}  // namespace
}  // namespace orvane
