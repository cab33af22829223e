// Files of the table directory: coefficients of fractional
// parentage, reduced-matrix tables, case-blind lookup, on-demand generation,
// the delivered data and the published-table reader.
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <gtest/gtest.h>

#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "tables/fractional_parentage.hpp"
#include "tables/published_tables.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/table_directory.hpp"
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

TEST(TableDirectory, FoundFromTheEnvironmentThenBesideTheProgram) {
    const auto root = scratchDirectory("tables_lookup");
    std::filesystem::create_directories(root / "src" / "build" / "tests");
    writeFileAtomically(root / "src" / "CMakeLists.txt", "project(x)\n");
    const auto candidates = tableDirectoryCandidates(root / "src" / "build" / "tests");
    const std::vector<std::filesystem::path> expected = {root / "src" / "build" / "share" / "orvane" / "rme",
                                                         root / "src" / "build" / "data" / "rme",
                                                         root / "src" / "data" / "rme"};
    ASSERT_GE(candidates.size(), expected.size());
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), candidates.begin()));
    EXPECT_TRUE(std::filesystem::exists(defaultTableDirectory() / "f2state.lab"));  // this build's data/rme
    const char* previous = std::getenv("ORVANE_DATA_DIR");
    const std::string saved = previous ? previous : "";
    setenv("ORVANE_DATA_DIR", (root / "tables").c_str(), 1);
    EXPECT_EQ(defaultTableDirectory(), root / "tables");
    if (previous) setenv("ORVANE_DATA_DIR", saved.c_str(), 1); else unsetenv("ORVANE_DATA_DIR");
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
    EXPECT_TRUE(log.contains("Trace^2 for e2 =  48648600"));  // f4, Racah's e2 normalisation (Racah 1949)
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

}  // namespace
}  // namespace orvane
