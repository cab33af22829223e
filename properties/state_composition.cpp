#include "properties/state_composition.hpp"

#include <algorithm>
#include <cmath>

#include "properties/magnetic_moment.hpp"

namespace orvane {

namespace {

std::string angular(const PropertyStates& states, int twice) {
    return states.kramers() ? std::to_string(twice) : std::to_string(twice / 2);
}

}  // namespace

std::string compositionLabel(const PropertyStates& states, int basisIndex) {
    const auto& b = states.basis.states[basisIndex];
    const std::string term = states.terms[b.term].label;
    if (states.freeIon) return "|" + term + " " + angular(states, b.twiceJ) + ">";
    return term + " " + angular(states, b.twiceJ) + " " + angular(states, b.twiceM) + ">";
}

StateComposition stateComposition(const PropertyStates& states, int state, double minComponent) {
    StateComposition composition;
    composition.state = state;
    composition.energy = states.relativeEnergy(state);
    const auto& info = states.states[state];
    const auto& group = states.groups[info.group];
    const auto vector = group.vectors.col(info.column);
    std::vector<std::pair<double, int>> order;
    for (Eigen::Index r = 0; r < vector.size(); ++r)
        if (std::abs(vector(r)) >= minComponent && std::abs(vector(r)) > 0.0) order.emplace_back(-std::abs(vector(r)), static_cast<int>(r));
    std::stable_sort(order.begin(), order.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& [magnitude, r] : order) {
        composition.lines.push_back({compositionLabel(states, group.basisIndices[r]), vector(r)});
        composition.subtotal += magnitude * magnitude;
    }
    return composition;
}

std::vector<MomentRow> momentRows(const PropertyStates& states, const TensorOperator& moment, int initial,
                                  int first, int last) {
    const Eigen::MatrixXcd elements = momentElements(moment, initial);
    std::vector<MomentRow> rows;
    const int end = std::min(last, static_cast<int>(states.states.size()) - 1);
    for (int j = std::max(first, 0); j <= end; ++j) rows.push_back({j, elements.row(j).transpose()});
    return rows;
}

}  // namespace orvane
