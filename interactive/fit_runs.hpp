#pragma once
// Series of least-squares fit cycles as the command line and the desktop's
// fitting workspace run them, with their log-book lines: the cycle lines
// (the advice of undetermined parameters once), the Ultimate Fit's report and,
// after an unsuccessful series, the parameter values of its last fits.
#include <functional>

#include "core/log_book.hpp"
#include "fit/fit_session.hpp"
#include "fit/ultimate_fit.hpp"
#include "interactive/asker.hpp"

namespace orvane {

// Asked between cycles; true stops the series ("Break").
using FitStopRequest = std::function<bool()>;
// Called after each cycle (the desktop refreshes its tables).
using FitCycleObserver = std::function<void(const FitCycleReport&)>;

// Runs up to `cycles` cycles; after a Break that left a worse set, the best
// parameters seen are put back.
void runFitCycles(FitSession& session, int cycles, const FitStopRequest& stop, LogBook& log,
                  const FitCycleObserver& observer = {});

// The Ultimate Fit with its report. After an unsuccessful series the values
// of its last fits are logged: with an asker, when the user answers Yes to
// kShowFailedFitsQuestion; without one, after kSeeLogbookForFailedFits.
UltimateFitResult runUltimateFitLogged(FitSession& session, const FitStopRequest& stop, LogBook& log,
                                       Asker* asker = nullptr, const FitCycleObserver& observer = {});

// The log-book functions for the current parameters: average and SD of all
// energies, the crystal-field invariants, the electrostatic strength and the
// orthonormalised electrostatic parameters.
void logFitFunctions(FitSession& session, LogBook& log);

}  // namespace orvane
