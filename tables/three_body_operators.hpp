#pragma once
// The scalar three-electron operators t_i of f^n (Judd 1966; orthogonal set
// of Judd & Suskin 1984) that carry the parameters T^2 (T^2'), T^3, T^4, T^6,
// T^7, T^8, as matrices between the terms of f^n (diagonal in S and L,
// independent of J).
//
// They are defined by their f^3 matrices (Hansen, Judd & Crosswhite 1996,
// At. Data Nucl. Data Tables 62, 1; normalisers of Judd & Suskin 1984); f^n
// (n = 4..7) follows by the scalar three-body escalation (factor n/(n-3)),
// and t_i(f^N) = -t_i(f^(14-N)) for N > 7 (same term order).
//
// Phases of the f^3 seed: the published matrices are in the Nielson-Koster
// basis. A scalar operator's element between two terms changes sign only when
// exactly one of the two terms changes sign, and the only off-diagonal
// elements of f^3 lie inside the repeated terms 2D1/2D2, 2F1/2F2, 2G1/2G2,
// 2H1/2H2. Comparing the first non-zero coefficient of fractional parentage of
// these terms (Orvane makes it positive) with the published Nielson-Koster
// coefficients gives the sign products (2D1 2D2, 2F1 2F2, 2G1 2G2, 2H1 2H2)
// = (+, -, +, +): the published 2F1 has a negative first coefficient (parent
// 3P, -0.267261), the published 2F2 a positive one (+0.626783), the other
// pairs agree in sign. So the seed holds Hansen's values with the sign of the
// 2F1-2F2 element reversed; the diagonal elements do not depend on phases.
//
// The legacy t2 of Judd 1966 (the T2 of the older parameter sets) is
// t2 = t2' + (n - 2) e3 / (70 sqrt 2), e3 Racah's electrostatic operator.
#include <array>
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "tables/reduced_tables.hpp"
#include "tables/term.hpp"

namespace orvane {

// t2', t3, t4, t6, t7, t8 in this order.
inline constexpr int kThreeBodyOperatorCount = 6;
using ThreeBodyOperators = std::array<Eigen::MatrixXd, kThreeBodyOperatorCount>;

// "t2'", "t3", "t4", "t6", "t7", "t8"
std::string threeBodyOperatorName(int index);

ThreeBodyOperators zeroThreeBodyOperators(int termCount);

// The f^3 matrices in Orvane's phase convention; `f3Terms` are the 17 terms of
// f^3 (matched by label). Throws std::invalid_argument when a label is missing.
ThreeBodyOperators threeBodyOperatorsOfF3(const std::vector<TermRecord>& f3Terms);

// f^n (n >= 4) from f^(n-1) by the scalar three-body escalation.
ThreeBodyOperators escalateThreeBodyOperators(int n, const std::vector<TermSpinOrbit>& terms,
                                              const std::vector<TermSpinOrbit>& parents,
                                              const Eigen::MatrixXd& cfp, const ThreeBodyOperators& parent);

// t_i(f^(14-n)) = -t_i(f^n).
ThreeBodyOperators conjugateThreeBodyOperators(const ThreeBodyOperators& operators);

// Judd 1966; Hansen, Judd & Crosswhite 1996: legacy t2 = t2' + (n - 2) e3 / (70 sqrt 2), for
// every n = 3..12 (e3 of f^n, which equals that of f^(14-n)).
Eigen::MatrixXd legacyT2(int n, const Eigen::MatrixXd& t2Prime, const Eigen::MatrixXd& e3);

}  // namespace orvane
