#include "fit/calculated_labels.hpp"

#include <limits>

#include "core/number_format.hpp"
#include "engine/level_labels.hpp"

namespace orvane {
namespace {

// No component list is needed: only the multiplet weights.
constexpr double kNoComponents = std::numeric_limits<double>::infinity();

CalculatedState stateOf(const ResultLevel& level, const Model& model, double energy, const std::string& irrep) {
    const auto& jStates = model.freeIonOperators().basis.states;
    const auto& terms = model.tables().terms;
    CalculatedState state;
    state.energy = energy;
    state.mixed = level.mixed;
    for (const auto& multiplet : level.multiplets) {
        const auto& jState = jStates[static_cast<std::size_t>(multiplet.jState)];
        state.multiplets.push_back({{terms[static_cast<std::size_t>(jState.term)].label, jState.twiceJ, irrep},
                                    multiplet.weight});
    }
    if (!state.multiplets.empty()) state.label = state.multiplets.front().first;
    return state;
}

}  // namespace

std::vector<CalculatedState> calculatedStates(const Model& model, const std::vector<ModelLevel>& levels,
                                              const SiteLabelling* site) {
    const auto irreps = site ? levelIrrepLabels(model, levels, *site) : std::vector<std::string>{};
    const auto basis = crystalFieldResultBasis(model.tables().terms, model.freeIonOperators().basis);
    std::vector<CalculatedState> states;
    states.reserve(levels.size());
    for (std::size_t l = 0; l < levels.size(); ++l) {
        const auto& level = levels[l];
        const auto& block = model.blocks()[static_cast<std::size_t>(level.block)];
        ResultLevel described;
        describeModelLevel(level, block, basis, kNoComponents, described);
        const auto irrep =
            site ? irreps[l] : formatTwiceJ(twiceCrystalQuantumNumber(block.residue, model.setup().fold));
        states.push_back(stateOf(described, model, level.energy, irrep));
    }
    return states;
}

std::vector<CalculatedState> calculatedStates(const Model& model, const std::vector<FreeIonLevel>& levels) {
    const auto& jBasis = model.freeIonOperators().basis;
    const auto basis = freeIonResultBasis(model.tables().terms, jBasis);
    std::vector<CalculatedState> states;
    states.reserve(levels.size());
    for (const auto& level : levels) {
        ResultLevel described;
        describeFreeIonLevel(level, jBasis, basis, kNoComponents, described);
        states.push_back(stateOf(described, model, level.energy, {}));
    }
    return states;
}

}  // namespace orvane
