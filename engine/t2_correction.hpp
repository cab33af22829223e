#pragma once
// The "/t2correction" switch: the parameter T2 of a file multiplies Judd's
// legacy operator t2 = t2' + (n - 2) e3 / (70 sqrt 2) (Judd 1966; Hansen, Judd &
// Crosswhite 1996; docs/conventions.md).
// With the switch its e3 part is moved into the Slater parameters, so that T2
// multiplies the orthogonal t2' alone and F^2, F^4, F^6 carry
// Delta E^3 = (n - 2) T2 / (70 sqrt 2) through Racah's relations. The total
// Hamiltonian, and so every level, is unchanged; what changes is the split
// between the electrostatic and the three-body shares and the reported Slater
// parameters, which become those of a t2' description of the same ion.
#include <array>
#include <string>
#include <vector>

namespace orvane {

struct T2SlaterCorrection {
    double t2 = 0.0;                  // the file's T2 (legacy form)
    double deltaE3 = 0.0;             // added to Racah's E^3
    std::array<double, 3> deltaF{};   // added to F^2, F^4, F^6
};

// Racah 1949 (F_2 = (E1 + 143 E2 + 11 E3)/42, F_4 = (E1 - 130 E2 + 4 E3)/77,
// F_6 = (E1 + 35 E2 - 7 E3)/462, F^k = D_k F_k): Delta E^3 = (n - 2) T2 / (70 sqrt 2),
// Delta F^2 = 225 (11/42) Delta E^3, Delta F^4 = 1089 (4/77) Delta E^3, Delta F^6 = (184041/25) (-7/462) Delta E^3.
T2SlaterCorrection t2SlaterCorrection(int electrons, double t2);

// The log lines: "T2 = ", "t2 correction for Slater parameters:", "F^2 correction" ...
// "F^6 correction", "T2 Corrected values of Slater parameters:" and the corrected F^k.
// `uncorrected` are F^2, F^4, F^6 before the correction (cm^-1 or the set's unit).
std::vector<std::string> t2CorrectionLogLines(const T2SlaterCorrection& correction,
                                              const std::array<double, 3>& uncorrected);

}  // namespace orvane
