// Crystal-field parameter tools: rotation of a full k = 2, 4, 6 set and the
// superposition-model Bkq (with derivatives) of twelve ligands.
#include <cmath>
#include <random>

#include <benchmark/benchmark.h>

#include "params/cf_rotation.hpp"
#include "params/superposition.hpp"

namespace {

using namespace orvane::params;

BkqArray fullSet() {
    std::mt19937 rng(1);
    std::uniform_real_distribution<double> u(-500.0, 500.0);
    BkqArray b{};
    for (int k = 2; k <= 6; k += 2) {
        b[k][0] = u(rng);
        for (int q = 1; q <= k; ++q) b[k][q] = {u(rng), u(rng)};
    }
    return b;
}

void BM_RotateFullSet(benchmark::State& state) {
    const BkqArray b = fullSet();
    const EulerAngles angles{17.0, 63.0, -121.0};
    for (auto _ : state) benchmark::DoNotOptimize(rotateBkq(b, angles));
}
BENCHMARK(BM_RotateFullSet);

// Twelve ligands: the cuboctahedron (edge midpoints of a cube), slightly distorted.
std::vector<Ligand> twelveLigands() {
    std::vector<Ligand> ligands;
    for (double theta : {45.0, 90.0, 135.0})
        for (int i = 0; i < 4; ++i)
            ligands.push_back({2.5 + 0.01 * i, theta + 0.5 * i, (theta == 90.0 ? 45.0 : 0.0) + 90.0 * i});
    return ligands;
}

void BM_SuperpositionTwelveLigands(benchmark::State& state) {
    const auto ligands = twelveLigands();
    SuperpositionParameters p;
    p.r0 = 2.45;
    p.bk = {400.0, 300.0, 100.0};
    p.tk = {5.0, 8.0, 11.0};
    for (auto _ : state) benchmark::DoNotOptimize(superpositionDerivatives(ligands, p));
}
BENCHMARK(BM_SuperpositionTwelveLigands);

}  // namespace
