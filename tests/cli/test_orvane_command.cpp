// End-to-end checks of the `orvane` command: exit codes, where the result is
// printed, and that failures name the file and leave outputs untouched.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

#include "core/atomic_file.hpp"
#include "core/version.hpp"
#include "tests/cli/orvane_command_runner.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using test::CommandResult;
using test::lastLine;
using test::runOrvane;
using test::slurp;

TEST(OrvaneCommand, CalculatorsPrintTheValueLast) {
    struct Case { const char* arguments; double value; const char* source; };
    const Case cases[] = {
        {"calc 3j 1 1 0 1 -1 0", 0.5773502691896258, "1/sqrt(3)"},
        {"calc 6j 3 3 2 3 3 2", 19.0 / 420.0, "{3 3 2; 3 3 2} = 19/420"},
        {"calc 9j 2 2 2 2 2 2 2 2 2", 41.0 / 2450.0, "{2 2 2; 2 2 2; 2 2 2} = 41/2450"},
        {"calc 9j 1 1 0 0 1 1 1 0 1", 1.0 / 9.0, "only x = 0 admissible: 1/9"},
        {"calc ck 3 6 3", -1.2773807700532, "<f||C(6)||f> = -10 sqrt(3003)/429"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        const auto result = runOrvane(c.arguments);
        ASSERT_EQ(result.exitCode, 0) << result.err;
        EXPECT_NEAR(std::stod(lastLine(result.out)), c.value, 1e-12) << c.source;
    }
}

TEST(OrvaneCommand, UsageErrorsExitWithTwo) {
    for (const char* arguments : {"calc 3j 1 1", "calc 6j 1 x 1 1 1 1", "no-such-command", ""}) {
        SCOPED_TRACE(arguments);
        EXPECT_EQ(runOrvane(arguments).exitCode, 2);
    }
    const auto help = runOrvane("--help");
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("calc"), std::string::npos);
    const auto version = runOrvane("--version");
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out, "orvane " + std::string(orvaneVersion()) + "\n");
}

TEST(OrvaneCommand, ParameterCheckReadsEveryExample) {
    for (const char* file : {"examples/Pr3plus-LaF3.par", "examples/Nd3plus-LaF3.par",
                             "examples/Er3plus-LaF3.par"}) {
        SCOPED_TRACE(file);
        const auto result = runOrvane(std::string("par check ") + file);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_NE(result.out.find("Crystal field"), std::string::npos);
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
    EXPECT_NE(result.err.find("Incorrect Slater paramter type!!"), std::string::npos);
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

TEST(OrvaneCommand, InvariantsOfPrLaF3) {
    // s_k of the Carnall et al. (1989) Pr3+:LaF3 set, physics reference 9.5:
    // s2 = 123.551, s4 = 431.416, s6 = 529.268.
    const auto result = runOrvane("invariants examples/Pr3plus-LaF3.par");
    ASSERT_EQ(result.exitCode, 0) << result.err;
    for (const char* value : {"123.551", "431.416", "529.268"})
        EXPECT_NE(result.out.find(value), std::string::npos) << value;
}

TEST(OrvaneCommand, StevensRoundTripThroughFiles) {
    const auto dir = test::scratchDirectory("cli_stevens");
    const auto stevens = dir / "Pr-stevens.par";
    const auto back = dir / "Pr-back.par";
    ASSERT_EQ(runOrvane("convert wybourne2stevens examples/Pr3plus-LaF3.par -o '" +
                        stevens.string() + "'")
                  .exitCode,
              0);
    EXPECT_NE(slurp(stevens).find("Stevens"), std::string::npos);
    ASSERT_EQ(runOrvane("convert stevens2wybourne '" + stevens.string() + "' -o '" + back.string() +
                        "'")
                  .exitCode,
              0);
    // The invariants survive the round trip to the printed digits.
    const auto result = runOrvane("invariants '" + back.string() + "'");
    EXPECT_NE(result.out.find("123.55"), std::string::npos) << result.out;
    // Converting the wrong way is refused and writes nothing.
    const auto refused = dir / "refused.par";
    EXPECT_NE(runOrvane("convert stevens2wybourne examples/Pr3plus-LaF3.par -o '" +
                        refused.string() + "'")
                  .exitCode,
              0);
    EXPECT_FALSE(std::filesystem::exists(refused));
}

}  // namespace
}  // namespace orvane
