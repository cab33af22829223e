// The crystal-field stage: first-order splittings against closed forms
// (Stevens factors), refused parameters, the lowest-m request, the cubic
// crystal field ("/cubiccf") and orthogonal correlation tables.
#include "engine/crystal_field.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <string>
#include <vector>

#include "core/angular.hpp"
#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "engine/crystal_field_parameters.hpp"
#include "tables/table_directory.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using test::bkq;

ParameterSet ionSet(int n, double zeta, std::vector<CrystalFieldRow> crystalField, int fold) {
    return test::praseodymiumLikeSet(n, zeta, std::move(crystalField), fold);
}

EnergyLevelResult run(const ParameterSet& set, bool vectors = false, bool complex = false,
                      const std::filesystem::path& directory = test::engineTableDirectory()) {
    return test::runLevels(set, {true, vectors, complex}, directory);
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

TEST(CrystalFieldInvariants, LowestLevelsOnlyAreTheBottomOfTheFullSpectrum) {
    // m lowest levels (index range per block, merged and cut) against the full solution.
    struct Case { int n; int fold; bool complex; bool vectors; int lowest; };
    for (const Case& c : {Case{3, 2, true, false, 7}, Case{2, 1, true, true, 1}, Case{3, 3, false, false, 400}}) {
        auto parameters = c.fold == 1 ? test::lowSymmetryCrystalField() : test::laf3CrystalField();
        if (c.fold == 3) parameters = {bkq(2, 0, -300), bkq(4, 3, 330), bkq(6, 6, -600)};
        if (c.complex) parameters.back().im = {"55", 55.0};
        const auto set = ionSet(c.n, 751.7, parameters, c.fold);
        const auto full = run(set, false, c.complex);
        EnergyLevelOptions options{true, c.vectors, c.complex};
        options.lowest = c.lowest;
        const auto part = test::runLevels(set, options);
        const std::size_t expected = std::min<std::size_t>(c.lowest, full.crystalField.levels.size());
        ASSERT_EQ(part.crystalField.levels.size(), expected) << "f" << c.n << " lowest " << c.lowest;
        for (std::size_t i = 0; i < expected; ++i)
            EXPECT_NEAR(part.crystalField.levels[i].energy, full.crystalField.levels[i].energy, 1e-7)
                << "f" << c.n << " lowest " << c.lowest << " level " << i;
    }
}

// Sizes of the groups of equal energies (within 1e-6) among the first `count` levels.
std::vector<int> degeneracies(const EnergyLevelResult& result, std::size_t count) {
    std::vector<int> groups;
    const auto& levels = result.crystalField.levels;
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0 && std::abs(levels[i].energy - levels[i - 1].energy) < 1e-6)
            ++groups.back();
        else
            groups.push_back(1);
    }
    return groups;
}

TEST(CubicCrystalField, CeriumMultipletsSplitIntoCubicRepresentations) {
    // "/cubiccf" completes B40 and B60 with the cubic relations (Hutchings, Solid State Phys. 16,
    // 227 (1964)): [001] B44 = sqrt(5/14) B40, B64 = -sqrt(7/2) B60; [111] B43, B63, B66. Only
    // the right ratios keep the cubic degeneracies of f1 (zeta = 640 cm^-1, field small against
    // zeta): 2F5/2 -> Gamma7 + Gamma8 (2 + 4), 2F7/2 -> Gamma6 + Gamma7 + Gamma8 (2 + 2 + 4),
    // whichever order. A sixfold axis is refused.
    for (int fold : {1, 4, 3}) {
        auto set = ionSet(1, 640, {bkq(2, 0, 500), bkq(4, 0, 600), bkq(4, 4, 12), bkq(6, 0, 300)}, fold);
        set.switches.cubicCF = true;
        const auto result = run(set);
        auto ground = degeneracies(result, 6);
        std::sort(ground.begin(), ground.end());
        EXPECT_EQ(ground, (std::vector<int>{2, 4})) << "2F5/2 fold " << fold;
        std::vector<int> excited;
        for (int size : degeneracies(result, 14)) excited.push_back(size);
        ASSERT_GE(excited.size(), 2u);
        excited.erase(excited.begin(), excited.begin() + 2);
        std::sort(excited.begin(), excited.end());
        EXPECT_EQ(excited, (std::vector<int>{2, 2, 4})) << "2F7/2 fold " << fold;
    }
    auto hexagonal = ionSet(1, 640, {bkq(4, 0, 1000)}, 6);
    hexagonal.switches.cubicCF = true;
    EXPECT_THROW(crystalFieldParametersOf(hexagonal, false, false), UserError);
}

TEST(CorrelationCrystalField, OrthogonalCorrelationTablesAreGeneratedNotTakenFromElsewhere) {
    // g(4)10B is generated on first use; a table copied over it (here U(4),
    // which would make g(4,q) act as B(4,q) = g / <f||C(4)||f>) is generated again.
    const auto directory = test::scratchDirectory("engine_occf_tables");
    auto present = ionSet(2, 751.7, {}, 2);
    present.correlationCF.push_back({CorrelationKind::OccfB, {bkq(4, 0, 300), bkq(4, 2, -150)}});
    present.switches.correlationSections = true;
    const auto generated = test::levelEnergies(run(present, false, false, directory));
    const auto unitTable = findCaseBlind(directory, "f2rmu4.val");
    ASSERT_TRUE(unitTable.has_value());
    writeFileAtomically(directory / "f2g(4)10B.val", readTextFile(*unitTable));
    const double c4 = ReducedCk2(6, 8, 6);
    const auto b = run(ionSet(2, 751.7, {bkq(4, 0, 300 / c4), bkq(4, 2, -150 / c4)}, 2), false, false, directory);
    const auto again = test::levelEnergies(run(present, false, false, directory));
    EXPECT_LT(test::largestDifference(again, generated), 1e-9);
    EXPECT_GT(test::largestDifference(again, test::levelEnergies(b)), 1.0);
}

}  // namespace
}  // namespace orvane
