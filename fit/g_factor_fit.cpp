#include "fit/g_factor_fit.hpp"

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <map>

#include "properties/g_factors.hpp"
#include "properties/magnetic_moment.hpp"
#include "properties/property_states.hpp"
#include "properties/tensor_operator.hpp"

namespace orvane {
namespace {

using Complex = std::complex<double>;

// Where each solved level sits: its block and place in the block (the
// property states' group and column), and the property-state index.
struct LevelIndex {
    std::vector<std::vector<int>> levelsOfBlock;  // sorted level indices per block
    std::vector<int> column;                      // per level: place in its block
    std::vector<int> propertyState;               // per level
    std::vector<int> levelOfPropertyState;
};

LevelIndex indexLevels(const Model& model, const std::vector<ModelLevel>& levels, const PropertyStates& states) {
    LevelIndex index;
    index.levelsOfBlock.resize(model.blocks().size());
    index.column.resize(levels.size());
    for (std::size_t l = 0; l < levels.size(); ++l) {
        auto& list = index.levelsOfBlock[static_cast<std::size_t>(levels[l].block)];
        index.column[l] = static_cast<int>(list.size());
        list.push_back(static_cast<int>(l));
    }
    std::map<std::pair<int, int>, int> byPlace;
    for (std::size_t s = 0; s < states.states.size(); ++s)
        byPlace[{states.states[s].group, states.states[s].column}] = static_cast<int>(s);
    index.propertyState.resize(levels.size());
    index.levelOfPropertyState.resize(states.states.size());
    for (std::size_t l = 0; l < levels.size(); ++l) {
        const int s = byPlace.at({levels[l].block, index.column[l]});
        index.propertyState[l] = s;
        index.levelOfPropertyState[static_cast<std::size_t>(s)] = static_cast<int>(l);
    }
    return index;
}

// c_k = <k|dH/dp|i> / (E_i - E_k) over the property states k (zero outside
// i's block and inside its degenerate level). A time-reversal partner block
// has no components: its coefficients are the complex conjugates of those of
// the source level at the same place (dH/dp is even under time reversal).
Eigen::VectorXcd perturbationCoefficients(const Model& model, const std::vector<ModelLevel>& levels,
                                          const LevelIndex& index, int level, ParameterId id) {
    Eigen::VectorXcd c = Eigen::VectorXcd::Zero(static_cast<Eigen::Index>(index.levelOfPropertyState.size()));
    const int block = levels[static_cast<std::size_t>(level)].block;
    const int partner = model.blocks()[static_cast<std::size_t>(block)].partner;
    const int sourceBlock = partner >= 0 ? partner : block;
    const auto& sourceList = index.levelsOfBlock[static_cast<std::size_t>(sourceBlock)];
    const auto& ownList = index.levelsOfBlock[static_cast<std::size_t>(block)];
    const auto& source = levels[static_cast<std::size_t>(sourceList[static_cast<std::size_t>(
        index.column[static_cast<std::size_t>(level)])])];
    const bool complex = source.complexVector.size() > 0;
    Eigen::MatrixXd x = complex ? Eigen::MatrixXd(source.complexVector.real()) : Eigen::MatrixXd(source.vector);
    Eigen::MatrixXd y = complex ? Eigen::MatrixXd(source.complexVector.imag()) : Eigen::MatrixXd();
    Eigen::MatrixXd re, im;
    model.applyParameterOperator(static_cast<std::size_t>(sourceBlock), id, x, y, re, im);
    for (std::size_t k = 0; k < sourceList.size(); ++k) {
        const auto& other = levels[static_cast<std::size_t>(sourceList[k])];
        const double gap = source.energy - other.energy;
        if (degenerateEnergies(std::min(source.energy, other.energy), std::max(source.energy, other.energy))) continue;
        Complex element;
        if (complex) {
            const Eigen::VectorXd xk = other.complexVector.real(), yk = other.complexVector.imag();
            element = Complex(xk.dot(re.col(0)) + yk.dot(im.col(0)), xk.dot(im.col(0)) - yk.dot(re.col(0)));
        } else {
            element = other.vector.dot(re.col(0));
        }
        if (partner >= 0) element = std::conj(element);
        c(index.propertyState[static_cast<std::size_t>(ownList[k])]) = element / gap;
    }
    return c;
}

Eigen::Matrix3d gSquareDerivative(const std::array<Eigen::Matrix2cd, 3>& m, const std::array<Eigen::Matrix2cd, 3>& dm) {
    Eigen::Matrix3d d;
    for (int a = 0; a < 3; ++a)
        for (int b = 0; b < 3; ++b) d(a, b) = 2.0 * (dm[a] * m[b] + m[a] * dm[b]).trace().real();
    return d;
}

int componentIndex(GComponent component) {
    return component == GComponent::X ? 0 : component == GComponent::Y ? 1 : 2;
}


// dg/dp of one observed component of a doublet, given dM_a of the pair.
double componentDerivative(const DoubletG& g, int c, bool sumOfPair, double value,
                           const std::array<Eigen::Matrix2cd, 3>& m, const std::array<Eigen::Matrix2cd, 3>& dm) {
    if (sumOfPair) {
        const Eigen::Vector3d axis = g.axes.col(2);
        Eigen::Matrix2cd along = Eigen::Matrix2cd::Zero(), dAlong = Eigen::Matrix2cd::Zero();
        for (std::size_t a = 0; a < 3; ++a) {
            along += axis(static_cast<Eigen::Index>(a)) * m[a];
            dAlong += axis(static_cast<Eigen::Index>(a)) * dm[a];
        }
        const Eigen::SelfAdjointEigenSolver<Eigen::Matrix2cd> solver(along);
        double derivative = 0.0;
        for (int e = 0; e < 2; ++e) {
            const Eigen::Vector2cd u = solver.eigenvectors().col(e);
            const double sign = solver.eigenvalues()(e) >= 0 ? 1.0 : -1.0;
            derivative += sign * (u.adjoint() * dAlong * u)(0, 0).real();
        }
        return derivative;
    }
    if (!(value > 0)) return 0.0;
    const Eigen::Vector3d axis = g.axes.col(c);
    return axis.dot(gSquareDerivative(m, dm) * axis) / (2.0 * value);
}

}  // namespace

GFactorEvaluation evaluateGFactors(const Model& model, const std::vector<ModelLevel>& levels,
                                   const std::vector<ObservedGFactor>& rows, const std::vector<ParameterId>& ids) {
    GFactorEvaluation result;
    result.calculated.assign(rows.size(), std::numeric_limits<double>::quiet_NaN());
    result.derivatives = Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(rows.size()), static_cast<Eigen::Index>(ids.size()));
    if (rows.empty()) return result;
    ModelSolution solution;
    solution.levels = levels;
    const auto states = crystalFieldStates(model, solution, 1.0);
    const auto index = indexLevels(model, levels, states);
    const auto moment = magneticMomentOperator(states);
    const auto pairs = pairDoublets(states);
    // The observed rows of each doublet (gx and gz of one doublet share its work).
    std::map<std::size_t, std::vector<std::size_t>> rowsOfPair;
    for (std::size_t r = 0; r < rows.size(); ++r) {
        const int level = rows[r].stateNumber - 1;
        if (level < 0 || static_cast<std::size_t>(level) >= levels.size()) continue;
        const int s = index.propertyState[static_cast<std::size_t>(level)];
        const auto pair = std::find_if(pairs.begin(), pairs.end(), [s](const auto& p) { return p.first == s || p.second == s; });
        if (pair != pairs.end()) rowsOfPair[static_cast<std::size_t>(pair - pairs.begin())].push_back(r);
    }
    for (const auto& [pairIndex, pairRows] : rowsOfPair) {
        const int p[2] = {pairs[pairIndex].first, pairs[pairIndex].second};
        const auto g = doubletGFactors(states, moment, p[0], p[1]);
        for (const std::size_t r : pairRows) {
            const int c = componentIndex(rows[r].component);
            result.calculated[r] = g.quasiDoublet && c == 2 ? g.gz1 + g.gz2 : g.g[static_cast<std::size_t>(c)];
        }
        if (ids.empty()) continue;
        // <p|m_a|k> for every state k, p = the pair's two states.
        Eigen::MatrixXcd elements[2];
        for (int t = 0; t < 2; ++t) elements[t] = moment.contract(cartesianFromSpherical(moment.braRows(p[t])));
        const auto m = momentBlocks(moment, p[0], p[1]);
        for (std::size_t i = 0; i < ids.size(); ++i) {
            Eigen::VectorXcd coefficients[2];
            for (int t = 0; t < 2; ++t)
                coefficients[t] = perturbationCoefficients(model, levels, index,
                                                           index.levelOfPropertyState[static_cast<std::size_t>(p[t])], ids[i]);
            std::array<Eigen::Matrix2cd, 3> dm;
            for (int a = 0; a < 3; ++a)
                for (int u = 0; u < 2; ++u)
                    for (int v = 0; v < 2; ++v)
                        // <du|m_a|v> + <u|m_a|dv>, with <k|m_a|v> = conj(<v|m_a|k>).
                        dm[static_cast<std::size_t>(a)](u, v) =
                            coefficients[u].dot(elements[v].col(a).conjugate()) +
                            coefficients[v].cwiseProduct(elements[u].col(a)).sum();
            for (const std::size_t r : pairRows) {
                const int c = componentIndex(rows[r].component);
                result.derivatives(static_cast<Eigen::Index>(r), static_cast<Eigen::Index>(i)) =
                    componentDerivative(g, c, g.quasiDoublet && c == 2, result.calculated[r], m, dm);
            }
        }
    }
    return result;
}

}  // namespace orvane
