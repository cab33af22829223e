#pragma once
// The list of a batch of runs: one parameter-file path per line, relative
// paths taken from the list's folder, blank lines and lines starting with
// "#" skipped, blanks around a path ignored.
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

struct BatchEntry {
    std::filesystem::path file;
    int line = 0;  // 1-based line of the list
};

// Throws UserError naming the list and the line for a path that holds a
// control byte (a NUL would cut the name the system opens).
std::vector<BatchEntry> parseBatchList(std::string_view text, const std::filesystem::path& listPath);

}  // namespace orvane
