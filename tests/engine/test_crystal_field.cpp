// The crystal-field stage: first-order splittings against closed forms
// (Stevens factors), blocking by the fold, invariants of the spectrum and the
// conjugate-configuration route against the actual shell.
#include "engine/crystal_field.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "engine/energy_levels.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

std::filesystem::path tableDirectory() { return test::engineTableDirectory(); }

using test::row;

using test::bkq;

ParameterSet ionSet(int n, double zeta, std::vector<CrystalFieldRow> crystalField, int fold) {
    return test::praseodymiumLikeSet(n, zeta, std::move(crystalField), fold);
}

// Pr3+:LaF3 C2v Bkq, Wybourne (Carnall, Goodman, Rajnak & Rana 1989, Table I).
std::vector<CrystalFieldRow> laf3Parameters() {
    return {bkq(2, 0, -218), bkq(2, 2, -120), bkq(4, 0, 738),  bkq(4, 2, 431), bkq(4, 4, 616),
            bkq(6, 0, 679),  bkq(6, 2, -921), bkq(6, 4, -348), bkq(6, 6, -788)};
}

// A low-symmetry set with odd q (fold 1 only).
std::vector<CrystalFieldRow> lowSymmetryParameters() {
    return {bkq(2, 0, -300), bkq(2, 1, 150), bkq(2, 2, -120), bkq(4, 0, 700), bkq(4, 1, -210), bkq(4, 3, 330),
            bkq(4, 4, 500),  bkq(6, 0, 650), bkq(6, 2, -800), bkq(6, 3, 270), bkq(6, 5, -140), bkq(6, 6, -600)};
}

EnergyLevelResult run(const ParameterSet& set, bool vectors = false) {
    MemoryLogBook log;
    return computeEnergyLevels(set, tableDirectory(), log, {true, vectors});
}

std::vector<double> relativeEnergies(const EnergyLevelResult& result) {
    std::vector<double> energies;
    for (const auto& level : result.crystalField.levels)
        energies.push_back(level.energy - result.crystalField.levels.front().energy);
    return energies;
}

// Diagonal element of the component of key `keyIndex` at |level, M>.
double componentDiagonal(const EnergyLevelResult& result, std::size_t keyIndex, int level, int twiceM) {
    const auto operators = levelBasisOperators(result, false);
    for (std::size_t b = 0; b < operators.blocks.size(); ++b) {
        const auto& states = operators.blocks[b].states;
        for (std::size_t i = 0; i < states.size(); ++i)
            if (states[i].level == level && states[i].twiceM == twiceM)
                return operators.realPart[keyIndex][b].coeff(i, i);
    }
    ADD_FAILURE() << "no state level " << level << " 2M " << twiceM;
    return 0.0;
}

// The lowest free-ion level of a given J.
int lowestLevelOfJ(const EnergyLevelResult& result, int twiceJ) {
    for (std::size_t i = 0; i < result.freeIon.levels.size(); ++i)
        if (result.freeIon.levels[i].twiceJ == twiceJ) return static_cast<int>(i);
    return -1;
}

// Stevens operator equivalents at M = J (Stevens 1952): O20, O40, O60 with X = J(J+1).
double stevensDiagonal(int k, double J) {
    const double X = J * (J + 1), M = J, M2 = M * M;
    if (k == 2) return 3 * M2 - X;
    if (k == 4) return 35 * M2 * M2 - 30 * X * M2 + 25 * M2 - 6 * X + 3 * X * X;
    return 231 * M2 * M2 * M2 - 315 * X * M2 * M2 + 735 * M2 * M2 + 105 * X * X * M2 - 525 * X * M2 + 294 * M2 -
           5 * X * X * X + 40 * X * X - 60 * X;
}

