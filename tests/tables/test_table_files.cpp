// Files of the table directory: state labels, coefficients of fractional
// parentage, reduced-matrix tables, case-blind lookup, on-demand generation,
// the delivered data and the published-table reader.
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <gtest/gtest.h>

#include "core/asker.hpp"
#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "tables/fractional_parentage.hpp"
#include "tables/interactive_generators.hpp"
#include "tables/published_tables.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/table_directory.hpp"
#include "tests/support/reference_data.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

using test::allConfigurationTables;
using test::scratchDirectory;

TEST(StateLabelFiles, CasimirValuesOfTheLabelTables) {
    // Stored values of the label tables: W -> 5 G(R7), U -> 12 G(G2) (Racah 1949).
    const std::pair<const char*, int> r7[] = {{"000", 0}, {"0", 0}, {"100", 3}, {"110", 5}, {"111", 6}, {"200", 7},
                                              {"210", 9}, {"211", 10}, {"220", 12}, {"221", 13}, {"222", 15}};
    for (const auto& [text, value] : r7) EXPECT_EQ(CasimirR7Value(text), value) << text;
    const std::pair<const char*, int> g2[] = {{"00", 0}, {"0", 0}, {"10", 6}, {"11", 12}, {"20", 14}, {"21", 21},
                                              {"22", 30}, {"30", 24}, {"31", 32}, {"40", 36}};
    for (const auto& [text, value] : g2) EXPECT_EQ(CasimirG2Value(text), value) << text;
    std::string warning;
    EXPECT_EQ(CasimirG2Value("41", &warning), 0);
    EXPECT_EQ(warning, "Invalid Casimir's operator: 41");
    EXPECT_EQ(CasimirR7Value("300", &warning), 0);
    EXPECT_EQ(warning, "Invalid Casimir's R7 operator: 300");
}

TEST(StateLabelFiles, ReadingFormsCommentsAndWarnings) {
    const std::string text =
        "title line\n"
        "Comment lines starting with letters are skipped\n"
        "2F1  1 100 10\n"
        " \n"
        "# heading\n"
        "2F10 5 221 41\n";
    const auto parsed = parseStateLabels(text, StateLabelForm::Standard, true, "f.lab");
    ASSERT_EQ(parsed.terms.size(), 2u);
    EXPECT_EQ(parsed.terms[0].label, "2F1");
    EXPECT_EQ(parsed.terms[0].seniority, 1);
    EXPECT_EQ(parsed.terms[0].r7Value, 3);
    EXPECT_EQ(parsed.terms[1].label, "2F10");
    EXPECT_EQ(parsed.terms[1].g2Value, 0);
    ASSERT_EQ(parsed.warnings.size(), 1u);
    EXPECT_EQ(parsed.warnings[0], "Invalid Casimir's operator: 41");
    // Second form: label from the second field; the title is kept when not skipped.
    const auto second = parseStateLabels("1 3P\n2 3F extra\n", StateLabelForm::SecondField, false, "g.lab");
    ASSERT_EQ(second.terms.size(), 2u);
    EXPECT_EQ(second.terms[1].label, "3F");
}

TEST(StateLabelFiles, MalformedLinesNameFileAndLine) {
    try {
        parseStateLabels("title\n3P 2 110 11\n3F x 110 10\n", StateLabelForm::Standard, true, "bad.lab");
        FAIL() << "no error";
    } catch (const UserError& error) {
        EXPECT_EQ(error.describe().substr(0, 10), "bad.lab:3:");
    }
    EXPECT_THROW(parseStateLabels("title\n3P 2 110\n", StateLabelForm::Standard, true, "short.lab"), UserError);
}

TEST(StateLabelFiles, EmptyFileLogsZeroLabelsAndMissingFileAsksForAnother) {
    const auto dir = scratchDirectory("tables_state_labels");
    writeFileAtomically(dir / "empty.lab", "title only\n");
    writeFileAtomically(dir / "other.lab", "title\n2F 1 100 10\n");
    MemoryLogBook log;
    ScriptedAsker asker({(dir / "other.lab").string()});
    EXPECT_TRUE(ReadStateLabels(dir / "empty.lab", StateLabelForm::Standard, log, asker).empty());
    EXPECT_TRUE(log.contains("ZERO State LABELS!!!"));
    const auto terms = ReadStateLabels(dir / "missing.lab", StateLabelForm::Standard, log, asker);
    ASSERT_EQ(terms.size(), 1u);
    ASSERT_EQ(asker.questions().size(), 1u);
    EXPECT_EQ(asker.questions()[0].prompt, "get State labels from file ");
    EXPECT_EQ(asker.questions()[0].title, "Input Dialog Box");
}

TEST(ParentageFiles, WrittenFileReadsBackExactly) {
    const auto& f3 = allConfigurationTables()[3];
    const auto text = fractionalParentageFileText("title", f3.cfp);
    const auto table = parseFractionalParentage(text, "f3cfp.val");
    EXPECT_EQ(table.title, "title");
    EXPECT_EQ(table.terms, 17);
    EXPECT_EQ(table.parents, 7);
    EXPECT_LT((table.values - f3.cfp).cwiseAbs().maxCoeff(), 1e-14);
    // Print zones: the second number starts in column 15, the third in column 29.
    const auto secondLine = text.substr(text.find('\n') + 1, text.find('\n', text.find('\n') + 1) - text.find('\n') - 1);
    EXPECT_EQ(secondLine.substr(0, 2), " 1");
    EXPECT_EQ(secondLine[14], ' ');
    EXPECT_NE(secondLine[15], ' ');
    // Comma-separated free format reads the same.
    EXPECT_DOUBLE_EQ(parseFractionalParentage("t\n1, 1, -.5\n", "c").values(0, 0), -0.5);
}

