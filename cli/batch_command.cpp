// orvane batch LIST: runs every parameter file named in LIST (one path per
// line, relative paths taken from the list's folder, blank lines and lines
// starting with "#" skipped), one after the other. A missing file or a failed
// run is reported and the next row runs; the exit code is 1 when any row failed.
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "cli/commands.hpp"
#include "cli/terminal_log_book.hpp"
#include "cli/exit_code.hpp"
#include "interactive/batch_list.hpp"
#include "interactive/command_line_asker.hpp"
#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/number_format.hpp"
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

std::string today() { return formatDate(localNow()) + " " + formatTime(localNow()); }

// Runs every row; returns the number of rows that did not complete.
int runBatch(const BatchOptions& options) {
    TerminalLogBook log(LogRole::Narration);
    CommandLineAsker asker(std::cerr);
    MemorySettingsStore settings;
    InteractiveRunEnvironment environment{log, asker, settings,
                               options.tableDirectory.empty() ? defaultTableDirectory()
                                                              : std::filesystem::path(options.tableDirectory)};
    const std::filesystem::path listPath(options.list);
    const auto entries = parseBatchList(readTextFile(listPath, 1u << 20), listPath);
    const int mode = options.freeIon ? 2 : options.complex ? 1 : 0;
    int failures = 0;
    const auto rows = static_cast<int>(entries.size());
    int row = 0;
    for (const BatchEntry& entry : entries) {
        log.progress(LogCategory::Run, "batch", row++, rows);
        const std::filesystem::path& file = entry.file;
        if (!std::filesystem::is_regular_file(file)) {
            log.appendLine("Can't find input parameters file from " + file.string());
            ++failures;
            continue;
        }
        log.appendLine("Calculations of " + file.string() + " started on " + today());
        try {
            settings.write(kSettingsSection, kRunCounterKey, "0");
            runEngineAsking(mode, file, RunRequest{}, environment);
            log.appendLine(" completed on " + today());
        } catch (const UserError& error) {
            std::cerr << error.title() << ": " << error.describe() << '\n';
            log.appendLine("Calculations of " + file.string() + " failed: " + error.title());
            ++failures;
        }
    }
    log.progress(LogCategory::Run, "batch", rows, rows);
    log.appendLine("Work completed.");
    return failures;
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
            setExitCode(runBatch(*options) == 0 ? kExitOk : kExitFailure);
        } catch (const UserError& error) {
            std::cerr << error.title() << ": " << error.describe() << '\n';
            setExitCode(kExitFailure);
        }
    });
}

}  // namespace orvane::cli
