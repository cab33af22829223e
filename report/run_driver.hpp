#pragma once
// The run procedure: reads a parameter file, runs the engine in the kind of
// calculation its mode asks for, and writes the general output, the state
// vectors and the energies (".gen", ".ev", ".eng"; "_fi.*" for free-ion runs).
//
// The run asks nothing: the questions of an interactive run (parameter file,
// run inputs, table folder) are put by interactive/run_dialogs.hpp, which then
// calls runEngine.
//
// Settings (section "Settings" of the settings store):
//   "InteractivePrompt" 1: the interactive layer asks the run inputs; default 0.
//   "KeepEnergies" 0: discard the energy file in mode 2 always and in mode 0
//       once the run counter reaches 10; default 1.
//   "RunCounter": runs so far; every completed run adds one. A caller that
//       repeats runs (a fit) resets it to 0 at its start.
// Progress lines go to the general output and to the caller's log book; the
// result sections go to the general output only. The three files are written
// to temporary files and renamed only when the whole run succeeded; a failed
// run leaves every result file as it was. An output named "nul:" is skipped.
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/log_book.hpp"
#include "core/settings_store.hpp"
#include "core/user_error.hpp"
#include "engine/level_labels.hpp"
#include "engine/level_symmetry.hpp"
#include "report/general_output.hpp"
#include "report/run_request.hpp"

namespace orvane {

inline constexpr const char* kSettingsSection = "Settings";
inline constexpr const char* kInteractivePromptKey = "InteractivePrompt";
inline constexpr const char* kKeepEnergiesKey = "KeepEnergies";
inline constexpr const char* kRunCounterKey = "RunCounter";
// The user-defined notation of irreducible representations ("/IRnotation= 3"), beside the parameter file.
inline constexpr const char* kUserIrrepFile = "irnotation.txt";

struct RunEnvironment {
    LogBook& log;
    SettingsStore& settings;
    std::filesystem::path tableDirectory;
    // Called when the tables can neither be found nor generated (an error of
    // category Tables): another directory to try, or std::nullopt to give up.
    // Empty: give up at once.
    std::function<std::optional<std::filesystem::path>(const UserError&)> tablesMissing = {};
    // "/detailedproperties": the g-factors of the doublets of a crystal-field
    // run (a layer above the engine computes them); empty: no g columns.
    std::function<std::vector<DoubletGValues>(const EnergyLevelResult&, const SiteLabelling*)> doubletGFactors = {};
};

struct RunOutcome {
    RunKind kind = RunKind::RealCrystalField;
    std::filesystem::path parameterFile;
    ResultNames names;
    RunRequest request;                // as used (after the interactive prompts)
    bool crystalFieldStage = false;
    std::vector<ResultLevel> levels;   // the run's final levels (crystal field, or free ion), unshifted
    ResultBasis basis;                 // the basis the levels' components index
    std::string energyUnit;            // of the parameter set ("cm-1", ...)
    bool showGeneralOutput = false;    // the general output was written, is not empty and the counter is below 10
};

// Runs mode `mode` (last decimal digit 0, 1, 2, 5) on the parameter file.
// Throws UserError with the engine's titles ("Error in Main" for reading,
// "Error in real CF main program", "Error in main program for complex CF",
// "Error in sorting energies", "Error in storing up energies"), each with its ErrorCategory.
RunOutcome runEngine(int mode, std::filesystem::path parameterFile, RunRequest request, RunEnvironment& environment);

}  // namespace orvane
