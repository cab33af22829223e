// The editor's checks before saving: the crystal-field grid, the ion of the
// title, the fold of the point group and the correlation sections.
#include "engine/editor_checks.hpp"

#include <gtest/gtest.h>

#include <set>

namespace orvane {
namespace {

using Messages = std::vector<std::string>;

TEST(CrystalFieldTable, MessagesPerBadCell) {
    struct Case {
        const char* what;
        std::vector<CrystalFieldEntry> rows;
        Messages expected;
    } cases[] = {
        {"empty table", {}, {"No Crystal Field Parameters entered!"}},
        {"good rows", {{"2", "0", "-218", ""}, {"4", "4", "616(27)", "0"}, {"6", "-6", "1 234.5", "3"}}, {}},
        {"k too large", {{"2", "0", "1", ""}, {"13", "0", "1", ""}}, {"Invalid k in entry #2"}},
        {"q beyond k", {{"2", "3", "1", ""}}, {"Invalid q in entry #1"}},
        {"value missing", {{"2", "0", "", ""}}, {"Invalid crystal field value in entry #1"}},
        {"blank row keeps numbering", {{"", "", "", ""}, {"2", "0", "abc", ""}},
         {"Invalid crystal field value in entry #2"}},
    };
    for (const Case& c : cases) EXPECT_EQ(checkCrystalFieldTable(c.rows), c.expected) << c.what;
}

TEST(IonOfTitle, ElectronsFromSymbolAndCharge) {
    struct Case {
        const char* title;
        int electrons;  // -1: refused
    } cases[] = {
        {"Er3+", 11}, {"Pr3+:LaF3", 2}, {"U4+", 2}, {"Eu2+", 7}, {"Ce4+", 0}, {"Tm+++", 12},
        {"Lu3+", 14}, {"Er:YAG", 11} /* no charge: trivalent */, {"Fe3+", -1}, {"La4+", -1}, {"Lu2+", -1},
    };
    for (const Case& c : cases) {
        const IonElectrons ion = electronsFromTitle(c.title);
        if (c.electrons >= 0) EXPECT_EQ(ion.electrons, c.electrons) << c.title;
        else EXPECT_FALSE(ion.electrons.has_value()) << c.title;
    }
}

TEST(FoldCheck, AgreesAsksOrRefuses) {
    EXPECT_EQ(checkFold(2, 7).message, "");  // C2v: 2
    const FoldCheck update = checkFold(1, 26);  // D3h: 6
    EXPECT_TRUE(update.valid);
    EXPECT_EQ(update.suggestedFold, 6);
    EXPECT_FALSE(checkFold(0, 7).valid);
    EXPECT_EQ(checkFold(2, 99).message, "Invalid Symmetry Fold");
}

}  // namespace
}  // namespace orvane
