#pragma once
// The crystal-field parameters of a parameter set as the engine applies them.
#include <vector>

#include "engine/crystal_field.hpp"
#include "engine/parameter_set.hpp"

namespace orvane {

// The crystal-field keys and values of a set (Wybourne B(k,q), k = 2, 4, 6,
// 0 <= q <= k; a later row of the same k, q replaces an earlier one; zero rows
// dropped); signs flipped on the conjugate route. Throws UserError for another
// convention, an invalid rank or q, an imaginary part when `complex` is false
// (the real engine would compute another crystal field), or a q the fold cannot carry.
struct CrystalFieldValues {
    std::vector<CrystalFieldKey> keys;
    std::vector<double> re;
    std::vector<double> im;
};
CrystalFieldValues crystalFieldParametersOf(const ParameterSet& set, bool conjugate, bool complex);

}  // namespace orvane
