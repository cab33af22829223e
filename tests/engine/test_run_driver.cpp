// The run driver: modes and result names, the settings that discard the
// energy file, the interactive prompts, failures that leave no result file,
// and the Pr3+:LaF3 levels and labels read back from the written files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "engine/energy_file.hpp"
#include "engine/run_driver.hpp"
#include "engine/state_vector_file.hpp"
#include "tests/engine/run_driver_test_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

using test::TestRun;

std::vector<std::string> filesIn(const std::filesystem::path& dir) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

// The general output without its two time-stamped lines.
std::string withoutTimes(const std::string& text) {
    std::string kept;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line))
        if (line.rfind("*** Starting time: ", 0) != 0 && line.rfind("***** Work Completed on ", 0) != 0)
            kept += line + "\n";
    return kept;
}

TEST(RunModes, LastDigitChoosesTheKindAndNames) {
    struct Case {
        int mode;
        RunKind kind;
        const char* general;
        const char* energies;
    };
    const Case cases[] = {
        {0, RunKind::RealCrystalField, "dir/Er.gen", "dir/Er.eng"},
        {1, RunKind::ComplexCrystalField, "dir/Er.gen", "dir/Er.eng"},
        {2, RunKind::FreeIon, "dir/Er_fi.gen", "dir/Er_fi.eng"},
        {12, RunKind::FreeIon, "dir/Er_fi.gen", "dir/Er_fi.eng"},  // 12 behaves as 2
        {5, RunKind::FreeIonKeepEnergies, "dir/Er_fi.gen", "dir/Er_fi.eng"},
        {30, RunKind::RealCrystalField, "dir/Er.gen", "dir/Er.eng"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.mode);
        EXPECT_EQ(runKindOfMode(c.mode), c.kind);
        const auto names = resultNamesFor("dir/Er.par", c.kind, true, 0);
        EXPECT_EQ(names.general, c.general);
        EXPECT_EQ(names.energies, c.energies);
    }
    for (int invalid : {3, 4, 6, 7, 8, 9, 13}) EXPECT_THROW(runKindOfMode(invalid), UserError) << invalid;
    EXPECT_EQ(resultNamesFor("Er.PAR", RunKind::RealCrystalField, true, 0).vectors, "Er.ev");
    EXPECT_EQ(resultNamesFor("noext", RunKind::FreeIon, true, 0).vectors, "noext_fi.ev");
    EXPECT_EQ(engineSwitchOf(RunKind::RealCrystalField), "/cf");
    EXPECT_EQ(engineSwitchOf(RunKind::FreeIon), "/fi");
    EXPECT_EQ(engineSwitchOf(RunKind::ComplexCrystalField), "");
}

TEST(RunModes, KeepEnergiesSettingAndRunCounterDiscardTheEnergyFile) {
    struct Case {
        RunKind kind;
        bool keep;
        int counter;
        bool discarded;
    };
    const Case cases[] = {
        {RunKind::RealCrystalField, false, 9, false}, {RunKind::RealCrystalField, false, 10, true},
        {RunKind::RealCrystalField, true, 50, false}, {RunKind::FreeIon, false, 0, true},
        {RunKind::FreeIon, true, 0, false},           {RunKind::FreeIonKeepEnergies, false, 99, false},
        {RunKind::ComplexCrystalField, false, 99, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.kind) * 1000 + c.counter + (c.keep ? 100 : 0));
        const auto names = resultNamesFor("a.par", c.kind, c.keep, c.counter);
        EXPECT_EQ(names.energies == kNullOutput, c.discarded);
        EXPECT_NE(names.general, kNullOutput);
        EXPECT_NE(names.vectors, kNullOutput);
    }
}

