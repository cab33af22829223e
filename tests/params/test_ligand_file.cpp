// Ligand files, lattice coordinates and the "smdata.txt" persistence.
#include <cmath>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "params/ligand_file.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane::params {
namespace {

TEST(LigandFile, ReadsPolarRowsLabelsAndR0) {
    const LigandFile file = parseLigandText(
        "# Er site, eight oxygens\n\nR0 = 2.35\n2.3, 54.7356; 45 O1\n  2.4 125.26 135\r\n! done\n",
        "cube.lig");
    ASSERT_EQ(file.ligands.size(), 2u);
    EXPECT_EQ(*file.r0, 2.35);
    EXPECT_EQ(file.ligands[0].r, 2.3);
    EXPECT_EQ(file.ligands[0].thetaDeg, 54.7356);
    EXPECT_EQ(file.ligands[0].phiDeg, 45.0);
    EXPECT_EQ(file.labels[0], "O1");
    EXPECT_EQ(file.ligands[1].phiDeg, 135.0);
}

TEST(LigandFile, LatticeCoordinatesAreConvertedToPolar) {
    // Cubic cell a = 4: fractional (0.5, 0.5, 0.5) is a cube corner at 2 sqrt 3.
    const LigandFile cubic = parseLigandText("lattice = 4 4 4 90 90 90\n0.5 0.5 0.5\n0 0 -0.5\n", "cell.lig");
    EXPECT_NEAR(cubic.ligands[0].r, 2.0 * std::sqrt(3.0), 1e-12);
    EXPECT_NEAR(cubic.ligands[0].thetaDeg, std::acos(1.0 / std::sqrt(3.0)) * 180.0 / M_PI, 1e-10);
    EXPECT_NEAR(cubic.ligands[0].phiDeg, 45.0, 1e-12);
    EXPECT_NEAR(cubic.ligands[1].thetaDeg, 180.0, 1e-12);
    // Hexagonal cell (gamma = 120): fractional (1, 1, 0) has length a and azimuth 60 degrees.
    const auto hex = latticeToPolar({1.0, 1.0, 0.0}, LatticeCell{3.0, 3.0, 5.0, 90.0, 90.0, 120.0});
    ASSERT_TRUE(hex);
    EXPECT_NEAR(hex->r, 3.0, 1e-12);
    EXPECT_NEAR(hex->phiDeg, 60.0, 1e-12);
    EXPECT_NEAR(hex->thetaDeg, 90.0, 1e-12);
    EXPECT_FALSE(latticeToPolar({1, 0, 0}, LatticeCell{1, 1, 1, 10, 10, 170}));  // no such cell
}

TEST(LigandFile, MalformedFilesNameFileLineAndProblem) {
    struct Case { const char* text; int line; };
    const Case cases[] = {
        {"2.3 50 40\n2.4 abc 10\n", 2}, {"2.3 50\n", 1},          {"-2 50 40\n", 1},
        {"R0 = zero\n2 1 1\n", 1},      {"lattice = 1 1 1 0 0 0\n", 1},
        {"lattice = 1 1 1 90 90 90\n0 0 0\n", 2},                 {"# nothing\n\n", 2},
    };
    for (const Case& c : cases) {
        try {
            parseLigandText(c.text, "bad.lig");
            FAIL() << "no error for: " << c.text;
        } catch (const UserError& e) {
            ASSERT_TRUE(e.where());
            EXPECT_EQ(e.where()->file, "bad.lig");
            EXPECT_EQ(e.where()->line, c.line) << c.text;
        }
    }
}

TEST(SuperpositionData, RoundTripIsExactAndMalformedFilesAreRefused) {
    SuperpositionData data;
    data.parameters.r0 = 2.4173;
    data.parameters.bk = {431.5, -212.25, 1.0 / 3.0};
    data.parameters.tk = {5.0, 8.0, 11.0};
    data.parameters.stevensType = true;
    data.ligands = {{2.3, 54.7356103172, 45.0}, {2.41, 0.1, -179.9}};
    const auto dir = orvane::test::scratchDirectory("smdata");
    writeSuperpositionData(dir / "smdata.txt", data);
    const SuperpositionData back = readSuperpositionData(dir / "smdata.txt");
    EXPECT_EQ(back.parameters.bk, data.parameters.bk);
    EXPECT_TRUE(back.parameters.stevensType);
    ASSERT_EQ(back.ligands.size(), 2u);
    EXPECT_EQ(back.ligands[0].thetaDeg, 54.7356103172);
    EXPECT_EQ(formatSuperpositionData(back), formatSuperpositionData(data));

    std::string text = formatSuperpositionData(data);
    struct Case { std::string text; int line; };
    const Case cases[] = {
        {"Something else\n", 1},
        {text.substr(0, text.find("No. of")), 7},                                    // truncated
        {std::string(text).replace(text.find("= 2\n"), 4, "= 5\n"), 10},            // count lies
        {std::string(text).replace(text.find("= 2.4173"), 8, "= inf"), 2},
    };
    for (const Case& c : cases) {
        try {
            parseSuperpositionData(c.text, "smdata.txt");
            FAIL() << c.text;
        } catch (const UserError& e) {
            EXPECT_EQ(e.where()->line, c.line) << e.describe();
        }
    }
}

}  // namespace
}  // namespace orvane::params
