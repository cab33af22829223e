#include "core/eigen_solver.hpp"

#include <algorithm>
#include <complex>
#include <limits>
#include <vector>

#include "core/lapack.hpp"

namespace orvane {

namespace {

using Complex = std::complex<double>;

// What one dsyevr/zheevr call is asked for.
struct EigenRequest {
    char jobz = 'V';   // 'V' vectors, 'N' values only
    char range = 'A';  // 'A' all, 'I' the index range il..iu
    int il = 1;
    int iu = 1;
    int count = 0;     // eigenvalues expected
};

EigenRequest makeRequest(Eigen::Index order, int lowest, bool wantVectors) {
    EigenRequest request;
    const int n = static_cast<int>(order);
    request.jobz = wantVectors ? 'V' : 'N';
    const bool all = lowest < 0 || lowest >= n;
    request.range = all ? 'A' : 'I';
    request.count = all ? n : lowest;
    request.iu = std::max(1, request.count);
    return request;
}

EigenStatus statusFromInfo(int info) {
    if (info == 0) return EigenStatus::Ok;
    return info > 0 ? EigenStatus::NoConvergence : EigenStatus::LapackError;
}

// LAPACK's recommended absolute tolerance for the most accurate eigenvalues
// (twice the safe minimum; dsyevr/zheevr documentation).
constexpr double kAbsoluteTolerance = 2.0 * std::numeric_limits<double>::min();

// Length of a LAPACK work array of `length` entries plus the spare columns of
// lapack::kPaddingColumns.
std::size_t paddedLength(int length, int n) {
    return static_cast<std::size_t>(length) +
           static_cast<std::size_t>(lapack::kPaddingColumns) * static_cast<std::size_t>(n);
}

template <typename Result, typename Matrix>
bool rejectInput(const Matrix& matrix, Result& result) {
    if (matrix.rows() == matrix.cols() && matrix.allFinite()) return false;
    result.status = EigenStatus::InvalidInput;
    return true;
}

SymmetricEigenpairsResult solveSymmetric(Eigen::MatrixXd matrix, int lowest, bool wantVectors) {
    SymmetricEigenpairsResult result;
    if (rejectInput(matrix, result)) return result;
    const int n = static_cast<int>(matrix.rows());
    const EigenRequest request = makeRequest(n, lowest, wantVectors);
    if (request.count == 0) return result;
    matrix.conservativeResize(n, n + lapack::kPaddingColumns);  // spare columns, see lapack.hpp

    const int ldz = n;
    result.values.resize(n);
    if (wantVectors) result.vectors.resize(n, request.count);
    double* z = wantVectors ? result.vectors.data() : nullptr;
    double dummyZ = 0.0;
    std::vector<int> support(2 * static_cast<std::size_t>(std::max(1, request.count)));
    const double unusedBound = 0.0;
    int found = 0;
    int info = 0;
    int lwork = -1;
    int liwork = -1;
    double workSize = 0.0;
    int iworkSize = 0;
    dsyevr_(&request.jobz, &request.range, "L", &n, matrix.data(), &n, &unusedBound, &unusedBound,
            &request.il, &request.iu, &kAbsoluteTolerance, &found, result.values.data(),
            z ? z : &dummyZ, &ldz, support.data(), &workSize, &lwork, &iworkSize, &liwork, &info,
            1, 1, 1);
    lwork = std::max(1, static_cast<int>(workSize));
    liwork = std::max(1, iworkSize);
    std::vector<double> work(paddedLength(lwork, n));
    std::vector<int> iwork(static_cast<std::size_t>(liwork));
    dsyevr_(&request.jobz, &request.range, "L", &n, matrix.data(), &n, &unusedBound, &unusedBound,
            &request.il, &request.iu, &kAbsoluteTolerance, &found, result.values.data(),
            z ? z : &dummyZ, &ldz, support.data(), work.data(), &lwork, iwork.data(), &liwork,
            &info, 1, 1, 1);
    result.lapackInfo = info;
    result.status = statusFromInfo(info);
    result.values.conservativeResize(info == 0 ? found : 0);
    if (wantVectors) result.vectors.conservativeResize(n, info == 0 ? found : 0);
    return result;
}

HermitianEigenpairsResult solveHermitian(Eigen::MatrixXcd matrix, int lowest, bool wantVectors) {
    HermitianEigenpairsResult result;
    if (rejectInput(matrix, result)) return result;
    const int n = static_cast<int>(matrix.rows());
    const EigenRequest request = makeRequest(n, lowest, wantVectors);
    if (request.count == 0) return result;
    matrix.conservativeResize(n, n + lapack::kPaddingColumns);  // spare columns, see lapack.hpp

    const int ldz = n;
    result.values.resize(n);
    if (wantVectors) result.vectors.resize(n, request.count);
    Complex* z = wantVectors ? result.vectors.data() : nullptr;
    Complex dummyZ;
    std::vector<int> support(2 * static_cast<std::size_t>(std::max(1, request.count)));
    const double unusedBound = 0.0;
    int found = 0;
    int info = 0;
    int lwork = -1;
    int lrwork = -1;
    int liwork = -1;
    Complex workSize;
    double rworkSize = 0.0;
    int iworkSize = 0;
    zheevr_(&request.jobz, &request.range, "L", &n, matrix.data(), &n, &unusedBound, &unusedBound,
            &request.il, &request.iu, &kAbsoluteTolerance, &found, result.values.data(),
            z ? z : &dummyZ, &ldz, support.data(), &workSize, &lwork, &rworkSize, &lrwork,
            &iworkSize, &liwork, &info, 1, 1, 1);
    lwork = std::max(1, static_cast<int>(workSize.real()));
    lrwork = std::max(1, static_cast<int>(rworkSize));
    liwork = std::max(1, iworkSize);
    std::vector<Complex> work(paddedLength(lwork, n));
    std::vector<double> rwork(paddedLength(lrwork, n));
    std::vector<int> iwork(static_cast<std::size_t>(liwork));
    zheevr_(&request.jobz, &request.range, "L", &n, matrix.data(), &n, &unusedBound, &unusedBound,
            &request.il, &request.iu, &kAbsoluteTolerance, &found, result.values.data(),
            z ? z : &dummyZ, &ldz, support.data(), work.data(), &lwork, rwork.data(), &lrwork,
            iwork.data(), &liwork, &info, 1, 1, 1);
    result.lapackInfo = info;
    result.status = statusFromInfo(info);
    result.values.conservativeResize(info == 0 ? found : 0);
    if (wantVectors) result.vectors.conservativeResize(n, info == 0 ? found : 0);
    return result;
}

}  // namespace

SymmetricEigenpairsResult symmetricEigenpairs(Eigen::MatrixXd matrix, int lowest) {
    return solveSymmetric(std::move(matrix), lowest, true);
}

SymmetricEigenpairsResult symmetricEigenvalues(Eigen::MatrixXd matrix, int lowest) {
    return solveSymmetric(std::move(matrix), lowest, false);
}

HermitianEigenpairsResult hermitianEigenpairs(Eigen::MatrixXcd matrix, int lowest) {
    return solveHermitian(std::move(matrix), lowest, true);
}

HermitianEigenpairsResult hermitianEigenvalues(Eigen::MatrixXcd matrix, int lowest) {
    return solveHermitian(std::move(matrix), lowest, false);
}


SymmetricEigenpairsResult symmetricEigenpairsDivideAndConquer(Eigen::MatrixXd matrix) {
    SymmetricEigenpairsResult result;
    if (rejectInput(matrix, result)) return result;
    const int n = static_cast<int>(matrix.rows());
    if (n == 0) return result;
    matrix.conservativeResize(n, n + lapack::kPaddingColumns);  // spare columns, see lapack.hpp
    result.values.resize(n);
    int info = 0;
    int lwork = -1;
    int liwork = -1;
    int iworkSize = 0;
    double workSize = 0.0;
    dsyevd_("V", "L", &n, matrix.data(), &n, result.values.data(), &workSize, &lwork, &iworkSize,
            &liwork, &info, 1, 1);
    lwork = std::max(1, static_cast<int>(workSize));
    liwork = std::max(1, iworkSize);
    std::vector<double> work(paddedLength(lwork, n));
    std::vector<int> iwork(static_cast<std::size_t>(liwork));
    dsyevd_("V", "L", &n, matrix.data(), &n, result.values.data(), work.data(), &lwork,
            iwork.data(), &liwork, &info, 1, 1);
    result.lapackInfo = info;
    result.status = statusFromInfo(info);
    if (info != 0) {
        result.values.resize(0);
        return result;
    }
    result.vectors = matrix.leftCols(n);
    return result;
}

}  // namespace orvane
