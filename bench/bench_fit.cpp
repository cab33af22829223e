// Speed of one least-squares fit cycle (engine run with the derivatives of
// the observed states, damped Gauss-Newton step, tables refreshed) against
// one solve with eigenvectors of the same prepared model:
//   Nd3+ (f3, 364 states, fold 2), 20 free parameters, 100 observed levels;
//   Gd3+ (f7, 3432 states, fold 3), 14 free parameters, 100 observed levels.
// The observations are the set's own levels moved by a few cm^-1, so each
// cycle takes a real step. The cycle starts from a fresh evaluation at the
// same parameters every iteration (outside the timing); the counter
// "solves" is the number of engine runs of the cycle (1 when its first step
// is accepted).
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/benchmark_ions.hpp"
#include "core/log_book.hpp"
#include "engine/model.hpp"
#include "fit/fit_parameters.hpp"
#include "fit/fit_session.hpp"

namespace {

using namespace orvane;

std::filesystem::path benchTableDirectory() {
    if (const char* dir = std::getenv("ORVANE_TABLE_DIR")) return dir;
    return std::filesystem::current_path() / "bench-engine-rme";
}

ParameterSet neodymiumWithThreeBody() {
    auto set = bench::neodymium();
    for (const char* name : {"T2", "T3", "T4", "T6", "T7", "T8"}) set.otherFreeIon.push_back(bench::row(name, 100));
    set.otherFreeIon.push_back(bench::row("M0", 2));
    set.otherFreeIon.push_back(bench::row("P2", 200));
    return set;
}

struct FitCase {
    ParameterSet set;
    std::shared_ptr<const Model> model;
    FitWorkspace workspace;
};

// The workspace: `freeNames` free, 100 observed levels every `stride` states from the lowest.
FitCase prepare(ParameterSet set, const std::vector<std::string>& freeNames, int stride) {
    FitCase c{std::move(set), nullptr, {}};
    MemoryLogBook log;
    c.model = std::make_shared<const Model>(Model::build(modelSetupOf(c.set, true, false), benchTableDirectory(), log));
    c.workspace.parameters = fitParameterRows(c.set, FitKind::RealCrystalField);
    c.workspace.settings.maxLevels = 0;
    for (const auto& name : freeNames) setFitOption(c.workspace.parameters, name, kFitOptionFree);
    FitSession reference(c.set, c.workspace, c.model);
    reference.update();
    const auto& energies = reference.evaluation().energies;
    for (int i = 0; i < 100; ++i) {
        const int state = 1 + i * stride;
        c.workspace.levels.push_back(
            {state, "", false, energies[static_cast<std::size_t>(state - 1)] + 3.0 * ((i % 7) - 3)});
    }
    return c;
}

void cycle(benchmark::State& state, const FitCase& c) {
    FitSession session(c.set, c.workspace, c.model);
    double solves = 0;
    for (auto _ : state) {
        state.PauseTiming();
        session.workspace().parameters = c.workspace.parameters;
        session.update();
        state.ResumeTiming();
        solves += session.runCycle().solves;
    }
    state.counters["solves"] = benchmark::Counter(solves, benchmark::Counter::kAvgIterations);
}

void solveWithVectors(benchmark::State& state, const FitCase& c) {
    ModelWorkspace workspace;
    const auto parameters = parameterVectorOf(c.set, false);
    const SolveRequest request{false, true, kAllEigenvalues, {}, {}};
    c.model->solve(parameters, request, workspace);
    for (auto _ : state) {
        auto solution = c.model->solve(parameters, request, workspace);
        benchmark::DoNotOptimize(solution.levels.data());
    }
}

const FitCase& neodymium() {
    static const FitCase c = prepare(neodymiumWithThreeBody(),
                                     {"EAVG", "F2", "F4", "F6", "ZETA", "ALPHA", "BETA", "GAMMA", "T2", "M0", "P2",
                                      "B20", "B22", "B40", "B42", "B44", "B60", "B62", "B64", "B66"},
                                     2);
    return c;
}

const FitCase& gadolinium() {
    static const FitCase c = prepare(bench::gadolinium(),
                                     {"EAVG", "F2", "F4", "F6", "ZETA", "ALPHA", "BETA", "GAMMA", "B20", "B40", "B43",
                                      "B60", "B63", "B66"},
                                     2);
    return c;
}

void FitCycleNeodymium(benchmark::State& state) { cycle(state, neodymium()); }
void SolveVectorsNeodymium(benchmark::State& state) { solveWithVectors(state, neodymium()); }
void FitCycleGadolinium(benchmark::State& state) { cycle(state, gadolinium()); }
void SolveVectorsGadolinium(benchmark::State& state) { solveWithVectors(state, gadolinium()); }

constexpr auto kMs = benchmark::kMillisecond;
BENCHMARK(FitCycleNeodymium)->Unit(kMs)->Repetitions(3);
BENCHMARK(SolveVectorsNeodymium)->Unit(kMs)->Repetitions(3);
BENCHMARK(FitCycleGadolinium)->Unit(kMs)->Iterations(3)->Repetitions(3);
BENCHMARK(SolveVectorsGadolinium)->Unit(kMs)->Iterations(3)->Repetitions(3);

}  // namespace
