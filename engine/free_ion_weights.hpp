#pragma once
// The free-ion weights of a parameter set: one value per free-ion component
// name (see free_ion.hpp), on the route the engine takes (the conjugate
// f^(14-n) route flips the signs the physics notes give for it).
#include <string>
#include <vector>

#include "engine/free_ion.hpp"
#include "engine/parameter_set.hpp"

namespace orvane {

// Names of non-zero parameters whose operators are not built are appended to
// `notIncluded` when given.
FreeIonWeights freeIonWeightsOf(const ParameterSet& set, bool conjugate,
                                std::vector<std::string>* notIncluded = nullptr);

}  // namespace orvane
