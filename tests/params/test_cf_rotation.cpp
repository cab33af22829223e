// Rotations of crystal-field parameters: the operator test in a J multiplet,
// Bkqzero, the garnet sites and the C3/C4 axis changes.
#include <cmath>
#include <complex>
#include <random>

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include "core/angular.hpp"
#include "interactive/asker.hpp"
#include "core/log_book.hpp"
#include "core/number_format.hpp"
#include "core/user_error.hpp"
#include "params/cf_rotation.hpp"
#include "interactive/cf_rotation_dialogs.hpp"
#include "params/value_cell.hpp"

namespace orvane::params {
namespace {

using Complex = std::complex<double>;
using Matrix = Eigen::MatrixXcd;

constexpr double kPi = 3.14159265358979323846;

// H_CF inside one J multiplet, written directly from the Wigner-Eckart theorem:
// <J M|C(k,q)|J M'> = (-1)^(J-M) (J k J; -M q M') x (an arbitrary reduced element per k).
Matrix multipletHamiltonian(const BkqArray& b, double J) {
    const int n = static_cast<int>(std::lround(2 * J + 1));
    const double reduced[7] = {0, 0, 0.8, 0, -1.3, 0, 0.55};
    Matrix h = Matrix::Zero(n, n);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j) {
            const double m = i - J, mp = j - J;
            for (int k = 2; k <= 6; k += 2)
                for (int q = -k; q <= k; ++q) {
                    const double w = ThreeJ(J, k, J, -m, q, mp);
                    if (w == 0.0) continue;
                    const double phase = std::lround(J - m) % 2 == 0 ? 1.0 : -1.0;
                    h(i, j) += bkqAt(b, k, q) * phase * w * reduced[k];
                }
        }
    return h;
}

// Wigner matrix D_{mm'} = e^{-i m a} d_{mm'}(b) e^{-i m' c} (angles in radians).
Matrix wignerD(double J, double a, double b, double c) {
    const Eigen::MatrixXd d = RotationMatrixD(J, b);
    const int n = static_cast<int>(d.rows());
    Matrix D(n, n);
    for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
            D(i, j) = std::polar(1.0, -(i - J) * a) * d(i, j) * std::polar(1.0, -(j - J) * c);
    return D;
}

BkqArray randomBkq(std::mt19937& rng) {
    std::uniform_real_distribution<double> u(-500.0, 500.0);
    BkqArray b{};
    for (int k = 2; k <= 6; k += 2) {
        b[k][0] = u(rng);
        for (int q = 1; q <= k; ++q) b[k][q] = Complex(u(rng), u(rng));
    }
    return b;
}

TEST(RotationOfParameters, EqualsRotatingTheIonInAJMultiplet) {
    std::mt19937 rng(20240611);
    std::uniform_real_distribution<double> angle(-180.0, 180.0);
    for (double J : {3.0, 4.5, 7.5}) {
        for (int trial = 0; trial < 4; ++trial) {
            const BkqArray b = randomBkq(rng);
            const EulerAngles e{angle(rng), angle(rng) / 2 + 90.0, angle(rng)};
            const BkqArray rotated = rotateBkq(b, e);
            const Matrix h = multipletHamiltonian(b, J);
            const Matrix hr = multipletHamiltonian(rotated, J);
            ASSERT_LT((h - h.adjoint()).norm(), 1e-9) << "H_CF must be hermitian";
            // Frame angles (alpha, beta, gamma) move the field by R_z(gamma) R_y(beta) R_z(alpha).
            const double r = kPi / 180.0;
            const Matrix D = wignerD(J, e.gamma * r, e.beta * r, e.alpha * r);
            EXPECT_LT((hr - D * h * D.adjoint()).norm(), 1e-8 * h.norm()) << "J=" << J;
            // The spectrum is unchanged.
            Eigen::SelfAdjointEigenSolver<Matrix> before(h), after(hr);
            EXPECT_LT((before.eigenvalues() - after.eigenvalues()).norm(), 1e-8 * h.norm());
            // Hermiticity of the rotated parameters: B(k,0) real.
            for (int k = 2; k <= 6; k += 2) EXPECT_EQ(rotated[k][0].imag(), 0.0);
            // Inverse rotation returns the input.
            const BkqArray back = rotateBkq(rotated, inverseAngles(e));
            for (int k = 2; k <= 6; k += 2)
                for (int q = 0; q <= k; ++q) EXPECT_LT(std::abs(back[k][q] - b[k][q]), 1e-9);
        }
    }
}

CfTable tableOf(std::initializer_list<std::tuple<int, int, double, double>> rows) {
    CfTable t;
    for (const auto& [k, q, re, im] : rows) {
        CfRow r;
        r.k = k;
        r.q = q;
        r.re = makeCell(re, kRotatedPicture);
        r.im = makeCell(im, kRotatedPicture);
        t.rows.push_back(r);
    }
    return t;
}

TEST(RotationCommands, ZeroImaginaryPartRules) {
    struct Case { double re, im; int q; double alpha; };
    const Case cases[] = {{0.0, 50.0, 2, 45.0},      // Re = 0: exactly 90/q
                          {0.0, -50.0, 3, 30.0},     // also with negative Im
                          {100.0, 100.0, 4, 11.25},  // atan(1)/4
                          {-100.0, 100.0, 2, -22.5}};  // atan, not atan2: within +-90/q
    for (const Case& c : cases) {
        EXPECT_DOUBLE_EQ(zeroImaginaryAngle(c.re, c.im, c.q), c.alpha);
        CfTable table = tableOf({{6, c.q, c.re, c.im}, {6, 0, 10.0, 0.0}});
        MemoryLogBook log;
        RotationHistory history;
        rotateToZeroImaginary(table, 6, c.q, log, history);
        for (const CfRow& row : table.rows)
            if (row.k == 6 && row.q == c.q) {
                EXPECT_NEAR(cellNumber(row.im), 0.0, 1e-9);
                EXPECT_NEAR(std::abs(cellNumber(row.re)), std::hypot(c.re, c.im), 1e-9);
            }
        EXPECT_TRUE(history.previous.has_value());
    }
}

TEST(RotationCommands, GarnetSitesAndC3C4AreUndoneByTheirInverses) {
    std::mt19937 rng(3);
    const BkqArray b = randomBkq(rng);
    std::vector<std::pair<EulerAngles, EulerAngles>> pairs = {{c3ToC4Angles(), c4ToC3Angles()},
                                                             {c4ToC3Angles(), c3ToC4Angles()}};
    for (int site = 1; site <= 6; ++site) {
        const auto to = garnetSiteAngles(site, false);
        const auto from = garnetSiteAngles(site, true);
        ASSERT_TRUE(to && from);
        pairs.emplace_back(*to, *from);
    }
    for (const auto& [there, back] : pairs) {
        const BkqArray result = rotateBkq(rotateBkq(b, there), back);
        for (int k = 2; k <= 6; k += 2)
            for (int q = 0; q <= k; ++q) EXPECT_LT(std::abs(result[k][q] - b[k][q]), 1e-9);
    }
    EXPECT_FALSE(garnetSiteAngles(7, false));
    const auto choice = parseGarnetChoice(" 4 f");
    ASSERT_TRUE(choice);
    EXPECT_EQ(choice->site, 4);
    EXPECT_TRUE(choice->toSiteOne);
    EXPECT_FALSE(parseGarnetChoice("9"));
}

}  // namespace
}  // namespace orvane::params
