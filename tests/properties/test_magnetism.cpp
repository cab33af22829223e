// Magnetic properties against independent values: Ce3+ g-values and
// susceptibilities of a re-derivation (Landé g-values, Van Vleck formula),
// intermediate-coupling g_J against the expectation value of the pure-LS
// Landé factors, the Curie limit, rotation invariance of the g tensor and of
// the average susceptibility, the conjugate shell against f^n itself, and the
// kernel's two edge cases.
#include <array>
#include <cmath>
#include <map>

#include <gtest/gtest.h>

#include "params/cf_rotation.hpp"
#include "properties/g_factors.hpp"
#include "properties/magnetic_moment.hpp"
#include "properties/susceptibility.hpp"
#include "tests/properties/properties_test_support.hpp"

namespace orvane {
namespace {

using test::bkq;
using test::row;

ParameterSet ceriumSet(std::vector<CrystalFieldRow> crystalField) {
    ParameterSet set;
    set.electronCount = 1;
    set.mainFreeIon = {row("EAVG", 0), row("F2", 0), row("F4", 0), row("F6", 0), row("ZETA", 647.3)};
    set.crystalField = std::move(crystalField);
    return set;
}

// Ce3+ f1, zeta = 647.3, B20 = 500, g_s = 2.0023193: (energy, g_perp, g_par)
// of every Kramers doublet (pure-J Landé values, re-derived independently).
TEST(Magnetism, CeriumAxialDoublets) {
    const auto states = test::statesOf(ceriumSet({bkq(2, 0, 500)}), true);
    const auto moment = magneticMomentOperator(states);
    const double expected[][3] = {{0, 0, 4.25064},         {171.970, 0, 2.53535},     {258.449, 2.57726, 0.84241},
                                  {2243.166, 0, 8.00232},  {2387.449, 0, 5.74936},    {2482.145, 0, 3.46465},
                                  {2529.000, 4.57958, 1.15759}};
    const auto pairs = pairDoublets(states);
    ASSERT_EQ(pairs.size(), 7u);
    for (std::size_t d = 0; d < pairs.size(); ++d) {
        const auto g = doubletGFactors(states, moment, pairs[d].first, pairs[d].second);
        EXPECT_NEAR(states.relativeEnergy(pairs[d].first), expected[d][0], 1e-3) << d;
        EXPECT_NEAR(g.g[0], expected[d][1], 2e-5) << d;
        EXPECT_NEAR(g.g[1], expected[d][1], 2e-5) << d;  // axial site: gx = gy
        EXPECT_NEAR(g.g[2], expected[d][2], 2e-5) << d;
    }
}

// Ce3+ susceptibilities (emu/mol), kernel with k = 0.6950348 cm^-1/K.
TEST(Magnetism, CeriumSusceptibility) {
    struct Case {
        bool crystalField;
        double temperature;
        int axis;  // 0 x, 2 z, 3 average
        double chi;
    };
    const Case cases[] = {{false, 10, 3, 0.080371}, {false, 300, 3, 0.002722}, {true, 1, 2, 1.694563},
                          {true, 1, 0, 0.002889},   {true, 10, 3, 0.058419},   {true, 300, 3, 0.002676}};
    for (const auto& c : cases) {
        const auto states = test::statesOf(ceriumSet(c.crystalField ? std::vector{bkq(2, 0, 500)} : std::vector<CrystalFieldRow>{}),
                                           c.crystalField);
        const auto table = susceptibilityTable(states, magneticMomentOperator(states), 300.0);
        const auto point = susceptibilityAt(table, c.temperature);
        const double chi = c.axis == 3 ? point.average() : point.chi[c.axis];
        EXPECT_NEAR(chi, c.chi, 2e-6 + 2e-6 * c.chi) << c.crystalField << " T=" << c.temperature;
        if (!c.crystalField && c.temperature == 300) {
            EXPECT_NEAR(effectiveMoment(chi, 300), 2.5553, 1e-4);
        }
    }
}

double landeG(const EngineTerm& term, int twiceJ, double spinG) {
    const double J = twiceJ / 2.0, S = term.twiceS / 2.0, L = term.L;
    return 1.0 + (spinG - 1.0) * (J * (J + 1) + S * (S + 1) - L * (L + 1)) / (2 * J * (J + 1));
}

// Free ion: <J M|m_z|J M> / M of every multiplet equals sum_s |v_s|^2 g_J(s),
// the weights of its |SL J> components (L + g_s S is diagonal in S and L).
TEST(Magnetism, FreeIonLandeFactorsInIntermediateCoupling) {
    const ParameterSet sets[] = {test::praseodymiumLikeSet(2, 750, {}, 1), test::neodymiumLikeSet(3),
                                 test::praseodymiumLikeSet(7, 1500, {}, 1)};
    for (const auto& set : sets) {
        const auto states = test::statesOf(set, false);
        const auto moment = magneticMomentOperator(states);
        int checked = 0;
        for (int level = 0; level < states.levelCount; ++level) {
            const int i = states.levelMembers(level).back();  // MJ = J (components in ascending MJ)
            const auto& state = states.states[i];
            if (state.twiceMu == 0) continue;
            const auto& group = states.groups[state.group];
            double expected = 0.0;
            for (std::size_t r = 0; r < group.basisIndices.size(); ++r) {
                const auto& b = states.basis.states[group.basisIndices[r]];
                expected += std::norm(group.vectors(static_cast<Eigen::Index>(r), state.column)) *
                            landeG(states.terms[b.term], b.twiceJ, kElectronSpinG);
            }
            const double g = momentElements(moment, i)(i, 2).real() / (state.twiceMu / 2.0);
            EXPECT_NEAR(g, expected, 1e-6) << "f" << set.electronCount << " state " << i;
            ++checked;
        }
        EXPECT_GT(checked, 10);
    }
}

// Gd3+ (8S7/2, isolated by ~32000 cm^-1): C = chi T -> 0.1250494 g^2 J(J+1).
TEST(Magnetism, CurieLimitOfIsolatedGroundMultiplet) {
    const auto states = test::statesOf(test::praseodymiumLikeSet(7, 1500, {}, 1), false);
    const auto moment = magneticMomentOperator(states);
    const double g = momentElements(moment, 7)(7, 2).real() / 3.5;  // |8S 7/2, 7/2> is the last ground component
    ASSERT_EQ(states.states[7].twiceMu, 7);
    const auto point = susceptibilityAt(susceptibilityTable(states, moment, 300), 300);
    for (double chi : point.chi) EXPECT_NEAR(chi * 300 / (0.1250494 * g * g * 3.5 * 4.5), 1.0, 2e-4);
}

params::BkqArray bkqOf(const ParameterSet& set) {
    params::BkqArray b{};
    for (const auto& r : set.crystalField) b[r.k][r.q] = {r.re.value, r.im.value};
    return b;
}

ParameterSet withBkq(ParameterSet set, const params::BkqArray& b) {
    set.crystalField.clear();
    for (int k = 2; k <= 6; k += 2)
        for (int q = 0; q <= k; ++q) set.crystalField.push_back(bkq(k, q, b[k][q].real(), b[k][q].imag()));
    return set;
}

// Nd3+ at a site without symmetry: principal g values, the g-tensor sum rule
// and the average susceptibility do not depend on the orientation of the frame.
TEST(Magnetism, RotationInvariants) {
    const auto set = test::praseodymiumLikeSet(
        3, 880, {bkq(2, 0, -300), bkq(2, 1, 120, 80), bkq(2, 2, 150, -60), bkq(4, 0, 500), bkq(4, 3, 300, 100),
                 bkq(6, 0, 400), bkq(6, 2, -250, 90), bkq(6, 5, 180, -40)},
        1);
    const auto rotated = withBkq(set, params::rotateBkq(bkqOf(set), {35, 62, -110}));
    const auto a = test::statesOf(set, true, true);
    const auto b = test::statesOf(rotated, true, true);
    const auto momentA = magneticMomentOperator(a), momentB = magneticMomentOperator(b);
    for (int d = 0; d < 3; ++d) {
        ASSERT_NEAR(a.relativeEnergy(2 * d), b.relativeEnergy(2 * d), 1e-6);
        auto ga = doubletGFactors(a, momentA, 2 * d, 2 * d + 1).g, gb = doubletGFactors(b, momentB, 2 * d, 2 * d + 1).g;
        std::sort(ga.begin(), ga.end());
        std::sort(gb.begin(), gb.end());
        for (int k = 0; k < 3; ++k) EXPECT_NEAR(ga[k], gb[k], 1e-6) << "doublet " << d;
        double blockSum = 0.0;
        for (const auto& block : momentBlocks(momentA, 2 * d, 2 * d + 1)) blockSum += 2 * block.cwiseAbs2().sum();
        EXPECT_NEAR(ga[0] * ga[0] + ga[1] * ga[1] + ga[2] * ga[2], blockSum, 1e-9);
    }
    const auto chiA = susceptibilityAt(susceptibilityTable(a, momentA, 100), 20);
    const auto chiB = susceptibilityAt(susceptibilityTable(b, momentB, 100), 20);
    EXPECT_NEAR(chiA.average(), chiB.average(), 1e-9 * chiA.average());
    EXPECT_GT(std::abs(chiA.chi[2] - chiB.chi[2]), 1e-4 * chiA.average()) << "the components do change";
}

// Er3+ (f^11) through the conjugate f^3 states and through f^11 itself.
TEST(Magnetism, ConjugateShellGivesTheSameGFactors) {
    auto set = test::praseodymiumLikeSet(11, 2376, {bkq(2, 0, -238), bkq(2, 2, -91), bkq(4, 0, 453), bkq(4, 2, 308),
                                                     bkq(4, 4, 417), bkq(6, 0, 373), bkq(6, 2, -489), bkq(6, 4, -240),
                                                     bkq(6, 6, -536)},
                                         2);
    const auto conjugate = test::statesOf(set, true);
    set.switches.actualShell = true;
    const auto actual = test::statesOf(set, true);
    ASSERT_TRUE(conjugate.conjugate);
    ASSERT_FALSE(actual.conjugate);
    const auto momentC = magneticMomentOperator(conjugate), momentA = magneticMomentOperator(actual);
    for (int d = 0; d < 8; ++d) {
        EXPECT_NEAR(conjugate.relativeEnergy(2 * d), actual.relativeEnergy(2 * d), 1e-6);
        const auto gc = doubletGFactors(conjugate, momentC, 2 * d, 2 * d + 1).g;
        const auto ga = doubletGFactors(actual, momentA, 2 * d, 2 * d + 1).g;
        for (int k = 0; k < 3; ++k) EXPECT_NEAR(gc[k], ga[k], 1e-6) << "doublet " << d << " axis " << k;
    }
}

// Edge cases of the kernel: at 0.01 K a state 0.11 cm^-1 up (> 15 kT) carries
// no population; a pair 1e-6 cm^-1 apart enters only the first-order term.
TEST(Magnetism, KernelCutOffAndDegeneratePairs) {
    SusceptibilityTable table;
    table.maxTemperature = 1.0;
    table.energies = {0.0, 1e-6, 0.11};
    for (auto& squares : table.squares) {
        squares = Eigen::MatrixXd::Zero(3, 3);
        squares(0, 1) = squares(1, 0) = 1.0;
        squares(2, 2) = 1e4;
    }
    const double kT = kBoltzmannWavenumbers * 0.01;
    const auto point = susceptibilityAt(table, 0.01);
    EXPECT_NEAR(point.chi[2], kMolarMomentWavenumbers * (1.0 / kT), 1e-9 * point.chi[2]);
    table.energies[1] = 2e-5;  // now a Van Vleck pair (its population shifts Z slightly)
    const auto split = susceptibilityAt(table, 0.01);
    const double w = std::exp(-2e-5 / kT);
    EXPECT_NEAR(split.chi[2], kMolarMomentWavenumbers * (2.0 / 2e-5 - w * 2.0 / 2e-5) / (1 + w), 1e-9 * std::abs(split.chi[2]));
}

// In a tie of gaps (three degenerate states) the labels decide: equal irreps
// under the site group pair, different ones do not, whatever mu says; without
// irreps (or for a level flagged "?") opposite mu pair.
TEST(Magnetism, PairingTiesDecidedByIrrepThenMu) {
    const struct {
        std::array<const char*, 3> irreps;
        std::array<int, 3> twiceMu;
        std::vector<std::pair<int, int>> pairs;  // state 3 lies 100 cm^-1 above
    } cases[] = {{{"", "", ""}, {1, -1, 3}, {{0, 1}, {2, 3}}},
                 {{"G6", "G7", "G7"}, {1, -1, 3}, {{1, 2}}},
                 {{"G8", "G8", "G8"}, {1, 3, -3}, {{0, 1}, {2, 3}}},
                 {{"?", "?", "?"}, {1, 3, -3}, {{1, 2}}}};
    for (const auto& c : cases) {
        PropertyStates states;
        for (int i = 0; i < 3; ++i) states.states.push_back({.twiceMu = c.twiceMu[i], .irrep = c.irreps[i]});
        states.states.push_back({.energy = 100.0, .irrep = {}});
        EXPECT_EQ(pairDoublets(states), c.pairs) << c.irreps[0];
    }
}

TEST(Magnetism, TemperatureGrids) {
    const auto smart = temperatureGrid(0.001, 300);
    ASSERT_EQ(smart.size(), 48u);
    EXPECT_DOUBLE_EQ(smart.front(), 0.001);
    EXPECT_NEAR(smart[1], 0.002, 1e-15);
    EXPECT_DOUBLE_EQ(smart.back(), 300);
    EXPECT_NEAR(smart[smart.size() - 2], 200, 1e-12);
    const auto stepped = temperatureGrid(0, 10, 2.5);
    ASSERT_EQ(stepped.size(), 4u);
    EXPECT_DOUBLE_EQ(stepped.front(), 0.01);
    EXPECT_THROW(temperatureGrid(10, 1), std::invalid_argument);
}

}  // namespace
}  // namespace orvane
