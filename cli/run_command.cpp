// orvane run FILE.par: energy levels of a parameter file, printed to the
// terminal (free ion, real or complex crystal field). The result files
// (.gen, .eng, .ev) are not written yet.
#include <iostream>
#include <memory>
#include <string>

#include <fmt/format.h>

#include "cli/commands.hpp"
#include "cli/exit_code.hpp"
#include "core/log_book.hpp"
#include "core/number_format.hpp"
#include "core/user_error.hpp"
#include "engine/energy_levels.hpp"
#include "engine/parameter_file.hpp"
#include "engine/run_switches.hpp"
#include "tables/table_directory.hpp"

namespace orvane::cli {

namespace {

struct RunOptions {
    std::string file;
    bool freeIon = false;
    bool complex = false;
    double shift = 0.0;
    std::string optionText;
    std::string tableDirectory;
};

void printFreeIonLevels(const EnergyLevelResult& result, double shift, LogBook& log) {
    log.appendLine("State     Energy        J");
    int number = 0;
    for (const auto& level : result.freeIon.levels)
        log.appendLine(formatNumber(++number, "###") + "  " + formatNumber(level.energy + shift, "######0.0000") +
                       "  " + formatTwiceJ(level.twiceJ));
}

void printCrystalFieldLevels(const EnergyLevelResult& result, double shift, LogBook& log) {
    log.appendLine("Cumulative state no. and Energy");
    std::string line;
    int number = 0;
    for (const auto& level : result.crystalField.levels) {
        line += formatNumber(++number, "####") + " " + formatNumber(level.energy + shift, "######0.0000");
        if (number % 5 == 0) {
            log.appendLine(line);
            line.clear();
        }
    }
    if (!line.empty()) log.appendLine(line);
}

void runParameterFile(const RunOptions& options) {
    StreamLogBook log(std::cout);
    auto set = readParameterFile(options.file);
    set.switches = readRunSwitches(set.optionLine + " " + options.optionText);
    log.appendLine("Get parameters from " + options.file);
    const auto directory =
        options.tableDirectory.empty() ? defaultTableDirectory() : std::filesystem::path(options.tableDirectory);
    EnergyLevelOptions engine;
    engine.crystalField = !options.freeIon;
    engine.complex = options.complex;
    const auto result = computeEnergyLevels(set, directory, log, engine);
    printFreeIonLevels(result, options.shift, log);
    if (engine.crystalField) printCrystalFieldLevels(result, options.shift, log);
    log.appendLine("Work completed.");
}

}  // namespace

void addRunCommand(CLI::App& app) {
    auto* command = app.add_subcommand("run", "Energy levels of a parameter file (free ion and crystal field)");
    auto options = std::make_shared<RunOptions>();
    command->add_option("FILE", options->file, "parameter file (.par)")->required();
    auto* freeIon = command->add_flag("--free-ion", options->freeIon, "free ion only");
    command->add_flag("--complex", options->complex, "complex crystal field (Im Bkq kept)")->excludes(freeIon);
    command->add_option("--shift", options->shift, "constant added to every printed energy");
    command->add_option("--option", options->optionText, "switches joined to the file's own, e.g. \"/actualshell\"");
    command->add_option("--tables", options->tableDirectory, "table directory (default: the delivered one)");
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
