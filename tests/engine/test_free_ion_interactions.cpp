// Three-body, magnetic and correlated spin-orbit interactions of the free-ion
// stage: component values against published and computed check values, the
// conjugate route against the actual shell for every f8..f13, the switches
// "/noss", "/wrongrankss", "/usezic", "/t2correction", "/printhm", and the
// per-level shares.
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
#include "engine/pair_record_table.hpp"
#include "engine/t2_correction.hpp"
#include "tables/table_directory.hpp"
#include "tests/engine/engine_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using test::bkq;
using test::row;

std::filesystem::path tableDirectory() { return test::engineTableDirectory(); }

// Nd3+:LaF3 free-ion parameters (Carnall et al. 1989, Table I), T2' and spin-spin added.
ParameterSet neodymiumLike(int n) {
    ParameterSet set;
    set.electronCount = n;
    set.mainFreeIon = {row("EAVG", 24477.4), row("F2", 73018), row("F4", 52789), row("F6", 35757), row("ZETA", 885.3)};
    set.otherFreeIon = {row("ALPHA", 21.34), row("BETA", -593), row("GAMMA", 1445), row("T2", 298), row("T2'", 41),
                        row("T3", 35),       row("T4", 59),     row("T6", -285),   row("T7", 332), row("T8", 305),
                        row("M0", 2.11),     row("M2", 1.18),   row("M4", 0.80),   row("P2", 192), row("P4", 96),
                        row("P6", 19.2)};
    return set;
}

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
    // Crosswhite 1996 (physics notes 6.5), the f10 value follows from the legacy rule of 6.4:
    // t2(f10, 5D) = -t2'(f4, 5D) + 8 e3(5D)/(70 sqrt 2) = -1.555635 + 8 x 33/(70 sqrt 2) = 1.111168.
    // Published values carry 6 decimals (and rounding of the order of 5e-6): tolerance 1e-5.
    // Magnetic f2 3P0 values: spin-spin <3P||T(22)||3P> = -12 M0 (Judd, Crosswhite & Crosswhite 1968)
    // times {1 1 0; 1 1 2} = 1/3 -> -4 (rank 1 by mistake: {1 1 0; 1 1 1} = -1/3 -> +4);
    // SOO + ECSO <3P||X(11)||3P> = (-61/2 M0, ..., -0.2388889 P2) times -1/3 (physics notes 7.1).
    struct Case {
        int tableShell, electrons;
        SpinSpinForm spinSpin;
        const char* component;
        const char* label;
        int twiceJ;
        double expected;
    };
    const Case cases[] = {
        {3, 3, SpinSpinForm::Rank2, "T3", "4S", 3, 3.51324},   {3, 3, SpinSpinForm::Rank2, "T3", "4F", 3, -0.87831},
        {3, 3, SpinSpinForm::Rank2, "T4", "4D", 1, -1.167007}, {3, 3, SpinSpinForm::Rank2, "T6", "2P", 1, -1.523624},
        {3, 3, SpinSpinForm::Rank2, "T8", "2D2", 3, 1.148245}, {3, 3, SpinSpinForm::Rank2, "T2", "4D", 5, 1.111168},
        {3, 3, SpinSpinForm::Rank2, "T2'", "4D", 7, 0.777817}, {4, 4, SpinSpinForm::Rank2, "T3", "5S", 4, -3.51324},
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

TEST(FreeIonInteractions, DroppedSpinSpinLeavesNoSpinSpinPart) {
    MemoryLogBook log;
    const auto tables = loadEngineTables(2, tableDirectory(), log);
    FreeIonBuildOptions options;
    options.spinSpin = SpinSpinForm::Dropped;
    const auto operators = buildFreeIonOperators(tables, options);
    for (const auto& part : operators.magneticParts) EXPECT_EQ(part.name.rfind("mss", 0), std::string::npos) << part.name;
    EXPECT_EQ(operators.magneticParts.size(), 3u);
}

// Levels of both routes (crystal field included) minus their mean difference.
double largestRouteDeviation(const ParameterSet& set) {
    auto actual = set;
    actual.switches.actualShell = true;
    MemoryLogBook log;
    const auto viaConjugate = computeEnergyLevels(set, tableDirectory(), log);
    const auto viaActual = computeEnergyLevels(actual, tableDirectory(), log);
    EXPECT_TRUE(viaConjugate.conjugate);
    EXPECT_FALSE(viaActual.conjugate);
    const auto& a = viaConjugate.crystalField.levels;
    const auto& b = viaActual.crystalField.levels;
    EXPECT_EQ(a.size(), b.size());
    if (a.size() != b.size() || a.empty()) return 1e300;
    double mean = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) mean += (a[i].energy - b[i].energy) / static_cast<double>(a.size());
    double worst = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) worst = std::max(worst, std::abs(a[i].energy - b[i].energy - mean));
    EXPECT_GT(a.back().energy - a.front().energy, 3000.0) << "a spectrum of the whole configuration";
    return worst;
}

