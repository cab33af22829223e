// Result files written and read back, and refused with file and line when
// malformed; the numbers of the report sections that a golden file would only
// freeze: Landé factors, J-multiplet elements and second-order barycentre
// shifts against closed forms and exact levels.
#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "core/angular.hpp"
#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "engine/barycentre_shift.hpp"
#include "report/energy_file.hpp"
#include "engine/j_multiplet_elements.hpp"
#include "report/general_output.hpp"
#include "report/state_vector_file.hpp"
#include "tests/report/run_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

// g_J = 1 + (g_s - 1)[J(J+1) + S(S+1) - L(L+1)]/[2J(J+1)], g_s = 2.0023193
// (Condon & Shortley, The Theory of Atomic Spectra (1935), ch. XVI).
TEST(GeneralOutput, LandeFactorsOfGroundMultiplets) {
    struct Case {
        const char* multiplet;
        int twiceS, L, twiceJ;
        double g;
    };
    const Case cases[] = {{"2F5/2", 1, 3, 5, 0.856812}, {"2F7/2", 1, 3, 7, 1.143188}, {"3H4", 2, 5, 8, 0.799536},
                          {"4I9/2", 3, 6, 9, 0.726640}, {"4I15/2", 3, 6, 15, 1.200464}, {"8S7/2", 7, 0, 7, 2.002319},
                          {"7F6", 6, 3, 12, 1.501160},  {"5I8", 4, 6, 16, 1.250580},  {"6H15/2", 5, 5, 15, 1.334106},
                          {"7F0", 6, 3, 0, 0.0}};
    for (const auto& c : cases) EXPECT_NEAR(landeG(c.twiceS, c.L, c.twiceJ), c.g, 1e-6) << c.multiplet;
}

TEST(ResultFiles, EnergyFileRoundTrip) {
    std::vector<ResultLevel> levels(3);
    levels[0].energy = -10.25;
    levels[0].twiceJ = 5;
    levels[0].residue = 1;
    levels[0].label = "2F5/2";
    levels[1] = levels[0];
    levels[1].residue = 3;
    levels[2].energy = 2200.125;
    levels[2].twiceJ = 7;
    levels[2].residue = -1;
    levels[2].label = "2F7/2";
    std::ostringstream out;
    writeEnergyText(out, "Energies (cm^-1, shift 10): Ce3+", levels, 10.0, 2);
    const auto contents = parseEnergyText(out.str(), "ce.eng");
    EXPECT_EQ(contents.title, "Energies (cm^-1, shift 10): Ce3+");
    ASSERT_EQ(contents.levels.size(), 3u);
    EXPECT_DOUBLE_EQ(contents.levels[0].energy, -0.25);
    EXPECT_DOUBLE_EQ(contents.levels[2].energy, 2210.125);
    EXPECT_EQ(contents.levels[1].number, 2);
    EXPECT_EQ(*contents.levels[0].twiceMu, 1);
    EXPECT_EQ(*contents.levels[1].twiceMu, -1);  // residue 3 of the fold 2 is mu = -1/2
    EXPECT_FALSE(contents.levels[2].twiceMu.has_value());
    EXPECT_EQ(contents.levels[2].label, "2F7/2");
    // Readers need only the number and the energy.
    EXPECT_EQ(parseEnergyText("title\n1 5\n2 6.5\n", "short.eng").levels.size(), 2u);
}

// Malformed energy (.eng) and state-vector (.ev) files are refused with file and line.
TEST(ResultFiles, MalformedFilesNameFileAndLine) {
    const std::string ev = "State vectors: x\nbasis SLJ states 2 vectors 1 complex 0 unit cm^-1 shift 0\n"
                           "1 2F 1 3 5\n2 2F 1 3 7\n";
    const auto eng = [](const std::string& text) { parseEnergyText(text, "bad"); };
    const auto vec = [](const std::string& text) { parseStateVectorText(text, "bad"); };
    struct Case {
        void (*parse)(const std::string&);
        std::string text;
        int line;
    };
    const Case cases[] = {
        {eng, "", 1},
        {eng, "t\n1 0.0\n2 abc\n", 3},
        {eng, "t\n1 0.0\n3 1.0\n", 3},
        {eng, "t\n1 5.0\n2 1.0\n", 3},
        {eng, "t\n1 0 -2\n", 2},
        {eng, "t\n1\n", 2},
        {vec, ev + "Statevector # 1 0.5 2 2F5/2\n1 1.0\n", 7},
        {vec, ev + "Statevector # 1 0.5 1 2F5/2\n3 1.0\n", 6},
        {vec, ev + "Statevector # 2 0.5 1 2F5/2\n1 1.0\n", 5},
        {vec, ev + "Statevector # 1 0.5 1 2F5/2\n1 1.0\nmore\n", 7},
        {vec, "State vectors: x\nbasis SLJX states 2 vectors 1 complex 0 unit cm^-1 shift 0\n", 2},
        // Huge announced counts are refused, never allocated up front.
        {vec, "State vectors: x\nbasis SLJ states 999999999 vectors 1 complex 0 unit cm^-1 shift 0\n", 2},
    };
    EXPECT_EQ(parseStateVectorText(ev + "Statevector # 1 0.5 1 2F5/2\n1 1.0\n", "ok.ev").vectors.size(), 1u);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        try {
            c.parse(c.text);
            ADD_FAILURE() << "accepted";
        } catch (const UserError& error) {
            ASSERT_TRUE(error.where().has_value());
            EXPECT_EQ(error.where()->file, "bad");
            EXPECT_EQ(error.where()->line, c.line);
        }
    }
}

