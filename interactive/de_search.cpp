#include "interactive/de_search.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>

#include <fmt/format.h>

#include "core/user_error.hpp"
#include "fit/fit_parameters.hpp"
#include "fit/fit_session.hpp"
#include "fit/fit_tables.hpp"
#include "fit/ultimate_fit.hpp"

namespace orvane {

namespace {

constexpr const char* kDEErrorTitle = "Error in setting Differential Evolution parameter";

void checkSearch(const DESearch& search) {
    const bool intrinsicGiven = std::any_of(search.parameters.begin(), search.parameters.end(),
                                            [](const DEParameter& p) { return p.name.rfind("Abar", 0) == 0; });
    if (search.superposition && (!intrinsicGiven || search.superposition->ligands.empty() || search.superposition->r0 <= 0))
        throw UserError(kDEErrorTitle, "You need to provide Superposition Model parameters and ligand positions");
    if (search.settings.polish && search.superposition && search.settings.matching == DELevelMatching::Automatic)
        throw UserError(kDEErrorTitle,
                        "The polish of a superposition-model search needs fixed energy levels (not automatic matching)");
    if (const auto problem = deSettingsProblem(search.settings)) throw UserError(kDEErrorTitle, *problem);
}

// Minutes the search would take, from the time of one evaluation of the initial set.
double estimatedMinutes(const DESearch& search, const LevelDeviation& objective) {
    ModelWorkspace workspace;
    std::vector<double> initial;
    for (const auto& p : search.parameters) initial.push_back(p.initial);
    const auto start = std::chrono::steady_clock::now();
    objective.deviation(initial, workspace);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return seconds * search.settings.parents * (search.settings.maxIterations + 1) / std::max(1, search.threads) / 60.0;
}

// The least-squares fit of the best set over the same free parameters.
std::vector<FitParameter> polished(const DESearch& search, std::vector<FitParameter> rows, LogBook& log) {
    for (auto& row : rows) {
        row.initial = row.finalFit;
        if (row.option == kFitOptionFree) row.option = kFitOptionFixed;
    }
    for (const auto& p : search.parameters)
        if (!p.fixed) setFitOption(rows, p.name, kFitOptionFree);
    FitWorkspace workspace;
    workspace.kind = search.kind;
    workspace.parameters = std::move(rows);
    workspace.levels = search.levels;
    workspace.settings.maxLevels = 0;
    FitSession session(search.set, std::move(workspace), search.tableDirectory, log);
    const auto result = runUltimateFit(session, nullptr, [&](const FitCycleReport& r) { log.appendLine(cycleLine(r)); });
    for (const auto& line : ultimateFitReport(result.decision, result.iterations, session.workspace().settings,
                                              std::chrono::system_clock::now()))
        log.appendLine(line);
    return session.workspace().parameters;
}

void logValues(LogBook& report, const std::vector<DEParameter>& parameters, const std::vector<double>& values) {
    for (std::size_t p = 0; p < parameters.size(); ++p)
        report.appendLine(fmt::format("{:<12}{:>14.4f}", parameters[p].name, values[p]));
}

}  // namespace

std::vector<DEParameter> deParametersOf(const std::vector<DEBound>& bounds, const std::vector<FitParameter>& rows) {
    std::vector<DEParameter> parameters;
    for (const auto& bound : bounds) {
        const auto* row = findFitParameter(rows, bound.name);
        const double initial = row ? row->initial : 0.5 * (bound.lower + bound.upper);
        parameters.push_back({bound.name, initial, bound.lower, bound.upper, bound.lower == bound.upper});
    }
    return parameters;
}

std::optional<DESearchOutcome> runDESearch(const DESearch& search, Asker& asker, LogBook& log, LogBook& report,
                                           const std::atomic<bool>* stop,
                                           const std::function<void(const DEGeneration&)>& onGeneration) {
    checkSearch(search);
    const bool crystalField = search.kind != FitKind::FreeIon;
    auto model = std::make_shared<const Model>(Model::build(
        modelSetupOf(search.set, crystalField, search.kind == FitKind::ComplexCrystalField), search.tableDirectory, log));
    const LevelDeviation objective(model, search.set, search.kind, search.parameters, search.levels,
                                   search.settings.matching, search.superposition, search.gFactors,
                                   search.settings.gWeight);
    if (const double minutes = estimatedMinutes(search, objective); minutes >= 1.0) {
        const auto text = fmt::format("Need around {} minutes to complete. Really want to go ahead?",
                                      static_cast<long>(std::ceil(minutes)));
        if (asker.askChoice("Go ahead?", text, Buttons::YesNo) != Choice::Yes) return std::nullopt;
    }
    int freeCount = 0;
    for (const auto& p : search.parameters) freeCount += p.fixed ? 0 : 1;
    for (const auto& line : deHeaderLines(search.settings, freeCount, std::chrono::system_clock::now()))
        log.appendLine(line);
    log.appendLine(fmt::format("Seed = {}  ||Threads = {}", search.seed, search.threads));
    DEOptions options;
    options.seed = search.seed;
    options.threads = search.threads;
    options.stop = stop;
    options.onGeneration = [&](const DEGeneration& g) {
        log.appendLine(deIterationLine(g));
        log.progress(LogCategory::Fit, "differential evolution", g.iteration, search.settings.maxIterations);
        if (onGeneration) onGeneration(g);
    };
    DESearchOutcome outcome{runDifferentialEvolution(search.parameters, search.settings, objective, options), {}};
    const DEResult& result = outcome.result;
    log.progress(LogCategory::Fit, "differential evolution", 1, 1);  // the bar ends with the search
    if (const auto text = deStopText(result.stop, search.settings); !text.empty()) log.appendLine(text);
    report.appendLine(fmt::format("Best Set (after {} generations, {} evaluations):", result.history.back().iteration,
                                  result.evaluations));
    logValues(report, search.parameters, result.best);
    for (const auto& line : deFooterLines(objective.finalDeviations(result.best), std::chrono::system_clock::now()))
        report.appendLine(line);
    outcome.bestRows = objective.rowsOf(result.best);
    if (search.settings.polish && search.superposition) {
        const auto polish = objective.polishSuperposition(result.best);
        report.appendLine(fmt::format("Least-squares polish of the superposition model: RMS Dev. = {:.4f} after {} cycles",
                                      polish.deviation, polish.cycles));
        logValues(report, search.parameters, polish.values);
        outcome.bestRows = objective.rowsOf(polish.values);
    } else if (search.settings.polish) {
        outcome.bestRows = polished(search, outcome.bestRows, report);
    }
    report.appendLine("Final Results");
    FitWorkspace shown;
    shown.parameters = outcome.bestRows;
    for (const auto& line : parameterTableLines(shown)) report.appendLine(line);
    return outcome;
}

}  // namespace orvane
