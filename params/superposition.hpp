#pragma once
// Superposition model (Newman 1971; Newman & Ng 1989): every ligand contributes an
// axially symmetric field, so that (Wybourne normalisation)
//   B(k,q) = sum_L b_k (R0/R_L)^(t_k) K_kq(theta_L, phi_L)
// where K_kq = P_k|q|(cos, sin) cos(q phi) / t(k,|q|) for the real part and
// P_k|q| (-sin(|q| phi)) / t(k,|q|) for the imaginary part, i.e. the complex
// conjugate of the Racah harmonic C(k,q) of the ligand direction. Without the
// division by the Stevens numerator t(k,|q|) the factors are of Stevens type.
// Lengths in any one unit (R and R0 the same), angles in degrees.
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "params/cf_records.hpp"

namespace orvane::params {

inline constexpr int kMaxLigands = 100;
// Ligand and reference distances accepted (in the ligand file's length unit,
// normally angstrom): beyond these (R0/R)^t overflows or underflows for any
// usable power law exponent t.
inline constexpr double kMinLigandDistance = 1.0e-3;
inline constexpr double kMaxLigandDistance = 1.0e3;
// Power-law exponents t_k accepted (Newman & Ng 1989 give values of 3 to 12).
inline constexpr double kMaxPowerLawExponent = 100.0;
inline bool ligandDistanceInRange(double r) { return r >= kMinLigandDistance && r <= kMaxLigandDistance; }

struct Ligand {
    double r = 0.0;         // distance from the central ion
    double thetaDeg = 0.0;  // polar angle
    double phiDeg = 0.0;    // azimuth
};

// Intrinsic parameters b_k(R0) and power-law exponents t_k for k = 2, 4, 6 (index k/2 - 1).
struct SuperpositionParameters {
    double r0 = 0.0;
    std::array<double, 3> bk{};
    std::array<double, 3> tk{};
    bool stevensType = false;  // skip the division by t(k,|q|)
    bool zeroR0Ignored = false;  // the user answered Ignore to "Reference ligand distance = 0!"
};

// The angular polynomial P_k|q|(cos theta, sin theta) of the coordination factors.
double coordinationPolynomial(int k, int aq, double c, double s);

// K_kq(theta, phi): cos(q phi) for q >= 0, -sin(|q| phi) for q < 0. Returns 0 for
// an invalid (k, q); coordinationArgumentsError tells why.
double coordinationFactor(int k, int q, double thetaDeg, double phiDeg, bool stevensType = false);
// std::nullopt when (k, q) is valid; else {title, message} as the calculator shows it.
std::optional<std::pair<std::string, std::string>> coordinationArgumentsError(int k, int q);

// Checks R0, the ligand count and every distance; throws UserError with the
// messages of the superposition-model editor.
void checkSuperpositionInput(const std::vector<Ligand>& ligands, const SuperpositionParameters& parameters);

// B(k,q) for k = 2, 4, 6, q = 0..k (Re from q, Im from -q factors).
BkqArray superpositionBkq(const std::vector<Ligand>& ligands, const SuperpositionParameters& parameters);

// dB(k,q)/db_k and dB(k,q)/dt_k (each B(k,q) depends only on its own rank's b_k, t_k).
struct SuperpositionDerivatives {
    BkqArray byBk{};
    BkqArray byTk{};
};
SuperpositionDerivatives superpositionDerivatives(const std::vector<Ligand>& ligands, const SuperpositionParameters& parameters);

// Rows k = 2, 4, 6, q = 0..k of a B(k,q) array with the given picture.
CfTable superpositionTable(const BkqArray& b, std::string_view picture = "#####0.0####");

// Rotation of the ligand positions by Euler angles (degrees): the inverse of the
// rotation of the coordinate frame by the same angles, so that rotating the frame
// of the parameters of the moved ligands by (alpha, beta, gamma) gives back the
// parameters of the original ones.
std::vector<Ligand> rotateLigands(const std::vector<Ligand>& ligands, double alpha, double beta,
                                  double gamma);

// Lattice (fractional) coordinates of a ligand relative to the central ion, and
// the cell: lengths a, b, c and angles alpha, beta, gamma in degrees. The frame
// has x along a and y in the (a, b) plane.
struct LatticeCell {
    double a = 1.0, b = 1.0, c = 1.0;
    double alpha = 90.0, beta = 90.0, gamma = 90.0;
};
// std::nullopt for a cell that does not exist (angles that close no cell).
std::optional<Ligand> latticeToPolar(const std::array<double, 3>& fractional,
                                     const LatticeCell& cell);

}  // namespace orvane::params
