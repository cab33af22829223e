#include "engine/energy_levels.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include <fmt/format.h>

#include "core/user_error.hpp"
#include "engine/engine_errors.hpp"

namespace orvane {

namespace {

bool usesConjugate(const ParameterSet& set) {
    return set.electronCount > 7 && set.electronCount < 14 && !set.switches.actualShell;
}

}  // namespace

EnergyLevelResult computeEnergyLevels(const ParameterSet& set, const std::filesystem::path& tableDirectory,
                                      LogBook& log, const EnergyLevelOptions& options) {
    const int n = set.electronCount;
    if (n < 1 || n > 14)
        throw UserError(kRealEngineError, fmt::format("invalid number of f electrons: {} (1 to 14)", n));
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
        throw UserError(kRealEngineError, "no |SLJ> state is left in the basis");
    log.appendLine(fmt::format("Free-ion Hamiltonian dim. = {}", result.freeIonOperators.basis.states.size()));
    log.appendLine("Finding free-ion eigenvalues and eigenvectors");
    result.freeIon = solveFreeIon(result.freeIonOperators, result.freeIonWeights);
    if (result.freeIon.status != EigenStatus::Ok)
        throw UserError(kRealEngineError, "the free-ion diagonalisation failed");
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
        throw UserError(options.complex ? kComplexEngineError : kRealEngineError,
                        "the crystal-field diagonalisation failed");
    return result;
}

}  // namespace orvane
