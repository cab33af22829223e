// The free-ion stage: basis sizes, component matrices against closed forms,
// the electrostatic parameter forms and the Pr3+ free-ion levels.
#include "engine/free_ion.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "core/log_book.hpp"
#include "engine/energy_levels.hpp"
#include "tables/term_generator.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

const EngineTables& tablesOf(int n) { return test::inMemoryTables(n); }

std::filesystem::path tableDirectory() { return test::engineTableDirectory(); }

using test::row;

// A free-ion parameter set of f^n in F^k form.
ParameterSet freeIonSet(int n, double f2, double f4, double f6, double zeta,
                        const std::vector<FreeIonRow>& other = {}) {
    ParameterSet set;
    set.electronCount = n;
    set.mainFreeIon = {row("EAVG", 0.0), row("F2", f2), row("F4", f4), row("F6", f6), row("ZETA", zeta)};
    set.otherFreeIon = other;
    return set;
}

// Index of the |SLJ> state of a term label and J in the basis (-1 if absent).
int stateOf(const EngineTables& tables, const JBasis& basis, const std::string& label, int twiceJ) {
    for (int s = 0; s < static_cast<int>(basis.states.size()); ++s)
        if (tables.terms[basis.states[s].term].label == label && basis.states[s].twiceJ == twiceJ) return s;
    return -1;
}

// The diagonal element of a component at an |SLJ> state.
double diagonal(const FreeIonOperators& operators, const std::string& name, int state) {
    for (std::size_t b = 0; b < operators.basis.blocks.size(); ++b) {
        const auto& states = operators.basis.blocks[b].states;
        for (std::size_t i = 0; i < states.size(); ++i)
            if (states[i] == state) return findComponent(operators, name)->blocks[b](i, i);
    }
    ADD_FAILURE() << "state " << state << " not in any block";
    return 0.0;
}

TEST(FreeIonBasis, CountsOfJStatesAndMStatesPerConfiguration) {
    // Terms / |SLJ> levels / states of f1, f2, f3, f7 (Nielson & Koster 1963).
    struct Case { int n; std::size_t terms, levels, states; };
    for (const Case& c : {Case{1, 1, 2, 14}, Case{2, 7, 13, 91}, Case{3, 17, 41, 364}, Case{7, 119, 327, 3432}}) {
        const auto& tables = tablesOf(c.n);
        const auto basis = buildJBasis(tables.terms);
        EXPECT_EQ(tables.terms.size(), c.terms) << "f" << c.n;
        EXPECT_EQ(basis.states.size(), c.levels) << "f" << c.n;
        std::size_t states = 0;
        for (const auto& state : basis.states) states += state.twiceJ + 1;
        EXPECT_EQ(states, c.states) << "f" << c.n;
    }
}

TEST(FreeIonBasis, MinimumMultiplicityDropsDoubletTerms) {
    // f3 quartets: 4S, 4D, 4F, 4G, 4I -> J-states 1 + 4 + 4 + 4 + 4 = 17.
    const auto& tables = tablesOf(3);
    const auto basis = buildJBasis(tables.terms, 3);
    EXPECT_EQ(basis.states.size(), 17u);
    for (const auto& state : basis.states) EXPECT_EQ(tables.terms[state.term].twiceS, 3);
}

TEST(FreeIonComponents, SpinOrbitClosedForms) {
    // Lande interval rule: f1 E(2F5/2) = -2 zeta, E(2F7/2) = +3/2 zeta; f2 <3H4|H_SO|3H4> = -3 zeta,
    // pure LS value (zeta/2S)(J(J+1)-L(L+1)-S(S+1))/2 for 3H6 = +5/2 zeta.
    struct Case { int n; const char* label; int twiceJ; double expected; };
    for (const Case& c : {Case{1, "2F", 5, -2.0}, Case{1, "2F", 7, 1.5}, Case{2, "3H", 8, -3.0},
                         Case{2, "3H", 12, 2.5}, Case{2, "1G", 8, 0.0}}) {
        const auto& tables = tablesOf(c.n);
        const auto operators = buildFreeIonOperators(tables);
        const int state = stateOf(tables, operators.basis, c.label, c.twiceJ);
        ASSERT_GE(state, 0) << c.label;
        EXPECT_NEAR(diagonal(operators, "ZETA", state), c.expected, 1e-10) << c.label << " 2J=" << c.twiceJ;
    }
}

