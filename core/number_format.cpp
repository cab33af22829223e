#include "core/number_format.hpp"

#include "core/local_time.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace orvane {
namespace {

// A non-negative decimal number as a digit string: value = 0.d1 d2 d3 ... times
// 10^pointPos, i.e. the first pointPos digits stand before the decimal point
// (pointPos may be negative or exceed the digit count). Zero has no digits.
struct Decimal {
    std::string digits;
    int pointPos = 0;
};

// The runtime works on 15 significant decimal digits: the magnitude is first
// taken to that precision so that 2.675 rounds to 2.68 as the user reads it,
// not to 2.67 as its binary neighbour would.
Decimal toDecimal15(double magnitude) {
    Decimal d;
    if (magnitude == 0.0) return d;
    // "d.dddddddddddddde[+-]xx", correctly rounded like printf's %.14e.
    char buffer[64];
    const auto end = fmt::format_to_n(buffer, sizeof buffer - 1, "{:.14e}", magnitude).out;
    const std::string_view text(buffer, static_cast<std::size_t>(end - buffer));
    const auto ePos = text.find('e');
    d.digits.reserve(15);
    for (std::size_t i = 0; i < ePos; ++i)
        if (text[i] != '.') d.digits.push_back(text[i]);
    int exponent = 0;
    for (std::size_t i = ePos + 2; i < text.size(); ++i) exponent = 10 * exponent + (text[i] - '0');
    d.pointPos = (text[ePos + 1] == '-' ? -exponent : exponent) + 1;
    while (!d.digits.empty() && d.digits.back() == '0') d.digits.pop_back();
    return d;
}

// Keeps `count` leading digits (count may be <= 0), rounding half away from
// zero; a carry out of the first digit moves the point one place.
Decimal roundToDigits(const Decimal& d, int count) {
    if (count >= static_cast<int>(d.digits.size())) return d;
    Decimal r;
    if (count < 0) return r;  // far below the last kept place: rounds to zero
    const bool up = d.digits[static_cast<std::size_t>(count)] >= '5';
    r.digits = d.digits.substr(0, static_cast<std::size_t>(count));
    r.pointPos = d.pointPos;
    if (up) {
        int i = count - 1;
        while (i >= 0 && r.digits[static_cast<std::size_t>(i)] == '9') {
            r.digits[static_cast<std::size_t>(i)] = '0';
            --i;
        }
        if (i >= 0) {
            ++r.digits[static_cast<std::size_t>(i)];
        } else {
            r.digits.insert(r.digits.begin(), '1');
            ++r.pointPos;
        }
    }
    while (!r.digits.empty() && r.digits.back() == '0') r.digits.pop_back();
    if (r.digits.empty()) r.pointPos = 0;
    return r;
}

// Rounds to `decimals` places after the point.
Decimal roundToDecimals(const Decimal& d, int decimals) {
    if (d.digits.empty()) return d;
    return roundToDigits(d, d.pointPos + decimals);
}

// Digit at decimal place `place` counted from the point: place 0 is the units,
// 1 the tens, ..., -1 the tenths.
char digitAt(const Decimal& d, int place) {
    const int index = d.pointPos - 1 - place;
    if (index < 0 || index >= static_cast<int>(d.digits.size())) return '0';
    return d.digits[static_cast<std::size_t>(index)];
}

// Integer part of the number without leading zeros ("" for values below 1).
std::string integerDigits(const Decimal& d) {
    std::string s;
    for (int place = d.pointPos - 1; place >= 0; --place) s.push_back(digitAt(d, place));
    return s;
}

bool isDigitPlaceholder(char c) { return c == '#' || c == '0'; }

std::vector<std::string_view> splitSections(std::string_view picture) {
    std::vector<std::string_view> sections;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= picture.size(); ++i) {
        if (i == picture.size() || picture[i] == ';') {
            sections.push_back(picture.substr(start, i - start));
            start = i + 1;
        }
    }
    return sections;
}

// Position of the exponent marker of a scientific picture ("0.00e+##"): an 'e'
// or 'E' followed by '+' or '-'; npos for a fixed-point picture.
std::size_t exponentMarker(std::string_view section) {
    for (std::size_t i = 0; i + 1 < section.size(); ++i)
        if ((section[i] == 'e' || section[i] == 'E') &&
            (section[i + 1] == '+' || section[i + 1] == '-'))
            return i;
    return std::string_view::npos;
}

// Places of a fixed-point picture: how many digit placeholders stand before
// and after the decimal point.
struct FixedLayout {
    std::size_t pointIndex = std::string_view::npos;  // index of '.' or npos
    int integerPlaces = 0;
    int fractionPlaces = 0;
};

