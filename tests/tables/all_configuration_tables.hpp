#pragma once
// The generated configurations f^0..f^7 and every table of f^1..f^14, computed
// once per test program, and the index of a term by its label.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tables/table_builder.hpp"
#include "tables/term_generator.hpp"

namespace orvane::test {

inline const std::vector<GeneratedConfiguration>& generatedConfigurations() {
    static const std::vector<GeneratedConfiguration> all = generateConfigurations(7);
    return all;
}

inline const std::vector<ConfigurationTables>& allConfigurationTables() {
    static const std::vector<ConfigurationTables> all = [] {
        std::vector<ConfigurationTables> tables(1);  // index 0 unused
        for (int n = 1; n <= 14; ++n) tables.push_back(computeConfigurationTables(n, generatedConfigurations()));
        return tables;
    }();
    return all;
}

// Index of the term labelled `label` in anything with a `terms` list (-1 and a failure if absent).
template <typename Configuration>
int termIndex(const Configuration& configuration, const std::string& label) {
    for (std::size_t i = 0; i < configuration.terms.size(); ++i)
        if (configuration.terms[i].label == label) return static_cast<int>(i);
    ADD_FAILURE() << "no term " << label;
    return -1;
}

}  // namespace orvane::test
