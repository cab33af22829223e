// The term basis generated from Slater determinants and its tables: term lists
// against the published order (the parentage values against the published
// tables in test_published_comparison.cpp, their phase and pair conventions
// through the delivered data in test_table_files.cpp), the unit tensors and
// Coulomb matrices against operators projected directly from the determinant
// basis, the transposition phase of the stored half and the symmetry of the
// L-correlated crystal-field tables.
#include <cmath>

#include <gtest/gtest.h>

#include "core/angular.hpp"
#include "core/atomic_file.hpp"
#include "tables/lccf_table.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/slater_determinants.hpp"
#include "tables/state_labels.hpp"
#include "tests/support/reference_data.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

using test::allConfigurationTables;
using test::generatedConfigurations;
using test::termIndex;

// The term lists of Nielson & Koster (1963) in their order; f^N (N = 8..13) lists the terms
// of f^(14-N) in the same order, f14 the single term 1S.
TEST(TermGenerator, TermListsEqualThePublishedOrder) {
    ORVANE_REQUIRE_REFERENCE(reference);
    for (int n = 1; n <= 13; ++n) {
        const auto file = reference / "terms" / ("f" + std::to_string(std::min(n, 14 - n)) + "-terms.txt");
        const auto published =
            parseStateLabels(readTextFile(file), StateLabelForm::Standard, true, file.string());
        const auto& generated = test::allConfigurationTables()[n].terms;  // term records
        ASSERT_EQ(published.terms.size(), generated.size()) << "f" << n;
        EXPECT_TRUE(published.warnings.empty());
        for (std::size_t i = 0; i < generated.size(); ++i) {
            const auto& record = generated[i];
            EXPECT_EQ(record.label, published.terms[i].label) << "f" << n << " term " << i + 1;
            EXPECT_EQ(record.seniority, published.terms[i].seniority) << record.label;
            EXPECT_EQ(record.r7Value, published.terms[i].r7Value) << record.label;
            EXPECT_EQ(record.g2Value, published.terms[i].g2Value) << record.label;
        }
    }
    ASSERT_EQ(test::allConfigurationTables()[14].terms.size(), 1u);
    EXPECT_EQ(test::allConfigurationTables()[14].terms[0].label, "1S");
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

Eigen::MatrixXd lccfOf(int n, int K) {
    const auto& t = allConfigurationTables()[n];
    return lccfMatrixFromParentage(n, K, spinOrbitOf(t.terms), spinOrbitOf(t.parents), t.cfp);
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
