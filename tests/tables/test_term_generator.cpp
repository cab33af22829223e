// The term basis generated from Slater determinants: labels, numbering,
// Casimir decoding and the coefficients of fractional parentage.
#include <cmath>

#include <gtest/gtest.h>

#include "core/atomic_file.hpp"
#include "tables/state_labels.hpp"
#include "tests/support/reference_data.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

using test::generatedConfigurations;

int indexOfLabel(const GeneratedConfiguration& c, const std::string& label) {
    for (std::size_t i = 0; i < c.terms.size(); ++i)
        if (c.terms[i].label == label) return static_cast<int>(i);
    ADD_FAILURE() << "no term " << label << " in f" << c.electrons;
    return 0;
}

TEST(TermGenerator, TermCountsOfEveryConfiguration) {
    // Term counts of f^1..f^7 (Nielson & Koster 1963): 1, 7, 17, 47, 73, 119, 119.
    const int expected[] = {1, 1, 7, 17, 47, 73, 119, 119};
    for (int n = 0; n <= 7; ++n)
        EXPECT_EQ(static_cast<int>(generatedConfigurations()[n].terms.size()), expected[n]) << "f" << n;
}

TEST(TermGenerator, ClassificationOfTheTermsOfF2AndF3) {
    // Seniority and the R7, G2 labels (Racah 1949; Nielson & Koster 1963): label, v, W, U.
    struct Case { int n; const char* label; int v; const char* w; const char* u; };
    const Case cases[] = {
        {1, "2F", 1, "100", "10"},  {2, "1S", 0, "000", "00"},  {2, "1D", 2, "200", "20"},
        {2, "3F", 2, "110", "10"},  {3, "4S", 3, "111", "00"},  {3, "2D2", 3, "210", "21"},
    };
    for (const auto& c : cases) {
        const auto& config = generatedConfigurations()[c.n];
        const auto& term = config.terms[static_cast<std::size_t>(indexOfLabel(config, c.label))];
        EXPECT_EQ(term.seniority, c.v) << c.label;
        EXPECT_EQ(r7LabelText(term.w), c.w) << c.label;
        EXPECT_EQ(g2LabelText(term.u), c.u) << c.label;
    }
}

// The term lists of Nielson & Koster (1963) in their order; f^N (N = 8..13) lists the terms
// of f^(14-N) in the same order, f14 the single term 1S.
TEST(TermGenerator, TermListsEqualThePublishedOrder) {
    ORVANE_REQUIRE_REFERENCE(reference);
    for (int n = 1; n <= 13; ++n) {
        const auto file = reference / "terms" / ("f" + std::to_string(std::min(n, 14 - n)) + "-terms.txt");
        const auto published =
            parseStateLabels(readTextFile(file), StateLabelForm::Standard, true, file.string());
        const auto& generated = test::allConfigurationTables()[n].terms;  // term records
        ASSERT_EQ(published.terms.size(), generated.size()) << "f" << n;
        EXPECT_TRUE(published.warnings.empty());
        for (std::size_t i = 0; i < generated.size(); ++i) {
            const auto& record = generated[i];
            EXPECT_EQ(record.label, published.terms[i].label) << "f" << n << " term " << i + 1;
            EXPECT_EQ(record.seniority, published.terms[i].seniority) << record.label;
            EXPECT_EQ(record.r7Value, published.terms[i].r7Value) << record.label;
            EXPECT_EQ(record.g2Value, published.terms[i].g2Value) << record.label;
        }
    }
    ASSERT_EQ(test::allConfigurationTables()[14].terms.size(), 1u);
    EXPECT_EQ(test::allConfigurationTables()[14].terms[0].label, "1S");
}

TEST(TermGenerator, ParentageRowsAreOrthonormal) {
    // sum over parents of cfp(psi) cfp(psi') = delta for terms of equal S and L.
    for (int n = 1; n <= 7; ++n) {
        const auto& c = generatedConfigurations()[n];
        const Eigen::MatrixXd overlap = c.cfp * c.cfp.transpose();
        for (int i = 0; i < overlap.rows(); ++i) {
            EXPECT_NEAR(overlap(i, i), 1.0, 1e-12) << "f" << n << " " << c.terms[i].label;
            for (int j = 0; j < i; ++j) {
                if (c.terms[i].twiceS != c.terms[j].twiceS || c.terms[i].L != c.terms[j].L) continue;
                EXPECT_NEAR(overlap(i, j), 0.0, 1e-12) << c.terms[i].label << c.terms[j].label;
            }
        }
    }
}

TEST(TermGenerator, PublishedParentageMagnitudesOfF3) {
    // Nielson & Koster 1963: f3 4I <- 3F squared 2/9, <- 3H 7/9;
    // 4S <- 3F 1; 2F1 (v = 1) <- 1S squared 2/7.
    const auto& f3 = generatedConfigurations()[3];
    const auto& f2 = generatedConfigurations()[2];
    auto square = [&](const char* term, const char* parent) {
        const double value = f3.cfp(indexOfLabel(f3, term), indexOfLabel(f2, parent));
        return value * value;
    };
    EXPECT_NEAR(square("4I", "3F"), 2.0 / 9.0, 1e-14);
    EXPECT_NEAR(square("4I", "3H"), 7.0 / 9.0, 1e-14);
    EXPECT_NEAR(square("4S", "3F"), 1.0, 1e-14);
    EXPECT_NEAR(square("2F1", "1S"), 2.0 / 7.0, 1e-14);
}

TEST(TermGenerator, PhaseRuleMakesTheFirstCoefficientPositive) {
    for (int n = 1; n <= 7; ++n) {
        const auto& c = generatedConfigurations()[n];
        for (int i = 0; i < c.cfp.rows(); ++i) {
            int j = 0;
            while (j < c.cfp.cols() && c.cfp(i, j) == 0.0) ++j;
            ASSERT_LT(j, c.cfp.cols());
            EXPECT_GT(c.cfp(i, j), 0.0) << "f" << n << " " << c.terms[i].label;
        }
    }
}

TEST(TermGenerator, PairRuleLeavesTheSecondStateWithoutTheFirstParent) {
    // f5 2F6/2F7 (v 5, W 221, U 31) is one of the repeated pairs.
    const auto& f5 = generatedConfigurations()[5];
    const int a = indexOfLabel(f5, "2F6");
    const int b = indexOfLabel(f5, "2F7");
    int j = 0;
    while (f5.cfp(a, j) == 0.0 && f5.cfp(b, j) == 0.0) ++j;
    EXPECT_GT(f5.cfp(a, j), 0.0);
    EXPECT_EQ(f5.cfp(b, j), 0.0);
}

}  // namespace
}  // namespace orvane
