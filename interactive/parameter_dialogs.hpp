#pragma once
// The editor's questions about parameters: the adoption of a cubic
// approximation, the conversion of every value to another energy unit, the
// coordination-factor calculator, the adoption of orthogonalised electrostatic
// parameters and the comparison of calculated with observed energies.
#include <filesystem>

#include "interactive/asker.hpp"
#include "core/log_book.hpp"
#include "engine/configuration_tables.hpp"
#include "engine/parameter_set.hpp"
#include "params/cubic_approximation.hpp"
#include "params/energy_units.hpp"

namespace orvane::params {

// Computes the cubic set from the Wybourne rows, logs the listing, asks
// "Adopt the above crystal field parameters?" and on Yes replaces the rows.
// Returns the set.
std::vector<CubicParameter> cubicApproximationAsking(CfTable& table, CfNormalisation normalisation,
                                                     CubicAxis axis, Asker& asker, LogBook& log);

// The "all" unit command: asks the question; Yes converts every value, No
// changes the unit name only. Returns true when values were converted.
bool convertAllAsking(ParameterValues& values, EnergyUnitCode to, Asker& asker);

// Asks "k q theta phi" until an empty answer and logs each coordination factor
// (Wybourne and Stevens type).
void runCoordinationFactorCalculator(Asker& asker, LogBook& log);

}  // namespace orvane::params

namespace orvane {

// Logs "Conversion of two-particle electrostatic interaction parameters for the
// orthogonalised operators:", one line per parameter, "Two-particle
// electrostatic interaction parameters for the orthogonalised operators have
// been converted into the Logbook." and "Warning - They are not suitable input
// parameters for this package!", then asks "Adopt them into this input form?".
// Yes writes them into the set (the three electrostatic rows as Racah E^k, and
// the ALPHA, BETA, GAMMA rows) and returns true. `tables` are those of the
// set's configuration.
bool convertToOrthogonalElectrostaticAsking(ParameterSet& set, const EngineTables& tables, Asker& asker,
                                            LogBook& log);
// The same with the tables of the set's configuration loaded from a table
// directory; throws UserError "Error in parameter conversion" for an electron
// count outside 1..13 (an empty or a full shell has no electrostatic term).
bool convertToOrthogonalElectrostaticAsking(ParameterSet& set, const std::filesystem::path& tableDirectory,
                                            Asker& asker, LogBook& log);

// Asks "GIVE FILE NAME FOR getting Torvelde's experimental energies from" and
// "GIVE FILE NAME FOR getting energies  from this Orvane program" (an energy
// file, see report/energy_file.hpp), logs the table. Returns false when a
// question is cancelled; throws UserError for an unreadable or malformed file.
bool compareExperimentAsking(Asker& asker, LogBook& log);

}  // namespace orvane
