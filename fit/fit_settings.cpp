#include "fit/fit_settings.hpp"

#include <cmath>
#include <stdexcept>

#include <fmt/format.h>

#include "core/number_format.hpp"
#include "core/text.hpp"

namespace orvane {
namespace {

std::optional<double> finiteNumber(std::string_view text) {
    const auto value = parseNumber(trim(text));
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<int> wholeNumber(std::string_view text) {
    const auto value = parseInteger(std::string(trim(text)));
    return value ? std::optional<int>(static_cast<int>(*value)) : std::nullopt;
}

}  // namespace

const std::vector<FitSettingPrompt>& fitSettingPrompts() {
    static const std::vector<FitSettingPrompt> prompts = {
        {FitSettingId::MaxIterations, "Give the max. number of iteration for the ultimate fit (0 for infinity):", ""},
        {FitSettingId::ScalingFactor,
         "Give the value of factor (positive) for the change of paramters in each fitting:", ""},
        {FitSettingId::GWeight,
         "Give weighting for  fit of g-factors (relative to energies). Put 0 for automatic setting of the weight.", ""},
        {FitSettingId::MaxLevels, "Give max. number of different energy levels to consider (0 for all levels):", ""},
        {FitSettingId::ConvergenceLimit, "Give the convergence limit for the change in RMS deviation:", ""},
        {FitSettingId::NearMatchPercent,
         "Give percentage threshold for using nearly match method in Automathch of state labels:", ""},
        {FitSettingId::MinorStateRatio,
         "Give Ratio for adoption of minor states (0.5-0.6 for 3-4 states, 0.6-0.7 for 2-3 states, >0.7 for 1-2 "
         "states:",
         ""},
        {FitSettingId::LabelWeights,
         "Give user-defined weighting for term SL labels, multiplet J labels and CF irreducible labels in Automatch:",
         "Weighting for term SL labels, multiplet J labels and CF irreducible labels in Automatch"},
        {FitSettingId::PropertyAccuracy,
         "Give accuracy limit for calculating physical properties like g-factors magnetic moments and "
         "susceptibility (or number of decimal places):",
         ""},
    };
    return prompts;
}

const FitSettingPrompt& fitSettingPrompt(FitSettingId id) {
    for (const auto& prompt : fitSettingPrompts())
        if (prompt.id == id) return prompt;
    throw std::logic_error("unknown fit setting");
}

std::string fitSettingText(const FitSettings& s, FitSettingId id) {
    switch (id) {
        case FitSettingId::MaxIterations: return s.maxIterations == 0 ? "Infinity" : std::to_string(s.maxIterations);
        case FitSettingId::ScalingFactor: return formatNumber(s.scalingFactor, "##0.00#");
        case FitSettingId::GWeight: return fmt::format("{}", s.gWeight);
        case FitSettingId::MaxLevels: return std::to_string(s.maxLevels);
        case FitSettingId::ConvergenceLimit: return fmt::format("{}", s.convergenceLimit);
        case FitSettingId::NearMatchPercent: return fmt::format("{}%", s.nearMatchPercent);
        case FitSettingId::MinorStateRatio: return fmt::format("{}", s.minorStateRatio);
        case FitSettingId::LabelWeights: return fmt::format("{} {} {}", s.termWeight, s.jWeight, s.irrepWeight);
        case FitSettingId::PropertyAccuracy: return formatNumber(s.propertyAccuracy, "0.0E+0#");
    }
    return {};
}

std::optional<std::string> applyFitSetting(FitSettings& s, FitSettingId id, std::string_view answer) {
    const auto number = finiteNumber(answer);
    const auto whole = wholeNumber(answer);
    switch (id) {
        case FitSettingId::MaxIterations:
            if (!whole || *whole < 0) return kInvalidInput;
            s.maxIterations = *whole;
            return std::nullopt;
        case FitSettingId::ScalingFactor:
            if (!number || *number <= 0) return kInvalidInput;
            s.scalingFactor = *number;
            return std::nullopt;
        case FitSettingId::GWeight:
            if (!number || *number < 0) return kInvalidInput;
            s.gWeight = *number;
            return std::nullopt;
        case FitSettingId::MaxLevels:
            if (!whole || *whole < 0) return kInvalidInput;
            s.maxLevels = *whole;
            return std::nullopt;
        case FitSettingId::ConvergenceLimit:
            if (!number || *number <= 0) return kInvalidInput;
            s.convergenceLimit = *number;
            return std::nullopt;
        case FitSettingId::NearMatchPercent:
            if (!number || *number <= 0 || *number > 100) return kInvalidInput;
            s.nearMatchPercent = *number;
            return std::nullopt;
        case FitSettingId::MinorStateRatio:
            if (!number || *number <= 0 || *number > 1) return kInvalidInput;
            s.minorStateRatio = *number;
            return std::nullopt;
        case FitSettingId::LabelWeights: {
            const auto fields = splitAnswerFields(std::string(answer));
            if (fields.size() != 3) return kInvalidInput;
            double w[3];
            for (int i = 0; i < 3; ++i) {
                const auto v = finiteNumber(fields[static_cast<std::size_t>(i)]);
                if (!v || *v < 0) return kInvalidInput;
                w[i] = *v;
            }
            s.termWeight = w[0];
            s.jWeight = w[1];
            s.irrepWeight = w[2];
            return std::nullopt;
        }
        case FitSettingId::PropertyAccuracy:
            // A limit (0 < x < 1) or a count of decimal places (1..15).
            if (!number || *number <= 0 || (*number >= 1 && (*number > 15 || std::floor(*number) != *number)))
                return kInvalidInput;
            s.propertyAccuracy = *number >= 1 ? std::pow(10.0, -*number) : *number;
            return std::nullopt;
    }
    return kInvalidInput;
}

bool dropsShownLevels(int newMaxLevels, int levelsShown) { return newMaxLevels > 0 && newMaxLevels < levelsShown; }

}  // namespace orvane
