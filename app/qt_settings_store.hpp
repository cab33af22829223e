#pragma once
// The settings store of the desktop program: a QSettings INI file in the
// per-user data folder, sections "Settings" and "Files" as QSettings groups.
// Guarded by a mutex: a run on a worker thread counts its runs here.
#include <QSettings>
#include <filesystem>
#include <mutex>

#include "core/settings_store.hpp"

namespace orvane::app {

class QtSettingsStore final : public SettingsStore {
public:
    explicit QtSettingsStore(const std::filesystem::path& file);
    std::optional<std::string> read(std::string_view section, std::string_view key) const override;
    void write(std::string_view section, std::string_view key, std::string_view value) override;
    void remove(std::string_view section, std::string_view key) override;
    void flush();

private:
    mutable std::mutex mutex_;
    mutable QSettings settings_;
};

// "Settings" file of the program in a data folder.
std::filesystem::path settingsFileIn(const std::filesystem::path& dataFolder);

}  // namespace orvane::app
