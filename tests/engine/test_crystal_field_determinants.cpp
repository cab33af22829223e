// An independent Hamiltonian in the Slater-determinant basis of f^n, built
// from second-quantised one-electron operators only (no tables, no coupling in
// |SLJ>): its eigenvalues must equal those of the two-stage engine (free ion in
// |SLJ>, then the crystal field between free-ion levels) for random parameters.
//
// Operators (physics notes 2.3, 5.1, 9.1):
//   Coulomb  sum_k F^k (1/2) <f||C(k)||f>^2 [ (U(k).U(k)) - n/7 ]
//   zeta     sum_i l_i.s_i = l_z s_z + (l+ s- + l- s+)/2
//   alpha    L(L+1) = 84 (U(1).U(1))
//   beta     G(G2) = (1/4) sum_{k=1,5} (2k+1) (U(k).U(k))
//   gamma    G(R7) = (1/5) sum_{k=1,3,5} (2k+1) (U(k).U(k))
//   CF       sum_k [B(k,0) C(k)_0 + sum_{q>0} (B(k,q) C(k)_q + (-1)^q B(k,q)* C(k)_-q)], C(k)_q = <f||C(k)||f> u(k)_q
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <complex>
#include <random>
#include <string>
#include <vector>

#include <Eigen/Sparse>
#include <fmt/format.h>

#include "core/angular.hpp"
#include "core/eigen_solver.hpp"
#include "core/log_book.hpp"
#include "engine/energy_levels.hpp"
#include "tables/slater_determinants.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using Sparse = Eigen::SparseMatrix<double>;

std::filesystem::path tableDirectory() { return test::engineTableDirectory(); }

// Sign of moving an operator past the occupied spin-orbitals below p.
double signBelow(unsigned mask, int p) { return (std::popcount(mask & ((1u << p) - 1u)) % 2 == 0) ? 1.0 : -1.0; }

// The matrix of sum h_pq a+_p a_q on the determinants of f^n, acting directly on the masks.
Sparse oneBodyMatrix(const OneBodyOperator& op, const DeterminantSpace& space) {
    std::vector<Eigen::Triplet<double>> entries;
    for (int column = 0; column < space.size(); ++column) {
        const unsigned mask = space.masks[column];
        for (const auto& entry : op) {
            if (!(mask & (1u << entry.annihilator))) continue;
            const unsigned removed = mask & ~(1u << entry.annihilator);
            if (removed & (1u << entry.creator)) continue;
            const unsigned result = removed | (1u << entry.creator);
            const double sign = signBelow(mask, entry.annihilator) * signBelow(removed, entry.creator);
            entries.emplace_back(space.indexOfMask[result], column, sign * entry.value);
        }
    }
    Sparse matrix(space.size(), space.size());
    matrix.setFromTriplets(entries.begin(), entries.end());
    return matrix;
}

// l.s of one f electron: <m' s'| l_z s_z + (l+ s- + l- s+)/2 |m s>.
OneBodyOperator spinOrbitOperator() {
    OneBodyOperator op;
    for (int m = -3; m <= 3; ++m) {
        op.push_back({spinOrbital(m, 1), spinOrbital(m, 1), 0.5 * m});
        op.push_back({spinOrbital(m, -1), spinOrbital(m, -1), -0.5 * m});
        if (m < 3) {  // l+ s-: |m, up> -> |m+1, down>; l- s+: |m+1, down> -> |m, up>
            const double ladder = 0.5 * std::sqrt(12.0 - m * (m + 1.0));
            op.push_back({spinOrbital(m + 1, -1), spinOrbital(m, 1), ladder});
            op.push_back({spinOrbital(m, 1), spinOrbital(m + 1, -1), ladder});
        }
    }
    return op;
}

// (U(k).U(k)) = sum_q (-1)^q U(k)_q U(k)_-q.
Sparse unitScalar(int k, const DeterminantSpace& space) {
    Sparse sum(space.size(), space.size());
    for (int q = -k; q <= k; ++q) {
        const Sparse product = oneBodyMatrix(unitTensorComponent(k, q), space) *
                               oneBodyMatrix(unitTensorComponent(k, -q), space);
        sum += ((q % 2 == 0) ? 1.0 : -1.0) * product;
    }
    return sum;
}

struct RandomParameters {
    double eavg, f[3], zeta, alpha, beta, gamma;
    std::vector<CrystalFieldRow> crystalField;
};