TEST(CrystalFieldFirstOrder, StevensFactorsOfGroundMultiplets) {
    // Stevens factors theta_2, theta_4, theta_6 of the pure Russell-Saunders ground
    // multiplets (Stevens, Proc. Phys. Soc. A 65, 209 (1952); Abragam & Bleaney 1970, Table 16). First order in B(k,0):
    // E(M) = theta_k lambda_k0 B(k,0) O(k,0)(M), lambda = 1/2, 1/8, 1/16. n > 7 runs
    // through the conjugate configuration, so the sign rule of B(k,q) is checked too.
    struct Case { const char* ion; int n; int twiceJ; double theta[3]; };
    const Case cases[] = {
        {"Ce3+ 2F5/2", 1, 5, {-2.0 / 35, 2.0 / 315, 0.0}},
        {"Pr3+ 3H4", 2, 8, {-52.0 / 2475, -4.0 / 5445, 272.0 / 4459455}},
        {"Nd3+ 4I9/2", 3, 9, {-7.0 / 1089, -136.0 / 467181, -1615.0 / 42513471}},
        {"Er3+ 4I15/2", 11, 15, {4.0 / 1575, 2.0 / 45045, 8.0 / 3864861}},
        {"Tm3+ 3H6", 12, 12, {1.0 / 99, 8.0 / 49005, -5.0 / 891891}},
        {"Yb3+ 2F7/2", 13, 7, {2.0 / 63, -2.0 / 1155, 4.0 / 27027}},
    };
    const double lambda[3] = {0.5, 0.125, 0.0625};
    for (const auto& c : cases) {
        // zeta = 0: the levels are pure |SLJ> states of the Hund term.
        const auto result = run(ionSet(c.n, 0.0, {bkq(2, 0, 1), bkq(4, 0, 1), bkq(6, 0, 1)}, 1));
        const int ground = lowestLevelOfJ(result, c.twiceJ);
        ASSERT_GE(ground, 0) << c.ion;
        for (int i = 0; i < 3; ++i) {
            const double expected = c.theta[i] * lambda[i] * stevensDiagonal(2 * (i + 1), c.twiceJ / 2.0);
            // The energy is the component times B(k,0) as applied (negated on the conjugate route).
            const double energy = result.crystalFieldValues[i] * componentDiagonal(result, i, ground, c.twiceJ);
            EXPECT_NEAR(energy, expected, 1e-9 * (1 + std::abs(expected)))
                << c.ion << " theta_" << 2 * (i + 1);
        }
    }
}

TEST(CrystalFieldBlocks, UnsupportedParametersGiveClearMessages) {
    struct Case { CrystalFieldRow row; CfConvention convention; const char* fragment; };
    for (const Case& c : {Case{bkq(2, 2, -120, 30), CfConvention::Wybourne, "needs the complex engine"},
                         Case{bkq(2, 2, -120), CfConvention::Wybourne, "B(2,2) couples different blocks of the fold 3"},
                         Case{bkq(3, 2, 10), CfConvention::Wybourne, "rank k must be 2, 4 or 6"},
                         Case{bkq(4, 5, 10), CfConvention::Wybourne, "q must lie between 0 and k"},
                         Case{bkq(4, 5, 10), CfConvention::Stevens, "q must lie between 0 and k"}}) {
        auto set = ionSet(2, 751.7, {c.row}, c.row.q == 2 && c.row.im.value == 0.0 ? 3 : 1);
        set.cfConvention = c.convention;
        EXPECT_THROW(run(set), UserError) << c.fragment;
    }
}

TEST(CrystalFieldInvariants, TracelessMultipletsAndConservedTrace) {
    // C(k)_q (k > 0) has zero trace in every J multiplet, so the crystal field leaves
    // the sum of all energies at sum_a (2J_a + 1) E_a.
    const auto result = run(ionSet(2, 751.7, laf3Parameters(), 2));
    const auto operators = levelBasisOperators(result, false);
    for (std::size_t key = 0; key < operators.keys.size(); ++key) {
        std::vector<double> traceOfLevel(result.freeIon.levels.size(), 0.0);
        for (std::size_t b = 0; b < operators.blocks.size(); ++b)
            for (std::size_t i = 0; i < operators.blocks[b].states.size(); ++i)
                traceOfLevel[operators.blocks[b].states[i].level] += operators.realPart[key][b].coeff(i, i);
        for (std::size_t level = 0; level < traceOfLevel.size(); ++level)
            EXPECT_NEAR(traceOfLevel[level], 0.0, 1e-10)
                << "B(" << operators.keys[key].k << "," << operators.keys[key].q << ") level " << level;
    }
    double freeIonTrace = 0.0, crystalFieldSum = 0.0, scale = 0.0;
    for (const auto& level : result.freeIon.levels) freeIonTrace += (level.twiceJ + 1) * level.energy;
    for (const auto& level : result.crystalField.levels) {
        crystalFieldSum += level.energy;
        scale += std::abs(level.energy);
    }
    EXPECT_NEAR(crystalFieldSum, freeIonTrace, 1e-9 * scale);
}

