#pragma once
// What a run of the engine is asked to do besides reading its parameter file:
// the kind of calculation (from the run mode), the names of the three result
// files, and the run inputs (vectors to store, energy shift, smallest
// component processed, extra switches).
//
// Run modes: only the last decimal digit of the number counts (12 runs as 2).
//   0  free ion + real crystal field          "/cf"   name.gen  name.ev  name.eng
//   1  free ion + complex crystal field       (none)  name.gen  name.ev  name.eng
//   2  free ion only                          "/fi"   name_fi.gen name_fi.ev name_fi.eng (or "nul:")
//   5  free ion only, energies always kept    "/fi"   name_fi.gen name_fi.ev name_fi.eng
// The energy file is discarded ("nul:") in mode 0 when the keep-energies
// setting is off and the run counter stands at 10 or more, in mode 2 whenever
// the keep-energies setting is off.
#include <filesystem>
#include <string>

namespace orvane {

enum class RunKind { RealCrystalField, ComplexCrystalField, FreeIon, FreeIonKeepEnergies };

// The kind of a run mode; throws UserError ("Error in Main") for a last digit
// other than 0, 1, 2, 5.
RunKind runKindOfMode(int mode);

bool isFreeIonRun(RunKind kind);

// The switch the run appends to the option text: "/cf", "/fi" or "".
std::string engineSwitchOf(RunKind kind);

// The name of a discarded output.
inline constexpr const char* kNullOutput = "nul:";

struct ResultNames {
    std::string general;   // ".gen"
    std::string vectors;   // ".ev"
    std::string energies;  // ".eng"
};

// The parameter file's name with ".par" (any case; appended when absent)
// replaced by `suffix`: ("Er.par", "_fi.gen") -> "Er_fi.gen".
std::string resultFileName(const std::filesystem::path& parameterFile, const std::string& suffix);

// Run counter from which a mode-0 run without keep-energies discards its energies.
inline constexpr int kRunCounterLimit = 10;

ResultNames resultNamesFor(const std::filesystem::path& parameterFile, RunKind kind, bool keepEnergies,
                           int runCounter);

struct RunRequest {
    int eigenvectorsToStore = 0;        // lowest states whose vectors are stored; 0 = all
    double energyShift = 0.0;           // added to every calculated energy that is written
    std::string minComponent = "0.002"; // smallest |coefficient| of a state vector processed (echoed as typed)
    std::string optionText;             // switches joined to the file's own ("/actualshell /printhm")
    // Result files the caller wants; an unwanted one is discarded ("nul:")
    // like any other discarded output (the options window's check boxes).
    bool writeGeneral = true;
    bool writeVectors = true;
    bool writeEnergies = true;
};

// The names with every output the request does not want replaced by "nul:".
ResultNames withUnwantedDiscarded(ResultNames names, const RunRequest& request);

// The number of `minComponent`; throws UserError ("Error in Main") unless
// 0 <= value < 1.
double minComponentValue(const RunRequest& request);

}  // namespace orvane
