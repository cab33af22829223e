#pragma once
// Second-order shift of the barycentre of each free-ion level (J multiplet)
// by the crystal-field mixing with the other levels.
//
// Second-order perturbation theory summed over the 2J+1 states of level a,
// with the orthogonality of 3j symbols (Edmonds 3.7.8):
//   sum_{M,M'} |<a J M|H_CF|b J' M'>|^2 = sum_k S_k |<a J||C(k)||b J'>|^2,
//   S_k = (1/(2k+1)) (B(k,0)^2 + 2 sum_{q>0} |B(k,q)|^2)   (the rotational invariant),
// so  dE_a = (1/(2J_a+1)) sum_{b != a} sum_k S_k |<a J||C(k)||b J'>|^2 / (E_a - E_b).
// The first-order barycentre shift is zero (C(k), k > 0, is traceless in a multiplet).
// Levels closer than 1e-9 (energy unit of the set) to level a are left out of its sum.
#include <array>
#include <vector>

#include "engine/crystal_field.hpp"

namespace orvane {

struct BarycentreShift {
    int level = 0;
    int twiceJ = 0;
    double energy = 0.0;  // free-ion energy
    double shift = 0.0;   // second-order shift of the barycentre
};

// `invariantsSquared` = S_2, S_4, S_6 of the applied Wybourne parameters.
std::vector<BarycentreShift> barycentreShifts(const TransformedTensors& tensors,
                                              const std::vector<double>& freeIonEnergies,
                                              const std::array<double, 3>& invariantsSquared);

}  // namespace orvane