TEST(CrystalFieldInvariants, KramersDoubletsForOddElectronCounts) {
    // Time reversal: every level of f3 and f11 is (at least) twofold; f2 has singlets.
    for (int n : {3, 11}) {
        const auto energies = relativeEnergies(run(ionSet(n, 751.7, lowSymmetryParameters(), 1)));
        ASSERT_EQ(energies.size() % 2, 0u);
        for (std::size_t i = 0; i + 1 < energies.size(); i += 2)
            EXPECT_NEAR(energies[i], energies[i + 1], 1e-6) << "f" << n << " pair " << i / 2;
    }
    const auto even = relativeEnergies(run(ionSet(2, 751.7, lowSymmetryParameters(), 1)));
    std::size_t singlets = 0;
    for (std::size_t i = 0; i < even.size(); ++i) {
        const bool below = i > 0 && std::abs(even[i] - even[i - 1]) < 1e-3;
        const bool above = i + 1 < even.size() && std::abs(even[i + 1] - even[i]) < 1e-3;
        if (!below && !above) ++singlets;
    }
    EXPECT_EQ(singlets, even.size()) << "low symmetry lifts every degeneracy of f2";
}

TEST(CrystalFieldInvariants, LowestLevelsOnlyAreTheBottomOfTheFullSpectrum) {
    // m lowest levels (index range per block, merged and cut) against the full solution.
    struct Case { int n; int fold; bool complex; bool vectors; int lowest; };
    for (const Case& c : {Case{3, 2, true, false, 7}, Case{2, 1, true, true, 1}, Case{3, 3, false, false, 400}}) {
        auto parameters = c.fold == 1 ? lowSymmetryParameters() : laf3Parameters();
        if (c.fold == 3) parameters = {bkq(2, 0, -300), bkq(4, 3, 330), bkq(6, 6, -600)};
        if (c.complex) parameters.back().im = {"55", 55.0};
        const auto set = ionSet(c.n, 751.7, parameters, c.fold);
        MemoryLogBook log;
        const auto full = computeEnergyLevels(set, tableDirectory(), log, {true, false, c.complex});
        EnergyLevelOptions options{true, c.vectors, c.complex};
        options.lowest = c.lowest;
        const auto part = computeEnergyLevels(set, tableDirectory(), log, options);
        const std::size_t expected = std::min<std::size_t>(c.lowest, full.crystalField.levels.size());
        ASSERT_EQ(part.crystalField.levels.size(), expected) << "f" << c.n << " lowest " << c.lowest;
        for (std::size_t i = 0; i < expected; ++i)
            EXPECT_NEAR(part.crystalField.levels[i].energy, full.crystalField.levels[i].energy, 1e-7)
                << "f" << c.n << " lowest " << c.lowest << " level " << i;
    }
}

// f13..f8 through f^(14-n) (zeta, B(k,q), T2', T3..T8 negated, T2 by its own rule, M^k, P^k and
// spin-spin unchanged) against the tables of f^n itself: equal levels up to one constant.
struct RouteCase {
    int n, fold;
};

class CrystalFieldConjugate : public ::testing::TestWithParam<RouteCase> {};

TEST_P(CrystalFieldConjugate, ConjugateRouteEqualsTheActualShell) {
    const auto [n, fold] = GetParam();
    auto set = test::neodymiumLikeSet(n);
    set.fold = fold;
    set.crystalField = fold == 1 ? lowSymmetryParameters()
                                 : std::vector<CrystalFieldRow>{bkq(2, 0, -256), bkq(4, 0, 496), bkq(4, 3, 410),
                                                                bkq(6, 0, 641),  bkq(6, 3, -380), bkq(6, 6, -831)};
    if (fold == 4) set.crystalField = {bkq(2, 0, -300), bkq(4, 0, 700), bkq(4, 4, 500), bkq(6, 0, 650), bkq(6, 4, -400)};
    const auto conjugate = run(set);
    set.switches.actualShell = true;
    const auto actual = run(set);
    EXPECT_EQ(conjugate.tableElectrons, 14 - n);
    EXPECT_EQ(actual.tableElectrons, n);
    const auto a = relativeEnergies(conjugate);
    const auto b = relativeEnergies(actual);
    ASSERT_EQ(a.size(), b.size());
    double worst = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) worst = std::max(worst, std::abs(a[i] - b[i]));
    EXPECT_LT(worst, 1e-6) << "largest deviation between the routes";
    EXPECT_GT(a.back(), 3000.0) << "a spectrum of the whole configuration";
}

INSTANTIATE_TEST_SUITE_P(F8ToF13, CrystalFieldConjugate,
                         ::testing::Values(RouteCase{13, 1}, RouteCase{12, 1}, RouteCase{11, 1}, RouteCase{10, 4},
                                           RouteCase{9, 3}, RouteCase{8, 3}),
                         [](const auto& info) {
                             return "f" + std::to_string(info.param.n) + "_fold" + std::to_string(info.param.fold);
                         });

}  // namespace
}  // namespace orvane
