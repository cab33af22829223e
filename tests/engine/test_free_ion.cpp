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
    // physics notes 2.1: terms / |SLJ> levels / states of f1, f2, f3, f7.
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
    // physics notes 4.2: f1 E(2F5/2) = -2 zeta, E(2F7/2) = +3/2 zeta; f2 <3H4|H_SO|3H4> = -3 zeta,
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
    // Physics notes 2.2/2.4 closed forms for f2, taken relative to 1S (W = (000), U = (00): all zero):
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
    // physics notes 5.2 (computed, verified against determinants): f2 term energies as
    // coefficients of F_2, F_4, F_6, i.e. D_k f_k, after the F_0 term; the components are
    // barycentred with the configuration averages of physics notes 5.3:
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

TEST(FreeIonParameters, ElectrostaticFormsGiveTheSameSlaterIntegrals) {
    // Pr3+:LaF3 F^k (Carnall et al. 1989): F_k = F^k / D_k, and Racah's
    // E^1 = (70 F_2 + 231 F_4 + 2002 F_6)/9, E^2 = (F_2 - 3 F_4 + 7 F_6)/9, E^3 = (5 F_2 + 6 F_4 - 91 F_6)/3.
    const std::array<double, 3> upper = {68878.0, 50347.0, 32901.0};
    const double D[3] = {225.0, 1089.0, 184041.0 / 25.0};
    const std::array<double, 3> lower = {upper[0] / D[0], upper[1] / D[1], upper[2] / D[2]};
    const std::array<double, 3> racah = {(70 * lower[0] + 231 * lower[1] + 2002 * lower[2]) / 9,
                                         (lower[0] - 3 * lower[1] + 7 * lower[2]) / 9,
                                         (5 * lower[0] + 6 * lower[1] - 91 * lower[2]) / 3};
    struct Case { SlaterType form; std::array<double, 3> values; };
    for (const Case& c : {Case{SlaterType::SlaterFUpper, upper}, Case{SlaterType::SlaterFLower, lower},
                         Case{SlaterType::RacahE, racah}}) {
        const auto result = slaterUpperIntegrals(c.form, c.values);
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(result[i], upper[i], 1e-9 * upper[i]) << "form " << int(c.form) << " F^" << 2 * (i + 1);
    }
}

// Pr3+ free-ion levels relative to the ground level, (2J, E) in increasing energy.
struct LevelCheck { int twiceJ; double energy; };

void expectLevels(const ParameterSet& set, const std::vector<LevelCheck>& expected, const char* what) {
    MemoryLogBook log;
    const auto result = computeEnergyLevels(set, tableDirectory(), log, {false, false});
    const auto& levels = result.freeIon.levels;
    ASSERT_EQ(levels.size(), expected.size() + 1) << what;
    EXPECT_EQ(levels[0].twiceJ, 8) << what << ": ground level 3H4";
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(levels[i + 1].twiceJ, expected[i].twiceJ) << what << " level " << i + 1;
        EXPECT_NEAR(levels[i + 1].energy - levels[0].energy, expected[i].energy, 0.01) << what << " level " << i + 1;
    }
}

TEST(FreeIonLevels, PraseodymiumSlaterAndSpinOrbitOnly) {
    // physics notes 14.4, first bullet (computed; Carnall LaF3 parameters F^k, zeta).
    expectLevels(freeIonSet(2, 68878, 50347, 32901, 751.7),
                 {{10, 2116.30}, {12, 4319.45}, {4, 4908.80}, {6, 6320.24}, {8, 6684.29}, {8, 9587.00},
                  {4, 16837.13}, {12, 20686.83}, {0, 21104.39}, {2, 21734.70}, {4, 22929.23}, {0, 48006.36}},
                 "F^k + zeta");
}

TEST(FreeIonLevels, PraseodymiumWithTwoBodyConfigurationInteraction) {
    // physics notes 14.4, second bullet: + alpha = 16.23, beta = -566.6, gamma = 1371.
    expectLevels(freeIonSet(2, 68878, 50347, 32901, 751.7,
                            {row("ALPHA", 16.23), row("BETA", -566.6), row("GAMMA", 1371)}),
                 {{10, 2108.14}, {12, 4313.28}, {4, 4893.42}, {6, 6303.25}, {8, 6774.52}, {8, 9755.15},
                  {4, 16851.18}, {0, 20633.63}, {2, 21272.11}, {12, 21325.42}, {4, 22507.28}, {0, 46715.08}},
                 "F^k + zeta + alpha, beta, gamma");
}

