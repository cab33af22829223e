// Atomic result files (an abandoned write leaves the old content) and the
// comparison with observed energies.
#include <gtest/gtest.h>

#include <cmath>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "engine/experiment_comparison.hpp"
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

}  // namespace
}  // namespace orvane
