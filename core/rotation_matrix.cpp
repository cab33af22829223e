// The small Wigner rotation matrix d(J)(beta) = exp(-i beta J_y) in the |J m> basis.
#include <algorithm>
#include <cmath>

#include "core/angular.hpp"

namespace orvane {

namespace {

// x^n for a non-negative integer n by repeated squaring (exact 0^0 = 1).
double integerPower(double x, int n) {
    double result = 1.0;
    while (n > 0) {
        if ((n & 1) != 0) result *= x;
        x *= x;
        n >>= 1;
    }
    return result;
}

}  // namespace

// Wigner's explicit formula (Edmonds 1957, section 4.1): d(J)_{m m'}(beta) = sum_t (-1)^t
//   sqrt((J+m)! (J-m)! (J+m')! (J-m')!) / [(J+m-t)! t! (J-m'-t)! (t+m'-m)!]
//   cos(beta/2)^(2J+m-m'-2t) sin(beta/2)^(2t+m'-m).
Eigen::MatrixXd RotationMatrixD2(int twiceJ, double beta) {
    if (twiceJ < 0) return Eigen::MatrixXd();
    // (J+m)! reaches (2J)!: beyond the table, stop before allocating the matrix.
    const int tableSize = static_cast<int>(FactorialTable().size());
    if (twiceJ >= tableSize) throw FactorialRangeError(twiceJ, "rotation matrix d(J)");
    const int n = twiceJ + 1;
    const double c = std::cos(0.5 * beta);
    const double s = std::sin(0.5 * beta);
    const char* where = "rotation matrix d(J)";
    Eigen::MatrixXd d = Eigen::MatrixXd::Zero(n, n);
    // With twice-J integers: J+m = row, J-m = n-1-row, and likewise for m'.
    for (int row = 0; row < n; ++row) {
        const int jPlusM = row, jMinusM = twiceJ - row;
        for (int column = 0; column < n; ++column) {
            const int jPlusMp = column, jMinusMp = twiceJ - column;
            const int mpMinusM = column - row;
            const double root = std::sqrt(Factorial(jPlusM, where) * Factorial(jMinusM, where) *
                                          Factorial(jPlusMp, where) * Factorial(jMinusMp, where));
            const int tMin = std::max(0, -mpMinusM);
            const int tMax = std::min(jPlusM, jMinusMp);
            double sum = 0.0;
            for (int t = tMin; t <= tMax; ++t) {
                const double denominator = Factorial(jPlusM - t, where) * Factorial(t, where) *
                                           Factorial(jMinusMp - t, where) *
                                           Factorial(t + mpMinusM, where);
                const double term = integerPower(c, twiceJ - mpMinusM - 2 * t) *
                                    integerPower(s, 2 * t + mpMinusM) / denominator;
                sum += (t % 2 == 0) ? term : -term;
            }
            d(row, column) = root * sum;
        }
    }
    return d;
}

// The dimension 2J+1 is rounded to the nearest integer; a negative J gives an
// empty matrix.
Eigen::MatrixXd RotationMatrixD(double J, double beta) {
    if (!(2.0 * J + 1.0 >= 0.5)) return Eigen::MatrixXd();  // negative J, or NaN
    const double twiceJ = std::round(2.0 * J);
    if (twiceJ >= static_cast<double>(FactorialTable().size()))
        throw FactorialRangeError(twiceJ < 1.0e9 ? static_cast<int>(twiceJ) : 1000000000,
                                  "rotation matrix d(J)");
    return RotationMatrixD2(static_cast<int>(twiceJ), beta);
}

}  // namespace orvane
