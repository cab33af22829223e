// The checks of one published table file: a generated table that does not
// match the published one is a mismatch (a wrong published sign: see
// tests/tables/test_published_comparison.cpp).
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "core/atomic_file.hpp"
#include "interactive/published_comparison_dialogs.hpp"
#include "tests/support/reference_data.hpp"
#include "tests/tables/all_configuration_tables.hpp"

namespace orvane {
namespace {

TEST(PublishedComparisonDialogs, GeneratorFaultInTheCoulombMatrixIsAMismatch) {
    ORVANE_REQUIRE_REFERENCE(reference);
    const auto read = [&](const char* name) {
        const auto file = reference / "fncross" / name;
        return parsePublishedTables(readTextFile(file), file.string());
    };
    const Eigen::MatrixXd f2Phases =
        compareConfiguration(test::allConfigurationTables()[2], read("f2cross"), Eigen::MatrixXd::Identity(1, 1))
            .transformation;
    // A generated f(4) off by 0.001 on the f3 4F diagonal: neither the published
    // element nor the published CFPs agree with it.
    ConfigurationTables faulty = test::allConfigurationTables()[3];
    faulty.coulomb[1](2, 2) += 1e-3;
    PublishedConfigurationResult result;
    result.file = reference / "fncross" / "f3cross";
    result.hasElectrostatic = true;
    result.tables = compareConfiguration(faulty, read("f3cross"), f2Phases);
    const auto lines = publishedCheckLines(result, PublishedCheck::Electrostatic, true);
    EXPECT_NE(std::find_if(lines.begin(), lines.end(),
                           [](const std::string& l) { return l.find("mismatch  f3 f(4) 4F 4F") != std::string::npos; }),
              lines.end());
    EXPECT_FALSE(publishedCheckAgrees(result, PublishedCheck::Electrostatic));
    EXPECT_TRUE(publishedCheckAgrees(result, PublishedCheck::UnitTensorsAndSpinOrbit));
}

}  // namespace
}  // namespace orvane