TEST(FreeIonInteractions, ConjugateRouteEqualsActualShellForEveryF8ToF13) {
    // Physics notes 0, 6.3, 6.4, 7.2: through f^(14-n) zeta, B(k,q), T2', T3..T8 change sign, the legacy
    // T2 follows its own rule, M^k, P^k and spin-spin keep their sign; levels agree up to one constant.
    for (int n = 8; n <= 13; ++n) {
        auto set = neodymiumLike(n);
        set.fold = 3;
        set.crystalField = {bkq(2, 0, -256), bkq(4, 0, 496), bkq(4, 3, 410), bkq(6, 0, 641), bkq(6, 3, -380),
                            bkq(6, 6, -831)};
        const double deviation = largestRouteDeviation(set);
        std::printf("f%d: conjugate route vs actual shell, largest deviation %.2e cm^-1\n", n, deviation);
        EXPECT_LT(deviation, 1e-6) << "f" << n;
    }
}

TEST(FreeIonInteractions, SwitchesAreLoggedWithTheirMessages) {
    struct Case {
        void (*edit)(RunSwitches&);
        const char* line;
    };
    const Case cases[] = {
        {[](RunSwitches& s) { s.noSpinSpin = true; }, "Set spin-spin interaction to zero!!"},
        {[](RunSwitches& s) { s.wrongRankSpinSpin = true; }, "Use wrong rank=1 for spin-spin interaction !!"},
        {[](RunSwitches& s) { s.t2Correction = true; }, "t2 correction for Slater parameters:"},
        {[](RunSwitches& s) { s.t2Correction = true; }, "T2 Corrected values of Slater parameters:"},
        {[](RunSwitches& s) { s.printHamiltonian = true; }, "Print Hamiltonian matrix elements"},
    };
    for (const Case& c : cases) {
        auto set = neodymiumLike(3);
        c.edit(set.switches);
        MemoryLogBook log;
        computeEnergyLevels(set, tableDirectory(), log, {false});
        const auto& lines = log.lines();
        EXPECT_NE(std::find(lines.begin(), lines.end(), c.line), lines.end()) << c.line;
    }
}

std::vector<double> freeIonEnergies(const ParameterSet& set, const std::filesystem::path& directory) {
    MemoryLogBook log;
    const auto result = computeEnergyLevels(set, directory, log, {false});
    std::vector<double> energies;
    for (const auto& level : result.freeIon.levels) energies.push_back(level.energy);
    return energies;
}

double largestDifference(const std::vector<double>& a, const std::vector<double>& b) {
    EXPECT_EQ(a.size(), b.size());
    double worst = 0.0;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) worst = std::max(worst, std::abs(a[i] - b[i]));
    return worst;
}

TEST(FreeIonInteractions, WrongRankAndDroppedSpinSpinChangeTheLevels) {
    // The spin-spin part moves Nd3+ free-ion levels by a few cm^-1; rank 1 moves them differently.
    const auto set = neodymiumLike(3);
    auto noSpinSpin = set;
    noSpinSpin.switches.noSpinSpin = true;
    auto wrongRank = set;
    wrongRank.switches.wrongRankSpinSpin = true;
    const auto reference = freeIonEnergies(set, tableDirectory());
    EXPECT_GT(largestDifference(reference, freeIonEnergies(noSpinSpin, tableDirectory())), 1.0);
    EXPECT_GT(largestDifference(reference, freeIonEnergies(wrongRank, tableDirectory())), 1.0);
    EXPECT_GT(largestDifference(freeIonEnergies(noSpinSpin, tableDirectory()),
                                freeIonEnergies(wrongRank, tableDirectory())), 1.0);
}

TEST(FreeIonInteractions, UseZicReadsTheZFormMagneticFiles) {
    // Both file pairs hold the same elements: equal levels. A broken "rmzic.val" is then
    // reported only by the "/usezic" run, a broken "mesooci.val" only by the default run.
    const auto directory = test::scratchDirectory("usezic-tables");
    auto set = neodymiumLike(2);
    auto zic = set;
    zic.switches.useZic = true;
    EXPECT_LT(largestDifference(freeIonEnergies(set, directory), freeIonEnergies(zic, directory)), 1e-9);
    const auto broken = directory / configurationFileName(2, "rmzic.val");
    writeFileAtomically(broken, readTextFile(broken) + "1 2  x 0 0 0 0 0\n");
    EXPECT_NO_THROW(freeIonEnergies(set, directory));
    try {
        freeIonEnergies(zic, directory);
        ADD_FAILURE() << "a broken rmzic.val must stop the /usezic run";
    } catch (const UserError& error) {
        EXPECT_NE(std::string(error.what()).find("f2rmzic.val"), std::string::npos) << error.what();
        EXPECT_NE(std::string(error.what()).find("not a finite number: x"), std::string::npos) << error.what();
    }
}

