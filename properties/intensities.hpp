#pragma once
// Transition intensities between levels (docs/properties.md). A level is a
// set of degenerate states (a crystal-field level, or a free-ion multiplet
// with its 2J+1 components); every sum runs over the components of both
// levels and over q, so for free-ion multiplets
//   U(k)^2 = sum |<a M|U(k)_q|b M'>|^2 = |<a J||U(k)||b J'>|^2.
//
// Line strengths (Judd 1962, Ofelt 1962; sigma = wavenumber in cm^-1,
// g = number of states of a level = 2J+1 for a multiplet):
//   S_ED = sum_k Omega_k U(k)^2                        (1e-20 cm^2)
//   MD2  = sum |<i|L + g_s S|f>|^2                     (mu_B^2)
// Oscillator strengths of absorption l -> u and emission rates u -> l:
//   f_MD = 4.04385e-11 n sigma MD2 / g_l               (h / (6 m_e c) = 4.04385e-11 cm)
//   f_ED = 1.084731e-9 sigma [(n^2+2)^2/(9n)] S_ED / g_l  (8 pi^2 m_e c / (3h), S_ED in 1e-20 cm^2)
//   A    = 0.66703 n^2 sigma^2 (g_l / g_u) f           (8 pi^2 e^2 / (m_e c) = 0.66703 cm^2/s)
// so A_MD = 2.6974e-11 n^3 sigma^3 MD2 / g_u and A_ED carries the local field
// n (n^2+2)^2 / 9 (emission; (n^2+2)^2/(9n) in absorption).
// MD line strength S_MD = mu_B^2 MD2 in 1e-8 D^2 (mu_B^2 = 8600.726e-8 D^2),
// MD dipole strength D_MD = S_MD / g_l.
// Electric quadrupole (standard E2 rate, e.g. Shortley 1940):
//   A_EQ = 64 pi^6 sigma^5 n^3 / (15 h g_u) e^2 <r^2>^2 <f||C(2)||f>^2 U(2)^2,
// <f||C(2)||f> = -1.36626010212795, <r^2> in a0^2 (an input; docs/properties.md
// on the n^3 and the choice of <r^2>).
#include <array>
#include <optional>
#include <vector>

#include <Eigen/Dense>

#include "properties/property_states.hpp"
#include "properties/refractive_index.hpp"
#include "properties/tensor_operator.hpp"

