#include "fit/default_levels.hpp"

#include <system_error>

namespace orvane {

std::optional<std::filesystem::path> findDefaultLevelList(
    const std::filesystem::path& programFolder) {
    for (const auto& candidate :
         {programFolder / "cfp" / "defaulteng.txt", programFolder / "defaulteng.txt"}) {
        std::error_code error;
        if (std::filesystem::is_regular_file(candidate, error)) return candidate;
    }
    return std::nullopt;
}

}  // namespace orvane
