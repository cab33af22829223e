// The L-correlated crystal-field tables UK(LCCF): closed form for f^1, the
// symmetry of a Hermitian, time-even tensor, and the interactive generator.
// (The determinant-space check of the operator is in
// tests/engine/test_crystal_field_determinants.cpp.)
#include "tables/lccf_table.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "interactive/asker.hpp"
#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "interactive/interactive_generators.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/table_directory.hpp"
#include "tables/table_builder.hpp"
#include "tests/support/reference_data.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

using test::allConfigurationTables;

Eigen::MatrixXd lccfOf(int n, int K) {
    const auto& t = allConfigurationTables()[n];
    return lccfMatrixFromParentage(n, K, spinOrbitOf(t.terms), spinOrbitOf(t.parents), t.cfp);
}

TEST(LccfTable, OneElectronIsOrbitalCasimirTimesUnitTensor) {
    // f1: L = l, so (1/2){L.l, u(K)} = l(l+1) u(K) = 12 u(K), and <2F||u(K)||2F> = 1.
    for (int K : {2, 4, 6}) {
        const auto table = lccfOf(1, K);
        ASSERT_EQ(table.rows(), 1);
        EXPECT_NEAR(table(0, 0), 12.0, 1e-12) << "K = " << K;
    }
}

TEST(LccfTable, HermitianSpinScalarTensorSymmetry) {
    // A Hermitian tensor with real reduced elements (spin first, Edmonds (5.4.1)):
    // <j||D||i> = (-1)^(L_i - L_j) <i||D||j>, and zero between different S.
    for (int n : {2, 3, 4, 7, 9}) {
        const auto& terms = allConfigurationTables()[n].terms;
        const auto sl = spinOrbitOf(terms);
        for (int K : {2, 4, 6}) {
            const auto table = lccfOf(n, K);
            double worst = 0.0, largest = 0.0;
            for (Eigen::Index i = 0; i < table.rows(); ++i)
                for (Eigen::Index j = 0; j < table.cols(); ++j) {
                    largest = std::max(largest, std::abs(table(i, j)));
                    if (sl[i].twiceS != sl[j].twiceS) {
                        EXPECT_EQ(table(i, j), 0.0);
                        continue;
                    }
                    const double phase = ((sl[i].L - sl[j].L) % 2 == 0) ? 1.0 : -1.0;
                    worst = std::max(worst, std::abs(table(j, i) - phase * table(i, j)));
                }
            EXPECT_LT(worst, 1e-12) << "f" << n << " K = " << K;
            EXPECT_GT(largest, 1.0) << "f" << n << " K = " << K << " is not empty";
        }
    }
}

}  // namespace
}  // namespace orvane
