// Speed of the energy-level engine against LAPACK alone on the same blocks:
//   Gd3+ (f7, 3432 states) at a site of fold 3 (three blocks of 1144, one a
//        time-reversal partner),
//   Er3+ (f11 through f3, 364 states) at a site of fold 2,
//   Nd3+ (f3, 364 states) at a site of fold 2.
// Timings per ion:
//   Build            Model::build: tables read, every component built;
//   Solve            the fits' hot path: a second solve on a prepared model
//                    with a warm workspace (eigenvalues only);
//   SolveVectors     the same with eigenvectors;
//   LapackDistinct   the driver the engine chooses (dsyevd / zheevd for the
//                    whole spectrum) on the blocks the engine diagonalises (a
//                    time-reversal partner is not), on copies of the same
//                    matrices: the reference of the engine's ratio;
//   LapackDistinctMrrr  dsyevr / zheevr on the same blocks, for comparison;
//   Run              the whole library call computeEnergyLevels (tables read,
//                    free ion, model, vectors carried to the free-ion levels).
// Parameters: typical magnitudes for the ions (not fitted values); timings do
// not depend on them. Tables are generated once into $ORVANE_TABLE_DIR or
// ./bench-engine-rme before timing starts.
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/benchmark_ions.hpp"

#include "core/eigen_solver.hpp"
#include "core/log_book.hpp"
#include "engine/energy_levels.hpp"
#include "engine/model.hpp"

