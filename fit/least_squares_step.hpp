#pragma once
// One damped Gauss-Newton (Levenberg-Marquardt) step for residuals r =
// observed - calculated and the Jacobian J = d calculated / d parameter
// (Marquardt 1963, with the column scaling of Fletcher 1971):
//
//   columns scaled to unit norm, Js = J D^-1, D = diag(|J_j|);
//   Js = U S V^T (singular value decomposition);
//   step = D^-1 sum_k [s_k / (s_k^2 + lambda s_max^2)] (u_k . r) v_k
//
// over the singular values above kRankTolerance s_max. A zero column (the
// parameter moves no calculated value) gets no step and is reported; each
// dropped singular value reports the parameters its right vector involves
// (a set of parameters whose effects cancel: collinear columns).
#include <vector>

#include <Eigen/Dense>

namespace orvane {

inline constexpr double kRankTolerance = 1e-9;

struct LeastSquaresStep {
    Eigen::VectorXd step;                         // per column; 0 for a zero column
    std::vector<int> zeroColumns;
    std::vector<std::vector<int>> collinearSets;  // columns of each dropped direction
    int rank = 0;
};

LeastSquaresStep dampedGaussNewtonStep(const Eigen::MatrixXd& jacobian, const Eigen::VectorXd& residuals,
                                       double damping);

// (J^T J)^+ over the same directions (pseudo-inverse, zero for zero columns
// and dropped directions): the unit-weight covariance of the parameters.
Eigen::MatrixXd unitCovariance(const Eigen::MatrixXd& jacobian);

}  // namespace orvane
