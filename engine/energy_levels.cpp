#include "engine/energy_levels.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include <fmt/format.h>

#include "core/user_error.hpp"
#include "engine/correlation_crystal_field.hpp"
#include "engine/engine_errors.hpp"
#include "engine/hamiltonian_printout.hpp"
#include "engine/other_free_ion.hpp"
#include "engine/t2_correction.hpp"

namespace orvane {

namespace {

bool usesConjugate(const ParameterSet& set) {
    return set.electronCount > 7 && set.electronCount < 14 && !set.switches.actualShell;
}

// Free-ion build choices of the run switches ("/spinmmin= ", "/noss", "/wrongrankss").
FreeIonBuildOptions freeIonBuildOptionsOf(const ParameterSet& set, LogBook& log) {
    FreeIonBuildOptions build;
    build.minMultiplicity = set.switches.minSpinMultiplicity;
    build.electrons = set.electronCount;
    if (set.switches.noSpinSpin) {
        build.spinSpin = SpinSpinForm::Dropped;
        log.appendLine("Set spin-spin interaction to zero!!");
    } else if (set.switches.wrongRankSpinSpin) {
        build.spinSpin = SpinSpinForm::WrongRank1;
        log.appendLine("Use wrong rank=1 for spin-spin interaction !!");
    }
    return build;
}

// "/t2correction" and "/printhm" listings of the free-ion stage.
void logFreeIonRequests(const ParameterSet& set, const EnergyLevelResult& result, LogBook& log) {
    if (set.switches.t2Correction) {
        const auto other = resolveOtherFreeIon(set.otherFreeIon);
        const auto& weights = result.freeIonWeights;
        const auto correction = t2SlaterCorrection(set.electronCount, other["T2"]);
        const std::array<double, 3> uncorrected = {weights.at("F2") - correction.deltaF[0],
                                                   weights.at("F4") - correction.deltaF[1],
                                                   weights.at("F6") - correction.deltaF[2]};
        for (const auto& line : t2CorrectionLogLines(correction, uncorrected)) log.appendLine(line);
    }
    if (set.switches.printHamiltonian) {
        log.appendLine("Print Hamiltonian matrix elements");
        const auto blocks = freeIonHamiltonian(result.freeIonOperators, result.freeIonWeights);
        for (const auto& line : hamiltonianPrintoutLines(result.freeIonOperators.basis, blocks))
            log.appendLine(line);
    }
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
    const auto tables = loadEngineTables(result.tableElectrons, tableDirectory, log,
                                         set.switches.useZic ? MagneticTableFiles::ZForm
                                                             : MagneticTableFiles::Operators);
    result.freeIonOperators = buildFreeIonOperators(tables, freeIonBuildOptionsOf(set, log));
    if (set.switches.minSpinMultiplicity)
        log.appendLine(fmt::format("Apply truncation of LS basis with min spin multiplicity = {}",
                                   *set.switches.minSpinMultiplicity));
    if (result.freeIonOperators.basis.states.empty())
        throw UserError(kRealEngineError, "no |SLJ> state is left in the basis");
    log.appendLine(fmt::format("Free-ion Hamiltonian dim. = {}", result.freeIonOperators.basis.states.size()));
    logFreeIonRequests(set, result, log);
    log.appendLine("Finding free-ion eigenvalues and eigenvectors");
    result.freeIon = solveFreeIon(result.freeIonOperators, result.freeIonWeights);
    if (result.freeIon.status != EigenStatus::Ok)
        throw UserError(kRealEngineError, "the free-ion diagonalisation failed");
    if (!options.crystalField) return result;

    log.appendLine("Storing transformed reduced matrix elements");
    const auto correlationTables =
        loadCorrelationTermTensors(result.crystalFieldKeys, tables, n, tableDirectory, log);
    result.crystalFieldTensors =
        transformTensors(tables, result.freeIonOperators, result.freeIon, correlationTables);
    const auto& tensors = result.crystalFieldTensors;
    log.appendLine(fmt::format("Fold of symmetry = {}", set.fold));
    if (set.switches.cubicCF) log.appendLine("Cubic Crystal Field assumed!");
    result.crystalFieldOperators =
        buildCrystalFieldOperators(tensors, result.crystalFieldKeys, set.fold, options.complex);
    for (const auto& block : result.crystalFieldOperators.blocks)
        log.appendLine((options.complex ? "Working on complex crystal field Hamiltonian submatrix with dim. = "
                                        : "Working on crystal field Hamiltonian submatrix with dim. = ") +
                       std::to_string(block.states.size()));
    std::vector<double> freeIonEnergies;
    for (const auto& level : result.freeIon.levels) freeIonEnergies.push_back(level.energy);
    if (options.complex && set.switches.printHamiltonian)
        for (std::size_t b = 0; b < result.crystalFieldOperators.blocks.size(); ++b)
            for (const auto& line : complexHamiltonianPrintoutLines(
                     complexBlockMatrix(result.crystalFieldOperators, b, freeIonEnergies,
                                        result.crystalFieldValues, result.crystalFieldImaginary)))
                log.appendLine(line);
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
