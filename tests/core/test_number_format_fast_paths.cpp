// The fast column formatters against the general ones: appendNumber must print
// exactly what formatNumber prints, appendFixed exactly what printf's "%.*f"
// prints, including values at and near a rounding half.
#include <gtest/gtest.h>

#include <random>

#include <fmt/format.h>

#include "core/number_format.hpp"

namespace orvane {
namespace {

std::vector<double> sampleValues() {
    std::vector<double> values = {0.0, -0.0, 2.675, -2.675, 0.5, -0.5, 1e-8, -1e-8, 0.0000005, -0.0000005,
                                  0.9999995, 1234.56785, 99.99999999, -1e6, 123456789.0, 1e12, -3.5e15};
    std::mt19937_64 random(20261123);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    for (int i = 0; i < 4000; ++i) {
        const double scale = std::pow(10.0, static_cast<int>(random() % 12) - 4);
        values.push_back(unit(random) * scale);
        values.push_back(std::round(unit(random) * 2e6) / 2e6 * scale);  // exact halves of some decimal place
    }
    return values;
}

TEST(ColumnFormatters, AgreeWithTheGeneralFormatters) {
    const auto values = sampleValues();
    for (const std::string picture : {"#0.000000 ", "######0.0000", " ##0.00", "00.000", "#0.0000000000", "0.0#", "#0"})
        for (double value : values) {
            std::string fast = "x";
            appendNumber(fast, value, picture);
            ASSERT_EQ(fast, "x" + formatNumber(value, picture)) << value << " with \"" << picture << '"';
        }
    for (int decimals : {0, 4, 6, 10})
        for (double value : values) {
            std::string fast;
            appendFixed(fast, value, decimals);
            ASSERT_EQ(fast, fmt::format("{:.{}f}", value, decimals)) << value << " with " << decimals;
        }
}

}  // namespace
}  // namespace orvane
