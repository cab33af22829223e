#include "params/free_ion_conversion.hpp"

namespace orvane::params {

// F^k = D_k F_k (Condon & Shortley 1935, f-electron denominators 225, 1089, 7361.64).
double slaterDenominator(int k) {
    switch (k) {
        case 2: return 225.0;
        case 4: return 1089.0;
        case 6: return 184041.0 / 25.0;
        default: return 0.0;
    }
}

// Racah 1949 (Phys. Rev. 76, 1352), eq. (68): E^1 = (70F2 + 231F4 + 2002F6)/9,
// E^2 = (F2 - 3F4 + 7F6)/9, E^3 = (5F2 + 6F4 - 91F6)/3.
ElectrostaticTriple racahFromLowerSlater(const ElectrostaticTriple& f) {
    return {(70.0 * f[0] + 231.0 * f[1] + 2002.0 * f[2]) / 9.0,
            (f[0] - 3.0 * f[1] + 7.0 * f[2]) / 9.0, (5.0 * f[0] + 6.0 * f[1] - 91.0 * f[2]) / 3.0};
}

// Inverse of Racah 1949 eq. (68): F2 = (E1 + 143E2 + 11E3)/42, F4 = (E1 - 130E2 + 4E3)/77,
// F6 = (E1 + 35E2 - 7E3)/462.
ElectrostaticTriple lowerSlaterFromRacah(const ElectrostaticTriple& e) {
    return {(e[0] + 143.0 * e[1] + 11.0 * e[2]) / 42.0, (e[0] - 130.0 * e[1] + 4.0 * e[2]) / 77.0,
            (e[0] + 35.0 * e[1] - 7.0 * e[2]) / 462.0};
}

ElectrostaticTriple upperSlaterFromLower(const ElectrostaticTriple& f) {
    return {f[0] * slaterDenominator(2), f[1] * slaterDenominator(4), f[2] * slaterDenominator(6)};
}

ElectrostaticTriple lowerSlaterFromUpper(const ElectrostaticTriple& f) {
    return {f[0] / slaterDenominator(2), f[1] / slaterDenominator(4), f[2] / slaterDenominator(6)};
}

}  // namespace orvane::params
