#include "params/stevens_lambda.hpp"

#include <cmath>
#include <cstdlib>

#include "core/angular.hpp"

namespace orvane::params {

namespace {

// Numerators of the Stevens factors: polynomial identity between the Stevens
// operator equivalents and Racah's C(k,q) (Stevens 1952; Hutchings 1964, table of
// operator equivalents; lambda = t/N_k).
StevensTable makeStevensTable() {
    StevensTable t{};
    t[2][0] = 1.0;
    t[2][1] = -2.0 * std::sqrt(6.0);
    t[2][2] = std::sqrt(6.0);
    t[4][0] = 1.0;
    t[4][1] = -4.0 * std::sqrt(5.0);
    t[4][2] = 2.0 * std::sqrt(10.0);
    t[4][3] = -4.0 * std::sqrt(35.0);
    t[4][4] = std::sqrt(70.0);
    t[6][0] = 1.0;
    t[6][1] = -2.0 * std::sqrt(42.0);
    t[6][2] = std::sqrt(105.0);
    t[6][3] = -2.0 * std::sqrt(105.0);
    t[6][4] = 3.0 * std::sqrt(14.0);
    t[6][5] = -6.0 * std::sqrt(77.0);
    t[6][6] = std::sqrt(231.0);
    return t;
}

}  // namespace

const StevensTable& StevensLambda() {
    static const StevensTable table = makeStevensTable();
    return table;
}

double stevensDenominator(int k) {
    switch (k) {
        case 2: return 2.0;
        case 4: return 8.0;
        case 6: return 16.0;
        default: return 0.0;
    }
}

double stevensFactor(int k, int q) {
    const int aq = std::abs(q);
    const double n = stevensDenominator(k);
    if (n == 0.0 || aq > k) return 0.0;
    return StevensLambda()[k][aq] / n;
}

// Reduced matrix element of C(k) in the f shell: <l||C(k)||l> = (-1)^l (2l+1) (l k l; 0 0 0)
// (Edmonds (5.4.5) for l = l').
double unitTensorFactor(int k) {
    if (k < 1 || k > kMaxRank || k % 2 == 1) return 0.0;  // parity: (l k l; 0 0 0) = 0 for odd k
    const double l = kShellL;
    return PhaseSign(l) * (2.0 * l + 1.0) * ThreeJ(l, k, l, 0.0, 0.0, 0.0);
}

}  // namespace orvane::params
