// orvane tables build|compare|cfp|rme: the generators of the term basis and of
// the reduced-matrix-element tables.
//   build [--n N | --all] [--dir DIR]  every table the engine needs for f^N
//                                      (with the three-body and magnetic tables)
//   build ... --correlation            also the LCCF and OCCF tables (K = 2, 4, 6)
//   build --delivered [--dir DIR]      fNstate.lab and fNcfp.val, N = 1..7
//   compare --reference DIR [--n N]    generated against published tables
//   check uk|es|ti|mkpk|energies       the interactive checks against one
//                                      published file (energies: its
//                                      "EXPERIMENT" block against an .eng file)
//   cfp, rme                           the interactive generators
#include <chrono>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <fmt/core.h>

#include "interactive/parameter_dialogs.hpp"
#include "tables/lccf_table.hpp"
#include "tables/occf_table.hpp"
#include "cli/commands.hpp"
#include "cli/terminal_log_book.hpp"
#include "cli/exit_code.hpp"
#include "interactive/asker.hpp"
#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "engine/experiment_comparison.hpp"
#include "interactive/interactive_generators.hpp"
#include "interactive/published_comparison_dialogs.hpp"
#include "interactive/table_build_dialogs.hpp"
#include "tables/table_builder.hpp"
#include "tables/table_directory.hpp"

namespace orvane::cli {

namespace {

struct TablesOptions {
    int electrons = 0;
    bool all = false;
    bool delivered = false;
    bool correlation = false;
    std::string directory;
    std::string reference;
    std::string check;
};

template <typename Operation>
void runReporting(Operation operation) {
    try {
        setExitCode(operation() ? kExitOk : kExitFailure);
    } catch (const UserError& error) {
        std::cerr << error.title() << ": " << error.describe() << '\n';
        setExitCode(kExitFailure);
    } catch (const std::exception& error) {
        std::cerr << "Error in tables: " << error.what() << '\n';
        setExitCode(kExitFailure);
    }
}

std::filesystem::path directoryOf(const TablesOptions& options) {
    return options.directory.empty() ? defaultTableDirectory() : std::filesystem::path(options.directory);
}

bool runBuild(const TablesOptions& options) {
    TerminalLogBook log(LogRole::Narration);
    const auto directory = directoryOf(options);
    const auto start = std::chrono::steady_clock::now();
    if (options.delivered) {
        writeDeliveredTables(generateConfigurations(7), directory, log);
    } else {
        std::vector<int> electrons;
        if (options.all || options.electrons == 0)
            for (int n = 1; n <= 14; ++n) electrons.push_back(n);
        else
            electrons.push_back(options.electrons);
        buildTables(TableBuild::Everything, electrons, directory, log);
        if (options.correlation) {
            buildTables(TableBuild::CorrelationLccf, electrons, directory, log);
            buildTables(TableBuild::CorrelationOccf, electrons, directory, log);
        }
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    log.appendLine(fmt::format("Tables built in {:.2f} s", elapsed.count()));
    return true;
}

bool runCompare(const TablesOptions& options) {
    TerminalLogBook log(LogRole::Results);
    std::vector<int> electrons;
    if (options.electrons == 0)
        for (int n = 1; n <= 14; ++n) electrons.push_back(n);
    else
        electrons.push_back(options.electrons);
    return comparePublishedTables(options.reference, electrons, log);
}

// The interactive checks; a cancelled question ends without a verdict (exit 1).
bool runCheck(const TablesOptions& options) {
    TerminalAsker asker(std::cin, std::cout);
    TerminalLogBook log(LogRole::Results);
    if (options.check == "energies") return compareExperimentAsking(asker, log);
    const PublishedCheck check = options.check == "uk"   ? PublishedCheck::UnitTensorsAndSpinOrbit
                                 : options.check == "es" ? PublishedCheck::Electrostatic
                                 : options.check == "ti" ? PublishedCheck::ThreeBody
                                                         : PublishedCheck::MkPk;
    return comparePublishedAsking(check, asker, log).value_or(false);
}

template <typename Generator>
void runInteractive(const TablesOptions& options, Generator generator) {
    runReporting([&] {
        TerminalAsker asker(std::cin, std::cout);
        TerminalLogBook log(LogRole::Results);
        generator(asker, log, directoryOf(options));
        return true;
    });
}

}  // namespace

void addTablesCommand(CLI::App& app) {
    auto options = std::make_shared<TablesOptions>();
    auto* tables = app.add_subcommand("tables", "term basis, fractional parentage and reduced-matrix tables");
    tables->require_subcommand(1);

    auto* build = tables->add_subcommand("build", "build the tables of f^n into the table directory");
    auto* n = build->add_option("--n", options->electrons, "number of electrons (1..14)")->check(CLI::Range(1, 14));
    auto* all = build->add_flag("--all", options->all, "every configuration f1..f14");
    build->add_flag("--delivered", options->delivered, "regenerate fNstate.lab and fNcfp.val, N = 1..7");
    build->add_flag("--correlation", options->correlation, "also the LCCF and OCCF tables (K = 2, 4, 6)");
    build->add_option("--dir", options->directory, "table directory (default: the delivered rme directory)");
    n->excludes(all);
    build->callback([options] { runReporting([&] { return runBuild(*options); }); });

    auto* compare = tables->add_subcommand("compare", "compare generated tables with published cross tables");
    compare->add_option("--reference", options->reference, "directory of the fNcross files")->required();
    compare->add_option("--n", options->electrons, "number of electrons (1..14); default all")->check(CLI::Range(1, 14));
    compare->callback([options] { runReporting([&] { return runCompare(*options); }); });

    auto* check = tables->add_subcommand(
        "check", "interactive: one published file against the generated tables, or its EXPERIMENT block against an .eng file");
    check->add_option("KIND", options->check, "uk (U(k), spin-orbit), es (electrostatic), ti, mkpk or energies")
        ->required()
        ->check(CLI::IsMember({"uk", "es", "ti", "mkpk", "energies"}));
    check->callback([options] { runReporting([&] { return runCheck(*options); }); });

    auto* cfp = tables->add_subcommand("cfp", "interactive: coefficients of fractional parentage for N > 7");
    cfp->add_option("--dir", options->directory, "table directory");
    cfp->callback([options] { runInteractive(*options, runComplementaryParentageGenerator); });

    auto* rme = tables->add_subcommand("rme", "interactive: U(k), V(1k) and f(k) tables");
    rme->add_option("--dir", options->directory, "table directory");
    rme->callback([options] { runInteractive(*options, runReducedMatrixGenerator); });
}

}  // namespace orvane::cli
