#pragma once
// The log book of the `orvane` command on a terminal.
//
// Lines go to standard output. A command whose lines narrate long work (a
// run, a batch, a fit, table generation) marks them as narration: `--quiet`
// then drops them, while a command whose lines are its result (a calculator,
// a conversion) prints them always. Warnings always appear (on standard error
// under `--quiet`).
//
// Progress events draw one bar line on standard error when it is a terminal
// and a stage has lasted long enough to be worth watching; the bar is silent
// when standard error is a file or a pipe. Nested stages (a batch row's run
// inside the batch) share the line. `--verbose` prints every progress step as
// a line on standard error with the time since the command started, whether
// or not it is a terminal.
#include <chrono>
#include <string>
#include <vector>

#include "core/log_book.hpp"

namespace orvane::cli {

enum class Verbosity { Quiet, Normal, Verbose };

// Set once from the command line before any subcommand runs.
void setVerbosity(Verbosity verbosity);
Verbosity verbosity();

enum class LogRole { Narration, Results };

class TerminalLogBook final : public LogBook {
public:
    explicit TerminalLogBook(LogRole role = LogRole::Narration);
    ~TerminalLogBook() override;
    void record(const LogEvent& event) override;

private:
    struct Stage {
        std::string name;
        int done = 0;
        int total = 0;
        std::chrono::steady_clock::time_point started;
    };
    void updateStage(const LogEvent& event);
    void drawBar();
    void clearBar();

    LogRole role_;
    bool barAllowed_;
    bool barShown_ = false;
    std::vector<Stage> stages_;  // active, outermost first
    std::chrono::steady_clock::time_point lastDrawn_{};
};

}  // namespace orvane::cli
