// Superposition model: coordination factors against spherical harmonics, the check
// values of cube, octahedron and a ligand on z, derivatives, estimation and
// rotation of ligand positions.
#include <cmath>
#include <complex>
#include <random>

#include <gtest/gtest.h>

#include "interactive/parameter_dialogs.hpp"
#include "core/angular.hpp"
#include "core/user_error.hpp"
#include "params/cf_rotation.hpp"
#include "params/superposition_estimation.hpp"
#include "params/stevens_lambda.hpp"
#include "params/superposition.hpp"
#include "params/value_cell.hpp"

namespace orvane::params {
namespace {

using Complex = std::complex<double>;
constexpr double kPi = 3.14159265358979323846;

// Racah-normalised spherical harmonic C(k,q)(theta, phi) built independently of the
// coordination polynomials: C(k,q) = sqrt((k-q)!/(k+q)!) P_k^q(cos theta) e^{i q phi}
// with the Condon-Shortley phase of std::assoc_legendre's missing (-1)^q put back, and
// C(k,-q) = (-1)^q C(k,q)*.
Complex racahHarmonic(int k, int q, double thetaDeg, double phiDeg) {
    const int aq = std::abs(q);
    const double x = std::cos(thetaDeg * kPi / 180.0);
    const double legendre = std::assoc_legendre(k, aq, x) * (aq % 2 ? -1.0 : 1.0);
    const double norm = std::sqrt(std::tgamma(k - aq + 1.0) / std::tgamma(k + aq + 1.0));
    const Complex c = norm * legendre * std::polar(1.0, aq * phiDeg * kPi / 180.0);
    if (q >= 0) return c;
    return (aq % 2 ? -1.0 : 1.0) * std::conj(c);
}

// B(k,q) as a point-charge-style sum written with the harmonics above:
// B(k,q) = sum_L b_k (R0/R_L)^t_k C(k,q)(ligand)*.
BkqArray harmonicSum(const std::vector<Ligand>& ligands, const SuperpositionParameters& p) {
    BkqArray b{};
    for (const Ligand& l : ligands)
        for (int k = 2; k <= 6; k += 2)
            for (int q = 0; q <= k; ++q)
                b[k][q] += p.bk[k / 2 - 1] * std::pow(p.r0 / l.r, p.tk[k / 2 - 1]) *
                           std::conj(racahHarmonic(k, q, l.thetaDeg, l.phiDeg));
    return b;
}

std::vector<Ligand> cubeCorners(double r) {
    std::vector<Ligand> out;
    const double theta = std::acos(1.0 / std::sqrt(3.0)) * 180.0 / kPi;
    for (double t : {theta, 180.0 - theta})
        for (double phi : {45.0, 135.0, 225.0, 315.0}) out.push_back({r, t, phi});
    return out;
}

SuperpositionParameters unitParameters() {
    SuperpositionParameters p;
    p.r0 = 2.0;
    p.bk = {1.0, 1.0, 1.0};
    p.tk = {7.0, 10.0, 11.0};
    return p;
}

TEST(CoordinationFactor, IsTheConjugateRacahHarmonic) {
    std::mt19937 rng(5);
    std::uniform_real_distribution<double> theta(0.0, 180.0), phi(-180.0, 360.0);
    for (int trial = 0; trial < 20; ++trial) {
        const double t = theta(rng), f = phi(rng);
        for (int k = 2; k <= 6; k += 2)
            for (int q = 0; q <= k; ++q) {
                const Complex expected = std::conj(racahHarmonic(k, q, t, f));
                EXPECT_NEAR(coordinationFactor(k, q, t, f), expected.real(), 1e-12) << k << q;
                if (q > 0) {
                    EXPECT_NEAR(coordinationFactor(k, -q, t, f), expected.imag(), 1e-12);
                }
                // Stevens type: without the division by the numerator t(k,|q|).
                EXPECT_NEAR(coordinationFactor(k, q, t, f, true),
                            expected.real() * StevensLambda()[k][q], 1e-9);
            }
    }
}

TEST(SuperpositionModel, DistortedCubeAgreesWithTheHarmonicSum) {
    std::mt19937 rng(42);
    std::normal_distribution<double> jitter(0.0, 4.0);
    std::vector<Ligand> ligands = cubeCorners(2.4);
    for (Ligand& l : ligands) {
        l.r += 0.02 * jitter(rng);
        l.thetaDeg += jitter(rng);
        l.phiDeg += jitter(rng);
    }
    SuperpositionParameters p;
    p.r0 = 2.35;
    p.bk = {400.0, 350.0, 120.0};
    p.tk = {5.0, 8.0, 11.0};
    const BkqArray b = superpositionBkq(ligands, p);
    const BkqArray expected = harmonicSum(ligands, p);
    for (int k = 2; k <= 6; k += 2)
        for (int q = 0; q <= k; ++q)
            EXPECT_LT(std::abs(b[k][q] - expected[k][q]), 1e-9 * (1.0 + std::abs(expected[k][q])))
                << "B" << k << q;
    EXPECT_GT(std::abs(b[2][0]), 1.0) << "the distortion must make rank 2 appear";
}

TEST(SuperpositionModel, CheckValuesOfSimpleCoordinations) {
    // bbar_k = 1, R = R0: computed check values (Newman & Ng, Rep. Prog. Phys. 52, 699 (1989), eq. for B(k,q)).
    struct Value { int k, q; double b; };
    struct Case { const char* name; std::vector<Ligand> ligands; std::vector<Value> values; };
    const Case cases[] = {
        {"ligand on z", {{2.0, 0.0, 0.0}},
         {{2, 0, 1.0}, {4, 0, 1.0}, {6, 0, 1.0}, {2, 2, 0.0}, {4, 3, 0.0}, {6, 6, 0.0}}},
        {"cube corners", cubeCorners(2.0),
         {{2, 0, 0.0}, {4, 0, -28.0 / 9.0}, {4, 4, -1.859245}, {4, 2, 0.0}, {6, 0, 16.0 / 9.0}, {6, 4, -3.325918}}},
        {"octahedron",
         {{2.0, 0, 0}, {2.0, 180, 0}, {2.0, 90, 0}, {2.0, 90, 90}, {2.0, 90, 180}, {2.0, 90, 270}},
         {{4, 0, 3.5}, {4, 4, 2.091650}, {6, 0, 0.75}, {6, 4, -1.403122}, {2, 0, 0.0}}},
    };
    for (const Case& c : cases) {
        const BkqArray b = superpositionBkq(c.ligands, unitParameters());
        for (const Value& v : c.values) {
            EXPECT_NEAR(b[v.k][v.q].real(), v.b, 1e-6) << c.name << " B" << v.k << v.q;
            EXPECT_NEAR(b[v.k][v.q].imag(), 0.0, 1e-12) << c.name;
        }
    }
    // Cube: the cubic ratios B44/B40 = sqrt(5/14), B64/B60 = -sqrt(7/2).
    const BkqArray cube = superpositionBkq(cubeCorners(2.0), unitParameters());
    EXPECT_NEAR(cube[4][4].real() / cube[4][0].real(), std::sqrt(5.0 / 14.0), 1e-12);
    EXPECT_NEAR(cube[6][4].real() / cube[6][0].real(), -std::sqrt(3.5), 1e-12);
}

TEST(SuperpositionModel, PowerLawAndDerivatives) {
    SuperpositionParameters p = unitParameters();
    p.bk = {300.0, 200.0, 100.0};
    // One ligand on z at R: B(k,0) = b_k (R0/R)^t_k.
    const BkqArray far = superpositionBkq({{2.5, 0, 0}}, p);
    EXPECT_NEAR(far[4][0].real(), 200.0 * std::pow(2.0 / 2.5, 10.0), 1e-9);
    // At R = R0 the t_k derivative vanishes and the b_k derivative is K_kq.
    const SuperpositionDerivatives atR0 = superpositionDerivatives({{2.0, 70.0, 20.0}}, p);
    for (int k = 2; k <= 6; k += 2)
        for (int q = 0; q <= k; ++q) {
            EXPECT_EQ(std::abs(atR0.byTk[k][q]), 0.0);
            EXPECT_NEAR(atR0.byBk[k][q].real(), coordinationFactor(k, q, 70.0, 20.0), 1e-14);
        }
    // Finite-difference check of both derivatives for a distorted cube.
    std::vector<Ligand> ligands = cubeCorners(2.3);
    ligands[0].r = 2.1;
    ligands[3].thetaDeg += 7.0;
    const SuperpositionDerivatives d = superpositionDerivatives(ligands, p);
    const double h = 1e-6;
    for (int i = 0; i < 3; ++i) {
        const int k = 2 * (i + 1);
        SuperpositionParameters up = p, down = p;
        up.tk[i] += h;
        down.tk[i] -= h;
        const BkqArray bu = superpositionBkq(ligands, up), bd = superpositionBkq(ligands, down);
        SuperpositionParameters ub = p;
        ub.bk[i] += 1.0;
        const BkqArray b0 = superpositionBkq(ligands, p), b1 = superpositionBkq(ligands, ub);
        for (int q = 0; q <= k; ++q) {
            EXPECT_LT(std::abs((bu[k][q] - bd[k][q]) / (2 * h) - d.byTk[k][q]), 1e-5 * (1 + std::abs(d.byTk[k][q])));
            EXPECT_LT(std::abs((b1[k][q] - b0[k][q]) - d.byBk[k][q]), 1e-9);
        }
    }
}

CfTable tableFrom(const BkqArray& b) { return superpositionTable(b); }

TEST(SuperpositionEstimation, RecoversTheIntrinsicParametersItGenerated) {
    std::vector<Ligand> ligands = cubeCorners(2.4);
    ligands[1].r = 2.3;
    ligands[2].thetaDeg += 9.0;
    ligands[5].phiDeg -= 13.0;
    SuperpositionParameters p;
    p.r0 = 2.4;
    p.bk = {431.5, -212.25, 97.125};
    p.tk = {5.0, 8.0, 11.0};
    const CfTable bkq = tableFrom(superpositionBkq(ligands, p));
    SuperpositionParameters fixed = p;
    fixed.bk = {0, 0, 0};
    const SuperpositionEstimate estimate = estimateIntrinsicParameters(ligands, fixed, bkq);
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(estimate.bk[i]);
        EXPECT_NEAR(*estimate.bk[i], p.bk[i], 1e-6 * std::fabs(p.bk[i]));
    }
    EXPECT_LT(estimate.rmsDeviation, 1e-6);
}

TEST(SuperpositionEstimation, RankWithoutFieldIsNotDetermined) {
    // A perfect cube has no rank-2 field: b2 cannot be estimated, b4 and b6 can.
    const std::vector<Ligand> cube = cubeCorners(2.4);
    SuperpositionParameters p = unitParameters();
    p.r0 = 2.4;
    p.bk = {0.0, 250.0, -80.0};
    CfTable bkq = superpositionTable(superpositionBkq(cube, p));
    bkq.rows[0].re = makeCell(-256.0);  // a measured B20 that the cube cannot explain
    const SuperpositionEstimate estimate = estimateIntrinsicParameters(cube, p, bkq);
    EXPECT_FALSE(estimate.bk[0]);
    ASSERT_TRUE(estimate.bk[1] && estimate.bk[2]);
    EXPECT_NEAR(*estimate.bk[1], 250.0, 1e-3);
    EXPECT_NEAR(*estimate.bk[2], -80.0, 1e-3);
}

TEST(LigandRotation, IsTheInverseOfTheFrameRotation) {
    std::vector<Ligand> ligands = cubeCorners(2.4);
    ligands[0].r = 2.2;
    ligands[4].thetaDeg += 11.0;
    const SuperpositionParameters p = unitParameters();
    const EulerAngles e{23.0, 71.0, -48.0};
    // Frame rotation of the moved ligands' parameters gives back the original parameters.
    const BkqArray moved = superpositionBkq(rotateLigands(ligands, e.alpha, e.beta, e.gamma), p);
    const BkqArray back = rotateBkq(moved, e);
    const BkqArray original = superpositionBkq(ligands, p);
    for (int k = 2; k <= 6; k += 2)
        for (int q = 0; q <= k; ++q) EXPECT_LT(std::abs(back[k][q] - original[k][q]), 1e-9);
    // Rotating by (0, 90, 0) moves the ligand from z into the xz plane.
    const auto onZ = rotateLigands({{2.0, 0.0, 0.0}}, 0.0, 90.0, 0.0);
    EXPECT_NEAR(onZ[0].thetaDeg, 90.0, 1e-12);
    EXPECT_NEAR(onZ[0].r, 2.0, 1e-12);
}

}  // namespace
}  // namespace orvane::params
