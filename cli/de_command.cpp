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
#include "interactive/de_search.hpp"
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

void runDE(DEOptionsOnLine o) {
    TerminalLogBook log(LogRole::Narration);
    DESearch search;
    search.set = readParameterFileForRun(o.file);
    search.kind = fitKindOf(o.freeIon, o.complex);
    search.parameters = deParametersOf(readDEBoundsFile(o.bounds), fitParameterRows(search.set, search.kind));
    auto observed = readObservedLevelsFile(observedLevelsPath(o.observed));
    search.levels = std::move(observed.levels);
    search.gFactors = std::move(observed.gFactors);
    search.superposition = superpositionOf(o);
    o.settings.scheme = o.scheme == "accelerated" ? DEScheme::Accelerated : DEScheme::Ordinary;
    o.settings.matching = o.autoMatch ? DELevelMatching::Automatic : DELevelMatching::Fixed;
    search.settings = o.settings;
    search.seed = o.seed.value_or(clockSeed());
    search.threads = o.threads > 0 ? o.threads : static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    search.tableDirectory = o.tableDirectory.empty() ? defaultTableDirectory() : std::filesystem::path(o.tableDirectory);
    CommandLineAsker asker(std::cerr, {}, o.yes ? std::vector{Choice::Yes} : std::vector<Choice>{});
    // The search's result is printed also under --quiet.
    TerminalLogBook report(LogRole::Results);
    std::atomic<bool> stop{false};
    BreakRequest breaks;
    const auto outcome =
        runDESearch(search, asker, log, report, &stop, [&](const DEGeneration&) { stop.store(breaks.requested()); });
    if (!outcome) return;
    const auto output = o.output.empty() ? besideInput(o.file, "_de") : std::filesystem::path(o.output);
    writeParameterFile(output, withFittedValues(search.set, outcome->bestRows));
    report.appendLine("Best set: " + output.string());
    if (!o.csv.empty()) writeFileAtomically(o.csv, historyCsv(outcome->result));
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
