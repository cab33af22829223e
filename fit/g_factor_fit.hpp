#pragma once
// Calculated g-factors of the g table and their derivatives by the
// parameters, for fits to observed g-factors (docs/fitting.md, "g-factors").
//
// g of a doublet {1, 2} (properties/g_factors.hpp): G_ab = 2 Re Tr(M_a M_b),
// M_a the 2 x 2 block of m_a = L_a + g_s S_a; g_c the principal value matched
// to axis c; a non-Kramers quasi-doublet gives gz = gz' + gz'' along the axis
// of its largest g. Derivatives by first-order perturbation of the states
// (no finite differences): d|i> = sum_k |k> <k|dH/dp|i> / (E_i - E_k) over
// the states k of i's block outside its degenerate level, so
//   dM_a(p,q) = <dp|m_a|q> + <p|m_a|dq>,  dG_ab = 2 Re Tr(dM_a M_b + M_a dM_b),
//   dg_c = e_c . dG e_c / (2 g_c)   (e_c the principal axis),
// and for gz' + gz'' the eigenvalue derivatives of m along the axis, the axis
// held (exact where symmetry fixes it). Needs every state of the blocks.
#include <vector>

#include <Eigen/Dense>

#include "engine/model.hpp"
#include "fit/fit_workspace.hpp"

namespace orvane {

struct GFactorEvaluation {
    std::vector<double> calculated;  // per g row; NaN when its state has no doublet partner
    Eigen::MatrixXd derivatives;     // g rows x ids
};

// `levels`: every crystal-field state in ascending energy with vectors (a
// full solve of the model).
GFactorEvaluation evaluateGFactors(const Model& model, const std::vector<ModelLevel>& levels,
                                   const std::vector<ObservedGFactor>& rows, const std::vector<ParameterId>& ids);

}  // namespace orvane