FixedLayout layoutOf(std::string_view section) {
    FixedLayout layout;
    layout.pointIndex = section.find('.');
    for (std::size_t i = 0; i < section.size(); ++i) {
        if (!isDigitPlaceholder(section[i])) continue;
        if (layout.pointIndex == std::string_view::npos || i < layout.pointIndex)
            ++layout.integerPlaces;
        else
            ++layout.fractionPlaces;
    }
    return layout;
}

// Renders the integer part of a fixed-point section (everything before the
// decimal point). Digits fill the placeholders from the right; digits that do
// not fit go in front of the leftmost placeholder. From the leftmost '0'
// placeholder rightwards every place is forced. An unused '#' becomes a blank
// when only blanks stand before it in the picture (the padding of a column),
// and vanishes after any other literal text (so "-#0" keeps its sign next to
// the digits). `autoMinus` puts a '-' directly before the first digit, taking
// the place of one padding blank when there is one.
std::string renderIntegerPart(std::string_view part, const std::string& digits, bool autoMinus) {
    std::vector<std::size_t> slots;
    for (std::size_t i = 0; i < part.size(); ++i)
        if (isDigitPlaceholder(part[i])) slots.push_back(i);
    const int n = static_cast<int>(slots.size());
    int firstForced = n;  // index in slots of the leftmost '0'
    for (int s = 0; s < n; ++s)
        if (part[slots[static_cast<std::size_t>(s)]] == '0') { firstForced = s; break; }

    std::string out;
    bool onlyBlanksSoFar = true;
    bool signPlaced = !autoMinus;
    int slot = 0;
    const int len = static_cast<int>(digits.size());
    auto placeSign = [&]() {
        if (signPlaced) return;
        if (!out.empty() && out.back() == ' ') out.back() = '-';
        else out.push_back('-');
        signPlaced = true;
    };
    for (std::size_t i = 0; i < part.size(); ++i) {
        const char c = part[i];
        if (!isDigitPlaceholder(c)) {
            out.push_back(c);
            if (c != ' ') onlyBlanksSoFar = false;
            continue;
        }
        const int fromRight = n - 1 - slot;  // place value of this slot
        if (slot == 0 && len > n) {
            placeSign();
            out.append(digits, 0, static_cast<std::size_t>(len - n + 1));
        } else if (fromRight < len) {
            placeSign();
            out.push_back(digits[static_cast<std::size_t>(len - 1 - fromRight)]);
        } else if (slot >= firstForced) {
            placeSign();
            out.push_back('0');
        } else if (onlyBlanksSoFar) {
            out.push_back(' ');
        }
        ++slot;
    }
    return out;
}

// Renders the fraction part (the text after the decimal point, '.' excluded).
// '0' places always show their digit; '#' places show theirs unless it is a
// trailing zero, in which case it vanishes. Returns whether any digit was shown.
std::string renderFractionPart(std::string_view part, const Decimal& d, bool& anyDigit) {
    // The last place whose digit must appear: the last '0' placeholder or the
    // last non-zero digit, whichever lies further right.
    int lastShown = 0;
    int place = 0;
    for (char c : part) {
        if (!isDigitPlaceholder(c)) continue;
        ++place;
        if (c == '0' || digitAt(d, -place) != '0') lastShown = place;
    }
    std::string out;
    anyDigit = false;
    place = 0;
    for (char c : part) {
        if (!isDigitPlaceholder(c)) {
            out.push_back(c);
            continue;
        }
        ++place;
        if (place <= lastShown) {
            out.push_back(digitAt(d, -place));
            anyDigit = true;
        }
    }
    return out;
}

std::string formatFixed(std::string_view section, const Decimal& rounded, bool autoMinus) {
    const FixedLayout layout = layoutOf(section);
    const std::string_view integerPart =
        layout.pointIndex == std::string_view::npos ? section : section.substr(0, layout.pointIndex);
    std::string out = renderIntegerPart(integerPart, integerDigits(rounded), autoMinus);
    if (layout.pointIndex != std::string_view::npos) {
        bool anyDigit = false;
        const std::string fraction =
            renderFractionPart(section.substr(layout.pointIndex + 1), rounded, anyDigit);
        if (anyDigit) out.push_back('.');
        out += fraction;
        if (autoMinus && out.find('-') == std::string::npos) {
            // No integer digit was printed (picture "#.##"): the sign goes
            // directly before the point.
            const auto pointAt = out.find('.');
            if (pointAt != std::string::npos) {
                if (pointAt > 0 && out[pointAt - 1] == ' ') out[pointAt - 1] = '-';
                else out.insert(pointAt, 1, '-');
            }
        }
    }
    return out;
}

