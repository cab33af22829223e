#pragma once
// The generated configurations f^0..f^7, built once per test program.
#include <vector>

#include "tables/term_generator.hpp"

namespace orvane::test {

inline const std::vector<GeneratedConfiguration>& generatedConfigurations() {
    static const std::vector<GeneratedConfiguration> all = generateConfigurations(7);
    return all;
}

}  // namespace orvane::test
