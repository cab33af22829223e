#pragma once
// The named ("other") free-ion parameters of a parameter file: two-body
// configuration interaction (ALPHA, BETA, GAMMA), three-body T^i, Marvin
// integrals M^k (spin-spin and spin-other-orbit) and the electrostatically
// correlated spin-orbit P^k. Values are in the set's energy unit.
//
// Defaults when a row is absent or its value blank: 0, except
//   M2 = 0.56 M0, M4 = 0.38 M0, P4 = 0.75 P2, P6 = 0.5 P2.
// A value of M2 or M4 may be written as a multiple of M0 ("0.56M0") and of P4
// or P6 as a multiple of P2 (" 0.75P2", "0.50P2"): the number times the M0 or
// P2 of the set (the value of its M0/P2 row, wherever that row stands).
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/parameter_set.hpp"

namespace orvane {

// The accepted names in the engine's order; names are compared after
// conversion to upper case, exactly.
inline constexpr std::array<std::string_view, 16> kOtherFreeIonNames = {
    "ALPHA", "BETA", "GAMMA", "T2", "T2'", "T3", "T4", "T6",
    "T7",    "T8",   "M0",    "M2", "M4",  "P2", "P4", "P6"};

// Index into kOtherFreeIonNames, or std::nullopt for an unknown name.
std::optional<std::size_t> otherFreeIonIndex(std::string_view name);

// How a value cell of a named parameter is written.
enum class OtherFreeIonForm { Blank, Number, MultipleOfM0, MultipleOfP2 };

struct OtherFreeIonCell {
    OtherFreeIonForm form = OtherFreeIonForm::Blank;
    double number = 0.0;  // the value, or the factor of a multiple
};

// Reads the cell of parameter `name` (a known name): blank, a number (with an
// optional "(uncertainty)"), or "<number>M0" for M2/M4 and "<number>P2" for
// P4/P6 (letters in either case, blanks ignored). std::nullopt otherwise.
std::optional<OtherFreeIonCell> readOtherFreeIonCell(std::string_view name, std::string_view text);

// The cell that stands for the default of a blank M2, M4, P4 or P6 ("0.56M0",
// "0.38M0", "0.75P2", "0.5P2"); std::nullopt for the other names.
std::optional<std::string> defaultMultipleText(std::string_view name);

struct OtherFreeIonValues {
    std::array<double, kOtherFreeIonNames.size()> value{};
    std::array<bool, kOtherFreeIonNames.size()> fromDefault{};  // row absent or blank
    double operator[](std::string_view name) const;  // a known name; 0 otherwise
};

// The values of all sixteen parameters from the rows of a set (a later row of
// the same name replaces an earlier one). Throws UserError under "Error in
// Main": "Invalid Other Free-ion Parameter name: " + name for an unknown name,
// and a message naming the row for a value that cannot be read.
OtherFreeIonValues resolveOtherFreeIon(const std::vector<FreeIonRow>& rows);

}  // namespace orvane
