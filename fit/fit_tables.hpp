#pragma once
// The workspace tables as text (the command line's report; the desktop shows
// the same columns in its grids): parameters, observed levels, g-factors, the
// RMS line, and a CSV form of the level table.
#include <string>
#include <vector>

#include "fit/fit_session.hpp"
#include "fit/fit_workspace.hpp"

namespace orvane {

std::string fitTitle(const FitWorkspace& workspace);  // "CF Fitting -" + file name
std::vector<std::string> parameterTableLines(const FitWorkspace& workspace);
std::vector<std::string> levelTableLines(const FitWorkspace& workspace);
std::vector<std::string> gFactorTableLines(const FitWorkspace& workspace);
// "RMS Dev.|S.E. = ..." and, with g-factors, "RMS Dev. of g = ...".
std::vector<std::string> rmsLines(const FitWorkspace& workspace);
// "Cycle n: RMS Dev. = ..., S.E. = ..., time = ... ms".
std::string cycleLine(const FitCycleReport& report);
std::string levelTableCsv(const FitWorkspace& workspace);

}  // namespace orvane
