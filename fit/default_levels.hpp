#pragma once
// Where the default observed-level list "defaulteng.txt" is found: first as
// "cfp/defaulteng.txt" below the program folder, then as "defaulteng.txt" in
// it. The list is an observed-levels file (fit/observed_levels_file.hpp).
#include <filesystem>
#include <optional>

namespace orvane {

std::optional<std::filesystem::path> findDefaultLevelList(
    const std::filesystem::path& programFolder);

}  // namespace orvane
