#pragma once
// The energy file (".eng") of a run: the calculated levels in ascending
// energy, read back by the fitting and the published-table comparisons.
//
// Layout (docs/result-files.md):
//   line 1   title: "Energies (" unit ", shift " shift "): " parameter-set title
//   then one line per level, fields separated by blanks:
//     number   cumulative state number, 1, 2, 3, ... in ascending energy
//     energy   in the parameter set's unit, the run's energy shift added (6 decimals)
//     2J       twice J of the level's largest |SL J> multiplet
//     2mu      twice the crystal quantum number of its block, "-" for a free-ion level
//     label    multiplet label of the largest multiplet ("3H4", "4I9/2")
// Readers need only the first two fields; the others may be absent.
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "engine/level_labels.hpp"

namespace orvane {

struct EnergyFileLevel {
    int number = 0;
    double energy = 0.0;
    std::optional<int> twiceJ;
    std::optional<int> twiceMu;  // absent for free-ion levels
    std::string label;
};

struct EnergyFileContents {
    std::string title;
    std::vector<EnergyFileLevel> levels;
};

// Writes the file's text; `fold` gives mu from the block residues.
void writeEnergyText(std::ostream& out, const std::string& title, const std::vector<ResultLevel>& levels,
                     double energyShift, int fold);

// Parses the text; throws UserError ("Error in Main") naming the file and line
// for a malformed line, a number out of sequence or energies out of order.
EnergyFileContents parseEnergyText(const std::string& text, const std::string& fileNameForMessages);

// Reads and parses a file (at most 256 MB).
EnergyFileContents readEnergyFile(const std::filesystem::path& path);

}  // namespace orvane
