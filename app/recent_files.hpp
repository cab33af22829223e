#pragma once
// The recent-file list: at most nine paths, the latest first, kept in the
// settings store under "Files" as "file1".."file9" and shown as menu entries
// "&1 path", "&2 path", ...
#include <string>
#include <vector>

#include "core/settings_store.hpp"

namespace orvane::app {

inline constexpr const char* kFilesSection = "Files";
inline constexpr int kMaxRecentFiles = 9;

class RecentFiles {
public:
    explicit RecentFiles(SettingsStore& settings) : settings_(settings) {}
    // Reads the list from the store (getMRUsettings).
    void load();
    // Puts `path` first (removing an older entry of it), drops what exceeds
    // nine, and writes the list (saveMRU, saveMRUsettings).
    void add(const std::string& path);
    const std::vector<std::string>& paths() const { return paths_; }

private:
    void save() const;
    SettingsStore& settings_;
    std::vector<std::string> paths_;
};

// "&" + number + " " + path, number from 1.
std::string recentFileCaption(int number, const std::string& path);

}  // namespace orvane::app