TEST(ParentageFiles, BadContentNamesFileAndLine) {
    struct Case { const char* text; const char* where; };
    const Case cases[] = {{"t\n1 1 .5\n2 x .5\n", "p.val:3:"},     // not a number
                          {"t\n121 1 .5\n", "p.val:2:"},          // index above 120
                          {"t\n1 1 nan\n", "p.val:2:"},           // not finite
                          {"t\n1 1 .5\n2 1\n", "p.val:3:"}};      // incomplete triple
    for (const auto& c : cases) {
        try {
            parseFractionalParentage(c.text, "p.val");
            ADD_FAILURE() << "no error for " << c.text;
        } catch (const UserError& error) {
            EXPECT_EQ(error.describe().substr(0, 8), c.where) << error.describe();
        }
    }
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
    EXPECT_EQ(tableFileName(TableOperator::V1, 1), "rmv11.val");
    EXPECT_EQ(configurationFileName(12, tableFileName(TableOperator::F, 6)), "f12rmf6.val");
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

TEST(TableDirectory, ReadOnlyDirectoryFallsBackToTheUserCache) {
    const auto root = scratchDirectory("tables_read_only");
    const auto readOnly = root / "rme";
    std::filesystem::create_directories(readOnly);
    std::filesystem::permissions(readOnly, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
    if (directoryIsWritable(readOnly)) {
        std::filesystem::permissions(readOnly, std::filesystem::perms::owner_all);
        GTEST_SKIP() << "running with privileges that ignore directory permissions";
    }
    const char* previous = std::getenv("XDG_CACHE_HOME");
    const std::string saved = previous ? previous : "";
    setenv("XDG_CACHE_HOME", (root / "cache").c_str(), 1);
    MemoryLogBook log;
    const auto used = ensureConfigurationTables(2, readOnly, log);
    EXPECT_EQ(used, root / "cache" / "orvane" / "rme");
    EXPECT_TRUE(findCaseBlind(used, "f2rmf2.val"));
    if (previous) setenv("XDG_CACHE_HOME", saved.c_str(), 1); else unsetenv("XDG_CACHE_HOME");
    std::filesystem::permissions(readOnly, std::filesystem::perms::owner_all);
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
    EXPECT_TRUE(log.contains("Construct the Coulomb reduced matrix f(4)"));
    EXPECT_TRUE(log.contains("Trace^2 for e2 =  48648600"));  // physics notes 5.4, f4
}

TEST(InteractiveGenerators, ComplementaryParentageFlow) {
    const auto dir = scratchDirectory("tables_interactive_cfp");
    MemoryLogBook log;
    writeDeliveredTables(test::generatedConfigurations(), dir, log);
    // 5 electrons: only the "already exist" line; then 2) another number: 14; then stop.
    ScriptedAsker asker({"f", "15", "5", "2", "14", "", "f14.out", "3"});
    runComplementaryParentageGenerator(asker, log, dir);
    EXPECT_TRUE(log.contains("Wrong no. of e- !!!"));
    EXPECT_TRUE(log.contains("Coeffs. of Fractional Parentage for less than half-filled shell already exist  !!!"));
    EXPECT_TRUE(log.contains(" Build Coeffs. of Fractional Parentage for N= 14"));
    const auto table = parseFractionalParentage(readTextFile(dir / "f14.out"), "f14.out");
    ASSERT_EQ(table.values.rows(), 1);
    EXPECT_NEAR(std::abs(table.values(0, 0)), 1.0, 1e-14);  // 1S <- 2F, magnitude 1
    EXPECT_EQ(asker.questions().back().prompt, "Choose 1) another configuration, 2) Another no. of electron, 3)stop >");
}

TEST(InteractiveGenerators, ReducedMatrixFlowRejectsBadAnswers) {
    const auto dir = scratchDirectory("tables_interactive_rme");
    MemoryLogBook log;
    writeDeliveredTables(test::generatedConfigurations(), dir, log);
    ScriptedAsker asker({"f", "2", "7", "1", "3", "2", "", "3"});
    runReducedMatrixGenerator(asker, log, dir);
    EXPECT_TRUE(log.contains("INvalid operator no. !!!"));
    EXPECT_TRUE(log.contains("invalid Rank k  !!!"));
    EXPECT_TRUE(log.contains("No. of states =  7"));
    const auto stored = parseReducedTable(readTextFile(dir / "f2rmu2.val"), 7, "f2rmu2.val");
    const auto& f2 = allConfigurationTables()[2];
    EXPECT_NEAR(stored(1, 1), f2.unitTensor[2](1, 1), 1e-14);  // 3F 3F: -1/3
}

TEST(PublishedReader, TouchingNumbersAndDosEndMarks) {
    // A negative value may touch the one before it; Ctrl-Z may close the file.
    // (f5cross row 4F4 2F6, published reference README section 1)
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