namespace {

using namespace orvane;
using bench::bkq;
using bench::erbium;
using bench::neodymium;
using bench::gadolinium;
using bench::row;

std::filesystem::path benchTableDirectory() {
    if (const char* dir = std::getenv("ORVANE_TABLE_DIR")) return dir;
    return std::filesystem::current_path() / "bench-engine-rme";
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

constexpr auto kMs = benchmark::kMillisecond;

struct Prepared {
    std::unique_ptr<Model> model;
    ParameterVector parameters;
};

// One prepared model per ion and kind, built (and its tables generated) outside the timing.
const Prepared& prepared(ParameterSet (*ion)()) {
    static std::map<ParameterSet (*)(), Prepared> cache;
    auto& entry = cache[ion];
    if (!entry.model) {
        const auto set = ion();
        MemoryLogBook log;
        entry.model = std::make_unique<Model>(
            Model::build(modelSetupOf(set, true, isComplex(set)), benchTableDirectory(), log));
        entry.parameters = parameterVectorOf(set, isComplex(set));
    }
    return entry;
}

void Build(benchmark::State& state, ParameterSet (*ion)()) {
    prepared(ion);
    const auto set = ion();
    for (auto _ : state) {
        MemoryLogBook log;
        auto model = Model::build(modelSetupOf(set, true, isComplex(set)), benchTableDirectory(), log);
        benchmark::DoNotOptimize(model.blocks().data());
    }
}

void Solve(benchmark::State& state, ParameterSet (*ion)(), bool vectors) {
    const auto& [model, parameters] = prepared(ion);
    ModelWorkspace workspace;
    const SolveRequest request{false, vectors, kAllEigenvalues, {}, {}};
    model->solve(parameters, request, workspace);  // first solve: the workspace grows
    for (auto _ : state) {
        auto solution = model->solve(parameters, request, workspace);
        benchmark::DoNotOptimize(solution.levels.data());
    }
}
void SolveValues(benchmark::State& state, ParameterSet (*ion)()) { Solve(state, ion, false); }
void SolveVectors(benchmark::State& state, ParameterSet (*ion)()) { Solve(state, ion, true); }

// LAPACK alone on copies of the blocks the engine diagonalises.
// `only`: the index of one distinct block, or -1 for all of them.
void Diagonalise(benchmark::State& state, ParameterSet (*ion)(), bool vectors, EigenDriver driver, int only = -1) {
    const auto& [model, parameters] = prepared(ion);
    std::vector<Eigen::MatrixXcd> blocks;
    for (std::size_t b = 0, distinct = 0; b < model->blocks().size(); ++b) {
        if (model->blocks()[b].partner >= 0) continue;
        if (only >= 0 && static_cast<int>(distinct++) != only) continue;
        Eigen::MatrixXcd matrix = model->blockMatrix(b, parameters).cast<std::complex<double>>();
        matrix.imag() = model->imaginaryBlockMatrix(b, parameters);
        blocks.push_back(std::move(matrix));
    }
    const bool complex = model->setup().complex;
    SymmetricEigenWorkspace real;
    HermitianEigenWorkspace hermitian;
    const EigenRequest request{vectors, kAllEigenvalues, driver};
    for (auto _ : state) {
        for (const auto& block : blocks) {
            state.PauseTiming();
            const int n = static_cast<int>(block.rows());
            if (complex)
                hermitian.matrix(n) = block;
            else
                real.matrix(n) = block.real();
            state.ResumeTiming();
            benchmark::DoNotOptimize(complex ? hermitian.solve(request) : real.solve(request));
        }
    }
}
void LapackDistinct(benchmark::State& state, ParameterSet (*ion)()) {
    Diagonalise(state, ion, false, EigenDriver::DivideAndConquer);
}
void LapackDistinctVectors(benchmark::State& state, ParameterSet (*ion)()) {
    Diagonalise(state, ion, true, EigenDriver::DivideAndConquer);
}
void LapackDistinctMrrr(benchmark::State& state, ParameterSet (*ion)()) {
    Diagonalise(state, ion, false, EigenDriver::Mrrr);
}
void LapackDistinctMrrrVectors(benchmark::State& state, ParameterSet (*ion)()) {
    Diagonalise(state, ion, true, EigenDriver::Mrrr);
}

// Per distinct block of the complex Gd3+ model (block 0: residue 1, whose
// partner is residue 5; block 1: residue 3, its own time reverse, with every
// level a Kramers pair), vectors by each driver: the per-block choice.
void GadoliniumComplexBlock(benchmark::State& state) {
    Diagonalise(state, gadoliniumComplex, true, state.range(1) ? EigenDriver::Mrrr : EigenDriver::DivideAndConquer,
                static_cast<int>(state.range(0)));
}
BENCHMARK(GadoliniumComplexBlock)->ArgsProduct({{0, 1}, {0, 1}})->ArgNames({"block", "mrrr"})->Unit(kMs)->Iterations(1)->Repetitions(3);

void Run(benchmark::State& state, ParameterSet (*ion)()) {
    prepared(ion);
    const auto set = ion();
    for (auto _ : state) {
        MemoryLogBook log;
        auto result = computeEnergyLevels(set, benchTableDirectory(), log, {true, true, isComplex(set)});
        benchmark::DoNotOptimize(result.crystalField.levels.data());
    }
}

#define ORVANE_ENGINE_BENCHMARKS(ion, repetitions)                                        \
    BENCHMARK_CAPTURE(Build, ion, ion)->Unit(kMs)->Iterations(1)->Repetitions(repetitions); \
    BENCHMARK_CAPTURE(SolveValues, ion, ion)->Unit(kMs)->Repetitions(repetitions);          \
    BENCHMARK_CAPTURE(LapackDistinct, ion, ion)->Unit(kMs)->Repetitions(repetitions);       \
    BENCHMARK_CAPTURE(LapackDistinctMrrr, ion, ion)->Unit(kMs)->Repetitions(repetitions);   \
    BENCHMARK_CAPTURE(SolveVectors, ion, ion)->Unit(kMs)->Repetitions(repetitions);         \
    BENCHMARK_CAPTURE(LapackDistinctVectors, ion, ion)->Unit(kMs)->Repetitions(repetitions); \
    BENCHMARK_CAPTURE(LapackDistinctMrrrVectors, ion, ion)->Unit(kMs)->Repetitions(repetitions); \
    BENCHMARK_CAPTURE(Run, ion, ion)->Unit(kMs)->Iterations(1)->Repetitions(repetitions)

ORVANE_ENGINE_BENCHMARKS(gadolinium, 3);
ORVANE_ENGINE_BENCHMARKS(gadoliniumComplex, 3);
ORVANE_ENGINE_BENCHMARKS(erbium, 3);
ORVANE_ENGINE_BENCHMARKS(erbiumComplex, 3);
ORVANE_ENGINE_BENCHMARKS(neodymium, 3);

}  // namespace


