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
    // "E(f2)", "E(f4)", "E(f6)", "E(SO)", "E(alpha)", "E(beta)", "E(gamma)", "E(t2)" (T2 and T2'
    // together), "E(t3)", "E(t4)", "E(t6)", "E(t7)", "E(t8)"
    std::vector<LabelledValue> shifts;
    // "mss0", "mss2", "mss4", "msoo0", "msoo2", "msoo4", "100*p2", "100*p4", "100*p6":
    // expectation values of the operators (coefficients of M^k, P^k; the p_k times 100)
    std::vector<LabelledValue> magneticElements;
    // "E(SS)" = sum M^k <mss_k>, "E(SOO)" = sum M^k <msoo_k>, "E(EL-SO)" = sum P^k <p_k>
    std::vector<LabelledValue> magneticShifts;
};

// One entry per level of `solution`, in its order. Components missing from
// `operators` (a switch left them out) contribute 0. E(ave) + the shifts +
// the magnetic shifts = the level energy.
std::vector<FreeIonLevelContributions> freeIonContributions(const FreeIonOperators& operators,
                                                            const FreeIonWeights& weights,
                                                            const FreeIonSolution& solution);

}  // namespace orvane
