// Atomic result files (an abandoned write leaves the old content), the
// comparison with observed energies and the state-vector questions.
#include <gtest/gtest.h>

#include <cmath>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "engine/experiment_comparison.hpp"
#include "interactive/property_dialogs.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

TEST(AtomicFile, CommitReplacesAndAbandonLeavesOldContent) {
    const auto dir = test::scratchDirectory("atomic");
    const auto path = dir / "Er.eng";
    writeFileAtomically(path, "old\n");
    {
        AtomicFileWriter writer(path);
        writer.stream() << "half-written";
        // destroyed without commit: a failed run
    }
    EXPECT_EQ(readTextFile(path), "old\n");
    {
        AtomicFileWriter writer(path);
        writer.stream() << "new\n";
        writer.commit();
    }
    EXPECT_EQ(readTextFile(path), "new\n");
    // No temporary file is left behind.
    int files = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(dir)) ++files;
    EXPECT_EQ(files, 1);
}

TEST(ExperimentComparison, PairsObservedWithCalculatedByPosition) {
    // observed - calculated: 0 and +7; the third observed energy has no level.
    const auto comparison = compareWithExperiment({0.0, 57.0, 200.5}, {0.0, 50.0});
    ASSERT_EQ(comparison.rows.size(), 2u);
    EXPECT_DOUBLE_EQ(comparison.rows[1].difference, 7.0);
    EXPECT_DOUBLE_EQ(comparison.rmsDifference, std::sqrt(24.5));
    EXPECT_EQ(comparison.observedWithoutLevel, 1);
    try {
        parseExperimentBlock("EXPERIMENT\n1 x\n", "exp.txt");
        ADD_FAILURE() << "malformed experiment block";
    } catch (const UserError& error) {
        ASSERT_TRUE(error.where().has_value());
        EXPECT_EQ(error.where()->line, 2);
        EXPECT_EQ(error.category(), ErrorCategory::ComparingEnergies);
    }
}

// The state-vector questions: defaults, the 0 substitutes, an omitted lower
// limit, and an unusable answer asked again.
TEST(PropertyDialogs, AnswersBecomeRequests) {
    ScriptedAsker asker({"", "0 10 2", "5 1", "1 5", "3 10", "3 2 10", "3 0 10", "3 x", "0", "40 2 3"});
    const auto smart = askSusceptibilityTemperatures(asker);
    EXPECT_TRUE(smart && smart->lower == 0.001 && smart->upper == 300 && !smart->step);
    const auto stepped = askSusceptibilityTemperatures(asker);
    EXPECT_TRUE(stepped && stepped->lower == 0.01 && stepped->step == 2.0);
    const auto retried = askSusceptibilityTemperatures(asker);  // "5 1" refused, "1 5" taken
    EXPECT_TRUE(retried && retried->lower == 1 && retried->upper == 5);
    EXPECT_EQ(asker.messages().size(), 1u);
    const auto omitted = askStateRange(asker, 20), given = askStateRange(asker, 20);
    EXPECT_TRUE(omitted && omitted->initial == 3 && omitted->first == 1 && omitted->last == 10);
    EXPECT_TRUE(given && given->first == 2);
    EXPECT_FALSE(askStateRange(asker, 20));  // two refused answers, then "0" refused and "40 2 3" refused, input ends
    EXPECT_EQ(asker.messages().size(), 5u);
}

}  // namespace
}  // namespace orvane
