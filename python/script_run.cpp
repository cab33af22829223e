#include "python/script_run.hpp"

#include <optional>

#include "core/user_error.hpp"
#include "engine/level_labels.hpp"
#include "engine/parameter_vector.hpp"
#include "engine/run_switches.hpp"
#include "fit/fit_parameters.hpp"
#include "params/energy_units.hpp"

namespace orvane {
namespace {

struct SolvedSet {
    Model model;
    ModelSolution solution;
};

// The crystal-field levels of the set; with `derivatives`, those of the mean
// energy of each degenerate level (independent of the basis chosen inside it).
SolvedSet solveSet(const ParameterSet& set, bool complex, bool vectors, bool derivatives,
                   const std::filesystem::path& tables) {
    refuseUnsupportedSwitches(set.switches, std::nullopt);
    NullLogBook log;
    auto model = Model::build(modelSetupOf(set, true, complex), tables, log);
    SolveRequest request;
    request.vectors = vectors;
    if (derivatives) request.derivatives = model.parameterIds();
    request.averageDegenerateLevels = derivatives;
    ModelWorkspace workspace;
    auto solution = model.solve(parameterVectorOf(set, complex), request, workspace);
    if (solution.status != EigenStatus::Ok)
        throw UserError(complex ? ErrorCategory::ComplexEngine : ErrorCategory::RealEngine, "the diagonalisation failed");
    return {std::move(model), std::move(solution)};
}

// Scatters a level's block vector into its column over the whole |SL J MJ> basis.
template <typename Matrix, typename Vector>
void scatter(const Vector& source, const ModelBlock& block, const ResultBasis& basis, Matrix& target, int column) {
    for (int i = 0; i < static_cast<int>(block.states.size()); ++i) {
        const auto& state = block.states[i];
        target(basis.firstOfJState[state.jState] + (state.twiceM + state.twiceJ) / 2, column) = source[i];
    }
}

void describeVectors(const Model& model, const ModelSolution& solution, ScriptLevels& out) {
    const auto basis = crystalFieldResultBasis(model.tables().terms, model.freeIonOperators().basis);
    const auto size = static_cast<Eigen::Index>(basis.states.size());
    const auto levels = static_cast<Eigen::Index>(solution.levels.size());
    const bool complex = model.setup().complex;
    if (complex)
        out.complexVectors.setZero(size, levels);
    else
        out.vectors.setZero(size, levels);
    for (Eigen::Index n = 0; n < levels; ++n) {
        const auto& level = solution.levels[n];
        const auto& block = model.blocks()[static_cast<std::size_t>(level.block)];
        ResultLevel described;
        describeModelLevel(level, block, basis, 1.0, described);  // the label only: no components listed
        out.labels.push_back(described.label);
        if (complex)
            scatter(level.complexVector, block, basis, out.complexVectors, static_cast<int>(n));
        else
            scatter(level.vector, block, basis, out.vectors, static_cast<int>(n));
    }
    for (int i = 0; i < static_cast<int>(size); ++i) out.basis.push_back(basisStateLabel(basis, i));
}

}  // namespace

ScriptLevels computeScriptLevels(const ParameterSet& set, const ScriptRunOptions& options,
                                 const std::filesystem::path& tableDirectory) {
    const auto [model, solution] = solveSet(set, options.complex, options.vectors, options.derivatives, tableDirectory);
    ScriptLevels out;
    out.unit = std::string(energyUnitName(set.switches.energyUnit));
    const auto levels = static_cast<Eigen::Index>(solution.levels.size());
    out.energies.resize(levels);
    out.twiceMu.resize(levels);
    for (Eigen::Index n = 0; n < levels; ++n) {
        out.energies[n] = solution.levels[n].energy;
        const int residue = model.blocks()[static_cast<std::size_t>(solution.levels[n].block)].residue;
        out.twiceMu[n] = twiceCrystalQuantumNumber(residue, model.setup().fold);
    }
    if (options.vectors) describeVectors(model, solution, out);
    if (options.derivatives) {
        out.derivatives = solution.derivatives;
        for (const ParameterId id : model.parameterIds()) out.parameterNames.push_back(fitParameterName(id));
    }
    return out;
}

PropertyStates scriptPropertyStates(const ParameterSet& set, bool complex, const std::filesystem::path& tableDirectory) {
    const auto [model, solution] = solveSet(set, complex, true, false, tableDirectory);
    const auto unit = static_cast<params::EnergyUnitCode>(static_cast<int>(set.switches.energyUnit));
    return crystalFieldStates(model, solution, params::unitInWavenumbers(unit));
}

}  // namespace orvane
