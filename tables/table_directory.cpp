#include "tables/table_directory.hpp"

#include <cstdlib>
#include <fstream>
#include <system_error>
#include <vector>

#include "core/text.hpp"

namespace orvane {

std::string configurationFileName(int n, std::string_view tableName) {
    return "f" + std::to_string(n) + std::string(tableName);
}

std::optional<std::filesystem::path> findCaseBlind(const std::filesystem::path& directory,
                                                   std::string_view name) {
    std::error_code error;
    const auto exact = directory / std::string(name);
    if (std::filesystem::is_regular_file(exact, error)) return exact;
    std::filesystem::directory_iterator entries(directory, error);
    if (error) return std::nullopt;
    std::optional<std::filesystem::path> found;
    for (const auto& entry : entries) {
        const auto entryName = entry.path().filename().string();
        if (!iequals(entryName, name)) continue;
        // Deterministic choice among several spellings: the smallest name.
        if (!found || entryName < found->filename().string()) found = entry.path();
    }
    return found;
}

std::filesystem::path runningExecutableDirectory() {
    std::error_code error;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error || executable.empty()) return {};
    return executable.parent_path();
}

std::vector<std::filesystem::path> tableDirectoryCandidates(const std::filesystem::path& executableDirectory) {
    std::vector<std::filesystem::path> candidates;
    if (executableDirectory.empty()) return candidates;
    const auto parent = executableDirectory.parent_path();
    candidates.push_back(parent / "share" / "orvane" / "rme");  // installed: <prefix>/bin/orvane
    candidates.push_back(parent / "data" / "rme");             // a build folder inside the source tree
    // A build tree elsewhere below the source tree: the first ancestor that
    // holds the delivered tables beside the top CMakeLists.txt.
    for (auto folder = executableDirectory; !folder.empty(); folder = folder.parent_path()) {
        std::error_code error;
        if (std::filesystem::is_regular_file(folder / "CMakeLists.txt", error))
            candidates.push_back(folder / "data" / "rme");
        if (folder == folder.root_path() || folder.parent_path() == folder) break;
    }
    return candidates;
}

std::filesystem::path defaultTableDirectory() {
    for (const char* variable : {"ORVANE_DATA_DIR", "ORVANE_TABLE_DIR"})
        if (const char* dir = std::getenv(variable); dir && *dir) return dir;
    for (const auto& candidate : tableDirectoryCandidates(runningExecutableDirectory())) {
        std::error_code error;
        if (std::filesystem::is_directory(candidate, error)) return candidate;
    }
    return userCacheTableDirectory();
}

std::filesystem::path userCacheTableDirectory() {
    if (const char* cache = std::getenv("XDG_CACHE_HOME"); cache && *cache)
        return std::filesystem::path(cache) / "orvane" / "rme";
    if (const char* home = std::getenv("HOME"); home && *home)
        return std::filesystem::path(home) / ".cache" / "orvane" / "rme";
    return std::filesystem::temp_directory_path() / "orvane-rme";
}

bool directoryIsWritable(const std::filesystem::path& directory) {
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (!std::filesystem::is_directory(directory, error)) return false;
    const auto probe = directory / ".orvane-write-probe";
    {
        std::ofstream out(probe);
        if (!out) return false;
    }
    std::filesystem::remove(probe, error);
    return true;
}

}  // namespace orvane
