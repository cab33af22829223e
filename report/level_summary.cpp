#include "report/level_summary.hpp"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

namespace orvane {

namespace {

std::string largestComponent(const ResultLevel& level, const ResultBasis& basis) {
    if (level.components.empty()) return "";
    const auto& top = level.components.front();  // components come in decreasing |c|
    return fmt::format("{:<18} {:5.1f}%", basisStateLabel(basis, top.basisIndex),
                       100.0 * std::norm(top.coefficient));
}

std::string resultFiles(const ResultNames& names) {
    std::string written;
    for (const auto* name : {&names.general, &names.vectors, &names.energies})
        if (!name->empty() && *name != "nul:") written += (written.empty() ? "" : ", ") + *name;
    return written.empty() ? "No result files written." : "Result files: " + written;
}

}  // namespace

std::vector<std::string> levelSummaryLines(const RunOutcome& outcome, int count) {
    std::vector<std::string> lines;
    const auto& levels = outcome.levels;
    const auto total = static_cast<int>(levels.size());
    const int shown = count < 0 ? total : std::min(count, total);
    if (shown > 0) {
        lines.push_back(fmt::format("{} {} of {} {} ({}, above the lowest):", shown == total ? "All" : "Lowest",
                                    shown, total, outcome.crystalFieldStage ? "states" : "J-multiplets",
                                    outcome.energyUnit));
        lines.push_back(fmt::format("{:>5} {:>12}  {:<10} {}", "#", "Energy", "Multiplet", "Largest component"));
        const double lowest = levels.front().energy;
        for (int i = 0; i < shown; ++i) {
            const auto& level = levels[static_cast<std::size_t>(i)];
            lines.push_back(fmt::format("{:>5} {:>12.3f}  {:<10} {}", i + 1, level.energy - lowest, level.label,
                                        largestComponent(level, outcome.basis)));
        }
    }
    lines.push_back(resultFiles(outcome.names));
    return lines;
}

}  // namespace orvane
