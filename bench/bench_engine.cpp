// Speed of the energy-level engine on the two benchmark ions, against LAPACK
// alone on the same crystal-field blocks:
//   Gd3+ (f7, 3432 states) at a site of fold 3 (blocks of 1144),
//   Er3+ (f11 through f3, 364 states) at a site of fold 2 (two Kramers partner blocks of 182).
// Three timings per ion:
//   Run        the whole library call computeEnergyLevels (tables read from
//              files, free ion, components, crystal-field blocks, eigenvalues);
//   Recombine  the fit's hot path: stored components recombined with the
//              parameters and the blocks diagonalised (eigenvalues only);
//   Lapack     symmetricEigenvalues (one dsyevr per block) on every block of
//              the same Hamiltonian, without the time-reversal reuse.
// The parameters have typical magnitudes for the ions (not fitted values):
// timings do not depend on them. Tables are generated once into
// $ORVANE_TABLE_DIR or ./bench-engine-rme before timing starts.
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "core/eigen_solver.hpp"
#include "core/log_book.hpp"
#include "engine/energy_levels.hpp"

namespace {

using namespace orvane;

std::filesystem::path benchTableDirectory() {
    if (const char* dir = std::getenv("ORVANE_TABLE_DIR")) return dir;
    return std::filesystem::current_path() / "bench-engine-rme";
}

FreeIonRow row(const std::string& name, double value) { return {name, {std::to_string(value), value}}; }
CrystalFieldRow bkq(int k, int q, double re) { return {k, q, {std::to_string(re), re}, {"0", 0.0}}; }

ParameterSet gadolinium() {
    ParameterSet set;
    set.electronCount = 7;
    set.fold = 3;
    set.mainFreeIon = {row("EAVG", 0), row("F2", 84000), row("F4", 61000), row("F6", 44000), row("ZETA", 1500)};
    set.otherFreeIon = {row("ALPHA", 18), row("BETA", -600), row("GAMMA", 1500)};
    set.crystalField = {bkq(2, 0, -300), bkq(4, 0, 500), bkq(4, 3, 400), bkq(6, 0, 600), bkq(6, 3, -300),
                        bkq(6, 6, 350)};
    return set;
}

ParameterSet erbium() {
    ParameterSet set;
    set.electronCount = 11;
    set.fold = 2;
    set.mainFreeIon = {row("EAVG", 0), row("F2", 97000), row("F4", 68000), row("F6", 53000), row("ZETA", 2370)};
    set.otherFreeIon = {row("ALPHA", 18), row("BETA", -600), row("GAMMA", 1800)};
    set.crystalField = {bkq(2, 0, -250), bkq(2, 2, -100), bkq(4, 0, 600), bkq(4, 2, 400), bkq(4, 4, 550),
                        bkq(6, 0, 500), bkq(6, 2, -800), bkq(6, 4, -300), bkq(6, 6, -700)};
    return set;
}

const EnergyLevelResult& prepared(const ParameterSet& set) {
    static std::vector<std::pair<int, EnergyLevelResult>> cache;
    for (const auto& [n, result] : cache)
        if (n == set.electronCount) return result;
    MemoryLogBook log;
    cache.emplace_back(set.electronCount, computeEnergyLevels(set, benchTableDirectory(), log, {true, false}));
    return cache.back().second;
}

std::vector<double> freeIonEnergies(const EnergyLevelResult& result) {
    std::vector<double> energies;
    for (const auto& level : result.freeIon.levels) energies.push_back(level.energy);
    return energies;
}

// The real blocks of the Hamiltonian, as the engine builds them.
std::vector<Eigen::MatrixXd> blocksOf(const EnergyLevelResult& result) {
    const auto& operators = result.crystalFieldOperators;
    const auto energies = freeIonEnergies(result);
    std::vector<Eigen::MatrixXd> blocks;
    for (std::size_t b = 0; b < operators.blocks.size(); ++b) {
        const auto& states = operators.blocks[b].states;
        const auto size = static_cast<Eigen::Index>(states.size());
        Eigen::MatrixXd matrix = Eigen::MatrixXd::Zero(size, size);
        for (Eigen::Index i = 0; i < size; ++i) matrix(i, i) = energies[states[i].level];
        for (std::size_t key = 0; key < operators.keys.size(); ++key)
            matrix += result.crystalFieldValues[key] * operators.realPart[key][b];
        blocks.push_back(std::move(matrix));
    }
    return blocks;
}

void Run(benchmark::State& state, ParameterSet (*ion)()) {
    const auto set = ion();
    prepared(set);  // tables generated before timing
    for (auto _ : state) {
        MemoryLogBook log;
        auto result = computeEnergyLevels(set, benchTableDirectory(), log, {true, false});
        benchmark::DoNotOptimize(result.crystalField.levels.data());
    }
}

void Recombine(benchmark::State& state, ParameterSet (*ion)()) {
    const auto& result = prepared(ion());
    const auto energies = freeIonEnergies(result);
    for (auto _ : state) {
        auto solution =
            solveRealCrystalField(result.crystalFieldOperators, energies, result.crystalFieldValues, false);
        benchmark::DoNotOptimize(solution.levels.data());
    }
}

void Lapack(benchmark::State& state, ParameterSet (*ion)()) {
    const auto blocks = blocksOf(prepared(ion()));
    for (auto _ : state) {
        state.PauseTiming();
        auto copies = blocks;
        state.ResumeTiming();
        for (auto& block : copies) {
            auto values = symmetricEigenvalues(std::move(block));
            benchmark::DoNotOptimize(values.values.data());
        }
    }
}

BENCHMARK_CAPTURE(Run, Gd3plus_f7_fold3, gadolinium)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(Recombine, Gd3plus_f7_fold3, gadolinium)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(Lapack, Gd3plus_f7_fold3, gadolinium)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(Run, Er3plus_f11_fold2, erbium)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Recombine, Er3plus_f11_fold2, erbium)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Lapack, Er3plus_f11_fold2, erbium)->Unit(benchmark::kMillisecond);

}  // namespace
