#include "properties/g_factors.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "properties/magnetic_moment.hpp"

namespace orvane {

namespace {

// Two states of one level under the site group carry the same irrep label
// (a two-dimensional irrep, or "G5,6" for a conjugate pair); without a group
// (or for a level that is not one irrep, "?") time-reversal partners carry
// opposite crystal quantum numbers.
bool pairedByLabels(const PropertyState& a, const PropertyState& b) {
    if (!a.irrep.empty() && !b.irrep.empty() && a.irrep != "?" && b.irrep != "?") return a.irrep == b.irrep;
    return a.twiceMu == -b.twiceMu;
}

}  // namespace

std::vector<std::pair<int, int>> pairDoublets(const PropertyStates& states) {
    std::vector<std::pair<int, int>> pairs;
    const auto n = static_cast<int>(states.states.size());
    const auto energy = [&](int i) { return states.states[i].energy; };
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    for (int i = 0; i + 1 < n;) {
        const double gapUp = energy(i + 1) - energy(i);
        const double gapAfter = i + 2 < n ? energy(i + 2) - energy(i + 1) : kInfinite;
        bool pair = gapUp < gapAfter - kDegenerateLevelTolerance;
        if (!pair && std::abs(gapUp - gapAfter) <= kDegenerateLevelTolerance)
            pair = pairedByLabels(states.states[i], states.states[i + 1]);
        if (pair) {
            pairs.emplace_back(i, i + 1);
            i += 2;
        } else {
            ++i;
        }
    }
    return pairs;
}

std::array<Eigen::Matrix2cd, 3> momentBlocks(const TensorOperator& moment, int first, int second) {
    const Eigen::MatrixXcd rowsFirst = cartesianFromSpherical(moment.braRows(first));
    const Eigen::MatrixXcd rowsSecond = cartesianFromSpherical(moment.braRows(second));
    const Eigen::RowVectorXcd e11 = moment.contractWith(rowsFirst, first), e12 = moment.contractWith(rowsFirst, second);
    const Eigen::RowVectorXcd e21 = moment.contractWith(rowsSecond, first), e22 = moment.contractWith(rowsSecond, second);
    std::array<Eigen::Matrix2cd, 3> blocks;
    for (int a = 0; a < 3; ++a) blocks[a] << e11(a), e12(a), e21(a), e22(a);
    return blocks;
}

Eigen::Matrix3d gTensorSquare(const std::array<Eigen::Matrix2cd, 3>& blocks) {
    Eigen::Matrix3d square;
    for (int a = 0; a < 3; ++a)
        for (int b = 0; b < 3; ++b) square(a, b) = 2.0 * (blocks[a] * blocks[b]).trace().real();
    return square;
}

namespace {

// The assignment of principal axes to frame axes that maximises the summed
// |projections| (so an axial tensor gives gz along z and gx = gy).
std::array<int, 3> matchAxes(const Eigen::Matrix3d& vectors) {
    std::array<int, 3> permutation = {0, 1, 2}, best = permutation;
    double bestScore = -1.0;
    do {
        double score = 0.0;
        for (int a = 0; a < 3; ++a) score += std::abs(vectors(a, permutation[a]));
        if (score > bestScore + 1e-12) {
            bestScore = score;
            best = permutation;
        }
    } while (std::next_permutation(permutation.begin(), permutation.end()));
    return best;
}

// zyz Euler angles (degrees) of a proper rotation R = R_z(alpha) R_y(beta) R_z(gamma).
std::array<double, 3> eulerAnglesOf(const Eigen::Matrix3d& r) {
    const double degrees = 180.0 / std::numbers::pi;
    const double beta = std::acos(std::clamp(r(2, 2), -1.0, 1.0));
    if (std::abs(std::sin(beta)) < 1e-9)
        return {0.0, beta * degrees, std::atan2(r(1, 0), r(0, 0)) * (r(2, 2) > 0 ? 1.0 : -1.0) * degrees};
    return {std::atan2(r(1, 2), r(0, 2)) * degrees, beta * degrees, std::atan2(r(2, 1), -r(2, 0)) * degrees};
}

}  // namespace

DoubletG doubletGFactors(const PropertyStates& states, const TensorOperator& moment, int first, int second) {
    DoubletG result;
    result.first = first;
    result.second = second;
    result.quasiDoublet = !states.kramers();
    const auto blocks = momentBlocks(moment, first, second);
    const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver(gTensorSquare(blocks));
    const auto match = matchAxes(solver.eigenvectors());
    for (int a = 0; a < 3; ++a) {
        result.g[a] = std::sqrt(std::max(0.0, solver.eigenvalues()(match[a])));
        Eigen::Vector3d axis = solver.eigenvectors().col(match[a]);
        if (axis(a) < 0) axis = -axis;
        result.axes.col(a) = axis;
    }
    if (result.axes.determinant() < 0) result.axes.col(0) = -result.axes.col(0);
    result.eulerAngles = eulerAnglesOf(result.axes);
    if (result.quasiDoublet) {
        // Along the principal axis of the largest g (the only non-zero one of two singlets).
        const Eigen::Vector3d axis = solver.eigenvectors().col(2);
        const Eigen::Matrix2cd along = axis(0) * blocks[0] + axis(1) * blocks[1] + axis(2) * blocks[2];
        const Eigen::SelfAdjointEigenSolver<Eigen::Matrix2cd> zSolver(along);
        result.gz1 = std::abs(zSolver.eigenvalues()(1));
        result.gz2 = std::abs(zSolver.eigenvalues()(0));
        result.moment = {0.0, 0.0, result.gz1};
    } else {
        result.moment = {result.g[0] / 2, result.g[1] / 2, result.g[2] / 2};
    }
    return result;
}

}  // namespace orvane
