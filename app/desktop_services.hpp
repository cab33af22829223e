#pragma once
// What every window of the desktop program reaches: the log book, the
// question seam, the settings store, the table directory and the per-user
// data folder. The main window owns them; tests put a scripted Asker and a
// temporary data folder in their place.
#include <filesystem>

#include "core/log_book.hpp"
#include "core/settings_store.hpp"
#include "interactive/asker.hpp"

namespace orvane::app {

struct DesktopServices {
    LogBook* log = nullptr;            // safe from any thread: lines reach the log-book window in order
    Asker* asker = nullptr;            // safe from any thread: a worker's question waits for the user
    SettingsStore* settings = nullptr; // sections "Settings" and "Files"
    std::filesystem::path tableDirectory;
    // Per-user data folder (QStandardPaths::AppDataLocation): the settings
    // file and the log-book backup; the program's own folder is not writable
    // on Linux (docs/desktop.md).
    std::filesystem::path dataFolder;
};

}  // namespace orvane::app
