// The `orvane` command: a thin front end over the libraries. Each subcommand
// parses its arguments, calls one library operation, prints what it returns and
// sets the exit code (0 success, 1 failure of the operation, 2 usage error).
// --quiet and --verbose (before or after the subcommand) set how much of the
// work is narrated (cli/terminal_log_book.hpp).
#include <iostream>
#include <string>

#include "cli/commands.hpp"
#include "cli/exit_code.hpp"
#include "cli/help_examples.hpp"
#include "cli/terminal_log_book.hpp"
#include "core/atomic_file.hpp"
#include "core/version.hpp"

int main(int argc, char** argv) {
    orvane::removeTemporariesOnSignals();  // a killed run leaves no temporary behind
    CLI::App app{"Orvane: spectroscopy of open f-shell ions in crystals"};
    app.set_version_flag("--version", std::string("orvane ") + orvane::orvaneVersion(),
                         "Print the version and exit");
    app.require_subcommand(1);
    app.fallthrough();  // the global flags may follow the subcommand
    using orvane::cli::Verbosity;
    auto* quiet = app.add_flag_callback("-q,--quiet", [] { orvane::cli::setVerbosity(Verbosity::Quiet); },
                                        "print results only: no progress lines, no progress bar");
    app.add_flag_callback("-v,--verbose", [] { orvane::cli::setVerbosity(Verbosity::Verbose); },
                          "print every progress step with its time on standard error")
        ->excludes(quiet);
    orvane::cli::addCalcCommand(app);
    orvane::cli::addEigenCommand(app);
    orvane::cli::addParCommand(app);
    orvane::cli::addTablesCommand(app);
    orvane::cli::addCrystalFieldCommands(app);
    orvane::cli::addRunCommand(app);
    orvane::cli::addBatchCommand(app);
    orvane::cli::addPropertyCommands(app);
    orvane::cli::addFitCommand(app);
    orvane::cli::addDECommand(app);
    orvane::cli::addSymmetryCommand(app);
    orvane::cli::addHelpExamples(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? orvane::cli::kExitOk : orvane::cli::kExitUsage;
    }
    return orvane::cli::exitCode();
}
