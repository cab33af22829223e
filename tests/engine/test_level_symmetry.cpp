// Irreducible representations of crystal-field levels: in cubic fields the
// levels of each J multiplet carry the irreps of the branching of J (from
// chi_J(phi) = sin((2J+1)phi/2) / sin(phi/2), evaluated here on the rotation
// angle of every element and reduced over the irreducible characters); in fields of lower
// symmetry with random allowed parameters every level is one irrep (Kramers
// levels two-dimensional or a conjugate pair); odd-electron labels in Td differ
// from the proper-rotation labels by the parity rule; a rotation that keeps
// the group keeps the labels; a lower-symmetry field is flagged; a forbidden
// parameter is reported.
#include <algorithm>
#include <cmath>
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

const PointGroup& group(const char* name) { return params::pointGroup(*params::pointGroupNumber(name)); }

struct Solved {
    EnergyLevelResult result;
    std::vector<LevelSymmetry> levels(const PointGroup& g, ImproperAction action = ImproperAction::Parity) const {
        return levelSymmetries(*result.model, result.modelLevels, g, action);
    }
};

Solved solve(const ParameterSet& set) {
    EnergyLevelOptions options;
    options.wantVectors = true;
    for (const auto& row : set.crystalField) options.complex = options.complex || row.im.value != 0.0;
    return {test::runLevels(set, options)};
}

// Random allowed parameters: the group's projector applied to random coordinates of each rank.
std::vector<CrystalFieldRow> randomAllowedField(const PointGroup& g, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> uniform(-600.0, 600.0);
    std::vector<CrystalFieldRow> rows;
    for (int k = 2; k <= 6; k += 2) {
        Eigen::VectorXd x(2 * k + 1);
        for (auto& v : x) v = uniform(random);
        Eigen::VectorXd b = params::invariantProjector(g, k) * x;
        b = b.unaryExpr([](double v) { return std::abs(v) > 1e-9 ? v : 0.0; });
        for (int q = 0; q <= k; ++q)
            if (b(q == 0 ? 0 : 2 * q - 1) != 0.0 || (q > 0 && b(2 * q) != 0.0))
                rows.push_back(test::bkq(k, q, b(q == 0 ? 0 : 2 * q - 1), q == 0 ? 0.0 : b(2 * q)));
    }
    return rows;
}

// Branching of J: chi_J(phi) = sin((2J+1)phi/2) / sin(phi/2) with phi/2 read from
// the SU(2) trace 2 cos(phi/2) of each element (limit (2J+1)(+-1)^2J where
// sin(phi/2) = 0), times `improperSign` on improper elements, reduced by
// m_a = (1/|G|) sum_g conj(chi_a(g)) chi_J(g).
std::vector<double> branchingOfJ(const PointGroup& g, int twiceJ, int improperSign) {
    std::vector<double> m(g.irreps.size(), 0.0);
    for (std::size_t e = 0; e < g.elements.size(); ++e) {
        const double half = std::acos(std::clamp(g.elements[e].su2.trace().real() / 2.0, -1.0, 1.0));
        double chi = std::abs(std::sin(half)) < 1e-9 ? (twiceJ + 1) * (half < 1.0 || twiceJ % 2 == 0 ? 1.0 : -1.0)
                                                     : std::sin((twiceJ + 1) * half) / std::sin(half);
        if (g.elements[e].improper) chi *= improperSign;
        for (std::size_t a = 0; a < m.size(); ++a)
            m[a] += (std::conj(g.irreps[a].characters[g.classOf[e]]) * chi).real() / double(g.elements.size());
    }
    return m;
}

