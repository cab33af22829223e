#pragma once
// Number-to-text forms of everything Orvane prints.
//
// formatNumber follows the picture formats of classic BASIC's Format function:
// '0' is a digit that is always shown, '#' a digit shown when significant and
// otherwise replaced by a blank (so that columns line up), '.' the decimal
// point, a literal text elsewhere is copied, and ';' separates the section for
// non-negative values from the section for negative ones (which then carries its
// own sign). Values are rounded half away from zero to the digits of the
// picture; a value too wide for the picture is printed in full, never cut.
//   formatNumber(3.14159, "######0.0000") == "      3.1416"
//   formatNumber(-2, " #0;-#0") == "-2", formatNumber(2, " #0;-#0") == "  2"
// Details of the rules:
// - The value is first taken to 15 significant digits (as the runtime holds
//   it), then rounded half away from zero: 2.675 with "###0.00" is "   2.68".
// - An unused '#' before the point becomes a blank when only blanks stand
//   before it in the picture (column padding) and vanishes after any other
//   literal text, so "-#0" keeps its sign next to the digits. From the
//   leftmost '0' rightwards every integer place is printed.
// - Without a negative section a negative value gets a '-' directly before its
//   first digit, in place of one padding blank when there is one:
//   formatNumber(-3.14159, "######0.0000") == "     -3.1416" (same width).
// - A value that rounds to zero is printed by the first section without sign
//   (formatNumber(-0.2, " #0;-#0") == "  0", -1e-8 with "#0.000000" is " 0.000000").
// - Optional fraction digits '#' that are trailing zeros vanish (they do not
//   become blanks); when no fraction digit remains the point vanishes too:
//   formatNumber(1.5, "###0.0#") == "   1.5", formatNumber(3, "#0.#") == " 3".
// - Scientific pictures "0.0000e+##": the mantissa has as many integer digits
//   as placeholders before its point; "e+" always prints the exponent's sign,
//   "e-" only a minus; the exponent has at least as many digits as it has
//   placeholders, padded with zeros: formatNumber(12345.678, "0.0000e+##") ==
//   "1.2346e+04".
// - NaN and infinities print as "NaN", "Inf", "-Inf".
#include <ctime>
#include <string>
#include <string_view>

namespace orvane {

std::string formatNumber(double value, std::string_view picture);

// Appends formatNumber(value, picture) to `out`. Result files print millions
// of numbers in a few plain column pictures (blanks, '#', '0', '.', '0's and a
// literal tail, e.g. "#0.000000 "); those are rendered from an integer count
// of the last decimal place, and values within 1e-5 of a rounding half (where
// the 15-digit rule decides) and every other picture go through formatNumber.
void appendNumber(std::string& out, double value, std::string_view picture);

// Appends the value with `decimals` places, correctly rounded like
// printf's "%.*f" (round half to even on the exact binary value); the fast
// path serves |value| * 10^decimals < 1e10 away from a rounding half.
void appendFixed(std::string& out, double value, int decimals);

// The runtime's general number-to-text form (classic BASIC's Str$): up to 15
// significant digits, no trailing zeros, no zero before the decimal point, a
// leading blank for non-negative values (the place of the minus sign), and E
// notation below 1e-5 and from 1e15 on: " 1", "-.5", " .25", " 1.2E-06", " 1E+15".
std::string generalNumber(double value);

// A doubled angular momentum printed as "7/2" for 7 and "3" for 6 (the "##/2"
// picture: half-integers as a fraction over 2, integers plain).
std::string formatTwiceJ(int twiceJ);

// "YYYY-MM-DD" and "hh:mm:ss" of a local time.
std::string formatDate(const std::tm& time);
std::string formatTime(const std::tm& time);
std::tm localNow();

}  // namespace orvane