TEST(FreeIonInteractions, MalformedPairTablesNameFileLineAndProblem) {
    struct Case {
        const char* text;
        const char* fragment;
    };
    const Case cases[] = {
        {"title\n1 1  .5 .25 0\n", "t.val, line 2: expected two term numbers and 2 values, found 5 fields"},
        {"title\n1 1  .5 .25\n3 1  1 1\n", "t.val, line 3: term numbers must lie in 1..2"},
        {"title\n\n0 1  1 1\n", "t.val, line 3: term numbers must lie in 1..2"},
        {"title\n1 2  nan 1\n", "t.val, line 2: not a finite number: nan"},
        {"title\n1 2  1 1E999\n", "t.val, line 2: not a finite number: 1E999"},
    };
    for (const Case& c : cases) {
        try {
            parsePairRecords(c.text, 2, 2, "t.val");
            ADD_FAILURE() << "accepted: " << c.text;
        } catch (const UserError& error) {
            EXPECT_NE(std::string(error.what()).find(c.fragment), std::string::npos) << error.what();
        }
    }
    const auto read = parsePairRecords("title\n1 2  .5 -2.5E-03\n\n2 2  1 0\n", 2, 2, "t.val");
    EXPECT_DOUBLE_EQ(read[0](0, 1), 0.5);
    EXPECT_DOUBLE_EQ(read[1](0, 1), -2.5e-3);
    EXPECT_DOUBLE_EQ(read[0](1, 1), 1.0);
    EXPECT_DOUBLE_EQ(read[0](1, 0), 0.0) << "the other half is the caller's";
}

TEST(FreeIonInteractions, T2CorrectionMovesTheE3PartIntoTheSlaterParameters) {
    // Nd3+, T2 = 298: Delta E^3 = (3 - 2) 298 / (70 sqrt 2) = 3.0102546; Delta F^2 = 225 x 11/42 x Delta E^3
    // = 177.3900, Delta F^4 = 1089 x 4/77 x Delta E^3 = 170.2944, Delta F^6 = -(184041/25) x 7/462 x Delta E^3
    // = -335.7638. The Hamiltonian is the same: equal levels.
    for (const bool actualShell : {false, true}) {
        for (const int n : {3, 11}) {
            auto set = neodymiumLike(n);
            set.switches.actualShell = actualShell;
            auto corrected = set;
            corrected.switches.t2Correction = true;
            EXPECT_LT(largestDifference(freeIonEnergies(set, tableDirectory()),
                                        freeIonEnergies(corrected, tableDirectory())), 1e-7)
                << "f" << n << (actualShell ? " actual shell" : "");
        }
    }
    const auto correction = t2SlaterCorrection(3, 298);
    EXPECT_NEAR(correction.deltaE3, 3.0102546, 1e-7);
    EXPECT_NEAR(correction.deltaF[0], 177.3900, 1e-4);
    EXPECT_NEAR(correction.deltaF[1], 170.2944, 1e-4);
    EXPECT_NEAR(correction.deltaF[2], -335.7638, 1e-4);
    auto set = neodymiumLike(3);
    set.switches.t2Correction = true;
    MemoryLogBook log;
    const auto result = computeEnergyLevels(set, tableDirectory(), log, {false});
    EXPECT_NEAR(result.freeIonWeights.at("F2"), 73018 + 177.3900, 1e-4);
    EXPECT_DOUBLE_EQ(result.freeIonWeights.at("T2"), 0.0);
    EXPECT_DOUBLE_EQ(result.freeIonWeights.at("T2'"), 298.0 + 41.0);
    const auto& lines = log.lines();
    EXPECT_NE(std::find(lines.begin(), lines.end(), "F^2 correction =      177.3900"), lines.end());
    EXPECT_NE(std::find(lines.begin(), lines.end(), "F^6 =    35421.2362"), lines.end());
}