TEST(FreeIonComponents, CasimirAndOrbitalDiagonalsRelativeToTheBarycentre) {
    // Closed forms (Judd 1963, Operator Techniques, ch. 9: L(L+1), Casimir of G2 and R7) for f2,
    // taken relative to 1S (W = (000), U = (00): all zero):
    // 3H (110)(11): L(L+1) 30, G(G2) 1, G(R7) 1; 3P (110)(11): 2, 1, 1; 3F (110)(10): 12, 1/2, 1;
    // 1I (200)(20): 42, 7/6, 7/5.
    // The components are barycentred, so only differences within a configuration are fixed.
    struct Case { const char* label; int twiceJ; double alpha, beta, gamma; };
    const auto& tables = tablesOf(2);
    const auto operators = buildFreeIonOperators(tables);
    const int reference = stateOf(tables, operators.basis, "1S", 0);
    ASSERT_GE(reference, 0);
    for (const Case& c : {Case{"3H", 8, 30.0, 1.0, 1.0}, Case{"3P", 2, 2.0, 1.0, 1.0}, Case{"3F", 4, 12.0, 0.5, 1.0},
                         Case{"1I", 12, 42.0, 7.0 / 6.0, 1.4}}) {
        const int state = stateOf(tables, operators.basis, c.label, c.twiceJ);
        ASSERT_GE(state, 0) << c.label;
        for (const auto& [name, expected] : {std::pair{"ALPHA", c.alpha}, {"BETA", c.beta}, {"GAMMA", c.gamma}})
            EXPECT_NEAR(diagonal(operators, name, state) - diagonal(operators, name, reference), expected, 1e-12)
                << c.label << " " << name;
        EXPECT_NEAR(diagonal(operators, "EAVG", state), 1.0, 0.0) << c.label;
    }
    // f1 has the single term 2F: every barycentred scalar is 0 there.
    const auto& single = tablesOf(1);
    const auto f1 = buildFreeIonOperators(single);
    for (const char* name : {"ALPHA", "BETA", "GAMMA", "F2", "F4", "F6"})
        EXPECT_NEAR(diagonal(f1, name, 0), 0.0, 1e-12) << name;
}

TEST(FreeIonComponents, ScalarComponentsAreTracelessOverTheConfiguration) {
    // Published free-ion parameter sets use barycentred operators, so EAVG is the
    // configuration barycentre: the (2J+1)-weighted trace of every other component is 0.
    for (int n : {2, 3, 5}) {
        const auto& tables = tablesOf(n);
        const auto operators = buildFreeIonOperators(tables);
        for (const auto& component : operators.components) {
            if (component.name == "EAVG") continue;
            double trace = 0.0, scale = 0.0;
            for (std::size_t b = 0; b < component.blocks.size(); ++b) {
                trace += (operators.basis.blocks[b].twiceJ + 1) * component.blocks[b].trace();
                scale += (operators.basis.blocks[b].twiceJ + 1) * component.blocks[b].cwiseAbs().trace();
            }
            EXPECT_NEAR(trace, 0.0, 1e-10 * std::max(1.0, scale)) << "f" << n << " " << component.name;
        }
    }
}

TEST(FreeIonComponents, CoulombTermEnergiesOfF2) {
    // f2 term energies as coefficients of F_2, F_4, F_6 (Condon & Shortley 1935, f2 term energies), i.e.
    // D_k f_k, after the F_0 term; the components are barycentred with the configuration averages
    // <f_2> = -4/195, <f_4> = -2/143, <f_6> = -100/5577 for f2.
    const double D[3] = {225.0, 1089.0, 184041.0 / 25.0};
    const double average[3] = {-4.0 / 195.0, -2.0 / 143.0, -100.0 / 5577.0};
    struct Case { const char* label; int twiceJ; double c2, c4, c6; };
    const auto& tables = tablesOf(2);
    const auto operators = buildFreeIonOperators(tables);
    for (const Case& c : {Case{"3P", 2, 45, 33, -1287}, Case{"3F", 4, -10, -33, -286}, Case{"3H", 8, -25, -51, -13},
                         Case{"1S", 0, 60, 198, 1716}, Case{"1D", 4, 19, -99, 715}, Case{"1G", 8, -30, 97, 78},
                         Case{"1I", 12, 25, 9, 1}}) {
        const int state = stateOf(tables, operators.basis, c.label, c.twiceJ);
        ASSERT_GE(state, 0) << c.label;
        EXPECT_NEAR(D[0] * (diagonal(operators, "F2", state) + average[0]), c.c2, 1e-9) << c.label;
        EXPECT_NEAR(D[1] * (diagonal(operators, "F4", state) + average[1]), c.c4, 1e-9) << c.label;
        EXPECT_NEAR(D[2] * (diagonal(operators, "F6", state) + average[2]), c.c6, 1e-8) << c.label;
    }
}

