#pragma once
// The number in a parameter cell. A cell holds a plain number ("751.7",
// "-2.5e2", ".5") or a number followed directly by its uncertainty in
// parentheses ("751.7(0.4)"); both give the number. Inner blanks are not part
// of a number: callers that accept "1 234.5" remove them first.
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

// The value of a cell, or std::nullopt when the text is not one of the two
// forms or the number is not finite.
std::optional<double> readCellNumber(std::string_view text);

// The text without any blank or tab ("1 234.5" -> "1234.5").
std::string withoutBlanks(std::string_view text);

// Shortest text that reads back as exactly `value` ("0.5", "-218", "1e-07").
std::string exactNumberText(double value);

}  // namespace orvane
