// One-electron and Coulomb tables: complementarity, traces, published values of
// f^1 and f^2, and an independent cross-check against operators projected
// directly from the Slater-determinant basis.
#include <cmath>

#include <gtest/gtest.h>

#include "core/angular.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/slater_determinants.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

using test::allConfigurationTables;
using test::generatedConfigurations;

int termIndex(const ConfigurationTables& tables, const std::string& label) {
    for (std::size_t i = 0; i < tables.terms.size(); ++i)
        if (tables.terms[i].label == label) return static_cast<int>(i);
    ADD_FAILURE() << "no term " << label;
    return 0;
}

TEST(ReducedTables, ParentageOfEveryConfigurationIsNormalised) {
    // Sum of squared coefficients over the parents of each term is 1 (n = 1..14).
    for (int n = 1; n <= 14; ++n) {
        const auto& cfp = allConfigurationTables()[n].cfp;
        for (int i = 0; i < cfp.rows(); ++i)
            EXPECT_NEAR(cfp.row(i).squaredNorm(), 1.0, 1e-12) << "f" << n << " term " << i + 1;
    }
}

TEST(ReducedTables, ComplementarityRelationsHoldForEveryRank) {
    // U(k)(f^N) = -(-1)^k U(k)(f^(14-N)), V(1k)(f^N) = (-1)^k V(1k)(f^(14-N)), k >= 1
    // (Nielson & Koster 1963, complementarity), for N = 8..13 built from the complementary coefficients.
    for (int N = 8; N <= 13; ++N) {
        const auto& high = allConfigurationTables()[N];
        const auto& low = allConfigurationTables()[14 - N];
        for (int k = 1; k <= 6; ++k) {
            const double uSign = (k % 2 == 0) ? -1.0 : 1.0;
            const double vSign = (k % 2 == 0) ? 1.0 : -1.0;
            EXPECT_LT((high.unitTensor[k] - uSign * low.unitTensor[k]).cwiseAbs().maxCoeff(), 1e-12)
                << "U(" << k << ") f" << N;
            EXPECT_LT((high.doubleTensor[k] - vSign * low.doubleTensor[k]).cwiseAbs().maxCoeff(), 1e-12)
                << "V(1" << k << ") f" << N;
        }
    }
}

TEST(ReducedTables, OneElectronValues) {
    // f1: <2F||U(k)||2F> = 1, <2F||V(1k)||2F> = sqrt(3/2); f13: U(k) = -(-1)^k (one hole).
    for (int k = 1; k <= 6; ++k) {
        EXPECT_NEAR(allConfigurationTables()[1].unitTensor[k](0, 0), 1.0, 1e-14);
        EXPECT_NEAR(allConfigurationTables()[1].doubleTensor[k](0, 0), std::sqrt(1.5), 1e-14);
        EXPECT_NEAR(allConfigurationTables()[13].unitTensor[k](0, 0), (k % 2 == 0) ? -1.0 : 1.0, 1e-14);
    }
}

TEST(ReducedTables, PublishedValuesOfF2) {
    // Nielson & Koster 1963, f2: <3F||U(2)||3F> = -1/3, <3H||V(11)||3H> = sqrt(165/28),
    // |<3P||V(11)||1S>| = sqrt(3/7); U(0) of 3P = 2 sqrt(3/7) = 1.309307.
    const auto& f2 = allConfigurationTables()[2];
    const int p3 = termIndex(f2, "3P"), f3 = termIndex(f2, "3F"), h3 = termIndex(f2, "3H"),
              s1 = termIndex(f2, "1S");
    EXPECT_NEAR(f2.unitTensor[2](f3, f3), -1.0 / 3.0, 1e-14);
    EXPECT_NEAR(f2.doubleTensor[1](h3, h3), std::sqrt(165.0 / 28.0), 1e-14);
    EXPECT_NEAR(std::abs(f2.doubleTensor[1](p3, s1)), std::sqrt(3.0 / 7.0), 1e-14);
    EXPECT_NEAR(f2.unitTensor[0](p3, p3), 2.0 * std::sqrt(3.0 / 7.0), 1e-14);
}

TEST(ReducedTables, ElectrostaticTracesOverTheFullSpace) {
    // Racah 1949 operators e1, e2, e3: Tr(e1^2), Tr(e2^2), Tr(e3^2) with [S][L] weights (computed check
    // values), cross traces 0.
    struct Case { int n; double e1, e2, e3; };
    const Case cases[] = {{2, 189, 1081080, 13860}, {3, 3024, 10810800, 138600}, {4, 23814, 48648600, 623700}};
    for (const auto& c : cases) {
        const auto& t = allConfigurationTables()[c.n];
        const auto traces = electrostaticTraces(c.n, spinOrbitOf(t.terms), t.coulomb[0], t.coulomb[1], t.coulomb[2]);
        EXPECT_NEAR(traces.squares[0], c.e1, 1e-8 * c.e1) << "f" << c.n;
        EXPECT_NEAR(traces.squares[1], c.e2, 1e-8 * c.e2) << "f" << c.n;
        EXPECT_NEAR(traces.squares[2], c.e3, 1e-8 * c.e3) << "f" << c.n;
        for (double product : traces.products) EXPECT_NEAR(product, 0.0, 1e-6) << "f" << c.n;
    }
    // The products vanish in every configuration, the more-than-half-filled ones too.
    for (int n = 2; n <= 12; ++n) {
        const auto& t = allConfigurationTables()[n];
        const auto traces = electrostaticTraces(n, spinOrbitOf(t.terms), t.coulomb[0], t.coulomb[1], t.coulomb[2]);
        for (double product : traces.products) EXPECT_NEAR(product, 0.0, 1e-6 * traces.squares[1]) << "f" << n;
    }
}