// Pr3+ free-ion levels relative to the ground level 3H4, (2J, E) in increasing energy: computed
// check values for the free-ion parameters of Carnall, Goodman, Rajnak & Rana 1989 (Table I), term
// by term (M^4 = 0.31 M^0 = 0.6448 written explicitly).
struct LevelCase {
    const char* name;
    bool racah, magnetic, noSpinSpin, twoBody;
    std::vector<std::pair<int, double>> levels;
};

class FreeIonLevels : public ::testing::TestWithParam<LevelCase> {};

TEST_P(FreeIonLevels, PraseodymiumLevelsEqualCheckValues) {
    const LevelCase& c = GetParam();
    std::vector<FreeIonRow> other;
    if (c.twoBody) other = {row("ALPHA", 16.23), row("BETA", -566.6), row("GAMMA", 1371)};
    if (c.magnetic)
        for (auto r : {row("M0", 2.08), row("M2", 1.1648), row("M4", 0.6448), row("P2", -88.6), row("P4", -44.3),
                       row("P6", -8.86)})
            other.push_back(r);
    const double D[3] = {225.0, 1089.0, 184041.0 / 25.0};
    const double F2 = 68878 / D[0], F4 = 50347 / D[1], F6 = 32901 / D[2];
    auto set = c.racah ? freeIonSet(2, (70 * F2 + 231 * F4 + 2002 * F6) / 9, (F2 - 3 * F4 + 7 * F6) / 9,
                                    (5 * F2 + 6 * F4 - 91 * F6) / 3, 751.7, other)
                       : freeIonSet(2, 68878, 50347, 32901, 751.7, other);
    if (c.racah) set.slaterType = SlaterType::RacahE;
    set.switches.noSpinSpin = c.noSpinSpin;
    MemoryLogBook log;
    const auto levels = computeEnergyLevels(set, tableDirectory(), log, {false, false}).freeIon.levels;
    ASSERT_EQ(levels.size(), c.levels.size() + 1);
    EXPECT_EQ(levels[0].twiceJ, 8) << "ground level 3H4";
    for (std::size_t i = 0; i < c.levels.size(); ++i) {
        EXPECT_EQ(levels[i + 1].twiceJ, c.levels[i].first) << "level " << i + 1;
        EXPECT_NEAR(levels[i + 1].energy - levels[0].energy, c.levels[i].second, 0.01) << "level " << i + 1;
    }
}

const std::vector<std::pair<int, double>> kSlaterAndZeta = {
    {10, 2116.30}, {12, 4319.45}, {4, 4908.80},   {6, 6320.24},   {8, 6684.29}, {8, 9587.00},
    {4, 16837.13}, {12, 20686.83}, {0, 21104.39}, {2, 21734.70}, {4, 22929.23}, {0, 48006.36}};

INSTANTIATE_TEST_SUITE_P(
    Carnall1989, FreeIonLevels,
    ::testing::Values(
        LevelCase{"SlaterAndZeta", false, false, false, false, kSlaterAndZeta},
        LevelCase{"RacahForm", true, false, false, false, kSlaterAndZeta},
        LevelCase{"PlusMagneticWithSpinSpin", false, true, false, true,
                  {{10, 2091.52}, {12, 4258.05}, {4, 4895.03}, {6, 6289.76}, {8, 6720.08}, {8, 9734.45},
                   {4, 16814.78}, {0, 20632.66}, {2, 21288.18}, {12, 21301.68}, {4, 22467.09}, {0, 46701.20}}}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace orvane