// Scientific picture such as "0.0000e+##": the mantissa has as many integer
// digits as it has placeholders before the point (at least one) and its
// fraction places; the exponent carries '+' or '-' after "e+" (only '-' after
// "e-") and at least as many digits as its placeholders, padded with zeros.
std::string formatScientific(std::string_view section, std::size_t marker, const Decimal& value,
                             bool autoMinus) {
    const std::string_view mantissaPicture = section.substr(0, marker);
    const FixedLayout layout = layoutOf(mantissaPicture);
    const int integerPlaces = std::max(1, layout.integerPlaces);
    const int significant = integerPlaces + layout.fractionPlaces;

    Decimal mantissa;
    int exponent = 0;
    if (!value.digits.empty()) {
        Decimal r = roundToDigits(value, significant);
        exponent = r.pointPos - integerPlaces;
        mantissa = r;
        mantissa.pointPos = integerPlaces;
    }
    std::string out = formatFixed(mantissaPicture, mantissa, autoMinus);

    const char eChar = section[marker];
    const char signRule = section[marker + 1];
    std::size_t i = marker + 2;
    int exponentPlaces = 0;
    while (i < section.size() && isDigitPlaceholder(section[i])) {
        ++exponentPlaces;
        ++i;
    }
    out.push_back(eChar);
    if (exponent < 0) out.push_back('-');
    else if (signRule == '+') out.push_back('+');
    std::string expDigits = std::to_string(exponent < 0 ? -exponent : exponent);
    if (static_cast<int>(expDigits.size()) < exponentPlaces)
        expDigits.insert(0, static_cast<std::size_t>(exponentPlaces) - expDigits.size(), '0');
    out += expDigits;
    out.append(section.substr(i));  // literal text after the exponent
    return out;
}

// Rounds the magnitude as the section would print it, so that the choice of
// section can see a value that rounds to zero.
Decimal roundForSection(std::string_view section, const Decimal& magnitude) {
    const auto marker = exponentMarker(section);
    if (marker != std::string_view::npos) {
        const FixedLayout layout = layoutOf(section.substr(0, marker));
        return roundToDigits(magnitude, std::max(1, layout.integerPlaces) + layout.fractionPlaces);
    }
    return roundToDecimals(magnitude, layoutOf(section).fractionPlaces);
}

std::string formatSection(std::string_view section, const Decimal& magnitude, bool autoMinus) {
    const auto marker = exponentMarker(section);
    if (marker != std::string_view::npos)
        return formatScientific(section, marker, magnitude, autoMinus);
    return formatFixed(section, roundToDecimals(magnitude, layoutOf(section).fractionPlaces),
                       autoMinus);
}

std::string twoDigits(int value) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%02d", value);
    return buffer;
}

}  // namespace

std::string formatNumber(double value, std::string_view picture) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value > 0 ? "Inf" : "-Inf";
    const std::vector<std::string_view> sections = splitSections(picture);
    const Decimal magnitude = toDecimal15(std::fabs(value));
    const bool negative = value < 0;
    if (negative && sections.size() >= 2 && !sections[1].empty()) {
        // The negative section carries its own sign; a value that rounds to
        // zero there is printed by the non-negative section, without sign.
        if (!roundForSection(sections[1], magnitude).digits.empty())
            return formatSection(sections[1], magnitude, false);
        return formatSection(sections[0], Decimal{}, false);
    }
    const bool autoMinus = negative && !roundForSection(sections[0], magnitude).digits.empty();
    return formatSection(sections[0], magnitude, autoMinus);
}

namespace {

constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12};

// A plain column picture: `blanks` leading blanks, `optional` '#', `forced`
// '0' (at least one), '.', `decimals` '0', then a literal tail.
struct PlainPicture {
    int blanks = 0, optional = 0, forced = 0, decimals = 0;
    std::string_view tail;
};

std::optional<PlainPicture> plainPictureOf(std::string_view picture) {
    PlainPicture plain;
    std::size_t i = 0;
    const auto count = [&](char c) {
        int k = 0;
        for (; i < picture.size() && picture[i] == c; ++i) ++k;
        return k;
    };
    plain.blanks = count(' ');
    plain.optional = count('#');
    plain.forced = count('0');
    if (plain.forced == 0 || i >= picture.size() || picture[i] != '.') return std::nullopt;
    ++i;
    plain.decimals = count('0');
    if (plain.decimals == 0 || plain.decimals > 9) return std::nullopt;
    plain.tail = picture.substr(i);
    for (char c : plain.tail)
        if (isDigitPlaceholder(c) || c == '.' || c == ';' || c == 'e' || c == 'E') return std::nullopt;
    return plain;
}

