// Speed of the many-body table generation: the escalation of the magnetic
// operators (nine double tensors) and of the six three-body operators from
// f^2 / f^3 up to f^7, over the configuration tables of f^0..f^7.
#include <vector>

#include <benchmark/benchmark.h>

#include "tables/magnetic_tables.hpp"
#include "tables/table_builder.hpp"
#include "tables/three_body_tables.hpp"

namespace {

const std::vector<orvane::ConfigurationTables>& lowerTables() {
    static const auto tables = orvane::lowerConfigurationTables(orvane::generateConfigurations(7));
    return tables;
}

void BM_MagneticOperatorsAllShells(benchmark::State& state) {
    const auto& lower = lowerTables();
    for (auto _ : state) benchmark::DoNotOptimize(orvane::magneticOperatorsOfAll(lower));
}
BENCHMARK(BM_MagneticOperatorsAllShells)->Unit(benchmark::kMillisecond);

void BM_ThreeBodyOperatorsAllShells(benchmark::State& state) {
    const auto& lower = lowerTables();
    for (auto _ : state) benchmark::DoNotOptimize(orvane::threeBodyOperatorsOfAll(lower));
}
BENCHMARK(BM_ThreeBodyOperatorsAllShells)->Unit(benchmark::kMillisecond);

}  // namespace
