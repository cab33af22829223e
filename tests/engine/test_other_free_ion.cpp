// Named free-ion parameters: names, defaults and multiples of M0 and P2.
#include "engine/other_free_ion.hpp"

#include <gtest/gtest.h>

#include "core/user_error.hpp"

namespace orvane {
namespace {

FreeIonRow row(const char* name, const char* text) { return FreeIonRow{name, ParameterCell{text, 0}}; }

TEST(OtherFreeIon, DefaultsFollowM0AndP2) {
    struct Case {
        const char* what;
        std::vector<FreeIonRow> rows;
        const char* name;
        double expected;
    } cases[] = {
        {"M2 blank with M0 = 1.0 gives 0.56", {row("M0", "1.0"), row("M2", "")}, "M2", 0.56},
        {"M4 absent: 0.38 M0", {row("M0", "2.0")}, "M4", 0.76},
        {"P4 absent: 0.75 P2", {row("P2", "200")}, "P4", 150.0},
        {"P6 absent: 0.5 P2", {row("P2", "200")}, "P6", 100.0},
        {"0.50P2 with P2 = 200 gives 100", {row("P2", "200"), row("P6", "0.50P2")}, "P6", 100.0},
        {"' 0.75P2' with leading blank", {row("P2", "-88.6"), row("P4", " 0.75P2")}, "P4", -66.45},
        {"multiple before its base row", {row("M2", "0.5M0"), row("M0", "4")}, "M2", 2.0},
        {"plain number overrides default", {row("M0", "4"), row("M2", "3")}, "M2", 3.0},
        {"value with uncertainty", {row("BETA", "-566.6(15)")}, "BETA", -566.6},
    };
    for (const Case& c : cases) {
        const OtherFreeIonValues v = resolveOtherFreeIon(c.rows);
        EXPECT_NEAR(v[c.name], c.expected, 1e-12) << c.what;
    }
}

TEST(OtherFreeIon, RefusesUnknownNamesAndUnreadableValues) {
    EXPECT_THROW((void)resolveOtherFreeIon({row("T5", "1")}), UserError);
    EXPECT_THROW((void)resolveOtherFreeIon({row("ALPHA", "0.5M0")}), UserError);
    EXPECT_THROW((void)resolveOtherFreeIon({row("M2", "0.5P2")}), UserError);
}

}  // namespace
}  // namespace orvane
