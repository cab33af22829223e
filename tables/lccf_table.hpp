#pragma once
// The L-correlated crystal-field operator UK(LCCF) of rank K (K = 2, 4, 6)
// between the terms of f^n, and its table files "RMULCCF2.val" ... .
//
// Orvane's definition (the literature's normalisations could not be checked):
//
//   D(K)_q = (1/2) sum_i { (L . l_i), u(K)_q(i) }
//
// the anticommutator making it Hermitian (B-type tensor: D(K)_q^+ =
// (-1)^q D(K)_-q) and time-even (L and l_i are both time-odd). For f^1 it is
// l(l+1) u(K) = 12 u(K). It is a spin-scalar tensor of orbital rank K, so its
// table holds <aSL||D(K)||a'SL'> like U(K) (zero unless S = S').
//
// Reduced elements. (L . l_i) u(K)(i) recouples (Edmonds (6.1.5)) into
// sum_x (-1)^(K+x) sqrt([x]/[K]) [L(1) x W(x)](K), W(x) = sum_i [l(1) x u(K)](x)(i),
// x = K-1, K, K+1, with the one-electron element
// <f||[l x u(K)](x)||f> = (-1)^x sqrt([x]) {1 K x; 3 3 3} sqrt(84) (Edmonds (7.1.1),
// sqrt(84) = <f||l||f>) and, L being diagonal (Edmonds (7.1.1), intermediate L),
//   X(aSL, a'SL') = sqrt(84) (-1)^(L+L') sqrt(L(L+1)(2L+1))
//                   sum_x (2x+1) {1 x K; L' L L} {1 K x; 3 3 3} <aSL||U(x)||a'SL'>
// for X = sum_i (L . l_i) u(K)(i). The reversed product sum_i u(K)(i) (l_i . L)
// has the elements X'(i, j) = (-1)^(L_i - L_j) X(j, i) (Edmonds (5.4.1)), and
// D = (X + X')/2.
#include <filesystem>
#include <functional>
#include <vector>

#include <Eigen/Dense>

#include "core/log_book.hpp"
#include "tables/reduced_tables.hpp"

namespace orvane {

// Ranks the table exists for.
inline bool isLccfRank(int K) { return K == 2 || K == 4 || K == 6; }

// D(K) from the full U(x) matrices of the terms, `unitTensor(x)` giving
// <term||U(x)||term'> for x = K-1, K, K+1.
Eigen::MatrixXd lccfMatrix(int K, const std::vector<TermSpinOrbit>& terms,
                           const std::function<Eigen::MatrixXd(int)>& unitTensor);

// D(K) of f^n from its coefficients of fractional parentage (terms x parents).
Eigen::MatrixXd lccfMatrixFromParentage(int n, int K, const std::vector<TermSpinOrbit>& terms,
                                        const std::vector<TermSpinOrbit>& parents, const Eigen::MatrixXd& cfp);

// Reads the state labels of f^n and f^(n-1) and the coefficients of f^n from
// the table directory, builds D(K) and writes "fN" + "RMULCCF" + K + ".val"
// there (stored half, like every reduced table). Returns its path. Throws
// UserError for missing or malformed files or a rank other than 2, 4, 6.
std::filesystem::path BuildLccfTable(int n, int K, const std::filesystem::path& directory, LogBook& log);

}  // namespace orvane
