// Generation of the term basis and coefficients of fractional parentage up to
// f^7 (highest-weight states, Casimir separation, CFPs from the annihilation
// operator; the eigenproblems go to LAPACK dsyevd), and of the U(k), V(1k),
// f(k) tables of f^7 from them.
#include <benchmark/benchmark.h>

#include "tables/table_builder.hpp"
#include "tables/term_generator.hpp"

namespace {

void GenerateParentageUpToF7(benchmark::State& state) {
    for (auto _ : state) {
        auto configurations = orvane::generateConfigurations(7);
        benchmark::DoNotOptimize(configurations.back().cfp.data());
    }
}
BENCHMARK(GenerateParentageUpToF7)->Unit(benchmark::kMillisecond);

void UnitTensorTablesOfF7(benchmark::State& state) {
    const auto configurations = orvane::generateConfigurations(7);
    for (auto _ : state) {
        auto tables = orvane::computeConfigurationTables(7, configurations);
        benchmark::DoNotOptimize(tables.unitTensor[2].data());
    }
}
BENCHMARK(UnitTensorTablesOfF7)->Unit(benchmark::kMillisecond);

}  // namespace
