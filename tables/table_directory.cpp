#include "tables/table_directory.hpp"

#include <cstdlib>
#include <fstream>
#include <system_error>

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

std::filesystem::path defaultTableDirectory() {
    if (const char* dir = std::getenv("ORVANE_TABLE_DIR"); dir && *dir) return dir;
    return std::filesystem::path(ORVANE_SOURCE_DIR) / "data" / "rme";
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
