#include "fit/least_squares_step.hpp"

#include <cmath>

namespace orvane {
namespace {

// Share of a dropped direction's right vector above which a column counts as involved.
constexpr double kInvolvedShare = 0.1;

struct ScaledDecomposition {
    std::vector<int> columns;  // the non-zero columns
    Eigen::VectorXd scale;     // their norms
    Eigen::MatrixXd u, v;
    Eigen::VectorXd singular;
    int rank = 0;
};

ScaledDecomposition decompose(const Eigen::MatrixXd& jacobian, std::vector<int>& zeroColumns) {
    ScaledDecomposition d;
    const Eigen::VectorXd norms = jacobian.colwise().norm();
    const double largest = norms.size() > 0 ? norms.maxCoeff() : 0.0;
    for (Eigen::Index j = 0; j < norms.size(); ++j) {
        if (!(norms(j) > 1e-14 * largest) || norms(j) == 0.0)
            zeroColumns.push_back(static_cast<int>(j));
        else
            d.columns.push_back(static_cast<int>(j));
    }
    const auto n = static_cast<Eigen::Index>(d.columns.size());
    d.scale.resize(n);
    Eigen::MatrixXd scaled(jacobian.rows(), n);
    for (Eigen::Index c = 0; c < n; ++c) {
        d.scale(c) = norms(d.columns[static_cast<std::size_t>(c)]);
        scaled.col(c) = jacobian.col(d.columns[static_cast<std::size_t>(c)]) / d.scale(c);
    }
    if (n == 0) return d;
    Eigen::BDCSVD<Eigen::MatrixXd> svd(scaled, Eigen::ComputeThinU | Eigen::ComputeThinV);
    d.u = svd.matrixU();
    d.v = svd.matrixV();
    d.singular = svd.singularValues();
    const double smax = d.singular(0);
    for (Eigen::Index k = 0; k < d.singular.size(); ++k)
        if (d.singular(k) > kRankTolerance * smax) ++d.rank;
    return d;
}

}  // namespace

LeastSquaresStep dampedGaussNewtonStep(const Eigen::MatrixXd& jacobian, const Eigen::VectorXd& residuals,
                                       double damping) {
    LeastSquaresStep result;
    result.step = Eigen::VectorXd::Zero(jacobian.cols());
    const auto d = decompose(jacobian, result.zeroColumns);
    result.rank = d.rank;
    if (d.columns.empty()) return result;
    const double smax2 = d.singular(0) * d.singular(0);
    Eigen::VectorXd scaledStep = Eigen::VectorXd::Zero(static_cast<Eigen::Index>(d.columns.size()));
    for (Eigen::Index k = 0; k < d.singular.size(); ++k) {
        const double s = d.singular(k);
        if (k < d.rank) {
            scaledStep += (s / (s * s + damping * smax2)) * d.u.col(k).dot(residuals) * d.v.col(k);
            continue;
        }
        std::vector<int> involved;
        for (Eigen::Index c = 0; c < d.v.rows(); ++c)
            if (std::abs(d.v(c, k)) > kInvolvedShare) involved.push_back(d.columns[static_cast<std::size_t>(c)]);
        result.collinearSets.push_back(std::move(involved));
    }
    for (std::size_t c = 0; c < d.columns.size(); ++c)
        result.step(d.columns[c]) = scaledStep(static_cast<Eigen::Index>(c)) / d.scale(static_cast<Eigen::Index>(c));
    return result;
}

Eigen::MatrixXd unitCovariance(const Eigen::MatrixXd& jacobian) {
    std::vector<int> zero;
    const auto d = decompose(jacobian, zero);
    Eigen::MatrixXd covariance = Eigen::MatrixXd::Zero(jacobian.cols(), jacobian.cols());
    if (d.columns.empty()) return covariance;
    Eigen::MatrixXd scaled = Eigen::MatrixXd::Zero(d.v.rows(), d.v.rows());
    for (Eigen::Index k = 0; k < d.rank; ++k)
        scaled += d.v.col(k) * d.v.col(k).transpose() / (d.singular(k) * d.singular(k));
    for (std::size_t a = 0; a < d.columns.size(); ++a)
        for (std::size_t b = 0; b < d.columns.size(); ++b)
            covariance(d.columns[a], d.columns[b]) =
                scaled(static_cast<Eigen::Index>(a), static_cast<Eigen::Index>(b)) /
                (d.scale(static_cast<Eigen::Index>(a)) * d.scale(static_cast<Eigen::Index>(b)));
    return covariance;
}

}  // namespace orvane
