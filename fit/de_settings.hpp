#pragma once
// Differential evolution: the parameter rows, the settings with their
// refusals, the log book's header and footer and the bounds file
// (docs/differential-evolution.md).
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

// One row of the parameter table ("Parameter", "Initial value", "Lower
// limit", "Upper limit"); a fixed row keeps its initial value.
struct DEParameter {
    std::string name;  // as the least-squares fit names it ("F2", "B43", "Abar4", "t4")
    double initial = 0.0;
    double lower = 0.0;
    double upper = 0.0;
    bool fixed = false;
};

enum class DEScheme { Ordinary, Accelerated };
enum class DELevelMatching { Automatic, Fixed };

// Smallest NP refused: NP must be greater than this (a mutant needs three
// members other than its parent).
inline constexpr int kMinimumParents = 4;

struct DESettings {
    int parents = 40;          // NP
    double f = 0.8;            // mutation (difference) factor, > 0
    double cr = 0.9;           // crossover probability, (0, 1]
    double lambda = 0.5;       // accelerated scheme: move toward the best, (0, 1]
    double sd = 1e-3;          // stop when the SD of the population's deviations falls below, > 0
    double err = 0.01;         // stop when the minimal deviation falls below, > 0
    int maxIterations = 500;   // > 0
    DEScheme scheme = DEScheme::Ordinary;
    DELevelMatching matching = DELevelMatching::Fixed;
    bool polish = false;       // NLS: a least-squares fit of the best set
    double gWeight = 0.0;      // g-factors relative to energies; 0 automatic
    friend bool operator==(const DESettings&, const DESettings&) = default;
};

enum class DESettingId { Parents, F, Cr, Lambda, Sd, Err, MaxIterations, GWeight };

// Applies a typed value; returns the refusal text of the setting (and leaves
// the settings) when it is not accepted:
//   NP    "Value of NP (No. of Parents) should be greater than 4"
//   F     "Positive value of F is needed!"
//   CR    "Positive and <=1 value of CR is needed!"
//   Lambda "Positive and <=1 value of Lambda is needed!"
//   SD    "Positive value of SD is needed!"
//   ERR   "Positive value of ERR is needed!"
//   Max Iteration "Positive value of Max Iteration is needed!"
//   gWeight "Invalid input for the weighting of fitting g-factors with energies!"
// A text that is no number at all: "Error in setting Differential Evolution parameter".
// NP and Max Iteration take whole numbers only ("40", not "40.0").
inline constexpr const char* kDESettingErrorText = "Error in setting Differential Evolution parameter";
std::optional<std::string> applyDESetting(DESettings& settings, DESettingId id, std::string_view text);

// The current value of a setting (the answer a dialog offers).
double deSettingValue(const DESettings& settings, DESettingId id);

// The same checks on a whole set of settings (the first refusal, if any).
std::optional<std::string> deSettingsProblem(const DESettings& settings);

// Texts of the settings as the log book shows them.
inline constexpr const char* kOrdinarySchemeText = "Ordinary Scheme.";
inline constexpr const char* kAcceleratedSchemeText = "Accelerated scheme.";
inline constexpr const char* kAutoMatchText = "  Auto match of energy levels.";
inline constexpr const char* kFixedLevelsText = " .Use fixed energy levels.";
inline constexpr const char* kPolishText = "  Incorporate NLS F  it.";

// "**** CF Fitting by Differential Evolution Method started on " date " *****",
// "Started at " time, a rule of "#", the settings lines ("NP: ", "  ||F = ",
// " ||CR = ", " ||Lambda = ", "  ||SD = ", "No. of parameters = ",
// "  ||No. of parents = ", "  ||Max. no. of iteration = ", "ERR = "), the
// scheme and the options.
std::vector<std::string> deHeaderLines(const DESettings& settings, int freeParameters,
                                       std::chrono::system_clock::time_point when);

struct DEFinalDeviations {
    double rms = 0.0;           // energies, unweighted
    bool withGFactors = false;
    double weightedEnergies = 0.0, weightedG = 0.0, weightedBoth = 0.0, rmsWithWeightedG = 0.0;
};

// "**** CF Fitting by Differential Evolution Method completed on " date,
// "Completed at " time and the deviations ("  RMS Dev. = ", and with
// g-factors "  Weighted RMS Dev.= ", "  Weighted RMS Dev. for energies = ",
// "  for g-factors = ", "  Weighted RMS Dev. for energies and g-factors = ",
// "  RMS Dev. for energies and weighted g-factors = ").
std::vector<std::string> deFooterLines(const DEFinalDeviations& deviations, std::chrono::system_clock::time_point when);

// The bounds file of `orvane de`: one row per free parameter, "NAME lower
// upper" (blanks or tabs; "#" comments; blank lines skipped). Throws
// UserError naming the file and line for a malformed row, lower > upper, a
// non-finite number or a name given twice.
struct DEBound {
    std::string name;
    double lower = 0.0;
    double upper = 0.0;
};
// One row per free parameter: a few tens; larger files are refused unread,
// more rows at the first row beyond the limit.
inline constexpr std::uintmax_t kMaxDEBoundsFileBytes = 1u << 20;
inline constexpr std::size_t kDEBoundsRowLimit = 1000;
std::vector<DEBound> parseDEBounds(std::string_view text, const std::string& fileNameForMessages);
std::vector<DEBound> readDEBoundsFile(const std::string& path);

}  // namespace orvane
