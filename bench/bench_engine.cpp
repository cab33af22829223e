// Speed of the energy-level engine on the two benchmark ions, against LAPACK
// alone on the same crystal-field blocks:
//   Gd3+ (f7, 3432 states) at a site of fold 3 (blocks of 1144),
//   Er3+ (f11 through f3, 364 states) at a site of fold 2 (two Kramers partner blocks of 182).
// Timings per ion:
//   Run        the whole library call computeEnergyLevels (tables read from
//              files, free ion, components, crystal-field blocks, eigenvalues);
//   Recombine  the fit's hot path: stored components recombined with the
//              parameters and the blocks diagonalised (eigenvalues only);
//   Lapack     symmetricEigenvalues (one dsyevr per block) on every block of
//              the same Hamiltonian, without the time-reversal reuse;
//   LapackDistinct  the same on the blocks the engine diagonalises (a Kramers
//              partner block is not), the reference of the engine's ratio;
//   ...Complex the complex engine (Im B(k,q) on the q > 0 rows; zheevr);
//   ...Vectors eigenvectors too (dsyevr/zheevr with JOBZ = 'V'); the engine
//              maps the partner blocks' vectors by time reversal.
// The parameters have typical magnitudes for the ions (not fitted values):
// timings do not depend on them. Tables are generated once into
// $ORVANE_TABLE_DIR or ./bench-engine-rme before timing starts.
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/benchmark_ions.hpp"

#include "core/eigen_solver.hpp"
#include "core/log_book.hpp"
#include "engine/energy_levels.hpp"

