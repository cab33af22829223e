#pragma once
// The table directory: files of configuration f^n are named "f" + n + name
// ("f3rmu2.val"), and names are matched without regard to case, so that the
// spellings "RMU2.VAL" and "rmu2.val" name the same file on any file system.
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

// "f3" + "rmu2.val" -> "f3rmu2.val"
std::string configurationFileName(int n, std::string_view tableName);

// The entry of `directory` whose name equals `name` case-blind (an exact match
// first); std::nullopt when there is none or the directory does not exist.
std::optional<std::filesystem::path> findCaseBlind(const std::filesystem::path& directory,
                                                   std::string_view name);

// The delivered table directory: $ORVANE_TABLE_DIR when set, else data/rme of
// the source tree.
std::filesystem::path defaultTableDirectory();
// The per-user cache used when the table directory is read-only:
// $XDG_CACHE_HOME/orvane/rme, else ~/.cache/orvane/rme.
std::filesystem::path userCacheTableDirectory();
// True when a file can be created in the directory (created if missing).
bool directoryIsWritable(const std::filesystem::path& directory);

}  // namespace orvane
