#pragma once
// Measured susceptibility as a CSV table: a header row naming a column
// "Temperature" and a column "Average" (case-blind; other columns ignored),
// then one row per temperature (K, emu/mol). A table without the two
// columns is refused with "Incorrect structure of Excel for the magnetic
// susceptibility"; a row that is not numeric, with the file and line.
#include <filesystem>
#include <string>
#include <vector>

namespace orvane {

struct MeasuredSusceptibility {
    double temperature = 0.0;  // K
    double average = 0.0;      // emu/mol
};

std::vector<MeasuredSusceptibility> parseMeasuredSusceptibility(const std::string& text, const std::string& fileName);
std::vector<MeasuredSusceptibility> readMeasuredSusceptibility(const std::filesystem::path& path);

}  // namespace orvane
