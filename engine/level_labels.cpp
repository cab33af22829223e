#include "engine/level_labels.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>

#include <Eigen/Sparse>

#include "core/number_format.hpp"

namespace orvane {

namespace {

// Offsets of each |SL J> state's first |SL J MJ> state in the crystal-field basis.
std::vector<int> projectionOffsets(const JBasis& basis) {
    std::vector<int> offsets;
    int next = 0;
    for (const auto& state : basis.states) {
        offsets.push_back(next);
        next += state.twiceJ + 1;
    }
    return offsets;
}

// Sorts the components by decreasing |c| and the multiplet weights by
// decreasing weight, then fills label, J and the mixing flag.
// Magnitudes equal to 1e-12 (the partners M and -M of a state, equal by
// symmetry but not to the last bit) sort by basis order, so the listing does
// not depend on the rounding of the eigen solver.
void finishLevel(ResultLevel& level, const ResultBasis& basis) {
    const auto magnitudeKey = [](double magnitude) { return std::llround(magnitude * 1e12); };
    std::vector<std::pair<long long, LevelComponent>> keyed;
    keyed.reserve(level.components.size());
    for (const auto& component : level.components) keyed.emplace_back(magnitudeKey(std::abs(component.coefficient)), component);
    std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
        return a.first != b.first ? a.first > b.first : a.second.basisIndex < b.second.basisIndex;
    });
    for (std::size_t i = 0; i < keyed.size(); ++i) level.components[i] = keyed[i].second;
    std::sort(level.multiplets.begin(), level.multiplets.end(),
              [&](const MultipletWeight& a, const MultipletWeight& b) {
                  const auto ka = magnitudeKey(a.weight), kb = magnitudeKey(b.weight);
                  return ka != kb ? ka > kb : a.jState < b.jState;
              });
    if (level.multiplets.empty()) return;
    const int jState = level.multiplets.front().jState;
    const auto found = std::find_if(basis.states.begin(), basis.states.end(),
                                    [jState](const ResultBasisState& s) { return s.jState == jState; });
    if (found == basis.states.end()) return;
    level.twiceJ = found->twiceJ;
    level.label = multipletLabel(basis.termLabels[found->term], found->twiceJ);
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
    for (int s = 0; s < static_cast<int>(basis.states.size()); ++s)
        result.states.push_back({s, basis.states[s].term, basis.states[s].twiceJ, 0});
    return result;
}

ResultBasis crystalFieldResultBasis(const std::vector<EngineTerm>& terms, const JBasis& basis) {
    ResultBasis result;
    result.withProjections = true;
    for (const auto& term : terms) result.termLabels.push_back(term.label);
    for (int s = 0; s < static_cast<int>(basis.states.size()); ++s) {
        const auto& state = basis.states[s];
        for (int twiceM = -state.twiceJ; twiceM <= state.twiceJ; twiceM += 2)
            result.states.push_back({s, state.term, state.twiceJ, twiceM});
    }
    return result;
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
        const auto& states = jBasis.blocks[source.block].states;
        for (int i = 0; i < static_cast<int>(states.size()); ++i) {
            const double c = source.vector.size() > i ? source.vector[i] : 0.0;
            if (c * c > 0.0) level.multiplets.push_back({states[i], c * c});
            if (std::abs(c) >= minComponent && c != 0.0) level.components.push_back({states[i], c});
        }
        finishLevel(level, basis);
        levels.push_back(std::move(level));
    }
    numberWithinBlocks(levels, static_cast<int>(jBasis.blocks.size()));
    return levels;
}

namespace {

// Carries the eigenvectors of one block onto |SL J MJ>: X = T V with
// T(row, i) = v_a(s) for block state i = |a J MJ> and row = |s J MJ>.
template <typename Sparse, typename Matrix>
void projectBlock(const Sparse& transform, const Matrix& vectors,
                  const std::vector<int>& rowBasisIndex, const std::vector<int>& levelIndices,
                  const ResultBasis& basis, double minComponent, std::vector<double>& multipletWeight,
                  std::vector<ResultLevel>& levels) {
    const Matrix projected = transform * vectors;
    for (int column = 0; column < static_cast<int>(levelIndices.size()); ++column) {
        auto& level = levels[levelIndices[column]];
        std::vector<int> touched;
        for (int row = 0; row < projected.rows(); ++row) {
            const std::complex<double> c = projected(row, column);
            const double weight = std::norm(c);
            if (weight == 0.0) continue;
            const int index = rowBasisIndex[row];
            const int jState = basis.states[index].jState;
            if (multipletWeight[jState] == 0.0) touched.push_back(jState);
            multipletWeight[jState] += weight;
            if (std::abs(c) >= minComponent) level.components.push_back({index, c});
        }
        for (int jState : touched) {
            level.multiplets.push_back({jState, multipletWeight[jState]});
            multipletWeight[jState] = 0.0;
        }
    }
}

}  // namespace

