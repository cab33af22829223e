// Irreducible representations of crystal-field levels: in cubic fields the
// levels of each J multiplet carry the irreps of the branching of J (computed
// here from chi_J(phi) = sin((2J+1)phi/2) / sin(phi/2)); in fields of lower
// symmetry with random allowed parameters every level is one irrep (Kramers
// levels two-dimensional or a conjugate pair); odd-electron labels in Td differ
// from the proper-rotation labels by the parity rule; a rotation that keeps
// the group keeps the labels; a forbidden parameter is reported.
#include <cmath>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include "engine/editor_checks.hpp"
#include "engine/level_symmetry.hpp"
#include "params/cf_rotation.hpp"
#include "params/crystal_field_symmetry.hpp"
#include "tests/engine/engine_test_support.hpp"

namespace orvane {
namespace {

using params::ImproperAction;
using params::PointGroup;

struct Degenerate {
    int first, count;
};

std::vector<Degenerate> degenerateLevels(const EnergyLevelResult& result) {
    std::vector<Degenerate> groups;
    const auto& levels = result.modelLevels;
    for (int i = 0; i < static_cast<int>(levels.size()); ++i)
        if (!groups.empty() && levels[i].energy - levels[groups.back().first].energy < 1e-4)
            ++groups.back().count;
        else
            groups.push_back({i, 1});
    return groups;
}

EnergyLevelResult solveWithVectors(const ParameterSet& set) {
    EnergyLevelOptions options;
    options.wantVectors = true;
    for (const auto& row : set.crystalField) options.complex = options.complex || row.im.value != 0.0;
    return test::runLevels(set, options);
}

const PointGroup& group(const char* name) { return params::pointGroup(*params::pointGroupNumber(name)); }

// Random parameters (about 300 cm^-1) that the group allows: the projector
// applied to random coordinates of each rank.
std::vector<CrystalFieldRow> randomAllowedField(const PointGroup& g, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(-600.0, 600.0);
    std::vector<CrystalFieldRow> rows;
    for (int k = 2; k <= 6; k += 2) {
        Eigen::VectorXd x(2 * k + 1);
        for (auto& v : x) v = uniform(random);
        const Eigen::VectorXd b = params::invariantProjector(g, k) * x;
        for (int q = 0; q <= k; ++q) {
            const double re = q == 0 ? b(0) : b(2 * q - 1), im = q == 0 ? 0.0 : b(2 * q);
            if (std::abs(re) > 1e-9 || std::abs(im) > 1e-9)
                rows.push_back(test::bkq(k, q, std::abs(re) > 1e-9 ? re : 0.0, std::abs(im) > 1e-9 ? im : 0.0));
        }
    }
    return rows;
}

TEST(LevelSymmetry, CubicLevelsFollowTheBranchingOfJ) {
    const PointGroup& oh = group("Oh");
    const double b40 = 5.0, b60 = 2.0;  // weak: each level stays near its free-ion J level
    const std::vector<CrystalFieldRow> cubic = {test::bkq(4, 0, b40), test::bkq(4, 4, std::sqrt(5.0 / 14.0) * b40),
                                                test::bkq(6, 0, b60), test::bkq(6, 4, -std::sqrt(3.5) * b60)};
    for (const int n : {2, 11}) {  // Pr3+, Er3+
        SCOPED_TRACE(n);
        const auto result = solveWithVectors(test::praseodymiumLikeSet(n, n == 2 ? 751.7 : 2376.0, cubic, 4));
        const auto& freeIon = result.freeIon.levels;
        std::vector<std::vector<double>> found(freeIon.size(), std::vector<double>(oh.irreps.size(), 0.0));
        for (const auto& level : degenerateLevels(result)) {
            const auto symmetry = levelSymmetry(*result.model, result.modelLevels, level.first, level.count, oh, ImproperAction::Parity);
            ASSERT_TRUE(symmetry.oneIrrep) << "level " << level.first;
            std::size_t nearest = 0;
            for (std::size_t f = 0; f < freeIon.size(); ++f)
                if (std::abs(freeIon[f].energy - result.modelLevels[level.first].energy) <
                    std::abs(freeIon[nearest].energy - result.modelLevels[level.first].energy))
                    nearest = f;
            for (std::size_t a = 0; a < oh.irreps.size(); ++a) found[nearest][a] += symmetry.multiplicities[a];
        }
        for (std::size_t f = 0; f < freeIon.size(); ++f) {
            // chi_J on each class: sin((2J+1) phi/2) / sin(phi/2), times (-1)^n on improper elements.
            std::vector<std::complex<double>> chi;
            for (const auto& cls : oh.classes) {
                const auto& element = oh.elements[cls.elements.front()];
                const double half = std::acos(std::clamp(element.su2.trace().real() / 2.0, -1.0, 1.0));
                const int twiceJ = freeIon[f].twiceJ;
                const double value = std::abs(std::sin(half)) < 1e-12
                                         ? (twiceJ + 1.0) * (std::cos(half) > 0 || twiceJ % 2 == 0 ? 1 : -1)
                                         : std::sin((twiceJ + 1) * half) / std::sin(half);
                chi.emplace_back(value * (element.improper && n % 2 == 1 ? -1 : 1), 0.0);
            }
            const auto expected = params::irrepMultiplicities(oh, chi);
            for (std::size_t a = 0; a < oh.irreps.size(); ++a)
                EXPECT_NEAR(found[f][a], expected[a], 1e-6) << "2J = " << freeIon[f].twiceJ << " "
                                                            << params::kosterName(oh.irreps[a]);
        }
    }
}

TEST(LevelSymmetry, EveryLevelIsOneIrrepInFieldsOfLowerSymmetry) {
    for (const char* name : {"D3h", "C3v", "D2d", "C2v", "C2"})
        for (const int n : {2, 3}) {
            SCOPED_TRACE(std::string(name) + " f" + std::to_string(n));
            const PointGroup& g = group(name);
            const auto result = solveWithVectors(test::praseodymiumLikeSet(n, 800.0, randomAllowedField(g, 7 + n), g.fold));
            int states = 0;
            for (const auto& level : degenerateLevels(result)) {
                const auto symmetry = levelSymmetry(*result.model, result.modelLevels, level.first, level.count, g, ImproperAction::Parity);
                ASSERT_TRUE(symmetry.oneIrrep) << "level " << level.first;
                int dimension = 0;
                for (int a : symmetry.irreps) dimension += g.irreps[a].dimension;
                EXPECT_EQ(dimension, level.count);
                if (n % 2 == 1) EXPECT_EQ(dimension, 2);  // Kramers
                states += dimension;
            }
            EXPECT_EQ(states, n == 2 ? 91 : 364);  // C(14, n)
        }
}

TEST(LevelSymmetry, OddElectronLabelsInTdFollowTheParityRule) {
    const PointGroup& td = group("Td");
    const auto result = solveWithVectors(test::praseodymiumLikeSet(3, 885.0, randomAllowedField(td, 3), 4));
    for (const auto& level : degenerateLevels(result)) {
        const auto parity = levelSymmetry(*result.model, result.modelLevels, level.first, level.count, td, ImproperAction::Parity);
        const auto proper = levelSymmetry(*result.model, result.modelLevels, level.first, level.count, td, ImproperAction::ProperPart);
        ASSERT_TRUE(parity.oneIrrep && proper.oneIrrep);
        ASSERT_EQ(parity.irreps.size(), 1u);
        // The parity label is the proper one times the irrep that is -1 on improper elements.
        const auto& characters = td.irreps[proper.irreps[0]].characters;
        for (std::size_t t = 0; t < td.classes.size(); ++t) {
            const double sign = td.elements[td.classes[t].elements.front()].improper ? -1.0 : 1.0;
            EXPECT_NEAR(std::abs(td.irreps[parity.irreps[0]].characters[t] - sign * characters[t]), 0.0, 1e-9);
        }
    }
}

TEST(LevelSymmetry, RotationWithinTheNormaliserKeepsTheLabels) {
    const PointGroup& d3 = group("D3");
    for (const int n : {2, 3}) {
        auto set = test::praseodymiumLikeSet(n, 800.0, randomAllowedField(d3, 11), 3);
        params::CfTable table;
        for (const auto& row : set.crystalField) table.rows.push_back({row.k, row.q, {"", row.re.value}, {"", row.im.value}});
        auto rotated = set;
        rotated.crystalField.clear();
        for (const auto& row : params::rotateTable(table, {180.0, 0.0, 0.0}).rows)  // C2z normalises D3
            rotated.crystalField.push_back(test::bkq(row.k, row.q, row.re.value, row.im.value));
        auto labels = [&](const ParameterSet& s) {
            const auto result = solveWithVectors(s);
            std::vector<std::string> out;
            for (const auto& level : degenerateLevels(result))
                out.push_back(levelSymmetryLabel(levelSymmetry(*result.model, result.modelLevels, level.first, level.count, d3, ImproperAction::Parity),
                                                 d3, IrNotation::Koster));
            return out;
        };
        double change = 0.0;  // B43 and B63 change sign
        for (std::size_t r = 0; r < set.crystalField.size(); ++r)
            change += std::abs(rotated.crystalField[r].re.value - set.crystalField[r].re.value) +
                      std::abs(rotated.crystalField[r].im.value - set.crystalField[r].im.value);
        EXPECT_GT(change, 1.0);
        EXPECT_EQ(labels(rotated), labels(set));
    }
}

TEST(LevelSymmetry, FieldOfLowerSymmetryIsFlaggedNotMislabelled) {
    const PointGroup& d3h = group("D3h");
    const auto result = solveWithVectors(test::praseodymiumLikeSet(2, 751.7, test::laf3CrystalField(), 2));  // C2v
    int flagged = 0;
    for (const auto& level : degenerateLevels(result)) {
        const auto symmetry = levelSymmetry(*result.model, result.modelLevels, level.first, level.count, d3h, ImproperAction::Parity);
        flagged += symmetry.oneIrrep ? 0 : 1;
        if (!symmetry.oneIrrep) EXPECT_EQ(levelSymmetryLabel(symmetry, d3h, IrNotation::Mulliken), "?");
    }
    EXPECT_GT(flagged, 0);
}

TEST(LevelSymmetry, ForbiddenParameterIsReported) {
    ParameterSet set = test::praseodymiumLikeSet(2, 750.0, {test::bkq(2, 0, 100), test::bkq(4, 3, 50)}, 1);
    set.switches.pointGroup = 15;  // D4h
    const auto warnings = crystalFieldSymmetryWarnings(set);
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_EQ(warnings[0], "B43 is forbidden by the site symmetry D4h (standard orientation)");
}

}  // namespace
}  // namespace orvane
