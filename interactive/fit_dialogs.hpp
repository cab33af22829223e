#pragma once
// The questions of the fitting workspace, shared by the command line and the
// desktop: the outcome of the initialisation checks, the settings prompts
// with their refusals, and the question after an unsuccessful Ultimate Fit.
#include <optional>
#include <vector>

#include "core/log_book.hpp"
#include "fit/fit_checks.hpp"
#include "fit/fit_settings.hpp"
#include "interactive/asker.hpp"

namespace orvane {

// Logs the checks' messages and asks their questions ("Still continue to
// carry out the fit?", answered "  Yes" / " No" in the log; the imaginary
// crystal-field question). True when the cycle may run.
bool confirmFitCycle(const FitCheckOutcome& outcome, Asker& asker, LogBook& log);

// Asks one setting until an accepted answer or a cancel ("Invalid input" is
// shown for a refused answer); a lower max. number of levels than `levelsShown`
// asks "Are you OK?" first. True when the setting changed.
bool askFitSetting(FitSettings& settings, FitSettingId id, int levelsShown, Asker& asker);

// Free-ion energies computed by GRASP2K as observed levels: asks the file
// ("Give file name for free-ion energies as calculated from GRASP2K") unless
// given, then "Set zero for GRASP2k energies?" (title "Set zero energy").
// The levels are numbered 1, 2, ... in the listing's order; std::nullopt
// when the user cancels.
std::optional<std::vector<ObservedLevel>> askGraspObservedLevels(Asker& asker, std::string fileName = {});

}  // namespace orvane