TEST(RunDriver, Mode12RunsAsMode2) {
    const auto dirA = test::scratchDirectory("run_mode2");
    const auto dirB = test::scratchDirectory("run_mode12");
    const auto set = test::praseodymiumLaF3();
    TestRun a, b;
    const auto outA = runEngine(2, test::writeSet(dirA, "Pr.par", set), {}, a.environment);
    const auto outB = runEngine(12, test::writeSet(dirB, "Pr.par", set), {}, b.environment);
    EXPECT_FALSE(outB.crystalFieldStage);
    EXPECT_EQ(filesIn(dirA), filesIn(dirB));
    EXPECT_EQ(filesIn(dirB), (std::vector<std::string>{"Pr.par", "Pr_fi.eng", "Pr_fi.ev", "Pr_fi.gen"}));
    EXPECT_EQ(readTextFile(dirA / "Pr_fi.eng"), readTextFile(dirB / "Pr_fi.eng"));
    EXPECT_EQ(readTextFile(dirA / "Pr_fi.ev"), readTextFile(dirB / "Pr_fi.ev"));
}

TEST(RunDriver, NullEnergyOutputWritesNoEnergyFileAndChangesNothingElse) {
    const auto kept = test::scratchDirectory("run_keep");
    const auto dropped = test::scratchDirectory("run_drop");
    const auto set = test::praseodymiumLaF3();
    TestRun keep, drop;
    drop.settings.write(kSettingsSection, kKeepEnergiesKey, "0");
    runEngine(2, test::writeSet(kept, "Pr.par", set), {}, keep.environment);
    const auto outcome = runEngine(2, test::writeSet(dropped, "Pr.par", set), {}, drop.environment);
    EXPECT_EQ(outcome.names.energies, "nul:");
    EXPECT_FALSE(std::filesystem::exists(dropped / "Pr_fi.eng"));
    EXPECT_EQ(filesIn(dropped), (std::vector<std::string>{"Pr.par", "Pr_fi.ev", "Pr_fi.gen"}));
    EXPECT_EQ(readTextFile(kept / "Pr_fi.ev"), readTextFile(dropped / "Pr_fi.ev"));
    // The general outputs differ only in the echoed energy-file name.
    auto keptText = withoutTimes(readTextFile(kept / "Pr_fi.gen"));
    auto droppedText = withoutTimes(readTextFile(dropped / "Pr_fi.gen"));
    const auto replaceName = [](std::string& text, const std::string& from, const std::string& to) {
        for (auto pos = text.find(from); pos != std::string::npos; pos = text.find(from, pos + to.size()))
            text.replace(pos, from.size(), to);
    };
    replaceName(keptText, kept.string(), "DIR");
    replaceName(droppedText, dropped.string(), "DIR");
    replaceName(keptText, "DIR/Pr_fi.eng", "nul:");
    EXPECT_EQ(keptText, droppedText);
}

TEST(RunDriver, EigenvectorsToStoreZeroStoresAll) {
    const auto dir = test::scratchDirectory("run_vectors");
    const auto file = test::writeSet(dir, "Pr.par", test::praseodymiumLaF3());
    struct Case {
        int requested;
        std::size_t stored;
    };
    for (const auto& c : {Case{0, 91}, Case{5, 5}, Case{200, 91}}) {
        SCOPED_TRACE(c.requested);
        TestRun run;
        RunRequest request;
        request.eigenvectorsToStore = c.requested;
        runEngine(0, file, request, run.environment);
        EXPECT_EQ(readStateVectorFile(dir / "Pr.ev").vectors.size(), c.stored);
        EXPECT_EQ(readEnergyFile(dir / "Pr.eng").levels.size(), 91u);  // f2: 91 |SL J MJ> states
    }
}

TEST(RunDriver, FreeIonSetInMode2NeverReachesTheCrystalFieldStage) {
    const auto dir = test::scratchDirectory("run_free_ion");
    TestRun run;
    const auto outcome = runEngine(2, test::writeSet(dir, "Pr.par", test::praseodymiumLaF3(false)), {}, run.environment);
    EXPECT_FALSE(outcome.crystalFieldStage);
    EXPECT_EQ(outcome.levels.size(), 13u);  // 13 |SL J> levels of f2
    EXPECT_FALSE(run.log.contains("crystal field Hamiltonian submatrix"));
    EXPECT_FALSE(run.log.contains("Storing transformed reduced matrix elements"));
    EXPECT_FALSE(run.log.contains("Crystal Field"));
    EXPECT_TRUE(run.log.contains("Storing Free-ion statevectors"));
    const auto vectors = readStateVectorFile(dir / "Pr_fi.ev");
    EXPECT_FALSE(vectors.withProjections);
}

