#pragma once
// The measured ED line strengths of a Judd-Ofelt fit, one line per
// transition: "initial final S [sigma]" — state numbers (1-based, ascending
// energy, as every command prints them), the measured line strength in
// 1e-20 cm^2 and optionally its uncertainty. Blank lines and lines starting
// with "#" are skipped; "," and ";" count as blanks.
#include <filesystem>
#include <string>
#include <vector>

namespace orvane {

struct MeasuredLine {
    int initial = 0;  // 1-based
    int final = 0;
    double strength = 0.0;
    double uncertainty = 0.0;  // 0: not given
};

// Throws UserError naming the file and line of a malformed or impossible entry
// (state numbers beyond `stateCount`, negative strength or uncertainty).
std::vector<MeasuredLine> parseMeasuredLines(const std::string& text, const std::string& fileName, int stateCount);
std::vector<MeasuredLine> readMeasuredLines(const std::filesystem::path& path, int stateCount);

}  // namespace orvane
