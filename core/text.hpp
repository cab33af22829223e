#pragma once
// Small text helpers shared by every reader of user input and of text files.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

std::string_view trim(std::string_view text);  // blanks, tabs, CR, LF at both ends
std::string toUpper(std::string_view text);
std::string toLower(std::string_view text);
bool iequals(std::string_view a, std::string_view b);  // ASCII case-blind equality
bool icontains(std::string_view haystack, std::string_view needle);

// Splits on runs of blanks and tabs; no empty fields.
std::vector<std::string> splitFields(std::string_view line);

// The reading of a numeric answer: every ',' and ';' counts as a blank, then
// the line is split into fields.
std::vector<std::string> splitAnswerFields(std::string_view line);

// A whole field as a finite number ("1.5", "-2", "+3e2", ".5"); std::nullopt for
// anything else, including NaN, infinities and trailing characters.
std::optional<double> parseNumber(std::string_view field);
// A whole field as an integer that fits an int ("12", "-3", "+4").
std::optional<int> parseInteger(std::string_view field);

// The numeric prefix of a text, as the classic BASIC Val reads it: leading
// blanks skipped, then the longest prefix that is a number; 0 when there is
// none. Used where a file is allowed to carry trailing text after a value.
// Returns std::nullopt only for a prefix that overflows to infinity.
std::optional<double> leadingNumber(std::string_view text, std::size_t* consumed = nullptr);

// Text to the right of the first '=', or the whole text when there is none.
std::string_view rightOfFirstEquals(std::string_view line);

// Every ',' and ';' replaced by a blank.
std::string commasToBlanks(std::string_view text);

}  // namespace orvane
