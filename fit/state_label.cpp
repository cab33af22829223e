#include "fit/state_label.hpp"

#include <cctype>

#include "core/number_format.hpp"
#include "engine/level_labels.hpp"

namespace orvane {
namespace {

// 2J of "9/2" or "4"; std::nullopt otherwise.
std::optional<int> parseTwiceJ(std::string_view text) {
    if (text.empty()) return std::nullopt;
    const auto slash = text.find('/');
    auto digits = [](std::string_view s) -> std::optional<int> {
        if (s.empty() || s.size() > 3) return std::nullopt;
        int value = 0;
        for (char c : s) {
            if (!std::isdigit(static_cast<unsigned char>(c))) return std::nullopt;
            value = 10 * value + (c - '0');
        }
        return value;
    };
    if (slash == std::string_view::npos) {
        const auto j = digits(text);
        return j ? std::optional<int>(2 * *j) : std::nullopt;
    }
    const auto numerator = digits(text.substr(0, slash));
    if (!numerator || text.substr(slash + 1) != "2" || *numerator % 2 == 0) return std::nullopt;
    return *numerator;
}

}  // namespace

std::optional<StateLabel> parseStateLabel(std::string_view text) {
    StateLabel label;
    if (text.empty()) return label;
    if (text.back() == ')') {
        const auto open = text.rfind('(');
        if (open == std::string_view::npos) return std::nullopt;
        label.irrep = std::string(text.substr(open + 1, text.size() - open - 2));
        if (label.irrep.empty()) return std::nullopt;
        text = text.substr(0, open);
    }
    // Multiplicity digits, an L letter, an optional seniority digit, then J
    // ("-" before J when the term ends in a digit).
    std::size_t i = 0;
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i]))) ++i;
    if (i == 0 || i >= text.size() || !std::isupper(static_cast<unsigned char>(text[i]))) return std::nullopt;
    ++i;
    std::string_view rest = text.substr(i);
    if (const auto dash = rest.find('-'); dash != std::string_view::npos) {
        label.term = std::string(text.substr(0, i + dash));
        rest = rest.substr(dash + 1);
    } else {
        label.term = std::string(text.substr(0, i));
    }
    const auto twiceJ = parseTwiceJ(rest);
    if (!twiceJ) return std::nullopt;
    label.twiceJ = *twiceJ;
    return label;
}

std::string stateLabelText(const StateLabel& label) {
    if (label.term.empty()) return {};
    std::string text = multipletLabel(label.term, label.twiceJ);
    if (!label.irrep.empty()) text += "(" + label.irrep + ")";
    return text;
}

}  // namespace orvane
