#pragma once
// The susceptibility table as exported to a spreadsheet: "YYYY-MM-DD" in A1,
// the headings "Temperature/K", "X(Average)", "C(Average)", "X(x)", "X(y)",
// "X(z)", "C(x)", "C(y)", "C(z)" in row 2, one row per temperature below
// (emu/mol and K emu/mol). Temperatures "##0.0000"; the other values
// "#0.000000", or "0.0000E+00" below 0.001 in magnitude. It reads back as
// measured susceptibility (properties/measured_susceptibility.hpp).
#include <string>
#include <vector>

#include "properties/susceptibility.hpp"
#include "spreadsheet/spreadsheet.hpp"

namespace orvane {

Spreadsheet susceptibilitySheet(const std::vector<SusceptibilityPoint>& points, const std::string& date);

}  // namespace orvane
