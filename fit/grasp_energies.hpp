#pragma once
// Free-ion energies computed by the atomic-structure code GRASP2K
// (Joensson, He, Froese Fischer & Grant, Comput. Phys. Commun. 177, 597
// (2007)), read from the plain-text listing of its level program: header
// lines, a dashed line, then one row per level
//   No  Pos  J  Parity  EnergyTotal(Hartrees)  Levels(cm^-1)  Configuration...
// with J written "9/2" or "4" and the parity "+" or "-", closed by a dashed
// line (docs/observed-levels-file.md).
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

enum class Parity { Even, Odd };

struct GraspLevel {
    int twiceJ = 0;
    Parity parity = Parity::Even;
    double energy = 0.0;        // cm^-1, the "Levels" column as printed
    std::string configuration;  // the remaining fields of the row, joined by one blank
};

// Lines before the first row of the level shape are skipped; inside the
// table blank lines are skipped, a dashed line ends it and any other line is
// refused. A listing without any level row is refused. Problems throw
// UserError naming the file (and the line).
std::vector<GraspLevel> parseGraspLevels(std::string_view text,
                                         const std::string& fileNameForMessages);
std::vector<GraspLevel> readGraspLevels(const std::filesystem::path& path);

// The energies in cm^-1, in the listing's order; with setZero shifted so that
// the lowest is zero, otherwise as printed.
std::vector<double> graspLevelEnergies(const std::vector<GraspLevel>& levels, bool setZero);

}  // namespace orvane
