// Picture formats and the general number form, checked against values worked
// out by hand from the rules of classic BASIC's Format and Str$ (rounding half
// away from zero, '#' padding, '0' forced digits, sections, E notation).
#include "core/number_format.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace orvane {
namespace {

struct PictureCase {
    double value;
    const char* picture;
    const char* expected;
    const char* what;  // which rule the row exercises
};

class PictureFormat : public ::testing::TestWithParam<PictureCase> {};

TEST_P(PictureFormat, MatchesHandWorkedText) {
    const PictureCase& c = GetParam();
    EXPECT_EQ(formatNumber(c.value, c.picture), c.expected)
        << c.what << ": value " << c.value << " picture \"" << c.picture << "\"";
}

const PictureCase kPictureCases[] = {
    // "######0.0000": energies
    {3.14159, "######0.0000", "      3.1416", "pad and round down"},
    {1234.56785, "######0.0000", "   1234.5679", "round half up at the 5th decimal"},
    {-3.14159, "######0.0000", "     -3.1416", "minus takes a padding blank"},
    {12345678.5, "######0.0000", "12345678.5000", "wider than picture printed in full"},
    {-0.00004, "######0.0000", "      0.0000", "-0 after rounding has no minus"},
    {0.00005, "######0.0000", "      0.0001", "half away from zero"},
    {-0.00005, "######0.0000", "     -0.0001", "half away from zero, negative"},
    // "#0.000000": vector coefficients
    {0.5, "#0.000000", " 0.500000", "zero forced"},
    {-0.5, "#0.000000", "-0.500000", "minus in the tens blank"},
    {-0.0000004, "#0.000000", " 0.000000", "rounds to zero, no minus"},
    {0.9999996, "#0.000000", " 1.000000", "carry into the integer part"},
    {-12.25, "#0.000000", "-12.250000", "negative two-digit integer widens by the sign"},
    {123.0, "#0.000000", "123.000000", "overflow of integer places"},
    // "##0.0000"
    {-7.0, "##0.0000", " -7.0000", "minus next to digit"},
    {999.99995, "##0.0000", "1000.0000", "carry widens past the picture"},
    // "###0.00"
    {2.675, "###0.00", "   2.68", "decimal rounding of 2.675 (15 digits first)"},
    {1.005, "###0.00", "   1.01", "decimal rounding of 1.005"},
    {-0.004, "###0.00", "   0.00", "rounds to zero"},
    // "#0.#####" and "#0.######": optional fraction digits vanish
    {0.5, "#0.#####", " 0.5", "trailing optional zeros vanish"},
    {-0.123456, "#0.#####", "-0.12346", "rounding at the last optional digit"},
    {2.0, "#0.######", " 2", "no fraction left: point vanishes"},
    {-0.0000001, "#0.######", " 0", "negative rounds to zero"},
    {0.1234564, "#0.######", " 0.123456", "all optional digits used"},
    // "##0.0000000", "#0.0000000 " (trailing literal blank)
    {1.23456789, "##0.0000000", "  1.2345679", "seven decimals"},
    {-0.25, "#0.0000000 ", "-0.2500000 ", "literal trailing blank kept"},
    // sections " #0;-#0": projection labels
    {2.0, " #0;-#0", "  2", "positive section pads"},
    {-2.0, " #0;-#0", "-2", "negative section keeps its sign next to digits"},
    {-12.0, " #0;-#0", "-12", "two digits negative"},
    {0.0, " #0;-#0", "  0", "zero by positive section"},
    {-0.4, " #0;-#0", "  0", "negative rounding to zero uses positive section"},
    {1.5, " #0;-#0", "  2", "half away from zero"},
    {-2.5, " #0;-#0", "-3", "half away from zero in negative section"},
    {123.0, " #0;-#0", " 123", "overflow after literal"},
    // "###0.0#": value cells (one to two decimals)
    {1.5, "###0.0#", "   1.5", "one decimal kept"},
    {1.25, "###0.0#", "   1.25", "two decimals"},
    {1.255, "###0.0#", "   1.26", "round second decimal"},
    {-1.0, "###0.0#", "  -1.0", "forced first decimal"},
    {-1234.004, "###0.0#", "-1234.0", "full width and negative"},
    // "#####0.0####", "##0.0##", "######0.######", "####0.000000"
    {-123.456789, "#####0.0####", "  -123.45679", "optional digits rounded"},
    {45.0, "##0.0##", " 45.0", "only forced decimal"},
    {0.0005, "##0.0##", "  0.001", "round up into optional digit"},
    {-1234.5, "######0.######", "  -1234.5", "echo of a crystal-field value"},
    {1e-7, "######0.######", "      0", "rounds to zero with all optional"},
    {-3.0, "####0.000000", "   -3.000000", "six forced decimals"},
    // picture without '#' before the point and without a point
    {0.123, "#.##", " .12", "no forced integer digit"},
    {-0.123, "#.##", "-.12", "sign before the point"},
    {42.0, "####", "  42", "integer picture"},
    {-42.0, "0000", "-0042", "forced zeros"},
    // scientific "0.0000e+##"
    {12345.678, "0.0000e+##", "1.2346e+04", "positive exponent"},
    {-0.000123456, "0.0000e+##", "-1.2346e-04", "negative value and exponent"},
    {0.0, "0.0000e+##", "0.0000e+00", "zero"},
    {9.99996, "0.0000e+##", "1.0000e+01", "carry bumps the exponent"},
    {1.5e-123, "0.0000e+##", "1.5000e-123", "exponent wider than placeholders"},
    {2.5e3, "0.00E-00", "2.50E03", "'E-' prints no plus"},
};

INSTANTIATE_TEST_SUITE_P(Pictures, PictureFormat, ::testing::ValuesIn(kPictureCases));

TEST(PictureFormatSpecial, NonFiniteValuesAreNamed) {
    EXPECT_EQ(formatNumber(std::numeric_limits<double>::quiet_NaN(), "#0.00"), "NaN");
    EXPECT_EQ(formatNumber(std::numeric_limits<double>::infinity(), "#0.00"), "Inf");
    EXPECT_EQ(formatNumber(-std::numeric_limits<double>::infinity(), "#0.00"), "-Inf");
}

TEST(PictureFormatSpecial, HugeValuePrintedInFull) {
    const std::string text = formatNumber(1e20, "#0.0");
    EXPECT_EQ(text, "100000000000000000000.0");
}

struct GeneralCase {
    double value;
    const char* expected;
};

class GeneralNumber : public ::testing::TestWithParam<GeneralCase> {};

TEST_P(GeneralNumber, MatchesStrForm) {
    EXPECT_EQ(generalNumber(GetParam().value), GetParam().expected) << GetParam().value;
}

// Classic Str$ results, worked from its rules: leading blank for non-negative,
// no zero before the point, no trailing zeros, 15 significant digits, E form
// below 1e-5 and from 1e15.
const GeneralCase kGeneralCases[] = {
    {1.0, " 1"},
    {0.0, " 0"},
    {-0.5, "-.5"},
    {0.25, " .25"},
    {-0.25, "-.25"},
    {123.456, " 123.456"},
    {100.0, " 100"},
    {0.1 + 0.2, " .3"},                 // 15 significant digits hide the binary error
    {1.0 / 3.0, " .333333333333333"},   // 15 digits
    {1e-5, " .00001"},                  // last value in fixed form
    {1.2e-6, " 1.2E-06"},
    {-9.9e-6, "-9.9E-06"},
    {1e15, " 1E+15"},
    {1.5e15, " 1.5E+15"},
    {999999999999999.0, " 999999999999999"},
    {-1234567.125, "-1234567.125"},
    {1e100, " 1E+100"},
};

INSTANTIATE_TEST_SUITE_P(StrForm, GeneralNumber, ::testing::ValuesIn(kGeneralCases));

TEST(TwiceJ, HalfIntegersAsFractionIntegersPlain) {
    EXPECT_EQ(formatTwiceJ(7), "7/2");   // J = 3.5
    EXPECT_EQ(formatTwiceJ(6), "3");     // J = 3
    EXPECT_EQ(formatTwiceJ(0), "0");
    EXPECT_EQ(formatTwiceJ(1), "1/2");
    EXPECT_EQ(formatTwiceJ(-3), "-3/2");  // projections may be negative
    EXPECT_EQ(formatTwiceJ(-4), "-2");
}

TEST(DateAndTime, FixedWidthFields) {
    std::tm t{};
    t.tm_year = 2024 - 1900;
    t.tm_mon = 0;  // January
    t.tm_mday = 5;
    t.tm_hour = 7;
    t.tm_min = 3;
    t.tm_sec = 9;
    EXPECT_EQ(formatDate(t), "2024-01-05");
    EXPECT_EQ(formatTime(t), "07:03:09");
    const std::tm now = localNow();
    EXPECT_EQ(formatDate(now).size(), 10u);
    EXPECT_GE(now.tm_year + 1900, 2020);
}

}  // namespace
}  // namespace orvane