TEST(FreeIonInteractions, PrintedHamiltonianHoldsTheUpperTriangleOfEachJBlock) {
    // f2 with F^2 = 225 only: the J = 0 block holds 3P0 and 1S0 with the Coulomb energies
    // 45 F_2 and 60 F_2 (physics notes 5.2, F_2 = F^2/225 = 1) less the barycentre
    // -4/195 x 225 = -4.6154 (physics notes 5.3), and no element between them.
    ParameterSet set;
    set.electronCount = 2;
    set.mainFreeIon = {row("EAVG", 0), row("F2", 225), row("F4", 0), row("F6", 0), row("ZETA", 0)};
    set.switches.printHamiltonian = true;
    MemoryLogBook log;
    computeEnergyLevels(set, tableDirectory(), log, {false});
    const auto& lines = log.lines();
    const auto first = std::find(lines.begin(), lines.end(), "### Hamiltonian matrix elements of dim = 13");
    ASSERT_NE(first, lines.end());
    EXPECT_EQ(first[1], "Hamiltonian matrix row = 1 (first element for column=1)");
    EXPECT_EQ(first[2], "      49.6154       0.0000");
    EXPECT_EQ(first[3], "Hamiltonian matrix row = 2 (first element for column=2)");
    EXPECT_EQ(first[4], "      64.6154");
    const auto rows = std::count_if(first, lines.end(), [](const std::string& line) {
        return line.rfind("Hamiltonian matrix row = ", 0) == 0;
    });
    EXPECT_EQ(rows, 13);
    EXPECT_NE(std::find(first, lines.end(), "### End of Hamiltonian matrix elements ###"), lines.end());
}

TEST(FreeIonContributions, SharesAddUpToEveryLevelEnergy) {
    struct Case {
        int n;
        bool noSpinSpin, t2Correction;
    };
    for (const Case& c : {Case{3, false, false}, Case{3, true, true}, Case{11, false, false}, Case{11, false, true},
                          Case{6, false, false}}) {
        auto set = neodymiumLike(c.n);
        set.switches.noSpinSpin = c.noSpinSpin;
        set.switches.t2Correction = c.t2Correction;
        MemoryLogBook log;
        const auto result = computeEnergyLevels(set, tableDirectory(), log, {false});
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
        }
        const std::string what = fmt::format("f{}{}{}", c.n, c.noSpinSpin ? " /noss" : "", c.t2Correction ? " /t2correction" : "");
        EXPECT_LT(worst, 1e-7) << what;
        if (c.noSpinSpin) EXPECT_EQ(largestSpinSpin, 0.0) << what;
        else EXPECT_GT(largestSpinSpin, 0.1) << what;
        EXPECT_GT(largestThreeBody, 1.0) << what << ": E(t3)";
    }
}

TEST(FreeIonContributions, LabelsAndMagneticElementsOfTheReport) {
    // Labels in report order; the magnetic shifts are the parameters times the printed elements.
    auto set = neodymiumLike(2);
    MemoryLogBook log;
    const auto result = computeEnergyLevels(set, tableDirectory(), log, {false});
    const auto shares = freeIonContributions(result.freeIonOperators, result.freeIonWeights, result.freeIon);
    std::vector<std::string> labels;
    for (const auto& s : shares[0].shifts) labels.push_back(s.label);
    for (const auto& s : shares[0].magneticElements) labels.push_back(s.label);
    for (const auto& s : shares[0].magneticShifts) labels.push_back(s.label);
    EXPECT_EQ(labels, (std::vector<std::string>{"E(f2)",  "E(f4)",  "E(f6)",  "E(SO)",   "E(alpha)", "E(beta)",
                                                "E(gamma)", "E(t2)", "E(t3)",  "E(t4)",   "E(t6)",    "E(t7)",
                                                "E(t8)",  "mss0",   "mss2",   "mss4",    "msoo0",    "msoo2",
                                                "msoo4",  "100*p2", "100*p4", "100*p6",  "E(SS)",    "E(SOO)",
                                                "E(EL-SO)"}));
    // E(SS) = sum M^k <mss_k>, E(EL-SO) = sum P^k <p_k> (the elements of p_k are printed times 100).
    for (const auto& share : shares) {
        const auto& e = share.magneticElements;
        EXPECT_NEAR(share.magneticShifts[0].value, 2.11 * e[0].value + 1.18 * e[1].value + 0.80 * e[2].value, 1e-9);
        EXPECT_NEAR(share.magneticShifts[1].value, 2.11 * e[3].value + 1.18 * e[4].value + 0.80 * e[5].value, 1e-9);
        EXPECT_NEAR(share.magneticShifts[2].value, (192 * e[6].value + 96 * e[7].value + 19.2 * e[8].value) / 100, 1e-9);
    }
}

}  // namespace
}  // namespace orvane
