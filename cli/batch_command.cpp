// orvane batch LIST: runs every parameter file named in LIST (one path per
// line, relative paths taken from the list's folder, blank lines and lines
// starting with "#" skipped), one after the other. A missing file or a failed
// run is reported and the next row runs; the exit code is 1 when any row failed.
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "cli/commands.hpp"
#include "cli/terminal_log_book.hpp"
#include "cli/exit_code.hpp"
#include "interactive/batch_list.hpp"
#include "interactive/batch_run.hpp"
#include "interactive/command_line_asker.hpp"
#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/settings_store.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "interactive/run_dialogs.hpp"
#include "tables/table_directory.hpp"

namespace orvane::cli {

namespace {

struct BatchOptions {
    std::string list;
    bool freeIon = false;
    bool complex = false;
    std::string tableDirectory;
};

// Runs every row; returns the number of rows that did not complete.
int runBatchList(const BatchOptions& options) {
    TerminalLogBook log(LogRole::Narration);
    CommandLineAsker asker(std::cerr);
    MemorySettingsStore settings;
    InteractiveRunEnvironment environment{log, asker, settings,
                               options.tableDirectory.empty() ? defaultTableDirectory()
                                                              : std::filesystem::path(options.tableDirectory)};
    const std::filesystem::path listPath(options.list);
    const int mode = options.freeIon ? 2 : options.complex ? 1 : 0;
    std::vector<BatchRun> rows;
    for (const BatchEntry& entry : parseBatchList(readTextFile(listPath, 1u << 20), listPath))
        rows.push_back({entry.file, mode, RunRequest{}});
    BatchHooks hooks;
    hooks.failed = [](const UserError& error) { std::cerr << error.title() << ": " << error.describe() << '\n'; };
    return runBatch(rows, environment, hooks);
}

}  // namespace

void addBatchCommand(CLI::App& app) {
    auto* command = app.add_subcommand("batch", "Runs every parameter file listed in LIST (one path per line)");
    auto options = std::make_shared<BatchOptions>();
    command->add_option("LIST", options->list, "text file with one .par path per line")->required();
    auto* freeIon = command->add_flag("--free-ion", options->freeIon, "free-ion runs");
    command->add_flag("--complex", options->complex, "complex crystal-field runs")->excludes(freeIon);
    command->add_option("--tables", options->tableDirectory, "table directory (default: the delivered one)");
    command->callback([options] {
        try {
            setExitCode(runBatchList(*options) == 0 ? kExitOk : kExitFailure);
        } catch (const UserError& error) {
            std::cerr << error.title() << ": " << error.describe() << '\n';
            setExitCode(kExitFailure);
        }
    });
}

}  // namespace orvane::cli
