#pragma once
// AutoMatch of state labels: assigns to each observed level the calculated
// state whose label agrees best with its own, and adopts calculated labels.
// The scoring and the assignment rules are in docs/fitting-automatch.md.
#include <vector>

#include "fit/calculated_labels.hpp"
#include "fit/fit_workspace.hpp"

namespace orvane {

enum class MatchKind {
    Kept,     // empty (or unreadable) label: the state number is kept
    None,     // no state scores nearMatchPercent or more: state number 0
    Exact,    // score 100 %
    Nearly,   // score below 100 % and at least nearMatchPercent
};

struct LevelMatch {
    int stateNumber = 0;  // 1-based; 0 = nothing matches
    double score = 0.0;   // percent
    MatchKind kind = MatchKind::None;
    bool throughMinorState = false;  // the score comes from a minor multiplet of the state
};

// One match per observed level, in the order of `levels`; `states` ascending
// in energy (state number = index + 1).
std::vector<LevelMatch> autoMatch(const std::vector<ObservedLevel>& levels, const std::vector<CalculatedState>& states,
                                  const FitSettings& settings);

// Score in percent of a calculated label for an observed label.
double labelScore(const StateLabel& observed, const StateLabel& calculated, const FitSettings& settings);

// Copies the label of each assigned state (stateLabelText) into the level's
// label and marks it adopted; rows without a valid state number stay as they
// are. True when every row was adopted ("Alladopted"); false for an empty table.
bool adoptCalculatedLabels(std::vector<ObservedLevel>& levels, const std::vector<CalculatedState>& states);

}  // namespace orvane
