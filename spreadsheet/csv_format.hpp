#pragma once
// Comma-separated text (RFC 4180): fields separated by "," (or by ";" or tab
// when the first line holds no comma outside quotes), a field in double
// quotes may hold the separator, line breaks and doubled quotes ("""").
// Reading: an unquoted field that is a whole number becomes a number cell,
// any other field text (unquoted text without its blanks at both ends).
// Writing: "," between fields, numbers bare; text in quotes when it holds
// ",", ";", a quote, a blank, a tab or a line break, or would read back as a
// number.
#include <string>
#include <string_view>

#include "spreadsheet/spreadsheet.hpp"

namespace orvane {

// Throws SpreadsheetError for a quote left open (naming the row where it opened).
Spreadsheet parseCsv(std::string_view text, const std::string& fileName);
std::string csvText(const Spreadsheet& sheet);

}  // namespace orvane
