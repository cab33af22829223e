// The comparison with observed energies.
#include <gtest/gtest.h>

#include <cmath>

#include "core/user_error.hpp"
#include "engine/experiment_comparison.hpp"

namespace orvane {
namespace {

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