// Determinant-space matrix element <psi, M=L| U(k)_q |psi', M'=L'> with q = L - L'.
double determinantUnitTensor(int n, int k, const GeneratedTerm& a, const GeneratedTerm& b) {
    const int q = a.L - b.L;
    const auto image = applyOneBody(unitTensorComponent(k, q), determinantSpace(n), b.state);
    return a.state.dot(image);
}

TEST(ReducedTables, UnitTensorsAgreeWithTheDeterminantBasis) {
    // Independent route: Wigner-Eckart on determinant matrix elements,
    // <L L| U(k)_q |L' L'> = (L k L'; -L q L') <L||U(k)||L'>, against the CFP formula.
    for (int n = 2; n <= 5; ++n) {
        const auto& generated = generatedConfigurations()[n];
        const auto& tables = allConfigurationTables()[n];
        double largest = 0.0;
        int checked = 0;
        for (int k = 1; k <= 6; ++k)
            for (std::size_t i = 0; i < generated.terms.size(); ++i)
                for (std::size_t j = 0; j < generated.terms.size(); ++j) {
                    const auto& a = generated.terms[i];
                    const auto& b = generated.terms[j];
                    if (a.twiceS != b.twiceS || std::abs(a.L - b.L) > k || a.L + b.L < k) continue;
                    const double threeJ = ThreeJ2(2 * a.L, 2 * k, 2 * b.L, -2 * a.L, 2 * (a.L - b.L), 2 * b.L);
                    if (std::abs(threeJ) < 1e-8) continue;
                    const double direct = determinantUnitTensor(n, k, a, b) / threeJ;
                    largest = std::max(largest, std::abs(direct - tables.unitTensor[k](static_cast<int>(i), static_cast<int>(j))));
                    ++checked;
                }
        EXPECT_GT(checked, 0);
        EXPECT_LT(largest, 1e-11) << "f" << n;
    }
}

TEST(ReducedTables, CoulombMatricesAgreeWithTheDeterminantBasis) {
    // f_k = 1/2 <f||C(k)||f>^2 [ (U(k).U(k)) - n/7 ] as a two-body operator on
    // determinants (the sum over electron pairs of C(k)(i).C(k)(j)), projected on
    // the highest-weight term states.
    for (int n = 2; n <= 5; ++n) {
        const auto& generated = generatedConfigurations()[n];
        const auto& tables = allConfigurationTables()[n];
        const auto& space = determinantSpace(n);
        double largest = 0.0;
        for (int r = 0; r < 3; ++r) {
            const int k = 2 * r + 2;
            const double ck = ReducedCk(3, k, 3);
            for (std::size_t j = 0; j < generated.terms.size(); ++j) {
                const Eigen::VectorXd image = applyUnitTensorScalar(k, space, generated.terms[j].state);
                for (std::size_t i = 0; i < generated.terms.size(); ++i) {
                    const auto& a = generated.terms[i];
                    const auto& b = generated.terms[j];
                    if (a.twiceS != b.twiceS || a.L != b.L) continue;
                    const double direct = 0.5 * ck * ck * (a.state.dot(image) - (i == j ? n / 7.0 : 0.0));
                    largest = std::max(largest, std::abs(direct - tables.coulomb[r](static_cast<int>(i), static_cast<int>(j))));
                }
            }
        }
        EXPECT_LT(largest, 1e-11) << "f" << n;
    }
}

TEST(ReducedTables, StoredHalfIsCompletedWithTheTranspositionPhase) {
    // <j||U||i> = (-1)^(L_i - L_j) <i||U||j>: the completed table equals the
    // formula evaluated in both orders. f(k) needs sum U(psi,psi'') U(psi',psi'')
    // over every L''; the literal product U(psi,psi'') U(psi'',psi') of true
    // reduced elements differs from it by (-1)^(L'' - L) and is wrong.
    const auto& t = allConfigurationTables()[3];
    const auto terms = spinOrbitOf(t.terms);
    const Eigen::MatrixXd stored = t.unitTensor[2].triangularView<Eigen::Upper>();
    const Eigen::MatrixXd completed = completeFromStoredHalf(stored, terms);
    EXPECT_LT((completed - t.unitTensor[2]).cwiseAbs().maxCoeff(), 1e-14);
    const double ck = ReducedCk(3, 2, 3);
    auto coulombOf = [&](bool literalProduct) {
        Eigen::MatrixXd f = Eigen::MatrixXd::Zero(completed.rows(), completed.cols());
        for (int i = 0; i < f.rows(); ++i)
            for (int j = 0; j < f.cols(); ++j) {
                if (terms[i].twiceS != terms[j].twiceS || terms[i].L != terms[j].L) continue;
                const double sum = (literalProduct ? completed.row(i).dot(completed.col(j))
                                                   : completed.row(i).dot(completed.row(j))) /
                                   (2 * terms[i].L + 1.0);
                f(i, j) = 0.5 * ck * ck * (sum - (i == j ? 3.0 / 7.0 : 0.0));
            }
        return f;
    };
    EXPECT_LT((coulombOf(false) - t.coulomb[0]).cwiseAbs().maxCoeff(), 1e-13);
    EXPECT_GT((coulombOf(true) - t.coulomb[0]).cwiseAbs().maxCoeff(), 1e-2);
}

}  // namespace
}  // namespace orvane
