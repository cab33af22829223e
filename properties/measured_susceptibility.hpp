#pragma once
// Measured susceptibility as a table (.xlsx or .csv, read through the
// spreadsheet seam): the first row holding a heading that contains
// "Temperature" and one that contains "Average" (case-blind; other columns
// ignored), then one row per temperature (K, emu/mol). A table without the
// two headings is refused with "Data file error: Incorrect structure of Excel
// for the magnetic susceptibility"; a cell that is not a number or a
// temperature that is not positive, naming the cell. Rows after the first
// `rowLimit` are counted, not read: the caller asks whether to go on without
// them ("There are too many data >" ...). The susceptibility export
// (susceptibilitySheet) reads back as such a table.
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/spreadsheet.hpp"

namespace orvane {

struct MeasuredSusceptibility {
    double temperature = 0.0;  // K
    double average = 0.0;      // emu/mol
};

// Rows read at most (a measured curve has tens to hundreds of points).
inline constexpr std::size_t kMeasuredSusceptibilityRowLimit = 5000;

struct MeasuredSusceptibilityData {
    std::vector<MeasuredSusceptibility> points;
    std::size_t rowsBeyondLimit = 0;  // data rows after the limit, not read
};

MeasuredSusceptibilityData measuredSusceptibilityOf(const Spreadsheet& sheet,
                                                    std::size_t rowLimit = kMeasuredSusceptibilityRowLimit);
// CSV text (the file named `fileName` in messages).
MeasuredSusceptibilityData parseMeasuredSusceptibility(const std::string& text, const std::string& fileName,
                                                       std::size_t rowLimit = kMeasuredSusceptibilityRowLimit);
// A .xlsx file (its sheet `sheet`, the first when empty); any other file is read as CSV.
MeasuredSusceptibilityData readMeasuredSusceptibility(const std::filesystem::path& path,
                                                      std::size_t rowLimit = kMeasuredSusceptibilityRowLimit,
                                                      std::string_view sheet = {});

}  // namespace orvane
