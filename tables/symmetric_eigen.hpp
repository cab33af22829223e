#pragma once
// Eigenvalues (ascending) and eigenvectors (columns) of a small real symmetric
// matrix, through LAPACK dsyevd. `ok` is false when LAPACK reports a failure.
#include <Eigen/Dense>

namespace orvane {

struct SymmetricEigenResult {
    Eigen::VectorXd values;
    Eigen::MatrixXd vectors;
    bool ok = false;
};

SymmetricEigenResult symmetricEigen(const Eigen::MatrixXd& matrix);

}  // namespace orvane
