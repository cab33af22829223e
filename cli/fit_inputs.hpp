#pragma once
// What `orvane fit` and `orvane de` take alike: the kind of model, the
// observed levels (a file, or the default level list beside the program) and
// the name of the output beside the input.
#include <filesystem>
#include <string>

#include "engine/parameter_set.hpp"
#include "fit/fit_workspace.hpp"

namespace orvane::cli {

FitKind fitKindOf(bool freeIon, bool complex);
// FILE.par -> FILE<suffix>.par in the same folder.
std::filesystem::path besideInput(const std::string& file, const std::string& suffix);
// `observed`, or "defaulteng.txt" below the program's folder; UserError when neither.
std::filesystem::path observedLevelsPath(const std::string& observed);

}  // namespace orvane::cli
