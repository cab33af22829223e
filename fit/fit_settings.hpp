#pragma once
// The settings of the fitting workspace as the options menus set them: each
// with its prompt, the answers it accepts and the refusal "Invalid input"
// (docs/fitting.md, "Settings").
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fit/fit_workspace.hpp"

namespace orvane {

enum class FitSettingId {
    MaxIterations,
    ScalingFactor,
    GWeight,
    MaxLevels,
    ConvergenceLimit,
    NearMatchPercent,
    MinorStateRatio,
    LabelWeights,
    PropertyAccuracy,
};

inline constexpr const char* kInvalidInput = "Invalid input";
inline constexpr const char* kMaxLevelsWarning =
    "For your given max. number of levels, some current levels at the bottom will NOT be considered in the analysis!";
inline constexpr const char* kAreYouOk = "Are you OK?";

struct FitSettingPrompt {
    FitSettingId id;
    const char* prompt;
    const char* title;  // of the dialog; may be empty
};

const std::vector<FitSettingPrompt>& fitSettingPrompts();
const FitSettingPrompt& fitSettingPrompt(FitSettingId id);

// The current value as the prompt shows it ("Infinity" for maxIterations 0,
// the scaling factor as "##0.00#", the label weights as three numbers).
std::string fitSettingText(const FitSettings& settings, FitSettingId id);

// Applies an answer; returns kInvalidInput (and leaves the settings) when
// the answer is not accepted.
std::optional<std::string> applyFitSetting(FitSettings& settings, FitSettingId id, std::string_view answer);

// True when a new max. number of levels drops levels now shown (ask kAreYouOk).
bool dropsShownLevels(int newMaxLevels, int levelsShown);

}  // namespace orvane
