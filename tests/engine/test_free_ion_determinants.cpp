// The magnetic interactions of the free-ion stage (spin-spin, spin-other-orbit,
// correlated spin-orbit) against an independent construction in the Slater-
// determinant basis:
//   1. in f2 the operator is built in the uncoupled |S M_S L M_L> states (from
//      the determinant states of the terms, lowered with S- and L-) by the
//      Wigner-Eckart theorem for a scalar product of rank-t tensors,
//      <S MS L ML|T(t).U(t)|S' MS' L' ML'> = sum_q (-1)^q (-1)^(S-MS) (S t S'; -MS q MS')
//          (-1)^(L-ML) (L t L'; -ML -q ML') <SL||X||S'L'>   (Edmonds (5.1.5), (5.4.1)),
//      with the f2 reduced elements of the tables (Judd, Crosswhite & Crosswhite 1968);
//   2. f3 and f4 follow by second quantisation, O = sum_{d,d'} <d|O|d'> a+_p a+_q a_s a_r
//      (d = {p < q}, d' = {r < s} determinants of f2), with no coefficients of fractional
//      parentage and no |SLJ> coupling.
// The spectra (every |J M> state) must equal those of the engine's free-ion stage,
// which couples in |SLJ> with 6j symbols and uses the escalated tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <random>
#include <vector>

#include <fmt/format.h>

#include "core/angular.hpp"
#include "core/eigen_solver.hpp"
#include "core/log_book.hpp"
#include "engine/energy_levels.hpp"
#include "tables/slater_determinants.hpp"
#include "tables/term_generator.hpp"
#include "tests/engine/engine_test_support.hpp"

