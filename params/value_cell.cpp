#include "params/value_cell.hpp"

#include <cmath>

#include "core/number_format.hpp"
#include "core/text.hpp"

namespace orvane::params {

ParsedCell parseValueCell(std::string_view text) {
    ParsedCell cell;
    const std::string_view body = trim(text);
    if (body.empty()) return cell;
    const std::size_t open = body.find('(');
    const std::string_view valuePart = trim(body.substr(0, open));
    if (auto value = parseNumber(valuePart)) {
        cell.value = *value;
        cell.hasNumber = true;
    } else {
        // Not a plain number: read the numeric prefix as the value, as the editor does.
        std::size_t consumed = 0;
        const auto prefix = leadingNumber(valuePart, &consumed);
        cell.value = prefix.value_or(0.0);
        cell.hasNumber = consumed > 0 && prefix.has_value();
        cell.plain = false;
        return cell;
    }
    if (open == std::string_view::npos) return cell;
    const std::size_t close = body.find(')', open);
    if (close == std::string_view::npos || close + 1 != body.size()) {
        cell.plain = false;
        return cell;
    }
    if (auto sigma = parseNumber(body.substr(open + 1, close - open - 1)))
        cell.uncertainty = std::fabs(*sigma);
    else
        cell.plain = false;
    return cell;
}

std::string formatValueCell(double value, std::optional<double> uncertainty,
                            std::string_view picture) {
    std::string text(trim(formatNumber(value, picture)));
    if (uncertainty) text += "(" + std::string(trim(formatNumber(*uncertainty, picture))) + ")";
    return text;
}

double cellNumber(const ValueCell& cell) {
    const std::string_view text = trim(cell.text);
    if (text.empty()) return cell.value;
    const ParsedCell parsed = parseValueCell(text);
    if (!parsed.hasNumber) return 0.0;
    if (!parsed.plain) return parsed.value;
    // Decimals written in the value part decide how far the text may round `value`.
    const std::string_view valuePart = text.substr(0, text.find('('));
    const std::size_t point = valuePart.find('.');
    const std::size_t decimals = point == std::string_view::npos ? 0 : valuePart.size() - point - 1;
    const double halfUnit = 0.5 * std::pow(10.0, -static_cast<double>(decimals));
    if (std::fabs(cell.value - parsed.value) <= halfUnit * (1.0 + 1e-9)) return cell.value;
    return parsed.value;
}

void rescaleCell(ValueCell& cell, double factor) {
    const std::string_view text = trim(cell.text);
    if (text.empty() && cell.value == 0.0) return;
    const ParsedCell parsed = parseValueCell(text);
    if (!text.empty() && !parsed.plain) return;
    const double value = cellNumber(cell) * factor;
    std::optional<double> sigma;
    if (parsed.uncertainty) sigma = *parsed.uncertainty * std::fabs(factor);
    cell.text = formatValueCell(value, sigma);
    cell.value = value;
}

ValueCell makeCell(double value, std::string_view picture) {
    return ValueCell{std::string(trim(formatNumber(value, picture))), value};
}

}  // namespace orvane::params
