// Result files and the sections of the general output: energy and
// state-vector files written and read back (and refused when malformed),
// labels, crystal quantum numbers, Landé factors, the "##/2" J column, the
// J-multiplet elements and the second-order barycentre shifts.
#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <sstream>

#include "core/angular.hpp"
#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "engine/barycentre_shift.hpp"
#include "engine/energy_file.hpp"
#include "engine/general_output.hpp"
#include "engine/j_multiplet_elements.hpp"
#include "engine/state_vector_file.hpp"
#include "tests/engine/run_driver_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using test::TestRun;

TEST(LevelLabels, MultipletLabelsAndCrystalQuantumNumbers) {
    EXPECT_EQ(multipletLabel("3H", 8), "3H4");
    EXPECT_EQ(multipletLabel("4I", 9), "4I9/2");
    EXPECT_EQ(multipletLabel("2D1", 5), "2D1-5/2");
    struct Case {
        int residue, fold, twiceMu;
    };
    // 2 MJ = r (mod 2p), mu the member of the class with |mu| <= p/2.
    const Case cases[] = {{0, 2, 0}, {2, 2, 2},  {1, 2, 1}, {3, 2, -1}, {1, 3, 1}, {3, 3, 3},
                          {5, 3, -1}, {4, 3, -2}, {0, 1, 0}, {1, 1, 1}, {6, 4, -2}, {4, 4, 4}};
    for (const auto& c : cases)
        EXPECT_EQ(twiceCrystalQuantumNumber(c.residue, c.fold), c.twiceMu) << c.residue << " mod " << 2 * c.fold;
}

// Physics notes 10.1, g_J with g_s = 2.0023193 [computed].
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

