#pragma once
// Every table of f^1..f^14 computed once per test program.
#include <vector>

#include "tables/table_builder.hpp"
#include "tests/tables/generated_configurations.hpp"

namespace orvane::test {

inline const std::vector<ConfigurationTables>& allConfigurationTables() {
    static const std::vector<ConfigurationTables> all = [] {
        std::vector<ConfigurationTables> tables(1);  // index 0 unused
        for (int n = 1; n <= 14; ++n) tables.push_back(computeConfigurationTables(n, generatedConfigurations()));
        return tables;
    }();
    return all;
}

}  // namespace orvane::test
