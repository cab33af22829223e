#include "properties/property_states.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace orvane {

namespace {

// Basis, offsets, terms and the actual configuration's U(k) of a model.
PropertyStates emptyStatesOf(const Model& model) {
    PropertyStates states;
    states.electrons = model.setup().electrons;
    states.conjugate = model.conjugate();
    states.fold = model.setup().crystalField ? model.setup().fold : 0;
    states.terms = model.tables().terms;
    states.jBasis = model.freeIonOperators().basis;
    states.basis = crystalFieldResultBasis(states.terms, states.jBasis);
    int next = 0;
    for (const auto& state : states.jBasis.states) {
        states.basisOffsets.push_back(next);
        next += state.twiceJ + 1;
    }
    // U(k)(f^(14-n)) = -(-1)^k U(k)(f^n) for k >= 1 (Racah 1943): even k flip.
    const double sign = states.conjugate ? -1.0 : 1.0;
    for (std::size_t k = 0; k < 3; ++k) states.unitTensor[k] = sign * model.tables().unitTensor[k];
    return states;
}

// Sorts the states by energy (stable), renumbers the group members and
// groups degenerate states into levels.
void finishStates(PropertyStates& states) {
    std::vector<int> order(states.states.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return states.states[a].energy < states.states[b].energy; });
    std::vector<PropertyState> sorted;
    sorted.reserve(order.size());
    for (int index : order) sorted.push_back(states.states[index]);
    states.states = std::move(sorted);
    for (std::size_t i = 0; i < states.states.size(); ++i) {
        const auto& s = states.states[i];
        states.groups[s.group].members[s.column] = static_cast<int>(i);
    }
    int level = -1;
    for (std::size_t i = 0; i < states.states.size(); ++i) {
        const bool newLevel =
            i == 0 || states.states[i].energy - states.states[i - 1].energy > kDegenerateLevelTolerance;
        if (newLevel) ++level;
        states.states[i].level = level;
    }
    states.levelCount = level + 1;
}

// Free-ion states: a level is a multiplet, also when two multiplets happen to coincide.
void levelsByMultiplet(PropertyStates& states) {
    int level = -1, previous = -1;
    for (auto& state : states.states) {
        if (state.multiplet != previous) ++level;
        previous = state.multiplet;
        state.level = level;
    }
    states.levelCount = level + 1;
}

}  // namespace

std::vector<int> PropertyStates::levelMembers(int level) const {
    std::vector<int> members;
    for (std::size_t i = 0; i < states.size(); ++i)
        if (states[i].level == level) members.push_back(static_cast<int>(i));
    return members;
}

PropertyStates crystalFieldStates(const Model& model, const ModelSolution& solution, double wavenumbersPerUnit,
                                  const SiteLabelling* site) {
    const auto irreps = site ? levelIrrepLabels(model, solution.levels, *site) : std::vector<std::string>{};
    PropertyStates states = emptyStatesOf(model);
    const auto& blocks = model.blocks();
    states.groups.resize(blocks.size());
    for (std::size_t b = 0; b < blocks.size(); ++b)
        for (const auto& state : blocks[b].states)
            states.groups[b].basisIndices.push_back(states.basisIndex(state.jState, state.twiceM));
    std::vector<std::vector<int>> levelsOfBlock(blocks.size());
    for (std::size_t l = 0; l < solution.levels.size(); ++l) levelsOfBlock[solution.levels[l].block].push_back(static_cast<int>(l));
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        auto& group = states.groups[b];
        const auto rows = static_cast<Eigen::Index>(group.basisIndices.size());
        group.vectors.resize(rows, static_cast<Eigen::Index>(levelsOfBlock[b].size()));
        for (std::size_t c = 0; c < levelsOfBlock[b].size(); ++c) {
            const auto& level = solution.levels[levelsOfBlock[b][c]];
            const auto column = static_cast<Eigen::Index>(c);
            if (level.complexVector.size() == rows) group.vectors.col(column) = level.complexVector;
            else group.vectors.col(column) = level.vector.cast<std::complex<double>>();
            PropertyState state;
            state.energy = level.energy * wavenumbersPerUnit;
            state.group = static_cast<int>(b);
            state.column = static_cast<int>(c);
            state.twiceMu = twiceCrystalQuantumNumber(blocks[b].residue, model.setup().fold);
            if (site) state.irrep = irreps[static_cast<std::size_t>(levelsOfBlock[b][c])];
            states.states.push_back(state);
            group.members.push_back(0);
        }
    }
    finishStates(states);
    return states;
}

PropertyStates freeIonStates(const Model& model, const FreeIonSolution& solution, double wavenumbersPerUnit) {
    PropertyStates states = emptyStatesOf(model);
    states.freeIon = true;
    states.fold = 0;
    for (std::size_t l = 0; l < solution.levels.size(); ++l) {
        const auto& level = solution.levels[l];
        const auto& jStates = states.jBasis.blocks[level.block].states;
        for (int twiceM = -level.twiceJ; twiceM <= level.twiceJ; twiceM += 2) {
            StateGroup group;
            for (int s : jStates) group.basisIndices.push_back(states.basisIndex(s, twiceM));
            group.vectors = level.vector.cast<std::complex<double>>();
            group.members.push_back(0);
            PropertyState state;
            state.energy = level.energy * wavenumbersPerUnit;
            state.group = static_cast<int>(states.groups.size());
            state.twiceMu = twiceM;
            state.multiplet = static_cast<int>(l);
            states.groups.push_back(std::move(group));
            states.states.push_back(state);
        }
    }
    finishStates(states);
    levelsByMultiplet(states);
    return states;
}

PropertyStates statesFromComponents(const Model& model, const std::vector<ComponentState>& given, bool freeIon) {
    PropertyStates states = emptyStatesOf(model);
    states.freeIon = freeIon;
    if (freeIon) states.fold = 0;
    for (std::size_t g = 0; g < given.size(); ++g) {
        const auto& source = given[g];
        if (source.components.empty()) continue;
        const int twiceJ = freeIon ? states.jBasis.states[source.components.front().first].twiceJ : 0;
        for (int twiceM = -twiceJ; twiceM <= twiceJ; twiceM += 2) {
            StateGroup group;
            group.vectors.resize(static_cast<Eigen::Index>(source.components.size()), 1);
            for (std::size_t c = 0; c < source.components.size(); ++c) {
                const auto& [index, coefficient] = source.components[c];
                group.basisIndices.push_back(freeIon ? states.basisIndex(index, twiceM) : index);
                group.vectors(static_cast<Eigen::Index>(c), 0) = coefficient;
            }
            group.members.push_back(0);
            PropertyState state;
            state.energy = source.energy;
            state.group = static_cast<int>(states.groups.size());
            const int fold = model.setup().fold;
            state.twiceMu = freeIon ? twiceM
                                    : twiceCrystalQuantumNumber(
                                          twiceMResidue(states.basis.states[group.basisIndices.front()].twiceM, fold), fold);
            state.multiplet = freeIon ? static_cast<int>(g) : -1;
            states.groups.push_back(std::move(group));
            states.states.push_back(state);
        }
    }
    finishStates(states);
    if (freeIon) levelsByMultiplet(states);
    return states;
}

}  // namespace orvane
