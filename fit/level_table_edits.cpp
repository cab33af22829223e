#include "fit/level_table_edits.hpp"

#include <algorithm>
#include <map>
#include <utility>

#include "fit/state_label.hpp"

namespace orvane {

void setZeroOfObservedEnergies(std::vector<ObservedLevel>& levels) {
    if (levels.empty()) return;
    const double zero = std::min_element(levels.begin(), levels.end(), [](const auto& a, const auto& b) {
                            return a.observedEnergy < b.observedEnergy;
                        })->observedEnergy;
    for (auto& level : levels) level.observedEnergy -= zero;
}

void convertToCrystalFieldSplittings(std::vector<ObservedLevel>& levels) {
    std::map<std::pair<std::string, int>, double> lowest;
    const auto multipletOf = [](const ObservedLevel& level) -> std::optional<std::pair<std::string, int>> {
        const auto label = parseStateLabel(level.stateLabel);
        if (!label || label->term.empty() || label->twiceJ < 0) return std::nullopt;
        return std::pair{label->term, label->twiceJ};
    };
    for (const auto& level : levels)
        if (const auto multiplet = multipletOf(level)) {
            auto [entry, inserted] = lowest.emplace(*multiplet, level.observedEnergy);
            if (!inserted) entry->second = std::min(entry->second, level.observedEnergy);
        }
    for (auto& level : levels)
        if (const auto multiplet = multipletOf(level)) level.observedEnergy -= lowest.at(*multiplet);
}

void sortByObservedEnergy(std::vector<ObservedLevel>& levels, bool ascending) {
    std::stable_sort(levels.begin(), levels.end(), [ascending](const auto& a, const auto& b) {
        return ascending ? a.observedEnergy < b.observedEnergy : a.observedEnergy > b.observedEnergy;
    });
}

}  // namespace orvane