// <2F J||C(k)||2F J> of f1: c_k (-1)^(S+L+J+k) (2J+1) {L J S; J L k} <f||u(k)||f>, <f||u(k)||f> = 1
// (Edmonds, Angular Momentum in Quantum Mechanics (1957), eq. 7.1.7); f13 on
// the conjugate route has the opposite sign for even k.
TEST(GeneralOutput, MultipletElementsOfCeriumAndYtterbium) {
    const auto tables = loadEngineTables(1, test::engineTableDirectory(), *std::make_unique<MemoryLogBook>());
    auto set = test::ceriumAxial(0);
    set.mainFreeIon[4] = test::row("ZETA", 625);
    MemoryLogBook log;
    EnergyLevelOptions options;
    options.crystalField = false;
    const auto ce = computeEnergyLevels(set, test::engineTableDirectory(), log, options);
    const auto ceElements =
        multipletCrystalFieldElements(transformTensors(tables, ce.freeIonOperators, ce.freeIon), ce.conjugate);
    ASSERT_EQ(ceElements.size(), 2u);
    for (const auto& entry : ceElements) {
        for (int i = 0; i < 3; ++i) {
            const int k = kEvenRanks[i];
            const double J = entry.twiceJ / 2.0;
            const double expected = ReducedCk(3, k, 3) * std::pow(-1.0, 0.5 + 3 + J + k) * (2 * J + 1) *
                                    SixJ(3, J, 0.5, J, 3, k);
            EXPECT_NEAR(entry.reducedCk[i], expected, 1e-12) << "2J " << entry.twiceJ << " k " << k;
        }
    }
    EXPECT_NEAR(ceElements[0].reducedCk[2], 0.0, 1e-12);  // no rank 6 inside J = 5/2
    // Yb3+ (f13) through f1 and in the actual shell give the same elements.
    set.electronCount = 13;
    for (bool actual : {false, true}) {
        SCOPED_TRACE(actual);
        set.switches.actualShell = actual;
        const auto yb = computeEnergyLevels(set, test::engineTableDirectory(), log, options);
        const auto ybTables = loadEngineTables(yb.tableElectrons, test::engineTableDirectory(), log);
        const auto ybElements = multipletCrystalFieldElements(
            transformTensors(ybTables, yb.freeIonOperators, yb.freeIon), yb.conjugate);
        ASSERT_EQ(ybElements.size(), 2u);
        for (const auto& entry : ybElements) {
            const auto& partner = entry.twiceJ == ceElements[0].twiceJ ? ceElements[0] : ceElements[1];
            for (int i = 0; i < 3; ++i) EXPECT_NEAR(entry.reducedCk[i], -partner.reducedCk[i], 1e-10);
        }
    }
}

// Second-order barycentre shift against the exact levels of Ce3+ in a weak
// axial field: the mean of the six 2F5/2 states minus the free-ion energy.
TEST(GeneralOutput, BarycentreShiftMatchesExactWeakFieldLevels) {
    for (double b20 : {100.0, 200.0}) {
        SCOPED_TRACE(b20);
        const auto set = test::ceriumAxial(b20, 150.0);
        MemoryLogBook log;
        EnergyLevelOptions options;
        const auto result = computeEnergyLevels(set, test::engineTableDirectory(), log, options);
        const auto tables = loadEngineTables(1, test::engineTableDirectory(), log);
        const auto tensors = transformTensors(tables, result.freeIonOperators, result.freeIon);
        std::vector<double> freeIonEnergies;
        for (const auto& level : result.freeIon.levels) freeIonEnergies.push_back(level.energy);
        // S_k = B(k,0)^2 / (2k+1) (docs/crystal-field.md, "Invariants and crystal-field strength")
        const std::array<double, 3> invariants = {b20 * b20 / 5.0, 150.0 * 150.0 / 9.0, 0.0};
        const auto shifts = barycentreShifts(tensors, freeIonEnergies, invariants);
        ASSERT_EQ(shifts.size(), 2u);
        double exactLower = 0.0, exactUpper = 0.0;
        for (int i = 0; i < 14; ++i) (i < 6 ? exactLower : exactUpper) += result.crystalField.levels[i].energy;
        exactLower = exactLower / 6.0 - freeIonEnergies[0];
        exactUpper = exactUpper / 8.0 - freeIonEnergies[1];
        EXPECT_LT(shifts[0].shift, 0.0);  // the lower multiplet is pushed down
        EXPECT_NEAR(shifts[0].shift, exactLower, 0.03 * std::abs(exactLower));
        EXPECT_NEAR(shifts[1].shift, exactUpper, 0.03 * std::abs(exactUpper));
        // The trace is conserved: (2J+1)-weighted shifts add up to zero.
        EXPECT_NEAR(6 * shifts[0].shift + 8 * shifts[1].shift, 0.0, 1e-9);
    }
}

}  // namespace
}  // namespace orvane
