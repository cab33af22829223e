#include "python/module_tables.hpp"

#include <cstdlib>
#include <system_error>

#include "tables/table_directory.hpp"

namespace orvane {

std::filesystem::path tableDirectoryNear(const std::filesystem::path& packageDirectory) {
    if (std::getenv("ORVANE_DATA_DIR") || std::getenv("ORVANE_TABLE_DIR")) return defaultTableDirectory();
    std::error_code error;
    for (auto dir = std::filesystem::absolute(packageDirectory, error);; dir = dir.parent_path()) {
        for (const auto& candidate : tableDirectoryCandidates(dir))
            if (std::filesystem::is_directory(candidate, error)) return candidate;
        if (dir == dir.parent_path()) break;
    }
    return userCacheTableDirectory();
}

}  // namespace orvane
