#pragma once
// Energy units of a parameter set and their conversions.
// Constants (value in cm^-1 of one unit): 1 meV = 8.06573, 1 K = 0.69502,
// 1 mRy = 109.7398 -- these exact decimals, kept for compatibility with files
// written by the editor, not the modern CODATA values.
// Only conversions with cm^-1 at one end exist (1->2, 1->3, 1->4, 2->1, 3->1, 4->1).
#include <optional>
#include <string>
#include <vector>

#include "params/cf_records.hpp"

namespace orvane::params {

// Everything a unit conversion may touch: the crystal-field rows and the
// free-ion rows (the five main rows and the named other rows).
struct ParameterValues {
    CfTable crystalField;
    std::vector<ValueCell> mainFreeIon;
    std::vector<ValueCell> otherFreeIon;
    EnergyUnitCode unit = EnergyUnitCode::Wavenumber;
};

enum class UnitScope { All, CrystalField, MajorFreeIon, MinorFreeIon };

double unitInWavenumbers(EnergyUnitCode unit);
// "cm^-1 (or kayser)", "meV", "K", "mRy"
std::string unitName(EnergyUnitCode unit);
// "Value (cm^-1)", "Value (meV)", "Value (K)", "Value (mRy)"
std::string unitHeading(EnergyUnitCode unit);
// Code from 1..4; std::nullopt otherwise.
std::optional<EnergyUnitCode> unitFromCode(int code);
// Code from a command-line name: "cm-1" (or "cm^-1", "kayser"), "meV", "K", "mRy".
std::optional<EnergyUnitCode> unitFromName(const std::string& name);
std::optional<UnitScope> scopeFromName(const std::string& name);  // all|cfp|major|minor

// Factor that multiplies values in `from` to give values in `to`; std::nullopt
// for a pair the editor does not offer (neither end cm^-1, or from == to).
std::optional<double> unitConversionFactor(EnergyUnitCode from, EnergyUnitCode to);

// Rescales the values of the scope (value by f, uncertainty by |f|) and sets the
// unit. Throws UserError for a pair that is not offered.
void convertEnergyUnit(ParameterValues& values, EnergyUnitCode to, UnitScope scope);

// The Yes/No question of the "all" conversions.
std::string unitConversionQuestion(EnergyUnitCode from, EnergyUnitCode to);

}  // namespace orvane::params
