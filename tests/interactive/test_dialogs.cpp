// The dialogs driven by scripted answers: the values the calculators print,
// the run's questions, a table file asked for again, the R0 = 0 question of
// the superposition model and the comparison with observed energies.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

#include "core/number_format.hpp"
#include "core/user_error.hpp"
#include "engine/experiment_comparison.hpp"
#include "interactive/calculators.hpp"
#include "interactive/parameter_dialogs.hpp"
#include "interactive/run_dialogs.hpp"
#include "interactive/superposition_dialogs.hpp"
#include "interactive/table_file_prompts.hpp"
#include "report/energy_file.hpp"
#include "tests/report/run_support.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

// Values: {3 3 2; 3 3 2} = 19/420, {5 5 1; 1 1 4} = -1/sqrt(55), {2 2 2; 2 2 2; 2 2 2} = 41/2450
// (Rotenberg, Bivins, Metropolis & Wooten, The 3-j and 6-j Symbols (1959));
// (1 1 0; 1 -1 0) = 1/sqrt(3); <f||C(2)||f> = -2 sqrt(7/15) in the phase of docs/conventions.md.
TEST(Calculators, PrintTheSymbolAndItsValue) {
    struct Case {
        void (*run)(Asker&, LogBook&);
        const char* answer;
        std::string line;
    };
    const Case cases[] = {
        {runThreeJCalculator, "1 1 0 1 -1 0", "3j(1 1 0 / 1 -1 0) = " + generalNumber(1 / std::sqrt(3.0))},
        {runThreeJCalculator, "1,1;0, 1 -1 0", "3j(1 1 0 / 1 -1 0) = " + generalNumber(1 / std::sqrt(3.0))},
        {runSixJCalculator, "3 3 2 3 3 2", "6j{3 3 2 / 3 3 2} = " + generalNumber(19.0 / 420.0)},
        {runSixJCalculator, "5 5 1 1 1 4", "6j{5 5 1 / 1 1 4} = " + generalNumber(-1 / std::sqrt(55.0))},
        {runNineJCalculator, "2 2 2 2 2 2 2 2 2", "9j{2 2 2 / 2 2 2 / 2 2 2} = " + generalNumber(41.0 / 2450.0)},
        {runReducedCkCalculator, "3 2 3", "RME <L||C(k)|L'>(3 2 3) = " + generalNumber(-2 * std::sqrt(7.0 / 15.0))},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.answer);
        ScriptedAsker asker({c.answer, ""});
        MemoryLogBook log;
        c.run(asker, log);
        ASSERT_EQ(log.lines().size(), 1u);
        EXPECT_EQ(log.lines()[0], c.line);
    }
    // d(5/2)_{-5/2,m'}(90 deg) = sqrt(C(5, J+m')) / 2^(5/2): .176777, .395285, .559017, ...
    ScriptedAsker asker({"5/2 90", ""});
    MemoryLogBook log;
    runRotationMatrixCalculator(asker, log);
    ASSERT_GE(log.lines().size(), 3u);
    EXPECT_EQ(log.lines()[2], " m=-5/2\t 0.176777\t 0.395285\t 0.559017\t 0.559017\t 0.395285\t 0.176777");
}

TEST(RunDialogs, AskedInputsReachTheRunAndBadAnswersKeepTheDefaults) {
    const auto dir = test::scratchDirectory("run_prompts");
    MemoryLogBook log;
    MemorySettingsStore settings;
    settings.write(kSettingsSection, kInteractivePromptKey, "1");
    ScriptedAsker asker({test::writeSet(dir, "Pr.par", test::praseodymiumLaF3()).string(), "0.01", "many", "100"});
    InteractiveRunEnvironment environment{log, asker, settings, test::engineTableDirectory()};
    const auto outcome = runEngineAsking(2, "", {}, environment);
    EXPECT_EQ(asker.questions().size(), 4u);
    EXPECT_EQ(outcome.request.minComponent, "0.01");
    EXPECT_EQ(outcome.request.eigenvectorsToStore, 0);  // "many" is not a number
    EXPECT_DOUBLE_EQ(outcome.request.energyShift, 100.0);
    EXPECT_NEAR(readEnergyFile(dir / "Pr_fi.eng").levels.front().energy, outcome.levels.front().energy + 100.0, 2e-6);
    // No answer to the file question: an error in Main.
    ScriptedAsker silent;
    InteractiveRunEnvironment nothing{log, silent, settings, test::engineTableDirectory()};
    try {
        runEngineAsking(0, "", {}, nothing);
        ADD_FAILURE() << "a run without a parameter file";
    } catch (const UserError& error) {
        EXPECT_EQ(error.category(), ErrorCategory::Main);
    }
}

