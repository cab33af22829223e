// End-to-end checks of the `orvane` command: exit codes, where the result is
// printed, and that failures name the file and leave outputs untouched; a
// missing batch row is reported while the next row runs.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "core/atomic_file.hpp"
#include "tests/interactive/orvane_command_runner.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using test::lastLine;
using test::runOrvane;

TEST(OrvaneCommand, CalculatorsPrintTheValueLast) {
    struct Case { const char* arguments; double value; const char* source; };
    const Case cases[] = {
        {"calc 3j 1 1 0 1 -1 0", 0.5773502691896258, "1/sqrt(3)"},
        {"calc 6j 3 3 2 3 3 2", 19.0 / 420.0, "{3 3 2; 3 3 2} = 19/420"},
        {"calc 9j 2 2 2 2 2 2 2 2 2", 41.0 / 2450.0, "{2 2 2; 2 2 2; 2 2 2} = 41/2450"},
        {"calc ck 3 6 3", -1.2773807700532, "<f||C(6)||f> = -10 sqrt(3003)/429"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        const auto result = runOrvane(c.arguments);
        ASSERT_EQ(result.exitCode, 0) << result.err;
        EXPECT_NEAR(std::stod(lastLine(result.out)), c.value, 1e-12) << c.source;
    }
}

TEST(OrvaneCommand, SymmetryFindsTheGroupByEitherSymbolOrNumber) {
    for (const char* name : {"D3h", "-6m2", "26"})
        EXPECT_EQ(runOrvane(std::string("symmetry ") + name).out.rfind("Point group D3h (-6m2)", 0), 0u) << name;
    EXPECT_EQ(runOrvane("symmetry D7").exitCode, 1);
}

TEST(OrvaneCommand, UsageErrorsExitWithTwo) {
    for (const char* arguments : {"calc 3j 1 1", "calc 6j 1 x 1 1 1 1", "no-such-command", ""}) {
        SCOPED_TRACE(arguments);
        EXPECT_EQ(runOrvane(arguments).exitCode, 2);
    }
}

TEST(OrvaneCommand, MalformedParameterFileNamesFileAndLine) {
    const auto dir = test::scratchDirectory("cli_bad_par");
    const auto bad = dir / "bad.par";
    writeFileAtomically(bad,
                        "\"Input parameters for Orvane - Spectroscopic Analysis Package (version #2)\"\n"
                        "\"Er3+\"\n\"x\"\nElectrostatic ineraction parameters  type = 7\n");
    const auto result = runOrvane("par check '" + bad.string() + "'");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.err.find("bad.par:4"), std::string::npos) << result.err;
    EXPECT_EQ(runOrvane("par check '" + (dir / "absent.par").string() + "'").exitCode, 1);
}

TEST(OrvaneCommand, EigenSolvesTheExampleMatrix) {
    const auto result = runOrvane("eigen examples/matrix-hermitian-4.txt");
    ASSERT_EQ(result.exitCode, 0) << result.err;
    // The example's eigenvalues are 1, 3, 4 and 8, printed "##0.0000000".
    for (const char* value : {"1.0000000", "3.0000000", "4.0000000", "8.0000000"})
        EXPECT_NE(result.out.find(value), std::string::npos) << value;
    EXPECT_EQ(runOrvane("eigen examples/no-such-matrix.txt").exitCode, 1);
}

std::filesystem::path copyExample(const std::filesystem::path& dir, const std::string& name) {
    const auto target = dir / name;
    std::filesystem::copy_file(test::sourceDirectory() / "examples" / "Pr3plus-LaF3.par", target,
                               std::filesystem::copy_options::overwrite_existing);
    return target;
}

TEST(RunCommand, BadInputExitsWithOneAndWritesNothing) {
    const auto dir = test::scratchDirectory("cli_run_bad");
    std::ofstream(dir / "bad.par") << "title only\n";
    const auto result = test::runOrvane("run '" + (dir / "bad.par").string() + "' --tables '" +
                                        test::commandTableDirectory().string() + "'");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_NE(result.err.find("bad.par"), std::string::npos) << result.err;
    EXPECT_FALSE(std::filesystem::exists(dir / "bad.gen"));
    EXPECT_EQ(test::runOrvane("run '" + (dir / "bad.par").string() + "' --min-component 1.5").exitCode, 1);
    EXPECT_EQ(test::runOrvane("run").exitCode, 2);
}

TEST(BatchCommand, MissingRowIsReportedAndTheNextRuns) {
    const auto dir = test::scratchDirectory("cli_batch");
    copyExample(dir, "first.par");
    copyExample(dir, "second.par");
    std::ofstream(dir / "jobs.txt") << "first.par\n\n# a comment\nabsent.par\n" << (dir / "second.par").string() << "\n";
    const auto result = test::runOrvane("batch '" + (dir / "jobs.txt").string() + "' --free-ion --tables '" +
                                        test::commandTableDirectory().string() + "'");
    EXPECT_EQ(result.exitCode, 1);  // one row failed
    EXPECT_NE(result.out.find("Can't find input parameters file from " + (dir / "absent.par").string()),
              std::string::npos)
        << result.out;
    EXPECT_NE(result.out.find("Calculations of " + (dir / "second.par").string() + " started on "), std::string::npos);
    EXPECT_NE(result.out.find(" completed on "), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(dir / "first_fi.eng"));
    EXPECT_TRUE(std::filesystem::exists(dir / "second_fi.eng"));
    EXPECT_FALSE(std::filesystem::exists(dir / "absent_fi.gen"));
}

}  // namespace
}  // namespace orvane
