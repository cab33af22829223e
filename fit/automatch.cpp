#include "fit/automatch.hpp"

#include <algorithm>
#include <cmath>
#include <tuple>

#include "fit/state_label.hpp"

namespace orvane {
namespace {

// A score this close to 100 % counts as an exact match (weights are decimals).
constexpr double kExactScore = 100.0 - 1e-9;

// Degenerate states (a Kramers doublet, a non-Kramers doublet) form one
// level: energies equal to 1e-6 relative, 1e-6 absolute near zero.
bool sameLevel(double a, double b) {
    return std::abs(a - b) <= 1e-6 * std::max({1.0, std::abs(a), std::abs(b)});
}

// For every state (ascending in energy) the first state of its level: the
// level's identity and the energy its members are compared with.
std::vector<std::size_t> levelStarts(const std::vector<CalculatedState>& states) {
    std::vector<std::size_t> start(states.size(), 0);
    for (std::size_t i = 1; i < states.size(); ++i)
        start[i] = sameLevel(states[i].energy, states[i - 1].energy) ? start[i - 1] : i;
    return start;
}

struct StateScore {
    double score = 0.0;
    bool throughMinorState = false;
};

// Best score of a state: its largest multiplet, or a minor one whose weight
// reaches minorStateRatio of the largest.
StateScore stateScore(const StateLabel& observed, const CalculatedState& state, const FitSettings& settings) {
    StateScore best{labelScore(observed, state.label, settings), false};
    if (state.multiplets.empty()) return best;
    const double largest = state.multiplets.front().second;
    for (std::size_t m = 1; m < state.multiplets.size(); ++m) {
        const auto& [label, weight] = state.multiplets[m];
        if (weight < settings.minorStateRatio * largest) break;  // decreasing weights
        const double score = labelScore(observed, label, settings);
        if (score > best.score) best = {score, true};
    }
    return best;
}

struct Candidate {
    double score = 0.0;
    double distance = 0.0;  // |E_obs - E_calc|
    int level = 0;          // observed row
    int state = 0;          // 0-based
    bool throughMinorState = false;
    bool operator<(const Candidate& other) const {
        return std::tie(other.score, distance, level, state) < std::tie(score, other.distance, other.level, other.state);
    }
};

}  // namespace

double labelScore(const StateLabel& observed, const StateLabel& calculated, const FitSettings& settings) {
    double given = 0.0, agreed = 0.0;
    auto part = [&](bool isGiven, bool equal, double weight) {
        if (!isGiven) return;
        given += weight;
        if (equal) agreed += weight;
    };
    part(!observed.term.empty(), observed.term == calculated.term, settings.termWeight);
    part(observed.twiceJ >= 0, observed.twiceJ == calculated.twiceJ, settings.jWeight);
    part(!observed.irrep.empty(), observed.irrep == calculated.irrep, settings.irrepWeight);
    return given > 0.0 ? 100.0 * agreed / given : 0.0;
}

std::vector<LevelMatch> autoMatch(const std::vector<ObservedLevel>& levels, const std::vector<CalculatedState>& states,
                                  const FitSettings& settings) {
    const auto levelOf = levelStarts(states);
    std::vector<bool> claimed(states.size(), false);  // by the first state of a level
    std::vector<LevelMatch> matches(levels.size());
    std::vector<Candidate> candidates;
    for (int row = 0; row < static_cast<int>(levels.size()); ++row) {
        const auto& level = levels[static_cast<std::size_t>(row)];
        const auto label = parseStateLabel(level.stateLabel);
        if (!label || label->term.empty()) {
            matches[static_cast<std::size_t>(row)] = {level.stateNumber, 0.0, MatchKind::Kept, false};
            if (level.stateNumber >= 1 && level.stateNumber <= static_cast<int>(states.size()))
                claimed[levelOf[static_cast<std::size_t>(level.stateNumber - 1)]] = true;
            continue;
        }
        for (int s = 0; s < static_cast<int>(states.size()); ++s) {
            const auto score = stateScore(*label, states[static_cast<std::size_t>(s)], settings);
            const double levelEnergy = states[levelOf[static_cast<std::size_t>(s)]].energy;
            if (score.score >= std::min(kExactScore, settings.nearMatchPercent))
                candidates.push_back(
                    {score.score, std::abs(level.observedEnergy - levelEnergy), row, s, score.throughMinorState});
        }
    }
    // Global greedy assignment: best score first, then the closest energy.
    std::sort(candidates.begin(), candidates.end());
    std::vector<bool> assigned(levels.size(), false);
    for (const auto& c : candidates) {
        const auto stateLevel = levelOf[static_cast<std::size_t>(c.state)];
        if (assigned[static_cast<std::size_t>(c.level)] || claimed[stateLevel]) continue;
        assigned[static_cast<std::size_t>(c.level)] = true;
        claimed[stateLevel] = true;
        matches[static_cast<std::size_t>(c.level)] = {c.state + 1, c.score,
                                                      c.score >= kExactScore ? MatchKind::Exact : MatchKind::Nearly,
                                                      c.throughMinorState};
    }
    return matches;
}

bool adoptCalculatedLabels(std::vector<ObservedLevel>& levels, const std::vector<CalculatedState>& states) {
    bool all = !levels.empty();
    for (auto& level : levels) {
        if (level.stateNumber < 1 || level.stateNumber > static_cast<int>(states.size())) {
            all = false;
            continue;
        }
        level.stateLabel = stateLabelText(states[static_cast<std::size_t>(level.stateNumber - 1)].label);
        level.adopted = true;
    }
    return all;
}

}  // namespace orvane
