// The prepared model: derivatives against finite differences (on both routes,
// so a wrong conjugate sign shows), the lowest-m request, time-reversal
// partner blocks, and concurrent solves on separate workspaces.
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
    const auto solution = model.solve(parameters, {false, false, kAllEigenvalues, ids, {}}, workspace);
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

// The blocks of residues r and -r are solved once, for even and odd n, real
// and complex: the partner's levels must equal a direct diagonalisation of
// the partner's own matrix (built from its own components), and its mapped
// vectors (T v)(s,J,-M) = (-1)^(J-M) conj v(s,J,M) must be orthonormal
// eigenvectors of that matrix. The lowest-m request cuts the same spectrum.
TEST(Model, PartnerBlocksByTimeReversalAndLowestLevels) {
    struct Case {
        int n;
        int fold;
        bool complex;
    };
    for (const Case& c : {Case{2, 3, true}, Case{3, 2, true}, Case{3, 3, false}, Case{11, 2, true}}) {
        const std::string what = "f" + std::to_string(c.n) + " fold " + std::to_string(c.fold) +
                                 (c.complex ? " complex" : " real");
        const double im = c.complex ? 1.0 : 0.0;
        const auto set = test::praseodymiumLikeSet(
            c.n, 750.0,
            {bkq(2, 0, -250), bkq(4, 0, 600), bkq(4, c.fold, 300, 120 * im), bkq(6, c.fold, -500, 80 * im),
             bkq(6, 2 * c.fold, 400, -60 * im)},
            c.fold);
        const Model model = modelOf(set, c.complex);
        const auto parameters = parameterVectorOf(set, c.complex);
        ModelWorkspace workspace;
        const auto all = model.solve(parameters, {false, true, kAllEigenvalues, {}, {}}, workspace);
        int partners = 0;
        for (std::size_t b = 0; b < model.blocks().size(); ++b) {
            if (model.blocks()[b].partner < 0) continue;
            ++partners;
            Eigen::MatrixXcd matrix = model.blockMatrix(b, parameters).cast<std::complex<double>>();
            matrix.imag() = model.imaginaryBlockMatrix(b, parameters);
            const auto direct = solveHermitianEigen(matrix, {});
            const double norm = matrix.cwiseAbs().maxCoeff();
            std::vector<double> mapped;
            std::vector<Eigen::VectorXcd> vectors;
            for (const auto& level : all.levels)
                if (level.block == static_cast<int>(b)) {
                    const Eigen::VectorXcd v =
                        c.complex ? level.complexVector : Eigen::VectorXcd(level.vector.cast<std::complex<double>>());
                    EXPECT_LT((matrix * v - level.energy * v).norm(), 1e-9 * norm) << what << " block " << b;
                    mapped.push_back(level.energy);
                    vectors.push_back(v);
                }
            ASSERT_EQ(mapped.size(), static_cast<std::size_t>(direct.values.size())) << what;
            for (std::size_t i = 0; i < mapped.size(); ++i) EXPECT_NEAR(mapped[i], direct.values(i), 1e-8) << what;
            double worst = 0.0;
            for (std::size_t i = 0; i < vectors.size(); ++i)
                for (std::size_t j = 0; j < vectors.size(); ++j)
                    worst = std::max(worst, std::abs(vectors[i].dot(vectors[j]) - (i == j ? 1.0 : 0.0)));
            EXPECT_LT(worst, 1e-12) << what << " orthonormality of block " << b;
        }
        EXPECT_GT(partners, 0) << what;
        const auto lowest = model.solve(parameters, {false, false, 7, {}, {}}, workspace);
        ASSERT_EQ(lowest.levels.size(), 7u);
        for (std::size_t i = 0; i < 7; ++i) EXPECT_NEAR(lowest.levels[i].energy, all.levels[i].energy, 1e-8) << what;
    }
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
