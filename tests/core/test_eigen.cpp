// Eigen solvers: analytic spectra (tridiagonal Toeplitz), agreement of
// HermitianEigen with a direct LAPACK solution and the decomposition invariants,
// the conjugation of the packed storage, the disk mode at a lowered threshold,
// and divide-and-conquer inside degenerate clusters.
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <random>
#include <sstream>

#include <gtest/gtest.h>

#include "core/eigen_solver.hpp"
#include "core/hermitian_eigen.hpp"
#include "core/user_error.hpp"
#include "tests/support/random_matrices.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using Complex = std::complex<double>;

HermitianEigenResult solve(const Eigen::MatrixXcd& h, int mode, const HermitianEigenOptions& options = {}) {
    MemoryLogBook log;
    return HermitianEigen(packHermitian(h), mode, "nul:", log, options);
}

// 1 - |<a_j|b_j>|, worst column: 0 when the columns agree up to a phase.
double worstOverlapDefect(const Eigen::MatrixXcd& a, const Eigen::MatrixXcd& b) {
    double worst = 0.0;
    for (Eigen::Index j = 0; j < a.cols(); ++j)
        worst = std::max(worst, std::abs(1.0 - std::abs(a.col(j).dot(b.col(j)))));
    return worst;
}

// Largest |a_i - b_i| (0 for empty vectors).
double largestDifference(const Eigen::VectorXd& a, const Eigen::VectorXd& b) {
    return a.size() == 0 ? 0.0 : (a - b).cwiseAbs().maxCoeff();
}

double reconstructionError(const Eigen::MatrixXcd& h, const Eigen::VectorXd& e, const Eigen::MatrixXcd& v) {
    return (v * e.cast<Complex>().asDiagonal() * v.adjoint() - h).cwiseAbs().maxCoeff();
}

// Tridiagonal Toeplitz matrix, diagonal a, sub-diagonal b e^{i phi}: eigenvalues
// a + 2 b cos(k pi/(n+1)), vectors sqrt(2/(n+1)) sin(j k pi/(n+1)) e^{i j phi}.
struct ToeplitzCase {
    int n;
    double a, b, phi;  // phi = 0: the real symmetric solvers too
};

void PrintTo(const ToeplitzCase& c, std::ostream* os) { *os << "n " << c.n << ", phi " << c.phi; }

class EigenToeplitz : public ::testing::TestWithParam<ToeplitzCase> {};

TEST_P(EigenToeplitz, AnalyticEigenpairsAllAndLowest) {
    const auto [n, a, b, phi] = GetParam();
    Eigen::MatrixXcd h = Eigen::MatrixXcd::Zero(n, n);
    Eigen::MatrixXcd expectedVectors(n, n);
    Eigen::VectorXd expectedValues(n);
    for (int j = 0; j < n; ++j) {
        h(j, j) = a;
        if (j + 1 < n) h(j + 1, j) = b * std::polar(1.0, phi);
        // Garbage above the diagonal: only the lower triangle may be read.
        if (j + 1 < n) h(j, j + 1) = Complex(1e3, -7.0);
    }
    for (int i = 0; i < n; ++i) {
        const int k = n - i;  // ascending order, b > 0
        expectedValues(i) = a + 2.0 * b * std::cos(k * std::numbers::pi / (n + 1));
        for (int j = 0; j < n; ++j)
            expectedVectors(j, i) = std::sqrt(2.0 / (n + 1)) * std::sin((j + 1) * k * std::numbers::pi / (n + 1)) *
                                    std::polar(1.0, j * phi);
    }
    for (int lowest : {kAllEigenvalues, 0, 1, n / 2, n, n + 5}) {
        const int m = lowest < 0 || lowest > n ? n : lowest;
        const auto pairs = hermitianEigenpairs(h, lowest);
        const auto values = hermitianEigenvalues(h, lowest);
        ASSERT_EQ(pairs.status, EigenStatus::Ok);
        ASSERT_EQ(pairs.values.size(), m);
        ASSERT_EQ(values.values.size(), m);
        EXPECT_LE(largestDifference(pairs.values, expectedValues.head(m)), 1e-12 * (n + 1));
        EXPECT_LE(largestDifference(values.values, expectedValues.head(m)), 1e-12 * (n + 1));
        EXPECT_LT(worstOverlapDefect(pairs.vectors, expectedVectors.leftCols(m)), 1e-9)
            << "a conjugated lower triangle gives e^{-i j phi}";
        if (phi != 0.0) continue;
        Eigen::MatrixXd s = h.real();
        s.triangularView<Eigen::StrictlyUpper>().setConstant(-1e3);
        const auto real = symmetricEigenpairs(s, lowest);
        ASSERT_EQ(real.values.size(), m);
        EXPECT_LE(largestDifference(real.values, expectedValues.head(m)), 1e-12 * (n + 1));
        EXPECT_LE(largestDifference(symmetricEigenvalues(s, lowest).values, expectedValues.head(m)), 1e-12 * (n + 1));
        EXPECT_LT(worstOverlapDefect(real.vectors.cast<Complex>(), expectedVectors.leftCols(m)), 1e-9);
    }
}