TEST(RunDriver, LogLinesComeInTheRunOrder) {
    const auto dir = test::scratchDirectory("run_order");
    TestRun run;
    RunRequest request;
    request.optionText = "/printhm";
    runEngine(0, test::writeSet(dir, "Pr.par", test::praseodymiumLaF3()), request, run.environment);
    const std::vector<std::string> expected = {
        "*** Starting time: ",
        "Get parameters from ",
        "General output to ",
        "Store up sorted Eigen energies in ",
        "Store up eigenvectors and energies in ",
        "min. value of eigenstate to be processed is 0.002",
        "no. of lowest energy eigenvectors to be stored (0 for all) = 0",
        "Free-ion Hamiltonian dim. = 13",
        "Print Hamiltonian matrix elements",
        "Finding free-ion eigenvalues and eigenvectors",
        "Storing Free-ion statevectors",
        "Printing out Free-ion energies and statevectors",
        "Storing Free-ion  eigen energies",
        "Storing transformed reduced matrix elements",
        "Fold of symmetry = 2",
        "Working on crystal field Hamiltonian submatrix with dim. = ",
        "Printing out Crystal Field energies and statevectors",
        "Storing Crystal Field statevectors in ",
        "Storing Crystal Field eigen energies in ",
    };
    std::size_t at = 0;
    for (const auto& fragment : expected) {
        const auto& lines = run.log.lines();
        const auto found = std::find_if(lines.begin() + at, lines.end(),
                                        [&](const std::string& line) { return line.rfind(fragment, 0) == 0; });
        ASSERT_NE(found, lines.end()) << "missing or out of order: " << fragment;
        at = static_cast<std::size_t>(found - lines.begin());
    }
    // The matrix listing goes to the general output only.
    EXPECT_FALSE(run.log.contains("### Hamiltonian matrix elements of dim = "));
    const auto general = readTextFile(dir / "Pr.gen");
    EXPECT_NE(general.find("### Hamiltonian matrix elements of dim = 13"), std::string::npos);
    EXPECT_NE(general.find("### End of Hamiltonian matrix elements ###"), std::string::npos);
    for (const char* heading : {"Cumulative state no. and Energy  (original statevector no.)",
                                "Eigen energies and statevectors",
                                "#### State labels: State#,  SL term#,  J-multiplet#,  J value and MJ value  ###",
                                "*No. (State) [Eigen]", "<||C(2)||>", "CF Rotational invariants sk: ",
                                "Inclusion of shift in J-multiplet barycenter due to the second order effect of crystal field mixing",
                                "***** Work Completed on "})
        EXPECT_NE(general.find(heading), std::string::npos) << heading;
}

// Physics notes 14.5: lowest nine levels of Pr3+:LaF3 (Carnall 1989 parameters,
// SOO + ECSO, no spin-spin), relative to the lowest, [computed] to 0.01 cm^-1.
TEST(RunDriver, PraseodymiumLaF3LevelsReadBackFromTheEnergyFile) {
    const auto dir = test::scratchDirectory("run_pr_levels");
    TestRun run;
    RunRequest request;
    request.energyShift = 250.0;
    runEngine(0, test::writeSet(dir, "Pr.par", test::praseodymiumLaF3()), request, run.environment);
    const auto energies = readEnergyFile(dir / "Pr.eng");
    ASSERT_EQ(energies.levels.size(), 91u);
    const double published[] = {0, 71.50, 94.93, 137.80, 182.51, 220.91, 333.32, 444.03, 462.70};
    const double ground = energies.levels.front().energy;
    for (int i = 0; i < 9; ++i)
        EXPECT_NEAR(energies.levels[i].energy - ground, published[i], 0.02) << "physics notes 14.5, level " << i + 1;
    EXPECT_NEAR(energies.levels.back().energy - ground, 46964.55, 0.05) << "physics notes 14.5, highest level";
    // The shift reaches both files: the .ev energies equal the .eng ones.
    const auto vectors = readStateVectorFile(dir / "Pr.ev");
    EXPECT_DOUBLE_EQ(vectors.shift, 250.0);
    for (std::size_t i = 0; i < 91; ++i) EXPECT_NEAR(vectors.vectors[i].energy, energies.levels[i].energy, 2e-6);
    TestRun unshifted;
    runEngine(0, dir / "Pr.par", {}, unshifted.environment);
    EXPECT_NEAR(readEnergyFile(dir / "Pr.eng").levels.front().energy + 250.0, ground, 2e-6);
}

