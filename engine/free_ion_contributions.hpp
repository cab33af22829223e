#pragma once
// What each interaction contributes to the energy of every free-ion level:
// the parameter times the expectation value <psi|operator|psi> of its
// operator in the level's eigenstate (first-order shares; they add up to the
// level energy because the Hamiltonian is linear in its parameters).
#include <string>
#include <vector>

#include "engine/free_ion.hpp"

namespace orvane {

struct LabelledValue {
    std::string label;  // the report's label, e.g. "E(f2)", "msoo0", "100*p2", "E(SS)"
    double value = 0.0;
};

struct FreeIonLevelContributions {
    double averageEnergy = 0.0;                  // "E(ave) = "
    std::vector<LabelledValue> shifts;           // "E(f2)" ... "E(t7)", in report order
    std::vector<LabelledValue> magneticElements; // "mss0" ... "100*p6": expectation values of the operators
    std::vector<LabelledValue> magneticShifts;   // "E(SS)", "E(SOO)", "E(EL-SO)"
};

// One entry per level of `solution`, in its order. Components missing from
// `operators` (a switch left them out) contribute 0.
std::vector<FreeIonLevelContributions> freeIonContributions(const FreeIonOperators& operators,
                                                            const FreeIonWeights& weights,
                                                            const FreeIonSolution& solution);

}  // namespace orvane
