#include "engine/energy_levels.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include <fmt/format.h>

#include "core/user_error.hpp"
#include "engine/other_free_ion.hpp"

namespace orvane {

namespace {

constexpr const char* kEngineError = "Error in real CF main program";
constexpr const char* kCfError = "Error in CF Hamiltonian";

bool usesConjugate(const ParameterSet& set) {
    return set.electronCount > 7 && set.electronCount < 14 && !set.switches.actualShell;
}

void checkFinite(double value, const std::string& what) {
    if (!std::isfinite(value)) throw UserError(kEngineError, what + " is not a finite number");
}

std::string keyText(const CrystalFieldRow& row) { return fmt::format("B({},{})", row.k, row.q); }

}  // namespace

FreeIonWeights freeIonWeightsOf(const ParameterSet& set, bool conjugate, std::vector<std::string>* notIncluded) {
    const auto& rows = set.mainFreeIon;
    for (const auto& row : rows) checkFinite(row.cell.value, "free-ion parameter " + row.name);
    const auto slater =
        slaterUpperIntegrals(set.slaterType, {rows[1].cell.value, rows[2].cell.value, rows[3].cell.value});
    const auto other = resolveOtherFreeIon(set.otherFreeIon);
    const double zetaSign = conjugate ? -1.0 : 1.0;
    FreeIonWeights weights{{"EAVG", rows[0].cell.value}, {"F2", slater[0]},           {"F4", slater[1]},
                           {"F6", slater[2]},            {"ZETA", zetaSign * rows[4].cell.value},
                           {"ALPHA", other["ALPHA"]},    {"BETA", other["BETA"]},     {"GAMMA", other["GAMMA"]}};
    for (std::size_t i = 0; i < kOtherFreeIonNames.size(); ++i) {
        const std::string name(kOtherFreeIonNames[i]);
        checkFinite(other.value[i], name);
        if (weights.count(name) == 0 && other.value[i] != 0.0 && notIncluded) notIncluded->push_back(name);
    }
    return weights;
}

CrystalFieldValues crystalFieldParametersOf(const ParameterSet& set, bool conjugate, bool complex) {
    CrystalFieldValues values;
    if (set.crystalField.empty()) return values;
    if (set.cfConvention != CfConvention::Wybourne)
        throw UserError(kCfError, "only crystal-field parameters in Wybourne's convention are handled by "
                                  "the engine so far; convert the parameters first");
    std::map<std::pair<int, int>, std::pair<double, double>> byKey;
    for (const auto& row : set.crystalField) {
        checkFinite(row.re.value, keyText(row));
        checkFinite(row.im.value, keyText(row));
        if (row.k != 2 && row.k != 4 && row.k != 6)
            throw UserError(kCfError, fmt::format("{}: rank k must be 2, 4 or 6", keyText(row)));
        if (row.q < 0 || row.q > row.k)
            throw UserError(kCfError, fmt::format("{}: q must lie between 0 and k", keyText(row)));
        if (row.q == 0 && row.im.value != 0.0)
            throw UserError(kCfError, fmt::format("{}: B(k,0) is real; the imaginary part must be 0", keyText(row)));
        if (!complex && row.im.value != 0.0)
            throw UserError(kCfError, fmt::format("{}: imaginary part {} needs the complex engine, which is "
                                                  "not available yet",
                                                  keyText(row), row.im.value));
        byKey[{row.k, row.q}] = {row.re.value, row.im.value};
    }
    const double sign = conjugate ? -1.0 : 1.0;
    for (const auto& [kq, value] : byKey) {
        if (value.first == 0.0 && value.second == 0.0) continue;
        if (set.fold < 1 || kq.second % set.fold != 0)
            throw UserError(kCfError, fmt::format("B({},{}) couples different blocks of the fold {}: "
                                                  "the fold of symmetry axis does not match the parameters",
                                                  kq.first, kq.second, set.fold));
        values.keys.push_back({kq.first, kq.second});
        values.re.push_back(sign * value.first);
        values.im.push_back(sign * value.second);
    }
    return values;
}

EnergyLevelResult computeEnergyLevels(const ParameterSet& set, const std::filesystem::path& tableDirectory,
                                      LogBook& log, const EnergyLevelOptions& options) {
    const int n = set.electronCount;
    if (n < 1 || n > 14)
        throw UserError(kEngineError, fmt::format("invalid number of f electrons: {} (1 to 14)", n));
    EnergyLevelResult result;
    result.electrons = n;
    result.conjugate = usesConjugate(set);
    result.tableElectrons = result.conjugate ? 14 - n : n;
    result.freeIonWeights = freeIonWeightsOf(set, result.conjugate, &result.parametersNotIncluded);
    if (options.crystalField) {
        auto values = crystalFieldParametersOf(set, result.conjugate, options.complex);
        result.crystalFieldKeys = std::move(values.keys);
        result.crystalFieldValues = std::move(values.re);
        result.crystalFieldImaginary = std::move(values.im);
    }
    if (!result.parametersNotIncluded.empty()) {
        std::string names;
        for (const auto& name : result.parametersNotIncluded) names += " " + name;
        log.appendLine("Parameters not included (their operators are not built yet):" + names);
    }

    if (result.conjugate)
        log.appendLine(fmt::format("Conjugate configuration of {} used for reduced matrices & states!",
                                   result.tableElectrons));
    const auto tables = loadEngineTables(result.tableElectrons, tableDirectory, log);
    result.freeIonOperators = buildFreeIonOperators(tables, set.switches.minSpinMultiplicity);
    if (set.switches.minSpinMultiplicity)
        log.appendLine(fmt::format("Apply truncation of LS basis with min spin multiplicity = {}",
                                   *set.switches.minSpinMultiplicity));
    if (result.freeIonOperators.basis.states.empty())
        throw UserError(kEngineError, "no |SLJ> state is left in the basis");
    log.appendLine(fmt::format("Free-ion Hamiltonian dim. = {}", result.freeIonOperators.basis.states.size()));
    log.appendLine("Finding free-ion eigenvalues and eigenvectors");
    result.freeIon = solveFreeIon(result.freeIonOperators, result.freeIonWeights);
    if (result.freeIon.status != EigenStatus::Ok)
        throw UserError(kEngineError, "the free-ion diagonalisation failed");
    if (!options.crystalField) return result;

    log.appendLine("Storing transformed reduced matrix elements");
    const auto tensors = transformTensors(tables, result.freeIonOperators, result.freeIon);
    log.appendLine(fmt::format("Fold of symmetry = {}", set.fold));
    result.crystalFieldOperators =
        buildCrystalFieldOperators(tensors, result.crystalFieldKeys, set.fold, options.complex);
    for (const auto& block : result.crystalFieldOperators.blocks)
        log.appendLine((options.complex ? "Working on complex crystal field Hamiltonian submatrix with dim. = "
                                        : "Working on crystal field Hamiltonian submatrix with dim. = ") +
                       std::to_string(block.states.size()));
    std::vector<double> freeIonEnergies;
    for (const auto& level : result.freeIon.levels) freeIonEnergies.push_back(level.energy);
    result.crystalField =
        options.complex ? solveComplexCrystalField(result.crystalFieldOperators, freeIonEnergies,
                                                   result.crystalFieldValues, result.crystalFieldImaginary,
                                                   options.wantVectors, options.lowest)
                        : solveRealCrystalField(result.crystalFieldOperators, freeIonEnergies,
                                                result.crystalFieldValues, options.wantVectors, options.lowest);
    if (result.crystalField.status != EigenStatus::Ok)
        throw UserError(options.complex ? "Error in main program for complex CF" : kEngineError,
                        "the crystal-field diagonalisation failed");
    return result;
}

}  // namespace orvane
