#pragma once
// The checks made before every fit cycle (docs/fitting.md, "Initialisation
// checks"). Each failing check adds its log-book text; the caller decides
// from the outcome whether to run, to ask "Still continue to carry out the
// fit?" or to ask about the imaginary crystal-field parameters.
#include <string>
#include <vector>

#include "engine/parameter_set.hpp"
#include "fit/fit_workspace.hpp"

namespace orvane {

struct FitCheckContext {
    bool superposition = false;           // a superposition-model fit
    bool imaginaryCrystalField = false;   // the set holds non-zero Im B(k,q)
};

struct FitCheckOutcome {
    std::vector<std::string> messages;
    bool refused = false;         // no free parameter, an unknown option, a bad link, missing intrinsic parameters
    bool countWarnings = false;   // too few observations for the free parameters
    bool askRealFitOfComplexSet = false;
};

inline constexpr const char* kContinueFitQuestion = "Still continue to carry out the fit?";
inline constexpr const char* kRealFitOfComplexSetQuestion =
    "There are complex CF parameters. Do you really want to run this real CF fit?";

FitCheckOutcome checkFitSetup(const FitWorkspace& workspace, const FitCheckContext& context);

// The set holds a non-zero Im B(k,q) (asked about before a real crystal-field fit).
bool hasImaginaryCrystalField(const ParameterSet& set);

// The row a linked parameter finally follows (through chains of links), or
// -1 when the chain ends at an unknown name or runs in a circle.
int linkMasterIndex(const std::vector<FitParameter>& rows, std::size_t row);

// The option a row takes in a fit of the given scope: a free row outside the
// scope counts as fixed.
std::int16_t effectiveOption(const FitParameter& row, FitScope scope);

}  // namespace orvane
