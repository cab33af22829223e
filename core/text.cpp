#include "core/text.hpp"

#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>

namespace orvane {

namespace {
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
}  // namespace

std::string_view trim(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::string toUpper(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return out;
}

std::string toLower(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

bool iequals(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) !=
            std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

bool icontains(std::string_view haystack, std::string_view needle) {
    return toLower(haystack).find(toLower(needle)) != std::string::npos;
}

std::vector<std::string> splitFields(std::string_view line) {
    std::vector<std::string> fields;
    std::size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t' || line[i] == '\r')) ++i;
        std::size_t start = i;
        while (i < line.size() && line[i] != ' ' && line[i] != '\t' && line[i] != '\r') ++i;
        if (i > start) fields.emplace_back(line.substr(start, i - start));
    }
    return fields;
}

std::string commasToBlanks(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c == ',' || c == ';') c = ' ';
    return out;
}

std::vector<std::string> splitAnswerFields(std::string_view line) {
    return splitFields(commasToBlanks(line));
}

std::optional<double> parseNumber(std::string_view field) {
    field = trim(field);
    if (field.empty()) return std::nullopt;
    if (field.front() == '+') field.remove_prefix(1);
    if (field.empty() || field.front() == '+' || (field.front() == '-' && field.size() == 1))
        return std::nullopt;
    // Only decimal notation: refuse "nan", "inf", hexadecimal.
    for (char c : field)
        if (!(std::isdigit(static_cast<unsigned char>(c)) || c == '.' || c == '-' || c == '+' ||
              c == 'e' || c == 'E'))
            return std::nullopt;
    double value = 0.0;
    auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (error != std::errc() || end != field.data() + field.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<int> parseInteger(std::string_view field) {
    field = trim(field);
    if (!field.empty() && field.front() == '+') field.remove_prefix(1);
    if (field.empty()) return std::nullopt;
    int value = 0;
    auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (error != std::errc() || end != field.data() + field.size()) return std::nullopt;
    return value;
}

std::optional<double> leadingNumber(std::string_view text, std::size_t* consumed) {
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
    const std::size_t start = i;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
    std::size_t digits = 0;
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i, ++digits;
    if (i < text.size() && text[i] == '.') {
        ++i;
        while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i, ++digits;
    }
    if (digits == 0) {
        if (consumed) *consumed = 0;
        return 0.0;
    }
    std::size_t end = i;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        std::size_t j = i + 1;
        if (j < text.size() && (text[j] == '+' || text[j] == '-')) ++j;
        std::size_t expDigits = 0;
        while (j < text.size() && std::isdigit(static_cast<unsigned char>(text[j]))) ++j, ++expDigits;
        if (expDigits > 0) end = j;
    }
    std::string_view number = text.substr(start, end - start);
    if (!number.empty() && number.front() == '+') number.remove_prefix(1);
    double value = 0.0;
    auto [ptr, error] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (error == std::errc::result_out_of_range) {
        // Underflow reads as 0; overflow is refused.
        if (consumed) *consumed = end;
        std::size_t e = number.find_first_of("eE");
        if (e != std::string_view::npos && number.substr(e + 1).find('-') != std::string_view::npos)
            return 0.0;
        return std::nullopt;
    }
    if (error != std::errc() || !std::isfinite(value)) return std::nullopt;
    (void)ptr;
    if (consumed) *consumed = end;
    return value;
}

std::string_view rightOfFirstEquals(std::string_view line) {
    const auto pos = line.find('=');
    return pos == std::string_view::npos ? line : line.substr(pos + 1);
}

}  // namespace orvane
