#pragma once
// The shared front of the property commands (`orvane states`, `gfactors`,
// `moments`, `chi`, `intensities`, `jo-fit`): run the engine in-process on a
// parameter file and hand its eigenstates to the properties library; write
// the result table as CSV (to a file, atomically, or to standard output)
// and as .xlsx.
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "core/log_book.hpp"
#include "engine/parameter_set.hpp"
#include "properties/property_states.hpp"
#include "spreadsheet/spreadsheet.hpp"

namespace orvane::cli {

struct PropertyRunOptions {
    std::string file;
    bool freeIon = false;
    bool complex = false;
    double spinG = 0.0;  // 0: the free-electron value
    std::string tableDirectory;
    std::string csv;     // "" none, "-" standard output
    std::string xlsx;    // "" none
    std::string vectors;   // a state-vector file (.ev) of an earlier run instead of solving
    std::string accuracy;  // decimal places, or an accuracy limit such as 1E-5; "" the default pictures
};

// A property value in the report: the default picture, or with the decimal
// places of --accuracy (a limit 1E-d gives d places).
std::string propertyText(double value, const PropertyRunOptions& options, std::string_view defaultPicture);

// Adds FILE, --free-ion, --complex, --gs, --tables, --vectors, --csv, --xlsx and --accuracy.
void addPropertyRunOptions(CLI::App& command, PropertyRunOptions& options);

struct PropertyRun {
    ParameterSet set;
    PropertyStates states;
    double spinG = 0.0;
};

// Throws UserError for a bad file or missing tables.
PropertyRun runForProperties(const PropertyRunOptions& options, LogBook& log);

// The report goes to standard output unless the CSV does.
LogBook& reportLog(const PropertyRunOptions& options);

// The result table of a command: a row of column names, then one row per
// result; each column's numbers carry its number format in the .xlsx.
class PropertyTable {
public:
    PropertyTable(const std::vector<std::string>& columns, std::vector<std::string> formats = {});
    void add(const std::vector<SheetValue>& values);
    const Spreadsheet& sheet() const { return sheet_; }

private:
    Spreadsheet sheet_;
    std::vector<std::string> formats_;
};

// Writes the table when asked: --csv with numbers of 10 significant digits;
// --xlsx with the date "YYYY-MM-DD" in A1 above it, or `exported` (a sheet
// already in its export form) instead.
void writeTable(const PropertyRunOptions& options, const PropertyTable& table, const Spreadsheet* exported = nullptr);

// Runs `body`, mapping UserError and std::exception to exit code 1 with the message on stderr.
void runPropertyCommand(const std::function<void()>& body);

// The states the commands number 1, 2, ...: every state of a crystal-field
// run; the first component of every multiplet of a free-ion run (there the
// numbers count multiplets).
std::vector<int> numberedStates(const PropertyRun& run);

// A 1-based number given on the command line, checked against the run: the state it names.
int stateIndex(const PropertyRun& run, int number, const std::string& option);

// The number printed for a state (its multiplet's number in a free-ion run).
int stateNumber(const PropertyRun& run, int state);

// The states from the one numbered `first` to the last of the one numbered `last` (0-based, inclusive).
std::pair<int, int> stateRange(const PropertyRun& run, int first, int last);

}  // namespace orvane::cli