namespace {

using namespace orvane;

std::filesystem::path benchTableDirectory() {
    if (const char* dir = std::getenv("ORVANE_TABLE_DIR")) return dir;
    return std::filesystem::current_path() / "bench-engine-rme";
}

using bench::bkq;
using bench::gadolinium;
using bench::row;

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

// The same ions with imaginary parts on every q > 0 row (about 40 % of the real part).
ParameterSet withImaginaryParts(ParameterSet set) {
    for (auto& row : set.crystalField)
        if (row.q > 0) row.im = {std::to_string(0.4 * row.re.value), 0.4 * row.re.value};
    return set;
}
ParameterSet gadoliniumComplex() { return withImaginaryParts(gadolinium()); }
ParameterSet erbiumComplex() { return withImaginaryParts(erbium()); }

bool isComplex(const ParameterSet& set) {
    for (const auto& row : set.crystalField)
        if (row.im.value != 0.0) return true;
    return false;
}

const EnergyLevelResult& prepared(const ParameterSet& set) {
    static std::vector<std::pair<std::pair<int, bool>, EnergyLevelResult>> cache;
    const std::pair<int, bool> key{set.electronCount, isComplex(set)};
    for (const auto& [n, result] : cache)
        if (n == key) return result;
    MemoryLogBook log;
    cache.emplace_back(key, computeEnergyLevels(set, benchTableDirectory(), log, {true, false, key.second}));
    return cache.back().second;
}

std::vector<double> freeIonEnergies(const EnergyLevelResult& result) {
    std::vector<double> energies;
    for (const auto& level : result.freeIon.levels) energies.push_back(level.energy);
    return energies;
}

// The blocks of the Hamiltonian (real, or complex when the operators carry
// imaginary parts), as the engine builds them; with `distinctOnly` only the
// blocks the engine diagonalises (no Kramers partner solved before them).
std::vector<Eigen::MatrixXcd> blocksOf(const EnergyLevelResult& result, bool distinctOnly) {
    const auto& operators = result.crystalFieldOperators;
    const auto energies = freeIonEnergies(result);
    std::vector<Eigen::MatrixXcd> blocks;
    for (std::size_t b = 0; b < operators.blocks.size(); ++b) {
        if (distinctOnly && earlierTimeReversalPartner(operators, b) >= 0) continue;
        const auto& states = operators.blocks[b].states;
        const auto size = static_cast<Eigen::Index>(states.size());
        Eigen::MatrixXd real = Eigen::MatrixXd::Zero(size, size), imaginary = Eigen::MatrixXd::Zero(size, size);
        for (Eigen::Index i = 0; i < size; ++i) real(i, i) = energies[states[i].level];
        for (std::size_t key = 0; key < operators.keys.size(); ++key) {
            real += result.crystalFieldValues[key] * operators.realPart[key][b];
            if (!operators.imaginaryPart.empty())
                imaginary += result.crystalFieldImaginary[key] * operators.imaginaryPart[key][b];
        }
        Eigen::MatrixXcd matrix(size, size);
        matrix.real() = real;
        matrix.imag() = imaginary;
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

// The engine's recombination and solution of every block (partner blocks by time reversal).
void Solve(benchmark::State& state, ParameterSet (*ion)(), bool vectors) {
    const auto& result = prepared(ion());
    const auto energies = freeIonEnergies(result);
    const bool complex = !result.crystalFieldOperators.imaginaryPart.empty();
    for (auto _ : state) {
        auto solution = complex ? solveComplexCrystalField(result.crystalFieldOperators, energies,
                                                           result.crystalFieldValues, result.crystalFieldImaginary,
                                                           vectors)
                                : solveRealCrystalField(result.crystalFieldOperators, energies,
                                                        result.crystalFieldValues, vectors);
        benchmark::DoNotOptimize(solution.levels.data());
    }
}

void Recombine(benchmark::State& state, ParameterSet (*ion)()) { Solve(state, ion, false); }
void RecombineVectors(benchmark::State& state, ParameterSet (*ion)()) { Solve(state, ion, true); }

// LAPACK alone (dsyevr for real blocks, zheevr for complex ones) on the same blocks.
void Diagonalise(benchmark::State& state, ParameterSet (*ion)(), bool distinctOnly, bool vectors) {
    const auto& result = prepared(ion());
    const bool complex = !result.crystalFieldOperators.imaginaryPart.empty();
    const auto blocks = blocksOf(result, distinctOnly);
    std::vector<Eigen::MatrixXd> realBlocks;
    for (const auto& block : blocks) realBlocks.push_back(block.real());
    for (auto _ : state) {
        state.PauseTiming();
        auto copies = blocks;
        auto realCopies = realBlocks;
        state.ResumeTiming();
        for (std::size_t b = 0; b < copies.size(); ++b) {
            if (complex) {
                auto solved = vectors ? hermitianEigenpairs(std::move(copies[b]))
                                      : hermitianEigenvalues(std::move(copies[b]));
                benchmark::DoNotOptimize(solved.values.data());
            } else {
                auto solved = vectors ? symmetricEigenpairs(std::move(realCopies[b]))
                                      : symmetricEigenvalues(std::move(realCopies[b]));
                benchmark::DoNotOptimize(solved.values.data());
            }
        }
    }
}

void Lapack(benchmark::State& state, ParameterSet (*ion)()) { Diagonalise(state, ion, false, false); }
void LapackDistinct(benchmark::State& state, ParameterSet (*ion)()) { Diagonalise(state, ion, true, false); }
void LapackDistinctVectors(benchmark::State& state, ParameterSet (*ion)()) { Diagonalise(state, ion, true, true); }

BENCHMARK_CAPTURE(Run, Gd3plus_f7_fold3, gadolinium)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(Recombine, Gd3plus_f7_fold3, gadolinium)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(Lapack, Gd3plus_f7_fold3, gadolinium)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(LapackDistinct, Gd3plus_f7_fold3, gadolinium)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(RecombineVectors, Gd3plus_f7_fold3, gadolinium)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(LapackDistinctVectors, Gd3plus_f7_fold3, gadolinium)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(Recombine, Gd3plus_f7_fold3_complex, gadoliniumComplex)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(LapackDistinct, Gd3plus_f7_fold3_complex, gadoliniumComplex)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(Run, Er3plus_f11_fold2, erbium)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Recombine, Er3plus_f11_fold2, erbium)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Lapack, Er3plus_f11_fold2, erbium)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LapackDistinct, Er3plus_f11_fold2, erbium)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RecombineVectors, Er3plus_f11_fold2, erbium)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LapackDistinctVectors, Er3plus_f11_fold2, erbium)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Recombine, Er3plus_f11_fold2_complex, erbiumComplex)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LapackDistinct, Er3plus_f11_fold2_complex, erbiumComplex)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(RecombineVectors, Er3plus_f11_fold2_complex, erbiumComplex)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(LapackDistinctVectors, Er3plus_f11_fold2_complex, erbiumComplex)->Unit(benchmark::kMillisecond);

}  // namespace