INSTANTIATE_TEST_SUITE_P(Spectra, EigenToeplitz,
                         ::testing::Values(ToeplitzCase{1, 2.5, 1.0, 0.0}, ToeplitzCase{7, -3.0, 0.5, 0.0},
                                           ToeplitzCase{7, 1.0, 2.0, 0.7}, ToeplitzCase{60, 100.0, 25.0, -1.3},
                                           ToeplitzCase{150, 0.0, 1.0, 0.0}),
                         [](const auto& info) {
                             return "n" + std::to_string(info.param.n) + (info.param.phi == 0.0 ? "_real" : "_complex");
                         });

// HermitianEigen against zheevr, in every mode; V^H V = 1 and V diag(E) V^H = H.
TEST(HermitianEigen, AgreesWithZheevrAndDecomposesTheMatrix) {
    for (int n : {1, 2, 10, 57, 200}) {
        SCOPED_TRACE(n);
        const Eigen::MatrixXcd h = test::randomHermitian(n, 1000u + n, 10.0);
        const auto direct = hermitianEigenpairs(h);
        const HermitianEigenResult r = solve(h, kEigenVectors);
        ASSERT_EQ(r.status, HermitianEigenStatus::Ok);
        ASSERT_EQ(r.statesFound, n);
        EXPECT_LT((r.eigenvalues - direct.values).cwiseAbs().maxCoeff(), 1e-12 * (10.0 + n));
        EXPECT_LT((r.eigenvectors.adjoint() * r.eigenvectors - Eigen::MatrixXcd::Identity(n, n)).cwiseAbs().maxCoeff(),
                  1e-12 * n);
        EXPECT_LT(reconstructionError(h, r.eigenvalues, r.eigenvectors), 1e-12 * (10.0 + n));
        EXPECT_LT(worstOverlapDefect(r.eigenvectors, direct.vectors), 1e-8);
        for (int mode : {kEigenValuesOnly, kEigenValuesSilent}) {
            const HermitianEigenResult valuesOnly = solve(h, mode);
            EXPECT_EQ(valuesOnly.eigenvectors.size(), 0);
            EXPECT_LT((valuesOnly.eigenvalues - direct.values).cwiseAbs().maxCoeff(), 1e-11);
        }
    }
}

// sigma_y = [[0, -i], [i, 0]] packed as A(1,0) = Re H(1,0) = 0, A(0,1) = Im H(1,0) = 1:
// eigenvalue -1 has (1, -i)/sqrt 2 and +1 has (1, i)/sqrt 2. The conjugate matrix has
// the same values with the vectors swapped: only the vectors reveal a lost conjugation
// (through the scratch file: the disk mode must equal memory, below).
TEST(HermitianEigen, SigmaYEigenvectorsFixTheConjugation) {
    Eigen::MatrixXd packed(2, 2);
    packed << 0.0, 1.0, 0.0, 0.0;
    EXPECT_EQ(unpackHermitian(packed)(1, 0), Complex(0, 1));
    MemoryLogBook log;
    const HermitianEigenResult r = HermitianEigen(packed, kEigenVectors, "", log);
    ASSERT_EQ(r.status, HermitianEigenStatus::Ok);
    EXPECT_NEAR(r.eigenvalues(0), -1.0, 1e-15);
    EXPECT_NEAR(std::abs(r.eigenvectors(1, 0) / r.eigenvectors(0, 0) - Complex(0, -1)), 0.0, 1e-14);
    EXPECT_NEAR(std::abs(r.eigenvectors(1, 1) / r.eigenvectors(0, 1) - Complex(0, 1)), 0.0, 1e-14);
}