std::vector<ResultLevel> crystalFieldResultLevels(const EnergyLevelResult& result, const ResultBasis& basis,
                                                  double minComponent) {
    const auto& jBasis = result.freeIonOperators.basis;
    const auto& blocks = result.crystalFieldOperators.blocks;
    const auto offsets = projectionOffsets(jBasis);
    std::vector<ResultLevel> levels(result.crystalField.levels.size());
    std::vector<std::vector<int>> levelsOfBlock(blocks.size());
    for (int n = 0; n < static_cast<int>(levels.size()); ++n) {
        const auto& source = result.crystalField.levels[n];
        levels[n].energy = source.energy;
        levels[n].block = source.block;
        levels[n].residue = blocks[source.block].residue;
        levelsOfBlock[source.block].push_back(n);
    }
    std::vector<int> localRow(basis.states.size(), -1);
    std::vector<double> multipletWeight(jBasis.states.size(), 0.0);
    for (int b = 0; b < static_cast<int>(blocks.size()); ++b) {
        const auto& levelIndices = levelsOfBlock[b];
        if (levelIndices.empty()) continue;
        const auto& states = blocks[b].states;
        std::vector<int> rowBasisIndex;
        std::vector<Eigen::Triplet<double>> entries;
        for (int i = 0; i < static_cast<int>(states.size()); ++i) {
            const auto& freeIonLevel = result.freeIon.levels[states[i].level];
            const auto& jStates = jBasis.blocks[freeIonLevel.block].states;
            const int mOffset = (states[i].twiceM + states[i].twiceJ) / 2;
            for (int s = 0; s < static_cast<int>(jStates.size()); ++s) {
                const int index = offsets[jStates[s]] + mOffset;
                if (localRow[index] < 0) {
                    localRow[index] = static_cast<int>(rowBasisIndex.size());
                    rowBasisIndex.push_back(index);
                }
                if (freeIonLevel.vector[s] != 0.0) entries.emplace_back(localRow[index], i, freeIonLevel.vector[s]);
            }
        }
        for (int index : rowBasisIndex) localRow[index] = -1;
        Eigen::SparseMatrix<double, Eigen::RowMajor> transform(static_cast<Eigen::Index>(rowBasisIndex.size()),
                                                               static_cast<Eigen::Index>(states.size()));
        transform.setFromTriplets(entries.begin(), entries.end());
        const auto& first = result.crystalField.levels[levelIndices.front()];
        if (first.complexVector.size() > 0) {
            Eigen::MatrixXcd vectors(states.size(), levelIndices.size());
            for (std::size_t c = 0; c < levelIndices.size(); ++c)
                vectors.col(c) = result.crystalField.levels[levelIndices[c]].complexVector;
            const Eigen::SparseMatrix<std::complex<double>, Eigen::RowMajor> complexTransform =
                transform.cast<std::complex<double>>();
            projectBlock(complexTransform, vectors, rowBasisIndex, levelIndices, basis,
                         minComponent, multipletWeight, levels);
        } else {
            Eigen::MatrixXd vectors = Eigen::MatrixXd::Zero(states.size(), levelIndices.size());
            for (std::size_t c = 0; c < levelIndices.size(); ++c) {
                const auto& vector = result.crystalField.levels[levelIndices[c]].vector;
                if (vector.size() == vectors.rows()) vectors.col(c) = vector;
            }
            projectBlock(transform, vectors, rowBasisIndex, levelIndices, basis, minComponent, multipletWeight,
                         levels);
        }
    }
    for (auto& level : levels) finishLevel(level, basis);
    numberWithinBlocks(levels, static_cast<int>(blocks.size()));
    return levels;
}

}  // namespace orvane
