#include "interactive/run_options.hpp"

#include <cmath>

#include "core/text.hpp"
#include "core/user_error.hpp"
#include "engine/parameter_file.hpp"

namespace orvane {

namespace {

constexpr const char* kSection = "Settings";
constexpr const char* kKindKey = "OptionsRunKind";
constexpr const char* kInputKey = "OptionsInputFile";
constexpr const char* kGeneralKey = "OptionsWriteGeneral";
constexpr const char* kEnergiesKey = "OptionsWriteEnergies";
constexpr const char* kVectorsKey = "OptionsWriteVectors";
constexpr const char* kVectorCountKey = "OptionsVectorsToStore";
constexpr const char* kMinCoefficientKey = "OptionsMinCoefficient";
constexpr const char* kActualShellKey = "OptionsActualShell";
constexpr const char* kPrintHmKey = "OptionsPrintHm";

bool minCoefficientValid(const std::string& text) {
    RunRequest probe;
    probe.minComponent = text;
    try {
        minComponentValue(probe);
        return true;
    } catch (const UserError&) {
        return false;
    }
}

bool readFlag(const SettingsStore& settings, const char* key, bool fallback) {
    return settings.readInt(kSection, key, fallback ? 1 : 0) != 0;
}

void writeFlag(SettingsStore& settings, const char* key, bool value) {
    settings.write(kSection, key, value ? "1" : "0");
}

}  // namespace

int runModeOf(RunChoice kind) {
    switch (kind) {
        case RunChoice::FreeIon: return 2;
        case RunChoice::ComplexCrystalField: return 1;
        case RunChoice::RealCrystalField: break;
    }
    return 0;
}

std::optional<int> vectorsToStoreOf(const std::string& text) {
    const auto value = parseNumber(trim(text));
    if (!value || *value != std::floor(*value) || *value < 1.0 || *value > kMaxVectorsToStore) return std::nullopt;
    return static_cast<int>(*value);
}

bool acceptMinCoefficient(const std::string& text, Asker& asker) {
    if (minCoefficientValid(text)) return true;
    asker.showMessage("Error", "Invalid value of min. statevector coefficient to store!!!");
    return false;
}

std::string optionTextOf(const RunOptions& options) {
    std::string text = options.actualShell ? "/actualshell" : "";
    if (options.printHamiltonian) text += text.empty() ? "/printhm" : " /printhm";
    return text;
}

RunRequest runRequestOf(const RunOptions& options) {
    RunRequest request;
    request.eigenvectorsToStore = options.vectorsToStore;
    request.minComponent = options.minCoefficient;
    request.optionText = optionTextOf(options);
    request.writeGeneral = options.writeGeneral;
    request.writeEnergies = options.writeEnergies;
    request.writeVectors = options.writeVectors;
    return request;
}

bool truncatesLsBasis(const std::filesystem::path& parameterFile) {
    try {
        return readParameterFile(parameterFile).switches.minSpinMultiplicity.has_value();
    } catch (const UserError&) {
        return false;
    }
}

bool confirmFreeIonRun(RunChoice kind, const std::filesystem::path& parameterFile, Asker& asker) {
    if (kind != RunChoice::FreeIon || !truncatesLsBasis(parameterFile)) return true;
    return asker.askChoice("Probably wrong CF fit",
                           "Truncation of LS basis will lead to very inaccurate free-ion calculations. Do you "
                           "really want to carry out this free-ion calculations with truncation of LS basis?",
                           Buttons::YesNoCancel) == Choice::Yes;
}

std::optional<PreparedRun> prepareRun(const RunOptions& options, Asker& asker) {
    std::error_code error;
    if (options.inputFile.empty() || !std::filesystem::is_regular_file(options.inputFile, error)) {
        asker.showMessage("Error", "Can't find input parameters file!");
        return std::nullopt;
    }
    if (!confirmFreeIonRun(options.kind, options.inputFile, asker)) return std::nullopt;
    return PreparedRun{runModeOf(options.kind), options.inputFile, runRequestOf(options)};
}

RunOptions readRunOptions(const SettingsStore& settings) {
    RunOptions options;
    const int kind = settings.readInt(kSection, kKindKey, static_cast<int>(options.kind));
    if (kind >= 0 && kind <= 2) options.kind = static_cast<RunChoice>(kind);
    options.inputFile = settings.read(kSection, kInputKey).value_or("");
    options.writeGeneral = readFlag(settings, kGeneralKey, true);
    options.writeEnergies = readFlag(settings, kEnergiesKey, true);
    options.writeVectors = readFlag(settings, kVectorsKey, true);
    if (const auto text = settings.read(kSection, kVectorCountKey))
        options.vectorsToStore = vectorsToStoreOf(*text).value_or(options.vectorsToStore);
    if (const auto text = settings.read(kSection, kMinCoefficientKey); text && minCoefficientValid(*text))
        options.minCoefficient = *text;
    options.actualShell = readFlag(settings, kActualShellKey, false);
    options.printHamiltonian = readFlag(settings, kPrintHmKey, false);
    return options;
}

void writeRunOptions(SettingsStore& settings, const RunOptions& options) {
    settings.write(kSection, kKindKey, std::to_string(static_cast<int>(options.kind)));
    settings.write(kSection, kInputKey, options.inputFile.string());
    writeFlag(settings, kGeneralKey, options.writeGeneral);
    writeFlag(settings, kEnergiesKey, options.writeEnergies);
    writeFlag(settings, kVectorsKey, options.writeVectors);
    settings.write(kSection, kVectorCountKey, std::to_string(options.vectorsToStore));
    settings.write(kSection, kMinCoefficientKey, options.minCoefficient);
    writeFlag(settings, kActualShellKey, options.actualShell);
    writeFlag(settings, kPrintHmKey, options.printHamiltonian);
}

}  // namespace orvane
