#include "engine/crystal_field.hpp"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdlib>
#include <limits>
#include <map>
#include <type_traits>
#include <utility>

#include "core/angular.hpp"

namespace orvane {

namespace {

double phaseOfTwice(int twiceExponent) { return ((twiceExponent / 2) % 2 == 0) ? 1.0 : -1.0; }

// Edmonds 1957, eq. 7.1.7 (spin coupled first): a spin-scalar orbital tensor of
// rank k between |SLJ> states from its term table.
double orbitalTensorInJ(const EngineTables& tables, const Eigen::MatrixXd& termTable, int k, const JState& a,
                        const JState& b) {
    const auto& ta = tables.terms[a.term];
    const auto& tb = tables.terms[b.term];
    if (ta.twiceS != tb.twiceS) return 0.0;
    const double reduced = termTable(a.term, b.term);
    if (reduced == 0.0) return 0.0;
    const int twiceK = 2 * k;
    return phaseOfTwice(ta.twiceS + 2 * tb.L + a.twiceJ + twiceK) *
           std::sqrt(double((a.twiceJ + 1) * (b.twiceJ + 1))) *
           SixJ2(2 * ta.L, a.twiceJ, ta.twiceS, b.twiceJ, 2 * tb.L, twiceK) * reduced;
}

// Wigner-Eckart theorem (Edmonds 1957, eq. 5.4.1): the coefficient of B(k,q) in
// <a J M| sum_i X(k)_q(i) |a' J' M'> divided by <a J||X(k)||a' J'>, times the
// operator's normalisation (<f||C(k)||f> for the crystal field, 1 otherwise).
double tensorComponentFactor(int twiceJ, int twiceM, int k, int q, int twiceJp, int twiceMp, double normalisation) {
    if (twiceMp - twiceM + 2 * q != 0) return 0.0;
    return phaseOfTwice(twiceJ - twiceM) * ThreeJ2(twiceJ, 2 * k, twiceJp, -twiceM, 2 * q, twiceMp) * normalisation;
}

// The term table a key's operator uses and its normalisation.
double normalisationOf(const CrystalFieldKey& key) {
    return key.op == CrystalFieldOperator::Standard ? ReducedCk2(6, 2 * key.k, 6) : 1.0;
}

// The free-ion eigenvectors of one J block (columns) and the levels they belong to.
struct LevelsOfJBlock {
    Eigen::MatrixXd vectors;   // block states x levels of the block
    std::vector<Eigen::Index> levels;
};

// The transformed reduced elements in the free-ion level basis of one term
// table: <a J||X||a' J'> = v_a^T <s J||X||s' J'> v_a'. The vectors live in one
// J block each, so the product runs block pair by block pair.
Eigen::MatrixXd transformTable(const EngineTables& tables, const JBasis& basis,
                               const std::vector<LevelsOfJBlock>& byBlock, Eigen::Index levelCount,
                               const Eigen::MatrixXd& termTable, int k) {
    const Eigen::MatrixXd inJ = tensorBetweenJStates(tables, basis, termTable, k);
    Eigen::MatrixXd result = Eigen::MatrixXd::Zero(levelCount, levelCount);
    for (std::size_t a = 0; a < byBlock.size(); ++a)
        for (std::size_t b = 0; b < byBlock.size(); ++b) {
            const auto& rows = basis.blocks[a].states;
            const auto& columns = basis.blocks[b].states;
            Eigen::MatrixXd part(static_cast<Eigen::Index>(rows.size()), static_cast<Eigen::Index>(columns.size()));
            for (std::size_t i = 0; i < rows.size(); ++i)
                for (std::size_t j = 0; j < columns.size(); ++j)
                    part(static_cast<Eigen::Index>(i), static_cast<Eigen::Index>(j)) = inJ(rows[i], columns[j]);
            const Eigen::MatrixXd transformed = byBlock[a].vectors.transpose() * part * byBlock[b].vectors;
            for (std::size_t i = 0; i < byBlock[a].levels.size(); ++i)
                for (std::size_t j = 0; j < byBlock[b].levels.size(); ++j)
                    result(byBlock[a].levels[i], byBlock[b].levels[j]) =
                        transformed(static_cast<Eigen::Index>(i), static_cast<Eigen::Index>(j));
        }
    return result;
}

}  // namespace

Eigen::MatrixXd tensorBetweenJStates(const EngineTables& tables, const JBasis& basis,
                                     const Eigen::MatrixXd& termTable, int k) {
    const auto stateCount = static_cast<Eigen::Index>(basis.states.size());
    Eigen::MatrixXd inJ(stateCount, stateCount);
    for (Eigen::Index i = 0; i < stateCount; ++i)
        for (Eigen::Index j = 0; j < stateCount; ++j)
            inJ(i, j) = orbitalTensorInJ(tables, termTable, k, basis.states[i], basis.states[j]);
    return inJ;
}

TransformedTensors transformTensors(const EngineTables& tables, const FreeIonOperators& operators,
                                    const FreeIonSolution& freeIon, const CorrelationTermTensors& correlation) {
    const auto& basis = operators.basis;
    const auto levelCount = static_cast<Eigen::Index>(freeIon.levels.size());
    std::vector<LevelsOfJBlock> byBlock(basis.blocks.size());
    for (std::size_t b = 0; b < basis.blocks.size(); ++b) {
        const auto size = static_cast<Eigen::Index>(basis.blocks[b].states.size());
        byBlock[b].vectors.resize(size, 0);
    }
    TransformedTensors result;
    for (Eigen::Index level = 0; level < levelCount; ++level) {
        const auto& free = freeIon.levels[level];
        auto& block = byBlock[static_cast<std::size_t>(free.block)];
        block.vectors.conservativeResize(Eigen::NoChange, block.vectors.cols() + 1);
        block.vectors.col(block.vectors.cols() - 1) = free.vector;
        block.levels.push_back(level);
        result.levelTwiceJ.push_back(free.twiceJ);
    }
    for (int kIndex = 0; kIndex < 3; ++kIndex)
        result.unitTensor[kIndex] =
            transformTable(tables, basis, byBlock, levelCount, tables.unitTensor[kIndex], kEvenRanks[kIndex]);
    for (const auto& [op, termTensors] : correlation) {
        auto& transformed = result.correlation[op];
        for (int kIndex = 0; kIndex < 3; ++kIndex)
            if (termTensors[kIndex].size() > 0)
                transformed[kIndex] =
                    transformTable(tables, basis, byBlock, levelCount, termTensors[kIndex], kEvenRanks[kIndex]);
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
    // Sized for the largest 2J of the block, so that building one costs little
    // next to the block itself.
    ComponentFactorCache(int k, int q, double normalisation, int maxTwiceJ)
        : k_(k), q_(q), normalisation_(normalisation), side_(maxTwiceJ + 1), mSpan_(2 * maxTwiceJ + 1),
          values_(static_cast<std::size_t>(side_) * mSpan_ * side_, kUnknown) {}
    double operator()(int twiceJ, int twiceM, int twiceJp, int twiceMp) {
        if (twiceMp - twiceM + 2 * q_ != 0) return 0.0;
        const int mIndex = twiceM + side_ - 1;
        if (twiceJ >= side_ || twiceJp >= side_ || mIndex < 0 || mIndex >= mSpan_)
            return tensorComponentFactor(twiceJ, twiceM, k_, q_, twiceJp, twiceMp, normalisation_);
        double& slot = values_[(static_cast<std::size_t>(twiceJ) * mSpan_ + mIndex) * side_ + twiceJp];
        if (std::isnan(slot)) slot = tensorComponentFactor(twiceJ, twiceM, k_, q_, twiceJp, twiceMp, normalisation_);
        return slot;
    }

private:
    static constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
    int k_, q_;
    double normalisation_;
    int side_, mSpan_;
    std::vector<double> values_;
};

}  // namespace

Eigen::SparseMatrix<double> crystalFieldBlockComponent(const ResidueBlock& block, const Eigen::MatrixXd& reduced,
                                                       const CrystalFieldKey& key, double partnerSign) {
    const double conjugateSign = (key.q % 2 == 0) ? 1.0 : -1.0;
    const auto size = static_cast<Eigen::Index>(block.states.size());
    int maxTwiceJ = 0;
    for (const auto& state : block.states) maxTwiceJ = std::max(maxTwiceJ, state.twiceJ);
    ComponentFactorCache plus(key.k, key.q, normalisationOf(key), maxTwiceJ),
        minus(key.k, -key.q, normalisationOf(key), maxTwiceJ);
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

namespace {

// The term table of a key: U(k) for the crystal field, else the correlation
// operator's (which must have been transformed for that rank).
const Eigen::MatrixXd& reducedOf(const TransformedTensors& tensors, const CrystalFieldKey& key) {
    const int kIndex = key.k / 2 - 1;
    if (key.op == CrystalFieldOperator::Standard) return tensors.unitTensor[kIndex];
    return tensors.correlation.at(key.op)[kIndex];
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
        const auto& reduced = reducedOf(tensors, key);
        std::vector<Eigen::SparseMatrix<double>> realBlocks, imaginaryBlocks;
        for (const auto& block : operators.blocks) {
            realBlocks.push_back(crystalFieldBlockComponent(block, reduced, key, 1.0));
            if (withImaginaryParts) imaginaryBlocks.push_back(crystalFieldBlockComponent(block, reduced, key, -1.0));
        }
        operators.realPart.push_back(std::move(realBlocks));
        if (withImaginaryParts) operators.imaginaryPart.push_back(std::move(imaginaryBlocks));
    }
    return operators;
}

namespace {

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

Eigen::MatrixXcd complexBlockMatrix(const CrystalFieldOperators& operators, std::size_t b,
                                    const std::vector<double>& freeIonEnergies,
                                    const std::vector<double>& realParameters,
                                    const std::vector<double>& imaginaryParameters) {
    const Eigen::MatrixXd realMatrix = realBlockMatrix(operators, b, freeIonEnergies, realParameters);
    const auto size = realMatrix.rows();
    Eigen::MatrixXd imaginaryMatrix = Eigen::MatrixXd::Zero(size, size);
    for (std::size_t key = 0; key < operators.keys.size(); ++key)
        if (imaginaryParameters[key] != 0.0)
            imaginaryMatrix += imaginaryParameters[key] * operators.imaginaryPart[key][b];
    Eigen::MatrixXcd matrix(size, size);
    matrix.real() = realMatrix;
    matrix.imag() = imaginaryMatrix;
    return matrix;
}

}  // namespace orvane
