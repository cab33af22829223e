#include "properties/tensor_operator.hpp"

#include <cmath>
#include <stdexcept>

#include "core/angular.hpp"

namespace orvane {

TensorOperator::TensorOperator(const PropertyStates& states, int rank, const Eigen::MatrixXd& reduced)
    : states_(&states), rank_(rank), reduced_(reduced) {
    const auto count = static_cast<int>(states.jBasis.states.size());
    if (reduced.rows() != count || reduced.cols() != count)
        throw std::invalid_argument("reduced matrix does not match the |SL J> basis");
    nonZero_.resize(count);
    for (int s = 0; s < count; ++s) {
        maxTwiceJ_ = std::max(maxTwiceJ_, states.jBasis.states[s].twiceJ);
        for (int t = 0; t < count; ++t)
            if (reduced(s, t) != 0.0) nonZero_[s].emplace_back(t, reduced(s, t));
    }
    const int n = maxTwiceJ_ + 1, qs = 2 * rank + 1;
    threeJ_.assign(static_cast<std::size_t>(n) * n * n * qs, 0.0);
    std::vector<bool> present(n, false);
    for (const auto& state : states.jBasis.states) present[state.twiceJ] = true;
    for (int tj = 0; tj < n; ++tj)
        for (int tjp = 0; tjp < n; ++tjp) {
            if (!present[tj] || !present[tjp]) continue;
            for (int tm = -tj; tm <= tj; tm += 2)
                for (int q = -rank; q <= rank; ++q) {
                    const int tmp = tm - 2 * q;
                    if (std::abs(tmp) > tjp) continue;
                    threeJ_[((static_cast<std::size_t>(tj) * n + tjp) * n + (tm + tj) / 2) * qs + (q + rank)] =
                        ThreeJ2(tj, 2 * rank, tjp, -tm, 2 * q, tmp);
                }
        }
}

double TensorOperator::threeJ(int twiceJ, int twiceJp, int twiceM, int q) const {
    const int n = maxTwiceJ_ + 1, qs = 2 * rank_ + 1;
    return threeJ_[((static_cast<std::size_t>(twiceJ) * n + twiceJp) * n + (twiceM + twiceJ) / 2) * qs + (q + rank_)];
}

Eigen::MatrixXcd TensorOperator::braRows(int state) const {
    const auto& states = *states_;
    const auto& info = states.states[state];
    const auto& group = states.groups[info.group];
    const auto coefficients = group.vectors.col(info.column);
    Eigen::MatrixXcd rows = Eigen::MatrixXcd::Zero(static_cast<Eigen::Index>(states.basis.states.size()), 2 * rank_ + 1);
    for (std::size_t c = 0; c < group.basisIndices.size(); ++c) {
        const std::complex<double> bra = std::conj(coefficients(static_cast<Eigen::Index>(c)));
        if (bra == 0.0) continue;
        const auto& b = states.basis.states[group.basisIndices[c]];
        const double phase = ((b.twiceJ - b.twiceM) / 2) % 2 == 0 ? 1.0 : -1.0;  // (-1)^(J-M)
        for (const auto& [t, value] : nonZero_[b.jState]) {
            const int tjp = states.jBasis.states[t].twiceJ;
            for (int q = -rank_; q <= rank_; ++q) {
                const int tmp = b.twiceM - 2 * q;  // M' = M - q
                if (std::abs(tmp) > tjp) continue;
                const double w = threeJ(b.twiceJ, tjp, b.twiceM, q);
                if (w == 0.0) continue;
                rows(states.basisIndex(t, tmp), q + rank_) += bra * (phase * w * value);
            }
        }
    }
    return rows;
}

Eigen::MatrixXcd TensorOperator::contract(const Eigen::MatrixXcd& rows) const {
    const auto& states = *states_;
    Eigen::MatrixXcd result(static_cast<Eigen::Index>(states.states.size()), rows.cols());
    for (const auto& group : states.groups) {
        if (group.members.empty()) continue;
        Eigen::MatrixXcd gathered(static_cast<Eigen::Index>(group.basisIndices.size()), rows.cols());
        for (std::size_t r = 0; r < group.basisIndices.size(); ++r)
            gathered.row(static_cast<Eigen::Index>(r)) = rows.row(group.basisIndices[r]);
        const Eigen::MatrixXcd elements = group.vectors.transpose() * gathered;
        for (std::size_t m = 0; m < group.members.size(); ++m)
            result.row(group.members[m]) = elements.row(static_cast<Eigen::Index>(m));
    }
    return result;
}

Eigen::RowVectorXcd TensorOperator::contractWith(const Eigen::MatrixXcd& rows, int state) const {
    const auto& info = states_->states[state];
    const auto& group = states_->groups[info.group];
    const auto coefficients = group.vectors.col(info.column);
    Eigen::RowVectorXcd result = Eigen::RowVectorXcd::Zero(rows.cols());
    for (std::size_t r = 0; r < group.basisIndices.size(); ++r)
        result += coefficients(static_cast<Eigen::Index>(r)) * rows.row(group.basisIndices[r]);
    return result;
}

Eigen::MatrixXcd cartesianFromSpherical(const Eigen::MatrixXcd& spherical) {
    const double r = 1.0 / std::sqrt(2.0);
    const std::complex<double> i(0.0, 1.0);
    Eigen::MatrixXcd cartesian(spherical.rows(), 3);
    cartesian.col(0) = r * (spherical.col(0) - spherical.col(2));
    cartesian.col(1) = (i * r) * (spherical.col(0) + spherical.col(2));
    cartesian.col(2) = spherical.col(1);
    return cartesian;
}

}  // namespace orvane
