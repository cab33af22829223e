// An independent Hamiltonian in the Slater-determinant basis of f^n, built
// from second-quantised one-electron operators only (no tables, no coupling in
// |SLJ>): its eigenvalues must equal those of the two-stage engine (free ion in
// |SLJ>, then the crystal field between free-ion levels) for random parameters.
//
// Operators (Racah 1949; Judd, Operator Techniques in Atomic Spectroscopy 1963; Wybourne 1965):
//   Coulomb  sum_k F^k (1/2) <f||C(k)||f>^2 [ (U(k).U(k)) - n/7 ]
//   zeta     sum_i l_i.s_i = l_z s_z + (l+ s- + l- s+)/2
//   alpha    L(L+1) = 84 (U(1).U(1))
//   beta     G(G2) = (1/4) sum_{k=1,5} (2k+1) (U(k).U(k))
//   gamma    G(R7) = (1/5) sum_{k=1,3,5} (2k+1) (U(k).U(k))
//   CF       sum_k [B(k,0) C(k)_0 + sum_{q>0} (B(k,q) C(k)_q + (-1)^q B(k,q)* C(k)_-q)], C(k)_q = <f||C(k)||f> u(k)_q
//   SCCF     the same form with c(k,q) and sum_i 2 (s_i . S) u(k)_q(i)
//   LCCF     the same form with d(k,q) and (1/2) sum_i {(L . l_i), u(k)_q(i)}
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <random>
#include <string>
#include <vector>

#include <Eigen/Sparse>
#include <fmt/format.h>

#include "core/angular.hpp"
#include "core/eigen_solver.hpp"
#include "tables/slater_determinants.hpp"
#include "tests/engine/determinant_support.hpp"
#include "tests/engine/engine_test_support.hpp"

