// Crystal-field stage extras: eigenvectors of Kramers partner blocks by time
// reversal, the cubic crystal field ("/cubiccf") and parameters given in the
// Stevens and unit-operator conventions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <string>
#include <vector>

#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "engine/crystal_field_parameters.hpp"
#include "engine/energy_levels.hpp"
#include "tests/engine/engine_test_support.hpp"

namespace orvane {
namespace {

using test::bkq;
using test::row;

ParameterSet ionSet(int n, double zeta, std::vector<CrystalFieldRow> crystalField, int fold) {
    return test::praseodymiumLikeSet(n, zeta, std::move(crystalField), fold);
}

EnergyLevelResult run(const ParameterSet& set, bool vectors = false, bool complex = false) {
    MemoryLogBook log;
    return computeEnergyLevels(set, test::engineTableDirectory(), log, {true, vectors, complex});
}

// The block's Hamiltonian rebuilt from the stored components (diagonal free-ion
// energies, Re parts, i times the antisymmetric Im parts).
Eigen::MatrixXcd blockHamiltonian(const EnergyLevelResult& result, std::size_t b) {
    const auto operators = levelBasisOperators(result, !result.crystalFieldImaginary.empty());
    const auto& states = operators.blocks[b].states;
    const auto size = static_cast<Eigen::Index>(states.size());
    Eigen::MatrixXcd h = Eigen::MatrixXcd::Zero(size, size);
    for (Eigen::Index i = 0; i < size; ++i) h(i, i) = result.freeIon.levels[states[i].level].energy;
    for (std::size_t key = 0; key < operators.keys.size(); ++key) {
        h += result.crystalFieldValues[key] * Eigen::MatrixXd(operators.realPart[key][b]).cast<std::complex<double>>();
        if (!operators.imaginaryPart.empty())
            h += std::complex<double>(0.0, result.crystalFieldImaginary[key]) *
                 Eigen::MatrixXd(operators.imaginaryPart[key][b]).cast<std::complex<double>>();
    }
    return h;
}

Eigen::VectorXcd vectorOf(const CrystalFieldLevel& level) {
    return level.complexVector.size() > 0 ? level.complexVector : level.vector.cast<std::complex<double>>();
}

TEST(CrystalFieldTimeReversal, PartnerVectorsAreOrthonormalEigenvectorsOfTheirBlock) {
    // f3 at folds 2 and 3 and f11 (through f3) at fold 2: the blocks of residue -r take
    // their vectors from block r by (T v)(a,J,-M) = (-1)^(J-M) conj v(a,J,M). Each mapped
    // vector must satisfy H v = E v in its own block (residue below 1e-9 of ||H||) and the
    // mapped set must be orthonormal, for the real and the complex engines.
    struct Case { int n; int fold; bool complex; };
    for (const Case& c : {Case{3, 2, true}, Case{3, 3, false}, Case{11, 2, true}}) {
        std::vector<CrystalFieldRow> parameters =
            c.fold == 2 ? std::vector<CrystalFieldRow>{bkq(2, 0, -300), bkq(2, 2, -120, 60), bkq(4, 0, 700),
                                                       bkq(4, 4, 500, -150), bkq(6, 2, -800, 40), bkq(6, 6, 300, 90)}
                        : std::vector<CrystalFieldRow>{bkq(2, 0, -300), bkq(4, 0, 700), bkq(4, 3, 330, 120),
                                                       bkq(6, 0, 650), bkq(6, 3, 270, -200), bkq(6, 6, -600, 90)};
        if (!c.complex)
            for (auto& p : parameters) p.im = {"0", 0.0};
        const auto result = run(ionSet(c.n, 751.7, parameters, c.fold), true, c.complex);
        const auto operators = levelBasisOperators(result, !result.crystalFieldImaginary.empty());
        const std::string what = "f" + std::to_string(c.n) + " fold " + std::to_string(c.fold) +
                                 (c.complex ? " complex" : " real");
        int partnerBlocks = 0;
        for (std::size_t b = 0; b < operators.blocks.size(); ++b) {
            if (earlierTimeReversalPartner(operators, b) < 0) continue;
            ++partnerBlocks;
            const Eigen::MatrixXcd h = blockHamiltonian(result, b);
            const double norm = h.cwiseAbs().maxCoeff();
            std::vector<Eigen::VectorXcd> vectors;
            for (const auto& level : result.crystalField.levels) {
                if (level.block != static_cast<int>(b)) continue;
                const Eigen::VectorXcd v = vectorOf(level);
                ASSERT_EQ(v.size(), h.rows()) << what;
                EXPECT_LT((h * v - level.energy * v).norm(), 1e-9 * norm) << what << " block " << b;
                vectors.push_back(v);
            }
            ASSERT_EQ(static_cast<Eigen::Index>(vectors.size()), h.rows()) << what;
            double worst = 0.0;
            for (std::size_t i = 0; i < vectors.size(); ++i)
                for (std::size_t j = 0; j < vectors.size(); ++j)
                    worst = std::max(worst, std::abs(vectors[i].dot(vectors[j]) - (i == j ? 1.0 : 0.0)));
            EXPECT_LT(worst, 1e-12) << what << " orthonormality of block " << b;
        }
        EXPECT_GT(partnerBlocks, 0) << what;
    }
}

TEST(CrystalFieldTimeReversal, PartnerBlocksGiveTheSpectrumOfOneBlock) {
    // Fold 1 puts every state into one block (no partner reused); folds 2 and 3 reuse the
    // partner's eigenpairs: all must give the same 364 levels of f3, with and without vectors.
    const std::vector<CrystalFieldRow> axial = {bkq(2, 0, -300), bkq(4, 0, 700), bkq(6, 0, 650), bkq(6, 6, -600, 90)};
    for (bool complex : {false, true}) {
        auto parameters = axial;
        if (!complex) parameters.back().im = {"0", 0.0};
        const auto reference = run(ionSet(3, 751.7, parameters, 1), false, complex);
        for (int fold : {2, 3, 6})
            for (bool vectors : {false, true}) {
                const auto result = run(ionSet(3, 751.7, parameters, fold), vectors, complex);
                ASSERT_EQ(result.crystalField.levels.size(), 364u);
                for (std::size_t i = 0; i < 364; ++i)
                    EXPECT_NEAR(result.crystalField.levels[i].energy, reference.crystalField.levels[i].energy, 1e-7)
                        << (complex ? "complex" : "real") << " fold " << fold << " level " << i;
            }
    }
}

// Sizes of the groups of equal energies (within 1e-6) among the first `count` levels.
std::vector<int> degeneracies(const EnergyLevelResult& result, std::size_t count) {
    std::vector<int> groups;
    const auto& levels = result.crystalField.levels;
    for (std::size_t i = 0; i < count; ++i) {
        if (i > 0 && std::abs(levels[i].energy - levels[i - 1].energy) < 1e-6)
            ++groups.back();
        else
            groups.push_back(1);
    }
    return groups;
}

TEST(CubicCrystalField, RelationsOfTheFourfoldAndThreefoldAxes) {
    // Cubic field in Wybourne's normalisation (Hutchings, Solid State Phys. 16, 227 (1964)): [001] B44 = sqrt(5/14) B40 = 0.597614 B40, B64 = -sqrt(7/2) B60 = -1.870829 B60;
    // [111] B43 = sqrt(10/7) B40 = 1.195229 B40, B63 = -(1/4) sqrt(35/6) B60 = -0.603807 B60,
    // B66 = (1/8) sqrt(77/3) B60 = 0.633279 B60. Every other row is dropped.
    struct Expected { int k; int q; double value; };
    struct Case { int fold; std::vector<Expected> rows; };
    const Case cases[] = {
        {4, {{4, 0, 1000}, {4, 4, 597.614}, {6, 0, 300}, {6, 4, -561.249}}},
        {1, {{4, 0, 1000}, {4, 4, 597.614}, {6, 0, 300}, {6, 4, -561.249}}},
        {3, {{4, 0, 1000}, {4, 3, 1195.229}, {6, 0, 300}, {6, 3, -181.142}, {6, 6, 189.984}}},
    };
    for (const auto& c : cases) {
        auto set = ionSet(1, 640, {bkq(2, 0, 500), bkq(4, 0, 1000), bkq(4, 4, 12), bkq(6, 0, 300)}, c.fold);
        set.switches.cubicCF = true;
        const auto values = crystalFieldParametersOf(set, false, false);
        ASSERT_EQ(values.keys.size(), c.rows.size()) << "fold " << c.fold;
        for (std::size_t i = 0; i < c.rows.size(); ++i) {
            EXPECT_EQ(values.keys[i].k, c.rows[i].k);
            EXPECT_EQ(values.keys[i].q, c.rows[i].q);
            EXPECT_NEAR(values.re[i], c.rows[i].value, 1e-3) << "fold " << c.fold << " B" << c.rows[i].k << c.rows[i].q;
        }
    }
    auto hexagonal = ionSet(1, 640, {bkq(4, 0, 1000)}, 6);
    hexagonal.switches.cubicCF = true;
    EXPECT_THROW(crystalFieldParametersOf(hexagonal, false, false), UserError);
}

TEST(CubicCrystalField, CeriumMultipletsSplitIntoCubicRepresentations) {
    // f1 (zeta = 640 cm^-1) in a cubic field of B40 only (small against zeta):
    // 2F5/2 -> Gamma7 + Gamma8 (2 + 4), 2F7/2 -> Gamma6 + Gamma7 + Gamma8 (2 + 2 + 4),
    // whichever order.
    for (int fold : {1, 4, 3}) {
        auto set = ionSet(1, 640, {bkq(4, 0, 600), bkq(6, 0, 0)}, fold);
        set.switches.cubicCF = true;
        MemoryLogBook log;
        const auto result = computeEnergyLevels(set, test::engineTableDirectory(), log, {true, false, false});
        auto ground = degeneracies(result, 6);
        std::sort(ground.begin(), ground.end());
        EXPECT_EQ(ground, (std::vector<int>{2, 4})) << "2F5/2 fold " << fold;
        std::vector<int> excited;
        for (int size : degeneracies(result, 14)) excited.push_back(size);
        ASSERT_GE(excited.size(), 2u);
        excited.erase(excited.begin(), excited.begin() + 2);
        std::sort(excited.begin(), excited.end());
        EXPECT_EQ(excited, (std::vector<int>{2, 2, 4})) << "2F7/2 fold " << fold;
    }
}

TEST(CubicCrystalField, ThreefoldAxisDescribesTheSameFieldAsTheFourfold) {
    // One cubic field seen along [001] and along [111]: B40(111) = -(2/3) B40(001),
    // B60(111) = (16/9) B60(001) (ratio of the [111] and [001] relations above at equal invariants,
    // sign of the rotated fourth-order harmonic); f2 with both ranks must give
    // the same 91 levels.
    auto axis001 = ionSet(2, 751.7, {bkq(4, 0, 900), bkq(6, 0, 450)}, 4);
    axis001.switches.cubicCF = true;
    auto axis111 = ionSet(2, 751.7, {bkq(4, 0, -600), bkq(6, 0, 800)}, 3);
    axis111.switches.cubicCF = true;
    const auto a = run(axis001), b = run(axis111);
    ASSERT_EQ(a.crystalField.levels.size(), b.crystalField.levels.size());
    double worst = 0.0;
    for (std::size_t i = 0; i < a.crystalField.levels.size(); ++i)
        worst = std::max(worst, std::abs(a.crystalField.levels[i].energy - b.crystalField.levels[i].energy));
    EXPECT_LT(worst, 1e-6);
}

TEST(CrystalFieldConventions, StevensAndUnitOperatorInputGiveTheWybourneLevels) {
    // Stevens: A(q,k)<r^k> = lambda(k,q) Re B(k,q), A(-q,k)<r^k> = -lambda(k,q) Im B(k,q) with the
    // lambda of Goerller-Walrand & Binnemans, Handbook Phys. Chem. Rare Earths 23 (1996) (lambda20 = 1/2, lambda22 = sqrt(6)/2, lambda40 = 1/8,
    // lambda42 = sqrt(10)/4, lambda44 = sqrt(70)/8, lambda60 = 1/16, lambda62 = sqrt(105)/16,
    // lambda64 = 3 sqrt(14)/16, lambda66 = sqrt(231)/16). Unit operators: B(U) = c_k B with
    // c_2 = -sqrt(28/15) = -1.36626, c_4 = sqrt(14/11) = 1.12815, c_6 = -sqrt(700/429) = -1.27738
    // (<f||C(k)||f>). Pr3+:LaF3 Bkq (Carnall et al. 1989, Table I)
    // with invented imaginary parts.
    struct Wybourne { int k; int q; double re; double im; double lambda; };
    const Wybourne rows[] = {{2, 0, -218, 0, 0.5},
                             {2, 2, -120, 40, std::sqrt(6.0) / 2},
                             {4, 0, 738, 0, 0.125},
                             {4, 2, 431, -90, std::sqrt(10.0) / 4},
                             {4, 4, 616, 55, std::sqrt(70.0) / 8},
                             {6, 0, 679, 0, 1.0 / 16},
                             {6, 2, -921, 30, std::sqrt(105.0) / 16},
                             {6, 4, -348, -70, 3 * std::sqrt(14.0) / 16},
                             {6, 6, -788, 120, std::sqrt(231.0) / 16}};
    const double unitFactor[7] = {0, 0, -std::sqrt(28.0 / 15), 0, std::sqrt(14.0 / 11), 0, -std::sqrt(700.0 / 429)};
    std::vector<CrystalFieldRow> wybourne, stevens, unit;
    for (const auto& r : rows) {
        wybourne.push_back(bkq(r.k, r.q, r.re, r.im));
        stevens.push_back(bkq(r.k, r.q, r.lambda * r.re, -r.lambda * r.im));
        unit.push_back(bkq(r.k, r.q, unitFactor[r.k] * r.re, unitFactor[r.k] * r.im));
    }
    const auto reference = run(ionSet(2, 751.7, wybourne, 2), false, true);
    struct Case { const char* name; CfConvention convention; const std::vector<CrystalFieldRow>* rows; };
    for (const Case& c : {Case{"Stevens", CfConvention::Stevens, &stevens},
                          Case{"unit operators", CfConvention::UnitOperators, &unit}}) {
        auto set = ionSet(2, 751.7, *c.rows, 2);
        set.cfConvention = c.convention;
        const auto result = run(set, false, true);
        ASSERT_EQ(result.crystalField.levels.size(), reference.crystalField.levels.size());
        for (std::size_t i = 0; i < result.crystalField.levels.size(); ++i) {
            const double expected = reference.crystalField.levels[i].energy;
            EXPECT_NEAR(result.crystalField.levels[i].energy, expected, 1e-9 * std::max(1.0, std::abs(expected)))
                << c.name << " level " << i;
        }
    }
}

}  // namespace
}  // namespace orvane
