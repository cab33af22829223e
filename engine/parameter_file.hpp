#pragma once
// Reading and writing of parameter files (".par").
//
// Layout, one item per line (docs/parameter-file.md has the full description):
//   "Input parameters for Orvane - Spectroscopic Analysis Package (version #2)"
//   "title {note}"
//   "description"
//   Electrostatic ineraction parameters  type = 3
//   five rows: name value   (average energy, three electrostatic parameters, zeta)
//   label = number of f electrons
//   label = fold of the main rotation axis
//   No. of other free-ion parameters = N, then N rows: name value
//   No. of crystal field parameters in Wybourne's convention = M, then M rows: k  q  Re  Im
//   the option line (switches), optional
//   correlation crystal-field sections when the option line holds "/ccf"
//   the fit set-up, optional: Fit options = K, then K rows: name option [master]
// Version-1 files have no header line: their first line is the title line.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "engine/parameter_set.hpp"

namespace orvane {

inline constexpr std::string_view kParameterFileHeader =
    "Input parameters for Orvane - Spectroscopic Analysis Package (version #2)";

// Parameter files are a few kilobytes; anything above this is refused unread.
inline constexpr std::uintmax_t kMaxParameterFileBytes = 1u << 20;

// Electron counts the reader accepts (an empty or a full shell included).
inline constexpr int kMaxElectronCount = 14;
// Largest fold of a site's main rotation axis the reader accepts.
inline constexpr int kMaxFold = 16;

// Parses the text of a parameter file. Every problem throws UserError with
// the file name given and the 1-based line; the set is returned only whole.
ParameterSet parseParameterText(std::string_view text, const std::string& fileNameForMessages);

// Reads and parses a file (refusing a missing file or one above
// kMaxParameterFileBytes with a UserError naming it).
ParameterSet readParameterFile(const std::filesystem::path& path);

// readParameterFile for a run: a switch of the option line that no run
// applies (refuseUnsupportedSwitches) is refused with the file and the line
// of the option line.
ParameterSet readParameterFileForRun(const std::filesystem::path& path);

// The text the writer produces for a set. Throws UserError ("Error in saving
// parameters") when the set holds something the file cannot carry: a title
// with "{", a note with "}", a line break in any text, an other free-ion
// name that is empty or has blanks, or a cell that would not read back.
std::string parameterFileText(const ParameterSet& set);

// Writes the set atomically (the file is replaced only when complete).
// Writing the set read from a file this writer produced reproduces the file
// byte for byte.
void writeParameterFile(const std::filesystem::path& path, const ParameterSet& set);

// The texts that stand for the parameter forms and conventions in files and
// in the engine's echo.
std::string_view slaterTypeText(SlaterType type);
std::string_view crystalFieldCountLabel(CfConvention convention);
std::string_view correlationMarker(CorrelationKind kind);     // "/sccf", ...
std::string_view correlationRowPrefix(CorrelationKind kind);  // "ck ", ...
std::string_view correlationName(CorrelationKind kind);       // "SCCF", ...

}  // namespace orvane
