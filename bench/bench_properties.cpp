// Speed of the derived properties after a run (the eigenstates in memory):
//   Susceptibility200  the moment table between the states populated at
//                      300 K and every state, then chi_x, chi_y, chi_z at 200
//                      temperatures (1.5 K to 300 K);
//   MomentTable        the moment table alone;
//   GFactors           the g tensor of every doublet.
// Ions: Gd3+ (f7, 3432 states, fold 3) and Er3+ (f11 through f3, 364 states,
// fold 2) of bench/benchmark_ions.hpp. Tables are generated once into
// $ORVANE_TABLE_DIR or ./bench-engine-rme before timing starts.
#include <cstdlib>
#include <filesystem>
#include <map>

#include <benchmark/benchmark.h>

#include "bench/benchmark_ions.hpp"
#include "core/log_book.hpp"
#include "engine/model.hpp"
#include "properties/g_factors.hpp"
#include "properties/magnetic_moment.hpp"
#include "properties/susceptibility.hpp"

namespace {

using namespace orvane;

std::filesystem::path benchTableDirectory() {
    if (const char* dir = std::getenv("ORVANE_TABLE_DIR")) return dir;
    return std::filesystem::current_path() / "bench-engine-rme";
}

// The states of one run per ion, computed outside the timing.
const PropertyStates& statesOf(ParameterSet (*ion)()) {
    static std::map<ParameterSet (*)(), PropertyStates> cache;
    auto found = cache.find(ion);
    if (found == cache.end()) {
        const auto set = ion();
        MemoryLogBook log;
        const auto model = Model::build(modelSetupOf(set, true, false), benchTableDirectory(), log);
        ModelWorkspace workspace;
        const auto solution = model.solve(parameterVectorOf(set, false), {false, true, kAllEigenvalues, {}, {}}, workspace);
        found = cache.emplace(ion, crystalFieldStates(model, solution, 1.0)).first;
    }
    return found->second;
}

void Susceptibility200(benchmark::State& state, ParameterSet (*ion)()) {
    const auto& states = statesOf(ion);
    const auto grid = temperatureGrid(1.5, 300, 1.5);
    for (auto _ : state) {
        const auto table = susceptibilityTable(states, magneticMomentOperator(states), grid.back());
        double sum = 0.0;
        for (double t : grid) sum += susceptibilityAt(table, t).average();
        benchmark::DoNotOptimize(sum);
    }
    state.counters["temperatures"] = static_cast<double>(grid.size());
}

void MomentTable(benchmark::State& state, ParameterSet (*ion)()) {
    const auto& states = statesOf(ion);
    for (auto _ : state) benchmark::DoNotOptimize(susceptibilityTable(states, magneticMomentOperator(states), 300));
}

void GFactors(benchmark::State& state, ParameterSet (*ion)()) {
    const auto& states = statesOf(ion);
    const auto moment = magneticMomentOperator(states);
    for (auto _ : state)
        for (const auto& [first, second] : pairDoublets(states))
            benchmark::DoNotOptimize(doubletGFactors(states, moment, first, second));
}

constexpr auto kMs = benchmark::kMillisecond;
BENCHMARK_CAPTURE(Susceptibility200, gadolinium, bench::gadolinium)->Unit(kMs);
BENCHMARK_CAPTURE(MomentTable, gadolinium, bench::gadolinium)->Unit(kMs);
BENCHMARK_CAPTURE(GFactors, gadolinium, bench::gadolinium)->Unit(kMs);
BENCHMARK_CAPTURE(Susceptibility200, erbium, bench::erbium)->Unit(kMs);
BENCHMARK_CAPTURE(MomentTable, erbium, bench::erbium)->Unit(kMs);
BENCHMARK_CAPTURE(GFactors, erbium, bench::erbium)->Unit(kMs);

}  // namespace
