#pragma once
// The free-ion weights of a parameter set: one value per free-ion component
// name (see free_ion.hpp), on the route the engine takes (the conjugate
// f^(14-n) route flips the signs of docs/engine.md "Conjugate configurations").
#include <string>
#include <vector>

#include "engine/free_ion.hpp"
#include "engine/parameter_set.hpp"

namespace orvane {

// Every free-ion parameter of a file has its operator: `notIncluded` (names of
// non-zero parameters without an operator) is left as it is.
// Conjugate route: zeta, T2', T3..T8 negated; T2 (legacy rule inside its
// component), F^k, alpha, beta, gamma, M^k, P^k unchanged.
// "/t2correction": T2 is applied to t2' and its e3 part to F^2, F^4, F^6
// (t2_correction.hpp); the levels do not change.
FreeIonWeights freeIonWeightsOf(const ParameterSet& set, bool conjugate,
                                std::vector<std::string>* notIncluded = nullptr);

}  // namespace orvane
