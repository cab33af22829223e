// Three-body, magnetic and correlated spin-orbit interactions of the free-ion
// stage: component values on the conjugate route and for the spin-spin forms,
// "/usezic", "/t2correction", and the per-level shares.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/user_error.hpp"
#include "engine/energy_levels.hpp"
#include "engine/free_ion_contributions.hpp"
#include "tables/table_directory.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

ParameterSet neodymiumLike(int n) { return test::neodymiumLikeSet(n); }

using test::bkq;
using test::row;

std::filesystem::path tableDirectory() { return test::engineTableDirectory(); }

// The diagonal element of a component at the |SLJ> state of a term label and 2J.
double diagonalAt(const FreeIonOperators& operators, const FreeIonComponent& component, const EngineTables& tables,
                  const std::string& label, int twiceJ) {
    const auto& basis = operators.basis;
    for (std::size_t b = 0; b < basis.blocks.size(); ++b) {
        const auto& states = basis.blocks[b].states;
        for (std::size_t i = 0; i < states.size(); ++i) {
            const auto& state = basis.states[static_cast<std::size_t>(states[i])];
            if (tables.terms[static_cast<std::size_t>(state.term)].label == label && state.twiceJ == twiceJ)
                return component.blocks[b](static_cast<Eigen::Index>(i), static_cast<Eigen::Index>(i));
        }
    }
    ADD_FAILURE() << "no state " << label << " 2J=" << twiceJ;
    return 0.0;
}

const FreeIonComponent& componentNamed(const FreeIonOperators& operators, const std::string& name) {
    if (const auto* component = findComponent(operators, name)) return *component;
    for (const auto& part : operators.magneticParts)
        if (part.name == name) return part;
    throw std::runtime_error("no component " + name);
}

TEST(FreeIonInteractions, ComponentDiagonalsEqualCheckValues) {
    // Diagonals of the operators at pure |SLJ> states; the three-body values are Hansen, Judd &
    // Crosswhite, At. Data Nucl. Data Tables 62, 1 (1996), the f10 value follows from the conjugate rule
    // t2(f10, 5D) = -t2'(f4, 5D) + 8 e3(5D)/(70 sqrt 2) = -1.555635 + 8 x 33/(70 sqrt 2) = 1.111168.
    // Published values carry 6 decimals (and rounding of the order of 5e-6): tolerance 1e-5.
    // Magnetic f2 3P0 values: spin-spin <3P||T(22)||3P> = -12 M0 (Judd, Crosswhite & Crosswhite 1968)
    // times {1 1 0; 1 1 2} = 1/3 -> -4 (rank 1 by mistake: {1 1 0; 1 1 1} = -1/3 -> +4);
    // SOO + ECSO <3P||X(11)||3P> = (-61/2 M0, ..., -0.2388889 P2) times -1/3 (Judd, Crosswhite &
    // Crosswhite, Phys. Rev. 169, 130 (1968), Table I).
    struct Case {
        int tableShell, electrons;
        SpinSpinForm spinSpin;
        const char* component;
        const char* label;
        int twiceJ;
        double expected;
    };
    const Case cases[] = {
        {3, 3, SpinSpinForm::Rank2, "T2", "4D", 5, 1.111168},  {3, 3, SpinSpinForm::Rank2, "T2'", "4D", 7, 0.777817},
        {4, 4, SpinSpinForm::Rank2, "T2", "5D", 2, 2.222329},  {4, 10, SpinSpinForm::Rank2, "T2", "5D", 2, 1.111168},
        {10, 10, SpinSpinForm::Rank2, "T2", "5D", 4, 1.111168}, {2, 2, SpinSpinForm::Rank2, "mss0", "3P", 0, -4.0},
        {2, 2, SpinSpinForm::WrongRank1, "mss0", "3P", 0, 4.0}, {2, 2, SpinSpinForm::Rank2, "msoo0", "3P", 0, 61.0 / 6},
        {2, 2, SpinSpinForm::Rank2, "M0", "3P", 0, 61.0 / 6 - 4}, {2, 2, SpinSpinForm::Dropped, "M0", "3P", 0, 61.0 / 6},
        {2, 2, SpinSpinForm::Rank2, "P2", "3P", 0, 0.2388889 / 3},
    };
    for (const Case& c : cases) {
        MemoryLogBook log;
        const auto tables = loadEngineTables(c.tableShell, tableDirectory(), log);
        FreeIonBuildOptions options;
        options.electrons = c.electrons;
        options.spinSpin = c.spinSpin;
        const auto operators = buildFreeIonOperators(tables, options);
        EXPECT_NEAR(diagonalAt(operators, componentNamed(operators, c.component), tables, c.label, c.twiceJ),
                    c.expected, 1e-5)
            << c.component << " at " << c.label << " in f" << c.electrons << " from the tables of f" << c.tableShell;
    }
}

