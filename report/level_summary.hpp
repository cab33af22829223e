#pragma once
// The short table a run ends with on the terminal: the lowest states with
// their energy above the lowest one, multiplet label and largest component,
// then where the result files are.
#include <string>
#include <vector>

#include "report/run_driver.hpp"

namespace orvane {

inline constexpr int kDefaultSummaryLevels = 20;

// Lines of the summary of the `count` lowest levels (all when count < 0 or
// above their number; none when 0 — only the result files are named).
std::vector<std::string> levelSummaryLines(const RunOutcome& outcome, int count);

}  // namespace orvane
