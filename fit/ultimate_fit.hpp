#pragma once
// The Ultimate Fit: fit cycles repeated until the RMS deviation settles, the
// iteration limit is reached or the series is diagnosed as failing
// (docs/fitting.md, "Ultimate Fit").
//
// History R(1), R(2), ...: R(1) is the RMS deviation before the first cycle,
// R(n) the one after cycle n - 1. After each cycle, in this order:
//  1. |R(n) - R(n-1)| <= convergence limit: success;
//  2. diverging, R(n) > 1.1 R(n-1) and R(n-1) > 1.1 R(n-2) (two successive
//     rises of more than 10 %), or oscillating (below): the series stops;
//  3. n - 1 = maxIterations (0: no limit): the series stops and is
//     classified: diverging, oscillating, or else converging slowly.
// Oscillating: over k = n/2 (integer halving) .. n, with k >= 2, the RMS
// rose by more than twice the convergence limit at least twice; the limit is
// read anew at each k (a window may change it while the fit runs).
#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "core/log_book.hpp"
#include "fit/fit_session.hpp"
#include "fit/fit_workspace.hpp"

namespace orvane {

enum class UltimateFitStatus { Running, Success, Diverging, Oscillating, ConvergingSlowly, Stopped };

bool isDiverging(const std::vector<double>& history);
bool isOscillating(const std::vector<double>& history, const std::function<double()>& convergenceLimit);

struct UltimateFitDecision {
    UltimateFitStatus status = UltimateFitStatus::Running;
    bool iterationLimitReached = false;
};
UltimateFitDecision ultimateFitDecision(const std::vector<double>& history,
                                        const std::function<double()>& convergenceLimit, int maxIterations);

// The log-book lines of a finished series: the completion or stop line (with
// the time and date of `when`), the diagnosis, the advice and, for a failing
// series, the colour legend. A slow series is advised to lower the scaling
// factor unless it is 0.5 or less already; then to fix some parameters.
std::vector<std::string> ultimateFitReport(const UltimateFitDecision& decision, int iterations,
                                           const FitSettings& settings, std::chrono::system_clock::time_point when);

inline constexpr const char* kShowFailedFitsQuestion =
    "See Logbook for remdial actions after this unsuccessful round of fits. Show values of parameters of those fits?";

// Label colours from the differences of the last three fits (oldest first):
// a level has an issue in a fit when |E_Diff| exceeds referenceRmsDev or
// three times that fit's RMS deviation; one issue over the three fits is
// light blue, more are red. Withheld and unassigned levels stay uncoloured.
struct FitSnapshot {
    std::vector<double> differences;  // per workspace level
    double rmsDeviation = 0.0;
};
std::vector<LabelColour> diagnosisColours(const std::vector<ObservedLevel>& levels,
                                          const std::vector<FitSnapshot>& lastFits, double referenceRmsDev);

struct UltimateFitResult {
    UltimateFitDecision decision;
    int iterations = 0;
    std::vector<double> history;
    std::vector<std::vector<double>> parameterHistory;  // Final_fit of every row after each cycle
};

// Runs the series on the session: `onCycle` sees each cycle's report; a set
// `stop` flag ends the series between cycles ("Break", Ctrl-C) and the best
// parameters seen are put back. Colours the level table of a failing series.
inline constexpr const char* kSeeLogbookForFailedFits =
    "See Logbook for parameter values and remdial actions after this unsuccessful round of fits.";

// The Final_fit values of the last `count` cycles of a series, one column per
// cycle ("Show values of parameters of those fits?").
std::vector<std::string> failedFitParameterLines(const std::vector<FitParameter>& rows,
                                                 const UltimateFitResult& result, std::size_t count = 5);

UltimateFitResult runUltimateFit(FitSession& session, const std::atomic<bool>* stop,
                                 const std::function<void(const FitCycleReport&)>& onCycle);

}  // namespace orvane
