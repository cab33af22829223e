// The prepared model: derivatives against finite differences (on both routes,
// so a wrong conjugate sign shows), the lowest-m request, time-reversal
// partner blocks for even n, and concurrent solves on separate workspaces.
#include <thread>

#include <gtest/gtest.h>

#include "engine/model.hpp"
#include "tests/engine/engine_test_support.hpp"

namespace orvane {
namespace {

using test::bkq;

Model modelOf(const ParameterSet& set, bool complex) {
    const auto setup = modelSetupOf(set, true, complex);
    const int tableElectrons = set.electronCount > 7 ? 14 - set.electronCount : set.electronCount;
    return Model::fromTables(setup, test::engineTables(tableElectrons));
}

struct DerivativeCase {
    const char* name;
    int electrons;
    int fold;
    bool complex;
};

void PrintTo(const DerivativeCase& c, std::ostream* os) { *os << c.name; }

class ModelDerivatives : public ::testing::TestWithParam<DerivativeCase> {};

// dE/dp by Hellmann-Feynman equals the central difference of the sorted
// levels (summed over degenerate partners: compare level sums of the lowest
// 12 states, which close on a level boundary for the sets below).
TEST_P(ModelDerivatives, MatchFiniteDifferences) {
    const auto& c = GetParam();
    const auto set = test::praseodymiumLikeSet(
        c.electrons, 700.0,
        {bkq(2, 0, -300), bkq(4, 0, 500), bkq(4, c.fold, 400, c.complex ? 150 : 0), bkq(6, 0, 600),
         bkq(6, 2 * c.fold, -300, c.complex ? -90 : 0)},
        c.fold);
    const Model model = modelOf(set, c.complex);
    const auto parameters = parameterVectorOf(set, c.complex);
    std::vector<ParameterId> ids = {parameter::kF2, parameter::kZeta, parameter::kAlpha,
                                    crystalFieldParameterId(CrystalFieldOperator::Standard, 2, 0, false),
                                    crystalFieldParameterId(CrystalFieldOperator::Standard, 4, c.fold, false)};
    if (c.complex) ids.push_back(crystalFieldParameterId(CrystalFieldOperator::Standard, 4, c.fold, true));
    ModelWorkspace workspace;
    const auto solution = model.solve(parameters, {false, false, kAllEigenvalues, ids}, workspace);
    const std::size_t count = 12;
    for (std::size_t p = 0; p < ids.size(); ++p) {
        auto levelSum = [&](double delta) {
            auto shifted = parameters;
            shifted.set(ids[p], parameters.value(ids[p]) + delta);
            const auto levels = model.solve(shifted, {}, workspace).levels;
            double sum = 0.0;
            for (std::size_t i = 0; i < count; ++i) sum += levels[i].energy;
            return sum;
        };
        const double h = 1e-3;
        const double numeric = (levelSum(h) - levelSum(-h)) / (2 * h);
        const double analytic = solution.derivatives.col(static_cast<Eigen::Index>(p)).head(count).sum();
        EXPECT_NEAR(analytic, numeric, 1e-5 * (1.0 + std::abs(numeric))) << parameterInfo(ids[p])->name;
    }
}

INSTANTIATE_TEST_SUITE_P(Routes, ModelDerivatives,
                         ::testing::Values(DerivativeCase{"f2_fold2_real", 2, 2, false},
                                           DerivativeCase{"f3_fold3_complex", 3, 3, true},
                                           DerivativeCase{"f12_conjugate_fold2_real", 12, 2, false},
                                           DerivativeCase{"f11_conjugate_fold2_complex", 11, 2, true}),
                         [](const auto& info) { return std::string(info.param.name); });

// Even n: the blocks of residues r and -r are solved once; the partner's
// levels must equal a direct diagonalisation of the partner's own matrix.
TEST(Model, EvenElectronPartnerBlocksAndLowestLevels) {
    const auto set = test::praseodymiumLikeSet(
        2, 750.0, {bkq(2, 0, -250), bkq(4, 0, 600), bkq(4, 3, 300, 120), bkq(6, 3, -500, 80), bkq(6, 6, 400, -60)},
        3);
    const Model model = modelOf(set, true);
    const auto parameters = parameterVectorOf(set, true);
    ModelWorkspace workspace;
    const auto all = model.solve(parameters, {false, true, kAllEigenvalues, {}}, workspace);
    bool sawPartner = false;
    for (std::size_t b = 0; b < model.blocks().size(); ++b) {
        if (model.blocks()[b].partner < 0) continue;
        sawPartner = true;
        Eigen::MatrixXcd matrix = model.blockMatrix(b, parameters).cast<std::complex<double>>();
        matrix.imag() = model.imaginaryBlockMatrix(b, parameters);
        const auto direct = solveHermitianEigen(matrix, {});
        std::vector<double> mapped;
        for (const auto& level : all.levels)
            if (level.block == static_cast<int>(b)) {
                mapped.push_back(level.energy);
                // The mapped vector is an eigenvector of the partner block itself.
                EXPECT_LT((matrix * level.complexVector - level.energy * level.complexVector).norm(), 1e-8);
            }
        ASSERT_EQ(mapped.size(), static_cast<std::size_t>(direct.values.size()));
        for (std::size_t i = 0; i < mapped.size(); ++i) EXPECT_NEAR(mapped[i], direct.values(i), 1e-8);
    }
    EXPECT_TRUE(sawPartner);
    const auto lowest = model.solve(parameters, {false, false, 7, {}}, workspace);
    ASSERT_EQ(lowest.levels.size(), 7u);
    for (std::size_t i = 0; i < 7; ++i) EXPECT_NEAR(lowest.levels[i].energy, all.levels[i].energy, 1e-8);
}

TEST(Model, ConcurrentSolvesOnSeparateWorkspacesAgree) {
    const auto set = test::praseodymiumLikeSet(3, 880.0, {bkq(2, 0, -250), bkq(4, 2, 400), bkq(6, 4, -300)}, 2);
    const Model model = modelOf(set, false);
    auto parameters = parameterVectorOf(set, false);
    std::vector<std::vector<double>> energies(4);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            ModelWorkspace workspace;
            for (int repeat = 0; repeat < 3; ++repeat) {
                const auto solution = model.solve(parameters, {}, workspace);
                energies[t].clear();
                for (const auto& level : solution.levels) energies[t].push_back(level.energy);
            }
        });
    for (auto& thread : threads) thread.join();
    for (int t = 1; t < 4; ++t) EXPECT_EQ(energies[t], energies[0]);
}

}  // namespace
}  // namespace orvane