std::vector<double> freeIonEnergies(const ParameterSet& set, const std::filesystem::path& directory) {
    return test::levelEnergies(test::runLevels(set, {false}, directory));
}

TEST(FreeIonInteractions, UseZicReadsTheZFormMagneticFiles) {
    // Both file pairs hold the same elements: equal levels. A broken "rmzic.val" is then
    // reported only by the "/usezic" run, a broken "mesooci.val" only by the default run.
    const auto directory = test::scratchDirectory("usezic-tables");
    auto set = neodymiumLike(2);
    auto zic = set;
    zic.switches.useZic = true;
    EXPECT_LT(test::largestDifference(freeIonEnergies(set, directory), freeIonEnergies(zic, directory)), 1e-9);
    const auto broken = directory / configurationFileName(2, "rmzic.val");
    writeFileAtomically(broken, readTextFile(broken) + "1 2  x 0 0 0 0 0\n");
    EXPECT_NO_THROW(freeIonEnergies(set, directory));
    EXPECT_THROW(freeIonEnergies(zic, directory), UserError);  // a broken rmzic.val stops the /usezic run
}

TEST(FreeIonInteractions, T2CorrectionMovesTheE3PartIntoTheSlaterParameters) {
    // Nd3+, T2 = 298: Delta E^3 = (3 - 2) 298 / (70 sqrt 2); the F^k take it, T2 is applied as 0
    // and T2' takes T2 (equal levels: tests/engine/test_equivalent_inputs.cpp).
    auto set = neodymiumLike(3);
    set.switches.t2Correction = true;
    const auto result = test::runLevels(set, {false});
    EXPECT_NEAR(result.freeIonWeights.at("F2"), 73018 + 225 * 11.0 / 42 * 298 / (70 * std::sqrt(2.0)), 1e-4);
    EXPECT_DOUBLE_EQ(result.freeIonWeights.at("T2"), 0.0);
    EXPECT_DOUBLE_EQ(result.freeIonWeights.at("T2'"), 298.0 + 41.0);
}

TEST(FreeIonContributions, SharesAddUpToEveryLevelEnergy) {
    struct Case {
        int n;
        bool noSpinSpin, t2Correction;
    };
    for (const Case& c : {Case{3, true, true}, Case{11, false, true}, Case{6, false, false}}) {
        auto set = neodymiumLike(c.n);
        set.switches.noSpinSpin = c.noSpinSpin;
        set.switches.t2Correction = c.t2Correction;
        const auto result = test::runLevels(set, {false});
        const auto shares = freeIonContributions(result.freeIonOperators, result.freeIonWeights, result.freeIon);
        ASSERT_EQ(shares.size(), result.freeIon.levels.size());
        double worst = 0.0, largestSpinSpin = 0.0, largestThreeBody = 0.0;
        for (std::size_t l = 0; l < shares.size(); ++l) {
            const auto& share = shares[l];
            ASSERT_EQ(share.shifts.size(), 13u);
            ASSERT_EQ(share.magneticElements.size(), 9u);
            ASSERT_EQ(share.magneticShifts.size(), 3u);
            double sum = share.averageEnergy;
            for (const auto& s : share.shifts) sum += s.value;
            for (const auto& s : share.magneticShifts) sum += s.value;
            worst = std::max(worst, std::abs(sum - result.freeIon.levels[l].energy));
            largestSpinSpin = std::max(largestSpinSpin, std::abs(share.magneticShifts[0].value));
            largestThreeBody = std::max(largestThreeBody, std::abs(share.shifts[8].value));
            // E(SS) = sum M^k <mss_k>, E(EL-SO) = sum P^k <p_k> (the elements of p_k are printed times 100).
            const auto& e = share.magneticElements;
            if (!c.noSpinSpin)
                EXPECT_NEAR(share.magneticShifts[0].value, 2.11 * e[0].value + 1.18 * e[1].value + 0.80 * e[2].value, 1e-9);
            EXPECT_NEAR(share.magneticShifts[2].value, (192 * e[6].value + 96 * e[7].value + 19.2 * e[8].value) / 100,
                        1e-9);
        }
        const std::string what = fmt::format("f{}{}{}", c.n, c.noSpinSpin ? " /noss" : "", c.t2Correction ? " /t2correction" : "");
        EXPECT_LT(worst, 1e-7) << what;
        if (c.noSpinSpin) EXPECT_EQ(largestSpinSpin, 0.0) << what;
        else EXPECT_GT(largestSpinSpin, 0.1) << what;
        EXPECT_GT(largestThreeBody, 1.0) << what << ": E(t3)";
    }
}

}  // namespace
}  // namespace orvane
