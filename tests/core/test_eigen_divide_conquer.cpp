// The divide-and-conquer entry point: same spectrum as dsyevr, and eigenvectors
// orthonormal to working precision inside a highly degenerate cluster (what the
// term generator relies on when it takes null spaces).
#include <gtest/gtest.h>

#include <random>

#include "core/eigen_solver.hpp"

namespace orvane {
namespace {

Eigen::MatrixXd degenerateMatrix(int n, std::mt19937& random) {
    // Q diag(0,...,0, 1,...,1, 2.5) Q^T with a random orthogonal Q: two large
    // exactly degenerate clusters.
    std::normal_distribution<double> normal;
    Eigen::MatrixXd a(n, n);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) a(i, j) = normal(random);
    const Eigen::MatrixXd q = Eigen::HouseholderQR<Eigen::MatrixXd>(a).householderQ();
    Eigen::VectorXd d = Eigen::VectorXd::Zero(n);
    for (int i = n / 2; i < n - 1; ++i) d(i) = 1.0;
    d(n - 1) = 2.5;
    return q * d.asDiagonal() * q.transpose();
}

TEST(DivideAndConquerEigen, OrthonormalInsideDegenerateClusters) {
    std::mt19937 random(7);
    for (int n : {1, 2, 9, 40, 151}) {
        SCOPED_TRACE(n);
        const Eigen::MatrixXd h = degenerateMatrix(n, random);
        const auto dc = symmetricEigenpairsDivideAndConquer(h);
        ASSERT_EQ(dc.status, EigenStatus::Ok);
        ASSERT_EQ(dc.values.size(), n);
        const Eigen::MatrixXd overlap = dc.vectors.transpose() * dc.vectors;
        EXPECT_LT((overlap - Eigen::MatrixXd::Identity(n, n)).cwiseAbs().maxCoeff(), 1e-13);
        EXPECT_LT((dc.vectors * dc.values.asDiagonal() * dc.vectors.transpose() - h)
                      .cwiseAbs()
                      .maxCoeff(),
                  1e-12);
        const auto mrrr = symmetricEigenvalues(h);
        ASSERT_EQ(mrrr.status, EigenStatus::Ok);
        EXPECT_LT((mrrr.values - dc.values).cwiseAbs().maxCoeff(), 1e-12);
        EXPECT_NEAR(dc.values(n - 1), 2.5, 1e-12);  // the isolated top eigenvalue
    }
}

TEST(DivideAndConquerEigen, RefusesNonFiniteInput) {
    Eigen::MatrixXd h = Eigen::MatrixXd::Identity(3, 3);
    h(1, 2) = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(symmetricEigenpairsDivideAndConquer(h).status, EigenStatus::InvalidInput);
    EXPECT_EQ(symmetricEigenpairsDivideAndConquer(Eigen::MatrixXd(2, 3)).status,
              EigenStatus::InvalidInput);
}

}  // namespace
}  // namespace orvane
