#pragma once
// Where the Python module finds the tables (docs/tables.md, docs/python.md):
// $ORVANE_DATA_DIR (or $ORVANE_TABLE_DIR) when set; otherwise the places
// searched beside a program (tables/table_directory.hpp), tried from the
// package's folder and each folder above it, so that the package finds
// <prefix>/share/orvane/rme when installed below <prefix> (a virtual
// environment, /usr/local) and the source tree's data/rme from a build
// folder inside it; otherwise the per-user cache.
#include <filesystem>

namespace orvane {

std::filesystem::path tableDirectoryNear(const std::filesystem::path& packageDirectory);

}  // namespace orvane
