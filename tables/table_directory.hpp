#pragma once
// The table directory: files of configuration f^n are named "f" + n + name
// ("f3rmu2.val"), and names are matched without regard to case, so that the
// spellings "RMU2.VAL" and "rmu2.val" name the same file on any file system.
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

// "f3" + "rmu2.val" -> "f3rmu2.val"
std::string configurationFileName(int n, std::string_view tableName);

// The entry of `directory` whose name equals `name` case-blind (an exact match
// first); std::nullopt when there is none or the directory does not exist.
std::optional<std::filesystem::path> findCaseBlind(const std::filesystem::path& directory,
                                                   std::string_view name);

// The delivered table directory, the first of: $ORVANE_DATA_DIR (the folder
// that holds the tables), $ORVANE_TABLE_DIR (its older name), the existing
// one of tableDirectoryCandidates(runningExecutableDirectory()), and last the
// per-user cache. Nothing of the build machine is compiled in.
std::filesystem::path defaultTableDirectory();
// The folder of the running program (from /proc/self/exe); empty when unknown.
std::filesystem::path runningExecutableDirectory();
// The places searched beside a program in `executableDirectory`, in order:
// <dir>/../share/orvane/rme (installed), <dir>/../data/rme (a build folder
// inside the source tree), then data/rme of every ancestor of <dir> that holds
// a CMakeLists.txt (a build tree elsewhere below the source tree).
std::vector<std::filesystem::path> tableDirectoryCandidates(const std::filesystem::path& executableDirectory);
// The per-user cache used when the table directory is read-only:
// $XDG_CACHE_HOME/orvane/rme, else ~/.cache/orvane/rme.
std::filesystem::path userCacheTableDirectory();
// True when a file can be created in the directory (created if missing).
bool directoryIsWritable(const std::filesystem::path& directory);

}  // namespace orvane