TEST(ResultFiles, MalformedEnergyFilesNameFileAndLine) {
    struct Case {
        const char* text;
        int line;
        const char* fragment;
    };
    const Case cases[] = {
        {"", 1, "empty"},
        {"t\n1 0.0\n2 abc\n", 3, "energy"},
        {"t\n1 0.0\n3 1.0\n", 3, "out of sequence"},
        {"t\n1 5.0\n2 1.0\n", 3, "ascending"},
        {"t\n1 nan\n", 2, "energy"},
        {"t\n1 0 -2\n", 2, "2J"},
        {"t\n1 0 4 x\n", 2, "2mu"},
        {"t\nfirst 0\n", 2, "state number"},
        {"t\n1\n", 2, "energy missing"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        try {
            parseEnergyText(c.text, "bad.eng");
            ADD_FAILURE() << "accepted";
        } catch (const UserError& error) {
            ASSERT_TRUE(error.where().has_value());
            EXPECT_EQ(error.where()->file, "bad.eng");
            EXPECT_EQ(error.where()->line, c.line);
            EXPECT_NE(std::string(error.what()).find(c.fragment), std::string::npos) << error.what();
        }
    }
    EXPECT_THROW(readEnergyFile(test::scratchDirectory("eng_missing") / "absent.eng"), UserError);
}

TEST(ResultFiles, MalformedStateVectorFilesNameFileAndLine) {
    const std::string header = "State vectors: x\nbasis SLJ states 2 vectors 1 complex 0 unit cm^-1 shift 0\n"
                               "1 2F 1 3 5\n2 2F 1 3 7\n";
    struct Case {
        std::string text;
        int line;
        const char* fragment;
    };
    const Case cases[] = {
        {header + "Statevector # 1 0.5 1 2F5/2\n1 1.0\n", 0, nullptr},  // valid
        {header + "Statevector # 1 0.5 2 2F5/2\n1 1.0\n", 7, "end of file"},
        {header + "Statevector # 1 0.5 1 2F5/2\n3 1.0\n", 6, "basis index"},
        {header + "Statevector # 2 0.5 1 2F5/2\n1 1.0\n", 5, "out of sequence"},
        {header + "Statevector # 1 0.5 9 2F5/2\n1 1.0\n", 5, "component count"},
        {header + "Statevector # 1 0.5 1 2F5/2\n1 x\n", 6, "coefficient"},
        {header + "Statevector # 1 0.5 1 2F5/2\n1 1.0\nmore\n", 7, "after the last"},
        {"State vectors: x\nbasis SLJX states 2 vectors 1 complex 0 unit cm^-1 shift 0\n", 2, "SLJM or SLJ"},
        {"State vectors: x\nbasis SLJ states 2 vectors 1 complex 0 unit cm^-1\n", 2, "shift"},
        {"State vectors: x\nbasis SLJM states 1 vectors 0 complex 0 unit cm^-1 shift 0\n1 2F 1 3 5 7\n", 3,
         "projection"},
        // Huge announced counts are refused or fail at the end of the text, never allocated up front.
        {"State vectors: x\nbasis SLJ states 999999999 vectors 1 complex 0 unit cm^-1 shift 0\n", 2, "more entries"},
        {header + "Statevector # 1 0.5 2 2F5/2\n1 1.0\n", 7, "end of file"},
        {"State vectors: x\nbasis SLJ states 1 vectors 9 complex 0 unit cm^-1 shift 0\n1 2F 1 3 5\n", 4,
         "end of file"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        if (!c.fragment) {
            EXPECT_EQ(parseStateVectorText(c.text, "bad.ev").vectors.size(), 1u);
            continue;
        }
        try {
            parseStateVectorText(c.text, "bad.ev");
            ADD_FAILURE() << "accepted";
        } catch (const UserError& error) {
            ASSERT_TRUE(error.where().has_value());
            EXPECT_EQ(error.where()->file, "bad.ev");
            EXPECT_EQ(error.where()->line, c.line);
            EXPECT_NE(std::string(error.what()).find(c.fragment), std::string::npos) << error.what();
        }
    }
}

// The stored |SL J MJ> vectors of a run: normalised (minimum component 0),
// every component inside the MJ class of its block, labels consistent.
TEST(ResultFiles, StateVectorsOfARunAreNormalisedAndBlockPure) {
    const auto dir = test::scratchDirectory("ev_norm");
    for (int mode : {0, 1}) {
        SCOPED_TRACE(mode);
        auto set = test::praseodymiumLaF3();
        if (mode == 1) set.crystalField[4].im = {"150", 150.0};  // Im B(4,4) for the complex engine
        TestRun run;
        RunRequest request;
        request.minComponent = "0";
        const auto outcome = runEngine(mode, test::writeSet(dir, "Pr.par", set), request, run.environment);
        const auto file = readStateVectorFile(dir / "Pr.ev");
        EXPECT_TRUE(file.withProjections);
        EXPECT_EQ(file.complex, mode == 1);
        ASSERT_EQ(file.basis.size(), 91u);
        ASSERT_EQ(file.vectors.size(), 91u);
        for (const auto& vector : file.vectors) {
            double norm = 0.0;
            std::set<int> classes;
            for (const auto& component : vector.components) {
                norm += std::norm(component.coefficient);
                classes.insert(((file.basis[component.basisIndex].twiceM % 4) + 4) % 4);
            }
            EXPECT_NEAR(norm, 1.0, 1e-8) << "statevector " << vector.number;
            EXPECT_EQ(classes.size(), 1u) << "statevector " << vector.number;
            EXPECT_EQ(vector.label, outcome.levels[vector.number - 1].label);
        }
        // The largest component's multiplet is the label's.
        const auto& ground = file.vectors.front();
        const auto& largest = file.basis[ground.components.front().basisIndex];
        EXPECT_EQ(multipletLabel(largest.term, largest.twiceJ), ground.label);
    }
}

// Fold 3, Kramers ion: every component of a stored vector has 2 MJ = 2 mu
// (mod 6), mu the crystal quantum number the energy file gives for the state
// (the residues 1 and 5 are distinct classes, so a reversed MJ is caught).
TEST(ResultFiles, ComponentsLieInTheClassOfTheirCrystalQuantumNumber) {
    const auto dir = test::scratchDirectory("ev_mu_classes");
    auto set = test::ceriumAxial(300, 200);
    set.fold = 3;
    set.crystalField.push_back(test::bkq(4, 3, 250));
    set.crystalField.push_back(test::bkq(6, 3, -150));
    TestRun run;
    RunRequest request;
    request.minComponent = "0";
    runEngine(0, test::writeSet(dir, "Ce.par", set), request, run.environment);
    const auto energies = readEnergyFile(dir / "Ce.eng");
    const auto vectors = readStateVectorFile(dir / "Ce.ev");
    ASSERT_EQ(energies.levels.size(), 14u);
    ASSERT_EQ(vectors.vectors.size(), 14u);
    std::set<int> mus;
    for (std::size_t i = 0; i < 14; ++i) {
        ASSERT_TRUE(energies.levels[i].twiceMu.has_value());
        const int twiceMu = *energies.levels[i].twiceMu;
        mus.insert(twiceMu);
        for (const auto& component : vectors.vectors[i].components)
            EXPECT_EQ(((vectors.basis[component.basisIndex].twiceM - twiceMu) % 6 + 6) % 6, 0)
                << "state " << i + 1 << " 2mu " << twiceMu;
    }
    EXPECT_EQ(mus, (std::set<int>{-1, 1, 3}));
}

// The J column of the free-ion table is 2J under "##/2": J = 7/2 prints 7/2.
TEST(GeneralOutput, FreeIonJColumnAndGFactors) {
    const auto dir = test::scratchDirectory("gen_j_column");
    TestRun run;
    runEngine(0, test::writeSet(dir, "Ce.par", test::ceriumAxial(100)), {}, run.environment);
    const auto general = readTextFile(dir / "Ce.gen");
    const auto table = general.find("State     Energy     J    gJ-factor");
    ASSERT_NE(table, std::string::npos);
    std::istringstream lines(general.substr(table));
    std::string heading, first, second;
    std::getline(lines, heading);
    std::getline(lines, first);
    std::getline(lines, second);
    EXPECT_NE(first.find(" 5/2"), std::string::npos) << first;
    EXPECT_NE(first.find("0.8568"), std::string::npos) << first;   // g(2F5/2), physics notes 10.1
    EXPECT_NE(second.find(" 7/2"), std::string::npos) << second;
    EXPECT_NE(second.find("1.1432"), std::string::npos) << second;  // g(2F7/2)
    EXPECT_NE(first.find("-1250.0000"), std::string::npos) << first;  // -2 zeta, zeta = 625
    EXPECT_NE(second.find("937.5000"), std::string::npos) << second;  // 3/2 zeta
}

// <2F J||C(k)||2F J> of f1: c_k (-1)^(S+L+J+k) (2J+1) {L J S; J L k} <f||u(k)||f>, <f||u(k)||f> = 1
// (physics notes 4.1); f13 on the conjugate route has the opposite sign for even k.
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
        // S_k = B(k,0)^2 / (2k+1) (physics notes 9.5)
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

// Pr3+:LaF3 (physics notes 14.5 parameters): the nine lowest states are the 3H4
// multiplet; their mean lies at the free-ion 3H4 energy plus the second-order
// shift, up to higher orders (about 1 cm^-1 of a 35 cm^-1 shift). The
// invariants S_k are the [computed] values of physics notes 9.5.
TEST(GeneralOutput, BarycentreShiftOfPraseodymiumGroundMultiplet) {
    MemoryLogBook log;
    const auto result = computeEnergyLevels(test::praseodymiumLaF3(), test::engineTableDirectory(), log, {});
    const auto tables = loadEngineTables(2, test::engineTableDirectory(), log);
    const auto tensors = transformTensors(tables, result.freeIonOperators, result.freeIon);
    std::vector<double> freeIonEnergies;
    for (const auto& level : result.freeIon.levels) freeIonEnergies.push_back(level.energy);
    const auto shifts = barycentreShifts(tensors, freeIonEnergies, {15264.8, 186119.8, 280124.5});
    double mean = 0.0;
    for (int i = 0; i < 9; ++i) mean += result.crystalField.levels[i].energy / 9.0;
    EXPECT_NEAR(shifts[0].shift, mean - freeIonEnergies[0], 2.0);
    EXPECT_LT(shifts[0].shift, -30.0);
}

TEST(GeneralOutput, InvariantsLineOfPraseodymiumRun) {
    const auto dir = test::scratchDirectory("gen_invariants");
    TestRun run;
    runEngine(0, test::writeSet(dir, "Pr.par", test::praseodymiumLaF3()), {}, run.environment);
    // physics notes 9.5: s_2 = 123.551, s_4 = 431.416, s_6 = 529.268 for Pr3+:LaF3
    EXPECT_NE(readTextFile(dir / "Pr.gen").find("CF Rotational invariants sk:     123.5508    431.4160    529.2679"),
              std::string::npos);
}

TEST(GeneralOutput, LevelTableGroupsDegenerateLevels) {
    const auto dir = test::scratchDirectory("gen_level_table");
    TestRun run;
    const auto outcome = runEngine(0, test::writeSet(dir, "Ce.par", test::ceriumAxial(400)), {}, run.environment);
    const auto groups = degenerateGroups(outcome.levels);
    ASSERT_EQ(groups.size(), 7u);  // Kramers doublets: 3 of 2F5/2 and 4 of 2F7/2
    for (const auto& group : groups) EXPECT_EQ(group.size, 2);
    MemoryLogBook table;
    writeLevelTable(table, outcome.levels, 1, 0.0);
    ASSERT_EQ(table.lines().size(), 8u);
    EXPECT_NE(table.lines()[1].find("2F5/2"), std::string::npos) << table.lines()[1];
    EXPECT_NE(table.lines()[1].find("      0.0000     2"), std::string::npos) << table.lines()[1];
}

}  // namespace
}  // namespace orvane
