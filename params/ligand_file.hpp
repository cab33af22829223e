#pragma once
// Text files of the superposition model.
//
// Ligand file (read only): one ligand per line, "R theta phi" (distance, polar
// angle and azimuth in degrees; "," and ";" count as blanks), optionally followed
// by a label such as "O1". Blank lines and lines starting with '#' or '!' are
// skipped. Two optional key lines, anywhere before the rows they affect:
//   "R0 = 2.42"                       the reference distance
//   "lattice = a b c alpha beta gamma" following rows are fractional coordinates
//                                     "x y z" relative to the central ion
// At most 100 ligands.
//
// "smdata.txt" (the editor's last data; written atomically, read back exactly):
//   Superposition model data
//   Reference distance R0 = <R0>
//   Stevens-type normalisation = <0|1>
//   Intrinsic Bk and Exponent tk of rank 2 = <b2> <t2>
//   Intrinsic Bk and Exponent tk of rank 4 = <b4> <t4>
//   Intrinsic Bk and Exponent tk of rank 6 = <b6> <t6>
//   No. of ligands = <N>
//   <R> <theta> <phi>          (N lines)
// Numbers are written in the shortest form that reads back to the same double.
// "smdata.log" receives the calculation log, appended line by line.
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "params/superposition.hpp"

namespace orvane::params {

struct LigandFile {
    std::vector<Ligand> ligands;
    std::vector<std::string> labels;  // one per ligand, empty when none given
    std::optional<double> r0;
};

// Throws UserError (title "Error in reading ligand positions") naming file and line.
LigandFile parseLigandText(const std::string& text, const std::string& fileName);
LigandFile readLigandFile(const std::filesystem::path& path);

struct SuperpositionData {
    SuperpositionParameters parameters;
    std::vector<Ligand> ligands;
};

std::string formatSuperpositionData(const SuperpositionData& data);
SuperpositionData parseSuperpositionData(const std::string& text, const std::string& fileName);
void writeSuperpositionData(const std::filesystem::path& path, const SuperpositionData& data);  // atomic
SuperpositionData readSuperpositionData(const std::filesystem::path& path);

// Appends lines to the calculation log ("smdata.log").
void appendSuperpositionLog(const std::filesystem::path& path, const std::vector<std::string>& lines);

}  // namespace orvane::params
