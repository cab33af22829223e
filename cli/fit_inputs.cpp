#include "cli/fit_inputs.hpp"

#include "core/user_error.hpp"
#include "fit/default_levels.hpp"

namespace orvane::cli {

FitKind fitKindOf(bool freeIon, bool complex) {
    return freeIon ? FitKind::FreeIon : complex ? FitKind::ComplexCrystalField : FitKind::RealCrystalField;
}

std::filesystem::path besideInput(const std::string& file, const std::string& suffix) {
    const std::filesystem::path path(file);
    return path.parent_path() / (path.stem().string() + suffix + ".par");
}

std::filesystem::path observedLevelsPath(const std::string& observed) {
    if (!observed.empty()) return observed;
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (const auto list = findDefaultLevelList(error ? std::filesystem::current_path() : program.parent_path()))
        return *list;
    throw UserError("Error in fitting",
                    "No observed levels: give --observed FILE or --grasp FILE (no defaulteng.txt beside the program)");
}

}  // namespace orvane::cli
