// Derivatives of calculated g-factors by first-order perturbation against
// central differences of the g-factors themselves (Nd3+:LaF3, Carnall et al.
// 1989 parameters; real and complex crystal field).
#include <gtest/gtest.h>

#include <cmath>

#include "core/log_book.hpp"
#include "engine/parameter_file.hpp"
#include "fit/g_factor_fit.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

TEST(GFactorFit, PerturbationDerivativesMatchDifferences) {
    auto set = readParameterFile(test::sourceDirectory() / "examples" / "Nd3plus-LaF3.par");
    for (const bool complex : {false, true}) {
        if (complex) set.crystalField[4].im = {"120", 120.0};  // Im B(4,4)
        MemoryLogBook log;
        const auto model = Model::build(modelSetupOf(set, true, complex), test::engineTableDirectory(), log);
        const auto b44 = crystalFieldParameterId(CrystalFieldOperator::Standard, 4, 4, complex);
        const std::vector<ParameterId> ids = {parameter::kZeta, parameter::kF2,
                                              crystalFieldParameterId(CrystalFieldOperator::Standard, 2, 0, false), b44};
        std::vector<ObservedGFactor> rows;
        for (const int state : {1, 3, 6})
            for (const auto component : {GComponent::X, GComponent::Z}) rows.push_back({state, "", component, 0.0});
        ModelWorkspace workspace;
        auto gAt = [&](const ParameterVector& parameters, const std::vector<ParameterId>& wanted) {
            const auto solution = model.solve(parameters, {false, true, kAllEigenvalues, {}, {}, false}, workspace);
            return evaluateGFactors(model, solution.levels, rows, wanted);
        };
        const auto base = parameterVectorOf(set, complex).withLinksApplied();
        const auto analytic = gAt(base, ids);
        for (std::size_t p = 0; p < ids.size(); ++p) {
            const double h = 1e-4 * std::max(1.0, std::abs(base.value(ids[p])));
            auto shifted = [&](double sign) {
                auto v = base;
                v.set(ids[p], base.value(ids[p]) + sign * h);
                return gAt(v, {}).calculated;
            };
            const auto up = shifted(1), down = shifted(-1);
            for (std::size_t r = 0; r < rows.size(); ++r) {
                ASSERT_TRUE(std::isfinite(analytic.calculated[r]));
                const double numeric = (up[r] - down[r]) / (2 * h);
                EXPECT_NEAR(analytic.derivatives(static_cast<Eigen::Index>(r), static_cast<Eigen::Index>(p)), numeric,
                            1e-6 + 1e-4 * std::abs(numeric))
                    << (complex ? "complex" : "real") << " row " << r << " parameter " << ids[p];
            }
        }
    }
}

}  // namespace
}  // namespace orvane
