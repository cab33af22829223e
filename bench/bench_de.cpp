// Speed of differential evolution: evaluations per second of whole DE
// generations (NP = 40, trial building, crossover, replacement) on one and on
// two threads, against one engine evaluation alone (a values-only solve of the
// prepared model) and one deviation (solve plus matching of 100 levels):
//   Pr3+ (f2, 91 states, fold 2) and Nd3+ (f3, 364 states, fold 2),
//   13 free parameters (F2, F4, F6, ZETA and nine B(k,q)).
// Overhead per evaluation = DE time per evaluation / solve time - 1.
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/benchmark_ions.hpp"
#include "core/log_book.hpp"
#include "fit/differential_evolution.hpp"

namespace {

using namespace orvane;

std::filesystem::path benchTableDirectory() {
    if (const char* dir = std::getenv("ORVANE_TABLE_DIR")) return dir;
    return std::filesystem::current_path() / "bench-engine-rme";
}

ParameterSet praseodymium() { return bench::lanthanideAtFold2(2, {0, 68878, 50347, 32901, 751.7}); }

struct Case {
    ParameterSet set;
    std::shared_ptr<const Model> model;
    std::vector<DEParameter> boxes;
    std::unique_ptr<LevelDeviation> deviation;
};

const Case& prepared(ParameterSet (*ion)()) {
    static std::map<ParameterSet (*)(), Case> cache;
    auto& c = cache[ion];
    if (c.model) return c;
    c.set = ion();
    MemoryLogBook log;
    c.model = std::make_shared<const Model>(Model::build(modelSetupOf(c.set, true, false), benchTableDirectory(), log));
    for (const auto& row : fitParameterRows(c.set, FitKind::RealCrystalField)) {
        const bool crystalField = crystalFieldPartOf(row.id).has_value();
        if (!crystalField && row.name != "F2" && row.name != "F4" && row.name != "F6" && row.name != "ZETA") continue;
        const double half = crystalField ? 300.0 : 0.3 * std::abs(row.initial);
        c.boxes.push_back({row.name, row.initial, row.initial - half, row.initial + half, false});
    }
    int states = 0;
    for (const auto& block : c.model->blocks()) states += static_cast<int>(block.states.size());
    std::vector<ObservedLevel> levels;
    for (int i = 0; i < 100 && 2 * i + 1 <= states; ++i)
        levels.push_back({2 * i + 1, "", false, 100.0 * i});
    c.deviation = std::make_unique<LevelDeviation>(c.model, c.set, FitKind::RealCrystalField, c.boxes, levels,
                                                   DELevelMatching::Fixed);
    return c;
}

void Generations(benchmark::State& state, ParameterSet (*ion)()) {
    const auto& c = prepared(ion);
    DESettings settings;
    settings.maxIterations = 4;
    settings.err = 1e-9;
    settings.sd = 1e-12;
    long evaluations = 0;
    for (auto _ : state) {
        const auto result = runDifferentialEvolution(c.boxes, settings, *c.deviation,
                                                     {1, static_cast<int>(state.range(0)), nullptr, {}});
        evaluations += result.evaluations;
    }
    state.SetItemsProcessed(evaluations);
}

void Deviation(benchmark::State& state, ParameterSet (*ion)()) {
    const auto& c = prepared(ion);
    std::vector<double> values;
    for (const auto& box : c.boxes) values.push_back(box.initial);
    ModelWorkspace workspace;
    for (auto _ : state) benchmark::DoNotOptimize(c.deviation->deviation(values, workspace));
    state.SetItemsProcessed(state.iterations());
}

void SolveValues(benchmark::State& state, ParameterSet (*ion)()) {
    const auto& c = prepared(ion);
    const auto parameters = parameterVectorOf(c.set, false);
    ModelWorkspace workspace;
    for (auto _ : state) {
        auto solution = c.model->solve(parameters, {false, false, kAllEigenvalues, {}, {}, false}, workspace);
        benchmark::DoNotOptimize(solution.levels.data());
    }
    state.SetItemsProcessed(state.iterations());
}

constexpr auto kMs = benchmark::kMillisecond;
BENCHMARK_CAPTURE(Generations, praseodymium, praseodymium)->Arg(1)->Arg(2)->Unit(kMs)->UseRealTime()->Repetitions(3);
BENCHMARK_CAPTURE(Deviation, praseodymium, praseodymium)->Unit(kMs)->Repetitions(3);
BENCHMARK_CAPTURE(SolveValues, praseodymium, praseodymium)->Unit(kMs)->Repetitions(3);
BENCHMARK_CAPTURE(Generations, neodymium, bench::neodymium)->Arg(1)->Arg(2)->Unit(kMs)->UseRealTime()->Repetitions(3);
BENCHMARK_CAPTURE(Deviation, neodymium, bench::neodymium)->Unit(kMs)->Repetitions(3);
BENCHMARK_CAPTURE(SolveValues, neodymium, bench::neodymium)->Unit(kMs)->Repetitions(3);

}  // namespace