TEST(LevelSymmetry, CubicLevelsFollowTheBranchingOfJ) {
    const PointGroup& oh = group("Oh");
    const double b40 = 5.0, b60 = 2.0;  // weak: each level stays near its free-ion J level
    const std::vector<CrystalFieldRow> cubic = {test::bkq(4, 0, b40), test::bkq(4, 4, std::sqrt(5.0 / 14.0) * b40),
                                                test::bkq(6, 0, b60), test::bkq(6, 4, -std::sqrt(3.5) * b60)};
    for (const int n : {2, 11}) {  // Pr3+, Er3+
        const auto solved = solve(test::praseodymiumLikeSet(n, n == 2 ? 751.7 : 2376.0, cubic, 4));
        const auto& freeIon = solved.result.freeIon.levels;
        std::vector<std::vector<double>> found(freeIon.size(), std::vector<double>(oh.irreps.size(), 0.0));
        for (const auto& level : solved.levels(oh)) {
            ASSERT_TRUE(level.oneIrrep) << "f" << n << " level " << level.first;
            const double energy = solved.result.modelLevels[level.first].energy;
            const auto nearest = std::min_element(freeIon.begin(), freeIon.end(), [&](const auto& a, const auto& b) {
                return std::abs(a.energy - energy) < std::abs(b.energy - energy);
            }) - freeIon.begin();
            for (std::size_t a = 0; a < oh.irreps.size(); ++a) found[nearest][a] += level.multiplicities[a];
        }
        for (std::size_t f = 0; f < freeIon.size(); ++f) {  // chi_J, times (-1)^n on improper elements
            const auto expected = branchingOfJ(oh, freeIon[f].twiceJ, n % 2 == 1 ? -1 : 1);
            for (std::size_t a = 0; a < oh.irreps.size(); ++a)
                EXPECT_NEAR(found[f][a], expected[a], 1e-6) << "f" << n << " 2J = " << freeIon[f].twiceJ;
        }
    }
}

TEST(LevelSymmetry, EveryLevelIsOneIrrepInFieldsOfLowerSymmetry) {
    for (const char* name : {"D3h", "C3v", "D2d", "C2v", "C2"})
        for (const int n : {2, 3}) {
            const PointGroup& g = group(name);
            int states = 0;
            for (const auto& level : solve(test::praseodymiumLikeSet(n, 800.0, randomAllowedField(g, 7 + n), g.fold))
                                         .levels(g)) {
                ASSERT_TRUE(level.oneIrrep) << name << " f" << n << " level " << level.first;
                int dimension = 0;
                for (int a : level.irreps) dimension += g.irreps[a].dimension;
                EXPECT_EQ(dimension, level.count);
                EXPECT_TRUE(n % 2 == 0 || dimension == 2) << name;  // Kramers doublets
                states += dimension;
            }
            EXPECT_EQ(states, n == 2 ? 91 : 364) << name;  // C(14, n)
        }
}

TEST(LevelSymmetry, OddElectronLabelsInTdFollowTheParityRule) {
    const PointGroup& td = group("Td");
    const auto solved = solve(test::praseodymiumLikeSet(3, 885.0, randomAllowedField(td, 3), 4));
    const auto parity = solved.levels(td), proper = solved.levels(td, ImproperAction::ProperPart);
    ASSERT_EQ(parity.size(), proper.size());
    for (std::size_t i = 0; i < parity.size(); ++i) {
        ASSERT_TRUE(parity[i].oneIrrep && proper[i].oneIrrep && parity[i].irreps.size() == 1);
        // The parity label is the proper one times the irrep that is -1 on improper elements.
        for (std::size_t t = 0; t < td.classes.size(); ++t) {
            const double sign = td.elements[td.classes[t].elements.front()].improper ? -1.0 : 1.0;
            EXPECT_NEAR(std::abs(td.irreps[parity[i].irreps[0]].characters[t] -
                                 sign * td.irreps[proper[i].irreps[0]].characters[t]),
                        0.0, 1e-9);
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
        EXPECT_NE(rotated.crystalField, set.crystalField);  // B43 and B63 change sign
        auto labels = [&](const ParameterSet& s) {
            const auto solved = solve(s);
            return levelIrrepLabels(*solved.result.model, solved.result.modelLevels, {&d3});
        };
        EXPECT_EQ(labels(rotated), labels(set));
    }
}

TEST(LevelSymmetry, LowerSymmetryIsFlaggedAndForbiddenParametersReported) {
    const PointGroup& d3h = group("D3h");  // the C2v field of Pr3+:LaF3 is not D3h
    const auto solved = solve(test::praseodymiumLikeSet(2, 751.7, test::laf3CrystalField(), 2));
    const auto labels = levelIrrepLabels(*solved.result.model, solved.result.modelLevels, {&d3h});
    EXPECT_NE(std::find(labels.begin(), labels.end(), "?"), labels.end());
    ParameterSet set = test::praseodymiumLikeSet(2, 750.0, {test::bkq(2, 0, 100), test::bkq(4, 3, 50)}, 1);
    set.switches.pointGroup = 15;  // D4h
    EXPECT_EQ(crystalFieldSymmetryWarnings(set),
              std::vector<std::string>{"B43 is forbidden by the site symmetry D4h (standard orientation)"});
}

}  // namespace
}  // namespace orvane
