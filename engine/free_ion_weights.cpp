#include "engine/free_ion_weights.hpp"

#include "engine/engine_errors.hpp"
#include "engine/other_free_ion.hpp"

namespace orvane {

FreeIonWeights freeIonWeightsOf(const ParameterSet& set, bool conjugate, std::vector<std::string>* notIncluded) {
    const auto& rows = set.mainFreeIon;
    for (const auto& row : rows) requireFiniteParameter(row.cell.value, "free-ion parameter " + row.name);
    const auto slater =
        slaterUpperIntegrals(set.slaterType, {rows[1].cell.value, rows[2].cell.value, rows[3].cell.value});
    const auto other = resolveOtherFreeIon(set.otherFreeIon);
    const double zetaSign = conjugate ? -1.0 : 1.0;
    FreeIonWeights weights{{"EAVG", rows[0].cell.value}, {"F2", slater[0]},           {"F4", slater[1]},
                           {"F6", slater[2]},            {"ZETA", zetaSign * rows[4].cell.value},
                           {"ALPHA", other["ALPHA"]},    {"BETA", other["BETA"]},     {"GAMMA", other["GAMMA"]}};
    for (std::size_t i = 0; i < kOtherFreeIonNames.size(); ++i) {
        const std::string name(kOtherFreeIonNames[i]);
        requireFiniteParameter(other.value[i], name);
        if (weights.count(name) == 0 && other.value[i] != 0.0 && notIncluded) notIncluded->push_back(name);
    }
    return weights;
}

}  // namespace orvane
