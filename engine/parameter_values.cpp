#include "engine/parameter_values.hpp"

#include "engine/crystal_field_table.hpp"

namespace orvane {

params::ParameterValues parameterValuesOf(const ParameterSet& set) {
    params::ParameterValues values;
    values.crystalField = crystalFieldTableOf(set);
    for (const FreeIonRow& row : set.mainFreeIon) values.mainFreeIon.push_back(valueCellOf(row.cell));
    for (const FreeIonRow& row : set.otherFreeIon) values.otherFreeIon.push_back(valueCellOf(row.cell));
    values.unit = static_cast<params::EnergyUnitCode>(static_cast<int>(set.switches.energyUnit));
    return values;
}

std::optional<int> storeParameterValues(ParameterSet& set, const params::ParameterValues& values) {
    for (std::size_t i = 0; i < set.mainFreeIon.size() && i < values.mainFreeIon.size(); ++i)
        set.mainFreeIon[i].cell = parameterCellOf(values.mainFreeIon[i]);
    for (std::size_t i = 0; i < set.otherFreeIon.size() && i < values.otherFreeIon.size(); ++i)
        set.otherFreeIon[i].cell = parameterCellOf(values.otherFreeIon[i]);
    set.switches.energyUnit = static_cast<EnergyUnit>(static_cast<int>(values.unit));
    return storeCrystalFieldTable(set, values.crystalField);
}

}  // namespace orvane