TEST(FreeIonLevels, RacahFormReproducesTheSameLevelSpacings) {
    // The same Pr3+ Hamiltonian written with E^1, E^2, E^3 (exact conversion of F^k).
    const double D[3] = {225.0, 1089.0, 184041.0 / 25.0};
    const double F2 = 68878 / D[0], F4 = 50347 / D[1], F6 = 32901 / D[2];
    auto set = freeIonSet(2, (70 * F2 + 231 * F4 + 2002 * F6) / 9, (F2 - 3 * F4 + 7 * F6) / 9,
                          (5 * F2 + 6 * F4 - 91 * F6) / 3, 751.7);
    set.slaterType = SlaterType::RacahE;
    expectLevels(set,
                 {{10, 2116.30}, {12, 4319.45}, {4, 4908.80}, {6, 6320.24}, {8, 6684.29}, {8, 9587.00},
                  {4, 16837.13}, {12, 20686.83}, {0, 21104.39}, {2, 21734.70}, {4, 22929.23}, {0, 48006.36}},
                 "Racah E^k form");
}

// Pr3+ with the magnetic parameters of physics notes 14.4 (M^4 = 0.31 M^0 = 0.6448 there, written explicitly).
std::vector<FreeIonRow> praseodymiumMagneticRows() {
    return {row("ALPHA", 16.23), row("BETA", -566.6), row("GAMMA", 1371), row("M0", 2.08), row("M2", 1.1648),
            row("M4", 0.6448), row("P2", -88.6), row("P4", -44.3), row("P6", -8.86)};
}

TEST(FreeIonLevels, PraseodymiumWithSpinOtherOrbitAndCorrelatedSpinOrbit) {
    // physics notes 14.4, third bullet: + M^k, P^k (SOO + ECSO, no spin-spin: "/noss").
    auto set = freeIonSet(2, 68878, 50347, 32901, 751.7, praseodymiumMagneticRows());
    set.switches.noSpinSpin = true;
    expectLevels(set,
                 {{10, 2085.63}, {12, 4257.10}, {4, 4895.09}, {6, 6284.45}, {8, 6718.46}, {8, 9732.51},
                  {4, 16812.60}, {0, 20653.59}, {2, 21274.11}, {12, 21299.36}, {4, 22467.00}, {0, 46699.13}},
                 "+ M^k, P^k without spin-spin");
}

TEST(FreeIonLevels, PraseodymiumWithSpinSpinAsWell) {
    // physics notes 14.4, fourth bullet: the same with the rank-2 spin-spin part of M^k.
    expectLevels(freeIonSet(2, 68878, 50347, 32901, 751.7, praseodymiumMagneticRows()),
                 {{10, 2091.52}, {12, 4258.05}, {4, 4895.03}, {6, 6289.76}, {8, 6720.08}, {8, 9734.45},
                  {4, 16814.78}, {0, 20632.66}, {2, 21288.18}, {12, 21301.68}, {4, 22467.09}, {0, 46701.20}},
                 "+ M^k, P^k with spin-spin");
}

TEST(FreeIonLevels, EveryNamedParameterHasItsOperator) {
    auto set = freeIonSet(3, 73018, 52789, 35757, 885.3,
                          {row("T2", 298), row("T2'", 10), row("T3", 35), row("T8", 305), row("M0", 2.11), row("P2", 192)});
    MemoryLogBook log;
    const auto result = computeEnergyLevels(set, tableDirectory(), log, {false, false});
    EXPECT_TRUE(result.parametersNotIncluded.empty());
    for (const auto& line : log.lines()) EXPECT_EQ(line.find("Parameters not included"), std::string::npos) << line;
    for (const char* name : {"T2", "T2'", "T3", "T4", "T6", "T7", "T8", "M0", "M2", "M4", "P2", "P4", "P6"})
        EXPECT_NE(findComponent(result.freeIonOperators, name), nullptr) << name;
}

}  // namespace
}  // namespace orvane
