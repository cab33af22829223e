// Speed of the eigen solvers against the bare LAPACK calls they build on.
//   HermitianEigen (mode 1, all eigenpairs: zhetrd + dstedc + zunmtr)
//     compared with one bare zheevr call (JOBZ = 'V', RANGE = 'A');
//   the real symmetric entry point compared with one bare dsyevr call;
//   the lowest-m (RANGE = 'I') and values-only (JOBZ = 'N') entry points.
// Matrices are random (fixed seed) complex Hermitian or real symmetric ones of
// order 1000 and 3000, the range of the f^n crystal-field blocks. The copy of the
// input each call consumes is made outside the timed region.
#include <algorithm>
#include <complex>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include "tests/support/random_matrices.hpp"

#include "core/eigen_solver.hpp"
#include "core/hermitian_eigen.hpp"
#include "core/lapack.hpp"

namespace {

using Complex = std::complex<double>;

Eigen::MatrixXcd randomHermitian(int n) { return orvane::test::randomHermitian(n, 12345u, 10.0); }

// One bare zheevr call, all eigenpairs, workspace query included (as a caller
// of LAPACK would do it); the matrix is padded like Orvane's own calls.
void bareZheevr(Eigen::MatrixXcd& a, Eigen::VectorXd& w, Eigen::MatrixXcd& z) {
    const int n = static_cast<int>(a.rows());
    const double unused = 0.0;
    const double abstol = 0.0;
    const int one = 1;
    int found = 0;
    int info = 0;
    int lwork = -1, lrwork = -1, liwork = -1;
    Complex workSize;
    double rworkSize = 0.0;
    int iworkSize = 0;
    std::vector<int> support(2 * static_cast<std::size_t>(n));
    zheevr_("V", "A", "L", &n, a.data(), &n, &unused, &unused, &one, &one, &abstol, &found,
            w.data(), z.data(), &n, support.data(), &workSize, &lwork, &rworkSize, &lrwork,
            &iworkSize, &liwork, &info, 1, 1, 1);
    lwork = static_cast<int>(workSize.real()) + orvane::lapack::kPaddingColumns * n;
    lrwork = static_cast<int>(rworkSize) + orvane::lapack::kPaddingColumns * n;
    liwork = iworkSize;
    std::vector<Complex> work(static_cast<std::size_t>(lwork));
    std::vector<double> rwork(static_cast<std::size_t>(lrwork));
    std::vector<int> iwork(static_cast<std::size_t>(liwork));
    zheevr_("V", "A", "L", &n, a.data(), &n, &unused, &unused, &one, &one, &abstol, &found,
            w.data(), z.data(), &n, support.data(), work.data(), &lwork, rwork.data(), &lrwork,
            iwork.data(), &liwork, &info, 1, 1, 1);
}

void bareDsyevr(Eigen::MatrixXd& a, Eigen::VectorXd& w, Eigen::MatrixXd& z) {
    const int n = static_cast<int>(a.rows());
    const double unused = 0.0;
    const double abstol = 0.0;
    const int one = 1;
    int found = 0;
    int info = 0;
    int lwork = -1, liwork = -1;
    double workSize = 0.0;
    int iworkSize = 0;
    std::vector<int> support(2 * static_cast<std::size_t>(n));
    dsyevr_("V", "A", "L", &n, a.data(), &n, &unused, &unused, &one, &one, &abstol, &found,
            w.data(), z.data(), &n, support.data(), &workSize, &lwork, &iworkSize, &liwork, &info,
            1, 1, 1);
    lwork = static_cast<int>(workSize) + orvane::lapack::kPaddingColumns * n;
    liwork = iworkSize;
    std::vector<double> work(static_cast<std::size_t>(lwork));
    std::vector<int> iwork(static_cast<std::size_t>(liwork));
    dsyevr_("V", "A", "L", &n, a.data(), &n, &unused, &unused, &one, &one, &abstol, &found,
            w.data(), z.data(), &n, support.data(), work.data(), &lwork, iwork.data(), &liwork,
            &info, 1, 1, 1);
}

void BM_HermitianEigen_AllPairs(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const Eigen::MatrixXd packed = orvane::packHermitian(randomHermitian(n));
    orvane::MemoryLogBook log;
    for (auto _ : state) {
        state.PauseTiming();
        Eigen::MatrixXd input = packed;
        state.ResumeTiming();
        auto result = orvane::HermitianEigen(std::move(input), orvane::kEigenVectors, "", log);
        benchmark::DoNotOptimize(result.eigenvectors.data());
    }
}

void BM_BareZheevr_AllPairs(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const Eigen::MatrixXcd h = randomHermitian(n);
    Eigen::VectorXd w(n);
    Eigen::MatrixXcd z(n, n);
    for (auto _ : state) {
        state.PauseTiming();
        Eigen::MatrixXcd a(n, n + orvane::lapack::kPaddingColumns);
        a.leftCols(n) = h;
        state.ResumeTiming();
        bareZheevr(a, w, z);
        benchmark::DoNotOptimize(z.data());
    }
}

void BM_SymmetricEigenpairs_All(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const Eigen::MatrixXd s = randomHermitian(n).real();
    for (auto _ : state) {
        state.PauseTiming();
        Eigen::MatrixXd input = s;
        state.ResumeTiming();
        auto result = orvane::symmetricEigenpairs(std::move(input));
        benchmark::DoNotOptimize(result.vectors.data());
    }
}

void BM_BareDsyevr_AllPairs(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const Eigen::MatrixXd s = randomHermitian(n).real();
    Eigen::VectorXd w(n);
    Eigen::MatrixXd z(n, n);
    for (auto _ : state) {
        state.PauseTiming();
        Eigen::MatrixXd a(n, n + orvane::lapack::kPaddingColumns);
        a.leftCols(n) = s;
        state.ResumeTiming();
        bareDsyevr(a, w, z);
        benchmark::DoNotOptimize(z.data());
    }
}

// Lowest 10 eigenpairs (the levels a fit compares with observed ones).
void BM_HermitianEigenpairs_Lowest10(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const Eigen::MatrixXcd h = randomHermitian(n);
    for (auto _ : state) {
        state.PauseTiming();
        Eigen::MatrixXcd input = h;
        state.ResumeTiming();
        auto result = orvane::hermitianEigenpairs(std::move(input), 10);
        benchmark::DoNotOptimize(result.vectors.data());
    }
}

void BM_HermitianEigenvalues_All(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const Eigen::MatrixXcd h = randomHermitian(n);
    for (auto _ : state) {
        state.PauseTiming();
        Eigen::MatrixXcd input = h;
        state.ResumeTiming();
        auto result = orvane::hermitianEigenvalues(std::move(input));
        benchmark::DoNotOptimize(result.values.data());
    }
}

void BM_SymmetricEigenpairs_Lowest10(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const Eigen::MatrixXd s = randomHermitian(n).real();
    for (auto _ : state) {
        state.PauseTiming();
        Eigen::MatrixXd input = s;
        state.ResumeTiming();
        auto result = orvane::symmetricEigenpairs(std::move(input), 10);
        benchmark::DoNotOptimize(result.vectors.data());
    }
}

// HermitianEigen in values-only mode (zhetrd + dsterf).
void BM_HermitianEigen_ValuesOnly(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const Eigen::MatrixXd packed = orvane::packHermitian(randomHermitian(n));
    orvane::MemoryLogBook log;
    for (auto _ : state) {
        state.PauseTiming();
        Eigen::MatrixXd input = packed;
        state.ResumeTiming();
        auto result =
            orvane::HermitianEigen(std::move(input), orvane::kEigenValuesOnly, "", log);
        benchmark::DoNotOptimize(result.eigenvalues.data());
    }
}

#define ORVANE_EIGEN_BENCH(name) \
    BENCHMARK(name)->Arg(1000)->Arg(3000)->Unit(benchmark::kMillisecond)

ORVANE_EIGEN_BENCH(BM_HermitianEigen_AllPairs);
ORVANE_EIGEN_BENCH(BM_BareZheevr_AllPairs);
ORVANE_EIGEN_BENCH(BM_SymmetricEigenpairs_All);
ORVANE_EIGEN_BENCH(BM_BareDsyevr_AllPairs);
ORVANE_EIGEN_BENCH(BM_HermitianEigenpairs_Lowest10);
ORVANE_EIGEN_BENCH(BM_HermitianEigenvalues_All);
ORVANE_EIGEN_BENCH(BM_SymmetricEigenpairs_Lowest10);
ORVANE_EIGEN_BENCH(BM_HermitianEigen_ValuesOnly);

}  // namespace
