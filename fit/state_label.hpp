#pragma once
// Text form of state labels: "4I9/2", "3H4", "2D1-5/2" (a term ending in a
// digit is joined to J by "-"), optionally followed by the irreducible
// representation in brackets: "4I9/2(3/2)".
#include <optional>
#include <string>
#include <string_view>

#include "fit/fit_workspace.hpp"

namespace orvane {

// std::nullopt for a text that is not a label (an empty text is the empty label).
std::optional<StateLabel> parseStateLabel(std::string_view text);
std::string stateLabelText(const StateLabel& label);

}  // namespace orvane
