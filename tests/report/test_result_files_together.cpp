// The result files of a run are replaced all together or not at all, and no
// temporary outlives a failed, killed or crashed run.
#include <gtest/gtest.h>

#include <csignal>
#include <set>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "tests/report/run_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

std::set<std::string> namesIn(const std::filesystem::path& dir) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) names.insert(entry.path().filename());
    return names;
}

// One result file is a folder: the run fails naming it, the two other old
// result files keep their content and nothing else is left.
TEST(ResultFilesTogether, OneUnwritableFileReplacesNone) {
    const std::set<std::string> results = {"Pr.eng", "Pr.ev", "Pr.gen"};
    for (const std::string& blocked : results) {
        const auto dir = test::scratchDirectory("together_" + blocked);
        const auto file = test::writeSet(dir, "Pr.par", test::praseodymiumLaF3());
        for (const std::string& name : results)
            if (name == blocked) std::filesystem::create_directories(dir / name / "occupied");
            else writeFileAtomically(dir / name, "old " + name);
        test::TestRun run;
        std::string message;
        try { runEngine(0, file, {}, run.environment); } catch (const UserError& error) { message = error.what(); }
        EXPECT_NE(message.find((dir / blocked).string() + ": Is a directory"), std::string::npos) << message;
        for (const std::string& name : results) {
            if (name != blocked) {
                EXPECT_EQ(readTextFile(dir / name), "old " + name) << blocked;
            }
        }
        EXPECT_EQ(namesIn(dir), (std::set<std::string>{"Pr.eng", "Pr.ev", "Pr.gen", "Pr.par"})) << blocked;
    }
}

// Temporaries of a process that no longer runs (a reaped child) are removed;
// those of a running process and other files stay.
TEST(ResultFilesTogether, StaleTemporariesOfDeadProcessesAreRemoved) {
    const auto dir = test::scratchDirectory("together_stale");
    const pid_t child = fork();
    if (child == 0) _exit(0);
    waitpid(child, nullptr, 0);
    const std::string dead = std::to_string(child), alive = std::to_string(getppid());
    const std::set<std::string> kept = {"Pr.gen.tmp" + alive + "_0", "notes.tmp" + dead, "Pr.tmp" + dead + "_x"};
    for (const std::string& name : {"Pr.gen.tmp" + dead + "_0", "Pr.ev.tmp" + dead + "_3old", "Pr.gen.tmp" + alive +
                                    "_0", "notes.tmp" + dead, "Pr.tmp" + dead + "_x"}) writeFileAtomically(dir / name, "x");
    EXPECT_EQ(removeStaleTemporaries(dir), 2);
    EXPECT_EQ(namesIn(dir), kept);
}

// SIGINT and SIGTERM end a writing process without leaving its temporaries.
TEST(ResultFilesTogether, SignalsRemoveTemporaries) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const auto dir = test::scratchDirectory("together_signal_" + std::to_string(signal));
        const pid_t child = fork();
        if (child == 0) {
            removeTemporariesOnSignals();
            AtomicFileWriter general(dir / "Pr.gen"), vectors(dir / "Pr.ev");
            general.stream() << std::string(1 << 20, 'x') << std::flush;
            std::raise(signal);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal && namesIn(dir).empty()) << signal;
    }
}

}  // namespace
}  // namespace orvane