namespace orvane {

inline constexpr double kMagneticOscillatorConstant = 4.04385e-11;  // h/(6 m_e c), cm
inline constexpr double kRateFromOscillator = 0.66703;              // 8 pi^2 e^2/(m_e c), cm^2 s^-1
inline constexpr double kElectricOscillatorConstant = 1.084731e-9;  // 8 pi^2 m_e c/(3h) x 1e-20 cm^2
inline constexpr double kBohrMagnetonSquaredDebye = 8600.726;       // mu_B^2 in 1e-8 D^2
inline constexpr double kQuadrupoleRateConstant = 1.119950e-22;     // 64 pi^6 e^2 a0^4/(15 h), cgs
inline constexpr double kReducedC2 = 1.36626010212795;              // |<f||C(2)||f>|

// U(2), U(4), U(6) and m = L + g_s S on the states.
struct IntensityOperators {
    std::vector<TensorOperator> unitTensors;  // k = 2, 4, 6
    TensorOperator moment;
};
IntensityOperators intensityOperators(const PropertyStates& states, double spinG);

// Polarisation of an electric-dipole line at a site with a `fold`-fold main
// axis z, by the component Q of U(k)_Q that connects the two states. The
// forced electric dipole couples light of polarisation q through an odd-rank
// crystal-field component of order p, a multiple of the fold, so Q = p + q:
// Q = 0 (mod fold) is reached by q = 0, "Perp. pi" (E along z); Q = +-1 (mod
// fold) by q = +-1, "Parallel sigma" (E perpendicular to z); any other Q by
// neither (the crystal-quantum-number selection rules, e.g. Gorller-Walrand &
// Binnemans 1998, Handbook Phys. Chem. Rare Earths 25, ch. 167, sect. 3).
// Fold 0 is the free ion (axial to any order: only Q = 0 and +-1); fold 1 has
// no axis and no rule: both.
enum class DipolePolarisation { Pi, Sigma, Neither, Both };
DipolePolarisation electricDipolePolarisation(int q, int fold);

// Columns of lineSquaresFrom.
enum LineSquareColumn : int {
    kU2 = 0, kU4 = 1, kU6 = 2,  // sum |<i|U(k)_Q|f>|^2 over Q
    kMD2 = 3,                   // sum |<i|L + g_s S|f>|^2
    kMDSigma = 4,               // its q = 0 part (B along z)
    kMDPi = 5,                  // its q = +-1 part (B perpendicular)
    kU2Pi = 6,                  // U(k)^2 over the Q of "Perp. pi" (k = 2, 4, 6)
    kU2Sigma = 9,               // U(k)^2 over the Q of "Parallel sigma"
    kLineSquareColumns = 12
};
using LineSquares = std::array<double, kLineSquareColumns>;

// Squared elements from the members of one level to every state, summed over
// the members and the components (states x kLineSquareColumns).
Eigen::MatrixXd lineSquaresFrom(const PropertyStates& states, const IntensityOperators& operators, int level);

struct IntensityInput {
    std::array<double, 3> omega{};  // Omega_2,4,6 in 1e-20 cm^2
    RefractiveIndex index;
    double radiusSquared = 1.0;     // <r^2> in a0^2 for A(EQ)
};

struct TransitionLine {
    int initial = 0, final = 0;     // state numbers (0-based, first member of each level)
    double wavenumber = 0.0;        // cm^-1
    double wavelength = 0.0;        // nm
    double refractiveIndex = 1.0;
    std::array<double, 3> unitSquares{};  // U2, U4, U6
    double magneticSquare = 0.0;          // MD2 (mu_B^2)
    double magneticSigma = 0.0;           // its q = 0 part ("Parallel sigma": E perpendicular, B along z)
    double magneticPi = 0.0;              // its q = +-1 part ("Perp. pi": E along z, B perpendicular)
    double strengthED = 0.0;              // 1e-20 cm^2
    double strengthEDSigma = 0.0;         // its "Parallel sigma" part (E perpendicular to z)
    double strengthEDPi = 0.0;            // its "Perp. pi" part (E along z)
    double strengthMD = 0.0;              // 1e-8 D^2
    double dipoleMD = 0.0;                // 1e-8 D^2
    double oscillatorED = 0.0;            // absorption from the lower level
    double oscillatorMD = 0.0;
    double rateED = 0.0, rateMD = 0.0, rateEQ = 0.0;  // s^-1, emission from the upper level
};

// The line between two levels given the summed squares (a row of lineSquaresFrom summed over the final level).
TransitionLine transitionLine(const PropertyStates& states, int initialLevel, int finalLevel,
                              const LineSquares& squares, const IntensityInput& input);

// Lines from the level of state `initial` to the levels of the states
// first..last (0-based, inclusive), one per level, the initial level left out.
std::vector<TransitionLine> transitionLines(const PropertyStates& states, const IntensityOperators& operators,
                                            int initial, int first, int last, const IntensityInput& input);

// Boltzmann population of a level at T (K), with k = 0.69502 cm^-1/K.
double levelPopulation(const PropertyStates& states, int level, double temperature);

// Judd-Ofelt least squares: S_meas(t) ~ sum_k Omega_k U(k)^2(t).
struct JuddOfeltObservation {
    std::array<double, 3> unitSquares{};
    double measured = 0.0;      // 1e-20 cm^2
    double uncertainty = 0.0;   // 1e-20 cm^2; 0: unweighted
};

struct JuddOfeltFit {
    std::array<double, 3> omega{};
    // With uncertainties for every line: (A^T W A)^-1, W = 1/sigma^2;
    // otherwise (A^T A)^-1 times the residual variance (RSS / (m - 3), m > 3).
    Eigen::Matrix3d covariance;
    Eigen::Matrix3d correlation;
    double rms = 0.0;  // root-mean-square residual, 1e-20 cm^2
};

// Throws std::invalid_argument for fewer than 3 lines or a singular design.
JuddOfeltFit fitJuddOfelt(const std::vector<JuddOfeltObservation>& observations);

}  // namespace orvane
