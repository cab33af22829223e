#pragma once
// The options of an energy-level run that the parameter file does not hold:
// the kind of run, the input file, the result files to write, the number of
// state vectors to store, the smallest state-vector coefficient stored and
// the switches "/actualshell" (compute in f^n itself for n > 7) and
// "/printhm" (print the Hamiltonian matrix). The desktop's options window
// edits them; preparing a run from them puts the questions before a run.
//
// Result files: a file whose box is cleared is discarded like any other
// discarded output of report/run_request.hpp (its name becomes "nul:"): the
// run neither creates nor replaces it, and the other files are written as
// usual. The energy file may also be discarded by the keep-energies setting
// of report/run_driver.hpp.
//
// Settings (section "Settings" of the settings store), kept between starts:
//   "OptionsRunKind"        0 free ion, 1 real CF, 2 complex CF (default 1)
//   "OptionsInputFile"      the input parameter file
//   "OptionsWriteGeneral", "OptionsWriteEnergies", "OptionsWriteVectors"  1/0 (default 1)
//   "OptionsVectorsToStore" number of state vectors (default kMaxVectorsToStore: all)
//   "OptionsMinCoefficient" smallest coefficient as typed (default "0.002")
//   "OptionsActualShell", "OptionsPrintHm"  1/0 (default 0)
// A stored value that would not be taken from the window is ignored.
#include <filesystem>
#include <optional>
#include <string>

#include "core/settings_store.hpp"
#include "interactive/asker.hpp"
#include "report/run_request.hpp"

namespace orvane {

enum class RunChoice { FreeIon = 0, RealCrystalField = 1, ComplexCrystalField = 2 };

// The run mode of report/run_request.hpp: free ion 2, real CF 0, complex CF 1.
int runModeOf(RunChoice kind);

// Upper limit of the vectors to store: 3432, the dimension of f^7, the
// largest |SL J MJ> basis of any f^n, so the limit stores every state.
inline constexpr int kMaxVectorsToStore = 3432;

struct RunOptions {
    RunChoice kind = RunChoice::RealCrystalField;
    std::filesystem::path inputFile;
    bool writeGeneral = true;
    bool writeEnergies = true;
    bool writeVectors = true;
    int vectorsToStore = kMaxVectorsToStore;
    std::string minCoefficient = "0.002";  // as typed; 0 <= value < 1
    bool actualShell = false;
    bool printHamiltonian = false;
    friend bool operator==(const RunOptions&, const RunOptions&) = default;
};

// The number of vectors of a text: numeric, whole, 1..kMaxVectorsToStore; else none.
std::optional<int> vectorsToStoreOf(const std::string& text);

// True when 0 <= value < 1; otherwise shows "Invalid value of min.
// statevector coefficient to store!!!" titled "Error" and returns false.
bool acceptMinCoefficient(const std::string& text, Asker& asker);

// "/actualshell" when that switch is on, then "/printhm" when that one is.
std::string optionTextOf(const RunOptions& options);

// The run inputs of the options (the engine adds "/fi" or "/cf" itself).
RunRequest runRequestOf(const RunOptions& options);

// True when the file's switches truncate the LS basis ("/spinmmin= n").
// A file that cannot be read truncates nothing: its run reports the problem.
bool truncatesLsBasis(const std::filesystem::path& parameterFile);

// For a free-ion run of a file that truncates the LS basis asks "Truncation
// of LS basis will lead to very inaccurate free-ion calculations. ..." titled
// "Probably wrong CF fit" (Yes/No/Cancel); true when the run may go on.
bool confirmFreeIonRun(RunChoice kind, const std::filesystem::path& parameterFile, Asker& asker);

struct PreparedRun {
    int mode = 0;
    std::filesystem::path parameterFile;
    RunRequest request;
};

// The run of the options, or none: a missing input file shows "Can't find
// input parameters file!" titled "Error"; a free-ion run with truncation must
// be confirmed (confirmFreeIonRun).
std::optional<PreparedRun> prepareRun(const RunOptions& options, Asker& asker);

RunOptions readRunOptions(const SettingsStore& settings);
void writeRunOptions(SettingsStore& settings, const RunOptions& options);

}  // namespace orvane
