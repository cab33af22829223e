#pragma once
// The option line of a parameter file: run switches found by substring
// search, so their order is free and other text between them is ignored.
#include <optional>
#include <string>
#include <string_view>

#include "core/user_error.hpp"

#include "engine/parameter_set.hpp"

namespace orvane {

// Reads every switch of the line; absent switches keep their defaults.
// "/Eunit=2", "/Eunit=3", "/Eunit=4" are tested in this order, so the later
// one wins when several stand on the line. "/IRnotation= n" outside 1..4 is
// ignored; the older "/mnuIRkoster", "/mnuIRmuliken", "/mnuIRuser",
// "/mnuIRcqn" give 1, 2, 3, 4 unless "/IRnotation= n" is present and valid.
RunSwitches readRunSwitches(std::string_view optionLine);

// The option line as the editor writes it: the switches in a fixed order,
// each switch that carries a value followed by a blank ("/noss/Eunit=3 /ccf").
// Switches at their default are left out; "/printhm" is never written (the
// options dialog supplies it for one run).
std::string runSwitchesText(const RunSwitches& switches);

// Refuses, with a UserError at `where` (the option line of the parameter file
// when known), a switch that is read and written but that no run applies:
// "/opimkpk", an alternative operator set for the M^k and P^k interactions,
// has no defined operators in this package.
void refuseUnsupportedSwitches(const RunSwitches& switches, const std::optional<FileLocation>& where);

// The largest spin multiplicity 2S+1 of f^n (f^7, S = 7/2).
inline constexpr int kMaxSpinMultiplicity = 8;

// A message when a valued switch of the line holds a value no run can use
// ("/spinmmin= 99999999999999": the multiplicity must be 1 to 8), else none.
std::optional<std::string> switchValueProblem(std::string_view optionLine);

// Unit label as used in messages: "cm^-1", "meV", "K", "mRy".
std::string_view energyUnitName(EnergyUnit unit);

}  // namespace orvane
