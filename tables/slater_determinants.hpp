#pragma once
// Slater determinants of f^n and second-quantised operators on them.
//
// Spin-orbital p = 2 (m + 3) + s holds m = -3..3 and spin up (s = 0) or down
// (s = 1). A determinant is the bit mask of its occupied spin-orbitals,
// |d> = a+_{p1} a+_{p2} ... a+_{pn} |0> with p1 < p2 < ..., so that a+_p on |d>
// gives (-1)^(number of occupied orbitals below p). A state of f^n is a dense
// vector over the C(14, n) determinants in ascending mask order.
#include <cstdint>
#include <vector>

#include <Eigen/Dense>

namespace orvane {

inline constexpr int kSpinOrbitals = 14;
inline constexpr int kShellL = 3;

inline int spinOrbital(int m, int twiceSigma) { return 2 * (m + 3) + (twiceSigma > 0 ? 0 : 1); }
inline int orbitalProjection(int p) { return p / 2 - 3; }
inline int twiceSpinProjection(int p) { return (p % 2 == 0) ? 1 : -1; }

// All determinants of f^n and the mask -> index map.
struct DeterminantSpace {
    int electrons = 0;
    std::vector<std::uint16_t> masks;   // ascending
    std::vector<int> indexOfMask;       // 2^14 entries, -1 for other electron numbers
    int size() const { return static_cast<int>(masks.size()); }
};

// The spaces of f^0 .. f^14, built once.
const DeterminantSpace& determinantSpace(int n);

// Total 2 M_S and M_L of a determinant.
int twiceSpinProjectionOf(std::uint16_t mask);
int orbitalProjectionOf(std::uint16_t mask);

// One term sum_pq h_pq a+_p a_q of a one-body operator.
struct OneBodyEntry {
    int creator = 0;
    int annihilator = 0;
    double value = 0.0;
};
using OneBodyOperator = std::vector<OneBodyEntry>;

// L+, L-, S+, S- as one-body operators (standard ladder matrix elements).
OneBodyOperator orbitalRaising();
OneBodyOperator orbitalLowering();
OneBodyOperator spinRaising();
OneBodyOperator spinLowering();
// Unit tensor u(k)_q summed over electrons: <m s| u(k)_q |m' s> = (-1)^(3-m) (3 k 3; -m q m')
// (Wigner-Eckart with <f||u(k)||f> = 1).
OneBodyOperator unitTensorComponent(int k, int q);

// The operator applied to a state of f^n.
Eigen::VectorXd applyOneBody(const OneBodyOperator& op, const DeterminantSpace& space,
                             const Eigen::VectorXd& state);

// a_p (f^n -> f^(n-1)) and a+_p (f^n -> f^(n+1)).
Eigen::VectorXd annihilate(int p, const DeterminantSpace& from, const Eigen::VectorXd& state);
Eigen::VectorXd create(int p, const DeterminantSpace& from, const Eigen::VectorXd& state);

// (U(k) . U(k)) = sum_q (-1)^q U(k)_q U(k)_-q applied to a state.
Eigen::VectorXd applyUnitTensorScalar(int k, const DeterminantSpace& space,
                                      const Eigen::VectorXd& state);

// Q+ Q- of the quasi-spin: Q+ = 1/2 sum (-1)^(l - m + 1/2 - sigma) a+_{m sigma} a+_{-m -sigma}.
Eigen::VectorXd applyQuasiSpinProduct(const DeterminantSpace& space, const Eigen::VectorXd& state);

}  // namespace orvane
