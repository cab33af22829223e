// Generated tables against the published cross tables of f^1..f^14, up to one
// sign per term and a rotation inside each repeated pair.
#include <gtest/gtest.h>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "tables/table_comparison.hpp"
#include "tests/support/reference_data.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

TEST(PublishedComparison, EveryConfigurationAgreesUpToPhases) {
    ORVANE_REQUIRE_REFERENCE(reference);
    Eigen::MatrixXd previous = Eigen::MatrixXd::Identity(1, 1);
    for (int n = 1; n <= 14; ++n) {
        const auto file = reference / "fncross" / ("f" + std::to_string(n) + "cross");
        PublishedTables published;
        try {
            published = parsePublishedTables(readTextFile(file), file.string());
        } catch (const UserError& error) {
            FAIL() << error.describe();
        }
        const auto comparison = compareConfiguration(test::allConfigurationTables()[n], published, previous);
        for (const auto& line : comparisonReportLines(comparison))
            if (line.find("published error") != std::string::npos || line.find("mismatch  f") != std::string::npos ||
                line[0] != ' ')
                std::cout << line << '\n';
        EXPECT_TRUE(comparison.termsAgree) << "f" << n;
        EXPECT_TRUE(comparison.mismatches.empty()) << "f" << n << ": " << comparison.mismatches.size();
        previous = comparison.transformation;
    }
}

PublishedTables publishedF3(const std::filesystem::path& reference) {
    const auto file = reference / "fncross" / "f3cross";
    return parsePublishedTables(readTextFile(file), file.string());
}

TEST(PublishedComparison, PerTermSignsAreConventionsButSingleSignsAreFaults) {
    ORVANE_REQUIRE_REFERENCE(reference);
    Eigen::MatrixXd f2Transformation;
    {
        const auto file = reference / "fncross" / "f2cross";
        const auto f2 = parsePublishedTables(readTextFile(file), file.string());
        f2Transformation = compareConfiguration(test::allConfigurationTables()[2], f2, Eigen::MatrixXd::Identity(1, 1))
                               .transformation;
    }
    const auto& generated = test::allConfigurationTables()[3];
    // Flipping the phase of term 2 (4D) in every published table is invisible.
    auto rephased = publishedF3(reference);
    rephased.cfp.row(1) *= -1.0;
    for (auto* tables : {&rephased.unitTensor, &rephased.doubleTensor})
        for (auto& m : *tables) {
            m.row(1) *= -1.0;
            m.col(1) *= -1.0;
        }
    EXPECT_TRUE(compareConfiguration(generated, rephased, f2Transformation).mismatches.empty());
    // One wrong sign of a single coefficient is a fault (f3 2D1 <- 3P).
    auto broken = publishedF3(reference);
    int parent = 0;
    while (broken.cfp(6, parent) == 0.0) ++parent;
    broken.cfp(6, parent) *= -1.0;
    const auto comparison = compareConfiguration(generated, broken, f2Transformation);
    EXPECT_FALSE(comparison.mismatches.empty());
    EXPECT_EQ(comparisonReportLines(comparison)[0].rfind("Some mismatch found in f3", 0), 0u);
}

}  // namespace
}  // namespace orvane
