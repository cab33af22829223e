#include "params/energy_units.hpp"

#include "core/text.hpp"
#include "core/user_error.hpp"
#include "params/value_cell.hpp"

namespace orvane::params {

double unitInWavenumbers(EnergyUnitCode unit) {
    switch (unit) {
        case EnergyUnitCode::Wavenumber: return 1.0;
        case EnergyUnitCode::MilliElectronVolt: return 8.06573;
        case EnergyUnitCode::Kelvin: return 0.69502;
        case EnergyUnitCode::MilliRydberg: return 109.7398;
    }
    return 1.0;
}

std::string unitName(EnergyUnitCode unit) {
    switch (unit) {
        case EnergyUnitCode::Wavenumber: return "cm^-1 (or kayser)";
        case EnergyUnitCode::MilliElectronVolt: return "meV";
        case EnergyUnitCode::Kelvin: return "K";
        case EnergyUnitCode::MilliRydberg: return "mRy";
    }
    return "";
}

std::string unitHeading(EnergyUnitCode unit) {
    switch (unit) {
        case EnergyUnitCode::Wavenumber: return "Value (cm^-1)";
        case EnergyUnitCode::MilliElectronVolt: return "Value (meV)";
        case EnergyUnitCode::Kelvin: return "Value (K)";
        case EnergyUnitCode::MilliRydberg: return "Value (mRy)";
    }
    return "";
}

std::optional<EnergyUnitCode> unitFromCode(int code) {
    if (code < 1 || code > 4) return std::nullopt;
    return static_cast<EnergyUnitCode>(code);
}

std::optional<EnergyUnitCode> unitFromName(const std::string& name) {
    if (iequals(name, "cm-1") || iequals(name, "cm^-1") || iequals(name, "kayser") || name == "1")
        return EnergyUnitCode::Wavenumber;
    if (iequals(name, "meV") || name == "2") return EnergyUnitCode::MilliElectronVolt;
    if (iequals(name, "K") || name == "3") return EnergyUnitCode::Kelvin;
    if (iequals(name, "mRy") || name == "4") return EnergyUnitCode::MilliRydberg;
    return std::nullopt;
}

std::optional<UnitScope> scopeFromName(const std::string& name) {
    if (iequals(name, "all")) return UnitScope::All;
    if (iequals(name, "cfp")) return UnitScope::CrystalField;
    if (iequals(name, "major") || iequals(name, "MajorFI")) return UnitScope::MajorFreeIon;
    if (iequals(name, "minor") || iequals(name, "MinorFI")) return UnitScope::MinorFreeIon;
    return std::nullopt;
}

std::optional<double> unitConversionFactor(EnergyUnitCode from, EnergyUnitCode to) {
    if (from == to) return std::nullopt;
    if (from == EnergyUnitCode::Wavenumber) return 1.0 / unitInWavenumbers(to);
    if (to == EnergyUnitCode::Wavenumber) return unitInWavenumbers(from);
    return std::nullopt;
}

namespace {

void rescaleAll(std::vector<ValueCell>& cells, double f) {
    for (ValueCell& cell : cells) rescaleCell(cell, f);
}

void rescaleCrystalField(CfTable& table, double f) {
    for (CfRow& row : table.rows) {
        rescaleCell(row.re, f);
        if (table.complexMode) rescaleCell(row.im, f);
    }
}

}  // namespace

void convertEnergyUnit(ParameterValues& values, EnergyUnitCode to, UnitScope scope) {
    const auto f = unitConversionFactor(values.unit, to);
    if (!f)
        throw UserError("Error in energy unit conversion",
                        "No conversion from " + unitName(values.unit) + " to " + unitName(to) +
                            " (convert through cm^-1).");
    if (scope == UnitScope::All || scope == UnitScope::CrystalField)
        rescaleCrystalField(values.crystalField, *f);
    if (scope == UnitScope::All || scope == UnitScope::MajorFreeIon)
        rescaleAll(values.mainFreeIon, *f);
    if (scope == UnitScope::All || scope == UnitScope::MinorFreeIon)
        rescaleAll(values.otherFreeIon, *f);
    values.unit = to;
}

std::string unitConversionQuestion(EnergyUnitCode from, EnergyUnitCode to) {
    return "You are going to convert the energy unit from " + unitName(from) + " to " +
           unitName(to) + ".\n" +
           "You may click No button to change unit name only without conversion of parameter "
           "values.";
}

}  // namespace orvane::params
