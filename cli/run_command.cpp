// orvane run FILE.par: one run of the engine (free ion, real or complex
// crystal field) that writes the general output, state vectors and energies
// beside the parameter file, prints the progress lines and "Work completed.",
// and ends with a table of the lowest levels (--show) and the result files.
#include <cmath>
#include <iostream>
#include <memory>
#include <string>

#include "cli/commands.hpp"
#include "cli/terminal_log_book.hpp"
#include "cli/exit_code.hpp"
#include "interactive/command_line_asker.hpp"
#include "core/log_book.hpp"
#include "core/settings_store.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "interactive/run_dialogs.hpp"
#include "report/level_summary.hpp"
#include "tables/table_directory.hpp"

namespace orvane::cli {

namespace {

struct RunOptions {
    std::string file;
    bool freeIon = false;
    bool complex = false;
    int vectors = 0;
    double shift = 0.0;
    std::string minComponent = "0.002";
    std::string optionText;
    std::string tableDirectory;
    std::string show = std::to_string(kDefaultSummaryLevels);  // levels in the closing table, or "all"
};

// --show N or "all" (-1).
int summaryCount(const std::string& show) {
    if (show == "all") return -1;
    const auto value = parseNumber(show);
    if (!value || *value < 0 || *value != std::floor(*value))
        throw UserError("Error in Main", "--show " + show + ": give a number of levels or \"all\"");
    return static_cast<int>(*value);
}

int modeOf(const RunOptions& options) { return options.freeIon ? 2 : options.complex ? 1 : 0; }

void runParameterFile(const RunOptions& options) {
    TerminalLogBook log(LogRole::Narration);
    CommandLineAsker asker(std::cerr);
    MemorySettingsStore settings;  // energies kept, no prompts, counter from 0
    InteractiveRunEnvironment environment{log, asker, settings,
                               options.tableDirectory.empty() ? defaultTableDirectory()
                                                              : std::filesystem::path(options.tableDirectory)};
    RunRequest request;
    request.eigenvectorsToStore = options.vectors;
    request.energyShift = options.shift;
    request.minComponent = options.minComponent;
    request.optionText = options.optionText;
    const int shown = summaryCount(options.show);
    const auto outcome = runEngineAsking(modeOf(options), options.file, request, environment);
    log.appendLine("Work completed.");
    TerminalLogBook summary(LogRole::Results);
    if (verbosity() != Verbosity::Quiet) summary.appendLine("");
    for (const auto& line : levelSummaryLines(outcome, shown)) summary.appendLine(line);
}

}  // namespace

void addRunCommand(CLI::App& app) {
    auto* command = app.add_subcommand("run", "Energy levels of a parameter file; writes .gen, .ev and .eng");
    auto options = std::make_shared<RunOptions>();
    command->add_option("FILE", options->file, "parameter file (.par)")->required();
    auto* freeIon = command->add_flag("--free-ion", options->freeIon, "free ion only (results _fi.gen, _fi.ev, _fi.eng)");
    command->add_flag("--complex", options->complex, "complex crystal field (Im Bkq kept)")->excludes(freeIon);
    command->add_option("--vectors", options->vectors, "number of lowest state vectors to store (0 = all)")
        ->check(CLI::NonNegativeNumber);
    command->add_option("--shift", options->shift, "constant added to every calculated energy written")
        ->check(kFiniteNumber);
    command->add_option("--min-component", options->minComponent,
                        "smallest |coefficient| of a state vector processed (0 <= x < 1, default 0.002)");
    command->add_option("--option", options->optionText, "switches joined to the file's own, e.g. \"/actualshell /printhm\"");
    command->add_option("--tables", options->tableDirectory, "table directory (default: the delivered one)");
    command->add_option("--show", options->show, "lowest levels in the closing table: N (default 20), 0, or all");
    command->callback([options] {
        try {
            runParameterFile(*options);
            setExitCode(kExitOk);
        } catch (const UserError& error) {
            std::cerr << error.title() << ": " << error.describe() << '\n';
            setExitCode(kExitFailure);
        }
    });
}

}  // namespace orvane::cli
