// The magnetic and three-body table files written by the table builder: log
// lines, record layout, the conjugate configurations and a lost/odd input.
#include <gtest/gtest.h>

#include <stdexcept>

#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "tables/magnetic_comparison.hpp"
#include "tables/magnetic_tables.hpp"
#include "tables/three_body_tables.hpp"
#include "tests/support/reference_data.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

const std::vector<ConfigurationTables>& lower() {
    static const std::vector<ConfigurationTables> tables = [] {
        const auto& all = test::allConfigurationTables();
        return std::vector<ConfigurationTables>(all.begin(), all.begin() + 8);
    }();
    return tables;
}

std::string bodyOf(const std::string& text) { return text.substr(text.find('\n') + 1); }

TEST(MagneticTables, F2FilesHoldThePublishedSeedRecords) {
    const auto directory = test::scratchDirectory("magnetic_files_f2");
    MemoryLogBook log;
    const auto written = writeManyBodyTables({2}, lower(), directory, log);
    EXPECT_EQ(written.size(), 12u);  // meti, rmtic; five magnetic tables and five listings
    const std::string soo = readTextFile(directory / "f2mesooci.val");
    // term 1 = 3P: f2 "3P 3P" M0 = -30.5, M2 = -72.5 (Judd, Crosswhite & Crosswhite 1968, Table I)
    EXPECT_NE(soo.find("\n1 1   -30.5  -72.5  "), std::string::npos) << soo;
    const std::string ss = readTextFile(directory / "f2mess.val");
    EXPECT_NE(ss.find("\n1 1   -12  -24  "), std::string::npos) << ss;  // JCC 1968 spin-spin 3P-3P
    // spin-spin has no 3P-1S element (rank 2 in spin needs S + S' >= 2); term 4 = 1S
    EXPECT_EQ(ss.find("\n1 4 "), std::string::npos);
    // Tr(mss0^2) = 224 over the 91 states of f2 (from the Judd, Crosswhite & Crosswhite 1968 elements)
    EXPECT_NE(readTextFile(directory / "f2memkpk.txt").find("  224.000000"), std::string::npos);
}

TEST(MagneticTables, ConjugateConfigurationsReuseOrNegateTheLowerShell) {
    const auto directory = test::scratchDirectory("magnetic_files_conjugate");
    MemoryLogBook log;
    writeManyBodyTables({3, 11, 13}, lower(), directory, log);
    // magnetic: identical records; three-body (tic form): every value negated
    EXPECT_EQ(bodyOf(readTextFile(directory / "f3mesooci.val")), bodyOf(readTextFile(directory / "f11mesooci.val")));
    EXPECT_EQ(bodyOf(readTextFile(directory / "f3mess.val")), bodyOf(readTextFile(directory / "f11mess.val")));
    const std::string tic3 = readTextFile(directory / "f3rmtic.val");
    const std::string tic11 = readTextFile(directory / "f11rmtic.val");
    EXPECT_NE(tic3.find("\n1 1     0   3.51324"), std::string::npos);   // t3(4S) of f3
    EXPECT_NE(tic11.find("\n1 1     0  -3.51324"), std::string::npos);  // of f11
    // f13, f14 hold no two- or three-body elements: title lines only
    EXPECT_EQ(bodyOf(readTextFile(directory / "f13meti.val")), "");
    EXPECT_EQ(bodyOf(readTextFile(directory / "f13mess.val")), "");
}

}  // namespace
}  // namespace orvane

namespace orvane {
namespace {

// A synthetic published f3 table made from the generated operators (identity
// transformation), then altered the ways the comparison must tell apart.
struct SyntheticF3 {
    ConfigurationTables tables = test::allConfigurationTables()[3];
    ThreeBodyOperators orthogonal = threeBodyOperatorsOfAll(lower())[3];
    Eigen::MatrixXd e3 = racahE3(test::allConfigurationTables()[3]);
    Eigen::MatrixXd identity = Eigen::MatrixXd::Identity(17, 17);
    PublishedTables published;
    SyntheticF3() {
        published.hasThreeBody = true;
        const auto ordinary = ordinaryThreeBodyOperators(3, orthogonal, e3);
        for (std::size_t c = 0; c < 6; ++c) published.threeBody[c] = ordinary[c].triangularView<Eigen::Upper>();
    }
    int at(const std::string& label) const {
        for (std::size_t i = 0; i < tables.terms.size(); ++i)
            if (tables.terms[i].label == label) return static_cast<int>(i);
        return -1;
    }
    ManyBodyComparison compare() const {
        return compareThreeBodyColumns(tables, published, identity, orthogonal, e3);
    }
};

TEST(ThreeBodyComparison, TellsMismatchesPublishedErrorsAndPhasesApart) {
    {
        const SyntheticF3 same;
        const auto c = same.compare();
        EXPECT_TRUE(c.mismatches.empty());
        EXPECT_TRUE(c.publishedErrors.empty());
        EXPECT_GT(c.elementsCompared, 80);
    }
    {
        // a wrong sign of a whole operator (a generator fault): the published column stays
        // a consistent three-body operator, so every differing element is a mismatch
        SyntheticF3 s;
        s.published.threeBody[1] *= -1.0;
        const auto c = s.compare();
        EXPECT_GE(c.mismatches.size(), 10u);
        EXPECT_TRUE(c.publishedErrors.empty());
    }
    {
        // one misprinted diagonal element (as the published f3 T7 of 2L): a published error
        SyntheticF3 s;
        s.published.threeBody[4](s.at("2L"), s.at("2L")) = -0.026053;
        const auto c = s.compare();
        EXPECT_TRUE(c.mismatches.empty());
        ASSERT_EQ(c.publishedErrors.size(), 1u);
        EXPECT_EQ(c.publishedErrors[0].row, "2L");
        EXPECT_NEAR(c.publishedErrors[0].generated, -0.026503, 1e-6);  // Hansen et al. 1996, f3 t7(2L)
    }
    {
        // the opposite phase of one term: reported as a phase, not as an error
        SyntheticF3 s;
        s.published.threeBody[2](s.at("2D1"), s.at("2D2")) *= -1.0;  // t4 2D1-2D2
        s.published.threeBody[3](s.at("2D1"), s.at("2D2")) *= -1.0;  // t6 2D1-2D2
        const auto c = s.compare();
        EXPECT_TRUE(c.mismatches.empty());
        EXPECT_TRUE(c.publishedErrors.empty());
        ASSERT_EQ(c.phaseNotes.size(), 2u);
    }
}

}  // namespace
}  // namespace orvane
