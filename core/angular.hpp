#pragma once
// Angular-momentum coupling coefficients (Racah's formulas, Edmonds' phases).
//
// Two faces:
//  * the boundary functions take the physical reals (7/2 is 3.5), test
//    integrality and triangles with absolute tolerances (0.001; 0.01 for the
//    projection sum) and round to the nearest twice-J integer once;
//  * the ...2 functions take twice-J integers directly and are what the table
//    generators and the Hamiltonian call in their loops.
// An invalid symbol (triangle or projection rule broken, or an argument that is
// not within 0.001 of an integer or half-integer) is 0, never an error.
// Every factorial is a lookup in the 80-entry table 0!..79!; a symbol that
// would need a larger factorial throws FactorialRangeError naming the argument.
#include <array>
#include <stdexcept>
#include <string>

#include <Eigen/Dense>

namespace orvane {

class FactorialRangeError : public std::out_of_range {
public:
    FactorialRangeError(int argument, const std::string& where);
    int argument() const { return argument_; }

private:
    int argument_;
};

// Entry i holds i! for i = 0..79, filled once on first use.
const std::array<double, 80>& FactorialTable();
// i! from the table; throws FactorialRangeError outside 0..79.
double Factorial(int i, const char* where = "Factorial");

// (-1)^x for integral x, taken of |x|: +1 when round(|x| + 0.1) is even.
double PhaseSign(double x);
// sqrt((a+b-c)! (a-b+c)! (-a+b+c)! / (a+b+c+1)!); 0 for a broken triangle.
double TriangleCoefficient(double a, double b, double c);

double ThreeJ(double j1, double j2, double j3, double m1, double m2, double m3);
double SixJ(double j1, double j2, double j3, double j4, double j5, double j6);
// Arguments row by row, computed as a sum over x of three 6j symbols
// (for instance {1 1 0; 0 1 1; 1 0 1} = 1/9 and {0 0 0; 0 0 0; 0 0 0} = 1).
double NineJ(double j1, double j2, double j3, double j4, double j5, double j6, double j7,
             double j8, double j9);
// <l || C(k) || l'> = (-1)^l sqrt((2l+1)(2l'+1)) (l k l'; 0 0 0)
double ReducedCk(double l, double k, double lp);
// d(J)_{m m'}(beta) = <J m| exp(-i beta J_y) |J m'>, beta in radians; row/column
// i (0-based) is m = i - J. The dimension 2J+1 is rounded; J < 0 gives an empty matrix.
Eigen::MatrixXd RotationMatrixD(double J, double beta);

// Twice-J integer forms (tj = 2j, tm = 2m).
double ThreeJ2(int tj1, int tj2, int tj3, int tm1, int tm2, int tm3);
double SixJ2(int tj1, int tj2, int tj3, int tj4, int tj5, int tj6);
double NineJ2(int tj1, int tj2, int tj3, int tj4, int tj5, int tj6, int tj7, int tj8, int tj9);
// Delta(abc) of doubled arguments; 0 for a broken triangle or a half-integral sum.
double TriangleCoefficient2(int ta, int tb, int tc);
// <l || C(k) || l'> with doubled arguments (tl = 2l).
double ReducedCk2(int tl, int tk, int tlp);
// d(J)_{m m'}(beta) for J = twiceJ / 2; row/column i (0-based) is m = i - J.
Eigen::MatrixXd RotationMatrixD2(int twiceJ, double beta);
// <j1 m1 j2 m2 | J M> = (-1)^(j1-j2+M) sqrt(2J+1) (j1 j2 J; m1 m2 -M)
double ClebschGordan2(int tj1, int tm1, int tj2, int tm2, int tJ, int tM);

}  // namespace orvane
