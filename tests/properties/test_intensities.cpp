// Transition intensities: Nd3+ |U(k)|^2 and MD check values of an independent
// re-derivation, detailed balance of absorption and emission, the Judd-Ofelt
// fit on exact data, the invariance of the quadrupole sum under rotation, and
// the published magnetic-dipole oscillator strengths of Carnall, Fields &
// Rajnak (1968).
#include <cmath>
#include <fstream>
#include <numbers>
#include <sstream>

#include <gtest/gtest.h>

#include "core/physical_constants.hpp"
#include "params/cf_rotation.hpp"
#include "core/user_error.hpp"
#include "properties/intensities.hpp"
#include "properties/measured_lines.hpp"
#include "properties/measured_susceptibility.hpp"
#include "tests/properties/properties_test_support.hpp"

namespace orvane {
namespace {

// First state of the multiplet with this label ("4I11/2") in a free-ion set of states.
int stateOfMultiplet(const PropertyStates& states, const std::string& label, double nearEnergy = -1) {
    int best = -1;
    for (int level = 0; level < states.levelCount; ++level) {
        const int i = states.levelMembers(level).front();
        const auto& group = states.groups[states.states[i].group];
        Eigen::Index largest;
        group.vectors.col(states.states[i].column).cwiseAbs().maxCoeff(&largest);
        const auto& b = states.basis.states[group.basisIndices[largest]];
        if (multipletLabel(states.terms[b.term].label, b.twiceJ) != label) continue;
        if (best < 0 || std::abs(states.relativeEnergy(i) - nearEnergy) < std::abs(states.relativeEnergy(best) - nearEnergy))
            best = i;
    }
    return best;
}

// Nd3+:LaF3 free ion from 4I9/2 (physics check values: Carnall's LaF3
// parameters without spin-spin; the example file is that set).
TEST(Intensities, NeodymiumReducedElementsAndDetailedBalance) {
    const auto states = test::exampleStates("Nd3plus-LaF3.par", false);
    const auto operators = intensityOperators(states, kElectronSpinG);
    const struct {
        const char* label;
        double u2, u4, u6;
    } expected[] = {{"4I11/2", 0.0194, 0.1072, 1.1639}, {"4F3/2", 0.0000, 0.2285, 0.0556},
                    {"4F5/2", 0.0007, 0.2333, 0.3985},  {"4G5/2", 0.8976, 0.4128, 0.0344}};
    IntensityInput input;
    input.omega = {1.0, 2.0, 3.0};
    input.index.constant = 1.6;
    for (const auto& e : expected) {
        const int final = stateOfMultiplet(states, e.label);
        ASSERT_GE(final, 0) << e.label;
        const auto up = transitionLines(states, operators, 0, final, final, input).at(0);
        EXPECT_NEAR(up.unitSquares[0], e.u2, 6e-4) << e.label;
        EXPECT_NEAR(up.unitSquares[1], e.u4, 6e-4) << e.label;
        EXPECT_NEAR(up.unitSquares[2], e.u6, 6e-4) << e.label;
        // Emission from the upper level back down: same strengths and rates.
        const auto down = transitionLines(states, operators, final, 0, 0, input).at(0);
        EXPECT_NEAR(down.strengthED, up.strengthED, 1e-12);
        EXPECT_NEAR(down.rateED, up.rateED, 1e-9 * up.rateED);
        EXPECT_NEAR(down.rateMD, up.rateMD, 1e-9 * up.rateMD + 1e-15);
        // Einstein relation with CODATA constants: A = 8 pi^2 e^2 n^2 sigma^2 g_l f / (m_e c g_u).
        const double gl = 10, gu = static_cast<double>(states.levelMembers(states.states[final].level).size());
        const double einstein = 8 * std::pow(std::numbers::pi, 2) * std::pow(4.80320471e-10, 2) /
                                (9.1093837015e-28 * 2.99792458e10) * 1.6 * 1.6 * std::pow(up.wavenumber, 2) * gl / gu;
        EXPECT_NEAR(up.rateED / up.oscillatorED, einstein, 1e-4 * einstein);
        if (up.oscillatorMD > 0) {
            EXPECT_NEAR(up.rateMD / up.oscillatorMD, einstein, 1e-4 * einstein);
        }
    }
    const auto md = transitionLines(states, operators, 0, stateOfMultiplet(states, "4I11/2"), 10000, input).at(0);
    EXPECT_NEAR(md.magneticSquare, 18.7392, 2e-3);
    // A free ion is isotropic: a third of MD2 in sigma (q = 0), two thirds in pi.
    EXPECT_NEAR(md.magneticSigma, md.magneticSquare / 3, 1e-9);
    EXPECT_NEAR(md.magneticPi, 2 * md.magneticSquare / 3, 1e-9);
    // A_MD against 64 pi^4 mu_B^2 n^3 sigma^3 MD2 / (3 h g_u), CODATA.
    const double rate = 64 * std::pow(std::numbers::pi, 4) * std::pow(9.2740100783e-21, 2) / (3 * 6.62607015e-27) *
                        std::pow(1.6 * md.wavenumber, 3) * md.magneticSquare / 12;
    EXPECT_NEAR(md.rateMD, rate, 2e-5 * rate);
}

TEST(Intensities, JuddOfeltFitRecoversOmega) {
    const auto states = test::exampleStates("Nd3plus-LaF3.par", false);
    const auto operators = intensityOperators(states, kElectronSpinG);
    const std::array<double, 3> omega = {0.35, 2.6, 4.1};
    const Eigen::MatrixXd squares = lineSquaresFrom(states, operators, 0);
    std::vector<JuddOfeltObservation> observations;
    for (int level = 1; level < 12; ++level) {
        const int i = states.levelMembers(level).front();
        std::array<double, 3> u{};
        for (int member : states.levelMembers(level))
            for (int k = 0; k < 3; ++k) u[k] += squares(member, k);
        observations.push_back({u, omega[0] * u[0] + omega[1] * u[1] + omega[2] * u[2], 0.05});
        (void)i;
    }
    const auto fit = fitJuddOfelt(observations);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(fit.omega[k], omega[k], 1e-9);
    EXPECT_EQ(Eigen::LLT<Eigen::Matrix3d>(fit.covariance).info(), Eigen::Success);
    EXPECT_LT(fit.rms, 1e-12);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(fit.correlation(k, k), 1.0, 1e-12);
    observations.resize(2);
    EXPECT_THROW(fitJuddOfelt(observations), std::invalid_argument);
}

// sum_f |<i|U(2)|f>|^2 over every final state is the expectation of a scalar:
// it cannot change when the field (and with it the level) is rotated.
TEST(Intensities, QuadrupoleSumIsRotationInvariant) {
    using test::bkq;
    const auto set = test::praseodymiumLikeSet(3, 880, {bkq(2, 0, -300), bkq(2, 1, 120, 80), bkq(4, 3, 300, 100), bkq(6, 5, 180, -40)}, 1);
    params::BkqArray b{};
    for (const auto& r : set.crystalField) b[r.k][r.q] = {r.re.value, r.im.value};
    const auto r = params::rotateBkq(b, {20, 75, 40});
    auto rotated = set;
    rotated.crystalField.clear();
    for (int k = 2; k <= 6; k += 2)
        for (int q = 0; q <= k; ++q) rotated.crystalField.push_back(bkq(k, q, r[k][q].real(), r[k][q].imag()));
    double sums[2];
    int index = 0;
    for (const ParameterSet* s : {&set, static_cast<const ParameterSet*>(&rotated)}) {
        const auto states = test::statesOf(*s, true, true);
        sums[index++] = lineSquaresFrom(states, intensityOperators(states, kElectronSpinG), 0).col(0).sum();
    }
    EXPECT_GT(sums[0], 0.1);
    EXPECT_NEAR(sums[0], sums[1], 1e-9 * sums[0]);
}

// Carnall, Fields & Rajnak (1968) Table I: calculated MD oscillator strengths
// P' (x 1e8, refractive index divided out) from the ground multiplet of the
// aquo ions (P' = f / n); reproduced for Pr, Nd and Er with the LaF3
// free-ion parameters of the examples (their aquo parameters are not at hand).
TEST(Intensities, CarnallMagneticDipoleOscillatorStrengths) {
    ORVANE_REQUIRE_REFERENCE(reference);
    std::ifstream in(reference / "carnall1968-table1.csv");
    ASSERT_TRUE(in) << "carnall1968-table1.csv";
    const std::map<std::string, std::string> files = {
        {"Pr", "Pr3plus-LaF3.par"}, {"Nd", "Nd3plus-LaF3.par"}, {"Er", "Er3plus-LaF3.par"}};
    std::map<std::string, PropertyStates> states;
    std::string line;
    std::getline(in, line);
    int compared = 0;
    while (std::getline(in, line)) {
        std::stringstream fields(line);
        std::string ion, initial, final, energy, strength;
        std::getline(fields, ion, ',');
        std::getline(fields, initial, ',');
        std::getline(fields, final, ',');
        std::getline(fields, energy, ',');
        std::getline(fields, strength, ',');
        if (!files.contains(ion) || final.find('(') != std::string::npos) continue;
        if (!states.contains(ion)) states.emplace(ion, test::exampleStates(files.at(ion), false));
        const auto& s = states.at(ion);
        const int finalState = stateOfMultiplet(s, final, std::stod(energy));
        if (finalState < 0 || std::abs(s.relativeEnergy(finalState) - std::stod(energy)) > 600) continue;
        const auto operators = intensityOperators(s, kElectronSpinG);
        IntensityInput input;
        const auto computed = transitionLines(s, operators, 0, finalState, finalState, input).at(0);
        // With our own wavenumber: the two intermediate couplings differ by a
        // few per cent on the strong lines (aquo against LaF3 parameters).
        const double p = computed.oscillatorMD * 1e8, published = std::stod(strength);
        EXPECT_NEAR(p, published, published > 1 ? 0.03 * published : 0.2 * published + 0.01)
            << ion << " " << initial << " -> " << final;
        ++compared;
    }
    EXPECT_GE(compared, 8);
}

// Malformed measured-line files are refused naming the line.
TEST(Intensities, MeasuredLinesRefuseMalformedInput) {
    const struct {
        const char* text;
        int line;
    } cases[] = {{"1 2 0.5\n# note\n1 x 0.3\n", 3}, {"1 2 0.5\n1 40 0.3\n", 2}, {"1 2 -1\n", 1},
                 {"1 2 0.5 0.1 7\n", 1}, {"1 1 0.5\n", 1}};
    for (const auto& c : cases) {
        try {
            parseMeasuredLines(c.text, "lines.txt", 30);
            ADD_FAILURE() << c.text;
        } catch (const UserError& error) {
            EXPECT_EQ(error.describe().rfind("lines.txt:" + std::to_string(c.line) + ":", 0), 0u) << error.describe();
        }
    }
    EXPECT_EQ(parseMeasuredLines("1 2 0.5\n1, 3, 0.25, 0.01\n\n2 4 1\n", "ok.txt", 30).size(), 3u);
    for (const auto& [text, line] : std::vector<std::pair<std::string, int>>{
             {"Temperature/K,X(Average)\n1,0.5\nx,0.2\n", 3}}) {
        try {
            parseMeasuredSusceptibility(text, "chi.csv");
            ADD_FAILURE() << text;
        } catch (const UserError& error) {
            EXPECT_EQ(error.describe().rfind("chi.csv:" + std::to_string(line) + ":", 0), 0u) << error.describe();
        }
    }
    const std::string table = "Temperature/K,X(x),X(Average)\n2,9,0.5\n300,9,0.01\n400,9,0.005\n";
    const auto chi = parseMeasuredSusceptibility(table, "chi.csv");
    ASSERT_EQ(chi.points.size(), 3u);
    EXPECT_DOUBLE_EQ(chi.points[1].average, 0.01);
    EXPECT_EQ(chi.rowsBeyondLimit, 0u);
    const auto limited = parseMeasuredSusceptibility(table, "chi.csv", 2);  // rows past the limit are counted, not read
    EXPECT_EQ(limited.points.size(), 2u);
    EXPECT_EQ(limited.rowsBeyondLimit, 1u);
}

// The ED polarisation split against the crystal quantum numbers of the two
// levels (taken from the blocks, independently of the U(k) components): a pi
// part needs a pair of members with Delta mu = 0 (mod fold), a sigma part one
// with Delta mu = +-1. A misplaced component index Q breaks this. At folds 2
// and 3 sigma + pi is the whole S(ED); at fold 4 the lines with only
// Delta mu = 2 pairs are in neither polarisation.
TEST(Intensities, ElectricDipolePolarisationFollowsTheCrystalQuantumNumber) {
    using test::bkq;
    for (const int fold : {2, 3, 4}) {
        SCOPED_TRACE(fold);
        std::vector<CrystalFieldRow> field = {bkq(2, 0, -300), bkq(4, 0, 500), bkq(6, 0, 400)};
        for (int q = fold; q <= 6; q += fold)
            for (int k = std::max(2, q % 2 == 0 ? q : q + 1); k <= 6; k += 2) field.push_back(bkq(k, q, 350.0 - 40 * k));
        // Non-Kramers, so that levels with mu = 0 and mu = 2 exist.
        const auto states = test::statesOf(test::praseodymiumLikeSet(2, 750, field, fold), true);
        auto pairWith = [&](int a, int b, auto rule) {
            for (int i : states.levelMembers(states.states[a].level))
                for (int f : states.levelMembers(states.states[b].level)) {
                    const int residue = (((states.states[f].twiceMu - states.states[i].twiceMu) / 2) % fold + fold) % fold;
                    if (rule(residue)) return true;
                }
            return false;
        };
        IntensityInput input;
        input.omega = {1.0, 2.0, 3.0};
        int forbiddenLines = 0;
        for (const auto& line : transitionLines(states, intensityOperators(states, kElectronSpinG), 0, 0, 60, input)) {
            const double scale = 1e-9 * (line.strengthED + 1.0);
            const bool piPair = pairWith(line.initial, line.final, [](int r) { return r == 0; });
            const bool sigmaPair = pairWith(line.initial, line.final, [&](int r) { return r == 1 || r == fold - 1; });
            EXPECT_TRUE(piPair || line.strengthEDPi <= scale) << line.final;
            EXPECT_TRUE(sigmaPair || line.strengthEDSigma <= scale) << line.final;
            const double split = line.strengthEDPi + line.strengthEDSigma;
            if (fold < 4) {
                EXPECT_NEAR(split, line.strengthED, scale) << line.final;
            }
            forbiddenLines += split < scale && line.strengthED > scale;
        }
        EXPECT_EQ(forbiddenLines > 0, fold == 4);
    }
}

}  // namespace
}  // namespace orvane
