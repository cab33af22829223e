#pragma once
// Observed levels in a spreadsheet (docs/spreadsheets.md): the first row
// holding the headings "State Label" and "Obs.Energy" (case-blind) starts
// the table; optional columns "State#" (the assigned state number),
// "g-factor" (observed gz), "gx" and "gy". Each row below with an observed
// energy is one level: the energy a number, or "[E]" as text for a withheld
// level; the label as parseStateLabel reads it (empty or "-": none). Rows
// without an observed energy (unobserved levels) are skipped; other columns
// are ignored. A sheet without the two headings is refused with "Incorrect
// structure of Excel for the input energy and state labels".
#include <string>
#include <vector>

#include "fit/observed_levels_file.hpp"
#include "spreadsheet/spreadsheet.hpp"

namespace orvane {

ObservedLevelsFile observedLevelsFromSheet(const Spreadsheet& sheet);

// The levels as such a sheet, "YYYY-MM-DD" (`date`) in A1, the headings in
// row 2; with `calculated`, also the columns "Calc.Energy", "E_Diff." and
// "Fit_Err" of the last fit. Energies "######0.0000", g-factors "##0.00000".
Spreadsheet observedLevelsSheet(const std::vector<ObservedLevel>& levels, const std::vector<ObservedGFactor>& gFactors,
                                const std::string& date, bool calculated = false);

// The g-factor table of a fit: "YYYY-MM-DD" in A1, the headings "State#",
// "State Label", "Component" (gx, gy, gz), "Obs.g", "Calc.g", "g_Diff." in
// row 2, values "##0.00000".
Spreadsheet gFactorTableSheet(const std::vector<ObservedGFactor>& gFactors, const std::string& date);

}  // namespace orvane
