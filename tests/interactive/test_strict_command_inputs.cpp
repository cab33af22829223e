// Inputs that once gave a silently wrong result with exit code 0, or waited
// for ever on standard input: each must end the command with a non-zero exit
// and a message naming the problem. Standard input is a FIFO open for reading
// and writing (a read blocks for ever; the timeout then gives exit 124), and
// the table cache lies under /proc, where not even root can create a folder.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <sys/stat.h>

#include "core/atomic_file.hpp"
#include "tests/interactive/orvane_command_runner.hpp"

namespace orvane {
namespace {

struct RefusedInput {
    const char* arguments;  // "{dir}" stands for the scratch folder
    int exitCode;
    const char* message;  // part of the output (standard error, or standard output on success)
};

// The scratch folder of the running test (ctest runs the tests of this file
// in parallel) with a copy of the Pr example, variants of it and small inputs.
std::string preparedFolder() {
    const auto dir = test::scratchDirectory(std::string("strict_inputs_") +
                                            ::testing::UnitTest::GetInstance()->current_test_info()->name());
    const std::string par = readTextFile(test::sourceDirectory() / "examples" / "Pr3plus-LaF3.par");
    const auto variant = [&](const char* name, const char* from, const char* to) {
        writeFileAtomically(dir / name, std::regex_replace(par, std::regex(from), to)); };
    writeFileAtomically(dir / "Pr.par", par);
    variant("cr-only.par", "\n", "\r");
    variant("spin.par", "/noss", "/noss/spinmmin= 99999999999999");
    variant("control.par", "6  6  -788  0", "6  6  \x1b[31m  0");
    std::filesystem::create_directories(dir / "folder.par");
    writeFileAtomically(dir / "bom.txt", "\xEF\xBB\xBF" "2\n1 0\n0 1\n");
    writeFileAtomically(dir / "huge.txt", "2\n1e308 1e308\n1e308 1e308\n");
    writeFileAtomically(dir / "near.lig", "R0 = 2.4\n1e-300 90 0\n2.4 90 180\n");
    ::mkfifo((dir / "input").c_str(), 0600);
    return dir.string();
}

void expectRefused(std::initializer_list<RefusedInput> inputs) {
    const std::string dir = preparedFolder();
    for (const RefusedInput& input : inputs) {
        const std::string arguments = std::regex_replace(input.arguments, std::regex("\\{dir\\}"), dir);
        const std::string command = "cd '" + test::sourceDirectory().string() +
                                    "' && XDG_CACHE_HOME=/proc/orvane-cache timeout 60 '" ORVANE_BINARY_DIR
                                    "/orvane' " + arguments + " <>" + dir + "/input >" + dir + "/out 2>" + dir + "/err";
        const int status = std::system(command.c_str());
        const std::string err = test::slurp(dir + "/err") + test::slurp(dir + "/out");
        EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : -1, input.exitCode) << arguments << "\n" << err;
        EXPECT_NE(err.find(input.message), std::string::npos) << arguments << "\n" << err;
        EXPECT_EQ(err.find('\x1b'), std::string::npos) << arguments << ": raw control byte echoed";
    }
    EXPECT_FALSE(std::filesystem::exists(dir + "/Pr.eng")) << "results written";
}

TEST(StrictCommandInputs, QuestionsWithoutAnswerEndTheCommand) {
    expectRefused({{"run {dir}/Pr.par --tables /proc/orvane-rme", 1, "GIVE FILE NAME FOR U(6) RME from "},
                   {"sm examples/cube-eight-ligands.lig --r0 0 --bk 400 300 50 --tk 5 6 7", 1,
                    "[a]bort/[r]etry/[i]gnore"},
                   {"sm examples/cube-eight-ligands.lig --r0 0 --ignore-zero-r0 --bk 1 1 1 --tk 5 6 7", 0,
                    "Superposition model"}});
}

TEST(StrictCommandInputs, NonFiniteNumbersAreRefused) {
    expectRefused({{"run {dir}/Pr.par --shift nan", 2, "not a finite number"},
                   {"rotate {dir}/Pr.par --euler nan 0 0", 2, "not a finite number"},
                   {"sm examples/cube-eight-ligands.lig --bk 400 300 50 --tk nan 6 7", 2, "not a finite number"},
                   {"sm {dir}/near.lig --bk 400 300 50 --tk 5 6 7", 1, "must lie between 0.001 and 1000"},
                   {"eigen {dir}/huge.txt", 1, "not finite numbers"},
                   {"chi {dir}/Pr.par --curie nan", 2, "not a finite number"},
                   {"intensities {dir}/Pr.par --initial 1 --omega 1 inf 2", 2, "not a finite number"},
                   {"chi {dir}/Pr.par --temperatures '1 1e400'", 1, "is not a finite number"}});
}

TEST(StrictCommandInputs, CouplingArgumentsAreRefused) {
    expectRefused({{"calc 3j 1e7 1e7 0 0 0 0", 1, "beyond the factorial table"},
                   {"calc 6j 0.3 1 1 1 1 1", 2, "not an integer or half-integer"},
                   {"calc dj 1/4 30", 2, "J must be a number or n/2"},
                   {"calc dj 5/2 90", 0, "J = 2.5"}});
}

TEST(StrictCommandInputs, DamagedFilesGetPreciseMessages) {
    expectRefused({{"eigen {dir}/bom.txt", 1, "byte-order mark"},
                   {"par check {dir}/cr-only.par", 1, "CR alone"},
                   {"par check {dir}/folder.par", 1, "is a folder, not a file"},
                   {"run {dir}/Pr.par --tables {dir}/bom.txt", 1, "is a file, not a folder"},
                   {"par check {dir}/spin.par", 1, "from 1 to 8, found \"99999999999999\""},
                   {"par check {dir}/control.par", 1, "\\x1B[31m"}});
}

}  // namespace
}  // namespace orvane
