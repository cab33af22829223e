// The point groups and double groups: character tables computed from the
// elements must be orthonormal, agree with the published point-group tables
// of the reference folder (characters, Koster and Mulliken names, J
// branching for both parities, element names), reproduce textbook branching
// rules, and allow the crystal-field parameters of the cubic ratios.
#include <cmath>
#include <numbers>
#include <string>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "params/crystal_field_symmetry.hpp"
#include "params/point_group.hpp"
#include "params/point_group_table.hpp"
#include "tests/support/json_value.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane::params {
namespace {

using Complex = std::complex<double>;

// "G7+ + 2G8+" for the decomposition of |J M> states of parity sign `improperSign`.
std::string branching(const PointGroup& group, int twiceJ, int improperSign) {
    const auto m = irrepMultiplicities(group, angularMomentumCharacters(group, twiceJ, improperSign));
    std::string text;
    for (std::size_t a = 0; a < m.size(); ++a) {
        const long copies = std::lround(m[a]);
        if (copies == 0) continue;
        text += (text.empty() ? "" : " + ") + (copies > 1 ? std::to_string(copies) : "") + kosterName(group.irreps[a]);
    }
    return text;
}

TEST(PointGroups, ComputedCharacterTablesAreOrthonormal) {
    for (int n = 1; n <= kPointGroupCount; ++n) {
        const PointGroup& group = pointGroup(n);
        const auto size = group.classes.size();
        ASSERT_EQ(group.irreps.size(), size) << group.name;
        Eigen::MatrixXcd table(size, size);  // rows chi_a sqrt(|C| / |G|): unitary
        for (std::size_t a = 0; a < size; ++a)
            for (std::size_t t = 0; t < size; ++t)
                table(a, t) = group.irreps[a].characters[t] *
                              std::sqrt(double(group.classes[t].elements.size()) / double(group.elements.size()));
        EXPECT_NEAR((table * table.adjoint() - Eigen::MatrixXcd::Identity(size, size)).norm(), 0.0, 1e-9) << group.name;
    }
}

TEST(PointGroups, TextbookBranchingAndParity) {
    struct Case { const char* group; int twiceJ, improperSign; const char* expected; };
    const Case cases[] = {
        {"O", 5, 1, "G7 + G8"},        {"O", 8, 1, "G1 + G3 + G4 + G5"}, {"O", 15, 1, "G6 + G7 + 3G8"},
        {"Oh", 5, 1, "G7+ + G8+"},     {"Oh", 4, -1, "G3- + G5-"},      {"Td", 1, 1, "G6"},
        {"Td", 1, -1, "G7"},           {"D3h", 1, -1, "G8"},            {"D4", 5, 1, "G6 + 2G7"},
        {"C3", 3, 1, "G4 + G5 + 2G6"}, {"C2v", 4, 1, "2G1 + G2 + G3 + G4"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(branching(pointGroup(*pointGroupNumber(c.group)), c.twiceJ, c.improperSign), c.expected)
            << c.group << " 2J = " << c.twiceJ << " parity " << c.improperSign;
}

TEST(PointGroups, AllowedCrystalFieldParameters) {
    struct Case { const char* group; const char* allowed; };
    for (const auto& c : {Case{"D4h", "B20 B40 B44 B60 B64"}, Case{"Oh", "B40 B44 B60 B64"},
                          Case{"C2v", "B20 B22 B40 B42 B44 B60 B62 B64 B66"}, Case{"D3h", "B20 B40 B60 B66"},
                          Case{"C4", "B20 B40 B44 ImB44 B60 B64 ImB64"}}) {
        const std::string text = pointGroupDescription(pointGroup(*pointGroupNumber(c.group)));
        EXPECT_TRUE(text.ends_with(std::string("Allowed crystal-field parameters: ") + c.allowed + "\n")) << text;
    }
    EXPECT_EQ(allowedCrystalFieldComponents(pointGroup(1)).size(), 27u);  // C1: every Re and Im part
    // O_h: the invariant direction carries the cubic ratios B44 = sqrt(5/14) B40, B64 = -sqrt(7/2) B60.
    const Eigen::VectorXd fourth = invariantProjector(pointGroup(32), 4).col(0);
    const Eigen::VectorXd sixth = invariantProjector(pointGroup(32), 6).col(0);
    EXPECT_NEAR(fourth(7) / fourth(0), std::sqrt(5.0 / 14.0), 1e-12);
    EXPECT_NEAR(sixth(7) / sixth(0), -std::sqrt(7.0 / 2.0), 1e-12);
}

TEST(PointGroups, AgreeWithPublishedTables) {
    ORVANE_REQUIRE_REFERENCE(reference);
    const auto folder = reference / "point-groups";
    if (!std::filesystem::exists(folder / "index.json")) GTEST_SKIP() << "no point-group reference in " << folder;
    const auto index = test::readJsonFile((folder / "index.json").string());
    for (const auto& entry : index["groups"].items) {
        const PointGroup& group = pointGroup(*pointGroupNumber(entry["schoenflies"].text));
        SCOPED_TRACE(group.name);
        EXPECT_EQ(group.number, entry["number"].number);
        const auto table = test::readJsonFile((folder / entry["file"].text).string());
        const auto& fold = table["principal_axis_fold"];
        EXPECT_TRUE(fold.null || group.fold == fold.number);
        // Elements by name, with their lifts.
        std::map<std::string, GroupElement> elements;
        for (const auto& e : table["double_elements"].items) {
            GroupElement element;
            for (int r = 0; r < 2; ++r)
                for (int c = 0; c < 2; ++c)
                    element.su2(r, c) = {e["su2"][r][c][0].number, e["su2"][r][c][1].number};
            element.improper = e["improper"].boolean;
            EXPECT_EQ(elementName(element), e["name"].text);
            EXPECT_GE(group.indexOf(element), 0) << e["name"].text;
            elements[e["name"].text] = element;
        }
        ASSERT_EQ(table["classes"].items.size(), group.classes.size());
        std::vector<int> classOfReference;  // our class of each of theirs, of the same size
        for (const auto& cls : table["classes"].items) {
            classOfReference.push_back(group.classOf[group.indexOf(elements.at(cls["representative"].text))]);
            EXPECT_EQ(group.classes[classOfReference.back()].elements.size(), cls["size"].number);
        }
        ASSERT_EQ(table["irreps"].items.size(), group.irreps.size());
        for (std::size_t a = 0; a < group.irreps.size(); ++a) {
            const auto& theirs = table["irreps"][a];
            const Irrep& irrep = group.irreps[a];  // same order: single, double; Koster number; g before u
            EXPECT_EQ(kosterName(irrep), theirs["koster_ascii"].text);
            EXPECT_EQ(irrep.mulliken, theirs["mulliken"].null ? "" : theirs["mulliken"].text);
            EXPECT_EQ(irrep.frobeniusSchur, theirs["frobenius_schur"].number) << kosterName(irrep);
            for (std::size_t t = 0; t < classOfReference.size(); ++t) {
                const Complex expected(theirs["characters"][t]["re"].number, theirs["characters"][t]["im"].number);
                EXPECT_NEAR(std::abs(irrep.characters[classOfReference[t]] - expected), 0.0, 1e-9)
                    << kosterName(irrep) << " on " << table["classes"][t]["representative"].text;
            }
        }
        for (const auto& [parity, sign] : {std::pair{"parity_even", 1}, std::pair{"parity_odd", -1}})
            for (const auto& [j, content] : table["branching_J"][parity].fields) {
                std::string expected;  // in our irrep order, as `branching` writes it
                for (const auto& irrep : group.irreps)
                    if (const auto found = content.fields.find(kosterName(irrep)); found != content.fields.end())
                        expected += (expected.empty() ? "" : " + ") +
                                    (found->second.number > 1 ? fmt::format("{}", found->second.number) : "") +
                                    kosterName(irrep);
                const int twiceJ = j.find('/') == std::string::npos ? 2 * std::stoi(j) : std::stoi(j);
                EXPECT_EQ(branching(group, twiceJ, sign), expected) << parity << " J = " << j;
            }
    }
}

}  // namespace
}  // namespace orvane::params
