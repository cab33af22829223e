#include "fit/ultimate_fit.hpp"

#include <cmath>

#include <fmt/format.h>

#include "core/local_time.hpp"
#include "core/number_format.hpp"

namespace orvane {
namespace {

// R(n) > 1.1 R(n-1), with room for the rounding of 1.1 x R.
bool risesByMoreThanTenPercent(double later, double earlier) { return later > 1.1 * earlier * (1.0 + 1e-12); }

void appendDivergingAdvice(std::vector<std::string>& lines) {
    lines.insert(lines.end(),
                 {"If the RMS Dev. is still very large, you need to check and correct the State#. You may select and "
                  "clear the whole State# column and press the [AutoMatch] button to re-set it.",
                  "Then, you should consider one or several of the following remedial actions:",
                  "(1) check the state labels (LS term, J and irreps) and re-assign the state numbers for the observed "
                  "levels;",
                  "(2) withhold the most deviant levels (highlighted in red color) from fitting by double-click on (or "
                  "add square brackets to) each of them;",
                  "(3) decrease the Scaling factor for change of parameters (to 0.1-0.5 or less) (under the menu "
                  "[Options]->[Ultimate fit criteria]);",
                  "(5) select the [AutoMatch of state labels] under the menu [Options]->[Ultimate fit criteria]]."});
}

void appendSlowAdvice(std::vector<std::string>& lines, double scalingFactor) {
    lines.insert(lines.end(),
                 {"You should consider one or several of the following remedial actions:",
                  "(2) check the state labels as highlighted in red color (LS term, J and irreps) and re-assign the "
                  "reddish state numbers for the observed levels;",
                  "(4) withhold the most deviant levels (highlighted in red color) from fitting by double-click on (or "
                  "add square brackets to) each of them;"});
    if (scalingFactor > 0.5) {
        lines.push_back("(5) slightly decrease the Scaling factor for change of parameters  (to 0.1-0.5) (under the "
                        "menu [Options]->[Ultimate fit criteria]);");
        lines.push_back("(6) select the [AutoMatch of state labels] under the menu [Options]->Ultimate fit criteria]]; "
                        "and/or");
    } else {
        lines.push_back("(5) select the [AutoMatch of state labels] under the menu [Options]->[Ultimate fit criteria];");
        lines.push_back("(6) fix some parameters by setting their Option = 0 or -1; and/or");
    }
    lines.push_back("(7) gradually increase the Scaling factor for change of parameters  (to 0.6-1.2 or more) (under "
                    "the menu [Options]->[Fit Criteria]).");
}

}  // namespace

bool isDiverging(const std::vector<double>& history) {
    const std::size_t n = history.size();
    return n >= 3 && risesByMoreThanTenPercent(history[n - 1], history[n - 2]) &&
           risesByMoreThanTenPercent(history[n - 2], history[n - 3]);
}

bool isOscillating(const std::vector<double>& history, const std::function<double()>& convergenceLimit) {
    const std::size_t n = history.size();  // R(1) .. R(n) are history[0] .. history[n-1]
    int rises = 0;
    for (std::size_t k = std::max<std::size_t>(n / 2, 2); k <= n; ++k)
        if (history[k - 1] - history[k - 2] > 2.0 * convergenceLimit()) ++rises;
    return rises >= 2;
}

UltimateFitDecision ultimateFitDecision(const std::vector<double>& history,
                                        const std::function<double()>& convergenceLimit, int maxIterations) {
    UltimateFitDecision decision;
    const std::size_t n = history.size();
    if (n < 2) return decision;
    if (std::abs(history[n - 1] - history[n - 2]) <= convergenceLimit()) {
        decision.status = UltimateFitStatus::Success;
        return decision;
    }
    decision.iterationLimitReached = maxIterations > 0 && static_cast<int>(n - 1) >= maxIterations;
    if (isDiverging(history))
        decision.status = UltimateFitStatus::Diverging;
    else if (isOscillating(history, convergenceLimit))
        decision.status = UltimateFitStatus::Oscillating;
    else if (decision.iterationLimitReached)
        decision.status = UltimateFitStatus::ConvergingSlowly;
    return decision;
}

std::vector<std::string> ultimateFitReport(const UltimateFitDecision& decision, int iterations,
                                           const FitSettings& settings, std::chrono::system_clock::time_point when) {
    std::vector<std::string> lines;
    const std::tm local = localTime(when);
    const std::string time = formatTime(local);
    if (decision.status == UltimateFitStatus::Success) {
        lines.push_back(fmt::format("*** Ultimate fit successfully completed after {} iterations at {} on {}",
                                    iterations, time, formatDate(local)));
        return lines;
    }
    if (decision.iterationLimitReached || decision.status == UltimateFitStatus::Stopped)
        lines.push_back(fmt::format("*** Ultimate fit stopped after {} iterations at {}", iterations, time));
    const double limit = settings.convergenceLimit;
    switch (decision.status) {
        case UltimateFitStatus::Diverging:
            lines.push_back("The fit is diverging! You must put another set of final value of parameters and press the "
                            "[Update Statevectors] button to re-set the system.");
            appendDivergingAdvice(lines);
            break;
        case UltimateFitStatus::Oscillating:
            lines.push_back(fmt::format("The fit is oscillating and cannot converge to the given convergence limit of "
                                        "{} within {} iterations!",
                                        limit, iterations));
            appendDivergingAdvice(lines);
            break;
        case UltimateFitStatus::ConvergingSlowly:
            lines.push_back(fmt::format("The fit is converging very slowly and cannot converge to the given "
                                        "convergence limit of {} within {} iterations!",
                                        limit, iterations));
            appendSlowAdvice(lines, settings.scalingFactor);
            break;
        default: return lines;
    }
    lines.push_back("Note the following color code for the background color of the State Label cell which "
                    "summarises the problem found in the last 3 fits:");
    lines.push_back("  >>Light blue = Acceptable with one alerting issue for information");
    lines.push_back("  >>Red = Critical case in which some of its issues must be properly adddressed");
    return lines;
}

std::vector<LabelColour> diagnosisColours(const std::vector<ObservedLevel>& levels,
                                          const std::vector<FitSnapshot>& lastFits, double referenceRmsDev) {
    std::vector<LabelColour> colours(levels.size(), LabelColour::None);
    for (std::size_t i = 0; i < levels.size(); ++i) {
        if (levels[i].withheld || levels[i].stateNumber < 1) continue;
        int issues = 0;
        for (const auto& fit : lastFits) {
            if (i >= fit.differences.size()) continue;
            const double d = std::abs(fit.differences[i]);
            if (d > referenceRmsDev || d > 3.0 * fit.rmsDeviation) ++issues;
        }
        colours[i] = issues >= 2 ? LabelColour::Red : issues == 1 ? LabelColour::LightBlue : LabelColour::None;
    }
    return colours;
}

std::vector<std::string> failedFitParameterLines(const std::vector<FitParameter>& rows,
                                                 const UltimateFitResult& result, std::size_t count) {
    const auto& history = result.parameterHistory;
    const std::size_t first = history.size() > count ? history.size() - count : 0;
    std::string heading = fmt::format("{:<12}", "Parameter");
    for (std::size_t c = first; c < history.size(); ++c) heading += fmt::format("{:>14}", fmt::format("Fit {}", c + 1));
    std::vector<std::string> lines{heading};
    for (std::size_t r = 0; r < rows.size(); ++r) {
        std::string line = fmt::format("{:<12}", rows[r].name);
        for (std::size_t c = first; c < history.size(); ++c) line += fmt::format("{:>14.4f}", history[c][r]);
        lines.push_back(std::move(line));
    }
    return lines;
}

UltimateFitResult runUltimateFit(FitSession& session, const std::atomic<bool>* stop,
                                 const std::function<void(const FitCycleReport&)>& onCycle) {
    UltimateFitResult result;
    auto& workspace = session.workspace();
    session.update();
    result.history.push_back(workspace.rmsDeviation);
    std::vector<FitSnapshot> snapshots;
    std::vector<FitParameter> best = workspace.parameters;
    double bestRms = workspace.rmsDeviation;
    const auto limit = [&workspace] { return workspace.settings.convergenceLimit; };
    while (true) {
        if (stop && stop->load()) {
            result.decision.status = UltimateFitStatus::Stopped;
            if (workspace.rmsDeviation > bestRms) {
                workspace.parameters = best;
                session.update();
            }
            break;
        }
        const auto report = session.runCycle();
        ++result.iterations;
        if (onCycle) onCycle(report);
        result.history.push_back(report.rmsDeviation);
        std::vector<double> values;
        for (const auto& row : workspace.parameters) values.push_back(row.finalFit);
        result.parameterHistory.push_back(std::move(values));
        FitSnapshot snapshot{{}, report.rmsDeviation};
        for (const auto& level : workspace.levels) snapshot.differences.push_back(level.energyDifference);
        snapshots.push_back(std::move(snapshot));
        if (snapshots.size() > 3) snapshots.erase(snapshots.begin());
        if (report.rmsDeviation < bestRms) {
            bestRms = report.rmsDeviation;
            best = workspace.parameters;
        }
        result.decision = ultimateFitDecision(result.history, limit, workspace.settings.maxIterations);
        if (result.decision.status != UltimateFitStatus::Running) break;
    }
    const auto status = result.decision.status;
    if (status == UltimateFitStatus::Diverging || status == UltimateFitStatus::Oscillating ||
        status == UltimateFitStatus::ConvergingSlowly) {
        const auto colours = diagnosisColours(workspace.levels, snapshots, workspace.settings.referenceRmsDev);
        for (std::size_t i = 0; i < colours.size(); ++i) workspace.levels[i].colour = colours[i];
    }
    return result;
}

}  // namespace orvane