RandomParameters randomParameters(unsigned seed, int fold, bool complex) {
    std::mt19937 generator(seed);
    auto uniform = [&](double low, double high) { return std::uniform_real_distribution<double>(low, high)(generator); };
    RandomParameters p{uniform(-1000, 1000), {uniform(50000, 90000), uniform(35000, 65000), uniform(25000, 45000)},
                       uniform(500, 2500), uniform(10, 25), uniform(-800, -400), uniform(600, 2000), {}};
    for (int k : {2, 4, 6})
        for (int q = 0; q <= k; q += fold) {
            const double re = uniform(-900, 900);
            const double im = (complex && q > 0) ? uniform(-600, 600) : 0.0;
            p.crystalField.push_back({k, q, {fmt::format("{}", re), re}, {fmt::format("{}", im), im}});
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
    return set;
}

Eigen::VectorXd determinantEigenvalues(int n, const RandomParameters& p) {
    const auto& space = determinantSpace(n);
    const int size = space.size();
    Sparse identity(size, size);
    identity.setIdentity();
    std::array<Sparse, 7> scalar;
    for (int k = 1; k <= 6; ++k) scalar[k] = unitScalar(k, space);
    Sparse real = p.eavg * identity + p.zeta * oneBodyMatrix(spinOrbitOperator(), space) +
                  p.alpha * 84.0 * scalar[1] + p.beta * 0.25 * (3.0 * scalar[1] + 11.0 * scalar[5]) +
                  p.gamma * 0.2 * (3.0 * scalar[1] + 7.0 * scalar[3] + 11.0 * scalar[5]);
    for (int i = 0; i < 3; ++i) {
        const int k = 2 * (i + 1);
        const double ck = ReducedCk2(6, 2 * k, 6);
        real += p.f[i] * 0.5 * ck * ck * (scalar[k] - (n / 7.0) * identity);
    }
    Eigen::MatrixXcd hamiltonian = Eigen::MatrixXd(real).cast<std::complex<double>>();
    for (const auto& row : p.crystalField) {
        const double ck = ReducedCk2(6, 2 * row.k, 6);
        const std::complex<double> b(row.re.value, row.im.value);
        const Eigen::MatrixXd plus = Eigen::MatrixXd(oneBodyMatrix(unitTensorComponent(row.k, row.q), space));
        hamiltonian += (ck * b) * plus.cast<std::complex<double>>();
        if (row.q > 0) {
            const Eigen::MatrixXd minus = Eigen::MatrixXd(oneBodyMatrix(unitTensorComponent(row.k, -row.q), space));
            hamiltonian += (ck * ((row.q % 2 == 0) ? 1.0 : -1.0) * std::conj(b)) * minus.cast<std::complex<double>>();
        }
    }
    auto result = hermitianEigenvalues(std::move(hamiltonian));
    EXPECT_EQ(result.status, EigenStatus::Ok);
    return result.values;
}

void expectSameSpectrum(const Eigen::VectorXd& reference, const EnergyLevelResult& result, bool relative,
                        const std::string& what) {
    const auto& levels = result.crystalField.levels;
    ASSERT_EQ(static_cast<Eigen::Index>(levels.size()), reference.size()) << what;
    const double spread = reference.maxCoeff() - reference.minCoeff();
    double worst = 0.0;
    for (Eigen::Index i = 0; i < reference.size(); ++i) {
        const double engine = relative ? levels[i].energy - levels[0].energy : levels[i].energy;
        const double expected = relative ? reference(i) - reference(0) : reference(i);
        worst = std::max(worst, std::abs(engine - expected));
    }
    EXPECT_LT(worst, 1e-9 * spread) << what << ": largest deviation " << worst << " cm^-1, spread " << spread;
    EXPECT_GT(spread, 1000.0) << what;
}

TEST(CrystalFieldDeterminants, RealAndComplexEnginesMatchTheDeterminantHamiltonian) {
    // Random parameters (fixed seeds): f2, f3 at fold 1; f5 at fold 3 (its blocks stay small);
    // f12 through the conjugate f2 (levels up to a constant) and with its own tables.
    struct Case { int n; int fold; bool complex; bool actualShell; unsigned seed; };
    for (const Case& c : {Case{2, 1, false, false, 11}, Case{2, 1, true, false, 12}, Case{3, 1, false, false, 13},
                          Case{3, 1, true, false, 14}, Case{5, 3, false, false, 15}, Case{5, 3, true, false, 16},
                          Case{12, 1, true, false, 17}, Case{12, 1, true, true, 18}, Case{12, 2, false, false, 19}}) {
        const auto parameters = randomParameters(c.seed, c.fold, c.complex);
        auto set = setOf(c.n, parameters, c.fold);
        set.switches.actualShell = c.actualShell;
        MemoryLogBook log;
        const auto result = computeEnergyLevels(set, tableDirectory(), log, {true, false, c.complex});
        const bool throughConjugate = c.n > 7 && !c.actualShell;
        EXPECT_EQ(result.conjugate, throughConjugate);
        expectSameSpectrum(determinantEigenvalues(c.n, parameters), result, throughConjugate,
                           fmt::format("f{} fold {} {}{}", c.n, c.fold, c.complex ? "complex" : "real",
                                       c.actualShell ? " actual shell" : ""));
    }
}

}  // namespace
}  // namespace orvane
