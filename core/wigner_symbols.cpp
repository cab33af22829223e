// Wigner 3j, 6j and 9j symbols (Edmonds' phases) by Racah's closed sums, and
// the Clebsch-Gordan coefficient built on the 3j symbol.
//
// The twice-J integer forms do the work; every factorial comes from the table
// of 0! to 79! through a range-checked lookup, and nothing is allocated unless
// a symbol is out of the table's reach (the error then names the symbol).
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

#include "core/angular.hpp"

namespace orvane {

namespace {

using Table = std::array<double, 80>;

// i! from the table; the exception carries the argument and a fixed label, and
// the public function that called it replaces the label by the full symbol.
inline double fact(const Table& table, int i) {
    if (static_cast<unsigned>(i) >= table.size()) throw FactorialRangeError(i, "");
    return table[static_cast<std::size_t>(i)];
}

inline bool isOdd(int n) { return (n & 1) != 0; }

// (-1)^n for an integer n.
inline double parity(int n) { return isOdd(n) ? -1.0 : 1.0; }

// A valid triad: non-negative, integral sum, triangle inequalities.
inline bool isTriad(int ta, int tb, int tc) {
    return ta >= 0 && tb >= 0 && tc >= 0 && !isOdd(ta + tb + tc) && tc >= std::abs(ta - tb) &&
           tc <= ta + tb;
}

// A projection that belongs to its momentum: |m| <= j and j + m integral.
inline bool isProjection(int tj, int tm) { return std::abs(tm) <= tj && !isOdd(tj + tm); }

// Delta(abc) of Racah 1942 (Phys. Rev. 62, 438), for a triad already known to be valid.
inline double triangle(const Table& table, int ta, int tb, int tc) {
    return std::sqrt(fact(table, (ta + tb - tc) / 2) * fact(table, (ta - tb + tc) / 2) *
                     fact(table, (-ta + tb + tc) / 2) / fact(table, (ta + tb + tc) / 2 + 1));
}

std::string twiceJText(int tj) {
    if (!isOdd(tj)) return std::to_string(tj / 2);
    return std::to_string(tj) + "/2";
}

std::string symbolText(const char* name, std::initializer_list<int> twiceJs, int perRow) {
    std::string text = std::string(name) + " {";
    int column = 0;
    for (const int tj : twiceJs) {
        if (column > 0) text += (column % perRow == 0) ? "; " : " ";
        text += twiceJText(tj);
        ++column;
    }
    return text + "}";
}

// Racah 1942 closed formula (Edmonds 1957, section 3.7): the 3j symbol as one finite sum.
double threeJSum(int tj1, int tj2, int tj3, int tm1, int tm2, int tm3) {
    if (tm1 + tm2 + tm3 != 0) return 0.0;
    if (!isTriad(tj1, tj2, tj3)) return 0.0;
    if (!isProjection(tj1, tm1) || !isProjection(tj2, tm2) || !isProjection(tj3, tm3)) return 0.0;
    const Table& table = FactorialTable();
    // Factorial arguments of the denominator, as offsets in t.
    const int k1 = (tj3 - tj2 + tm1) / 2;  // (j3 - j2 + t + m1)!
    const int k2 = (tj3 - tj1 - tm2) / 2;  // (j3 - j1 + t - m2)!
    const int n1 = (tj1 + tj2 - tj3) / 2;  // (j1 + j2 - j3 - t)!
    const int n2 = (tj1 - tm1) / 2;        // (j1 - t - m1)!
    const int n3 = (tj2 + tm2) / 2;        // (j2 - t + m2)!
    const int tMin = std::max({0, -k1, -k2});
    const int tMax = std::min({n1, n2, n3});
    double sum = 0.0;
    for (int t = tMin; t <= tMax; ++t) {
        const double denominator = fact(table, t) * fact(table, k1 + t) * fact(table, k2 + t) *
                                   fact(table, n1 - t) * fact(table, n2 - t) * fact(table, n3 - t);
        sum += parity(t) / denominator;
    }
    const double projections =
        fact(table, (tj1 + tm1) / 2) * fact(table, (tj1 - tm1) / 2) * fact(table, (tj2 + tm2) / 2) *
        fact(table, (tj2 - tm2) / 2) * fact(table, (tj3 + tm3) / 2) * fact(table, (tj3 - tm3) / 2);
    return parity((tj1 - tj2 - tm3) / 2) * triangle(table, tj1, tj2, tj3) * std::sqrt(projections) *
           sum;
}

// The factorial table in extended precision, for the 6j symbols inside a 9j
// sum, whose cancellation over x would otherwise cost the last digits.
const std::array<long double, 80>& extendedFactorialTable() {
    static const std::array<long double, 80> table = [] {
        std::array<long double, 80> t{};
        t[0] = 1.0L;
        for (std::size_t i = 1; i < t.size(); ++i) t[i] = static_cast<long double>(i) * t[i - 1];
        return t;
    }();
    return table;
}

template <typename Real>
inline Real factOf(const std::array<Real, 80>& table, int i) {
    if (static_cast<unsigned>(i) >= table.size()) throw FactorialRangeError(i, "");
    return table[static_cast<std::size_t>(i)];
}

template <typename Real>
inline Real triangleOf(const std::array<Real, 80>& table, int ta, int tb, int tc) {
    using std::sqrt;
    return sqrt(factOf(table, (ta + tb - tc) / 2) * factOf(table, (ta - tb + tc) / 2) *
                factOf(table, (-ta + tb + tc) / 2) / factOf(table, (ta + tb + tc) / 2 + 1));
}

// Racah 1942 closed formula (Edmonds 1957, section 6.3): the 6j symbol as one finite sum.
template <typename Real>
Real sixJSumIn(const std::array<Real, 80>& table, int tj1, int tj2, int tj3, int tj4, int tj5,
               int tj6) {
    if (!isTriad(tj1, tj2, tj3) || !isTriad(tj1, tj5, tj6) || !isTriad(tj4, tj2, tj6) ||
        !isTriad(tj4, tj5, tj3))
        return Real(0);
    const int a1 = (tj1 + tj2 + tj3) / 2;
    const int a2 = (tj1 + tj5 + tj6) / 2;
    const int a3 = (tj4 + tj2 + tj6) / 2;
    const int a4 = (tj4 + tj5 + tj3) / 2;
    const int b1 = (tj1 + tj2 + tj4 + tj5) / 2;
    const int b2 = (tj2 + tj3 + tj5 + tj6) / 2;
    const int b3 = (tj3 + tj1 + tj6 + tj4) / 2;
    const int tMin = std::max({a1, a2, a3, a4});
    const int tMax = std::min({b1, b2, b3});
    const Real prefactor = triangleOf(table, tj1, tj2, tj3) * triangleOf(table, tj1, tj5, tj6) *
                           triangleOf(table, tj4, tj2, tj6) * triangleOf(table, tj4, tj5, tj3);
    Real sum = 0;
    for (int t = tMin; t <= tMax; ++t) {
        const Real denominator = factOf(table, t - a1) * factOf(table, t - a2) *
                                 factOf(table, t - a3) * factOf(table, t - a4) *
                                 factOf(table, b1 - t) * factOf(table, b2 - t) *
                                 factOf(table, b3 - t);
        const Real term = factOf(table, t + 1) / denominator;
        sum += isOdd(t) ? -term : term;
    }
    return prefactor * sum;
}

double sixJSum(int tj1, int tj2, int tj3, int tj4, int tj5, int tj6) {
    return sixJSumIn(FactorialTable(), tj1, tj2, tj3, tj4, tj5, tj6);
}

// Edmonds 1957, section 6.4: the 9j symbol as a sum over x of three 6j symbols,
//   sum_x (-1)^(2x) (2x+1) {j1 j4 j7; j8 j9 x} {j2 j5 j8; j4 x j6} {j3 j6 j9; x j1 j2}.
double nineJSum(int tj1, int tj2, int tj3, int tj4, int tj5, int tj6, int tj7, int tj8, int tj9) {
    if (!isTriad(tj1, tj2, tj3) || !isTriad(tj4, tj5, tj6) || !isTriad(tj7, tj8, tj9) ||
        !isTriad(tj1, tj4, tj7) || !isTriad(tj2, tj5, tj8) || !isTriad(tj3, tj6, tj9))
        return 0.0;
    const int txMax = std::min({tj4 + tj8, tj1 + tj9, tj2 + tj6});
    const int txMin = std::max({std::abs(tj4 - tj8), std::abs(tj1 - tj9), std::abs(tj2 - tj6)});
    if (txMin > txMax) return 0.0;
    const auto& table = extendedFactorialTable();
    long double sum = 0.0L;
    for (int tx = txMin; tx <= txMax; tx += 2) {
        sum += (tx + 1) * sixJSumIn(table, tj1, tj4, tj7, tj8, tj9, tx) *
               sixJSumIn(table, tj2, tj5, tj8, tj4, tx, tj6) *
               sixJSumIn(table, tj3, tj6, tj9, tx, tj1, tj2);
    }
    // (-1)^(2x) is constant over the sum: -1 when x is half-integral.
    return static_cast<double>(isOdd(txMin) ? -sum : sum);
}

// Rounds a physical angular momentum to twice its value; false when it is not
// within 0.001 of an integer or half-integer.
bool toTwice(double j, int& twice) {
    if (!std::isfinite(j) || std::fabs(j) > 1.0e6) return false;
    const double scaled = 2.0 * j;
    const double rounded = std::round(scaled);
    if (std::fabs(scaled - rounded) > 0.002) return false;
    twice = static_cast<int>(rounded);
    return true;
}

// The triangle test of the boundary functions, with its 0.001 tolerance.
bool looseTriangle(double a, double b, double c) {
    return !(c + 0.001 < std::fabs(a - b) || c - 0.001 > a + b);
}

}  // namespace

double ThreeJ2(int tj1, int tj2, int tj3, int tm1, int tm2, int tm3) {
    try {
        return threeJSum(tj1, tj2, tj3, tm1, tm2, tm3);
    } catch (const FactorialRangeError& error) {
        throw FactorialRangeError(error.argument(),
                                  symbolText("3j symbol", {tj1, tj2, tj3, tm1, tm2, tm3}, 3));
    }
}

double SixJ2(int tj1, int tj2, int tj3, int tj4, int tj5, int tj6) {
    try {
        return sixJSum(tj1, tj2, tj3, tj4, tj5, tj6);
    } catch (const FactorialRangeError& error) {
        throw FactorialRangeError(error.argument(),
                                  symbolText("6j symbol", {tj1, tj2, tj3, tj4, tj5, tj6}, 3));
    }
}

double NineJ2(int tj1, int tj2, int tj3, int tj4, int tj5, int tj6, int tj7, int tj8, int tj9) {
    try {
        return nineJSum(tj1, tj2, tj3, tj4, tj5, tj6, tj7, tj8, tj9);
    } catch (const FactorialRangeError& error) {
        throw FactorialRangeError(
            error.argument(),
            symbolText("9j symbol", {tj1, tj2, tj3, tj4, tj5, tj6, tj7, tj8, tj9}, 3));
    }
}

// Edmonds 1957, section 3.7 (3j from Clebsch-Gordan): <j1 m1 j2 m2 | J M> = (-1)^(j1-j2+M) sqrt(2J+1) (j1 j2 J; m1 m2 -M).
double ClebschGordan2(int tj1, int tm1, int tj2, int tm2, int tJ, int tM) {
    const double symbol = ThreeJ2(tj1, tj2, tJ, tm1, tm2, -tM);
    if (symbol == 0.0) return 0.0;
    return parity((tj1 - tj2 + tM) / 2) * std::sqrt(tJ + 1.0) * symbol;
}

double ThreeJ(double j1, double j2, double j3, double m1, double m2, double m3) {
    if (std::fabs(m1 + m2 + m3) > 0.01) return 0.0;
    if (!looseTriangle(j1, j2, j3)) return 0.0;
    if (std::fabs(m1) > j1 + 0.01 || std::fabs(m2) > j2 + 0.01 || std::fabs(m3) > j3 + 0.01)
        return 0.0;
    int tj1, tj2, tj3, tm1, tm2, tm3;
    if (!toTwice(j1, tj1) || !toTwice(j2, tj2) || !toTwice(j3, tj3)) return 0.0;
    if (!toTwice(m1, tm1) || !toTwice(m2, tm2)) return 0.0;
    // The projection sum is zero within 0.01: m3 follows from m1 and m2 so that
    // a stray 0.005 in m3 is absorbed rather than rounded on its own.
    tm3 = -(tm1 + tm2);
    return ThreeJ2(tj1, tj2, tj3, tm1, tm2, tm3);
}

double SixJ(double j1, double j2, double j3, double j4, double j5, double j6) {
    if (!looseTriangle(j1, j2, j3) || !looseTriangle(j1, j5, j6) || !looseTriangle(j4, j2, j6) ||
        !looseTriangle(j4, j5, j3))
        return 0.0;
    int t1, t2, t3, t4, t5, t6;
    if (!toTwice(j1, t1) || !toTwice(j2, t2) || !toTwice(j3, t3) || !toTwice(j4, t4) ||
        !toTwice(j5, t5) || !toTwice(j6, t6))
        return 0.0;
    return SixJ2(t1, t2, t3, t4, t5, t6);
}

double NineJ(double j1, double j2, double j3, double j4, double j5, double j6, double j7,
             double j8, double j9) {
    int t[9];
    const double j[9] = {j1, j2, j3, j4, j5, j6, j7, j8, j9};
    for (int i = 0; i < 9; ++i)
        if (!toTwice(j[i], t[i])) return 0.0;
    return NineJ2(t[0], t[1], t[2], t[3], t[4], t[5], t[6], t[7], t[8]);
}

}  // namespace orvane
