#pragma once
// The option line of a parameter file: run switches found by substring
// search, so their order is free and other text between them is ignored.
#include <string>
#include <string_view>

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

// Unit label as used in messages: "cm^-1", "meV", "K", "mRy".
std::string_view energyUnitName(EnergyUnit unit);

}  // namespace orvane
