#pragma once
// Operators of f^n built directly on Slater determinants from one-electron
// matrices (no tables, no |SLJ> coupling), for the independent checks of the
// engine: spin-orbit, the scalar products of the unit tensors, the crystal
// field and the correlation crystal fields as this program defines them.
#include <bit>
#include <cmath>
#include <vector>

#include <Eigen/Dense>
#include <Eigen/Sparse>

#include "tables/slater_determinants.hpp"

namespace orvane::test {

using Sparse = Eigen::SparseMatrix<double>;

// Sign of moving an operator past the occupied spin-orbitals below p.
inline double signBelow(unsigned mask, int p) {
    return (std::popcount(mask & ((1u << p) - 1u)) % 2 == 0) ? 1.0 : -1.0;
}

// The matrix of sum h_pq a+_p a_q on the determinants of f^n, acting directly on the masks.
inline Sparse oneBodyMatrix(const OneBodyOperator& op, const DeterminantSpace& space) {
    std::vector<Eigen::Triplet<double>> entries;
    for (int column = 0; column < space.size(); ++column) {
        const unsigned mask = space.masks[column];
        for (const auto& entry : op) {
            if (!(mask & (1u << entry.annihilator))) continue;
            const unsigned removed = mask & ~(1u << entry.annihilator);
            if (removed & (1u << entry.creator)) continue;
            const unsigned result = removed | (1u << entry.creator);
            const double sign = signBelow(mask, entry.annihilator) * signBelow(removed, entry.creator);
            entries.emplace_back(space.indexOfMask[result], column, sign * entry.value);
        }
    }
    Sparse matrix(space.size(), space.size());
    matrix.setFromTriplets(entries.begin(), entries.end());
    return matrix;
}

// One-electron operators as 14 x 14 matrices over the spin-orbitals.
using OneElectron = Eigen::Matrix<double, kSpinOrbitals, kSpinOrbitals>;

inline OneBodyOperator oneBodyOf(const OneElectron& h) {
    OneBodyOperator op;
    for (int p = 0; p < kSpinOrbitals; ++p)
        for (int r = 0; r < kSpinOrbitals; ++r)
            if (h(p, r) != 0.0) op.push_back({p, r, h(p, r)});
    return op;
}

inline Sparse manyBody(const OneElectron& h, const DeterminantSpace& space) { return oneBodyMatrix(oneBodyOf(h), space); }

// l_z, l_+ = l_x + i l_y, l_- (Condon-Shortley: <m+1|l+|m> = sqrt(12 - m(m+1))).
inline OneElectron orbitalMatrix(int component) {
    OneElectron h = OneElectron::Zero();
    for (int m = -3; m <= 3; ++m)
        for (int s : {1, -1}) {
            if (component == 0) h(spinOrbital(m, s), spinOrbital(m, s)) = m;
            if (component == 1 && m < 3) h(spinOrbital(m + 1, s), spinOrbital(m, s)) = std::sqrt(12.0 - m * (m + 1.0));
            if (component == -1 && m > -3) h(spinOrbital(m - 1, s), spinOrbital(m, s)) = std::sqrt(12.0 - m * (m - 1.0));
        }
    return h;
}

// s_z, s_+, s_-.
inline OneElectron spinMatrix(int component) {
    OneElectron h = OneElectron::Zero();
    for (int m = -3; m <= 3; ++m) {
        if (component == 0) {
            h(spinOrbital(m, 1), spinOrbital(m, 1)) = 0.5;
            h(spinOrbital(m, -1), spinOrbital(m, -1)) = -0.5;
        }
        if (component == 1) h(spinOrbital(m, 1), spinOrbital(m, -1)) = 1.0;
        if (component == -1) h(spinOrbital(m, -1), spinOrbital(m, 1)) = 1.0;
    }
    return h;
}

// u(k)_q of one electron (Wigner-Eckart with <f||u(k)||f> = 1).
inline OneElectron unitTensorMatrix14(int k, int q) {
    OneElectron h = OneElectron::Zero();
    for (const auto& entry : unitTensorComponent(k, q)) h(entry.creator, entry.annihilator) = entry.value;
    return h;
}

// l.s = l_z s_z + (l+ s- + l- s+)/2 of one electron.
inline OneElectron spinOrbitMatrix() {
    return orbitalMatrix(0) * spinMatrix(0) + 0.5 * (orbitalMatrix(1) * spinMatrix(-1) + orbitalMatrix(-1) * spinMatrix(1));
}

// (U(k).U(k)) = sum_q (-1)^q U(k)_q U(k)_-q.
inline Sparse unitScalar(int k, const DeterminantSpace& space) {
    Sparse sum(space.size(), space.size());
    for (int q = -k; q <= k; ++q) {
        const Sparse product = manyBody(unitTensorMatrix14(k, q), space) * manyBody(unitTensorMatrix14(k, -q), space);
        sum += ((q % 2 == 0) ? 1.0 : -1.0) * product;
    }
    return sum;
}

// A . B = A_z B_z + (A_+ B_- + A_- B_+)/2 for many-body vector operators given by their components (z, +, -).
inline Sparse scalarProduct(const Sparse& az, const Sparse& ap, const Sparse& am, const Sparse& bz, const Sparse& bp,
                            const Sparse& bm) {
    return Sparse(az * bz) + 0.5 * (Sparse(ap * bm) + Sparse(am * bp));
}

// Spin-correlated crystal field: sum_i 2 (s_i . S) u(k)_q(i) = 2 (S . V) with V^a = sum_i s^a_i u(k)_q(i).
inline Sparse spinCorrelatedComponent(int k, int q, const DeterminantSpace& space) {
    const OneElectron u = unitTensorMatrix14(k, q);
    return 2.0 * scalarProduct(manyBody(spinMatrix(0), space), manyBody(spinMatrix(1), space),
                               manyBody(spinMatrix(-1), space), manyBody(spinMatrix(0) * u, space),
                               manyBody(spinMatrix(1) * u, space), manyBody(spinMatrix(-1) * u, space));
}

// L-correlated crystal field: (1/2) sum_i {(L . l_i), u(k)_q(i)}
//   = (1/2) [ L . Y + Y' . L ], Y^a = sum_i l^a_i u_q(i), Y'^a = sum_i u_q(i) l^a_i.
inline Sparse orbitCorrelatedComponent(int k, int q, const DeterminantSpace& space) {
    const OneElectron u = unitTensorMatrix14(k, q);
    const Sparse lz = manyBody(orbitalMatrix(0), space), lp = manyBody(orbitalMatrix(1), space),
                 lm = manyBody(orbitalMatrix(-1), space);
    const Sparse left = scalarProduct(lz, lp, lm, manyBody(orbitalMatrix(0) * u, space),
                                      manyBody(orbitalMatrix(1) * u, space), manyBody(orbitalMatrix(-1) * u, space));
    const Sparse right = scalarProduct(manyBody(u * orbitalMatrix(0), space), manyBody(u * orbitalMatrix(1), space),
                                       manyBody(u * orbitalMatrix(-1), space), lz, lp, lm);
    return 0.5 * (left + right);
}

}  // namespace orvane::test
