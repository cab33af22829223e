#pragma once
// The crystal-field rows of a parameter set as the parameter tools of params/
// see them (params::CfTable), and back: conversions, rotations and the
// superposition model work on the table, the parameter file keeps the rows.
#include <optional>
#include <string>

#include "engine/parameter_set.hpp"
#include "params/cf_conventions.hpp"
#include "params/cf_records.hpp"

namespace orvane {

// A cell of the file and the same cell as the parameter tools see it.
params::ValueCell valueCellOf(const ParameterCell& cell);
ParameterCell parameterCellOf(const params::ValueCell& cell);  // an empty text becomes "0"

params::CfNormalisation normalisationOf(CfConvention convention);
CfConvention conventionOf(params::CfNormalisation normalisation);

// Every row with both columns (a parameter file carries Re and Im).
params::CfTable crystalFieldTableOf(const ParameterSet& set);

// Replaces the set's crystal-field rows by the table's. The engine blocks
// states by MJ modulo the fold of the main axis, so every q of a non-zero
// row must be a multiple of it; after a rotation that is no longer so in
// general, and the fold becomes the greatest common divisor of those q.
// Returns the fold the set had when it was changed.
std::optional<int> storeCrystalFieldTable(ParameterSet& set, const params::CfTable& table);

// Changes the normalisation of the set's rows (params/cf_conventions.hpp) and
// sets the convention to the conversion's target. In real mode (complexMode
// false) the Im cells stay as they are. Throws UserError "Error in CFP
// conversion" when the rows are not in the conversion's source form.
void convertCrystalFieldConvention(ParameterSet& set, params::CfConversion conversion, bool complexMode = true);

// "Wybourne", "Stevens" or "unit operators".
std::string normalisationName(params::CfNormalisation normalisation);

}  // namespace orvane