// |value| * 10^decimals rounded half away from zero, when it is below `limit`
// and no rounding half lies within 1e-5 of it. The product is exact to half an
// ulp (< 1e-6 below 1e10); below 1e9 the 15-significant-digit rule of
// formatNumber moves it by < 5e-6, so it cannot cross the half either.
std::optional<long long> scaledUnits(double magnitude, int decimals, double limit) {
    const double scaled = magnitude * kPowersOfTen[decimals];
    if (!(scaled < limit)) return std::nullopt;
    const auto whole = static_cast<long long>(scaled);  // floor: 0 <= scaled < 1e10
    const double fraction = scaled - static_cast<double>(whole);
    if (std::fabs(fraction - 0.5) < 1e-5) return std::nullopt;
    return whole + (fraction > 0.5 ? 1 : 0);
}

// "integer.fraction" of units of the last of `decimals` places, in one append.
void appendDecimals(std::string& out, long long units, int decimals) {
    char text[32];
    char* end = text + sizeof text;
    char* cursor = end;
    for (int d = 0; d < decimals; ++d, units /= 10) *--cursor = static_cast<char>('0' + units % 10);
    *--cursor = '.';
    do {
        *--cursor = static_cast<char>('0' + units % 10);
        units /= 10;
    } while (units > 0);
    out.append(cursor, static_cast<std::size_t>(end - cursor));
}

}  // namespace

void appendNumber(std::string& out, double value, std::string_view picture) {
    const auto plain = std::isfinite(value) ? plainPictureOf(picture) : std::nullopt;
    const auto units = plain ? scaledUnits(std::fabs(value), plain->decimals, 1e9) : std::nullopt;
    if (!units) {
        out += formatNumber(value, picture);
        return;
    }
    const long long divisor = static_cast<long long>(kPowersOfTen[plain->decimals]);
    const int integerDigits = static_cast<int>(fmt::format_int(*units / divisor).size());
    const int digits = std::max(integerDigits, plain->forced);
    const int padding = plain->blanks + std::max(0, plain->optional + plain->forced - digits);
    out.append(static_cast<std::size_t>(padding), ' ');
    if (value < 0 && *units != 0) {  // the sign takes the place of the last padding blank
        if (padding > 0) out.back() = '-';
        else out.push_back('-');
    }
    out.append(static_cast<std::size_t>(digits - integerDigits), '0');
    appendDecimals(out, *units, plain->decimals);
    out += plain->tail;
}

void appendFixed(std::string& out, double value, int decimals) {
    const auto units = std::isfinite(value) && decimals >= 1 && decimals <= 12
                           ? scaledUnits(std::fabs(value), decimals, 1e10)
                           : std::nullopt;
    if (!units) {
        out += fmt::format("{:.{}f}", value, decimals);
        return;
    }
    if (std::signbit(value)) out.push_back('-');
    appendDecimals(out, *units, decimals);
}

std::string generalNumber(double value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value > 0 ? " Inf" : "-Inf";
    const std::string sign = value < 0 ? "-" : " ";
    const Decimal d = toDecimal15(std::fabs(value));
    if (d.digits.empty()) return " 0";
    const int exponent = d.pointPos - 1;  // value = d1.d2d3... x 10^exponent
    std::string out = sign;
    if (exponent < -5 || exponent >= 15) {
        out.push_back(d.digits[0]);
        if (d.digits.size() > 1) {
            out.push_back('.');
            out.append(d.digits, 1);
        }
        out.push_back('E');
        out.push_back(exponent < 0 ? '-' : '+');
        out += twoDigits(exponent < 0 ? -exponent : exponent);
        return out;
    }
    out += integerDigits(d);
    const int count = static_cast<int>(d.digits.size());
    if (count > d.pointPos) {
        out.push_back('.');
        for (int place = -1; place >= d.pointPos - count; --place) out.push_back(digitAt(d, place));
    }
    return out;
}

std::string formatTwiceJ(int twiceJ) {
    if (twiceJ % 2 == 0) return std::to_string(twiceJ / 2);
    return std::to_string(twiceJ) + "/2";
}

std::string formatDate(const std::tm& time) {
    return std::to_string(time.tm_year + 1900) + "-" + twoDigits(time.tm_mon + 1) + "-" +
           twoDigits(time.tm_mday);
}

std::string formatTime(const std::tm& time) {
    return twoDigits(time.tm_hour) + ":" + twoDigits(time.tm_min) + ":" + twoDigits(time.tm_sec);
}

std::tm localNow() { return localTime(std::chrono::system_clock::now()); }

}  // namespace orvane