TEST(TableFilePrompts, MissingFileIsAskedForUntilCancelled) {
    const auto dir = test::scratchDirectory("cfp_prompt");
    ScriptedAsker asker({(dir / "also-missing").string()});
    try {
        ReadFractionalParentage(3, dir / "f3cfp.val", asker);
        ADD_FAILURE() << "no file was readable";
    } catch (const UserError& error) {
        EXPECT_EQ(error.category(), ErrorCategory::ReadingParentage);
        EXPECT_NE(std::string(error.what()).find("f3cfp.val"), std::string::npos) << error.what();
    }
    EXPECT_EQ(asker.questions().size(), 2u);
    EXPECT_EQ(asker.questions()[0].prompt, "GIVE FILE NAME FOR CFP from ");
}

// One ligand at R = 2.5 on the z axis and R0 = 0: Abort (or a closed dialog)
// ends, Ignore goes on with R0 = 0, Retry asks R0 again.
TEST(SuperpositionDialogs, ZeroReferenceDistance) {
    struct Case {
        const char* name;
        std::vector<Choice> choices;
        std::vector<std::string> answers;
        bool goesOn;
        double r0;
    };
    const Case cases[] = {
        {"Abort", {Choice::Abort}, {}, false, 0.0},
        {"closed", {}, {}, false, 0.0},
        {"Ignore", {Choice::Ignore}, {}, true, 0.0},
        {"Retry", {Choice::Retry}, {"two", "-1", "2.5"}, true, 2.5},
        {"Retry 0, Abort", {Choice::Retry, Choice::Abort}, {"0"}, false, 0.0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        params::SuperpositionParameters p;
        p.r0 = 0.0;
        p.bk = {400.0, 300.0, 200.0};
        p.tk = {7.0, 10.0, 12.0};
        ScriptedAsker asker(c.answers, c.choices);
        const auto result = params::confirmReferenceDistance(p, asker);
        ASSERT_EQ(result.has_value(), c.goesOn);
        if (result) {
            EXPECT_EQ(result->r0, c.r0);
        }
    }
}

TEST(ExperimentComparison, PairsObservedWithCalculatedByPosition) {
    const auto dir = test::scratchDirectory("experiment_dialog");
    std::ofstream(dir / "published.txt") << "FOR F2\nEXPERIMENT\n0 ,57\n  200.5\nEND\n";
    std::ofstream(dir / "calc.eng") << "title\n1 0.0\n2 50.0\n";
    ScriptedAsker asker({(dir / "published.txt").string(), (dir / "calc.eng").string()});
    MemoryLogBook log;
    ASSERT_TRUE(compareExperimentAsking(asker, log));
    EXPECT_TRUE(log.contains("2 pairs, rms of Exp.-Calc. = "));
    // observed - calculated: 0 and +7; the third observed energy has no level.
    const auto comparison = compareWithExperiment({0.0, 57.0, 200.5}, {0.0, 50.0});
    ASSERT_EQ(comparison.rows.size(), 2u);
    EXPECT_DOUBLE_EQ(comparison.rows[1].difference, 7.0);
    EXPECT_DOUBLE_EQ(comparison.rmsDifference, std::sqrt(24.5));
    EXPECT_EQ(comparison.observedWithoutLevel, 1);
    struct Bad {
        const char* text;
        int line;
    };
    for (const Bad& bad : {Bad{"EXPERIMENT\n1 x\n", 2}, Bad{"x\nEXPERIMENT\nEND\n", 2}}) {
        try {
            parseExperimentBlock(bad.text, "exp.txt");
            ADD_FAILURE() << bad.text;
        } catch (const UserError& error) {
            ASSERT_TRUE(error.where().has_value()) << bad.text;
            EXPECT_EQ(error.where()->line, bad.line) << bad.text;
            EXPECT_EQ(error.category(), ErrorCategory::ComparingEnergies);
        }
    }
}

}  // namespace
}  // namespace orvane
