// Differential evolution on levels computed by Orvane from the Pr3+:LaF3
// parameters of Carnall, Goodman, Rajnak & Rana, J. Chem. Phys. 90, 3443
// (1989), Table I (examples/Pr3plus-LaF3.par): recovery from wide boxes, and
// the same history with one and with two threads for one seed.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "core/log_book.hpp"
#include "engine/parameter_file.hpp"
#include "fit/differential_evolution.hpp"
#include "fit/fit_session.hpp"
#include "params/ligand_file.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

struct Problem {
    ParameterSet set;
    std::shared_ptr<const Model> model;
    std::vector<ObservedLevel> levels;
};

// Every distinct level of the set (or of its superposition-model crystal field) as an observation.
Problem praseodymium(const std::optional<DESuperposition>& superposition = std::nullopt,
                     const std::vector<DEParameter>& truth = {}) {
    Problem p{readParameterFile(test::sourceDirectory() / "examples" / "Pr3plus-LaF3.par"), nullptr, {}};
    MemoryLogBook log;
    p.model = std::make_shared<const Model>(Model::build(modelSetupOf(p.set, true, false), test::engineTableDirectory(), log));
    const LevelDeviation known(p.model, p.set, FitKind::RealCrystalField, truth, {}, DELevelMatching::Fixed, superposition);
    std::vector<double> values;
    for (const auto& t : truth) values.push_back(t.initial);
    ModelWorkspace workspace;
    const auto solution = p.model->solve(fitParameterVector(parameterVectorOf(p.set, false), known.rowsOf(values)),
                                         {false, false, kAllEigenvalues, {}, {}, false}, workspace);
    for (std::size_t s = 0; s < solution.levels.size(); ++s)
        if (s == 0 || !degenerateEnergies(solution.levels[s - 1].energy, solution.levels[s].energy))
            p.levels.push_back({static_cast<int>(s + 1), "", false, solution.levels[s].energy});
    return p;
}

std::vector<DEParameter> freeIonAndCrystalFieldBoxes(const ParameterSet& set) {
    std::vector<DEParameter> boxes;
    for (const auto& row : fitParameterRows(set, FitKind::RealCrystalField)) {
        const bool crystalField = crystalFieldPartOf(row.id).has_value();
        if (!crystalField && row.name != "F2" && row.name != "F4" && row.name != "F6" && row.name != "ZETA") continue;
        const double half = crystalField ? 300.0 : 0.3 * std::abs(row.initial);
        boxes.push_back({row.name, row.initial, row.initial - half, row.initial + half, false});
    }
    return boxes;
}

// DE, then the least-squares polish over the same parameters; returns the final RMS deviation.
double searchAndPolish(const Problem& p, const std::vector<DEParameter>& boxes, const LevelDeviation& deviation,
                       const DESettings& settings) {
    DEOptions options;
    options.seed = 20261124;
    options.threads = 2;
    const auto result = runDifferentialEvolution(boxes, settings, deviation, options);
    std::printf("DE: %d generations, %ld evaluations, best RMS Dev. %.2f\n", result.history.back().iteration,
                result.evaluations, result.bestDeviation);
    FitWorkspace workspace;
    workspace.parameters = deviation.rowsOf(result.best);
    for (const auto& box : boxes) setFitOption(workspace.parameters, box.name, kFitOptionFree);
    workspace.levels = p.levels;
    workspace.settings.maxLevels = 0;
    FitSession session(p.set, workspace, p.model);
    session.update();
    for (int cycle = 0; cycle < 30; ++cycle) session.runCycle();
    return session.workspace().rmsDeviation;
}

TEST(DifferentialEvolution, RecoversPraseodymiumFromWideBoxes) {
    const auto p = praseodymium();
    const auto boxes = freeIonAndCrystalFieldBoxes(p.set);
    ASSERT_EQ(boxes.size(), 13u);
    const LevelDeviation deviation(p.model, p.set, FitKind::RealCrystalField, boxes, p.levels, DELevelMatching::Fixed);
    DESettings settings;
    settings.maxIterations = 300;
    settings.err = 1.0;
    EXPECT_LT(searchAndPolish(p, boxes, deviation, settings), 1.0);
}

