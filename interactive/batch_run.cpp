#include "interactive/batch_run.hpp"

#include "core/number_format.hpp"

namespace orvane {

namespace {

std::string now() {
    const auto time = localNow();
    return formatDate(time) + " " + formatTime(time);
}

// One row; true when it completed.
bool runRow(const BatchRun& row, InteractiveRunEnvironment& environment, const BatchHooks& hooks) {
    LogBook& log = environment.log;
    if (std::error_code error; !std::filesystem::is_regular_file(row.file, error)) {
        log.appendLine("Can't find input parameters file from " + row.file.string());
        return false;
    }
    if (hooks.confirm && !hooks.confirm(row)) return false;
    log.appendLine("Calculations of " + row.file.string() + " started on " + now());
    try {
        environment.settings.write(kSettingsSection, kRunCounterKey, "0");
        runEngineAsking(row.mode, row.file, row.request, environment);
        log.appendLine(" completed on " + now());
        return true;
    } catch (const UserError& error) {
        log.appendLine("Calculations of " + row.file.string() + " failed: " + error.title());
        if (hooks.failed) hooks.failed(error);
        return false;
    }
}

}  // namespace

int runBatch(const std::vector<BatchRun>& rows, InteractiveRunEnvironment& environment, const BatchHooks& hooks) {
    const auto count = static_cast<int>(rows.size());
    int failures = 0;
    for (int row = 0; row < count; ++row) {
        environment.log.progress(LogCategory::Run, "batch", row, count);
        if (!runRow(rows[static_cast<std::size_t>(row)], environment, hooks)) ++failures;
    }
    environment.log.progress(LogCategory::Run, "batch", count, count);
    environment.log.appendLine("Work completed.");
    return failures;
}

}  // namespace orvane
