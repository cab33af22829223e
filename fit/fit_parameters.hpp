#pragma once
// The parameter table of a fit and its link to the parameter file.
//
// Names: the free-ion parameters as the parameter file writes them (EAVG, F2,
// F4, F6, ZETA, ALPHA, ..., T2, ..., M0, ..., P6); a crystal-field parameter
// as B followed by k and q ("B43"), its imaginary part "ImB43"; a correlation
// crystal-field parameter as its operator and k, q ("SCCFc21", "ImLCCFd43").
//
// Values are those of the model (engine/parameter_vector.hpp): F^k form,
// Wybourne B(k,q), in the parameter set's energy unit. The fit therefore
// takes parameter files in that form (Slater F^k rows, Wybourne crystal
// field, no "/cubiccf" or "/t2correction"); `fitRefusal` names what else a
// file holds.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/parameter_set.hpp"
#include "engine/parameter_vector.hpp"
#include "fit/fit_workspace.hpp"

namespace orvane {

std::string fitParameterName(ParameterId id);

// Why a fit cannot work on this set (std::nullopt: it can).
std::optional<std::string> fitRefusal(const ParameterSet& set);

// One row per parameter the set gives: EAVG, F2, F4, F6, ZETA, the other
// free-ion rows in file order, B(k,q) (and Im B(k,q), q > 0, for a complex
// fit), the correlation rows. Initial = Previous = Final_fit = the set's
// value; every row fixed except a multiple written in the file ("0.56M0"),
// which is linked to its master with that ratio; then the set's own fit
// section (ParameterSet::fitSetup) is applied.
std::vector<FitParameter> fitParameterRows(const ParameterSet& set, FitKind kind);

// Sets the option of a row (and the master of a linked one); throws
// UserError for an unknown name.
void setFitOption(std::vector<FitParameter>& rows, std::string_view name, std::int16_t option,
                  std::string_view master = {});

// The row named `name`, or nullptr.
const FitParameter* findFitParameter(const std::vector<FitParameter>& rows, std::string_view name);

// The ratio a linked row keeps to its master: linkRatio when set, otherwise
// initial / master initial (1 when the master's initial value is 0).
double linkRatioOf(const FitParameter& row, const FitParameter& master);

// The correlation crystal-field rows under a handling chosen in the options
// menu (applied when it is chosen): fixed; free; linked to the first
// correlation row of the same operator ("Internal link"); linked to B(k,q)
// of the same k, q and part ("Link CCF parameters with CF parameters"; fixed
// where the set has no such B(k,q)). Links keep the ratio of initial values.
void applyCorrelationHandling(std::vector<FitParameter>& rows, CorrelationFitHandling handling);

// A linked row and the row it finally follows (through chains of links), with
// the product of the ratios on the way.
struct LinkFollower {
    int row = 0;
    int master = 0;
    double ratio = 1.0;
};
std::vector<LinkFollower> linkFollowers(const std::vector<FitParameter>& rows);
// Sets every follower's Final_fit from its master's.
void applyLinkFollowers(const std::vector<LinkFollower>& followers, std::vector<FitParameter>& rows);

// The engine's parameters: `base` with every row's Final_fit.
ParameterVector fitParameterVector(const ParameterVector& base, const std::vector<FitParameter>& rows);

// The cell of `set` holding the parameter of that name (the names above),
// or nullptr when the set has no such row.
ParameterCell* findParameterCell(ParameterSet& set, std::string_view name);

// The set with the Final_fit values written into its rows (numbers with up to
// four decimals; a linked multiple keeps its "0.56M0" form) and the table's
// options and links as its fit section.
ParameterSet withFittedValues(const ParameterSet& set, const std::vector<FitParameter>& rows);

}  // namespace orvane
