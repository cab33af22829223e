// Reading of user answers and of values in text files.
#include <gtest/gtest.h>

#include <limits>

#include "core/text.hpp"

namespace orvane {
namespace {

TEST(AnswerFields, CommasAndSemicolonsCountAsBlanks) {
    const std::vector<std::string> expected{"1", "2.5", "-3", "4"};
    EXPECT_EQ(splitAnswerFields("1,2.5;-3 4"), expected);
    EXPECT_EQ(splitAnswerFields("  1 ,, 2.5 ;; -3\t4  "), expected);
    EXPECT_TRUE(splitAnswerFields("").empty());
    EXPECT_TRUE(splitAnswerFields(" , ; ").empty());
}

TEST(ParseNumber, AcceptsDecimalNotationOnly) {
    struct Case { const char* text; std::optional<double> value; };
    const Case cases[] = {{"-2", -2.0}, {"+3e2", 300.0}, {"-.25", -0.25}, {" 7 ", 7.0},  {"", std::nullopt},
                          {"-", std::nullopt}, {"1.5x", std::nullopt}, {"nan", std::nullopt}, {"inf", std::nullopt},
                          {"0x10", std::nullopt}, {"1e400", std::nullopt}, {"1,5", std::nullopt}};
    for (const auto& c : cases) EXPECT_EQ(parseNumber(c.text), c.value) << c.text;
}

TEST(ParseInteger, RefusesFractionsAndOverflow) {
    EXPECT_EQ(parseInteger("12"), 12);
    EXPECT_EQ(parseInteger(" -3 "), -3);
    EXPECT_EQ(parseInteger("+4"), 4);
    EXPECT_EQ(parseInteger("1.0"), std::nullopt);
    EXPECT_EQ(parseInteger("99999999999"), std::nullopt);
    EXPECT_EQ(parseInteger(""), std::nullopt);
}

TEST(LeadingNumber, ReadsThePrefixLikeVal) {
    std::size_t used = 0;
    EXPECT_DOUBLE_EQ(*leadingNumber("123.4(5)", &used), 123.4);
    EXPECT_EQ(used, 5u);
    EXPECT_DOUBLE_EQ(*leadingNumber("0.56M0", &used), 0.56);
    EXPECT_EQ(used, 4u);
    EXPECT_DOUBLE_EQ(*leadingNumber("  -2.5e3 cm"), -2500.0);
    EXPECT_DOUBLE_EQ(*leadingNumber("2e"), 2.0);  // an exponent without digits is not part of it
    EXPECT_DOUBLE_EQ(*leadingNumber("abc", &used), 0.0);
    EXPECT_EQ(used, 0u);
    EXPECT_DOUBLE_EQ(*leadingNumber("1e-999"), 0.0);  // underflow reads as zero
    EXPECT_EQ(leadingNumber("1e999"), std::nullopt);  // overflow is refused
}

}  // namespace
}  // namespace orvane
