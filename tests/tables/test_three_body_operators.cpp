// Three-body operators t_i: f3 seed check values (Hansen, Judd & Crosswhite,
// At. Data Nucl. Data Tables 62, 1 (1996)), tracelessness, mutual
// orthogonality and orthogonality to the two-body operators, the pure
// three-body norm scaling and the legacy t2.
#include <cmath>

#include <gtest/gtest.h>

#include "core/log_book.hpp"
#include "core/atomic_file.hpp"
#include "tables/table_directory.hpp"
#include "tables/three_body_tables.hpp"
#include "tables/two_body_escalation.hpp"
#include "tests/support/reference_data.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

const std::vector<ThreeBodyOperators>& allThreeBody() {
    static const auto all = threeBodyOperatorsOfAll(test::allConfigurationTables());
    return all;
}

int indexOf(int n, const std::string& label) {
    const auto& terms = test::allConfigurationTables()[static_cast<std::size_t>(n)].terms;
    for (std::size_t i = 0; i < terms.size(); ++i)
        if (terms[i].label == label) return static_cast<int>(i);
    ADD_FAILURE() << "no term " << label << " in f" << n;
    return 0;
}

double binomial(int n, int k) { return std::tgamma(n + 1.0) / (std::tgamma(k + 1.0) * std::tgamma(n - k + 1.0)); }

TEST(ThreeBodyOperators, CheckValuesOfF3AndF4) {
    const auto& all = test::allConfigurationTables();
    const auto& f3 = allThreeBody()[3];
    const auto& f4 = allThreeBody()[4];
    const Eigen::MatrixXd e3f3 = racahE3(all[3]);
    const Eigen::MatrixXd e3f4 = racahE3(all[4]);
    const auto legacy3 = ordinaryThreeBodyOperators(3, f3, e3f3);
    const auto legacy4 = ordinaryThreeBodyOperators(4, f4, e3f4);
    struct Case {
        const char* what;
        double actual, expected;
    };
    const int d4 = indexOf(3, "4D");
    const Case cases[] = {
        // Hansen, Judd & Crosswhite 1996 (published)
        {"f3 t3(4S)", f3[1](indexOf(3, "4S"), indexOf(3, "4S")), 3.51324},
        {"f3 t3(4F)", f3[1](indexOf(3, "4F"), indexOf(3, "4F")), -0.87831},
        {"f3 t4(4D)", f3[2](d4, d4), -1.167007},
        {"f3 t6(2P)", f3[3](indexOf(3, "2P"), indexOf(3, "2P")), -1.523624},
        {"f3 t8(2D2)", f3[5](indexOf(3, "2D2"), indexOf(3, "2D2")), 1.148245},
        {"f3 t2'(4D)", f3[0](d4, d4), 0.777817},
        {"f3 e3(4D)", e3f3(d4, d4), 33.0},
        {"f3 legacy t2(4D)", legacy3[0](d4, d4), 1.111168},
        // Hansen et al. 1996 (published) and the t2 relation (computed)
        {"f4 t3(5S)", f4[1](indexOf(4, "5S"), indexOf(4, "5S")), -3.51324},
        // 1.555635 + (2/(70 sqrt 2)) 33 = 2.222335 (the published f4 table prints 2.222329, 6e-6 lower)
        {"f4 t2'(5D)", f4[0](indexOf(4, "5D"), indexOf(4, "5D")), 1.555635},
        {"f4 legacy t2(5D)", legacy4[0](indexOf(4, "5D"), indexOf(4, "5D")), 1.555635 + 2.0 / (70.0 * std::sqrt(2.0)) * 33.0},
    };
    for (const auto& c : cases) EXPECT_NEAR(c.actual, c.expected, 2e-6) << c.what;
}

TEST(ThreeBodyOperators, TracelessOrthogonalAndScaledAsPureThreeBodyOperators) {
    const auto& all = test::allConfigurationTables();
    const auto f3Traces = threeBodyTraceMatrix(spinOrbitOf(all[3].terms), allThreeBody()[3]);
    for (int n = 3; n <= 11; ++n) {
        const auto& t = all[static_cast<std::size_t>(n)];
        const auto terms = spinOrbitOf(t.terms);
        const auto& ops = allThreeBody()[static_cast<std::size_t>(n)];
        const Eigen::MatrixXd traces = threeBodyTraceMatrix(terms, ops);
        const Eigen::MatrixXd identity = Eigen::MatrixXd::Identity(static_cast<int>(terms.size()), static_cast<int>(terms.size()));
        for (int a = 0; a < kThreeBodyOperatorCount; ++a) {
            const double norm = traces(a, a);
            ASSERT_GT(norm, 1.0) << threeBodyOperatorName(a) << " f" << n;
            EXPECT_NEAR(scalarProductTrace(terms, ops[static_cast<std::size_t>(a)], identity), 0.0, 1e-9 * norm)
                << "trace of " << threeBodyOperatorName(a) << " f" << n;
            // Tr_(f^n)(t^2) = C(8, n-3) Tr_(f^3)(t^2) (Hansen, Judd & Crosswhite 1996)
            EXPECT_NEAR(norm / f3Traces(a, a), binomial(8, n - 3), 1e-9 * binomial(8, n - 3))
                << threeBodyOperatorName(a) << " f" << n;
            for (int b = a + 1; b < kThreeBodyOperatorCount; ++b)
                EXPECT_NEAR(traces(a, b), 0.0, 1e-9 * norm) << threeBodyOperatorName(a) << "," << threeBodyOperatorName(b);
            for (std::size_t k = 0; k < 3; ++k)
                EXPECT_NEAR(scalarProductTrace(terms, ops[static_cast<std::size_t>(a)], t.coulomb[k]), 0.0, 1e-9 * norm)
                    << threeBodyOperatorName(a) << " with f(" << 2 * k + 2 << ") in f" << n;
        }
    }
}

TEST(ThreeBodyOperators, LegacyT2OfConjugateShellsSumsToTenE3) {
    // Judd's t2 (Judd, Phys. Rev. 141, 4 (1966)) under conjugation: t2(f^(14-n)) + t2(f^n) = 10 e3 / (70 sqrt 2),
    // e3 equal in both shells.
    const auto& all = test::allConfigurationTables();
    for (int n = 3; n <= 6; ++n) {
        const Eigen::MatrixXd e3 = racahE3(all[static_cast<std::size_t>(n)]);
        const Eigen::MatrixXd e3Conjugate = racahE3(all[static_cast<std::size_t>(14 - n)]);
        EXPECT_LT((e3 - e3Conjugate).cwiseAbs().maxCoeff(), 1e-9) << "e3 of f" << n << " and f" << 14 - n;
        const auto low = ordinaryThreeBodyOperators(n, allThreeBody()[static_cast<std::size_t>(n)], e3);
        const auto high = ordinaryThreeBodyOperators(14 - n, allThreeBody()[static_cast<std::size_t>(14 - n)], e3Conjugate);
        const Eigen::MatrixXd sum = low[0] + high[0] - (10.0 / (70.0 * std::sqrt(2.0))) * e3;
        EXPECT_LT(sum.cwiseAbs().maxCoeff(), 1e-9) << "f" << n;
    }
}

}  // namespace
}  // namespace orvane
