#pragma once
// Stevens operator-equivalent factors and the unit-tensor factors of the f shell.
//
// StevensLambda()[k][|q|] holds the numerator t(k,|q|); the Stevens factor is
// lambda(k,q) = t(k,|q|) / N_k with N_2 = 2, N_4 = 8, N_6 = 16, so that the
// Stevens parameters are A(q,k)<r^k> = lambda Re B(k,q) and
// A(-q,k)<r^k> = -lambda Im B(k,q) (sine type). The odd-q numerators are
// negative: that is the Condon-Shortley phase of C(k,q). Odd k has no entries.
#include <array>

namespace orvane::params {

using StevensTable = std::array<std::array<double, 7>, 7>;

// The 7 x 7 numerator table, filled once; unset entries are 0.
const StevensTable& StevensLambda();

// N_k for k = 2, 4, 6; 0 for every other k.
double stevensDenominator(int k);
// lambda(k,q) = t(k,|q|) / N_k; 0 where the table has no entry.
double stevensFactor(int k, int q);

// The shell of every conversion: l = 3 and the largest rank 2l.
inline constexpr int kShellL = 3;
inline constexpr int kMaxRank = 2 * kShellL;

// c_k = <f||C(k)||f> = (-1)^l (2l+1) (l k l; 0 0 0), l = 3; 0 for odd k and k > 6.
double unitTensorFactor(int k);

}  // namespace orvane::params
