#include "engine/crystal_field.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <map>
#include <type_traits>

#include "core/angular.hpp"

namespace orvane {

namespace {

double phaseOfTwice(int twiceExponent) { return ((twiceExponent / 2) % 2 == 0) ? 1.0 : -1.0; }

// Physics notes 4.1 (spin-first coupling): orbital tensor between |SLJ> states.
double orbitalTensorInJ(const EngineTables& tables, int kIndex, const JState& a, const JState& b) {
    const auto& ta = tables.terms[a.term];
    const auto& tb = tables.terms[b.term];
    if (ta.twiceS != tb.twiceS) return 0.0;
    const double reduced = tables.unitTensor[kIndex](a.term, b.term);
    if (reduced == 0.0) return 0.0;
    const int twiceK = 2 * kEvenRanks[kIndex];
    return phaseOfTwice(ta.twiceS + 2 * tb.L + a.twiceJ + twiceK) *
           std::sqrt(double((a.twiceJ + 1) * (b.twiceJ + 1))) *
           SixJ2(2 * ta.L, a.twiceJ, ta.twiceS, b.twiceJ, 2 * tb.L, twiceK) * reduced;
}

// Wigner-Eckart with <f||C(k)||f>: the coefficient of B(k,q) in
// <a J M| sum_i C(k)_q(i) |a' J' M'> divided by <a J||U(k)||a' J'> (physics notes 9.1).
double tensorComponentFactor(int twiceJ, int twiceM, int k, int q, int twiceJp, int twiceMp) {
    if (twiceMp - twiceM + 2 * q != 0) return 0.0;
    return phaseOfTwice(twiceJ - twiceM) * ThreeJ2(twiceJ, 2 * k, twiceJp, -twiceM, 2 * q, twiceMp) *
           ReducedCk2(6, 2 * k, 6);
}

}  // namespace

TransformedTensors transformTensors(const EngineTables& tables, const FreeIonOperators& operators,
                                    const FreeIonSolution& freeIon) {
    const auto& basis = operators.basis;
    const auto stateCount = static_cast<Eigen::Index>(basis.states.size());
    const auto levelCount = static_cast<Eigen::Index>(freeIon.levels.size());
    // Eigenvectors embedded into the full |SLJ> basis (column = level).
    Eigen::MatrixXd vectors = Eigen::MatrixXd::Zero(stateCount, levelCount);
    TransformedTensors result;
    for (Eigen::Index level = 0; level < levelCount; ++level) {
        const auto& free = freeIon.levels[level];
        const auto& block = basis.blocks[free.block];
        for (std::size_t i = 0; i < block.states.size(); ++i)
            vectors(block.states[i], level) = free.vector(static_cast<Eigen::Index>(i));
        result.levelTwiceJ.push_back(free.twiceJ);
    }
    for (int kIndex = 0; kIndex < 3; ++kIndex) {
        Eigen::MatrixXd inJ(stateCount, stateCount);
        for (Eigen::Index i = 0; i < stateCount; ++i)
            for (Eigen::Index j = 0; j < stateCount; ++j)
                inJ(i, j) = orbitalTensorInJ(tables, kIndex, basis.states[i], basis.states[j]);
        result.unitTensor[kIndex] = vectors.transpose() * inJ * vectors;
    }
    return result;
}

bool keysFitFold(const std::vector<CrystalFieldKey>& keys, int fold) {
    return std::all_of(keys.begin(), keys.end(),
                       [fold](const CrystalFieldKey& key) { return fold >= 1 && key.q % fold == 0; });
}

namespace {

// The factor of tensorComponentFactor for one (k, q), remembered per (J, M, J')
// (M' = M - q is fixed by them): the same few 3j symbols recur for every pair
// of free-ion levels with the same J values.
class ComponentFactorCache {
public:
    ComponentFactorCache(int k, int q) : k_(k), q_(q), values_(kSide * kSide * kSide, kUnknown) {}
    double operator()(int twiceJ, int twiceM, int twiceJp, int twiceMp) {
        if (twiceMp - twiceM + 2 * q_ != 0) return 0.0;
        if (twiceJ >= kSide || twiceJp >= kSide || std::abs(twiceM) >= kSide / 2)
            return tensorComponentFactor(twiceJ, twiceM, k_, q_, twiceJp, twiceMp);
        double& slot = values_[(twiceJ * kSide + twiceM + kSide / 2) * kSide + twiceJp];
        if (std::isnan(slot)) slot = tensorComponentFactor(twiceJ, twiceM, k_, q_, twiceJp, twiceMp);
        return slot;
    }

private:
    static constexpr int kSide = 64;
    static constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
    int k_, q_;
    std::vector<double> values_;
};

// The coefficient matrices of Re B(k,q) (sign +1: C_q + (-1)^q C_-q) and of
// Im B(k,q) divided by i (sign -1: C_q - (-1)^q C_-q) in one residue block.
Eigen::SparseMatrix<double> blockComponent(const ResidueBlock& block, const Eigen::MatrixXd& reduced,
                               const CrystalFieldKey& key, double partnerSign) {
    const double conjugateSign = (key.q % 2 == 0) ? 1.0 : -1.0;
    ComponentFactorCache plus(key.k, key.q), minus(key.k, -key.q);
    const auto size = static_cast<Eigen::Index>(block.states.size());
    // C(k)_q links M to M' = M - q only: the states of each 2M, to visit just those pairs.
    std::map<int, std::vector<Eigen::Index>> statesOfTwiceM;
    for (Eigen::Index i = 0; i < size; ++i) statesOfTwiceM[block.states[i].twiceM].push_back(i);
    auto statesWith = [&](int twiceM) -> const std::vector<Eigen::Index>* {
        const auto found = statesOfTwiceM.find(twiceM);
        return found == statesOfTwiceM.end() ? nullptr : &found->second;
    };
    std::vector<Eigen::Triplet<double>> entries;
    for (Eigen::Index i = 0; i < size; ++i) {
        const auto& a = block.states[i];
        if (const auto* partners = statesWith(a.twiceM - 2 * key.q))
            for (const Eigen::Index j : *partners) {
                const auto& b = block.states[j];
                const double value = plus(a.twiceJ, a.twiceM, b.twiceJ, b.twiceM) * reduced(a.level, b.level);
                if (value != 0.0) entries.emplace_back(i, j, value);
            }
        if (key.q == 0) continue;
        if (const auto* partners = statesWith(a.twiceM + 2 * key.q))
            for (const Eigen::Index j : *partners) {
                const auto& b = block.states[j];
                const double value = partnerSign * conjugateSign * minus(a.twiceJ, a.twiceM, b.twiceJ, b.twiceM) *
                                     reduced(a.level, b.level);
                if (value != 0.0) entries.emplace_back(i, j, value);
            }
    }
    Eigen::SparseMatrix<double> matrix(size, size);
    matrix.setFromTriplets(entries.begin(), entries.end());
    return matrix;
}

template <typename Level>
void sortLevels(std::vector<Level>& levels) {
    std::stable_sort(levels.begin(), levels.end(),
                     [](const Level& x, const Level& y) { return x.energy < y.energy; });
}

// Kramers ions (half-integral MJ, odd n): the blocks of residues r and -r are
// time-reversal partners with the same eigenvalues. The index of the partner
// of block b solved before it, or -1.
int earlierTimeReversalPartner(const CrystalFieldOperators& operators, std::size_t b) {
    const int residue = operators.blocks[b].residue;
    if (residue % 2 == 0) return -1;  // integral MJ: no Kramers degeneracy
    const int partnerResidue = (2 * operators.fold - residue) % (2 * operators.fold);
    for (std::size_t other = 0; other < b; ++other)
        if (operators.blocks[other].residue == partnerResidue) return static_cast<int>(other);
    return -1;
}

}  // namespace

CrystalFieldOperators buildCrystalFieldOperators(const TransformedTensors& tensors,
                                                 const std::vector<CrystalFieldKey>& keys, int fold,
                                                 bool withImaginaryParts) {
    CrystalFieldOperators operators;
    operators.fold = fold;
    operators.blocks = residueBlocks(tensors.levelTwiceJ, fold);
    operators.keys = keys;
    for (const auto& key : keys) {
        const auto& reduced = tensors.unitTensor[key.k / 2 - 1];
        std::vector<Eigen::SparseMatrix<double>> realBlocks, imaginaryBlocks;
        for (const auto& block : operators.blocks) {
            realBlocks.push_back(blockComponent(block, reduced, key, 1.0));
            if (withImaginaryParts) imaginaryBlocks.push_back(blockComponent(block, reduced, key, -1.0));
        }
        operators.realPart.push_back(std::move(realBlocks));
        if (withImaginaryParts) operators.imaginaryPart.push_back(std::move(imaginaryBlocks));
    }
    return operators;
}

namespace {

// Diagonalises every block with `solveBlock(b)` (an eigen result of core/eigen_solver.hpp)
// and collects the levels in ascending order. Without vectors, a block whose
// time-reversal partner was already solved (odd n) takes the partner's eigenvalues.
template <typename SolveBlock>
CrystalFieldSolution solveBlocks(const CrystalFieldOperators& operators, bool wantVectors, int lowest,
                                 SolveBlock solveBlock) {
    CrystalFieldSolution solution;
    std::vector<Eigen::VectorXd> blockValues(operators.blocks.size());
    for (std::size_t b = 0; b < operators.blocks.size(); ++b) {
        const int partner = wantVectors ? -1 : earlierTimeReversalPartner(operators, b);
        if (partner >= 0) {
            blockValues[b] = blockValues[partner];
            for (Eigen::Index i = 0; i < blockValues[b].size(); ++i)
                solution.levels.push_back({blockValues[b](i), static_cast<int>(b), {}, {}});
            continue;
        }
        auto result = solveBlock(b);
        if (result.status != EigenStatus::Ok) {
            solution.status = result.status;
            solution.levels.clear();
            return solution;
        }
        blockValues[b] = result.values;
        for (Eigen::Index i = 0; i < result.values.size(); ++i) {
            CrystalFieldLevel level{result.values(i), static_cast<int>(b), {}, {}};
            if constexpr (std::is_same_v<decltype(result.vectors), Eigen::MatrixXcd>) {
                if (wantVectors) level.complexVector = result.vectors.col(i);
            } else {
                if (wantVectors) level.vector = result.vectors.col(i);
            }
            solution.levels.push_back(std::move(level));
        }
    }
    sortLevels(solution.levels);
    if (lowest >= 0 && solution.levels.size() > static_cast<std::size_t>(lowest)) solution.levels.resize(lowest);
    return solution;
}

// The real part of one block: free-ion energies on the diagonal plus the
// parameters times their components.
Eigen::MatrixXd realBlockMatrix(const CrystalFieldOperators& operators, std::size_t b,
                                const std::vector<double>& freeIonEnergies,
                                const std::vector<double>& realParameters) {
    const auto& states = operators.blocks[b].states;
    const auto size = static_cast<Eigen::Index>(states.size());
    Eigen::MatrixXd matrix = Eigen::MatrixXd::Zero(size, size);
    for (Eigen::Index i = 0; i < size; ++i) matrix(i, i) = freeIonEnergies[states[i].level];
    for (std::size_t key = 0; key < operators.keys.size(); ++key)
        if (realParameters[key] != 0.0) matrix += realParameters[key] * operators.realPart[key][b];
    return matrix;
}

}  // namespace

CrystalFieldSolution solveRealCrystalField(const CrystalFieldOperators& operators,
                                           const std::vector<double>& freeIonEnergies,
                                           const std::vector<double>& realParameters, bool wantVectors,
                                           int lowest) {
    return solveBlocks(operators, wantVectors, lowest, [&](std::size_t b) {
        Eigen::MatrixXd matrix = realBlockMatrix(operators, b, freeIonEnergies, realParameters);
        return wantVectors ? symmetricEigenpairs(std::move(matrix), lowest)
                           : symmetricEigenvalues(std::move(matrix), lowest);
    });
}

CrystalFieldSolution solveComplexCrystalField(const CrystalFieldOperators& operators,
                                              const std::vector<double>& freeIonEnergies,
                                              const std::vector<double>& realParameters,
                                              const std::vector<double>& imaginaryParameters, bool wantVectors,
                                              int lowest) {
    return solveBlocks(operators, wantVectors, lowest, [&](std::size_t b) {
        const Eigen::MatrixXd realMatrix = realBlockMatrix(operators, b, freeIonEnergies, realParameters);
        const auto size = realMatrix.rows();
        Eigen::MatrixXd imaginaryMatrix = Eigen::MatrixXd::Zero(size, size);
        for (std::size_t key = 0; key < operators.keys.size(); ++key)
            if (imaginaryParameters[key] != 0.0)
                imaginaryMatrix += imaginaryParameters[key] * operators.imaginaryPart[key][b];
        Eigen::MatrixXcd matrix(size, size);
        matrix.real() = realMatrix;
        matrix.imag() = imaginaryMatrix;
        return wantVectors ? hermitianEigenpairs(std::move(matrix), lowest)
                           : hermitianEigenvalues(std::move(matrix), lowest);
    });
}

}  // namespace orvane
