// Files of the table directory: coefficients of fractional parentage,
// reduced-matrix and magnetic tables, case-blind lookup, on-demand generation,
// the delivered data, the published-table reader and the comparison of
// three-body columns with a published table.
#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "tables/fractional_parentage.hpp"
#include "tables/magnetic_comparison.hpp"
#include "tables/magnetic_tables.hpp"
#include "tables/published_tables.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/table_directory.hpp"
#include "tables/three_body_tables.hpp"
#include "tests/support/reference_data.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

using test::allConfigurationTables;
using test::scratchDirectory;

TEST(ParentageFiles, WrittenFileReadsBackExactly) {
    const auto& f3 = allConfigurationTables()[3];
    const auto text = fractionalParentageFileText("title", f3.cfp);
    const auto table = parseFractionalParentage(text, "f3cfp.val");
    EXPECT_EQ(table.title, "title");
    EXPECT_EQ(table.terms, 17);
    EXPECT_EQ(table.parents, 7);
    EXPECT_LT((table.values - f3.cfp).cwiseAbs().maxCoeff(), 1e-14);
    // Comma-separated free format reads the same.
    EXPECT_DOUBLE_EQ(parseFractionalParentage("t\n1, 1, -.5\n", "c").values(0, 0), -0.5);
}

TEST(DeliveredData, CommittedFilesEqualTheGenerator) {
    // data/rme/fNstate.lab and fNcfp.val (n = 1..7) equal a fresh generation
    // (labels exactly, coefficients to 1e-13), and generation is byte-identical twice.
    const auto dir = test::sourceDirectory() / "data" / "rme";
    for (int n = 1; n <= 7; ++n) {
        const auto& generated = allConfigurationTables()[n];
        const auto labels = parseStateLabels(readTextFile(dir / configurationFileName(n, "state.lab")),
                                             StateLabelForm::Standard, true, "state.lab");
        ASSERT_EQ(labels.terms.size(), generated.terms.size()) << "f" << n;
        for (std::size_t i = 0; i < labels.terms.size(); ++i) {
            EXPECT_EQ(labels.terms[i].label, generated.terms[i].label);
            EXPECT_EQ(labels.terms[i].r7Value, generated.terms[i].r7Value);
            EXPECT_EQ(labels.terms[i].g2Value, generated.terms[i].g2Value);
        }
        const auto cfp = parseFractionalParentage(readTextFile(dir / configurationFileName(n, "cfp.val")), "cfp.val");
        ASSERT_EQ(cfp.values.rows(), generated.cfp.rows());
        EXPECT_LT((cfp.values - generated.cfp).cwiseAbs().maxCoeff(), 1e-13) << "f" << n;
        EXPECT_EQ(fractionalParentageFileText(parentageTitle(n), generated.cfp),
                  fractionalParentageFileText(parentageTitle(n), computeConfigurationTables(n, test::generatedConfigurations()).cfp));
    }
}

TEST(ReducedTableFiles, StoredHalfRoundTripsAndSkipsTinyValues) {
    const auto& f2 = allConfigurationTables()[2];
    const auto text = reducedTableFileText(reducedTableTitle("V(11)", 2), f2.doubleTensor[1]);
    EXPECT_NE(text.find(" MATRIX "), std::string::npos);
    const auto stored = parseReducedTable(text, 7, "rmv11.val");
    const auto full = completeFromStoredHalf(stored, spinOrbitOf(f2.terms));
    EXPECT_LT((full - f2.doubleTensor[1]).cwiseAbs().maxCoeff(), 1e-14);
    Eigen::MatrixXd tiny = Eigen::MatrixXd::Zero(2, 2);
    tiny(0, 1) = 5e-14;
    tiny(1, 1) = 2.0;
    EXPECT_EQ(reducedTableFileText("t", tiny), "t\n 2  2   2\n");
    EXPECT_THROW(parseReducedTable("t\n1 9  .5\n", 7, "x"), UserError);
    EXPECT_THROW(parseReducedTable("t\n1 2\n", 7, "x"), UserError);
}

TEST(TableDirectory, NamesResolveCaseBlind) {
    const auto dir = scratchDirectory("tables_case_blind");
    writeFileAtomically(dir / "F3RMU2.VAL", "t\n");
    const auto found = findCaseBlind(dir, "f3rmu2.val");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->filename().string(), "F3RMU2.VAL");
    EXPECT_FALSE(findCaseBlind(dir, "f3rmu4.val"));
}

TEST(TableDirectory, MissingTablesAreGeneratedOnceAndReused) {
    const auto dir = scratchDirectory("tables_on_demand");
    MemoryLogBook log;
    EXPECT_EQ(ensureConfigurationTables(9, dir, log), dir);
    for (const auto& name : configurationTableNames(9)) EXPECT_TRUE(findCaseBlind(dir, name)) << name;
    const auto before = readTextFile(dir / "f9rmu4.val");
    MemoryLogBook second;
    ensureConfigurationTables(9, dir, second);
    EXPECT_TRUE(second.lines().empty());  // nothing regenerated
    EXPECT_EQ(readTextFile(dir / "f9rmu4.val"), before);
}

TEST(TableDirectory, CoulombTableBuiltFromTheStoredUnitTensors) {
    // BuildCoulombTable reads f4rmu<k>.val (stored half), completes it with the
    // transposition phase and must give the f(k) computed in memory.
    const auto dir = scratchDirectory("tables_coulomb_files");
    MemoryLogBook log;
    const auto& f4 = allConfigurationTables()[4];
    writeConfigurationTables(f4, dir, log);
    const auto path = BuildCoulombTable(4, 4, dir, log);
    const auto stored = parseReducedTable(readTextFile(path), static_cast<int>(f4.terms.size()), path.string());
    const auto full = completeFromStoredHalf(stored, spinOrbitOf(f4.terms));
    EXPECT_LT((full - f4.coulomb[1]).cwiseAbs().maxCoeff(), 1e-12);
}

TEST(PublishedReader, TouchingNumbersAndDosEndMarks) {
    // A negative value may touch the one before it; Ctrl-Z may close the file.
    // (as in the published f5 tables of H. Crosswhite, row 4F4 2F6)
    const auto touching = numbersInLine("   -18.155838-104.889195-128.249482");
    ASSERT_EQ(touching.size(), 3u);
    EXPECT_DOUBLE_EQ(touching[1], -104.889195);
    const std::string text =
        "  F 1  1 STATES\n 2F\n  CFP FOR F 0   1 STATES  1 PARENTS\n   1 2S    1\n   1-1.000000000\nEND\n"
        "  U(K)  FOR F 1   1 STATES\n2F  2F     1.000000  1.000000  1.000000  1.000000  1.000000  1.000000-1.000000\nEND\n\x1a\x1a";
    const auto tables = parsePublishedTables(text, "f1cross");
    ASSERT_EQ(tables.labels.size(), 1u);
    EXPECT_DOUBLE_EQ(tables.cfp(0, 0), -1.0);
    EXPECT_DOUBLE_EQ(tables.unitTensor[6](0, 0), -1.0);
    EXPECT_THROW(parsePublishedTables("  F 1  1 STATES\n 2F\n  U(K)  FOR F 1\n2F 2F 1.0\nEND\n", "bad"), UserError);
}

const std::vector<ConfigurationTables>& lower() {
    static const std::vector<ConfigurationTables> tables = [] {
        const auto& all = test::allConfigurationTables();
        return std::vector<ConfigurationTables>(all.begin(), all.begin() + 8);
    }();
    return tables;
}

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
}

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
    int at(const std::string& label) const { return test::termIndex(tables, label); }
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
