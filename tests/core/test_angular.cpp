// Angular-momentum coefficients beyond the exact comparison: invalid symbols,
// the Clebsch-Gordan phase, the factorial table's limit, reduced matrix
// elements of C(k) and the rotation matrices.
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "core/angular.hpp"

namespace {

using namespace orvane;

TEST(WignerSymbols, InvalidSymbolsAreZero) {
    struct Case {
        double j1, j2, j3, m1, m2, m3;
        const char* rule;
    };
    const Case cases[] = {
        {1, 1, 3, 0, 0, 0, "triangle j3 > j1 + j2"},
        {3, 1, 1, 0, 0, 0, "triangle j3 < |j1 - j2|"},
        {1, 1, 1, 2, -2, 0, "|m1| > j1"},
        {1, 1, 2, 1, 1, -1, "projection sum 1"},
        {1, 1, 1, 0.5, -0.5, 0, "j + m not integral"},
        {1, 0.5, 1, 0, 0.5, -0.5, "j1 + j2 + j3 not integral"},
        {1.3, 1, 1, 0, 0, 0, "1.3 is not a half-integer"},
        {-1, 1, 0, 0, 0, 0, "negative j"},
        {1, 1, 1, 0, 0, 0, "(1 1 1; 0 0 0) vanishes by parity"},
    };
    for (const auto& c : cases) EXPECT_EQ(ThreeJ(c.j1, c.j2, c.j3, c.m1, c.m2, c.m3), 0.0) << c.rule;
    EXPECT_EQ(SixJ(1, 1, 3, 1, 1, 1), 0.0) << "triad (1 1 3)";
    EXPECT_EQ(SixJ(1, 1, 1, 1, 1, 0.5), 0.0) << "triad (1 1 1/2)";
    EXPECT_EQ(NineJ(1, 1, 3, 1, 1, 1, 1, 1, 1), 0.0) << "row (1 1 3)";
    EXPECT_EQ(NineJ(1, 1, 1, 1, 1, 1, 3, 1, 1), 0.0) << "column (1 1 3)";
}

TEST(WignerSymbols, ClebschGordanCoefficientsHaveTheCondonShortleyPhase) {
    // Condon-Shortley values: <1/2 1/2, 1/2 -1/2 | 0 0> = 1/sqrt(2), <1/2 -1/2, 1/2 1/2 | 0 0> = -1/sqrt(2),
    // <1 1, 1 -1 | 2 0> = 1/sqrt(6), <1 0, 1 0 | 1 0> = 0.
    EXPECT_NEAR(ClebschGordan2(1, 1, 1, -1, 0, 0), 1.0 / std::sqrt(2.0), 1e-15);
    EXPECT_NEAR(ClebschGordan2(1, -1, 1, 1, 0, 0), -1.0 / std::sqrt(2.0), 1e-15);
    EXPECT_NEAR(ClebschGordan2(2, 2, 2, -2, 4, 0), 1.0 / std::sqrt(6.0), 1e-15);
    EXPECT_EQ(ClebschGordan2(2, 0, 2, 0, 2, 0), 0.0);
}

TEST(WignerSymbols, FactorialsBeyondTheTableThrow) {
    // {20 20 20; 20 20 20}: the t-sum runs from 60 to 80 and reaches (t+1)! = 80!.
    try {
        SixJ(20, 20, 20, 20, 20, 20);
        FAIL() << "the 6j returned a value";
    } catch (const FactorialRangeError& error) {
        EXPECT_EQ(error.argument(), 80);
    }
    for (const int argument : {-1, 80}) EXPECT_THROW(Factorial(argument, "test symbol"), FactorialRangeError);
    // Largest triad sum whose Delta needs 79!: (26 26 26) sums to 78.
    EXPECT_NO_THROW(ThreeJ(26, 26, 26, 0, 0, 0));
    EXPECT_THROW(ThreeJ(26, 26, 27, 0, 0, 0), FactorialRangeError);  // needs 80!
    EXPECT_THROW(SixJ2(40, 40, 40, 40, 40, 40), FactorialRangeError);
    EXPECT_THROW(NineJ(20, 20, 20, 20, 20, 20, 20, 20, 20), FactorialRangeError);
}

// <l||C(k)||l'> = (-1)^l sqrt([l][l']) (l k l'; 0 0 0) (Edmonds 1957, eq. 5.4.6), exact values.
TEST(ReducedCk, MatchesTheExactOneElectronValues) {
    struct Case {
        double l, k, lp, value;
        const char* exact;
    };
    const Case cases[] = {
        {3, 0, 3, std::sqrt(7.0), "<f||C(0)||f> = sqrt(7)"},
        {3, 2, 3, -1.3662601021279, "<f||C(2)||f> = -2 sqrt(105)/15"},
        {3, 4, 3, 1.1281521496356, "<f||C(4)||f> = sqrt(154)/11"},
        {3, 6, 3, -1.2773807700532, "<f||C(6)||f> = -10 sqrt(3003)/429"},
        {3, 3, 3, 0.0, "odd k"},
        {2, 2, 2, -std::sqrt(70.0) / 7.0, "<d||C(2)||d> = -sqrt(70)/7"},
        {1, 1, 2, -std::sqrt(2.0), "<p||C(1)||d> = -sqrt(2)"},
        {3, 8, 3, 0.0, "triangle broken"},
    };
    for (const auto& c : cases) {
        EXPECT_NEAR(ReducedCk(c.l, c.k, c.lp), c.value, 1e-12) << c.exact;
        EXPECT_NEAR(ReducedCk2(static_cast<int>(2 * c.l), static_cast<int>(2 * c.k), static_cast<int>(2 * c.lp)),
                    c.value, 1e-12)
            << c.exact;
    }
    EXPECT_EQ(ReducedCk(std::nan(""), 2, 3), 0.0);
}

// Maximum |a - b| over all elements.
double largestDifference(const Eigen::MatrixXd& a, const Eigen::MatrixXd& b) {
    return (a - b).cwiseAbs().maxCoeff();
}

TEST(RotationMatrixD, KnownElements) {
    for (const double beta : {0.3, 1.2, 2.5, -0.7, 4.0}) {
        const Eigen::MatrixXd d1 = RotationMatrixD(1, beta);
        ASSERT_EQ(d1.rows(), 3);
        // d^1_{1,0}(beta) = -sin(beta)/sqrt(2) (Edmonds 1957, Table 4); row 2 is m = +1, column 1 is m' = 0.
        EXPECT_NEAR(d1(2, 1), -std::sin(beta) / std::sqrt(2.0), 1e-15);
        EXPECT_NEAR(d1(0, 1), std::sin(beta) / std::sqrt(2.0), 1e-15);    // d^1_{-1,0}
        EXPECT_NEAR(d1(2, 2), (1 + std::cos(beta)) / 2, 1e-15);            // d^1_{1,1}
        const Eigen::MatrixXd half = RotationMatrixD(0.5, beta);
        EXPECT_NEAR(half(1, 0), -std::sin(beta / 2), 1e-15);  // d^{1/2}_{1/2,-1/2}
        EXPECT_NEAR(half(0, 0), std::cos(beta / 2), 1e-15);
        // d^l_{00}(beta) = P_l(cos beta) for l = 2, 3.
        const double x = std::cos(beta);
        EXPECT_NEAR(RotationMatrixD(2, beta)(2, 2), (3 * x * x - 1) / 2, 1e-14);
        EXPECT_NEAR(RotationMatrixD(3, beta)(3, 3), (5 * x * x * x - 3 * x) / 2, 1e-14);
    }
    EXPECT_NEAR(largestDifference(RotationMatrixD(3.5, 0.0), Eigen::MatrixXd::Identity(8, 8)), 0.0, 1e-15);
}

TEST(RotationMatrixD, IsOrthogonalAndComposes) {
    // d(beta) is a real rotation: d d^T = 1, and rotations about y add: d(b1) d(b2) = d(b1 + b2).
    for (int twiceJ = 0; twiceJ <= 12; ++twiceJ) {
        const double J = twiceJ / 2.0;
        const int n = twiceJ + 1;
        for (const double beta1 : {0.4, 2.2, 5.9}) {
            const Eigen::MatrixXd d = RotationMatrixD(J, beta1);
            ASSERT_EQ(d.rows(), n);
            EXPECT_LT(largestDifference(d * d.transpose(), Eigen::MatrixXd::Identity(n, n)), 1e-13) << "J=" << J;
            const double beta2 = 1.3;
            EXPECT_LT(largestDifference(d * RotationMatrixD(J, beta2), RotationMatrixD(J, beta1 + beta2)), 1e-13)
                << "J=" << J;
        }
        EXPECT_LT(largestDifference(RotationMatrixD2(twiceJ, 0.8), RotationMatrixD(J, 0.8)), 1e-15);
    }
    // A full turn is (-1)^(2J): half-integral J changes sign.
    EXPECT_LT(largestDifference(RotationMatrixD(1.5, 2 * std::numbers::pi), -Eigen::MatrixXd::Identity(4, 4)), 1e-13);
}

}  // namespace
