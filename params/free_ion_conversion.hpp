#pragma once
// Conversions between the three forms of the electrostatic parameters of f^n:
// Racah's E^1, E^2, E^3, Slater's F_2, F_4, F_6 and F^2, F^4, F^6 (cm^-1).
// F^k = D_k F_k with D_2 = 225, D_4 = 1089, D_6 = 184041/25. E^0 and F_0 are
// absorbed into the average energy and are not converted.
#include <array>

namespace orvane::params {

// {E^1, E^2, E^3}, {F_2, F_4, F_6} or {F^2, F^4, F^6}.
using ElectrostaticTriple = std::array<double, 3>;

double slaterDenominator(int k);  // D_k for k = 2, 4, 6; 0 otherwise

ElectrostaticTriple racahFromLowerSlater(const ElectrostaticTriple& fLower);
ElectrostaticTriple lowerSlaterFromRacah(const ElectrostaticTriple& e);
ElectrostaticTriple upperSlaterFromLower(const ElectrostaticTriple& fLower);
ElectrostaticTriple lowerSlaterFromUpper(const ElectrostaticTriple& fUpper);

}  // namespace orvane::params