TEST(RunDriver, PraseodymiumLabelsAndMixingFlag) {
    const auto dir = test::scratchDirectory("run_pr_labels");
    const auto file = test::writeSet(dir, "Pr.par", test::praseodymiumLaF3());
    TestRun crystal, freeIon;
    const auto cf = runEngine(0, file, {}, crystal.environment);
    // Ground level: 3H4 (the 3H4 multiplet carries about 96 % of it), not mixed.
    EXPECT_EQ(cf.levels.front().label, "3H4");
    EXPECT_EQ(cf.levels.front().twiceJ, 8);
    EXPECT_FALSE(cf.levels.front().mixed);
    const auto fi = runEngine(2, file, {}, freeIon.environment);
    ASSERT_EQ(fi.levels.size(), 13u);
    EXPECT_EQ(fi.levels[0].label, "3H4");
    EXPECT_GT(fi.levels[0].multiplets.front().weight, 0.9);
    // Intermediate coupling (physics notes 14.4 levels with SOO + ECSO): the J = 4 level
    // at 6718.46 cm^-1 above the ground is 3F4 with about a third of 1G4: flagged;
    // the J = 2 level at 16812.60 is 1D2 with under 10 % of 3P2: not flagged.
    const auto levelNear = [&](int twiceJ, double above) {
        return std::find_if(fi.levels.begin(), fi.levels.end(), [&](const ResultLevel& level) {
            return level.twiceJ == twiceJ && std::abs(level.energy - fi.levels[0].energy - above) < 1.0;
        });
    };
    const auto mixed = levelNear(8, 6718.46);
    ASSERT_NE(mixed, fi.levels.end());
    EXPECT_EQ(mixed->label, "3F4");
    EXPECT_TRUE(mixed->mixed);
    EXPECT_GT(mixed->multiplets[1].weight, 0.25);
    const auto pure = levelNear(4, 16812.60);
    ASSERT_NE(pure, fi.levels.end());
    EXPECT_EQ(pure->label, "1D2");
    EXPECT_FALSE(pure->mixed);
    const auto general = readTextFile(dir / "Pr_fi.gen");
    EXPECT_NE(general.find(">10%"), std::string::npos);
}

// f12 through the conjugate f2 tables: Hund's rule ground level 3H6 (zeta
// changes sign), and the same labels and energies in the actual shell up to one constant.
TEST(RunDriver, ThuliumLabelsOnTheConjugateRoute) {
    const auto dir = test::scratchDirectory("run_tm_labels");
    auto set = test::praseodymiumLaF3(false);
    set.title = "Tm3+ typical magnitudes";
    set.electronCount = 12;
    set.mainFreeIon[4] = test::row("ZETA", 2630);
    set.otherFreeIon.clear();
    set.switches = {};
    const auto file = test::writeSet(dir, "Tm.par", set);
    TestRun conjugate, actual;
    const auto viaF2 = runEngine(2, file, {}, conjugate.environment);
    RunRequest request;
    request.optionText = "/actualshell";
    const auto inF12 = runEngine(2, file, request, actual.environment);
    EXPECT_TRUE(conjugate.log.contains("Conjugate configuration of 2 used for reduced matrices & states!"));
    ASSERT_EQ(viaF2.levels.size(), 13u);
    ASSERT_EQ(inF12.levels.size(), 13u);
    EXPECT_EQ(viaF2.levels.front().label, "3H6");
    for (std::size_t i = 0; i < 13; ++i) {
        EXPECT_EQ(viaF2.levels[i].label, inF12.levels[i].label) << i;
        EXPECT_NEAR(viaF2.levels[i].energy - viaF2.levels[0].energy, inF12.levels[i].energy - inF12.levels[0].energy,
                    1e-6);
    }
}

