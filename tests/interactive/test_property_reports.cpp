// The reports and CSV tables of the property commands on the Pr3+:LaF3
// example, each against its golden file (the CSV headers are the columns other
// programs read). After an intended change of a report, refresh with
//   ORVANE_UPDATE_GOLDEN=1 ./build/tests/test_interactive --gtest_filter='PropertyReports*'
// and review the difference with git diff.
#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <regex>

#include "core/atomic_file.hpp"
#include "tests/interactive/orvane_command_runner.hpp"

namespace orvane {
namespace {

const std::filesystem::path kGoldenDir = std::filesystem::path(ORVANE_SOURCE_DIR) / "tests" / "interactive" / "golden";

void expectGolden(const std::string& produced, const std::string& name) {
    const auto golden = kGoldenDir / name;
    if (std::getenv("ORVANE_UPDATE_GOLDEN")) writeFileAtomically(golden, produced);
    ASSERT_TRUE(std::filesystem::exists(golden)) << golden << " is missing; see the top of this file";
    EXPECT_EQ(produced, test::slurp(golden)) << name << " differs from its golden file";
}

TEST(PropertyReports, PraseodymiumExampleMatchesGoldenFiles) {
    const auto dir = test::scratchDirectory("cli_property_reports");
    const std::string tables = " --tables '" + test::commandTableDirectory().string() + "'";
    // A first run generates missing tables, so that no report below logs it.
    ASSERT_EQ(test::runOrvane("states examples/Pr3plus-LaF3.par --state 1" + tables).exitCode, 0);
    const struct {
        const char* command;
        const char* options;
    } cases[] = {{"states", "--state 1"},
                 {"gfactors", ""},
                 {"moments", "--initial 1 --range 1 5"},
                 {"chi", "--temperatures '1 300 50'"},
                 {"intensities", "--initial 1 --omega 1 2 3 --host YAG"}};
    for (const auto& c : cases) {
        const auto csv = dir / (std::string(c.command) + ".csv");
        const auto result = test::runOrvane(std::string(c.command) + " examples/Pr3plus-LaF3.par " + c.options +
                                            " --csv '" + csv.string() + "'" + tables);
        ASSERT_EQ(result.exitCode, 0) << c.command << result.err;
        expectGolden(result.out, std::string(c.command) + ".txt");
        if (std::filesystem::exists(csv)) expectGolden(test::slurp(csv), std::string(c.command) + ".csv");
    }
    const auto toStdout = test::runOrvane("chi examples/Pr3plus-LaF3.par --temperatures '1 10 9' --csv -" + tables);
    EXPECT_EQ(toStdout.out.rfind("T,chi_x,chi_y,chi_z,chi_avg\n1,", 0), 0u) << toStdout.out;
}

// The level table and the "/detailedproperties" section of the example with
// the user-defined notation ("/IRnotation= 3"): G1, G2 renamed by the file
// beside the parameter file, G3, G4 (no line) keep Koster's names.
TEST(PropertyReports, DetailedPropertiesWithUserDefinedIrreps) {
    const auto dir = test::scratchDirectory("cli_detailed_properties");
    std::filesystem::copy_file(test::sourceDirectory() / "examples" / "Pr3plus-LaF3.par", dir / "Pr.par",
                               std::filesystem::copy_options::overwrite_existing);
    writeFileAtomically(dir / "irnotation.txt", "C2v G1 A1\nC2v G2 A2\nD3h G1 A1'\n");
    const auto result = test::runOrvane("run '" + (dir / "Pr.par").string() +
                                        "' --option '/IRnotation= 3 /detailedproperties' --tables '" +
                                        test::commandTableDirectory().string() + "'");
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const std::string gen = test::slurp(dir / "Pr.gen");
    const auto start = gen.find("*No. (State) [Eigen]");
    const auto detailed = gen.find("Detailed properties of the levels");
    ASSERT_TRUE(start != std::string::npos && detailed != std::string::npos && start < detailed);
    auto end = gen.find('\n', gen.find('\n', detailed) + 1) + 1;  // after the two heading lines
    while (end < gen.size() && std::isdigit(static_cast<unsigned char>(gen[end + 3]))) end = gen.find('\n', end) + 1;
    const std::string section = gen.substr(start, end - start);
    EXPECT_TRUE(section.find(" A1 ") != std::string::npos && section.find(" G3 ") != std::string::npos);
    expectGolden(section, "detailed-properties.txt");
}

// orvane fit on the same example and its observed levels: the report (cycle
// times masked) and the fitted parameter file.
TEST(FitReport, PraseodymiumExampleMatchesGoldenFiles) {
    const auto dir = test::scratchDirectory("cli_fit_report");
    const auto fitted = dir / "fitted.par";
    const auto result = test::runOrvane(
        "fit examples/Pr3plus-LaF3.par --observed examples/Pr3plus-LaF3-levels.txt --free "
        "EAVG,F2,F4,F6,ZETA,ALPHA,BETA,GAMMA,M0,P2,B20,B22,B40,B42,B44,B60,B62,B64,B66 --cycles 3 --errors -o '" +
        fitted.string() + "' --tables '" + test::commandTableDirectory().string() + "'");
    ASSERT_EQ(result.exitCode, 0) << result.err;
    std::string report = std::regex_replace(result.out, std::regex("time = [0-9.]+ ms"), "time = ... ms");
    report = std::regex_replace(report, std::regex("Fitted parameters: .*"), "Fitted parameters: fitted.par");
    expectGolden(report, "fit.txt");
    expectGolden(test::slurp(fitted), "fit.par");
}

}  // namespace
}  // namespace orvane
