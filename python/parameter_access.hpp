#pragma once
// The parameters of a set by name, as scripts address them (docs/python.md):
//   the five main free-ion rows by the names the file gives them ("EAVG",
//   "F2", "F4", "F6", "ZETA"), the named free-ion parameters ("ALPHA", ...,
//   "T2'", ..., "P6": engine/other_free_ion.hpp), and the crystal-field rows
//   as "B<k><q>" and "ImB<k><q>" ("B43", "ImB43", "B122"), k = 0..12, 0 <= q <= k.
// Names are compared without regard to case. Values are those of the file:
// its energy unit and its crystal-field convention (Wybourne, Stevens or
// unit operators); a named parameter written as a multiple ("0.56M0") or
// left out reads as the value the engine applies.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/parameter_set.hpp"

namespace orvane {

// The names the set gives a value: main rows, named rows in file order,
// B<k><q> of every crystal-field row and ImB<k><q> where Im is not 0.
std::vector<std::string> parameterNames(const ParameterSet& set);

// std::nullopt for a name that is none of the above.
std::optional<double> parameterValue(const ParameterSet& set, std::string_view name);

// Writes the value into the row of that name, adding a named or crystal-field
// row the set lacks. Throws UserError naming an unknown parameter or a
// non-finite value.
void setParameterValue(ParameterSet& set, std::string_view name, double value);

}  // namespace orvane