TEST(RunDriver, InteractivePromptsInOrderAndNonNumericKeepsTheDefault) {
    const auto dir = test::scratchDirectory("run_prompts");
    TestRun run;
    run.settings.write(kSettingsSection, kInteractivePromptKey, "1");
    run.asker.addAnswer("0.01");
    run.asker.addAnswer("many");  // not a number: 0 vectors kept
    run.asker.addAnswer("100");
    const auto outcome = runEngine(2, test::writeSet(dir, "Pr.par", test::praseodymiumLaF3()), {}, run.environment);
    ASSERT_EQ(run.asker.questions().size(), 3u);
    EXPECT_EQ(run.asker.questions()[0].prompt, "min. value of eigenstate to be processed is ");
    EXPECT_EQ(run.asker.questions()[0].defaultAnswer, "0.002");
    EXPECT_EQ(run.asker.questions()[1].prompt, "Give the no. of eigenvectors to be stored (0 by default) >");
    EXPECT_EQ(run.asker.questions()[2].prompt, "Give the shift in calculated energies (0 by default) >");
    EXPECT_EQ(outcome.request.minComponent, "0.01");
    EXPECT_EQ(outcome.request.eigenvectorsToStore, 0);
    EXPECT_DOUBLE_EQ(outcome.request.energyShift, 100.0);
    EXPECT_TRUE(run.log.contains("min. value of eigenstate to be processed is 0.01"));
    EXPECT_NEAR(readEnergyFile(dir / "Pr_fi.eng").levels.front().energy, outcome.levels.front().energy + 100.0, 2e-6);
    // Components below 0.01 are not stored.
    for (const auto& vector : readStateVectorFile(dir / "Pr_fi.ev").vectors)
        for (const auto& component : vector.components) EXPECT_GE(std::abs(component.coefficient), 0.01);
}

TEST(RunDriver, RunCounterGrowsAndStopsTheDisplayAtTen) {
    const auto dir = test::scratchDirectory("run_counter");
    const auto file = test::writeSet(dir, "Pr.par", test::praseodymiumLaF3(false));
    TestRun run;
    run.settings.write(kSettingsSection, kRunCounterKey, "9");
    EXPECT_TRUE(runEngine(2, file, {}, run.environment).showGeneralOutput);
    EXPECT_EQ(run.settings.readInt(kSettingsSection, kRunCounterKey, -1), 10);
    EXPECT_FALSE(runEngine(2, file, {}, run.environment).showGeneralOutput);
    EXPECT_EQ(run.settings.readInt(kSettingsSection, kRunCounterKey, -1), 11);
}

TEST(RunDriver, FailedRunLeavesNoResultFile) {
    const auto dir = test::scratchDirectory("run_failure");
    auto set = test::praseodymiumLaF3();
    set.crystalField.push_back(test::bkq(2, 1, 50));  // q = 1 couples the blocks of the fold 2
    const auto file = test::writeSet(dir, "Pr.par", set);
    {
        TestRun run;
        try {
            runEngine(0, file, {}, run.environment);
            FAIL() << "the run should fail";
        } catch (const UserError& error) {
            EXPECT_EQ(error.title(), "Error in CF Hamiltonian");
        }
        EXPECT_TRUE(run.log.contains("General output to "));  // the general output had been begun
        EXPECT_EQ(filesIn(dir), std::vector<std::string>{"Pr.par"});
    }
    // An older result file stays as it was.
    writeFileAtomically(dir / "Pr.gen", "old general output\n");
    TestRun again;
    EXPECT_THROW(runEngine(0, file, {}, again.environment), UserError);
    EXPECT_EQ(readTextFile(dir / "Pr.gen"), "old general output\n");
    EXPECT_EQ(filesIn(dir), (std::vector<std::string>{"Pr.gen", "Pr.par"}));
}

TEST(RunDriver, EnergiesThatCannotBeStoredReplaceNoResultFile) {
    const auto dir = test::scratchDirectory("run_store_failure");
    const auto file = test::writeSet(dir, "Pr.par", test::praseodymiumLaF3(false));
    std::filesystem::create_directories(dir / "Pr_fi.eng" / "occupied");  // a folder where the file should go
    TestRun run;
    try {
        runEngine(5, file, {}, run.environment);
        FAIL() << "storing the energies should fail";
    } catch (const UserError& error) {
        EXPECT_EQ(error.title(), "Error in storing up energies");
    }
    EXPECT_EQ(filesIn(dir), (std::vector<std::string>{"Pr.par", "Pr_fi.eng"}));
}

