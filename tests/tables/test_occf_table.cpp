// Orthogonal correlation crystal-field tables g(K)10A/B: the two-body
// escalation reproduces (n-1) U(K) from the f^2 U(K) (sum over pairs of
// u(i) + u(j)); g(K)10A/B are Hermitian spin-scalar tensors confined to
// singlet / triplet pairs and trace-orthogonal to U(K) (another R7 irrep) in
// f^2 and after escalation. (A table without this generator's version line is
// generated again: tests/engine/test_crystal_field.cpp.)
#include <gtest/gtest.h>

#include "tables/occf_table.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

using test::allConfigurationTables;

Eigen::MatrixXd escalatedTo(int n, int K, Eigen::MatrixXd matrix) {
    for (int m = 3; m <= n; ++m) {
        const auto& t = allConfigurationTables()[m];
        matrix = escalateTwoBodyOrbitalTensor(m, K, spinOrbitOf(t.terms), spinOrbitOf(t.parents), t.cfp, matrix);
    }
    return matrix;
}

// Tr over the |S L M_S M_L> states of A_q B_q^+ up to the factor 1/(2K+1).
double traceProduct(const std::vector<TermSpinOrbit>& terms, const Eigen::MatrixXd& a, const Eigen::MatrixXd& b) {
    double sum = 0.0;
    for (Eigen::Index i = 0; i < a.rows(); ++i) sum += (terms[i].twiceS + 1) * a.row(i).dot(b.row(i));
    return sum;
}

TEST(OccfTable, EscalationHermiticityConfinementAndOrthogonality) {
    const auto pairTerms = spinOrbitOf(allConfigurationTables()[2].terms);
    for (int K : {2, 4, 6})
        for (int n : {2, 3, 4}) {
            const auto terms = spinOrbitOf(allConfigurationTables()[n].terms);
            const Eigen::MatrixXd& u = allConfigurationTables()[n].unitTensor[K];
            EXPECT_LT((escalatedTo(n, K, allConfigurationTables()[2].unitTensor[K]) - (n - 1) * u).cwiseAbs().maxCoeff(),
                      1e-11);
            for (char variant : {'A', 'B'}) {
                const Eigen::MatrixXd g = escalatedTo(n, K, occfPairMatrix(K, variant, pairTerms));
                for (Eigen::Index i = 0; i < g.rows(); ++i)
                    for (Eigen::Index j = 0; j < g.cols(); ++j) {
                        EXPECT_NEAR(g(j, i), ((terms[i].L - terms[j].L) % 2 == 0 ? 1 : -1) * g(i, j), 1e-12);
                        if (n == 2 && terms[i].twiceS != (variant == 'A' ? 0 : 2)) {
                            EXPECT_EQ(g(i, j), 0.0);
                        }
                    }
                EXPECT_GT(g.cwiseAbs().maxCoeff(), 0.05) << "g(" << K << ")10" << variant << " f" << n;
                EXPECT_NEAR(traceProduct(terms, g, u), 0.0, 1e-12) << "g(" << K << ")10" << variant << " f" << n;
            }
        }
}

}  // namespace
}  // namespace orvane
