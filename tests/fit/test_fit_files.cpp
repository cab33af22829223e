// The file layer of the fit: observed-levels files, GRASP2K level listings
// and the lookup of the default level list.
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "fit/default_levels.hpp"
#include "fit/grasp_energies.hpp"
#include "fit/observed_levels_file.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

const std::string kLevels =
    "# Nd3+ ground multiplet\n"
    "1\t4I9/2(1/2)  0   gz=2.95 GX=1.1 gy=-1.05\n"
    "0  4I9/2 115.25  # no state yet\n"
    "\n"
    "-  -  [1980]  1.82\n"
    "2  2D1-5/2(3/2) -1e3\n";

// The message of the UserError `read` throws ("accepted" when none).
template <class Read>
std::string refusal(Read read) {
    try {
        (void)read();
    } catch (const UserError& error) {
        return error.describe();
    }
    return "accepted";
}

TEST(ObservedLevelsFile, MalformedRowsNameFileAndLine) {
    std::string tooMany;
    for (int i = 0; i < 5000; ++i) tooMany += "- - 1\n";
    const std::pair<std::string, const char*> cases[] = {
        {"3 4I9/2", "found 2 fields"},   {"3 4I9/2 1x", "not a finite number"},
        {"3 4I9/2 nan", "not a finite"}, {"3 4I9/2 inf", "not a finite"},
        {"3 4I9/2 [12", "withheld"},     {"3 4I9/2 12]", "withheld"},
        {"3 4I9/2 []", "withheld"},      {"3 4Q 12", "not a state label"},
        {"-3 4I9/2 12", "negative"},     {"2.5 4I9/2 12", "not an integer"},
        {"40000 - 12", "above 32767"},   {"3 - 12 gq=1", "unknown g-factor"},
        {"3 - 12 gz=x", "g-factor"},     {"3 - 12 gz=1 2.0", "gz is given twice"},
        {tooMany, "more than 5000"},
    };
    for (const auto& [row, problem] : cases) {
        const std::string message = refusal([&] {
            return parseObservedLevelsText("# header\n1 4I9/2 0\n" + row + "\n", "obs.txt");
        });
        EXPECT_EQ(message.rfind(row.size() > 100 ? "obs.txt:5002: " : "obs.txt:3: ", 0), 0u)
            << message;
        EXPECT_NE(message.find(problem), std::string::npos) << message;
    }
}

// Every field the reader took (state, label, energy, withheld, each g
// component on its row) shows in the writer's normal form.
TEST(ObservedLevelsFile, ReadsRowsAndWritesThemBackInNormalForm) {
    const ObservedLevelsFile file = parseObservedLevelsText(kLevels, "nd.txt");
    const auto path = test::scratchDirectory("observed_levels_write") / "levels.txt";
    writeObservedLevelsFile(path, file.levels, file.gFactors);
    EXPECT_EQ(readTextFile(path),
              "# state  label  energy  g-factors\n"
              "1  4I9/2(1/2)  0  gz=2.95  gx=1.1  gy=-1.05\n"
              "-  4I9/2  115.25\n"
              "-  -  [1980]  gz=1.82\n"
              "2  2D1-5/2(3/2)  -1000\n");
    EXPECT_TRUE(sameFileContent(readObservedLevelsFile(path), file));
    std::vector<ObservedLevel> blankLabel = file.levels;
    blankLabel[0].stateLabel = "4I9/2 (1/2)";
    EXPECT_NE(
        refusal([&] { return observedLevelsFileText(blankLabel, {}); }).find("cannot be saved"),
        std::string::npos);
    std::vector<ObservedGFactor> orphan = file.gFactors;
    orphan[3].stateNumber = 9;  // no row of state 9
    EXPECT_NE(refusal([&] {
                  return observedLevelsFileText(file.levels, orphan);
              }).find("no observed level row"),
              std::string::npos);
}

TEST(GraspEnergies, ReadsTheLevelTableAndSetsTheZero) {
    const std::string dashes = "--------------------------------------------------------\n";
    const std::string table = "No Pos  J  Parity  Energy Total  Levels   Configuration\n" + dashes +
                              " 1  1  9/2  -  -9267.2384   120.5  4f(3).1 4I\n"
                              " 2  1   4   +  -9267.2294  2107.9  4f(2)6s\n";
    const auto levels =
        parseGraspLevels(table + dashes + " 3  1  5  +  -9200.0  9999.0  4f(2)5d\n", "grasp.txt");
    ASSERT_EQ(levels.size(), 2u);
    EXPECT_EQ(levels[0].twiceJ, 9);
    EXPECT_EQ(levels[0].parity, Parity::Odd);
    EXPECT_EQ(levels[0].configuration, "4f(3).1 4I");
    EXPECT_EQ(levels[1].twiceJ, 8);
    EXPECT_EQ(levels[1].parity, Parity::Even);
    EXPECT_EQ(graspLevelEnergies(levels, false), (std::vector<double>{120.5, 2107.9}));
    EXPECT_EQ(graspLevelEnergies(levels, true), (std::vector<double>{0.0, 2107.9 - 120.5}));
    EXPECT_EQ(refusal([] {
                  return parseGraspLevels("header only\n-----\n", "empty.txt");
              }).rfind("empty.txt: ", 0),
              0u);
    EXPECT_EQ(refusal([&] {
                  return parseGraspLevels(table + "garbage\n", "grasp.txt");
              }).rfind("grasp.txt:5: ", 0),
              0u);
}

TEST(DefaultLevels, LooksBelowCfpFirstThenInTheProgramFolder) {
    const auto folder = test::scratchDirectory("default_levels_lookup");
    EXPECT_FALSE(findDefaultLevelList(folder));
    std::ofstream(folder / "defaulteng.txt") << "1 4I9/2 0\n";
    EXPECT_EQ(findDefaultLevelList(folder), folder / "defaulteng.txt");
    std::filesystem::create_directory(folder / "cfp");
    std::ofstream(folder / "cfp" / "defaulteng.txt") << "1 4I9/2 0\n";
    EXPECT_EQ(findDefaultLevelList(folder), folder / "cfp" / "defaulteng.txt");
}

}  // namespace
}  // namespace orvane
