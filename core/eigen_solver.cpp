#include "core/eigen_solver.hpp"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "core/lapack.hpp"

namespace orvane {

namespace {

using Complex = std::complex<double>;

EigenStatus statusFromInfo(int info) {
    if (info == 0) return EigenStatus::Ok;
    return info > 0 ? EigenStatus::NoConvergence : EigenStatus::LapackError;
}

// LAPACK's recommended absolute tolerance for the most accurate eigenvalues
// (twice the safe minimum; dsyevr/zheevr documentation).
constexpr double kAbsoluteTolerance = 2.0 * std::numeric_limits<double>::min();

// Grows a buffer to at least `length` entries plus the spare columns of
// lapack::kPaddingColumns; never shrinks it, so a reused workspace stops
// allocating after its first call.
template <typename T>
T* reserve(std::vector<T>& buffer, long length, int n) {
    const auto wanted = static_cast<std::size_t>(std::max(1L, length)) +
                        static_cast<std::size_t>(lapack::kPaddingColumns) * static_cast<std::size_t>(std::max(n, 1));
    if (buffer.size() < wanted) buffer.resize(wanted);
    return buffer.data();
}

int workLength(double size) { return std::max(1, static_cast<int>(size)); }
int workLength(Complex size) { return std::max(1, static_cast<int>(size.real())); }

// The MRRR drivers (dsyevr / zheevr) with their workspace query; `z` receives
// the vectors.
struct MrrrCall {
    char jobz, range;
    int n, il, iu;
};

int callMrrr(const MrrrCall& c, double* a, double* w, double* z, int* support, std::vector<double>& work,
             std::vector<double>& /*rwork*/, std::vector<int>& iwork, int& found) {
    const double bound = 0.0;
    int info = 0, lwork = -1, liwork = -1, iworkSize = 0;
    double workSize = 0.0, dummyZ = 0.0;
    dsyevr_(&c.jobz, &c.range, "L", &c.n, a, &c.n, &bound, &bound, &c.il, &c.iu, &kAbsoluteTolerance, &found, w,
            z ? z : &dummyZ, &c.n, support, &workSize, &lwork, &iworkSize, &liwork, &info, 1, 1, 1);
    lwork = workLength(workSize);
    liwork = std::max(1, iworkSize);
    double* workData = reserve(work, lwork, c.n);
    int* iworkData = reserve(iwork, liwork, 0);
    dsyevr_(&c.jobz, &c.range, "L", &c.n, a, &c.n, &bound, &bound, &c.il, &c.iu, &kAbsoluteTolerance, &found, w,
            z ? z : &dummyZ, &c.n, support, workData, &lwork, iworkData, &liwork, &info, 1, 1, 1);
    return info;
}

int callMrrr(const MrrrCall& c, Complex* a, double* w, Complex* z, int* support, std::vector<Complex>& work,
             std::vector<double>& rwork, std::vector<int>& iwork, int& found) {
    const double bound = 0.0;
    int info = 0, lwork = -1, lrwork = -1, liwork = -1, iworkSize = 0;
    Complex workSize, dummyZ;
    double rworkSize = 0.0;
    zheevr_(&c.jobz, &c.range, "L", &c.n, a, &c.n, &bound, &bound, &c.il, &c.iu, &kAbsoluteTolerance, &found, w,
            z ? z : &dummyZ, &c.n, support, &workSize, &lwork, &rworkSize, &lrwork, &iworkSize, &liwork, &info, 1,
            1, 1);
    lwork = workLength(workSize);
    lrwork = workLength(rworkSize);
    liwork = std::max(1, iworkSize);
    Complex* workData = reserve(work, lwork, c.n);
    double* rworkData = reserve(rwork, lrwork, c.n);
    int* iworkData = reserve(iwork, liwork, 0);
    zheevr_(&c.jobz, &c.range, "L", &c.n, a, &c.n, &bound, &bound, &c.il, &c.iu, &kAbsoluteTolerance, &found, w,
            z ? z : &dummyZ, &c.n, support, workData, &lwork, rworkData, &lrwork, iworkData, &liwork, &info, 1, 1,
            1);
    return info;
}

// The divide-and-conquer drivers (dsyevd / zheevd); vectors overwrite `a`.
int callDivideAndConquer(char jobz, int n, double* a, double* w, std::vector<double>& work,
                         std::vector<double>& /*rwork*/, std::vector<int>& iwork) {
    int info = 0, lwork = -1, liwork = -1, iworkSize = 0;
    double workSize = 0.0;
    dsyevd_(&jobz, "L", &n, a, &n, w, &workSize, &lwork, &iworkSize, &liwork, &info, 1, 1);
    lwork = workLength(workSize);
    liwork = std::max(1, iworkSize);
    double* workData = reserve(work, lwork, n);
    int* iworkData = reserve(iwork, liwork, 0);
    dsyevd_(&jobz, "L", &n, a, &n, w, workData, &lwork, iworkData, &liwork, &info, 1, 1);
    return info;
}

int callDivideAndConquer(char jobz, int n, Complex* a, double* w, std::vector<Complex>& work,
                         std::vector<double>& rwork, std::vector<int>& iwork) {
    int info = 0, lwork = -1, lrwork = -1, liwork = -1, iworkSize = 0;
    Complex workSize;
    double rworkSize = 0.0;
    zheevd_(&jobz, "L", &n, a, &n, w, &workSize, &lwork, &rworkSize, &lrwork, &iworkSize, &liwork, &info, 1, 1);
    lwork = workLength(workSize);
    lrwork = workLength(rworkSize);
    liwork = std::max(1, iworkSize);
    Complex* workData = reserve(work, lwork, n);
    double* rworkData = reserve(rwork, lrwork, n);
    int* iworkData = reserve(iwork, liwork, 0);
    zheevd_(&jobz, "L", &n, a, &n, w, workData, &lwork, rworkData, &lrwork, iworkData, &liwork, &info, 1, 1);
    return info;
}

}  // namespace

template <typename Scalar>
Eigen::Map<typename EigenWorkspace<Scalar>::Matrix> EigenWorkspace<Scalar>::matrix(int n) {
    order_ = n;
    count_ = 0;
    // Spare columns after the matrix, see lapack.hpp.
    Scalar* data = reserve(matrix_, static_cast<long>(n) * n, n);
    return {data, n, n};
}

template <typename Scalar>
EigenStatus EigenWorkspace<Scalar>::solve(const EigenRequest& request) {
    const int n = order_;
    count_ = 0;
    info_ = 0;
    vectorsAsked_ = request.vectors;
    const Eigen::Map<const Matrix> input(matrix_.data(), n, n);
    if (!input.allFinite()) return EigenStatus::InvalidInput;
    const bool all = request.lowest < 0 || request.lowest >= n;
    const int wanted = all ? n : request.lowest;
    if (wanted == 0 || n == 0) return EigenStatus::Ok;
    reserve(values_, n, 0);
    EigenDriver driver = request.driver;
    if (driver == EigenDriver::Automatic)
        driver = all && std::is_same_v<Scalar, double> ? EigenDriver::DivideAndConquer : EigenDriver::Mrrr;
    const EigenStatus status =
        driver == EigenDriver::Mrrr ? solveMrrr(wanted, request.vectors) : solveDivideAndConquer(request.vectors);
    if (status != EigenStatus::Ok) count_ = 0;
    count_ = std::min(count_, wanted);
    return status;
}

template <typename Scalar>
EigenStatus EigenWorkspace<Scalar>::solveMrrr(int wanted, bool vectors) {
    const int n = order_;
    const MrrrCall call{vectors ? 'V' : 'N', wanted == n ? 'A' : 'I', n, 1, std::max(1, wanted)};
    Scalar* z = vectors ? reserve(z_, static_cast<long>(n) * wanted, n) : nullptr;
    int* support = reserve(support_, 2L * std::max(1, wanted), 0);
    int found = 0;
    info_ = callMrrr(call, matrix_.data(), values_.data(), z, support, work_, rwork_, iwork_, found);
    count_ = info_ == 0 ? found : 0;
    vectorData_ = z_.data();
    return statusFromInfo(info_);
}

template <typename Scalar>
EigenStatus EigenWorkspace<Scalar>::solveDivideAndConquer(bool vectors) {
    info_ = callDivideAndConquer(vectors ? 'V' : 'N', order_, matrix_.data(), values_.data(), work_, rwork_, iwork_);
    count_ = info_ == 0 ? order_ : 0;
    vectorData_ = matrix_.data();
    return statusFromInfo(info_);
}

template class EigenWorkspace<double>;
template class EigenWorkspace<Complex>;

namespace {

template <typename Result, typename Matrix>
Result solveOnce(const Matrix& matrix, const EigenRequest& request) {
    Result result;
    if (matrix.rows() != matrix.cols()) {
        result.status = EigenStatus::InvalidInput;
        return result;
    }
    EigenWorkspace<typename Matrix::Scalar> workspace;
    workspace.matrix(static_cast<int>(matrix.rows())) = matrix;
    result.status = workspace.solve(request);
    result.lapackInfo = workspace.lapackInfo();
    result.values = workspace.values();
    if (request.vectors) result.vectors = workspace.vectors();
    return result;
}

}  // namespace

SymmetricEigenpairsResult solveSymmetricEigen(const Eigen::MatrixXd& matrix, const EigenRequest& request) {
    return solveOnce<SymmetricEigenpairsResult>(matrix, request);
}

HermitianEigenpairsResult solveHermitianEigen(const Eigen::MatrixXcd& matrix, const EigenRequest& request) {
    return solveOnce<HermitianEigenpairsResult>(matrix, request);
}

}  // namespace orvane
