#pragma once
// The magnetic moment mu = -mu_B (L + g_s S) (docs/properties.md). Matrix
// elements are reported for m = L + g_s S in Bohr magnetons; the overall sign
// of mu never enters |<i|m|j>|^2, g-factors or the susceptibility.
//
// L and S are diagonal in the term and connect J' = J, J +- 1 (Edmonds 1957,
// eq. 7.1.7 and 7.1.8, spin coupled first):
//   <SLJ||L||SLJ'> = (-1)^(S+L+J+1) sqrt([J][J']) {L J S; J' L 1} sqrt(L(L+1)(2L+1))
//   <SLJ||S||SLJ'> = (-1)^(S+L+J'+1) sqrt([J][J']) {S J L; J' S 1} sqrt(S(S+1)(2S+1))
// Both are the same on the conjugate route (L and S of the holes' states
// equal those of the electrons'; U(1) and V(10) keep their sign).
#include <Eigen/Dense>

#include "core/physical_constants.hpp"
#include "properties/property_states.hpp"
#include "properties/tensor_operator.hpp"

namespace orvane {

// <SLJ||L + g_s S||S'L'J'> between the |SL J> states of a basis.
Eigen::MatrixXd magneticMomentReduced(const std::vector<EngineTerm>& terms, const JBasis& basis, double spinG);

TensorOperator magneticMomentOperator(const PropertyStates& states, double spinG = kElectronSpinG);

// <i|m_a|j> (a = x, y, z; m = L + g_s S, mu_B) of state i with every state j:
// states x 3.
Eigen::MatrixXcd momentElements(const TensorOperator& moment, int state);

}  // namespace orvane
