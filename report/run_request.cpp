#include "report/run_request.hpp"

#include <cstdlib>

#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {

namespace {
constexpr ErrorCategory kMainError = ErrorCategory::Main;
}

RunKind runKindOfMode(int mode) {
    switch (std::abs(mode) % 10) {
        case 0: return RunKind::RealCrystalField;
        case 1: return RunKind::ComplexCrystalField;
        case 2: return RunKind::FreeIon;
        case 5: return RunKind::FreeIonKeepEnergies;
        default: break;
    }
    throw UserError(kMainError, "Invalid run mode " + std::to_string(mode) +
                                    " (last digit 0 real CF, 1 complex CF, 2 or 5 free ion)");
}

bool isFreeIonRun(RunKind kind) { return kind == RunKind::FreeIon || kind == RunKind::FreeIonKeepEnergies; }

std::string engineSwitchOf(RunKind kind) {
    switch (kind) {
        case RunKind::RealCrystalField: return "/cf";
        case RunKind::ComplexCrystalField: return "";
        case RunKind::FreeIon:
        case RunKind::FreeIonKeepEnergies: return "/fi";
    }
    return "";
}

std::string resultFileName(const std::filesystem::path& parameterFile, const std::string& suffix) {
    std::string name = parameterFile.string();
    const std::string extension = parameterFile.extension().string();
    if (iequals(extension, ".par")) name.erase(name.size() - extension.size());
    return name + suffix;
}

ResultNames resultNamesFor(const std::filesystem::path& parameterFile, RunKind kind, bool keepEnergies,
                           int runCounter) {
    const bool freeIon = isFreeIonRun(kind);
    const std::string stem = freeIon ? "_fi" : "";
    ResultNames names{resultFileName(parameterFile, stem + ".gen"), resultFileName(parameterFile, stem + ".ev"),
                      resultFileName(parameterFile, stem + ".eng")};
    const bool discard = (kind == RunKind::RealCrystalField && !keepEnergies && runCounter >= kRunCounterLimit) ||
                         (kind == RunKind::FreeIon && !keepEnergies);
    if (discard) names.energies = kNullOutput;
    return names;
}

ResultNames withUnwantedDiscarded(ResultNames names, const RunRequest& request) {
    if (!request.writeGeneral) names.general = kNullOutput;
    if (!request.writeVectors) names.vectors = kNullOutput;
    if (!request.writeEnergies) names.energies = kNullOutput;
    return names;
}

double minComponentValue(const RunRequest& request) {
    const auto value = parseNumber(trim(request.minComponent));
    if (!value || *value < 0.0 || *value >= 1.0)
        throw UserError(kMainError, "min. value of eigenstate to be processed must be a number from 0 to below 1: \"" +
                                        request.minComponent + "\"");
    return *value;
}

}  // namespace orvane
