// Three-body operators of f^n (the magnetic ones are compared with the published
// tables in test_magnetic_and_three_body_reference.cpp): traceless, mutually
// orthogonal and orthogonal to the two-body ones with the pure three-body norm
// scaling, and the three-body escalation (factor n/(n-3) through fractional parentage)
// against second quantisation: the f3 operator lifted to Slater determinants,
// O = sum_{d,d'} <d|O|d'> A+_d A_d' with A+_d = a+_p1 a+_p2 a+_p3 (p1 < p2 < p3),
// applied to the generated highest-weight states of f4 and f5 (the two routes
// share only the f3 seed).
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tables/slater_determinants.hpp"
#include "tables/three_body_tables.hpp"
#include "tables/two_body_escalation.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

const std::vector<ThreeBodyOperators>& allThreeBody() {
    static const auto all = threeBodyOperatorsOfAll(test::allConfigurationTables());
    return all;
}

double binomial(int n, int k) { return std::tgamma(n + 1.0) / (std::tgamma(k + 1.0) * std::tgamma(n - k + 1.0)); }

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

// Every (M_S, M_L) component of a term, lowered from its highest-weight state.
std::vector<Eigen::VectorXd> allComponents(const GeneratedTerm& term, const DeterminantSpace& space) {
    std::vector<Eigen::VectorXd> components;
    Eigen::VectorXd spinTop = term.state;
    for (int ms = term.twiceS; ms >= -term.twiceS; ms -= 2) {
        Eigen::VectorXd v = spinTop;
        for (int ml = term.L; ml >= -term.L; --ml) {
            components.push_back(v);
            if (ml > -term.L) {
                v = applyOneBody(orbitalLowering(), space, v);
                v.normalize();
            }
        }
        if (ms > -term.twiceS) {
            spinTop = applyOneBody(spinLowering(), space, spinTop);
            spinTop.normalize();
        }
    }
    return components;
}

// The f3 operator as a matrix over the f3 determinants.
Eigen::MatrixXd liftToDeterminants(const std::vector<GeneratedTerm>& terms, const Eigen::MatrixXd& matrix) {
    const auto& space = determinantSpace(3);
    std::vector<std::vector<Eigen::VectorXd>> components;
    for (const auto& t : terms) components.push_back(allComponents(t, space));
    Eigen::MatrixXd lifted = Eigen::MatrixXd::Zero(space.size(), space.size());
    for (std::size_t a = 0; a < terms.size(); ++a)
        for (std::size_t b = 0; b < terms.size(); ++b) {
            const double value = matrix(static_cast<int>(a), static_cast<int>(b));
            if (value == 0.0) continue;
            for (std::size_t m = 0; m < components[a].size(); ++m)
                lifted += value * components[a][m] * components[b][m].transpose();
        }
    return lifted;
}

std::vector<int> orbitalsOf(std::uint16_t mask) {
    std::vector<int> p;
    for (int i = 0; i < kSpinOrbitals; ++i)
        if (mask & (1u << i)) p.push_back(i);
    return p;
}

// sum_{d,d'} O(d,d') A+_d A_d' |state>, state in f^n.
Eigen::VectorXd applyThreeBody(int n, const Eigen::MatrixXd& lifted, const Eigen::VectorXd& state) {
    const auto& triples = determinantSpace(3);
    const auto& rest = determinantSpace(n - 3);
    Eigen::MatrixXd removed(rest.size(), triples.size());  // column d' = A_d' |state>
    for (int d = 0; d < triples.size(); ++d) {
        const auto p = orbitalsOf(triples.masks[static_cast<std::size_t>(d)]);
        Eigen::VectorXd v = annihilate(p[0], determinantSpace(n), state);
        v = annihilate(p[1], determinantSpace(n - 1), v);
        removed.col(d) = annihilate(p[2], determinantSpace(n - 2), v);
    }
    const Eigen::MatrixXd mixed = removed * lifted.transpose();  // column d = sum_d' O(d,d') A_d'|state>
    Eigen::VectorXd result = Eigen::VectorXd::Zero(determinantSpace(n).size());
    for (int d = 0; d < triples.size(); ++d) {
        if (mixed.col(d).squaredNorm() == 0.0) continue;
        const auto p = orbitalsOf(triples.masks[static_cast<std::size_t>(d)]);
        Eigen::VectorXd v = create(p[2], rest, mixed.col(d));
        v = create(p[1], determinantSpace(n - 2), v);
        result += create(p[0], determinantSpace(n - 1), v);
    }
    return result;
}

TEST(ThreeBodySecondQuantisation, EscalatedMatricesOfF4AndF5EqualTheDeterminantOperator) {
    const auto& generated = test::generatedConfigurations();
    const auto& threeBody = allThreeBody();
    for (int c : {1, 0}) {  // t3, then t2' (which has the 2F1-2F2 element of the seed)
        const Eigen::MatrixXd lifted = liftToDeterminants(generated[3].terms, threeBody[3][static_cast<std::size_t>(c)]);
        for (int n = 3; n <= 5; ++n) {
            const auto& terms = generated[static_cast<std::size_t>(n)].terms;
            const Eigen::MatrixXd& escalated = threeBody[static_cast<std::size_t>(n)][static_cast<std::size_t>(c)];
            double largest = 0.0;
            for (std::size_t j = 0; j < terms.size(); ++j) {
                const Eigen::VectorXd image = applyThreeBody(n, lifted, terms[j].state);
                for (std::size_t i = 0; i < terms.size(); ++i) {
                    if (terms[i].twiceS != terms[j].twiceS || terms[i].L != terms[j].L) continue;
                    const double direct = terms[i].state.dot(image);
                    largest = std::max(largest, std::abs(direct - escalated(static_cast<int>(i), static_cast<int>(j))));
                }
            }
            EXPECT_LT(largest, 1e-9) << threeBodyOperatorName(c) << " f" << n;
        }
    }
}

}  // namespace
}  // namespace orvane
