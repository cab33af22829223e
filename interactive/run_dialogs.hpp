#pragma once
// The questions of an interactive run, put before (and, for missing tables,
// during) the run of report/run_driver.hpp:
//   * no parameter file given: "File for Free-in and Crystal Field Parameters "
//     (filter "Par files|*.par|All files|*.*"); cancelled -> UserError (Main);
//   * setting "InteractivePrompt" 1: "min. value of eigenstate to be processed is ",
//     "Give the no. of eigenvectors to be stored (0 by default) >" and
//     "Give the shift in calculated energies (0 by default) >" (a non-numeric
//     answer keeps the request's value);
//   * tables neither found nor generated: "GIVE FILE NAME FOR U(6) RME from "
//     (a file names its folder); cancelled -> the engine's error.
#include <filesystem>

#include "interactive/asker.hpp"
#include "core/log_book.hpp"
#include "core/settings_store.hpp"
#include "report/run_driver.hpp"

namespace orvane {

struct InteractiveRunEnvironment {
    LogBook& log;
    Asker& asker;
    SettingsStore& settings;
    std::filesystem::path tableDirectory;
};

// Asks what is missing, then runs `runEngine`.
RunOutcome runEngineAsking(int mode, std::filesystem::path parameterFile, RunRequest request,
                           InteractiveRunEnvironment& environment);

// The three run-input questions; answers that are not valid keep the request's values.
void askRunInputs(Asker& asker, RunRequest& request);

}  // namespace orvane
