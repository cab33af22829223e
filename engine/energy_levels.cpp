#include "engine/energy_levels.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include <fmt/format.h>

#include "core/user_error.hpp"
#include "engine/correlation_crystal_field.hpp"
#include "engine/model.hpp"
#include "engine/engine_errors.hpp"
#include "engine/hamiltonian_printout.hpp"
#include "engine/other_free_ion.hpp"
#include "engine/t2_correction.hpp"
#include "params/point_group.hpp"

namespace orvane {

namespace {

bool usesConjugate(const ParameterSet& set) {
    return set.electronCount > 7 && set.electronCount < 14 && !set.switches.actualShell;
}

// The log lines of the spin-spin choices ("/noss", "/wrongrankss").
void logSpinSpinForm(SpinSpinForm form, LogBook& log) {
    if (form == SpinSpinForm::Dropped) log.appendLine("Set spin-spin interaction to zero!!");
    if (form == SpinSpinForm::WrongRank1) log.appendLine("Use wrong rank=1 for spin-spin interaction !!");
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
    const auto parameters = parameterVectorOf(set, options.complex);
    if (result.conjugate)
        log.appendLine(fmt::format("Conjugate configuration of {} used for reduced matrices & states!",
                                   result.tableElectrons));
    const auto setup = modelSetupOf(set, options.crystalField, options.complex);
    result.model = std::make_shared<const Model>(Model::build(setup, tableDirectory, log));
    const Model& model = *result.model;
    logSpinSpinForm(setup.spinSpin, log);
    result.freeIonOperators = model.freeIonOperators();
    if (set.switches.minSpinMultiplicity)
        log.appendLine(fmt::format("Apply truncation of LS basis with min spin multiplicity = {}",
                                   *set.switches.minSpinMultiplicity));
    log.appendLine(fmt::format("Free-ion Hamiltonian dim. = {}", result.freeIonOperators.basis.states.size()));
    logFreeIonRequests(set, result, log);
    log.appendLine("Finding free-ion eigenvalues and eigenvectors");
    ModelWorkspace workspace;
    SolveRequest request{true, options.wantVectors, options.lowest, {}, {}};
    request.blockSolved = [&log](int done, int total) {
        log.progress(LogCategory::CrystalField, "crystal-field blocks", done, total);
    };
    auto solution = model.solve(parameters, request, workspace);
    if (solution.status != EigenStatus::Ok)
        throw UserError(options.complex ? kComplexEngineError : kRealEngineError, "the diagonalisation failed");
    result.freeIon = std::move(solution.freeIon);
    if (!options.crystalField) return result;

    log.appendLine("Storing transformed reduced matrix elements");
    result.crystalFieldTensors =
        transformTensors(model.tables(), result.freeIonOperators, result.freeIon, model.correlation());
    std::string site;
    if (set.switches.pointGroup && *set.switches.pointGroup >= 1 && *set.switches.pointGroup <= params::kPointGroupCount)
        site = " (Site-symmetry: " + params::pointGroup(*set.switches.pointGroup).name + ")";
    log.appendLine(fmt::format("Fold of symmetry = {}{}", set.fold, site));
    if (set.switches.cubicCF) log.appendLine("Cubic Crystal Field assumed!");
    auto& operators = result.crystalFieldOperators;
    operators.fold = set.fold;
    operators.keys = result.crystalFieldKeys;
    operators.blocks = residueBlocks(result.crystalFieldTensors.levelTwiceJ, set.fold);
    for (const auto& block : operators.blocks)
        log.appendLine((options.complex ? "Working on complex crystal field Hamiltonian submatrix with dim. = "
                                        : "Working on crystal field Hamiltonian submatrix with dim. = ") +
                       std::to_string(block.states.size()));
    if (options.complex && set.switches.printHamiltonian) {
        // Listed between free-ion levels (|a J MJ>), the basis the listing has always used.
        const auto levelOperators = levelBasisOperators(result, true);
        std::vector<double> freeIonEnergies;
        for (const auto& level : result.freeIon.levels) freeIonEnergies.push_back(level.energy);
        for (std::size_t b = 0; b < levelOperators.blocks.size(); ++b)
            for (const auto& line : complexHamiltonianPrintoutLines(
                     complexBlockMatrix(levelOperators, b, freeIonEnergies, result.crystalFieldValues,
                                        result.crystalFieldImaginary)))
                log.appendLine(line);
    }
    for (const auto& level : solution.levels) result.crystalField.levels.push_back({level.energy, level.block});
    if (options.wantVectors) result.modelLevels = std::move(solution.levels);
    return result;
}

CrystalFieldOperators levelBasisOperators(const EnergyLevelResult& result, bool withImaginaryParts) {
    return buildCrystalFieldOperators(result.crystalFieldTensors, result.crystalFieldKeys,
                                      result.crystalFieldOperators.fold, withImaginaryParts);
}

}  // namespace orvane
