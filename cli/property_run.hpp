#pragma once
// The command-line front of the property commands (`orvane states`,
// `gfactors`, `moments`, `chi`, `intensities`, `jo-fit`): the options shared
// by every command, and the table written as CSV (to a file, atomically, or
// to standard output) and as .xlsx. The run itself and the numbering of the
// states are those of interactive/property_run.hpp, shared with the desktop.
#include <functional>

#include <CLI/CLI.hpp>

#include "core/log_book.hpp"
#include "interactive/property_run.hpp"

namespace orvane::cli {

// Adds FILE, --free-ion, --complex, --gs, --tables, --vectors, --csv, --xlsx and --accuracy.
void addPropertyRunOptions(CLI::App& command, PropertyRunOptions& options);

// The report goes to standard output unless the CSV does.
LogBook& reportLog(const PropertyRunOptions& options);

// Writes the table when asked: --csv with numbers of 10 significant digits;
// --xlsx with the date "YYYY-MM-DD" in A1 above it, or `exported` (a sheet
// already in its export form) instead.
void writeTable(const PropertyRunOptions& options, const PropertyTable& table, const Spreadsheet* exported = nullptr);

// Runs `body`, mapping UserError and std::exception to exit code 1 with the message on stderr.
void runPropertyCommand(const std::function<void()>& body);

}  // namespace orvane::cli
