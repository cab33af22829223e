#pragma once
// Runs the built `orvane` program for the command-line tests: no standard
// input, both output streams captured in a folder of this test process alone
// (ctest runs test cases in parallel), working directory the source tree.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/reference_data.hpp"

namespace orvane::test {

struct CommandResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

inline std::string slurp(const std::filesystem::path& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

inline CommandResult runOrvane(const std::string& arguments) {
    static int calls = 0;
    const auto dir = scratchDirectory("cli_run_" + std::to_string(::getpid()) + "_" + std::to_string(calls++));
    const auto out = dir / "stdout.txt";
    const auto err = dir / "stderr.txt";
    const std::string command = "cd '" + sourceDirectory().string() + "' && '" +
                                (std::filesystem::path(ORVANE_BINARY_DIR) / "orvane").string() + "' " + arguments +
                                " </dev/null >'" + out.string() + "' 2>'" + err.string() + "'";
    const int status = std::system(command.c_str());
    CommandResult result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.out = slurp(out);
    result.err = slurp(err);
    return result;
}

// The table folder the engine tests fill, shared by the command runs.
inline std::filesystem::path commandTableDirectory() {
    const auto path = std::filesystem::path(ORVANE_BINARY_DIR) / "test-scratch" / "engine-tables";
    std::filesystem::create_directories(path);
    return path;
}

inline std::string lastLine(const std::string& text) {
    std::string trimmed = text;
    while (!trimmed.empty() && (trimmed.back() == '\n' || trimmed.back() == '\r')) trimmed.pop_back();
    const auto pos = trimmed.rfind('\n');
    return pos == std::string::npos ? trimmed : trimmed.substr(pos + 1);
}

}  // namespace orvane::test
