#pragma once
// Measured susceptibility as a CSV table: a header row naming a column
// "Temperature" and a column "Average" (case-blind; other columns ignored),
// then one row per temperature (K, emu/mol). A table without the two
// columns is refused with "Incorrect structure of Excel for the magnetic
// susceptibility"; a row that is not numeric, with the file and line. Rows
// after the first `rowLimit` are counted, not read: the caller asks whether
// to go on without them ("There are too many data >" ...).
#include <filesystem>
#include <string>
#include <vector>

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

MeasuredSusceptibilityData parseMeasuredSusceptibility(const std::string& text, const std::string& fileName,
                                                       std::size_t rowLimit = kMeasuredSusceptibilityRowLimit);
MeasuredSusceptibilityData readMeasuredSusceptibility(const std::filesystem::path& path,
                                                      std::size_t rowLimit = kMeasuredSusceptibilityRowLimit);

}  // namespace orvane
