#include "engine/free_ion_weights.hpp"

#include "engine/parameter_registry.hpp"

#include "engine/engine_errors.hpp"
#include "engine/other_free_ion.hpp"
#include "engine/t2_correction.hpp"

namespace orvane {

namespace {

// Free-ion parameters other than zeta whose operators change sign in the
// conjugate shell (engine/parameter_registry.hpp).
bool changesSignInConjugate(const std::string& name) {
    const auto id = parameterIdOf(name);
    return id && changesSignInConjugateShell(*id);
}

}  // namespace

FreeIonWeights freeIonWeightsOf(const ParameterSet& set, bool conjugate, std::vector<std::string>* /*notIncluded*/) {
    const auto& rows = set.mainFreeIon;
    for (const auto& row : rows) requireFiniteParameter(row.cell.value, "free-ion parameter " + row.name);
    auto slater =
        slaterUpperIntegrals(set.slaterType, {rows[1].cell.value, rows[2].cell.value, rows[3].cell.value});
    const auto other = resolveOtherFreeIon(set.otherFreeIon);
    const double conjugateSign = conjugate ? -1.0 : 1.0;
    FreeIonWeights weights{{"EAVG", rows[0].cell.value}, {"ZETA", conjugateSign * rows[4].cell.value}};
    for (std::size_t i = 0; i < kOtherFreeIonNames.size(); ++i) {
        const std::string name(kOtherFreeIonNames[i]);
        requireFiniteParameter(other.value[i], name);
        weights[name] = (changesSignInConjugate(name) ? conjugateSign : 1.0) * other.value[i];
    }
    if (set.switches.t2Correction) {
        // T2 then multiplies t2' of the actual shell; its e3 part goes into F^k.
        const auto correction = t2SlaterCorrection(set.electronCount, weights["T2"]);
        for (int k = 0; k < 3; ++k) slater[k] += correction.deltaF[k];
        weights["T2'"] += conjugateSign * weights["T2"];
        weights["T2"] = 0.0;
    }
    weights["F2"] = slater[0];
    weights["F4"] = slater[1];
    weights["F6"] = slater[2];
    return weights;
}

}  // namespace orvane
