// Magnetic two-body operators and the few-body escalation: f2 values of Judd,
// Crosswhite & Crosswhite, Phys. Rev. 169, 130 (1968), product traces, and the escalation formulas
// checked against the independent U(k) route of the Coulomb matrices.
#include <cmath>

#include <gtest/gtest.h>

#include "core/angular.hpp"
#include "tables/magnetic_tables.hpp"
#include "tables/two_body_escalation.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

const std::vector<MagneticOperators>& allMagnetic() {
    static const auto all = magneticOperatorsOfAll(test::allConfigurationTables());
    return all;
}

int indexOf(const ConfigurationTables& t, const std::string& label) {
    for (std::size_t i = 0; i < t.terms.size(); ++i)
        if (t.terms[i].label == label) return static_cast<int>(i);
    ADD_FAILURE() << "no term " << label;
    return 0;
}

TEST(MagneticOperators, F2ElementsEqualJuddCrosswhiteValues) {
    const auto& t = test::allConfigurationTables()[2];
    const auto& m = allMagnetic()[2];
    const int p3 = indexOf(t, "3P"), s1 = indexOf(t, "1S"), h3 = indexOf(t, "3H"), i1 = indexOf(t, "1I");
    struct Case {
        const char* what;
        double actual, expected, tolerance;
    };
    const Case cases[] = {
        // JCC 1968 Table I (computed from it): SOO + ECSO 3P-3P = (-61/2, -145/2, -5415/66, -0.2388889, -0.0479798, 0.1699693)
        {"soo M0 3P3P", m.spinOtherOrbit[0](p3, p3), -61.0 / 2, 1e-12},
        {"soo M2 3P3P", m.spinOtherOrbit[1](p3, p3), -145.0 / 2, 1e-12},
        {"soo M4 3P3P", m.spinOtherOrbit[2](p3, p3), -5415.0 / 66, 1e-12},
        {"P2 3P3P", m.spinOtherOrbit[3](p3, p3), -0.2388889, 1e-7},
        {"P4 3P3P", m.spinOtherOrbit[4](p3, p3), -0.0479798, 1e-7},
        // (1287 - 143/4) / (184041/25) = 0.1699689; the published f2 table prints 0.169969
        {"P6 3P3P", m.spinOtherOrbit[5](p3, p3), 0.169969, 1e-6},
        // JCC 1968 table I: spin-spin 3P-3P = -12 M0 - 24 M2 - 300/11 M4
        {"ss M0 3P3P", m.spinSpin[0](p3, p3), -12.0, 1e-12},
        {"ss M4 3P3P", m.spinSpin[2](p3, p3), -300.0 / 11, 1e-12},
        // published f2 MK,PK row "3P 1S": M0 = 17 (6 M0 from T(11) + 11 from the z13 correction)
        {"soo M0 3P1S", m.spinOtherOrbit[0](p3, s1), 17.0, 1e-12},
        // published f2 row "3H 1I" (corrected edition): M0 -39.517403, P6 0.010300
        {"soo M0 3H1I", m.spinOtherOrbit[0](h3, i1), -39.517403, 2e-6},
        {"P4 3H1I", m.spinOtherOrbit[4](h3, i1), -0.004097, 2e-6},
    };
    for (const auto& c : cases) EXPECT_NEAR(c.actual, c.expected, c.tolerance) << c.what;
    // The transposed element carries (-1)^(S-S'+L-L'): 3P (S=1,L=1) and 1S (0,0) -> +1.
    EXPECT_DOUBLE_EQ(m.spinOtherOrbit[0](s1, p3), m.spinOtherOrbit[0](p3, s1));
    // P0 of the correlated operator cancels against z13: no column may be left over.
    EXPECT_NEAR(m.spinOtherOrbit[0](s1, s1), 0.0, 1e-15);
}

TEST(MagneticOperators, F2ProductTracesEqualCheckValues) {
    const Eigen::MatrixXd traces = magneticTraceMatrix(allMagnetic()[2]);
    // Order: mss0 mss2 mss4 msoo0 msoo2 msoo4 p2 p4 p6. Computed check values, traces over 91 states.
    struct Case {
        int a, b;
        double expected, tolerance;
    };
    const Case cases[] = {
        {3, 3, 11029.2, 0.1},  {4, 4, 2253.83, 0.01}, {5, 5, 2499.14, 0.01}, {6, 6, 0.5707, 1e-4},
        {7, 7, 0.0973, 1e-4},  {8, 8, 0.0330, 1e-4},  {0, 0, 224.0, 1e-9},   {1, 1, 996.461, 1e-3},
        {2, 2, 2648.48, 0.01}, {3, 4, 120.4, 0.05},   {4, 5, 2045.74, 0.01}, {0, 1, -179.2, 1e-9},
    };
    for (const auto& c : cases) EXPECT_NEAR(traces(c.a, c.b), c.expected, c.tolerance) << c.a << "," << c.b;
    EXPECT_NEAR((traces - traces.transpose()).norm(), 0.0, 1e-9);
}