namespace orvane {
namespace {

using test::manyBody;
using test::oneBodyMatrix;
using test::Sparse;
using test::unitScalar;
using test::unitTensorMatrix14;

struct RandomParameters {
    double eavg, f[3], zeta, alpha, beta, gamma;
    std::vector<CrystalFieldRow> crystalField;
    std::vector<CrystalFieldRow> spinCorrelated;   // c(k,q)
    std::vector<CrystalFieldRow> orbitCorrelated;  // d(k,q)
};

RandomParameters randomParameters(unsigned seed, int fold, bool complex, bool correlation = false) {
    std::mt19937 generator(seed);
    auto uniform = [&](double low, double high) { return std::uniform_real_distribution<double>(low, high)(generator); };
    RandomParameters p{uniform(-1000, 1000), {uniform(50000, 90000), uniform(35000, 65000), uniform(25000, 45000)},
                       uniform(500, 2500), uniform(10, 25), uniform(-800, -400), uniform(600, 2000), {}, {}, {}};
    for (int k : {2, 4, 6})
        for (int q = 0; q <= k; q += fold) {
            const double re = uniform(-900, 900);
            const double im = (complex && q > 0) ? uniform(-600, 600) : 0.0;
            p.crystalField.push_back({k, q, {fmt::format("{}", re), re}, {fmt::format("{}", im), im}});
        }
    if (!correlation) return p;
    for (int k : {2, 4, 6})
        for (int q = 0; q <= k; q += fold) {
            const double c = uniform(-300, 300), cIm = (complex && q > 0) ? uniform(-200, 200) : 0.0;
            const double d = uniform(-40, 40), dIm = (complex && q > 0) ? uniform(-30, 30) : 0.0;
            p.spinCorrelated.push_back(test::bkq(k, q, c, cIm));
            p.orbitCorrelated.push_back(test::bkq(k, q, d, dIm));
        }
    return p;
}

using test::row;

ParameterSet setOf(int n, const RandomParameters& p, int fold) {
    ParameterSet set;
    set.electronCount = n;
    set.fold = fold;
    set.mainFreeIon = {row("EAVG", p.eavg), row("F2", p.f[0]), row("F4", p.f[1]), row("F6", p.f[2]), row("ZETA", p.zeta)};
    set.otherFreeIon = {row("ALPHA", p.alpha), row("BETA", p.beta), row("GAMMA", p.gamma)};
    set.crystalField = p.crystalField;
    if (!p.spinCorrelated.empty()) set.correlationCF.push_back({CorrelationKind::Sccf, p.spinCorrelated});
    if (!p.orbitCorrelated.empty()) set.correlationCF.push_back({CorrelationKind::Lccf, p.orbitCorrelated});
    set.switches.correlationSections = !set.correlationCF.empty();
    return set;
}

Eigen::VectorXd determinantEigenvalues(int n, const RandomParameters& p) {
    const auto& space = determinantSpace(n);
    const int size = space.size();
    Sparse identity(size, size);
    identity.setIdentity();
    std::array<Sparse, 7> scalar;
    for (int k = 1; k <= 6; ++k) scalar[k] = unitScalar(k, space);
    Sparse real = p.eavg * identity + p.zeta * manyBody(test::spinOrbitMatrix(), space) +
                  p.alpha * 84.0 * scalar[1] + p.beta * 0.25 * (3.0 * scalar[1] + 11.0 * scalar[5]) +
                  p.gamma * 0.2 * (3.0 * scalar[1] + 7.0 * scalar[3] + 11.0 * scalar[5]);
    for (int i = 0; i < 3; ++i) {
        const int k = 2 * (i + 1);
        const double ck = ReducedCk2(6, 2 * k, 6);
        real += p.f[i] * 0.5 * ck * ck * (scalar[k] - (n / 7.0) * identity);
    }
    Eigen::MatrixXcd hamiltonian = Eigen::MatrixXd(real).cast<std::complex<double>>();
    // B(k,q) X_q + (-1)^q B(k,q)* X_-q for each row of an operator X.
    auto addRows = [&](const std::vector<CrystalFieldRow>& rows, double normalisation(int), auto component) {
        for (const auto& row : rows) {
            const double ck = normalisation(row.k);
            const std::complex<double> b(row.re.value, row.im.value);
            const Eigen::MatrixXd plus = Eigen::MatrixXd(component(row.k, row.q));
            hamiltonian += (ck * b) * plus.cast<std::complex<double>>();
            if (row.q > 0) {
                const Eigen::MatrixXd minus = Eigen::MatrixXd(component(row.k, -row.q));
                hamiltonian += (ck * ((row.q % 2 == 0) ? 1.0 : -1.0) * std::conj(b)) * minus.cast<std::complex<double>>();
            }
        }
    };
    addRows(p.crystalField, [](int k) { return ReducedCk2(6, 2 * k, 6); },
            [&](int k, int q) { return manyBody(unitTensorMatrix14(k, q), space); });
    addRows(p.spinCorrelated, [](int) { return 1.0; },
            [&](int k, int q) { return test::spinCorrelatedComponent(k, q, space); });
    addRows(p.orbitCorrelated, [](int) { return 1.0; },
            [&](int k, int q) { return test::orbitCorrelatedComponent(k, q, space); });
    auto result = hermitianEigenvalues(std::move(hamiltonian));
    EXPECT_EQ(result.status, EigenStatus::Ok);
    return result.values;
}

// The engine takes the configuration average of every scalar operator off the
// diagonal (EAVG is the barycentre); the determinant Hamiltonian does not. The
// reference is therefore moved to the barycentre EAVG: every other operator is
// traceless over the configuration, so the engine's spectrum must then match
// without any free constant.
Eigen::VectorXd atBarycentre(const Eigen::VectorXd& spectrum, double eavg) {
    return spectrum.array() - spectrum.mean() + eavg;
}

// Random parameters (fixed seeds): f2, f3 at fold 1; f5 at fold 3 (its blocks stay small);
// f12 through the conjugate f2 (levels up to a constant) and with its own tables. With
// correlation: random spin- and L-correlated c(k,q), d(k,q) on top of the free ion and B(k,q)
// (every term pair of f2 and f3 is reached at fold 1; on f12 c and d keep their signs).
struct DeterminantCase {
    int n, fold;
    bool complex, actualShell, correlation;
    unsigned seed;
};

std::string caseName(const DeterminantCase& c) {
    return "f" + std::to_string(c.n) + "_fold" + std::to_string(c.fold) + (c.complex ? "_complex" : "_real") +
           (c.actualShell ? "_actual_shell" : "") + (c.correlation ? "_correlation" : "");
}
void PrintTo(const DeterminantCase& c, std::ostream* os) { *os << caseName(c); }

class CrystalFieldDeterminants : public ::testing::TestWithParam<DeterminantCase> {};

TEST_P(CrystalFieldDeterminants, EngineMatchesTheDeterminantHamiltonian) {
    const auto& c = GetParam();
    const auto parameters = randomParameters(c.seed, c.fold, c.complex, c.correlation);
    auto set = setOf(c.n, parameters, c.fold);
    set.switches.actualShell = c.actualShell;
    const auto result = test::runLevels(set, {true, false, c.complex});
    const bool throughConjugate = c.n > 7 && !c.actualShell;
    EXPECT_EQ(result.conjugate, throughConjugate);
    const Eigen::VectorXd reference = atBarycentre(determinantEigenvalues(c.n, parameters), parameters.eavg);
    const auto engine = test::levelEnergies(result, throughConjugate);
    std::vector<double> expected(reference.data(), reference.data() + reference.size());
    if (throughConjugate)
        for (double& e : expected) e -= reference(0);
    const double spread = reference.maxCoeff() - reference.minCoeff();
    EXPECT_LT(test::largestDifference(engine, expected), 1e-9 * spread);
    EXPECT_GT(spread, 1000.0);
}

INSTANTIATE_TEST_SUITE_P(
    Random, CrystalFieldDeterminants,
    ::testing::Values(DeterminantCase{2, 1, false, false, false, 11}, DeterminantCase{2, 1, true, false, false, 12},
                      DeterminantCase{3, 1, false, false, false, 13}, DeterminantCase{3, 1, true, false, false, 14},
                      DeterminantCase{5, 3, true, false, false, 16}, DeterminantCase{12, 1, true, false, false, 17},
                      DeterminantCase{12, 1, true, true, false, 18}, DeterminantCase{12, 2, false, false, false, 19},
                      DeterminantCase{2, 1, false, false, true, 21}, DeterminantCase{2, 1, true, false, true, 22},
                      DeterminantCase{3, 1, false, false, true, 23}, DeterminantCase{3, 1, true, false, true, 24},
                      DeterminantCase{12, 1, true, false, true, 26}, DeterminantCase{12, 2, false, true, true, 27}),
    [](const auto& info) { return caseName(info.param); });

}  // namespace
}  // namespace orvane
