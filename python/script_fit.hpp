#pragma once
// A least-squares fit for scripts (docs/python.md): the fit library's session
// (fit/fit_session.hpp) on a parameter set and observed levels, the named
// parameters free, either a given number of cycles or the Ultimate Fit
// series. Asks nothing: the warnings the command line would ask about go
// into the report; a refused set-up throws.
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "engine/parameter_set.hpp"
#include "fit/fit_workspace.hpp"

namespace orvane {

struct ScriptFitRequest {
    std::vector<ObservedLevel> levels;
    std::vector<ObservedGFactor> gFactors;
    std::vector<std::string> free;  // "F2", "ZETA", "B43", "ImB43", ...
    std::optional<int> cycles;      // std::nullopt: the Ultimate Fit series
    bool complex = false;
};

struct ScriptFit {
    ParameterSet fitted;   // the set with the fitted values and the fit section
    std::string report;    // cycle lines and the parameter, level, g-factor and RMS tables
    double rmsDeviation = 0.0;
    double standardError = 0.0;
};

// Throws UserError for a refused set-up, missing tables or a failed solve.
ScriptFit fitParameterSet(const ParameterSet& set, const ScriptFitRequest& request,
                          const std::filesystem::path& tableDirectory);

}  // namespace orvane
