#pragma once
// The seal of a generated table: its title line's generator bracket names the
// file, the number of records and a checksum of the body,
//   "U(2) MATRIX  f3  [Orvane tables generator 2; f3rmu2.val; 63 records; fnv1a64 89ab...]",
// so that an empty, truncated, edited, swapped (another table copied over it)
// or reordered table is found before it is used (docs/tables.md, "Integrity").
// Records are the non-blank lines after the title; the checksum is the 64-bit
// FNV-1a hash (Fowler, Noll & Vo) of those bytes as written. A table without
// the generator's bracket comes from elsewhere and is accepted as it stands
// (its reader checks its layout), unless it is empty.
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "core/log_book.hpp"

namespace orvane {

// The text with the seal in its first line's "[<generator version>]"; a text
// without that bracket is returned unchanged.
std::string sealedTableText(std::string_view fileName, std::string_view text);

// What is wrong with a table's text read from `fileName`, or nothing.
std::optional<std::string> tableTextProblem(std::string_view fileName, std::string_view text);

// The same for the table `name` of a directory (found case-blind): "is
// missing" when absent.
std::optional<std::string> tableFileProblem(const std::filesystem::path& directory, const std::string& name);

// The same for a table that only this generator writes (the correlation
// crystal-field tables): a table without the generator's bracket (older
// build or written elsewhere) is a problem too, so it is generated again
// instead of being reused unchecked.
std::optional<std::string> generatedTableProblem(const std::filesystem::path& directory, const std::string& name);

// The path of such a table in `directory`; `build` writes it (and returns its
// path) when it is missing or has a problem, which is logged with the path.
std::filesystem::path freshGeneratedTable(const std::filesystem::path& directory, const std::string& name,
                                          const std::function<std::filesystem::path()>& build, LogBook& log);

// Seals the text and writes it atomically.
void writeGeneratedTable(const std::filesystem::path& path, std::string_view text);

}  // namespace orvane