// The disk mode at a lowered threshold: the scratch file is removed afterwards, and the
// result equals the in-memory one. The threshold is exclusive; values-only modes never
// use the disk.
TEST(HermitianEigen, DiskModeAtALoweredThresholdEqualsMemory) {
    for (int n : {3, 65}) {  // 65: reflectors span several blocks of 32
        SCOPED_TRACE(n);
        const Eigen::MatrixXcd h = test::randomHermitian(n, 300u + n, 10.0);
        const auto folder = test::scratchDirectory("heigen_disk");
        HermitianEigenOptions options;
        options.diskThreshold = n - 1;
        std::vector<std::filesystem::path> scratch;  // a unique file per run, removed afterwards
        options.afterScratchWritten = [&scratch](const std::filesystem::path& p) { scratch.push_back(p); };
        EXPECT_TRUE(solve(h, kEigenVectors, options).usedScratchFile);  // no folder: the system's
        options.scratchDirectory = folder;
        const HermitianEigenResult disk = solve(h, kEigenVectors, options);
        ASSERT_EQ(disk.status, HermitianEigenStatus::Ok);
        ASSERT_EQ(scratch.size(), 2u);
        EXPECT_EQ(scratch[0].parent_path(), std::filesystem::temp_directory_path());
        EXPECT_EQ(scratch[1].parent_path(), folder);
        EXPECT_FALSE(std::filesystem::exists(scratch[0]) || std::filesystem::exists(scratch[1])) << "not removed";
        const HermitianEigenResult memory = solve(h, kEigenVectors);
        EXPECT_FALSE(memory.usedScratchFile);
        EXPECT_LT(largestDifference(disk.eigenvalues, memory.eigenvalues), 1e-11);
        EXPECT_LT(worstOverlapDefect(disk.eigenvectors, memory.eigenvectors), 1e-11);
        EXPECT_LT(reconstructionError(h, disk.eigenvalues, disk.eigenvectors), 1e-12 * (10.0 + n));

        options.diskThreshold = n;
        EXPECT_FALSE(solve(h, kEigenVectors, options).usedScratchFile) << "threshold is exclusive";
        options.diskThreshold = 1;
        EXPECT_FALSE(solve(h, kEigenValuesOnly, options).usedScratchFile);
    }
    HermitianEigenOptions unwritable;
    unwritable.diskThreshold = 2;
    unwritable.scratchDirectory = "/nonexistent-orvane-folder";
    EXPECT_THROW(solve(test::randomHermitian(6, 12u, 10.0), kEigenVectors, unwritable), UserError);
}

TEST(EigenSolvers, NonFiniteOrNonSquareInputIsAStatus) {
    Eigen::MatrixXd nan = Eigen::MatrixXd::Identity(3, 3);
    nan(2, 0) = std::numeric_limits<double>::quiet_NaN();
    Eigen::MatrixXcd inf = Eigen::MatrixXcd::Identity(3, 3);
    inf(2, 1) = Complex(0.0, std::numeric_limits<double>::infinity());
    MemoryLogBook log;
    EXPECT_EQ(HermitianEigen(nan, 1, "", log).status, HermitianEigenStatus::InvalidInput);
    EXPECT_EQ(HermitianEigen(Eigen::MatrixXd::Zero(2, 3), 1, "", log).status, HermitianEigenStatus::InvalidInput);
    EXPECT_EQ(symmetricEigenpairs(nan).status, EigenStatus::InvalidInput);
    EXPECT_EQ(symmetricEigenpairsDivideAndConquer(nan).status, EigenStatus::InvalidInput);
    EXPECT_EQ(hermitianEigenpairs(inf).status, EigenStatus::InvalidInput);
    EXPECT_EQ(hermitianEigenvalues(Eigen::MatrixXcd::Zero(4, 1)).status, EigenStatus::InvalidInput);
}

// Divide and conquer: orthonormal vectors inside two large exactly degenerate
// clusters (Q diag(0..0, 1..1, 2.5) Q^T), same spectrum as dsyevr.
TEST(EigenSolvers, DivideAndConquerIsOrthonormalInsideDegenerateClusters) {
    std::mt19937 random(7);
    std::normal_distribution<double> normal;
    for (int n : {2, 9, 151}) {
        SCOPED_TRACE(n);
        Eigen::MatrixXd a(n, n);
        for (int i = 0; i < n * n; ++i) a.data()[i] = normal(random);
        const Eigen::MatrixXd q = Eigen::HouseholderQR<Eigen::MatrixXd>(a).householderQ();
        Eigen::VectorXd d = Eigen::VectorXd::Zero(n);
        d.segment(n / 2, n - 1 - n / 2).setOnes();
        d(n - 1) = 2.5;
        const Eigen::MatrixXd h = q * d.asDiagonal() * q.transpose();
        const auto dc = symmetricEigenpairsDivideAndConquer(h);
        ASSERT_EQ(dc.status, EigenStatus::Ok);
        EXPECT_LT((dc.vectors.transpose() * dc.vectors - Eigen::MatrixXd::Identity(n, n)).cwiseAbs().maxCoeff(), 1e-13);
        EXPECT_LT((dc.vectors * dc.values.asDiagonal() * dc.vectors.transpose() - h).cwiseAbs().maxCoeff(), 1e-12);
        EXPECT_LT((symmetricEigenvalues(h).values - dc.values).cwiseAbs().maxCoeff(), 1e-12);
        EXPECT_NEAR(dc.values(n - 1), 2.5, 1e-12);
    }
}

}  // namespace
}  // namespace orvane
