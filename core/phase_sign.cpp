// The phase (-1)^x and the triangle coefficient Delta(abc) shared by the 3j and
// 6j formulas.
#include <cmath>
#include <cstdlib>

#include "core/angular.hpp"

namespace orvane {

// (-1)^x of an integral x, read from |x|; the 0.1 absorbs rounding noise of a
// value that should be integral (2.95 counts as 3).
double PhaseSign(double x) {
    const double rounded = std::round(std::fabs(x) + 0.1);
    return std::fmod(rounded, 2.0) == 0.0 ? 1.0 : -1.0;
}

// Racah 1942 (Phys. Rev. 62, 438), triangle coefficient: Delta(abc) = sqrt((a+b-c)! (a-b+c)! (-a+b+c)! / (a+b+c+1)!),
// with a, b, c given twice (ta = 2a). A broken triangle or a half-integral sum gives 0.
double TriangleCoefficient2(int ta, int tb, int tc) {
    const int sum = ta + tb + tc;
    if ((sum & 1) != 0) return 0.0;
    const int ab = ta + tb - tc, ac = ta - tb + tc, bc = -ta + tb + tc;
    if (ab < 0 || ac < 0 || bc < 0) return 0.0;
    const char* where = "triangle coefficient";
    return std::sqrt(Factorial(ab / 2, where) * Factorial(ac / 2, where) * Factorial(bc / 2, where) /
                     Factorial(sum / 2 + 1, where));
}

// The boundary form: the reals are rounded once to twice-J integers.
double TriangleCoefficient(double a, double b, double c) {
    const auto twice = [](double j) { return static_cast<int>(std::lround(2.0 * j)); };
    return TriangleCoefficient2(twice(a), twice(b), twice(c));
}

}  // namespace orvane
