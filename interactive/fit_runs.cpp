#include "interactive/fit_runs.hpp"

#include <atomic>
#include <chrono>

#include "fit/fit_tables.hpp"
#include "fit/workspace_functions.hpp"

namespace orvane {

namespace {

void logLines(LogBook& log, const std::vector<std::string>& lines) {
    for (const auto& line : lines) log.appendLine(line);
}

// The cycle line, and the advice about undetermined parameters once per series (it repeats every cycle).
void logCycle(LogBook& log, const FitCycleReport& report, bool& advised) {
    log.appendLine(cycleLine(report));
    if (!advised) logLines(log, report.messages);
    advised = advised || !report.messages.empty();
}

bool isUnsuccessful(UltimateFitStatus status) {
    return status == UltimateFitStatus::Diverging || status == UltimateFitStatus::Oscillating ||
           status == UltimateFitStatus::ConvergingSlowly;
}

}  // namespace

void runFitCycles(FitSession& session, int cycles, const FitStopRequest& stop, LogBook& log,
                  const FitCycleObserver& observer) {
    auto best = session.workspace().parameters;
    double bestRms = session.workspace().rmsDeviation;
    bool advised = false;
    bool stopped = false;
    for (int i = 0; i < cycles; ++i) {
        if (stop && stop()) {
            log.appendLine("Break: the fit stopped between cycles.");
            stopped = true;
            break;
        }
        const auto report = session.runCycle();
        logCycle(log, report, advised);
        log.progress(LogCategory::Fit, "fit cycles", i + 1, cycles);
        if (report.rmsDeviation < bestRms) {
            bestRms = report.rmsDeviation;
            best = session.workspace().parameters;
        }
        if (observer) observer(report);
    }
    if (stopped && session.workspace().rmsDeviation > bestRms) {
        session.workspace().parameters = best;
        session.update();
    }
}

UltimateFitResult runUltimateFitLogged(FitSession& session, const FitStopRequest& stop, LogBook& log, Asker* asker,
                                       const FitCycleObserver& observer) {
    bool advised = false;
    const int maxCycles = session.workspace().settings.maxIterations;
    int cycle = 0;
    std::atomic<bool> stopFlag{false};
    const auto onCycle = [&](const FitCycleReport& report) {
        logCycle(log, report, advised);
        log.progress(LogCategory::Fit, "Ultimate Fit cycles", ++cycle, maxCycles);
        if (observer) observer(report);
        stopFlag.store(stop && stop());
    };
    const auto result = runUltimateFit(session, &stopFlag, onCycle);
    logLines(log, ultimateFitReport(result.decision, result.iterations, session.workspace().settings,
                                    std::chrono::system_clock::now()));
    if (isUnsuccessful(result.decision.status)) {
        bool show = true;
        if (asker)
            show = asker->askChoice("Orvane", kShowFailedFitsQuestion, Buttons::YesNo) == Choice::Yes;
        else
            log.appendLine(kSeeLogbookForFailedFits);
        if (show) logLines(log, failedFitParameterLines(session.workspace().parameters, result));
    }
    return result;
}

void logFitFunctions(FitSession& session, LogBook& log) {
    const auto parameters = session.currentParameters();
    const bool crystalField = session.model().setup().crystalField;
    std::vector<double> energies;
    ModelWorkspace workspace;
    const auto solution = session.model().solve(parameters, {!crystalField, false, kAllEigenvalues, {}, {}, false}, workspace);
    if (crystalField)
        for (const auto& level : solution.levels) energies.push_back(level.energy);
    else
        for (const auto& level : solution.freeIon.levels) energies.push_back(level.energy);
    logLines(log, energyAverageLines(energies));
    if (crystalField) logLines(log, crystalFieldInvariantLines(wybourneParametersOf(parameters)));
    logLines(log, electrostaticStrengthLines(session.model().tables(), parameters));
    logLines(log, orthonormalisedElectrostaticLines(session.model().tables(), parameters));
}

}  // namespace orvane
