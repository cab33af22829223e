// Named free-ion parameters: names, defaults and multiples of M0 and P2.
#include "engine/other_free_ion.hpp"

#include <gtest/gtest.h>

#include "core/user_error.hpp"

namespace orvane {
namespace {

FreeIonRow row(const char* name, const char* text) { return FreeIonRow{name, ParameterCell{text, 0}}; }

TEST(OtherFreeIon, NamesComparedInUpperCase) {
    EXPECT_EQ(otherFreeIonIndex("ALPHA"), 0u);
    EXPECT_EQ(otherFreeIonIndex("alpha"), 0u);
    EXPECT_EQ(otherFreeIonIndex("T2'"), 4u);
    EXPECT_EQ(otherFreeIonIndex("t2'"), 4u);
    EXPECT_EQ(otherFreeIonIndex("P6"), 15u);
    EXPECT_FALSE(otherFreeIonIndex("T5").has_value());
    EXPECT_FALSE(otherFreeIonIndex("ALPHA2").has_value());
    EXPECT_FALSE(otherFreeIonIndex("").has_value());
}

TEST(OtherFreeIon, DefaultsFollowM0AndP2) {
    struct Case {
        const char* what;
        std::vector<FreeIonRow> rows;
        const char* name;
        double expected;
    } cases[] = {
        {"no rows: ALPHA 0", {}, "ALPHA", 0.0},
        {"M2 blank with M0 = 1.0 gives 0.56", {row("M0", "1.0"), row("M2", "")}, "M2", 0.56},
        {"M2 absent", {row("M0", "2.0")}, "M2", 1.12},
        {"M4 absent: 0.38 M0", {row("M0", "2.0")}, "M4", 0.76},
        {"P4 absent: 0.75 P2", {row("P2", "200")}, "P4", 150.0},
        {"P6 absent: 0.5 P2", {row("P2", "200")}, "P6", 100.0},
        {"0.50P2 with P2 = 200 gives 100", {row("P2", "200"), row("P6", "0.50P2")}, "P6", 100.0},
        {"' 0.75P2' with leading blank", {row("P2", "-88.6"), row("P4", " 0.75P2")}, "P4", -66.45},
        {"0.5P2 lower case", {row("P2", "10"), row("P4", "0.5p2")}, "P4", 5.0},
        {"multiple before its base row", {row("M2", "0.5M0"), row("M0", "4")}, "M2", 2.0},
        {"plain number overrides default", {row("M0", "4"), row("M2", "3")}, "M2", 3.0},
        {"later row replaces earlier", {row("ALPHA", "1"), row("ALPHA", "2")}, "ALPHA", 2.0},
        {"value with uncertainty", {row("BETA", "-566.6(15)")}, "BETA", -566.6},
        {"value with inner blank", {row("GAMMA", "1 371")}, "GAMMA", 1371.0},
    };
    for (const Case& c : cases) {
        const OtherFreeIonValues v = resolveOtherFreeIon(c.rows);
        EXPECT_NEAR(v[c.name], c.expected, 1e-12) << c.what;
    }
}

TEST(OtherFreeIon, DefaultFlagsMarkAbsentAndBlankRows) {
    const OtherFreeIonValues v = resolveOtherFreeIon({row("M0", "1"), row("M2", ""), row("P4", "3")});
    EXPECT_FALSE(v.fromDefault[10]);  // M0
    EXPECT_TRUE(v.fromDefault[11]);   // M2 blank
    EXPECT_TRUE(v.fromDefault[12]);   // M4 absent
    EXPECT_FALSE(v.fromDefault[14]);  // P4 given
    EXPECT_DOUBLE_EQ(v["P4"], 3.0);
}

TEST(OtherFreeIon, RefusesUnknownNamesAndUnreadableValues) {
    struct Case {
        std::vector<FreeIonRow> rows;
        const char* message;
    } cases[] = {
        {{row("T5", "1")}, "Invalid Other Free-ion Parameter name: T5"},
        {{row("ZETA", "1")}, "Invalid Other Free-ion Parameter name: ZETA"},
        {{row("ALPHA", "0.5M0")}, "Invalid value of other free-ion parameter ALPHA: 0.5M0"},
        {{row("M2", "0.5P2")}, "Invalid value of other free-ion parameter M2: 0.5P2"},
        {{row("P4", "xP2")}, "Invalid value of other free-ion parameter P4: xP2"},
        {{row("M0", "nan")}, "Invalid value of other free-ion parameter M0: nan"},
    };
    for (const Case& c : cases) {
        try {
            (void)resolveOtherFreeIon(c.rows);
            ADD_FAILURE() << "accepted: " << c.message;
        } catch (const UserError& error) {
            EXPECT_EQ(error.title(), "Error in Main");
            EXPECT_STREQ(error.what(), c.message);
        }
    }
}

TEST(OtherFreeIon, CellForms) {
    EXPECT_EQ(readOtherFreeIonCell("M4", "0.38M0")->form, OtherFreeIonForm::MultipleOfM0);
    EXPECT_DOUBLE_EQ(readOtherFreeIonCell("M4", "0.38M0")->number, 0.38);
    EXPECT_EQ(readOtherFreeIonCell("P6", "0.1P2")->form, OtherFreeIonForm::MultipleOfP2);
    EXPECT_EQ(readOtherFreeIonCell("T2", "")->form, OtherFreeIonForm::Blank);
    EXPECT_EQ(readOtherFreeIonCell("T2", "400")->form, OtherFreeIonForm::Number);
    EXPECT_FALSE(readOtherFreeIonCell("M0", "0.5M0").has_value());  // M0 is no multiple of itself
    EXPECT_FALSE(readOtherFreeIonCell("M2", "M0").has_value());     // factor missing
}

}  // namespace
}  // namespace orvane
