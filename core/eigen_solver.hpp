#pragma once
// Fast eigen entry points for the engine and the fits: all eigenpairs, or only
// the lowest m, of a real symmetric or complex Hermitian block, with or without
// eigenvectors. One LAPACK call each (dsyevr / zheevr, the MRRR algorithm; a
// selection of the lowest m uses RANGE = 'I', IL = 1, IU = m, and eigenvalues
// only use JOBZ = 'N'), with LAPACK's workspace query done first.
//
// Input: a square matrix of which only the lower triangle is read (column-major
// Eigen storage). It is taken by value and overwritten by LAPACK: pass it with
// std::move when the caller no longer needs it.
// Output: eigenvalues ascending; eigenvectors (when asked) as the columns of an
// n x m matrix, column j belonging to values(j), normalised, with the phase
// LAPACK gives them.
// Failures come back as a status with LAPACK's info, never as exceptions.
#include <Eigen/Dense>

namespace orvane {

// Pass as `lowest` to ask for every eigenvalue.
inline constexpr int kAllEigenvalues = -1;

enum class EigenStatus {
    Ok,
    InvalidInput,   // not square, or a non-finite entry
    NoConvergence,  // LAPACK info > 0 (internal error of the MRRR solver)
    LapackError,    // LAPACK info < 0 (an argument LAPACK rejected)
};

struct SymmetricEigenpairsResult {
    EigenStatus status = EigenStatus::Ok;
    int lapackInfo = 0;
    Eigen::VectorXd values;   // ascending; m of them
    Eigen::MatrixXd vectors;  // n x m; empty when only values were asked
};

struct HermitianEigenpairsResult {
    EigenStatus status = EigenStatus::Ok;
    int lapackInfo = 0;
    Eigen::VectorXd values;    // ascending; m of them
    Eigen::MatrixXcd vectors;  // n x m; empty when only values were asked
};

// `lowest`: how many of the lowest eigenvalues are wanted (m); kAllEigenvalues
// or any value >= n asks for all n, 0 for none.
SymmetricEigenpairsResult symmetricEigenpairs(Eigen::MatrixXd matrix, int lowest = kAllEigenvalues);
SymmetricEigenpairsResult symmetricEigenvalues(Eigen::MatrixXd matrix, int lowest = kAllEigenvalues);
// Every eigenpair of a real symmetric matrix by divide and conquer (dsyevd):
// slower than dsyevr for large orders but its eigenvectors are orthonormal to
// working precision even inside clusters of equal eigenvalues, which null
// spaces and simultaneous eigenspaces (term generation) rely on.
SymmetricEigenpairsResult symmetricEigenpairsDivideAndConquer(Eigen::MatrixXd matrix);
HermitianEigenpairsResult hermitianEigenpairs(Eigen::MatrixXcd matrix,
                                              int lowest = kAllEigenvalues);
HermitianEigenpairsResult hermitianEigenvalues(Eigen::MatrixXcd matrix,
                                               int lowest = kAllEigenvalues);

}  // namespace orvane
