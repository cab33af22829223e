// Cost of the result files of a run against the run itself, on Gd3+ (f7,
// 3432 |SL J MJ> states) at a site of fold 3 (blocks of 1144):
//   EngineWithVectors  computeEnergyLevels asking for every eigenvector;
//   ResultLevels       the vectors carried onto |SL J MJ>, labels (min. component 0.002);
//   WriteStateVectors  the .ev of all 3432 states written through AtomicFileWriter;
//   WriteEnergies      the .eng written the same way;
//   WholeRun           runEngine in mode 0 (engine, general output, .ev, .eng).
// Parameters of typical magnitude for the ion (not fitted values); timings do
// not depend on them. Tables are generated once into $ORVANE_TABLE_DIR or
// ./bench-engine-rme before timing starts.
#include <cstdlib>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/benchmark_ions.hpp"

#include "interactive/asker.hpp"
#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/settings_store.hpp"
#include "report/energy_file.hpp"
#include "engine/energy_levels.hpp"
#include "engine/level_labels.hpp"
#include "engine/parameter_file.hpp"
#include "report/run_driver.hpp"
#include "report/state_vector_file.hpp"

namespace {

using namespace orvane;

std::filesystem::path benchTableDirectory() {
    if (const char* dir = std::getenv("ORVANE_TABLE_DIR")) return dir;
    return std::filesystem::current_path() / "bench-engine-rme";
}

std::filesystem::path benchOutputDirectory() {
    const auto dir = std::filesystem::current_path() / "bench-result-files";
    std::filesystem::create_directories(dir);
    return dir;
}

using bench::bkq;
using bench::gadolinium;
using bench::row;

struct Prepared {
    EnergyLevelResult result;
    EngineTables tables;
    ResultBasis basis;
    std::vector<ResultLevel> levels;
};

const Prepared& prepared() {
    static const Prepared data = [] {
        Prepared p;
        MemoryLogBook log;
        EnergyLevelOptions options;
        options.wantVectors = true;
        p.result = computeEnergyLevels(gadolinium(), benchTableDirectory(), log, options);
        p.tables = loadEngineTables(7, benchTableDirectory(), log);
        p.basis = crystalFieldResultBasis(p.tables.terms, p.result.freeIonOperators.basis);
        p.levels = crystalFieldResultLevels(p.result, p.basis, 0.002);
        return p;
    }();
    return data;
}

void EngineWithVectors(benchmark::State& state) {
    prepared();
    for (auto _ : state) {
        MemoryLogBook log;
        EnergyLevelOptions options;
        options.wantVectors = true;
        auto result = computeEnergyLevels(gadolinium(), benchTableDirectory(), log, options);
        benchmark::DoNotOptimize(result.crystalField.levels.data());
    }
}

void ResultLevels(benchmark::State& state) {
    const auto& p = prepared();
    for (auto _ : state) {
        auto levels = crystalFieldResultLevels(p.result, p.basis, 0.002);
        benchmark::DoNotOptimize(levels.data());
    }
}

void WriteStateVectors(benchmark::State& state) {
    const auto& p = prepared();
    const auto path = benchOutputDirectory() / "Gd.ev";
    for (auto _ : state) {
        AtomicFileWriter writer(path);
        writeStateVectorText(writer.stream(), {"Gd3+ benchmark", "cm^-1", 0.0, false}, p.basis, p.tables.terms,
                             p.levels, 0);
        writer.commit();
    }
    state.counters["MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
}

void WriteEnergies(benchmark::State& state) {
    const auto& p = prepared();
    const auto path = benchOutputDirectory() / "Gd.eng";
    for (auto _ : state) {
        AtomicFileWriter writer(path);
        writeEnergyText(writer.stream(), "Energies (cm^-1, shift 0): Gd3+ benchmark", p.levels, 0.0, 3);
        writer.commit();
    }
}

void WholeRun(benchmark::State& state) {
    prepared();
    const auto file = benchOutputDirectory() / "Gd.par";
    writeParameterFile(file, gadolinium());
    for (auto _ : state) {
        MemoryLogBook log;
        MemorySettingsStore settings;
        RunEnvironment environment{log, settings, benchTableDirectory()};
        auto outcome = runEngine(0, file, {}, environment);
        benchmark::DoNotOptimize(outcome.levels.data());
    }
}

BENCHMARK(EngineWithVectors)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(ResultLevels)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(WriteStateVectors)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(WriteEnergies)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(WholeRun)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