TEST(RunDriver, ReadingErrorsAndBadRequestsAreErrorsInMain) {
    const auto dir = test::scratchDirectory("run_bad_input");
    std::ofstream(dir / "bad.par") << "\"Input parameters for Orvane - Spectroscopic Analysis Package (version #2)\"\n"
                                   << "\"x\"\n\"y\"\nElectrostatic ineraction parameters  type = 7\n";
    TestRun run;
    try {
        runEngine(0, dir / "bad.par", {}, run.environment);
        FAIL() << "a Slater type of 7 must be refused";
    } catch (const UserError& error) {
        EXPECT_EQ(error.title(), "Error in Main");
    }
    RunRequest request;
    request.minComponent = "1";
    EXPECT_THROW(runEngine(0, test::writeSet(dir, "Pr.par", test::praseodymiumLaF3()), request, run.environment),
                 UserError);
    EXPECT_EQ(filesIn(dir), (std::vector<std::string>{"Pr.par", "bad.par"}));
    // "/opimkpk" is refused at the option line of the file, or as a run option.
    ParameterSet alternative = test::praseodymiumLaF3();
    alternative.switches.opimkpk = true;
    const auto alternativeFile = test::writeSet(dir, "Mk.par", alternative);
    const std::string refusal = "/opimkpk (alternative magnetic operator set) is not supported";
    try {
        runEngine(0, alternativeFile, {}, run.environment);
        FAIL() << "/opimkpk must be refused";
    } catch (const UserError& error) {
        std::ifstream in(alternativeFile);
        int line = 0;
        for (std::string text; std::getline(in, text) && text.find("/opimkpk") == std::string::npos;) ++line;
        EXPECT_EQ(error.describe(), alternativeFile.string() + ":" + std::to_string(line + 1) + ": " + refusal);
    }
    RunRequest alternativeRequest;
    alternativeRequest.optionText = "/opimkpk";
    try {
        runEngine(0, dir / "Pr.par", alternativeRequest, run.environment);
        FAIL() << "/opimkpk given as a run option must be refused";
    } catch (const UserError& error) {
        EXPECT_EQ(error.describe(), refusal);
    }
    // No file and no answer to the file question.
    EXPECT_THROW(runEngine(0, "", {}, run.environment), UserError);
    ASSERT_FALSE(run.asker.questions().empty());
    EXPECT_EQ(run.asker.questions().back().title, "File for Free-in and Crystal Field Parameters ");
}

TEST(RunDriver, UnavailableTablesAskForTheirFolder) {
    const auto dir = test::scratchDirectory("run_tables");
    const auto file = test::writeSet(dir, "Pr.par", test::praseodymiumLaF3(false));
    // Neither the table "directory" (a plain file) nor the cache can be written.
    std::ofstream(dir / "not-a-directory") << "x\n";
    const char* oldCache = std::getenv("XDG_CACHE_HOME");
    const std::string savedCache = oldCache ? oldCache : "";
    ::setenv("XDG_CACHE_HOME", (dir / "not-a-directory").c_str(), 1);
    TestRun run;
    run.environment.tableDirectory = dir / "not-a-directory" / "rme";
    run.asker.addAnswer(test::engineTableDirectory().string());
    const auto outcome = runEngine(2, file, {}, run.environment);
    TestRun refused;
    refused.environment.tableDirectory = dir / "not-a-directory" / "rme";
    try {
        runEngine(2, file, {}, refused.environment);
        ADD_FAILURE() << "no tables and no answer must fail";
    } catch (const UserError& error) {
        EXPECT_EQ(error.title(), "Error in real CF main program");
    }
    if (oldCache) ::setenv("XDG_CACHE_HOME", savedCache.c_str(), 1); else ::unsetenv("XDG_CACHE_HOME");
    ASSERT_EQ(run.asker.questions().size(), 1u);
    EXPECT_EQ(run.asker.questions()[0].prompt, "GIVE FILE NAME FOR U(6) RME from ");
    EXPECT_EQ(outcome.levels.size(), 13u);
}

}  // namespace
}  // namespace orvane
