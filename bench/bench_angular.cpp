// Speed of the twice-J coupling coefficients over the arguments the f-shell
// tables use: 3j (3 k 3; -m q m') with k = 2, 4, 6; 6j of L, S and J values of
// f^n terms; 9j of the (S L J) recoupling of spin-orbit-type operators.
#include <vector>

#include <benchmark/benchmark.h>

#include "core/angular.hpp"

namespace {

// All (l k l'; -m q m') of the f shell, doubled: l = l' = 3, k = 2, 4, 6.
void BM_ThreeJ2_fShellCrystalField(benchmark::State& state) {
    std::size_t count = 0;
    for (auto _ : state) {
        double sum = 0.0;
        for (int tk = 4; tk <= 12; tk += 4)
            for (int tm = -6; tm <= 6; tm += 2)
                for (int tq = -tk; tq <= tk; tq += 2) sum += orvane::ThreeJ2(6, tk, 6, -tm, tq, tm - tq);
        benchmark::DoNotOptimize(sum);
        count += (5 + 9 + 13) * 7;
    }
    state.SetItemsProcessed(static_cast<int64_t>(count));
}
BENCHMARK(BM_ThreeJ2_fShellCrystalField);

// (J k J'; -M q M') with half-integral J up to 15/2 (f^n levels, odd n).
void BM_ThreeJ2_HalfIntegralLevels(benchmark::State& state) {
    std::size_t count = 0;
    for (auto _ : state) {
        double sum = 0.0;
        for (int tJ = 1; tJ <= 15; tJ += 2)
            for (int tJp = 1; tJp <= 15; tJp += 2)
                for (int tM = -tJ; tM <= tJ; tM += 2) {
                    sum += orvane::ThreeJ2(tJ, 4, tJp, -tM, 2, tM - 2);
                    ++count;
                }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<int64_t>(count));
}
BENCHMARK(BM_ThreeJ2_HalfIntegralLevels);

// {L k L'; l l l} and {L S J; S' L' k}-type symbols: L, L' up to 12, k = 2, 4, 6.
void BM_SixJ2_fShellTerms(benchmark::State& state) {
    std::size_t count = 0;
    for (auto _ : state) {
        double sum = 0.0;
        for (int tL = 0; tL <= 24; tL += 2)
            for (int tLp = 0; tLp <= 24; tLp += 2)
                for (int tk = 4; tk <= 12; tk += 4) {
                    sum += orvane::SixJ2(tL, tk, tLp, 6, 6, 6);
                    sum += orvane::SixJ2(tL, 5, 7, 3, tLp, tk);
                    count += 2;
                }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<int64_t>(count));
}
BENCHMARK(BM_SixJ2_fShellTerms);

// {S S' 1; L L' k; J J' K} with S = 3/2, L up to 6, k = 2, 4, 6, K = 2, 4, 6 (doubled).
void BM_NineJ2_SpinOrbitRecoupling(benchmark::State& state) {
    std::size_t count = 0;
    for (auto _ : state) {
        double sum = 0.0;
        for (int tL = 0; tL <= 12; tL += 2)
            for (int tk = 4; tk <= 12; tk += 4)
                for (int tJ = 1; tJ <= 15; tJ += 2) {
                    sum += orvane::NineJ2(3, 3, 2, tL, tL, tk, tJ, tJ, tk);
                    ++count;
                }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(static_cast<int64_t>(count));
}
BENCHMARK(BM_NineJ2_SpinOrbitRecoupling);

void BM_RotationMatrixD_J6(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(orvane::RotationMatrixD(6.0, 0.7));
}
BENCHMARK(BM_RotationMatrixD_J6);

}  // namespace
