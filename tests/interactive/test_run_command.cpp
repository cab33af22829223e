// `orvane run` and `orvane batch`: result files beside the parameter file,
// the progress lines and "Work completed.", exit codes, a missing batch row
// reported while the next row runs.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "engine/parameter_file.hpp"
#include "tests/interactive/orvane_command_runner.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

std::filesystem::path tableDirectory() {
    const auto path = std::filesystem::path(ORVANE_BINARY_DIR) / "test-scratch" / "engine-tables";
    std::filesystem::create_directories(path);
    return path;
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
                                        tableDirectory().string() + "'");
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
                                        tableDirectory().string() + "'");
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
