#pragma once
// Which crystal-field parameters B(k,q) (Wybourne, rows q >= 0 with Re and Im
// parts; B(k,-q) = (-1)^q B(k,q)*) a point group allows in its standard
// orientation (docs/conventions.md, "Site symmetry").
//
// The crystal field V = sum_q B(k,q) C(k,q) is invariant under a rotation R
// when B = D(k)(R) B, since C(k,q)(R^-1 r) = sum_q' C(k,q')(r) D(k)_q'q(R).
// Even ranks are even under the inversion, so an improper element acts through
// its proper part. The average of D(k) over the group projects onto the
// invariant parameters; a real coordinate (B(k,0), Re B(k,q), Im B(k,q)) is
// allowed when that projector does not remove it.
#include <vector>

#include <Eigen/Dense>

#include "params/point_group.hpp"

namespace orvane::params {

struct CrystalFieldComponent {
    int k = 0;
    int q = 0;               // 0..k
    bool imaginary = false;  // Im B(k,q) (never for q = 0)
};

// Real coordinates of rank k: index 0 is B(k,0); 2q-1 and 2q are Re and Im B(k,q).
// The projector onto the parameters invariant under the group, in these coordinates.
Eigen::MatrixXd invariantProjector(const PointGroup& group, int k);

bool crystalFieldComponentAllowed(const PointGroup& group, const CrystalFieldComponent& component);

// The allowed components of ranks 2, 4, 6, by k, q, Re before Im.
std::vector<CrystalFieldComponent> allowedCrystalFieldComponents(const PointGroup& group);

}  // namespace orvane::params
