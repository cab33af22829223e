#pragma once
// A batch of energy-level runs, one parameter file after the other, shared
// by the command line's `orvane batch` and the desktop's options window.
// Each row logs "Calculations of " + file + " started on " + date and time,
// runs through runEngineAsking and logs " completed on " + date and time. A
// missing file logs "Can't find input parameters file from " + path, a failed
// run logs "Calculations of " + file + " failed: " + title; either way the
// next row runs. The run counter is set to 0 before each row, so every row
// keeps its energy file and counts as a first run. A progress event
// ("batch", row, rows) comes before each row and at the end, then the line
// "Work completed.". Exceptions other than UserError (a cancelled job) end
// the batch.
#include <filesystem>
#include <functional>
#include <vector>

#include "core/user_error.hpp"
#include "interactive/run_dialogs.hpp"
#include "report/run_request.hpp"

namespace orvane {

struct BatchRun {
    std::filesystem::path file;
    int mode = 0;  // run mode of report/run_request.hpp
    RunRequest request;
};

struct BatchHooks {
    // Asked before a row whose file exists; false skips the row (counted as failed). Empty: go on.
    std::function<bool(const BatchRun&)> confirm;
    // Told of each failed run after its log line. Empty: nothing more.
    std::function<void(const UserError&)> failed;
};

// Runs every row; returns the number of rows that did not complete.
int runBatch(const std::vector<BatchRun>& rows, InteractiveRunEnvironment& environment, const BatchHooks& hooks = {});

}  // namespace orvane
