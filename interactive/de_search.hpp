#pragma once
// A differential-evolution search as the command line and the desktop's DE
// window run it: the checks of its inputs, the prepared model, the run-time
// question, the log book's header, generation lines and footer, the optional
// least-squares polish of the best set, and the best set as fit-table rows
// (docs/differential-evolution.md).
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "core/log_book.hpp"
#include "engine/parameter_set.hpp"
#include "fit/de_settings.hpp"
#include "fit/differential_evolution.hpp"
#include "fit/fit_workspace.hpp"
#include "interactive/asker.hpp"

namespace orvane {

struct DESearch {
    ParameterSet set;
    FitKind kind = FitKind::RealCrystalField;
    std::vector<DEParameter> parameters;
    std::vector<ObservedLevel> levels;
    std::vector<ObservedGFactor> gFactors;
    std::optional<DESuperposition> superposition;
    DESettings settings;
    std::uint64_t seed = 0;
    int threads = 1;
    std::filesystem::path tableDirectory;
};

struct DESearchOutcome {
    DEResult result;
    std::vector<FitParameter> bestRows;  // the fit table with the best (or polished) values
};

// The DE rows of the free parameters named in `bounds`, starting from the
// fit table's initial values (the box centre for a name the table lacks).
std::vector<DEParameter> deParametersOf(const std::vector<DEBound>& bounds, const std::vector<FitParameter>& rows);

// Throws UserError ("Error in setting Differential Evolution parameter") for
// inputs that cannot run: a superposition search without "Abar" rows ("You
// need to provide Superposition Model parameters and ligand positions"), a
// polish of a superposition search with automatic level matching, refused
// settings. Asks "Need around n minutes to complete. Really want to go
// ahead?" ("Go ahead?") when the estimate reaches a minute: std::nullopt
// when declined. Generation lines and progress go to `log`; the result
// (best set, footer, polish, "Final Results" table) to `report`.
std::optional<DESearchOutcome> runDESearch(const DESearch& search, Asker& asker, LogBook& log, LogBook& report,
                                           const std::atomic<bool>* stop = nullptr,
                                           const std::function<void(const DEGeneration&)>& onGeneration = {});

}  // namespace orvane
