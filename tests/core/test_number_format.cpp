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

const PictureCase kPictureCases[] = {
    {3.14159, "######0.0000", "      3.1416", "pad and round down"},
    {1234.56785, "######0.0000", "   1234.5679", "round half up at the 5th decimal"},
    {12345678.5, "######0.0000", "12345678.5000", "wider than picture printed in full"},
    {-0.00004, "######0.0000", "      0.0000", "-0 after rounding has no minus"},
    {-0.00005, "######0.0000", "     -0.0001", "half away from zero, negative"},
    {-0.5, "#0.000000", "-0.500000", "minus in the tens blank"},
    {0.9999996, "#0.000000", " 1.000000", "carry into the integer part"},
    {999.99995, "##0.0000", "1000.0000", "carry widens past the picture"},
    {2.675, "###0.00", "   2.68", "decimal rounding of 2.675 (15 digits first)"},
    {0.5, "#0.#####", " 0.5", "trailing optional zeros vanish"},
    {2.0, "#0.######", " 2", "no fraction left: point vanishes"},
    {-0.25, "#0.0000000 ", "-0.2500000 ", "literal trailing blank kept"},
    // sections " #0;-#0": projection labels
    {-2.0, " #0;-#0", "-2", "negative section keeps its sign next to digits"},
    {-0.4, " #0;-#0", "  0", "negative rounding to zero uses positive section"},
    {-2.5, " #0;-#0", "-3", "half away from zero in negative section"},
    {1.255, "###0.0#", "   1.26", "round second decimal"},
    {-1.0, "###0.0#", "  -1.0", "forced first decimal"},
    // picture without '#' before the point and without a point
    {0.123, "#.##", " .12", "no forced integer digit"},
    {-42.0, "0000", "-0042", "forced zeros"},
    // scientific "0.0000e+##"
    {-0.000123456, "0.0000e+##", "-1.2346e-04", "negative value and exponent"},
    {9.99996, "0.0000e+##", "1.0000e+01", "carry bumps the exponent"},
    {1.5e-123, "0.0000e+##", "1.5000e-123", "exponent wider than placeholders"},
    {2.5e3, "0.00E-00", "2.50E03", "'E-' prints no plus"},
};

TEST(PictureFormat, MatchesHandWorkedText) {
    for (const PictureCase& c : kPictureCases)
        EXPECT_EQ(formatNumber(c.value, c.picture), c.expected)
            << c.what << ": value " << c.value << " picture \"" << c.picture << "\"";
}

struct GeneralCase {
    double value;
    const char* expected;
};

// Classic Str$ results, worked from its rules: leading blank for non-negative,
// no zero before the point, no trailing zeros, 15 significant digits, E form
// below 1e-5 and from 1e15.
const GeneralCase kGeneralCases[] = {
    {1.0, " 1"},
    {-0.5, "-.5"},
    {123.456, " 123.456"},
    {0.1 + 0.2, " .3"},                 // 15 significant digits hide the binary error
    {1.0 / 3.0, " .333333333333333"},   // 15 digits
    {1e-5, " .00001"},                  // last value in fixed form
    {1.2e-6, " 1.2E-06"},
    {1e15, " 1E+15"},
    {999999999999999.0, " 999999999999999"},
    {-1234567.125, "-1234567.125"},
};

TEST(GeneralNumber, MatchesStrForm) {
    for (const GeneralCase& c : kGeneralCases) EXPECT_EQ(generalNumber(c.value), c.expected) << c.value;
}

TEST(TwiceJ, HalfIntegersAsFractionIntegersPlain) {
    EXPECT_EQ(formatTwiceJ(7), "7/2");   // J = 3.5
    EXPECT_EQ(formatTwiceJ(6), "3");     // J = 3
    EXPECT_EQ(formatTwiceJ(1), "1/2");
    EXPECT_EQ(formatTwiceJ(-3), "-3/2");  // projections may be negative
}

}  // namespace
}  // namespace orvane
