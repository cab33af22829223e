#pragma once
// The observed-levels file of a fit: plain text, one row per observed level,
// "state label energy [g ...]" (docs/observed-levels-file.md).
//   state   1-based number of the calculated state in ascending energy (either
//           state of a Kramers doublet), "-" or "0" for not assigned yet
//   label   a state label as parseStateLabel reads it ("4I9/2", "4I9/2(1/2)"),
//           "-" for none
//   energy  observed energy in the parameter set's energy unit; "[11420.5]"
//           marks the level withheld (shown and compared, not fitted)
//   g       observed g-factors of that state: "gz=2.95", "gx=1.1", "gy=1.1",
//           or a bare number meaning gz
// "#" starts a comment; blank lines are skipped.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "fit/fit_workspace.hpp"

namespace orvane {

// Observed-level lists hold tens to a few hundred rows; larger files are
// refused unread, more rows refused at the first row beyond the limit.
inline constexpr std::uintmax_t kMaxObservedLevelsFileBytes = 1u << 20;
inline constexpr std::size_t kObservedLevelsRowLimit = 5000;

struct ObservedLevelsFile {
    std::vector<ObservedLevel> levels;      // in file order
    std::vector<ObservedGFactor> gFactors;  // in file order, fields in row order
};

// Every malformed row throws UserError naming the file, the 1-based line and
// the problem.
ObservedLevelsFile parseObservedLevelsText(std::string_view text,
                                           const std::string& fileNameForMessages);
// Refuses a file above kMaxObservedLevelsFileBytes unread. A .xlsx or .csv
// file is read as a sheet (fit/observed_levels_sheet.hpp; `sheet` names the
// workbook's sheet, empty for the first).
ObservedLevelsFile readObservedLevelsFile(const std::filesystem::path& path, std::string_view sheet = {});

// One row given as the fields of a line ("state label energy [g ...]"),
// appended to `file`; problems name the file and line (or row).
void appendObservedLevelRow(const std::vector<std::string>& fields, const std::string& fileNameForMessages, int line,
                            ObservedLevelsFile& file);
// The g-factors that go on each level's row (the rule of observedLevelsFileText).
std::vector<std::vector<ObservedGFactor>> observedGFactorsByRow(const std::vector<ObservedLevel>& levels,
                                                                const std::vector<ObservedGFactor>& gFactors);

// Equal in what the file carries: state number, label, observed energy and
// withheld of each level; state number, label, component and observed value
// of each g-factor, in order.
bool sameFileContent(const ObservedLevelsFile& a, const ObservedLevelsFile& b);

// The text of the levels with their g-factors: each g-factor goes on a row
// with its state number and label that does not hold its component yet (in
// list order where the order allows, so that what the reader produced comes
// back in the same order). Reading the text gives back the same levels
// (state number, label, observed energy, withheld) and g-factors (state
// number, label, component, observed). Throws UserError ("Error in saving observed levels")
// for what the file cannot carry: a g-factor without such a row, a label that
// does not read back, a negative state number or a non-finite value.
std::string observedLevelsFileText(const std::vector<ObservedLevel>& levels,
                                   const std::vector<ObservedGFactor>& gFactors);
// Writes the text atomically (the file is replaced only when complete).
void writeObservedLevelsFile(const std::filesystem::path& path,
                             const std::vector<ObservedLevel>& levels,
                             const std::vector<ObservedGFactor>& gFactors);

}  // namespace orvane