TEST(DifferentialEvolution, SameHistoryWithOneAndTwoThreads) {
    const auto p = praseodymium();
    const auto boxes = freeIonAndCrystalFieldBoxes(p.set);
    const LevelDeviation deviation(p.model, p.set, FitKind::RealCrystalField, boxes, p.levels, DELevelMatching::Fixed);
    DESettings settings;
    settings.parents = 12;
    settings.maxIterations = 8;
    settings.scheme = DEScheme::Accelerated;
    std::vector<DEResult> runs;
    for (const int threads : {1, 2}) runs.push_back(runDifferentialEvolution(boxes, settings, deviation, {7, threads, nullptr, {}}));
    EXPECT_EQ(runs[0].best, runs[1].best);
    ASSERT_EQ(runs[0].history.size(), runs[1].history.size());
    for (std::size_t g = 0; g < runs[0].history.size(); ++g) {
        EXPECT_EQ(runs[0].history[g].best, runs[1].history[g].best) << g;
        EXPECT_EQ(runs[0].history[g].updates, runs[1].history[g].updates) << g;
    }
    // A break after generation 3 ends the search there with that generation's best set.
    std::atomic<bool> stop{false};
    const auto interrupted = runDifferentialEvolution(
        boxes, settings, deviation, {7, 2, &stop, [&](const DEGeneration& g) { stop.store(g.iteration == 3); }});
    EXPECT_EQ(interrupted.stop, DEStop::Interrupted);
    EXPECT_EQ(interrupted.history.size(), 4u);
    EXPECT_EQ(interrupted.bestDeviation, runs[0].history[3].best);
    ModelWorkspace workspace;
    EXPECT_NEAR(deviation.deviation(interrupted.best, workspace), interrupted.bestDeviation, 1e-9);
}

}  // namespace
}  // namespace orvane

namespace orvane {
namespace {

// The superposition model over examples/distorted-octahedron.lig: levels of
// known intrinsic parameters and power laws, found again from wide boxes.
TEST(DifferentialEvolution, RecoversSuperpositionParameters) {
    const auto file = params::readLigandFile(test::sourceDirectory() / "examples" / "distorted-octahedron.lig");
    const DESuperposition superposition{file.ligands, *file.r0};
    const std::vector<DEParameter> truth = {{"Abar2", 400}, {"Abar4", 450}, {"Abar6", 250},
                                            {"t2", 5},      {"t4", 8},      {"t6", 10}};
    const auto p = praseodymium(superposition, truth);
    std::vector<DEParameter> boxes;
    for (const auto& t : truth)
        boxes.push_back({t.name, t.initial, t.name[0] == 'A' ? 0.5 * t.initial : 2.0,
                         t.name[0] == 'A' ? 1.5 * t.initial : 14.0, false});
    const LevelDeviation deviation(p.model, p.set, FitKind::RealCrystalField, boxes, p.levels, DELevelMatching::Fixed,
                                   superposition);
    DESettings settings;
    settings.maxIterations = 400;
    settings.err = 0.5;
    settings.scheme = DEScheme::Accelerated;
    const auto result = runDifferentialEvolution(boxes, settings, deviation, {99, 2, nullptr, {}});
    const auto polished = deviation.polishSuperposition(result.best);
    std::printf("DE (superposition model): %d generations, %ld evaluations, best RMS Dev. %.3f; polished %.2e in %d "
                "cycles\n",
                result.history.back().iteration, result.evaluations, result.bestDeviation, polished.deviation,
                polished.cycles);
    EXPECT_LT(result.bestDeviation, 1.0);
    EXPECT_LT(polished.deviation, 0.01);
}

}  // namespace
}  // namespace orvane
