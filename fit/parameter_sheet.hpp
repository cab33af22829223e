#pragma once
// Parameter values in a spreadsheet (docs/spreadsheets.md): the first row
// holding the headings "Parameter" and "Value" (case-blind) starts the table;
// each row below names a parameter as the fit does (EAVG, F2, ZETA, M0, B43,
// ImB43, SCCFc21) and gives its value: a number, or a number with its
// uncertainty as text ("751.7(0.4)"). A sheet without the headings is
// refused with "Incorrect structure of Excel for the free-ion and crystal
// field parameters"; an unknown name or a value that is not a number, naming
// the cell.
#include <string>
#include <vector>

#include "engine/parameter_set.hpp"
#include "fit/fit_workspace.hpp"
#include "spreadsheet/spreadsheet.hpp"

namespace orvane {

// `set` with the sheet's values in the rows it names (the set must hold them).
ParameterSet withSheetParameterValues(const ParameterSet& set, const Spreadsheet& sheet);

// The fitted parameters (Final_fit) as such a sheet: "YYYY-MM-DD" in A1, the
// headings in row 2, values "#####0.0000".
Spreadsheet fittedParameterSheet(const std::vector<FitParameter>& rows, const std::string& date);

}  // namespace orvane
