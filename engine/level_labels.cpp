#include "engine/level_labels.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>

#include "core/number_format.hpp"

namespace orvane {

namespace {

// Orders items by decreasing magnitude, taken to 1e-12, then by increasing
// index (unique within the list): magnitudes equal to 1e-12 (the partners M
// and -M of a state, equal by symmetry but not to the last bit) keep basis
// order, so listings do not depend on the rounding of the eigen solver. Each
// item gets one 64-bit key, the complement of its rounded magnitude above 23
// bits of index, so the sort compares integers; `byIndex` is scratch space.
template <typename Item, typename MagnitudeOf, typename IndexOf>
void sortByMagnitude(std::vector<Item>& items, MagnitudeOf magnitudeOf, IndexOf indexOf, std::vector<Item>& byIndex) {
    constexpr int kIndexBits = 23;
    constexpr std::uint64_t kLargest = (std::uint64_t{1} << (64 - kIndexBits)) - 1;
    std::vector<std::uint64_t> keys;
    keys.reserve(items.size());
    for (const auto& item : items) {
        const auto index = static_cast<std::uint64_t>(indexOf(item));
        const auto rounded = std::min<std::uint64_t>(static_cast<std::uint64_t>(std::llround(magnitudeOf(item) * 1e12)), kLargest);
        keys.push_back(((kLargest - rounded) << kIndexBits) | index);
        if (byIndex.size() <= index) byIndex.resize(index + 1);
        byIndex[index] = item;
    }
    std::sort(keys.begin(), keys.end());
    for (std::size_t i = 0; i < keys.size(); ++i) items[i] = byIndex[keys[i] & ((std::uint64_t{1} << kIndexBits) - 1)];
}

// Sorts the components by decreasing |c| and the multiplet weights by
// decreasing weight, then fills label, J and the mixing flag.
void finishLevel(ResultLevel& level, const ResultBasis& basis) {
    thread_local std::vector<LevelComponent> componentsByIndex;
    thread_local std::vector<MultipletWeight> multipletsByIndex;
    sortByMagnitude(
        level.components, [](const LevelComponent& c) { return std::abs(c.coefficient); },
        [](const LevelComponent& c) { return c.basisIndex; }, componentsByIndex);
    sortByMagnitude(
        level.multiplets, [](const MultipletWeight& m) { return m.weight; },
        [](const MultipletWeight& m) { return m.jState; }, multipletsByIndex);
    if (level.multiplets.empty()) return;
    const auto& found = basis.states[static_cast<std::size_t>(basis.firstOfJState[level.multiplets.front().jState])];
    level.twiceJ = found.twiceJ;
    level.label = multipletLabel(basis.termLabels[found.term], found.twiceJ);
    level.mixed = level.multiplets.size() > 1 && level.multiplets[1].weight > kMixingShare;
}

// 1-based eigenvalue number within the block and number before sorting
// (blocks in order, eigenvalues ascending within each block).
void numberWithinBlocks(std::vector<ResultLevel>& levels, int blockCount) {
    std::vector<int> perBlock(blockCount, 0);
    for (auto& level : levels) level.eigenIndex = ++perBlock[level.block];
    std::vector<int> offset(blockCount, 0);
    for (int b = 1; b < blockCount; ++b) offset[b] = offset[b - 1] + perBlock[b - 1];
    for (auto& level : levels) level.originalNumber = offset[level.block] + level.eigenIndex;
}

}  // namespace

std::string multipletLabel(const std::string& termLabel, int twiceJ) {
    const bool endsInDigit = !termLabel.empty() && std::isdigit(static_cast<unsigned char>(termLabel.back()));
    return termLabel + (endsInDigit ? "-" : "") + formatTwiceJ(twiceJ);
}

std::string basisStateLabel(const ResultBasis& basis, int index) {
    const auto& state = basis.states[index];
    std::string text = "|" + basis.termLabels[state.term] + " " + formatTwiceJ(state.twiceJ);
    if (basis.withProjections) text += " " + formatTwiceJ(state.twiceM);
    return text + ">";
}

int twiceCrystalQuantumNumber(int residue, int fold) {
    const int period = 2 * fold;
    int twiceMu = ((residue % period) + period) % period;
    if (twiceMu > fold) twiceMu -= period;
    return twiceMu;
}

ResultBasis freeIonResultBasis(const std::vector<EngineTerm>& terms, const JBasis& basis) {
    ResultBasis result;
    for (const auto& term : terms) result.termLabels.push_back(term.label);
    for (int s = 0; s < static_cast<int>(basis.states.size()); ++s) {
        result.firstOfJState.push_back(static_cast<int>(result.states.size()));
        result.states.push_back({s, basis.states[s].term, basis.states[s].twiceJ, 0});
    }
    return result;
}

ResultBasis crystalFieldResultBasis(const std::vector<EngineTerm>& terms, const JBasis& basis) {
    ResultBasis result;
    result.withProjections = true;
    for (const auto& term : terms) result.termLabels.push_back(term.label);
    for (int s = 0; s < static_cast<int>(basis.states.size()); ++s) {
        const auto& state = basis.states[s];
        result.firstOfJState.push_back(static_cast<int>(result.states.size()));
        for (int twiceM = -state.twiceJ; twiceM <= state.twiceJ; twiceM += 2)
            result.states.push_back({s, state.term, state.twiceJ, twiceM});
    }
    return result;
}

void describeFreeIonLevel(const FreeIonLevel& source, const JBasis& jBasis, const ResultBasis& basis,
                          double minComponent, ResultLevel& level) {
    const auto& states = jBasis.blocks[source.block].states;
    for (int i = 0; i < static_cast<int>(states.size()); ++i) {
        const double c = source.vector.size() > i ? source.vector[i] : 0.0;
        if (c * c > 0.0) level.multiplets.push_back({states[i], c * c});
        if (std::abs(c) >= minComponent && c != 0.0) level.components.push_back({states[i], c});
    }
    finishLevel(level, basis);
}

std::vector<ResultLevel> freeIonResultLevels(const EnergyLevelResult& result, const ResultBasis& basis,
                                             double minComponent) {
    const auto& jBasis = result.freeIonOperators.basis;
    std::vector<ResultLevel> levels;
    levels.reserve(result.freeIon.levels.size());
    for (const auto& source : result.freeIon.levels) {
        ResultLevel level;
        level.energy = source.energy;
        level.block = source.block;
        describeFreeIonLevel(source, jBasis, basis, minComponent, level);
        levels.push_back(std::move(level));
    }
    numberWithinBlocks(levels, static_cast<int>(jBasis.blocks.size()));
    return levels;
}

namespace {

// Components and multiplet weights of one model level: the vector lists the
// |SL J MJ> states of its block (engine/model.hpp), so each entry is one
// component; the weight of |SL J> sums |c|^2 over MJ.
template <typename Vector>
void collectComponents(const Vector& vector, const std::vector<ModelState>& states, const std::vector<int>& offsets,
                       double minComponent, std::vector<double>& multipletWeight, std::vector<int>& touched,
                       ResultLevel& level) {
    for (int i = 0; i < static_cast<int>(states.size()); ++i) {
        const std::complex<double> c = vector(i);
        const double weight = std::norm(c);
        if (weight == 0.0) continue;
        const auto& state = states[static_cast<std::size_t>(i)];
        if (multipletWeight[state.jState] == 0.0) touched.push_back(state.jState);
        multipletWeight[state.jState] += weight;
        const double magnitude = c.imag() == 0.0 ? std::abs(c.real()) : std::abs(c);
        if (magnitude >= minComponent)
            level.components.push_back({offsets[state.jState] + (state.twiceM + state.twiceJ) / 2, c});
    }
    for (int jState : touched) {
        level.multiplets.push_back({jState, multipletWeight[jState]});
        multipletWeight[jState] = 0.0;
    }
    touched.clear();
}

}  // namespace

void describeModelLevel(const ModelLevel& vectors, const ModelBlock& block, const ResultBasis& basis,
                        double minComponent, ResultLevel& level) {
    thread_local std::vector<double> multipletWeight;
    thread_local std::vector<int> touched;
    multipletWeight.assign(basis.firstOfJState.size(), 0.0);
    if (vectors.complexVector.size() > 0)
        collectComponents(vectors.complexVector, block.states, basis.firstOfJState, minComponent, multipletWeight,
                          touched, level);
    else if (vectors.vector.size() > 0)
        collectComponents(vectors.vector, block.states, basis.firstOfJState, minComponent, multipletWeight, touched,
                          level);
    finishLevel(level, basis);
    level.jz = 0.0;
    for (std::size_t p = 0; p < block.states.size(); ++p) {
        const double weight = vectors.complexVector.size() > 0 ? std::norm(vectors.complexVector(p))
                              : vectors.vector.size() > 0      ? vectors.vector(p) * vectors.vector(p)
                                                               : 0.0;
        level.jz += weight * block.states[p].twiceM / 2.0;
    }
}

std::vector<ResultLevel> crystalFieldResultLevels(const EnergyLevelResult& result, const ResultBasis& basis,
                                                  double minComponent) {
    const auto& blocks = result.crystalFieldOperators.blocks;
    std::vector<ResultLevel> levels(result.crystalField.levels.size());
    for (std::size_t n = 0; n < levels.size(); ++n) {
        auto& level = levels[n];
        const auto& source = result.crystalField.levels[n];
        level.energy = source.energy;
        level.block = source.block;
        level.residue = blocks[static_cast<std::size_t>(source.block)].residue;
        if (n >= result.modelLevels.size()) continue;  // computed without vectors
        const auto& vectors = result.modelLevels[n];
        describeModelLevel(vectors, result.model->blocks()[static_cast<std::size_t>(vectors.block)], basis,
                           minComponent, level);
    }
    numberWithinBlocks(levels, static_cast<int>(blocks.size()));
    return levels;
}

}  // namespace orvane
