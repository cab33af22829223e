#include "engine/cell_value.hpp"

#include <fmt/format.h>

#include "core/text.hpp"

namespace orvane {

std::optional<double> readCellNumber(std::string_view text) {
    const std::string_view cell = trim(text);
    std::size_t consumed = 0;
    const std::optional<double> number = leadingNumber(cell, &consumed);
    if (!number || consumed == 0) return std::nullopt;
    const std::string_view rest = cell.substr(consumed);
    if (rest.empty()) return number;
    // "value(uncertainty)": the uncertainty must itself be a number.
    if (rest.size() >= 3 && rest.front() == '(' && rest.back() == ')' &&
        parseNumber(trim(rest.substr(1, rest.size() - 2))))
        return number;
    return std::nullopt;
}

std::string withoutBlanks(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text)
        if (c != ' ' && c != '\t') out.push_back(c);
    return out;
}

std::string exactNumberText(double value) { return fmt::format("{}", value); }

}  // namespace orvane
