// orvane de FILE.par --observed LEVELS --bounds BOUNDS: differential-evolution
// search of the parameters in the boxes of BOUNDS (docs/differential-evolution.md),
// on every core; optionally the superposition model over a ligand file, and a
// least-squares polish of the best set. Writes the best set as a parameter
// file (default FILE_de.par) and, with --csv, the history of the generations.
#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <fmt/format.h>

#include "cli/break_request.hpp"
#include "cli/commands.hpp"
#include "cli/terminal_log_book.hpp"
#include "cli/fit_inputs.hpp"
#include "cli/property_run.hpp"
#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "engine/parameter_file.hpp"
#include "fit/differential_evolution.hpp"
#include "fit/fit_session.hpp"
#include "fit/fit_tables.hpp"
#include "fit/observed_levels_file.hpp"
#include "fit/ultimate_fit.hpp"
#include "interactive/command_line_asker.hpp"
#include "params/ligand_file.hpp"
#include "tables/table_directory.hpp"

namespace orvane::cli {
namespace {

struct DEOptionsOnLine {
    std::string file, observed, bounds, ligands, output, csv, tableDirectory;
    double r0 = 0.0;
    DESettings settings;
    std::string scheme = "ordinary";
    bool autoMatch = false;
    std::optional<std::uint64_t> seed;
    int threads = 0;  // 0: every core
    bool complex = false, freeIon = false, yes = false;
};

std::vector<DEParameter> deParameters(const std::vector<DEBound>& bounds, const std::vector<FitParameter>& rows) {
    std::vector<DEParameter> parameters;
    for (const auto& bound : bounds) {
        const auto* row = findFitParameter(rows, bound.name);
        const double initial = row ? row->initial : 0.5 * (bound.lower + bound.upper);
        parameters.push_back({bound.name, initial, bound.lower, bound.upper, bound.lower == bound.upper});
    }
    return parameters;
}

std::optional<DESuperposition> superpositionOf(const DEOptionsOnLine& o) {
    if (o.ligands.empty()) return std::nullopt;
    const auto file = params::readLigandFile(o.ligands);
    const double r0 = o.r0 > 0 ? o.r0 : file.r0.value_or(0.0);
    if (file.ligands.empty() || r0 <= 0)
        throw UserError("Error in setting Differential Evolution parameter",
                        "You need to provide Superposition Model parameters and ligand positions");
    return DESuperposition{file.ligands, r0};
}

std::string historyCsv(const DEResult& result) {
    std::string csv = "iteration,best,sd,updates,cumulative_updates\n";
    for (const auto& g : result.history)
        csv += fmt::format("{},{:.10g},{:.10g},{},{}\n", g.iteration, g.best, g.sd, g.updates, g.cumulativeUpdates);
    return csv;
}

// The least-squares fit of the best set over the same free parameters.
std::vector<FitParameter> polish(const ParameterSet& set, std::vector<FitParameter> rows,
                                 const std::vector<DEParameter>& parameters, const std::vector<ObservedLevel>& levels,
                                 FitKind kind, const std::filesystem::path& tables, LogBook& log) {
    for (auto& row : rows) {
        row.initial = row.finalFit;
        if (row.option == kFitOptionFree) row.option = kFitOptionFixed;
    }
    for (const auto& p : parameters)
        if (!p.fixed) setFitOption(rows, p.name, kFitOptionFree);
    FitWorkspace workspace;
    workspace.kind = kind;
    workspace.parameters = std::move(rows);
    workspace.levels = levels;
    workspace.settings.maxLevels = 0;
    FitSession session(set, std::move(workspace), tables, log);
    const auto result = runUltimateFit(session, nullptr, [&](const FitCycleReport& r) { log.appendLine(cycleLine(r)); });
    for (const auto& line : ultimateFitReport(result.decision, result.iterations, session.workspace().settings,
                                              std::chrono::system_clock::now()))
        log.appendLine(line);
    return session.workspace().parameters;
}

void runDE(DEOptionsOnLine o) {
    TerminalLogBook log(LogRole::Narration);
    const auto set = readParameterFileForRun(o.file);
    const auto kind = fitKindOf(o.freeIon, o.complex);
    const auto rows = fitParameterRows(set, kind);
    const auto parameters = deParameters(readDEBoundsFile(o.bounds), rows);
    auto observed = readObservedLevelsFile(observedLevelsPath(o.observed));
    const auto& levels = observed.levels;
    auto superposition = superpositionOf(o);
    const bool intrinsicGiven = std::any_of(parameters.begin(), parameters.end(),
                                            [](const DEParameter& p) { return p.name.rfind("Abar", 0) == 0; });
    if (superposition && !intrinsicGiven)
        throw UserError("Error in setting Differential Evolution parameter",
                        "You need to provide Superposition Model parameters and ligand positions");
    if (o.settings.polish && superposition && o.autoMatch)
        throw UserError("Error in setting Differential Evolution parameter",
                        "The polish of a superposition-model search needs fixed energy levels (leave out --automatch)");
    o.settings.scheme = o.scheme == "accelerated" ? DEScheme::Accelerated : DEScheme::Ordinary;
    o.settings.matching = o.autoMatch ? DELevelMatching::Automatic : DELevelMatching::Fixed;
    if (const auto problem = deSettingsProblem(o.settings))
        throw UserError("Error in setting Differential Evolution parameter", *problem);
    const auto tables = o.tableDirectory.empty() ? defaultTableDirectory() : std::filesystem::path(o.tableDirectory);
    auto model = std::make_shared<const Model>(Model::build(modelSetupOf(set, kind != FitKind::FreeIon,
                                                                         kind == FitKind::ComplexCrystalField),
                                                            tables, log));
    const LevelDeviation objective(model, set, kind, parameters, levels, o.settings.matching, superposition,
                                   observed.gFactors, o.settings.gWeight);
    DEOptions options;
    options.seed = o.seed.value_or(clockSeed());
    options.threads = o.threads > 0 ? o.threads : static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    // The run-time estimate from one evaluation.
    {
        ModelWorkspace workspace;
        std::vector<double> initial;
        for (const auto& p : parameters) initial.push_back(p.initial);
        const auto start = std::chrono::steady_clock::now();
        objective.deviation(initial, workspace);
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        const double minutes = seconds * o.settings.parents * (o.settings.maxIterations + 1) / options.threads / 60.0;
        if (minutes >= 1.0) {
            CommandLineAsker asker(std::cerr, {}, o.yes ? std::vector{Choice::Yes} : std::vector<Choice>{});
            const auto text = fmt::format("Need around {} minutes to complete. Really want to go ahead?",
                                          static_cast<long>(std::ceil(minutes)));
            if (asker.askChoice("Go ahead?", text, Buttons::YesNo) != Choice::Yes) return;
        }
    }
    int freeCount = 0;
    for (const auto& p : parameters) freeCount += p.fixed ? 0 : 1;
    for (const auto& line : deHeaderLines(o.settings, freeCount, std::chrono::system_clock::now())) log.appendLine(line);
    log.appendLine(fmt::format("Seed = {}  ||Threads = {}", options.seed, options.threads));
    std::atomic<bool> stop{false};
    BreakRequest breaks;
    options.stop = &stop;
    options.onGeneration = [&](const DEGeneration& g) {
        log.appendLine(deIterationLine(g));
        log.progress(LogCategory::Fit, "differential evolution", g.iteration, o.settings.maxIterations);
        stop.store(breaks.requested());
    };
    const auto result = runDifferentialEvolution(parameters, o.settings, objective, options);
    log.progress(LogCategory::Fit, "differential evolution", 1, 1);  // the bar ends with the search
    if (const auto text = deStopText(result.stop, o.settings); !text.empty()) log.appendLine(text);
    // The search's result: printed also under --quiet.
    TerminalLogBook report(LogRole::Results);
    report.appendLine(fmt::format("Best Set (after {} generations, {} evaluations):", result.history.back().iteration,
                               result.evaluations));
    for (std::size_t p = 0; p < parameters.size(); ++p)
        report.appendLine(fmt::format("{:<12}{:>14.4f}", parameters[p].name, result.best[p]));
    for (const auto& line : deFooterLines(objective.finalDeviations(result.best), std::chrono::system_clock::now()))
        report.appendLine(line);
    auto bestRows = objective.rowsOf(result.best);
    if (o.settings.polish && superposition) {
        const auto polished = objective.polishSuperposition(result.best);
        report.appendLine(fmt::format("Least-squares polish of the superposition model: RMS Dev. = {:.4f} after {} cycles",
                                   polished.deviation, polished.cycles));
        for (std::size_t p = 0; p < parameters.size(); ++p)
            report.appendLine(fmt::format("{:<12}{:>14.4f}", parameters[p].name, polished.values[p]));
        bestRows = objective.rowsOf(polished.values);
    } else if (o.settings.polish) {
        bestRows = polish(set, bestRows, parameters, levels, kind, tables, report);
    }
    report.appendLine("Final Results");
    FitWorkspace shown;
    shown.parameters = bestRows;
    for (const auto& line : parameterTableLines(shown)) report.appendLine(line);
    const auto output = o.output.empty() ? besideInput(o.file, "_de") : std::filesystem::path(o.output);
    writeParameterFile(output, withFittedValues(set, bestRows));
    report.appendLine("Best set: " + output.string());
    if (!o.csv.empty()) writeFileAtomically(o.csv, historyCsv(result));
}

}  // namespace

void addDECommand(CLI::App& app) {
    auto* command = app.add_subcommand("de", "Differential-evolution search of the parameters within boxes");
    auto o = std::make_shared<DEOptionsOnLine>();
    command->add_option("FILE", o->file, "parameter file (.par)")->required();
    command->add_option("--observed", o->observed, "observed levels (default: defaulteng.txt beside the program)");
    command->add_option("--bounds", o->bounds, "one row per searched parameter: NAME lower upper")->required();
    command->add_option("--ligands", o->ligands, "ligand file: search the superposition model (Abar2.. t6 rows)");
    command->add_option("--r0", o->r0, "reference distance of the intrinsic parameters (default: the ligand file's)")
        ->check(kFiniteNumber);
    command->add_option("--np", o->settings.parents, "number of parents NP (default 40)");
    command->add_option("--f", o->settings.f, "mutation factor F (default 0.8)")->check(kFiniteNumber);
    command->add_option("--cr", o->settings.cr, "crossover probability CR (default 0.9)")->check(kFiniteNumber);
    command->add_option("--lambda", o->settings.lambda, "accelerated scheme: move toward the best (default 0.5)")
        ->check(kFiniteNumber);
    command->add_option("--scheme", o->scheme, "ordinary or accelerated")->check(CLI::IsMember({"ordinary", "accelerated"}));
    command->add_option("--max-iter", o->settings.maxIterations, "iteration limit (default 500)");
    command->add_option("--sd", o->settings.sd, "stop when the SD of the deviations falls below (default 1e-3)")
        ->check(kFiniteNumber);
    command->add_option("--err", o->settings.err, "stop when the minimal deviation falls below (default 0.01)")
        ->check(kFiniteNumber);
    command->add_option("--seed", o->seed, "random seed: the same seed gives the same run (default: the clock)");
    command->add_option("--threads", o->threads, "threads (default: every core)")->check(CLI::NonNegativeNumber);
    command->add_option("--gweight", o->settings.gWeight, "weight of observed g-factors (0: automatic, the default)")
        ->check(kFiniteNumber);
    command->add_flag("--polish", o->settings.polish, "least-squares fit of the best set (Incorporate NLS fit)");
    command->add_flag("--automatch", o->autoMatch, "match levels by energy instead of by their state numbers");
    command->add_option("-o,--output", o->output, "parameter file of the best set (default FILE_de.par)");
    command->add_option("--csv", o->csv, "history of the generations as CSV");
    auto* freeIon = command->add_flag("--free-ion", o->freeIon, "free-ion levels (J-multiplets)");
    command->add_flag("--complex", o->complex, "complex crystal field")->excludes(freeIon);
    command->add_option("--tables", o->tableDirectory, "table directory (default: the delivered one)");
    command->add_flag("--yes", o->yes, "answer yes to the run-time question");
    command->callback([o] { runPropertyCommand([&] { runDE(*o); }); });
}

}  // namespace orvane::cli
