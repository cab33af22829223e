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

// Pr3+:LaF3 C2v Bkq, Wybourne (Carnall et al. 1989; physics notes 14.5).
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

TEST(CrystalFieldFirstOrder, CeriumGroundMultipletSplitByB20) {
    // physics notes 9.3 (computed): f1 2F5/2, B^2_0 = 1000 cm^-1, first order:
    // E(|M| = 5/2) = -285.714, E(3/2) = +57.143, E(1/2) = +228.571.
    const auto result = run(ionSet(1, 640, {bkq(2, 0, 1000)}, 1));
    const int ground = lowestLevelOfJ(result, 5);
    ASSERT_EQ(ground, 0);
    struct Case { int twiceM; double expected; };
    for (const Case& c : {Case{5, -285.714}, Case{-5, -285.714}, Case{3, 57.143}, Case{-1, 228.571}})
        EXPECT_NEAR(result.crystalFieldValues[0] * componentDiagonal(result, 0, ground, c.twiceM), c.expected, 1e-3)
            << "2M=" << c.twiceM;
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
    // physics notes 9.3: classical Stevens factors theta_2, theta_4, theta_6 of the
    // pure Russell-Saunders ground multiplets. First order in B(k,0):
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

TEST(CrystalFieldBlocks, FoldSplitsTheJMStatesByResidue) {
    // f2 (91 states, integral M) and f3 (364 states, half-integral M).
    struct Case { int n; int fold; std::size_t blocks; std::size_t states; };
    for (const Case& c : {Case{2, 1, 1, 91}, Case{2, 2, 2, 91}, Case{2, 3, 3, 91}, Case{3, 1, 1, 364},
                         Case{3, 2, 2, 364}, Case{3, 3, 3, 364}, Case{3, 6, 6, 364}}) {
        const auto result = run(ionSet(c.n, 700, {bkq(6, 6, 100)}, c.fold));
        const auto& blocks = result.crystalFieldOperators.blocks;
        EXPECT_EQ(blocks.size(), c.blocks) << "f" << c.n << " fold " << c.fold;
        std::size_t states = 0;
        for (const auto& block : blocks) {
            states += block.states.size();
            for (const auto& state : block.states)
                EXPECT_EQ(twiceMResidue(state.twiceM, c.fold), block.residue);
        }
        EXPECT_EQ(states, c.states) << "f" << c.n << " fold " << c.fold;
        EXPECT_EQ(result.crystalField.levels.size(), c.states);
    }
}

TEST(CrystalFieldBlocks, SpectrumDoesNotDependOnTheFoldChosen) {
    // B(k,0) and B(6,6) only: folds 1, 2, 3 and 6 must all give the same levels.
    const std::vector<CrystalFieldRow> hexagonal = {bkq(2, 0, -218), bkq(4, 0, 738), bkq(6, 0, 679), bkq(6, 6, -788)};
    for (int n : {2, 3}) {
        const auto reference = relativeEnergies(run(ionSet(n, 751.7, hexagonal, 1)));
        for (int fold : {2, 3, 6}) {
            const auto energies = relativeEnergies(run(ionSet(n, 751.7, hexagonal, fold)));
            ASSERT_EQ(energies.size(), reference.size());
            for (std::size_t i = 0; i < energies.size(); ++i)
                EXPECT_NEAR(energies[i], reference[i], 1e-6) << "f" << n << " fold " << fold << " level " << i;
        }
    }
}

TEST(CrystalFieldBlocks, ParametersThatCoupleBlocksAreRefused) {
    // B(2,2) needs q a multiple of the fold: fold 3 cannot carry it.
    auto set = ionSet(2, 751.7, {bkq(2, 0, -218), bkq(2, 2, -120)}, 3);
    try {
        run(set);
        FAIL() << "expected a UserError";
    } catch (const UserError& error) {
        EXPECT_NE(std::string(error.what()).find("B(2,2) couples different blocks of the fold 3"), std::string::npos)
            << error.what();
    }
}

TEST(CrystalFieldBlocks, UnsupportedParametersGiveClearMessages) {
    struct Case { CrystalFieldRow row; CfConvention convention; const char* fragment; };
    for (const Case& c : {Case{bkq(2, 2, -120, 30), CfConvention::Wybourne, "needs the complex engine"},
                         Case{bkq(3, 2, 10), CfConvention::Wybourne, "rank k must be 2, 4 or 6"},
                         Case{bkq(4, 5, 10), CfConvention::Wybourne, "q must lie between 0 and k"},
                         Case{bkq(4, 5, 10), CfConvention::Stevens, "q must lie between 0 and k"}}) {
        auto set = ionSet(2, 751.7, {c.row}, 1);
        set.cfConvention = c.convention;
        try {
            run(set);
            ADD_FAILURE() << "expected a UserError for " << c.fragment;
        } catch (const UserError& error) {
            EXPECT_NE(std::string(error.what()).find(c.fragment), std::string::npos) << error.what();
        }
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

TEST(CrystalFieldInvariants, TimeReversalPartnerBlocksGiveTheFullSpectrum) {
    // A Kramers ion's block of residue -r takes the eigenvalues of block r (and, with
    // vectors, the time-reversed vectors). Both paths must give the same levels.
    const std::vector<CrystalFieldRow> trigonal = {bkq(2, 0, -300), bkq(4, 0, 700), bkq(4, 3, 330, 120),
                                                   bkq(6, 0, 650), bkq(6, 3, 270, -200), bkq(6, 6, -600, 90)};
    for (bool complex : {false, true})
        for (int fold : {2, 3}) {
            auto parameters = trigonal;
            if (fold == 2) parameters = {bkq(2, 0, -300), bkq(2, 2, -120, 60), bkq(4, 4, 500), bkq(6, 2, -800, 40)};
            if (!complex)
                for (auto& p : parameters) p.im = {"0", 0.0};
            const auto set = ionSet(3, 751.7, parameters, fold);
            MemoryLogBook log;
            const auto valuesOnly = computeEnergyLevels(set, tableDirectory(), log, {true, false, complex});
            const auto withVectors = computeEnergyLevels(set, tableDirectory(), log, {true, true, complex});
            ASSERT_EQ(valuesOnly.crystalField.levels.size(), 364u);
            ASSERT_EQ(withVectors.crystalField.levels.size(), 364u);
            for (std::size_t i = 0; i < 364; ++i)
                EXPECT_NEAR(valuesOnly.crystalField.levels[i].energy, withVectors.crystalField.levels[i].energy, 1e-7)
                    << (complex ? "complex" : "real") << " fold " << fold << " level " << i;
        }
}

TEST(CrystalFieldInvariants, LowestLevelsOnlyAreTheBottomOfTheFullSpectrum) {
    // m lowest levels (index range per block, merged and cut) against the full solution.
    struct Case { int n; int fold; bool complex; bool vectors; int lowest; };
    for (const Case& c : {Case{2, 2, false, false, 10}, Case{3, 2, true, false, 7}, Case{3, 2, false, true, 25},
                          Case{2, 1, true, true, 1}, Case{3, 3, false, false, 400}}) {
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

TEST(CrystalFieldConjugate, ConjugateRouteMatchesTheActualShell) {
    // f13 vs f1, f12 vs f2, f11 vs f3, f10 vs f4: the levels through f^(14-n) with zeta and
    // every B(k,q) negated equal those from the tables of f^n itself, up to one constant.
    struct Case { int n; int fold; };
    for (const Case& c : {Case{13, 1}, Case{12, 1}, Case{11, 1}, Case{10, 4}}) {
        const auto parameters = c.fold == 1 ? lowSymmetryParameters() : std::vector<CrystalFieldRow>{
            bkq(2, 0, -300), bkq(4, 0, 700), bkq(4, 4, 500), bkq(6, 0, 650), bkq(6, 4, -400)};
        auto set = ionSet(c.n, 1500, parameters, c.fold);
        const auto conjugate = run(set);
        set.switches.actualShell = true;
        const auto actual = run(set);
        EXPECT_TRUE(conjugate.conjugate);
        EXPECT_EQ(conjugate.tableElectrons, 14 - c.n);
        EXPECT_FALSE(actual.conjugate);
        EXPECT_EQ(actual.tableElectrons, c.n);
        const auto a = relativeEnergies(conjugate);
        const auto b = relativeEnergies(actual);
        ASSERT_EQ(a.size(), b.size()) << "f" << c.n;
        double worst = 0.0;
        for (std::size_t i = 0; i < a.size(); ++i) worst = std::max(worst, std::abs(a[i] - b[i]));
        EXPECT_LT(worst, 1e-6) << "f" << c.n << " largest deviation between the routes";
        EXPECT_GT(a.back(), 1000.0) << "a real spectrum, not a degenerate one";
    }
}

TEST(CrystalFieldConjugate, SignFlipsAreNeededOnTheConjugateRoute) {
    // Without negating zeta and B(k,q), f13 through f1 would be the spectrum of f1 itself:
    // check that Yb3+ (f13) puts 2F7/2 lowest and that f1 with the same parameters does not.
    const auto ytterbium = run(ionSet(13, 2900, {bkq(2, 0, 300)}, 1));
    const auto cerium = run(ionSet(1, 2900, {bkq(2, 0, 300)}, 1));
    EXPECT_EQ(ytterbium.freeIon.levels.front().twiceJ, 7);
    EXPECT_EQ(cerium.freeIon.levels.front().twiceJ, 5);
    EXPECT_NEAR(ytterbium.freeIon.levels[1].energy - ytterbium.freeIon.levels[0].energy, 3.5 * 2900, 1e-6);
}

}  // namespace
}  // namespace orvane
