// Electrostatic parameters for the orthogonalised operators: the operators are
// traceless and mutually orthogonal over the |SLJM> states, and the converted
// parameters give the same Hamiltonian up to a constant.
#include "interactive/parameter_dialogs.hpp"
#include "engine/orthogonal_electrostatic.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include "core/log_book.hpp"
#include "engine/parameter_file.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

const EngineTables& tablesOf(int n) { return test::engineTables(n); }

int termIndex(const EngineTables& tables, const std::string& label) {
    for (std::size_t i = 0; i < tables.terms.size(); ++i)
        if (tables.terms[i].label == label) return static_cast<int>(i);
    ADD_FAILURE() << "no term " << label;
    return 0;
}

Eigen::MatrixXd hamiltonian(const ElectrostaticOperators& operators, const ElectrostaticParameters& p) {
    Eigen::MatrixXd h = Eigen::MatrixXd::Zero(operators[0].rows(), operators[0].cols());
    for (std::size_t i = 0; i < operators.size(); ++i) h += p[i] * operators[i];
    return h;
}

// Largest deviation of a - b from a multiple of the identity.
double deviationFromConstant(const Eigen::MatrixXd& a, const Eigen::MatrixXd& b) {
    const Eigen::MatrixXd d = a - b;
    const double shift = d(0, 0);
    return (d - shift * Eigen::MatrixXd::Identity(d.rows(), d.cols())).cwiseAbs().maxCoeff();
}

ParameterSet exampleSet(const std::string& name) {
    return readParameterFile(test::sourceDirectory() / "examples" / name);
}

TEST(ElectrostaticOperators, F2TermValues) {
    // f2 term energies in Racah's form (Racah, Phys. Rev. 76, 1352 (1949)): coefficients of E^1, E^2, E^3.
    struct Row {
        const char* term;
        double e1, e2, e3;
        int l;
    };
    const Row rows[] = {{"3P", 0, 0, 33, 1},   {"3F", 0, 0, 0, 3},    {"3H", 0, 0, -9, 5},  {"1S", 9, 0, 0, 0},
                        {"1D", 2, 286, -11, 2}, {"1G", 2, -260, -4, 4}, {"1I", 2, 70, 7, 6}};
    const auto& tables = tablesOf(2);
    const auto operators = electrostaticOperators(tables);
    for (const Row& r : rows) {
        const int i = termIndex(tables, r.term);
        EXPECT_NEAR(operators[0](i, i), r.e1, 1e-9) << r.term;
        EXPECT_NEAR(operators[1](i, i), r.e2, 1e-9) << r.term;
        EXPECT_NEAR(operators[2](i, i), r.e3, 1e-9) << r.term;
        EXPECT_NEAR(operators[3](i, i), r.l * (r.l + 1.0), 1e-12) << r.term;
    }
    // f2 1D: U = (20), W = (200), Casimir eigenvalues (Wybourne, Spectroscopic Properties of Rare Earths 1965):
    // G(G2) = (u1^2 + u1 u2 + u2^2 + 5 u1 + 4 u2)/12 = 14/12, G(R7) = [w1(w1+5) + ...]/10 = 14/10.
    const int d = termIndex(tables, "1D");
    EXPECT_NEAR(operators[4](d, d), 14.0 / 12.0, 1e-12);
    EXPECT_NEAR(operators[5](d, d), 1.4, 1e-12);
}

TEST(OrthogonalElectrostatic, TracelessAndOrthogonalOverTheStates) {
    for (int n : {2, 3, 4, 7, 11}) {
        SCOPED_TRACE("f" + std::to_string(n));
        const auto& tables = tablesOf(n);
        const auto set = orthogonaliseElectrostatic(tables);
        const int T = static_cast<int>(tables.terms.size());
        const Eigen::MatrixXd identity = Eigen::MatrixXd::Identity(T, T);
        for (int i = 0; i < kElectrostaticOperatorCount; ++i) {
            const auto& oi = set.orthogonal[static_cast<std::size_t>(i)];
            const double normI = stateSpaceTrace(tables.terms, oi, oi);
            EXPECT_GT(normI, 0.0) << "o" << i + 1 << " vanished";
            EXPECT_NEAR(stateSpaceTrace(tables.terms, oi, identity) / std::sqrt(normI), 0.0, 1e-9) << "o" << i + 1;
            for (int j = 0; j < i; ++j) {
                const auto& oj = set.orthogonal[static_cast<std::size_t>(j)];
                const double cosine = stateSpaceTrace(tables.terms, oi, oj) /
                                      std::sqrt(normI * stateSpaceTrace(tables.terms, oj, oj));
                EXPECT_NEAR(cosine, 0.0, 1e-10) << "o" << i + 1 << " o" << j + 1;
            }
        }
        // Order e1, e2, e3 first: e2 and e3 are traceless and orthogonal to e1
        // (Racah 1949), so they come through unchanged.
        const auto operators = electrostaticOperators(tables);
        EXPECT_LT((set.orthogonal[1] - operators[1]).cwiseAbs().maxCoeff(), 1e-9);
        EXPECT_LT((set.orthogonal[2] - operators[2]).cwiseAbs().maxCoeff(), 1e-9);
        // L(L+1) is not orthogonal to the e_k: its orthogonal part differs.
        EXPECT_GT(deviationFromConstant(set.orthogonal[3], operators[3]), 1e-3);
    }
}

TEST(OrthogonalElectrostatic, SameHamiltonianUpToAConstant) {
    // Carnall, Goodman, Rajnak & Rana (1989), Table I: Pr3+ (f2) and Nd3+ (f3) in LaF3.
    for (const auto& [name, n] : std::vector<std::pair<std::string, int>>{{"Pr3plus-LaF3.par", 2},
                                                                          {"Nd3plus-LaF3.par", 3}}) {
        SCOPED_TRACE(name);
        const ParameterSet set = exampleSet(name);
        ASSERT_EQ(set.electronCount, n);
        const auto& tables = tablesOf(n);
        const auto original = electrostaticParametersOf(set);
        const auto orthogonal = orthogonaliseElectrostatic(tables);
        const auto converted = orthogonalParameters(orthogonal, original);
        const Eigen::MatrixXd h = hamiltonian(electrostaticOperators(tables), original);
        const Eigen::MatrixXd hOrthogonal = hamiltonian(orthogonal.orthogonal, converted);
        EXPECT_LT(deviationFromConstant(h, hOrthogonal), 1e-7);
        // Eigenvalue differences (term energies relative to the lowest) agree.
        Eigen::SelfAdjointEigenSolver<Eigen::MatrixXd> a(h), b(hOrthogonal);
        const Eigen::VectorXd ea = a.eigenvalues().array() - a.eigenvalues()[0];
        const Eigen::VectorXd eb = b.eigenvalues().array() - b.eigenvalues()[0];
        EXPECT_LT((ea - eb).cwiseAbs().maxCoeff(), 1e-7);
        // The parameters of the e_k change (alpha, beta, gamma overlap them);
        // taking the old values for the orthogonal operators gives a different spectrum.
        EXPECT_GT(deviationFromConstant(h, hamiltonian(orthogonal.orthogonal, original)), 1.0);
        // gamma G(R7) is last: its parameter is unchanged.
        EXPECT_NEAR(converted[5], original[5], 1e-9);
    }
}

}  // namespace
}  // namespace orvane
