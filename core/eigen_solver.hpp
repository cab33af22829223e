#pragma once
// The eigen solver of the engine, the fits and the table generators: all
// eigenpairs, or only the lowest m, of a real symmetric or complex Hermitian
// matrix, with or without eigenvectors, by one LAPACK call.
//
// Drivers (LAPACK Users' Guide, 3rd ed., section 2.3.4.1):
//   Mrrr             dsyevr / zheevr (multiple relatively robust representations);
//                    the only driver that computes an index range (RANGE = 'I').
//   DivideAndConquer dsyevd / zheevd; eigenvectors orthonormal to working
//                    precision even inside clusters of equal eigenvalues, and
//                    much faster than MRRR on blocks with many exactly
//                    degenerate pairs (the time-reversal invariant crystal-field
//                    blocks of Kramers ions).
//   Automatic        DivideAndConquer for the whole spectrum of a real
//                    matrix, Mrrr otherwise (an index range; complex matrices,
//                    where zheevr beats zheevd with vectors): measured in
//                    docs/performance.md.
//
// Input: the lower triangle of a square matrix (column-major). Output:
// eigenvalues ascending; eigenvectors (when asked) as the columns of an n x m
// matrix, column j belonging to value j, normalised, with LAPACK's phases.
// Failures come back as a status with LAPACK's info, never as exceptions.
//
// `EigenWorkspace` keeps the matrix, LAPACK's work arrays and the results
// between calls, so that a fit that diagonalises blocks of the same orders
// thousands of times allocates only on the first call. One workspace per
// thread; workspaces share nothing.
#include <complex>
#include <vector>

#include <Eigen/Dense>

namespace orvane {

// Pass as `lowest` to ask for every eigenvalue.
inline constexpr int kAllEigenvalues = -1;

enum class EigenStatus {
    Ok,
    InvalidInput,   // not square, or a non-finite entry
    NoConvergence,  // LAPACK info > 0
    LapackError,    // LAPACK info < 0 (an argument LAPACK rejected)
};

enum class EigenDriver { Automatic, Mrrr, DivideAndConquer };

struct EigenRequest {
    bool vectors = false;
    // How many of the lowest eigenvalues are wanted (m); kAllEigenvalues or any
    // value >= n asks for all n, 0 for none.
    int lowest = kAllEigenvalues;
    EigenDriver driver = EigenDriver::Automatic;
};

template <typename Scalar>
class EigenWorkspace {
public:
    using Matrix = Eigen::Matrix<Scalar, Eigen::Dynamic, Eigen::Dynamic>;

    // The n x n matrix to fill before `solve` (only the lower triangle is read).
    // Its contents are undefined after `solve`.
    Eigen::Map<Matrix> matrix(int n);
    // Diagonalises the matrix last handed out by `matrix`.
    EigenStatus solve(const EigenRequest& request);

    int count() const { return count_; }  // eigenvalues found
    int lapackInfo() const { return info_; }
    Eigen::Map<const Eigen::VectorXd> values() const { return {values_.data(), count_}; }
    // n x count(); meaningful only when vectors were asked.
    Eigen::Map<const Matrix> vectors() const { return {vectorData_, order_, vectorsAsked_ ? count_ : 0}; }

private:
    int order_ = 0;
    int count_ = 0;
    int info_ = 0;
    bool vectorsAsked_ = false;
    const Scalar* vectorData_ = nullptr;
    std::vector<Scalar> matrix_, z_, work_;
    std::vector<double> values_, rwork_;
    std::vector<int> iwork_, support_;

    EigenStatus solveMrrr(int lowest, bool vectors);
    EigenStatus solveDivideAndConquer(bool vectors);
};

using SymmetricEigenWorkspace = EigenWorkspace<double>;
using HermitianEigenWorkspace = EigenWorkspace<std::complex<double>>;

// One-shot forms over a temporary workspace (the matrix is copied).
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

SymmetricEigenpairsResult solveSymmetricEigen(const Eigen::MatrixXd& matrix, const EigenRequest& request);
HermitianEigenpairsResult solveHermitianEigen(const Eigen::MatrixXcd& matrix, const EigenRequest& request);

// Shorthands with the MRRR driver (and divide and conquer for the last one,
// which the term generator needs for its degenerate eigenspaces).
inline SymmetricEigenpairsResult symmetricEigenpairs(const Eigen::MatrixXd& m, int lowest = kAllEigenvalues) {
    return solveSymmetricEigen(m, {true, lowest, EigenDriver::Mrrr});
}
inline SymmetricEigenpairsResult symmetricEigenvalues(const Eigen::MatrixXd& m, int lowest = kAllEigenvalues) {
    return solveSymmetricEigen(m, {false, lowest, EigenDriver::Mrrr});
}
inline SymmetricEigenpairsResult symmetricEigenpairsDivideAndConquer(const Eigen::MatrixXd& m) {
    return solveSymmetricEigen(m, {true, kAllEigenvalues, EigenDriver::DivideAndConquer});
}
inline HermitianEigenpairsResult hermitianEigenpairs(const Eigen::MatrixXcd& m, int lowest = kAllEigenvalues) {
    return solveHermitianEigen(m, {true, lowest, EigenDriver::Mrrr});
}
inline HermitianEigenpairsResult hermitianEigenvalues(const Eigen::MatrixXcd& m, int lowest = kAllEigenvalues) {
    return solveHermitianEigen(m, {false, lowest, EigenDriver::Mrrr});
}

}  // namespace orvane
