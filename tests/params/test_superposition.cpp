// Superposition model: coordination factors against spherical harmonics, the
// cubic ratios, derivatives, estimation and rotation of ligand positions; ligand
// files, lattice coordinates and the "smdata.txt" persistence.
#include <cmath>
#include <complex>
#include <random>

#include <gtest/gtest.h>

#include "core/angular.hpp"
#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "params/ligand_file.hpp"
#include "params/cf_rotation.hpp"
#include "params/superposition_estimation.hpp"
#include "params/stevens_lambda.hpp"
#include "params/superposition.hpp"
#include "params/value_cell.hpp"
#include "tests/support/reference_data.hpp"

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

TEST(SuperpositionModel, CubeHasTheCubicRatios) {
    // Eight ligands on the cube corners, bbar_k = 1, R = R0: B40 = -28/9 and the cubic ratios
    // B44/B40 = sqrt(5/14), B64/B60 = -sqrt(7/2) (Newman & Ng, Rep. Prog. Phys. 52, 699 (1989)).
    const BkqArray cube = superpositionBkq(cubeCorners(2.0), unitParameters());
    EXPECT_NEAR(cube[4][0].real(), -28.0 / 9.0, 1e-9);
    EXPECT_NEAR(std::abs(cube[2][0]), 0.0, 1e-12);
    EXPECT_NEAR(cube[4][4].real() / cube[4][0].real(), std::sqrt(5.0 / 14.0), 1e-12);
    EXPECT_NEAR(cube[6][4].real() / cube[6][0].real(), -std::sqrt(3.5), 1e-12);
}

TEST(SuperpositionModel, DerivativesMatchFiniteDifferences) {
    SuperpositionParameters p = unitParameters();
    p.bk = {300.0, 200.0, 100.0};
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

TEST(LigandFile, ReadsPolarRowsLabelsAndR0) {
    const LigandFile file = parseLigandText(
        "# Er site, eight oxygens\n\nR0 = 2.35\n2.3, 54.7356; 45 O1\n  2.4 125.26 135\r\n! done\n",
        "cube.lig");
    ASSERT_EQ(file.ligands.size(), 2u);
    EXPECT_EQ(*file.r0, 2.35);
    EXPECT_EQ(file.ligands[0].r, 2.3);
    EXPECT_EQ(file.ligands[0].thetaDeg, 54.7356);
    EXPECT_EQ(file.ligands[0].phiDeg, 45.0);
    EXPECT_EQ(file.labels[0], "O1");
    EXPECT_EQ(file.ligands[1].phiDeg, 135.0);
}

TEST(LigandFile, LatticeCoordinatesAreConvertedToPolar) {
    // Cubic cell a = 4: fractional (0.5, 0.5, 0.5) is a cube corner at 2 sqrt 3.
    const LigandFile cubic = parseLigandText("lattice = 4 4 4 90 90 90\n0.5 0.5 0.5\n0 0 -0.5\n", "cell.lig");
    EXPECT_NEAR(cubic.ligands[0].r, 2.0 * std::sqrt(3.0), 1e-12);
    EXPECT_NEAR(cubic.ligands[0].thetaDeg, std::acos(1.0 / std::sqrt(3.0)) * 180.0 / kPi, 1e-10);
    EXPECT_NEAR(cubic.ligands[0].phiDeg, 45.0, 1e-12);
    EXPECT_NEAR(cubic.ligands[1].thetaDeg, 180.0, 1e-12);
    // Hexagonal cell (gamma = 120): fractional (1, 1, 0) has length a and azimuth 60 degrees.
    const auto hex = latticeToPolar({1.0, 1.0, 0.0}, LatticeCell{3.0, 3.0, 5.0, 90.0, 90.0, 120.0});
    ASSERT_TRUE(hex);
    EXPECT_NEAR(hex->r, 3.0, 1e-12);
    EXPECT_NEAR(hex->phiDeg, 60.0, 1e-12);
    EXPECT_NEAR(hex->thetaDeg, 90.0, 1e-12);
    EXPECT_FALSE(latticeToPolar({1, 0, 0}, LatticeCell{1, 1, 1, 10, 10, 170}));  // no such cell
}

TEST(LigandFile, MalformedFilesNameFileLineAndProblem) {
    struct Case { const char* text; int line; };
    const Case cases[] = {
        {"2.3 50 40\n2.4 abc 10\n", 2}, {"2.3 50\n", 1},          {"-2 50 40\n", 1},
        {"R0 = zero\n2 1 1\n", 1},      {"lattice = 1 1 1 0 0 0\n", 1},
        {"lattice = 1 1 1 90 90 90\n0 0 0\n", 2},                 {"# nothing\n\n", 2},
    };
    for (const Case& c : cases) {
        try {
            parseLigandText(c.text, "bad.lig");
            FAIL() << "no error for: " << c.text;
        } catch (const UserError& e) {
            ASSERT_TRUE(e.where());
            EXPECT_EQ(e.where()->file, "bad.lig");
            EXPECT_EQ(e.where()->line, c.line) << c.text;
        }
    }
}

TEST(SuperpositionData, RoundTripIsExactAndMalformedFilesAreRefused) {
    SuperpositionData data;
    data.parameters.r0 = 2.4173;
    data.parameters.bk = {431.5, -212.25, 1.0 / 3.0};
    data.parameters.tk = {5.0, 8.0, 11.0};
    data.parameters.stevensType = true;
    data.ligands = {{2.3, 54.7356103172, 45.0}, {2.41, 0.1, -179.9}};
    const auto dir = orvane::test::scratchDirectory("smdata");
    writeSuperpositionData(dir / "smdata.txt", data);
    const SuperpositionData back = readSuperpositionData(dir / "smdata.txt");
    EXPECT_EQ(back.parameters.bk, data.parameters.bk);
    EXPECT_TRUE(back.parameters.stevensType);
    ASSERT_EQ(back.ligands.size(), 2u);
    EXPECT_EQ(back.ligands[0].thetaDeg, 54.7356103172);
    EXPECT_EQ(formatSuperpositionData(back), formatSuperpositionData(data));

    std::string text = formatSuperpositionData(data);
    struct Case { std::string text; int line; };
    const Case cases[] = {
        {"Something else\n", 1},
        {text.substr(0, text.find("No. of")), 7},                                    // truncated
        {std::string(text).replace(text.find("= 2\n"), 4, "= 5\n"), 10},            // count lies
        {std::string(text).replace(text.find("= 2.4173"), 8, "= inf"), 2},
    };
    for (const Case& c : cases) {
        try {
            parseSuperpositionData(c.text, "smdata.txt");
            FAIL() << c.text;
        } catch (const UserError& e) {
            EXPECT_EQ(e.where()->line, c.line) << e.describe();
        }
    }
}

}  // namespace
}  // namespace orvane::params
