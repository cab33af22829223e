// The three-body escalation (factor n/(n-3) through fractional parentage)
// against second quantisation: the f3 operator is lifted to Slater
// determinants, O = sum_{d,d'} <d|O|d'> A+_d A_d' with A+_d = a+_p1 a+_p2 a+_p3
// (p1 < p2 < p3), and applied to the generated highest-weight states of f4 and
// f5. The two routes share only the f3 seed.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tables/slater_determinants.hpp"
#include "tables/three_body_tables.hpp"
#include "tests/tables/all_configuration_tables.hpp"
#include "tests/tables/generated_configurations.hpp"

namespace orvane {
namespace {

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
    const auto threeBody = threeBodyOperatorsOfAll(test::allConfigurationTables());
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
