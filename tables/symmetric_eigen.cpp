#include "tables/symmetric_eigen.hpp"

#include <vector>

#include "core/lapack.hpp"

extern "C" {
// Eigenvalues and eigenvectors of a real symmetric matrix by divide and conquer.
void dsyevd_(const char* jobz, const char* uplo, const int* n, double* a, const int* lda, double* w,
             double* work, const int* lwork, int* iwork, const int* liwork, int* info,
             orvane::lapack::FortranLength jobzLength, orvane::lapack::FortranLength uploLength);
}

namespace orvane {

SymmetricEigenResult symmetricEigen(const Eigen::MatrixXd& matrix) {
    SymmetricEigenResult result;
    const int n = static_cast<int>(matrix.rows());
    if (n == 0) {
        result.ok = true;
        return result;
    }
    // Divide and conquer (dsyevd) gives eigenvectors orthonormal to working
    // precision, which the null spaces and Casimir eigenspaces rely on.
    result.vectors = matrix;
    result.values.resize(n);
    const char jobz = 'V', uplo = 'L';
    int info = 0, lwork = -1, liwork = -1, iworkQuery = 0;
    double workQuery = 0.0;
    dsyevd_(&jobz, &uplo, &n, result.vectors.data(), &n, result.values.data(), &workQuery, &lwork,
            &iworkQuery, &liwork, &info, 1, 1);
    if (info != 0) return result;
    lwork = static_cast<int>(workQuery);
    liwork = iworkQuery;
    std::vector<double> work(static_cast<std::size_t>(lwork));
    std::vector<int> iwork(static_cast<std::size_t>(liwork));
    dsyevd_(&jobz, &uplo, &n, result.vectors.data(), &n, result.values.data(), work.data(), &lwork,
            iwork.data(), &liwork, &info, 1, 1);
    result.ok = (info == 0);
    return result;
}

}  // namespace orvane
