#pragma once
// The shared front of the property calculations (docs/properties.md), used by
// the command line (`orvane states|gfactors|moments|chi|intensities|jo-fit`)
// and by the desktop windows: run the engine in-process on a parameter file
// and hand its eigenstates to the properties library; number the states the
// way every report prints them; keep a result table with the number format
// of each column.
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/log_book.hpp"
#include "engine/parameter_set.hpp"
#include "properties/property_states.hpp"
#include "spreadsheet/spreadsheet.hpp"

namespace orvane {

struct PropertyRunOptions {
    std::string file;
    bool freeIon = false;
    bool complex = false;
    double spinG = 0.0;  // 0: the free-electron value
    std::string tableDirectory;  // "" the delivered tables
    std::string csv;     // where the command line writes its table: "" none, "-" standard output
    std::string xlsx;    // "" none
    std::string vectors;   // a state-vector file (.ev) of an earlier run instead of solving
    std::string accuracy;  // decimal places, or an accuracy limit such as 1E-5; "" the default pictures
};

// A property value in the report: the default picture, or with the decimal
// places of the accuracy (a limit 1E-d gives d places).
std::string propertyText(double value, const PropertyRunOptions& options, std::string_view defaultPicture);

struct PropertyRun {
    ParameterSet set;
    PropertyStates states;
    double spinG = 0.0;
};

// Throws UserError for a bad file or missing tables. The operators built on
// `run.states` keep its address: keep the run in place while they live.
PropertyRun runForProperties(const PropertyRunOptions& options, LogBook& log);

// The result table of a report: a row of column names, then one row per
// result; each column's numbers carry its number format.
class PropertyTable {
public:
    PropertyTable(const std::vector<std::string>& columns, std::vector<std::string> formats = {});
    void add(const std::vector<SheetValue>& values);
    const Spreadsheet& sheet() const { return sheet_; }

private:
    Spreadsheet sheet_;
    std::vector<std::string> formats_;
};

// The table as an .xlsx workbook (or by the extension) with today's date
// "YYYY-MM-DD" in A1 above it, written through a temporary file.
void saveDatedTable(const Spreadsheet& sheet, const std::filesystem::path& path);

// The states the reports number 1, 2, ...: every state of a crystal-field
// run; the first component of every multiplet of a free-ion run (there the
// numbers count multiplets).
std::vector<int> numberedStates(const PropertyRun& run);

// A 1-based number given by the user, checked against the run: the state it
// names. `what` names the input in the message of a UserError.
int stateIndex(const PropertyRun& run, int number, const std::string& what);

// The number printed for a state (its multiplet's number in a free-ion run).
int stateNumber(const PropertyRun& run, int state);

// The states from the one numbered `first` to the last of the one numbered `last` (0-based, inclusive).
std::pair<int, int> stateRange(const PropertyRun& run, int first, int last);

}  // namespace orvane
