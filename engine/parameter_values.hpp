#pragma once
// The values of a parameter set that an energy-unit conversion rescales
// (params/energy_units.hpp): the crystal-field rows, the five main and the
// other free-ion cells, with the set's unit; and the same values put back.
#include <optional>

#include "engine/parameter_set.hpp"
#include "params/energy_units.hpp"

namespace orvane {

params::ParameterValues parameterValuesOf(const ParameterSet& set);

// Writes the cells, the crystal-field rows and the unit back into the set.
// Returns the fold the set had when storing the rows changed it
// (storeCrystalFieldTable).
std::optional<int> storeParameterValues(ParameterSet& set, const params::ParameterValues& values);

}  // namespace orvane
