// Differential evolution: the settings' ranges and refusal texts, the bounds
// file and the first lines of the log-book header.
#include <gtest/gtest.h>
#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "core/user_error.hpp"
#include "fit/de_settings.hpp"

namespace orvane {

// Per setting: a value accepted, values refused with the setting's text, and
// texts that are no numbers refused with the general text (gWeight: its own).
TEST(DESettings, EachSettingAcceptsItsRangeAndRefusesWithItsText) {
    const struct { DESettingId id; const char* good; double value; std::vector<const char*> bad; std::string refusal; } rows[] = {
        {DESettingId::Parents, " 5 ", 5, {"4", "40.5"}, "Value of NP (No. of Parents) should be greater than 4"},
        {DESettingId::F, "0.3", 0.3, {"0", "-1"}, "Positive value of F is needed!"},
        {DESettingId::Cr, "1", 1, {"1.01", "0"}, "Positive and <=1 value of CR is needed!"},
        {DESettingId::Lambda, "1e-3", 1e-3, {"-0.5", "2"}, "Positive and <=1 value of Lambda is needed!"},
        {DESettingId::Sd, "1e-6", 1e-6, {"0"}, "Positive value of SD is needed!"}, {DESettingId::Err, "2", 2, {"-1"}, "Positive value of ERR is needed!"},
        {DESettingId::MaxIterations, "1", 1, {"0", "2.5"}, "Positive value of Max Iteration is needed!"},
        {DESettingId::GWeight, "3.5", 3.5, {"-1"}, "Invalid input for the weighting of fitting g-factors with energies!"}};
    const auto expectRefused = [](DESettingId id, const char* text, const std::string& refusal) {
        DESettings s;  // defaults
        EXPECT_EQ(applyDESetting(s, id, text).value_or("accepted"), refusal) << text;
        EXPECT_TRUE(s == DESettings{} && !deSettingsProblem(s)) << text;  // unchanged defaults, accepted
    };
    for (const auto& row : rows) {
        DESettings s;
        EXPECT_EQ(applyDESetting(s, row.id, row.good), std::nullopt) << row.good;
        EXPECT_EQ(deSettingValue(s, row.id), row.value);
        for (const char* text : row.bad) expectRefused(row.id, text, row.refusal);
        for (const char* text : {"x", "nan", "inf", ""})
            expectRefused(row.id, text, row.id == DESettingId::GWeight ? row.refusal : kDESettingErrorText);
    }
    EXPECT_EQ(deSettingsProblem(DESettings{.cr = 0, .sd = 0}), "Positive and <=1 value of CR is needed!");
}

TEST(DEBoundsFile, MalformedRowsNameFileAndLine) {
    std::string tooMany;
    for (int i = 0; i < 1001; ++i) tooMany += fmt::format("P{} 0 1\n", i);
    const std::pair<std::string, std::string> cases[] = {
        {"B20 1\n", "de.txt:1: expected \"NAME lower upper\", found 2 fields"},
        {"# limits\n\nB20 1 x # no\n", "de.txt:3: the upper limit \"x\" of B20 is not a finite number"},
        {"B20 0 1\nB40 2 1.5\n", "de.txt:2: the lower limit 2 of B40 is above its upper limit 1.5"},
        {"B20 0 1\nB40 0 1\nB20 0 2\n", "de.txt:3: B20 is given twice (first on line 1)"},
        {tooMany, "de.txt:1001: more than 1000 bounds rows"}};
    for (const auto& [text, message] : cases) {
        std::string got = "accepted";
        try { parseDEBounds(text, "de.txt"); } catch (const UserError& e) { got = e.title() + ": " + e.describe(); }
        EXPECT_EQ(got, std::string(kDESettingErrorText) + ": " + message);
    }
}

TEST(DEBoundsFile, ReadsRowsInOrder) {
    const auto path = std::filesystem::temp_directory_path() / "orvane_de_bounds_test.txt";
    std::ofstream(path) << "# name lower upper\r\nF2\t68000  72000\r\n\r\n  B43 -1e3 -1e3  # held\n";
    std::string rows;
    for (const DEBound& b : readDEBoundsFile(path.string())) rows += fmt::format("{} {} {};", b.name, b.lower, b.upper);
    std::filesystem::remove(path);
    EXPECT_EQ(rows, "F2 68000 72000;B43 -1000 -1000;");
}

TEST(DELogBook, HeaderStartsWithDateAndSettings) {
    const auto lines = deHeaderLines(DESettings{}, 12, std::chrono::system_clock::now());
    EXPECT_TRUE(std::regex_match(lines.at(0), std::regex(R"(\*{4} CF Fitting by Differential Evolution Method started on \d{4}-\d\d-\d\d \*{5})")));
    EXPECT_EQ(lines.at(3), "NP: 40  ||F = 0.8 ||CR = 0.9 ||Lambda = 0.5  ||SD = 0.001");
}

}  // namespace orvane