TEST(MagneticOperators, SpinSpinAndRankOneOperatorsAreOrthogonalInEveryShell) {
    // The direct trace of a (22) with an (11) scalar product over the |SLJM> states,
    // computed from the J-resolved matrices: sum_J [J] <SLJ|A|S'L'J><S'L'J|B|SLJ> = 0.
    for (int n = 2; n <= 12; ++n) {
        const auto& t = test::allConfigurationTables()[static_cast<std::size_t>(n)];
        const auto so = spinOrbitOf(t.terms);
        const auto& m = allMagnetic()[static_cast<std::size_t>(n)];
        // <SLJ|X(t)|S'L'J> = (-1)^(S'+L+J) {S' L' J; L S t} <SL||X||S'L'>
        auto element = [&](std::size_t bra, std::size_t ket, int twiceJ, int rank, const Eigen::MatrixXd& x) {
            const auto& a = so[bra];
            const auto& b = so[ket];
            return PhaseSign((b.twiceS + 2 * a.L + twiceJ) / 2) *
                   SixJ2(b.twiceS, 2 * b.L, twiceJ, 2 * a.L, a.twiceS, 2 * rank) *
                   x(static_cast<int>(bra), static_cast<int>(ket));
        };
        double cross = 0.0, norm = 0.0;
        for (std::size_t i = 0; i < so.size(); ++i)
            for (std::size_t j = 0; j < so.size(); ++j)
                for (int twiceJ = std::abs(so[i].twiceS - 2 * so[i].L); twiceJ <= so[i].twiceS + 2 * so[i].L;
                     twiceJ += 2) {
                    const double soo = element(j, i, twiceJ, 1, m.spinOtherOrbit[0]);
                    cross += (twiceJ + 1) * element(i, j, twiceJ, 2, m.spinSpin[0]) * soo;
                    norm += (twiceJ + 1) * element(i, j, twiceJ, 1, m.spinOtherOrbit[0]) * soo;
                }
        EXPECT_NEAR(cross, 0.0, 1e-8 * norm) << "f" << n;
        // The J-resolved trace of msoo0^2 equals the reduced-element formula of the trace matrix.
        EXPECT_NEAR(norm, magneticTraceMatrix(m)(3, 3), 1e-8 * norm) << "f" << n;
    }
}

TEST(TwoBodyEscalation, RankZeroDoubleTensorAndScalarRouteReproduceCoulombMatrices) {
    // f(k) is a pure two-body scalar operator: escalating the f2 matrix must give the
    // f(k) that the U(k) route (Coulomb formula over all intermediate terms) gives in f3..f7.
    const auto& all = test::allConfigurationTables();
    for (int k = 0; k < 3; ++k) {
        Eigen::MatrixXd scalar = all[2].coulomb[static_cast<std::size_t>(k)];
        auto reducedOf = [](const ConfigurationTables& t, const Eigen::MatrixXd& m) {
            const auto so = spinOrbitOf(t.terms);
            Eigen::VectorXd d(static_cast<int>(so.size()));
            for (std::size_t i = 0; i < so.size(); ++i)
                d[static_cast<int>(i)] = std::sqrt((so[i].twiceS + 1.0) * (2 * so[i].L + 1.0));
            return Eigen::MatrixXd(d.asDiagonal() * m);
        };
        Eigen::MatrixXd reduced = reducedOf(all[2], scalar);
        for (int n = 3; n <= 7; ++n) {
            const auto& t = all[static_cast<std::size_t>(n)];
            const auto terms = spinOrbitOf(t.terms), parents = spinOrbitOf(t.parents);
            scalar = escalateScalarOperator(n, 2, terms, parents, t.cfp, scalar);
            reduced = escalateTwoBodyDoubleTensor(n, 0, terms, parents, t.cfp, reduced);
            const Eigen::MatrixXd& expected = t.coulomb[static_cast<std::size_t>(k)];
            EXPECT_LT((scalar - expected).cwiseAbs().maxCoeff(), 1e-10) << "scalar route f" << n << " k=" << 2 * k + 2;
            EXPECT_LT((reduced - reducedOf(t, expected)).cwiseAbs().maxCoeff(), 1e-10)
                << "double-tensor route f" << n << " k=" << 2 * k + 2;
        }
    }
}

}  // namespace
}  // namespace orvane
