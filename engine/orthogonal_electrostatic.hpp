#pragma once
// Electrostatic parameters for orthogonalised operators (an editor conversion).
//
// The two-particle electrostatic interaction of f^n together with the
// two-body configuration-interaction corrections is
//   H = E^1 e_1 + E^2 e_2 + E^3 e_3 + alpha L(L+1) + beta G(G2) + gamma G(R7)
// (Racah 1949; Rajnak & Wybourne 1963), up to a constant. These six operators
// are not orthogonal: L(L+1), G(G2) and G(R7) overlap with the e_k and with
// each other, so their parameters are correlated in a fit.
//
// The orthogonalised set o_1 .. o_6 is defined here from first principles:
//  1. every operator is made traceless over the |SLJM> states of f^n,
//     O' = O - Tr(O)/Tr(1), the trace taken in the term basis with the weights
//     (2S+1)(2L+1) (the operators are scalars, diagonal in S and L);
//  2. the traceless operators are orthogonalised by Gram-Schmidt (classical,
//     without normalisation) with the scalar product Tr(A B) in the order
//     e_1, e_2, e_3, L(L+1), G(G2), G(R7):
//        o_j = O'_j - sum_{i<j} [Tr(O'_j o_i) / Tr(o_i o_i)] o_i.
//     So o_1 is e_1 made traceless; e_2 and e_3 are already traceless and
//     orthogonal to e_1 and to each other, so o_2 = e_2 and o_3 = e_3; o_4..o_6
//     are L(L+1), G(G2), G(R7) with their projections on the earlier ones
//     removed.
// With O'_i = sum_{j<=i} c(i,j) o_j (c(i,i) = 1, c(i,j) = Tr(O'_i o_j)/Tr(o_j o_j))
// the same Hamiltonian up to a constant is sum_j p'_j o_j with
//        p'_j = sum_{i>=j} p_i c(i,j).
// The converted E^k change by the parts of alpha, beta, gamma that look like
// e_k; they are parameters of the o_j, not of the e_k, and so not input for
// the engine. An operator that lies in the span of the earlier ones in f^n
// (Tr(o_j o_j) below 1e-20 of Tr(O'_j O'_j)) gets o_j = 0 and p'_j = 0; its
// parameter is carried by the earlier ones.
#include <array>
#include <string_view>
#include <vector>

#include <Eigen/Dense>

#include "core/log_book.hpp"
#include "engine/configuration_tables.hpp"
#include "engine/parameter_set.hpp"

namespace orvane {

inline constexpr int kElectrostaticOperatorCount = 6;
using ElectrostaticParameters = std::array<double, kElectrostaticOperatorCount>;
using ElectrostaticOperators = std::array<Eigen::MatrixXd, kElectrostaticOperatorCount>;

// Names in the orthogonalisation order (E1..E3 are Racah's E^1..E^3).
inline constexpr std::array<std::string_view, kElectrostaticOperatorCount> kElectrostaticParameterNames = {
    "E1", "E2", "E3", "ALPHA", "BETA", "GAMMA"};

// e_1, e_2, e_3, L(L+1), G(G2), G(R7) of f^n in the term basis.
ElectrostaticOperators electrostaticOperators(const EngineTables& tables);

// Tr(A B) over the |SLJM> states of two scalar operators given in the term
// basis: sum_ij (2S_i+1)(2L_i+1) A(i,j) B(j,i).
double stateSpaceTrace(const std::vector<EngineTerm>& terms, const Eigen::MatrixXd& a, const Eigen::MatrixXd& b);

struct OrthogonalElectrostatic {
    ElectrostaticOperators orthogonal;  // o_1 .. o_6, traceless, mutually orthogonal
    // O'_i = sum_j expansion(i, j) o_j: lower triangular, unit diagonal
    // (0 on the diagonal of an operator that lies in the span of the earlier ones).
    Eigen::Matrix<double, kElectrostaticOperatorCount, kElectrostaticOperatorCount> expansion;
};

OrthogonalElectrostatic orthogonaliseElectrostatic(const EngineTables& tables);

// p'_j = sum_i p_i expansion(i, j): the parameters of o_1..o_6 that give the
// Hamiltonian of `parameters` (E^1, E^2, E^3, alpha, beta, gamma) up to a constant.
ElectrostaticParameters orthogonalParameters(const OrthogonalElectrostatic& set,
                                             const ElectrostaticParameters& parameters);

// E^1, E^2, E^3 (from the set's electrostatic form), alpha, beta, gamma of a
// parameter set, in its energy unit.
ElectrostaticParameters electrostaticParametersOf(const ParameterSet& set);

}  // namespace orvane