namespace orvane {
namespace {

using test::row;

const std::vector<GeneratedConfiguration>& generated() {
    static const auto all = generateConfigurations(2);
    return all;
}

// An uncoupled state |term, MS, ML> of f2 over its determinants (twice MS).
struct UncoupledState {
    int term = 0;  // index into the f2 terms
    int twiceMS = 0, ML = 0;
    Eigen::VectorXd vector;
};

Eigen::VectorXd lowered(const OneBodyOperator& lowering, const Eigen::VectorXd& state) {
    Eigen::VectorXd next = applyOneBody(lowering, determinantSpace(2), state);
    return next / next.norm();  // the Condon-Shortley lowering coefficient is positive
}

std::vector<UncoupledState> uncoupledStatesOfF2() {
    std::vector<UncoupledState> states;
    const auto& terms = generated()[2].terms;
    for (std::size_t t = 0; t < terms.size(); ++t) {
        Eigen::VectorXd spinTop = terms[t].state;
        for (int twiceMS = terms[t].twiceS; twiceMS >= -terms[t].twiceS; twiceMS -= 2) {
            Eigen::VectorXd state = spinTop;
            for (int ML = terms[t].L; ML >= -terms[t].L; --ML) {
                states.push_back({static_cast<int>(t), twiceMS, ML, state});
                if (ML > -terms[t].L) state = lowered(orbitalLowering(), state);
            }
            if (twiceMS > -terms[t].twiceS) spinTop = lowered(spinLowering(), spinTop);
        }
    }
    return states;
}

// Edmonds (5.1.5) with (5.4.1) in spin and orbit: the uncoupled element of T(t).U(t).
double scalarProductUncoupled(const GeneratedTerm& a, const UncoupledState& x, const GeneratedTerm& b,
                              const UncoupledState& y, int rank, double reduced) {
    double sum = 0.0;
    for (int q = -rank; q <= rank; ++q) {
        const double spin = ThreeJ2(a.twiceS, 2 * rank, b.twiceS, -x.twiceMS, 2 * q, y.twiceMS);
        const double orbit = ThreeJ2(2 * a.L, 2 * rank, 2 * b.L, -2 * x.ML, -2 * q, 2 * y.ML);
        if (spin == 0.0 || orbit == 0.0) continue;
        const int phase = q + (a.twiceS - x.twiceMS) / 2 + (a.L - x.ML);
        sum += (phase % 2 == 0 ? 1.0 : -1.0) * spin * orbit;
    }
    return sum * reduced;
}

struct Magnetic {
    double m[3];  // M^0, M^2, M^4
    double p[3];  // P^2, P^4, P^6
};

// The f2 operator over the f2 determinants from the tables' reduced elements.
Eigen::MatrixXd magneticOperatorOfF2(const EngineTables& tables, const Magnetic& parameters) {
    const auto states = uncoupledStatesOfF2();
    const auto& terms = generated()[2].terms;
    const auto count = static_cast<Eigen::Index>(states.size());
    Eigen::MatrixXd reducedSpinSpin = Eigen::MatrixXd::Zero(tables.terms.size(), tables.terms.size());
    Eigen::MatrixXd reducedOrbit = reducedSpinSpin;
    for (int k = 0; k < 3; ++k) {
        reducedSpinSpin += parameters.m[k] * tables.spinSpin[static_cast<std::size_t>(k)];
        reducedOrbit += parameters.m[k] * tables.spinOtherOrbit[static_cast<std::size_t>(k)] +
                        parameters.p[k] * tables.spinOtherOrbit[static_cast<std::size_t>(3 + k)];
    }
    Eigen::MatrixXd inStates(count, count);
    Eigen::MatrixXd vectors(determinantSpace(2).size(), count);
    for (Eigen::Index i = 0; i < count; ++i) {
        vectors.col(i) = states[static_cast<std::size_t>(i)].vector;
        for (Eigen::Index j = 0; j < count; ++j) {
            const auto& x = states[static_cast<std::size_t>(i)];
            const auto& y = states[static_cast<std::size_t>(j)];
            const auto& a = terms[static_cast<std::size_t>(x.term)];
            const auto& b = terms[static_cast<std::size_t>(y.term)];
            inStates(i, j) = scalarProductUncoupled(a, x, b, y, 2, reducedSpinSpin(x.term, y.term)) +
                             scalarProductUncoupled(a, x, b, y, 1, reducedOrbit(x.term, y.term));
        }
    }
    return vectors * inStates * vectors.transpose();
}

double signBelow(unsigned mask, int p) { return (std::popcount(mask & ((1u << p) - 1u)) % 2 == 0) ? 1.0 : -1.0; }

// The two-body operator of f2 lifted to f^n: sum <d|O|d'> a+_p a+_q a_s a_r.
Eigen::MatrixXd liftTwoBody(const Eigen::MatrixXd& pairOperator, int n) {
    const auto& pairs = determinantSpace(2);
    const auto& space = determinantSpace(n);
    Eigen::MatrixXd lifted = Eigen::MatrixXd::Zero(space.size(), space.size());
    for (int column = 0; column < space.size(); ++column) {
        const unsigned mask = space.masks[static_cast<std::size_t>(column)];
        for (int dp = 0; dp < pairs.size(); ++dp) {
            const unsigned pair = pairs.masks[static_cast<std::size_t>(dp)];
            if ((mask & pair) != pair) continue;
            const int r = std::countr_zero(pair), s = 31 - std::countl_zero(pair);
            // a_s a_r |mask>: a_r first.
            double sign = signBelow(mask, r);
            const unsigned afterR = mask & ~(1u << r);
            sign *= signBelow(afterR, s);
            const unsigned rest = afterR & ~(1u << s);
            for (int d = 0; d < pairs.size(); ++d) {
                const double value = pairOperator(d, dp);
                if (value == 0.0) continue;
                const unsigned create = pairs.masks[static_cast<std::size_t>(d)];
                if (rest & create) continue;
                const int p = std::countr_zero(create), q = 31 - std::countl_zero(create);
                // a+_p a+_q: a+_q first.
                const double createSign = signBelow(rest, q) * signBelow(rest | (1u << q), p);
                const unsigned result = rest | create;
                lifted(space.indexOfMask[result], column) += sign * createSign * value;
            }
        }
    }
    return lifted;
}

// Every |J M> energy of the engine's free-ion stage, ascending.
std::vector<double> engineSpectrum(int n, const Magnetic& parameters, bool wrongRank = false) {
    ParameterSet set;
    set.electronCount = n;
    set.mainFreeIon = {row("EAVG", 0), row("F2", 0), row("F4", 0), row("F6", 0), row("ZETA", 0)};
    set.otherFreeIon = {row("M0", parameters.m[0]), row("M2", parameters.m[1]), row("M4", parameters.m[2]),
                        row("P2", parameters.p[0]), row("P4", parameters.p[1]), row("P6", parameters.p[2])};
    set.switches.wrongRankSpinSpin = wrongRank;
    MemoryLogBook log;
    const auto result = computeEnergyLevels(set, test::engineTableDirectory(), log, {false});
    std::vector<double> energies;
    for (const auto& level : result.freeIon.levels)
        energies.insert(energies.end(), static_cast<std::size_t>(level.twiceJ + 1), level.energy);
    std::sort(energies.begin(), energies.end());
    return energies;
}

TEST(FreeIonDeterminants, MagneticSpectraEqualTheSecondQuantisedOperators) {
    std::mt19937 generator(2024);
    auto uniform = [&](double low, double high) { return std::uniform_real_distribution<double>(low, high)(generator); };
    MemoryLogBook log;
    const auto tablesOfF2 = loadEngineTables(2, test::engineTableDirectory(), log);
    ASSERT_EQ(tablesOfF2.terms.size(), generated()[2].terms.size());
    for (std::size_t t = 0; t < tablesOfF2.terms.size(); ++t)
        ASSERT_EQ(tablesOfF2.terms[t].label, generated()[2].terms[t].label) << "same term order";
    for (int n : {2, 3, 4}) {
        const Magnetic parameters{{uniform(1, 5), uniform(1, 5), uniform(1, 5)},
                                  {uniform(-600, 600), uniform(-600, 600), uniform(-600, 600)}};
        const Eigen::MatrixXd pairOperator = magneticOperatorOfF2(tablesOfF2, parameters);
        const Eigen::MatrixXd full = n == 2 ? pairOperator : liftTwoBody(pairOperator, n);
        ASSERT_LT((full - full.transpose()).cwiseAbs().maxCoeff(), 1e-10) << "f" << n << " Hermitian";
        auto determinant = symmetricEigenvalues(full);
        ASSERT_EQ(determinant.status, EigenStatus::Ok);
        const auto engine = engineSpectrum(n, parameters);
        ASSERT_EQ(static_cast<Eigen::Index>(engine.size()), determinant.values.size()) << "f" << n;
        double worst = 0.0;
        for (std::size_t i = 0; i < engine.size(); ++i)
            worst = std::max(worst, std::abs(engine[i] - determinant.values(static_cast<Eigen::Index>(i))));
        const double spread = engine.back() - engine.front();
        std::printf("f%d magnetic spectrum: %zu states, spread %.2f cm^-1, largest deviation %.2e cm^-1\n", n,
                    engine.size(), spread, worst);
        EXPECT_GT(spread, 50.0) << "f" << n;
        EXPECT_LT(worst, 1e-9 * spread) << "f" << n;
        // Control: "/wrongrankss" (spin-spin coupled with rank 1) is not this operator.
        const auto wrong = engineSpectrum(n, parameters, true);
        double moved = 0.0;
        for (std::size_t i = 0; i < wrong.size(); ++i)
            moved = std::max(moved, std::abs(wrong[i] - determinant.values(static_cast<Eigen::Index>(i))));
        EXPECT_GT(moved, 1.0) << "f" << n << " with the spin-spin part of rank 1";
    }
}

}  // namespace
}  // namespace orvane
