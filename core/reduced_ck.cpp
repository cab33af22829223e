// One-electron reduced matrix elements of the Racah-normalised tensor C(k).
#include <cmath>

#include "core/angular.hpp"

namespace orvane {

// Edmonds 1957, section 5.4, for C(k) = sqrt(4 pi/(2k+1)) Y(k): <l||C(k)||l'> = (-1)^l sqrt((2l+1)(2l'+1)) (l k l'; 0 0 0).
double ReducedCk(double l, double k, double lp) {
    const double symbol = ThreeJ(l, k, lp, 0.0, 0.0, 0.0);
    if (symbol == 0.0) return 0.0;  // also keeps an invalid l away from the square root
    return PhaseSign(l) * std::sqrt((2.0 * l + 1.0) * (2.0 * lp + 1.0)) * symbol;
}

// Edmonds 1957, section 5.4, twice-J integer form.
double ReducedCk2(int tl, int tk, int tlp) {
    const double symbol = ThreeJ2(tl, tk, tlp, 0, 0, 0);
    if (symbol == 0.0) return 0.0;
    const double phase = ((tl / 2) % 2 == 0) ? 1.0 : -1.0;
    return phase * std::sqrt((tl + 1.0) * (tlp + 1.0)) * symbol;
}

}  // namespace orvane
