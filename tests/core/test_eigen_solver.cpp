// The fast eigen entry points (dsyevr / zheevr): analytic spectra, the lowest-m
// selection against the full solution, values-only calls, the lower triangle as
// the only input, and the failure status.
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include "tests/support/random_matrices.hpp"

#include "core/eigen_solver.hpp"

namespace orvane {
namespace {

using Complex = std::complex<double>;

// Tridiagonal Toeplitz matrix, diagonal a and sub-diagonal b e^{i phi}:
// unitarily equivalent (D = diag(e^{i j phi})) to the real one, whose
// eigenvalues are a + 2 b cos(k pi / (n + 1)) with vectors
// sqrt(2 / (n + 1)) sin(j k pi / (n + 1)), k, j = 1..n (standard result for
// tridiagonal Toeplitz matrices).
Eigen::MatrixXcd toeplitz(int n, double a, double b, double phi) {
    Eigen::MatrixXcd h = Eigen::MatrixXcd::Zero(n, n);
    for (int j = 0; j < n; ++j) h(j, j) = a;
    for (int j = 0; j + 1 < n; ++j) {
        h(j + 1, j) = b * std::polar(1.0, phi);
        h(j, j + 1) = std::conj(h(j + 1, j));
    }
    return h;
}

// Ascending analytic eigenvalues (b > 0: k = n first).
double toeplitzValue(int n, double a, double b, int ascendingIndex) {
    const int k = n - ascendingIndex;
    return a + 2.0 * b * std::cos(k * std::numbers::pi / (n + 1));
}

Complex toeplitzVectorComponent(int n, double phi, int ascendingIndex, int j) {
    const int k = n - ascendingIndex;
    return std::sqrt(2.0 / (n + 1)) * std::sin((j + 1) * k * std::numbers::pi / (n + 1)) *
           std::polar(1.0, j * phi);
}

Eigen::MatrixXcd randomHermitian(int n, unsigned seed) {
    return test::randomHermitian(n, seed, 5.0);
}

double worstOverlapDefect(const Eigen::MatrixXcd& a, const Eigen::MatrixXcd& b) {
    double worst = 0.0;
    for (Eigen::Index j = 0; j < a.cols(); ++j)
        worst = std::max(worst, std::abs(1.0 - std::abs(a.col(j).dot(b.col(j)))));
    return worst;
}

struct ToeplitzCase {
    int n;
    double a;
    double b;
    double phi;  // 0: real symmetric solver too
};

void PrintTo(const ToeplitzCase& c, std::ostream* out) {
    *out << "n=" << c.n << " a=" << c.a << " b=" << c.b << " phi=" << c.phi;
}

class EigenSolverToeplitz : public ::testing::TestWithParam<ToeplitzCase> {};

TEST_P(EigenSolverToeplitz, AnalyticEigenpairsAllAndLowest) {
    const auto [n, a, b, phi] = GetParam();
    const Eigen::MatrixXcd h = toeplitz(n, a, b, phi);
    Eigen::MatrixXcd expectedVectors(n, n);
    for (int k = 0; k < n; ++k)
        for (int j = 0; j < n; ++j) expectedVectors(j, k) = toeplitzVectorComponent(n, phi, k, j);

    for (int lowest : {kAllEigenvalues, 1, n / 2, n}) {
        const int m = lowest < 0 ? n : lowest;
        const HermitianEigenpairsResult pairs = hermitianEigenpairs(h, lowest);
        ASSERT_EQ(pairs.status, EigenStatus::Ok);
        ASSERT_EQ(pairs.values.size(), m);
        ASSERT_EQ(pairs.vectors.cols(), m);
        const HermitianEigenpairsResult values = hermitianEigenvalues(h, lowest);
        ASSERT_EQ(values.values.size(), m);
        EXPECT_EQ(values.vectors.size(), 0);
        for (int k = 0; k < m; ++k) {
            EXPECT_NEAR(pairs.values(k), toeplitzValue(n, a, b, k), 1e-12 * n) << "k " << k;
            EXPECT_NEAR(values.values(k), toeplitzValue(n, a, b, k), 1e-12 * n) << "k " << k;
        }
        EXPECT_LT(worstOverlapDefect(pairs.vectors, expectedVectors.leftCols(m)), 1e-9)
            << "phi " << phi << " (a conjugated lower triangle gives e^{-i j phi})";

        if (phi != 0.0) continue;
        const Eigen::MatrixXd s = h.real();
        const SymmetricEigenpairsResult real = symmetricEigenpairs(s, lowest);
        ASSERT_EQ(real.status, EigenStatus::Ok);
        ASSERT_EQ(real.values.size(), m);
        const SymmetricEigenpairsResult realValues = symmetricEigenvalues(s, lowest);
        ASSERT_EQ(realValues.values.size(), m);
        EXPECT_EQ(realValues.vectors.size(), 0);
        for (int k = 0; k < m; ++k) {
            EXPECT_NEAR(real.values(k), toeplitzValue(n, a, b, k), 1e-12 * n);
            EXPECT_NEAR(realValues.values(k), toeplitzValue(n, a, b, k), 1e-12 * n);
        }
        EXPECT_LT(worstOverlapDefect(real.vectors.cast<Complex>(), expectedVectors.leftCols(m)),
                  1e-9);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Spectra, EigenSolverToeplitz,
    ::testing::Values(ToeplitzCase{1, 2.5, 1.0, 0.0}, ToeplitzCase{2, 0.0, 1.0, 0.0},
                      ToeplitzCase{7, -3.0, 0.5, 0.0}, ToeplitzCase{7, 1.0, 2.0, 0.7},
                      ToeplitzCase{60, 100.0, 25.0, -1.3}, ToeplitzCase{150, 0.0, 1.0, 0.0}));

// The lowest m equal the first m of the full solution (random matrices).
TEST(EigenSolverSelection, LowestMEqualsTheHeadOfTheFullSolution) {
    for (int n : {5, 40, 130}) {
        const Eigen::MatrixXcd h = randomHermitian(n, 40u + static_cast<unsigned>(n));
        const Eigen::MatrixXd s = h.real();
        const HermitianEigenpairsResult all = hermitianEigenpairs(h);
        const SymmetricEigenpairsResult allReal = symmetricEigenpairs(s);
        ASSERT_EQ(all.values.size(), n);
        for (int m : {1, 3, n - 1}) {
            const HermitianEigenpairsResult few = hermitianEigenpairs(h, m);
            ASSERT_EQ(few.values.size(), m);
            EXPECT_LT((few.values - all.values.head(m)).cwiseAbs().maxCoeff(), 1e-11);
            EXPECT_LT(worstOverlapDefect(few.vectors, all.vectors.leftCols(m)), 1e-8);
            const HermitianEigenpairsResult fewValues = hermitianEigenvalues(h, m);
            EXPECT_LT((fewValues.values - all.values.head(m)).cwiseAbs().maxCoeff(), 1e-11);

            const SymmetricEigenpairsResult fewReal = symmetricEigenpairs(s, m);
            ASSERT_EQ(fewReal.values.size(), m);
            EXPECT_LT((fewReal.values - allReal.values.head(m)).cwiseAbs().maxCoeff(), 1e-11);
            EXPECT_LT(worstOverlapDefect(fewReal.vectors.cast<Complex>(),
                                         allReal.vectors.leftCols(m).cast<Complex>()),
                      1e-8);
            const SymmetricEigenpairsResult fewRealValues = symmetricEigenvalues(s, m);
            EXPECT_LT((fewRealValues.values - allReal.values.head(m)).cwiseAbs().maxCoeff(), 1e-11);
        }
        // The residual of the full solutions: H V = V diag(E).
        EXPECT_LT((h * all.vectors - all.vectors * all.values.cast<Complex>().asDiagonal())
                      .cwiseAbs()
                      .maxCoeff(),
                  1e-11 * n);
        EXPECT_LT((s * allReal.vectors - allReal.vectors * allReal.values.asDiagonal())
                      .cwiseAbs()
                      .maxCoeff(),
                  1e-11 * n);
    }
}

TEST(EigenSolverSelection, ZeroWantedIsEmptyAndMoreThanNIsAll) {
    const Eigen::MatrixXcd h = randomHermitian(6, 8u);
    const HermitianEigenpairsResult none = hermitianEigenpairs(h, 0);
    EXPECT_EQ(none.status, EigenStatus::Ok);
    EXPECT_EQ(none.values.size(), 0);
    EXPECT_EQ(hermitianEigenpairs(h, 99).values.size(), 6);
    EXPECT_EQ(symmetricEigenvalues(h.real(), 99).values.size(), 6);
    EXPECT_EQ(symmetricEigenvalues(h.real(), 0).values.size(), 0);
}

// Only the lower triangle is read: garbage above the diagonal changes nothing.
TEST(EigenSolverInput, OnlyTheLowerTriangleIsRead) {
    const Eigen::MatrixXcd h = randomHermitian(12, 21u);
    Eigen::MatrixXcd spoiled = h;
    Eigen::MatrixXd spoiledReal = h.real();
    for (int i = 0; i < 12; ++i)
        for (int k = i + 1; k < 12; ++k) {
            spoiled(i, k) = Complex(1e3, -7.0);
            spoiledReal(i, k) = -1e3;
        }
    EXPECT_LT((hermitianEigenvalues(spoiled).values - hermitianEigenvalues(h).values)
                  .cwiseAbs()
                  .maxCoeff(),
              1e-12);
    EXPECT_LT((symmetricEigenvalues(spoiledReal).values - symmetricEigenvalues(h.real()).values)
                  .cwiseAbs()
                  .maxCoeff(),
              1e-12);
}

TEST(EigenSolverInput, InvalidInputIsAStatus) {
    Eigen::MatrixXd withNaN = Eigen::MatrixXd::Identity(3, 3);
    withNaN(1, 0) = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(symmetricEigenpairs(withNaN).status, EigenStatus::InvalidInput);
    EXPECT_EQ(symmetricEigenvalues(Eigen::MatrixXd::Zero(2, 3)).status, EigenStatus::InvalidInput);
    Eigen::MatrixXcd withInfinity = Eigen::MatrixXcd::Identity(3, 3);
    withInfinity(2, 1) = Complex(0.0, std::numeric_limits<double>::infinity());
    EXPECT_EQ(hermitianEigenpairs(withInfinity).status, EigenStatus::InvalidInput);
    EXPECT_EQ(hermitianEigenvalues(Eigen::MatrixXcd::Zero(4, 1)).status,
              EigenStatus::InvalidInput);
}

}  // namespace
}  // namespace orvane
