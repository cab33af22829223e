// Parameter files: layout, round trips, the quirks of old files and every
// failure message.
#include "engine/parameter_file.hpp"

#include <gtest/gtest.h>

#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "engine/other_free_ion.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

// A small version-2 file in the writer's own form.
const std::string kCanonical =
    "\"Input parameters for Orvane - Spectroscopic Analysis Package (version #2)\"\n"
    "\"Tm3+:YAG {a note}\"\n"
    "\"free text\"\n"
    "Electrostatic ineraction parameters  type = 3\n"
    "EAVG  18000\n"
    "F2  100000\n"
    "F4  70000\n"
    "F6  50000\n"
    "ZETA  2630(3)\n"
    "No. of electrons = 12\n"
    "Fold of symmetry axis = 3\n"
    "No. of other free-ion parameters = 3\n"
    "ALPHA  17\n"
    "M0  4\n"
    "M2  0.56M0\n"
    "No. of crystal field parameters in Wybourne's convention = 3\n"
    "2  0  -250.5  0\n"
    "4  3  100  -20.25\n"
    "6  6  35(2)  0\n"
    "/noss/Eunit=3 /ptgp= 19 /ccf\n"
    "/sccf\n"
    "No. of SCCF parameters = 2\n"
    "ck 2  0  1.5  0\n"
    "ck 4  3  -0.5  0\n"
    "/occf-g(K)10B\n"
    "No. of OCCF g(K)10B parameters = 1\n"
    "g(K)10B 6  6  2  0\n";

ParameterSet parse(const std::string& text) { return parseParameterText(text, "test.par"); }

// Replaces the first occurrence of `from` by `to` (the test fails if absent).
std::string edited(std::string text, const std::string& from, const std::string& to) {
    const auto at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) text.replace(at, from.size(), to);
    return text;
}

// One read of every section and one round trip: the written text equals the
// file, as text and through the disk, and CR LF lines read as LF.
TEST(ParameterFile, ReadsEverySectionAndRoundTrips) {
    const ParameterSet set = parse(kCanonical);
    EXPECT_EQ(set.version, 2);
    EXPECT_EQ(set.title, "Tm3+:YAG");
    EXPECT_EQ(set.note, "a note");
    EXPECT_EQ(set.slaterType, SlaterType::SlaterFUpper);
    EXPECT_DOUBLE_EQ(set.mainFreeIon[4].cell.value, 2630);  // uncertainty not part of the value
    EXPECT_EQ(set.electronCount, 12);
    EXPECT_EQ(set.fold, 3);
    EXPECT_EQ(set.otherFreeIon[2].cell.text, "0.56M0");
    ASSERT_EQ(set.crystalField.size(), 3u);
    EXPECT_EQ(set.crystalField[1].q, 3);
    EXPECT_DOUBLE_EQ(set.crystalField[1].im.value, -20.25);
    EXPECT_EQ(set.switches.energyUnit, EnergyUnit::Kelvin);
    ASSERT_EQ(set.correlationCF.size(), 2u);
    EXPECT_DOUBLE_EQ(set.correlationCF[0].rows[1].re.value, -0.5);
    EXPECT_EQ(set.correlationCF[1].kind, CorrelationKind::OccfB);
    std::string crlf;
    for (char c : kCanonical) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    EXPECT_EQ(parse(crlf), set);
    ParameterSet exact = set;  // cells without text are written as exact numbers
    exact.crystalField[0].re = ParameterCell{"", 0.1 + 0.2};
    EXPECT_EQ(parse(parameterFileText(exact)).crystalField[0].re.value, 0.1 + 0.2);
    EXPECT_EQ(parameterFileText(set), kCanonical);
    const auto path = test::scratchDirectory("parameter_file_write") / "set.par";
    writeParameterFile(path, set);
    EXPECT_EQ(readTextFile(path), kCanonical);
    EXPECT_EQ(readParameterFile(path), set);
}

// Every failure: title, message and the line that is named.
struct FailureCase {
    const char* what;
    std::string text;
    const char* title;
    const char* message;  // expected start of the message
    int line;
};

class ParameterFileFailure : public ::testing::TestWithParam<FailureCase> {};

TEST_P(ParameterFileFailure, NamesFileLineAndProblem) {
    const FailureCase& c = GetParam();
    try {
        (void)parse(c.text);
        FAIL() << "no error for " << c.what;
    } catch (const UserError& error) {
        EXPECT_EQ(error.title(), c.title) << c.what;
        EXPECT_EQ(std::string(error.what()).rfind(c.message, 0), 0u)
            << c.what << ": got \"" << error.what() << "\"";
        ASSERT_TRUE(error.where().has_value()) << c.what;
        EXPECT_EQ(error.where()->file, "test.par") << c.what;
        EXPECT_EQ(error.where()->line, c.line) << c.what;
    }
}

const FailureCase kFailures[] = {
    {"slater type 4", edited(kCanonical, "type = 3", "type = 4"), "Error in Main",
     "Incorrect Slater paramter type!!", 4},
    {"bad Bkq row", edited(kCanonical, "4  3  100  -20.25", "4  3  1OO  -20.25"),
     "Error in Crystal Field Parameters file",
     "Incorrect content for crystal field parameters: 4  3  1OO  -20.25", 18},
    {"NaN cell", edited(kCanonical, "-250.5", "nan"), "Error in Crystal Field Parameters file",
     "Incorrect content for crystal field parameters: 2  0  nan  0", 17},
    {"five fields", edited(kCanonical, "-250.5", "1 234.5"), "Error in Crystal Field Parameters file",
     "Incorrect content for crystal field parameters: 2  0  1 234.5  0", 17},
    {"ccf marker unknown", edited(kCanonical, "/occf-g(K)10B", "/occf-g(K)10C"), "Error in Main",
     "Input CCF data file error", 25},
    {"ccf count lies", edited(kCanonical, "No. of OCCF g(K)10B parameters = 1", "= 5"),
     "Error in Main", "Input CCF data file error", 26},
    {"unknown other name", edited(kCanonical, "ALPHA  17", "ALFA  17"), "Error in Main",
     "Invalid Other Free-ion Parameter name: ALFA", 13},
    {"main value junk", edited(kCanonical, "F2  100000", "F2  1e5x"), "Error in Main",
     "Invalid value of free-ion parameter: F2  1e5x", 6},
    {"electrons 15", edited(kCanonical, "electrons = 12", "electrons = 15"), "Error in Main",
     "wrong no. of e- !!!", 10},
    {"fold 0", edited(kCanonical, "axis = 3", "axis = 0"), "Error in Main", "Invalid Symmetry Fold",
     11},
    {"other count lies", edited(kCanonical, "free-ion parameters = 3", "free-ion parameters = 300"),
     "Error in Main", "The file announces 300 other free-ion parameters but only 15 lines follow",
     12},
    {"truncated in main rows", kCanonical.substr(0, kCanonical.find("F6  50000")), "Error in Main",
     "The file ends before main free-ion parameter 4 of 5", 8},
    {"empty file", "", "Error in Main", "The parameter file is empty", 1},
};

INSTANTIATE_TEST_SUITE_P(Cases, ParameterFileFailure, ::testing::ValuesIn(kFailures), [](const auto& info) {
    std::string name = info.param.what;
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return name;
});

// The examples: each reads, resolves, and is reproduced byte for byte by the
// writer. Values checked against Carnall, Goodman, Rajnak & Rana, J. Chem. Phys.
// 90, 3443 (1989), Table I (LaF3).
struct ExampleCase {
    const char* file;
    int electrons;
    double f2, zeta, m0, p2, b20, b66;
};

class ExampleFile : public ::testing::TestWithParam<ExampleCase> {};

TEST_P(ExampleFile, ReadsAndRoundTrips) {
    const ExampleCase& c = GetParam();
    const auto path = test::sourceDirectory() / "examples" / c.file;
    const std::string text = readTextFile(path);
    const ParameterSet set = readParameterFile(path);
    EXPECT_EQ(set.electronCount, c.electrons);
    EXPECT_DOUBLE_EQ(set.mainFreeIon[1].cell.value, c.f2) << "F2, Carnall 1989 Table I";
    EXPECT_DOUBLE_EQ(set.mainFreeIon[4].cell.value, c.zeta) << "zeta, Carnall 1989 Table I";
    const OtherFreeIonValues values = resolveOtherFreeIon(set.otherFreeIon);
    EXPECT_DOUBLE_EQ(values["M0"], c.m0);
    EXPECT_NEAR(values["M2"], 0.56 * c.m0, 1e-12);
    EXPECT_NEAR(values["M4"], 0.38 * c.m0, 1e-12);
    EXPECT_NEAR(values["P4"], 0.5 * c.p2, 1e-12);
    EXPECT_NEAR(values["P6"], 0.1 * c.p2, 1e-12);
    ASSERT_EQ(set.crystalField.size(), 9u);
    EXPECT_DOUBLE_EQ(set.crystalField.front().re.value, c.b20) << "B20";
    EXPECT_DOUBLE_EQ(set.crystalField.back().re.value, c.b66) << "B66";
    for (const CrystalFieldRow& row : set.crystalField) EXPECT_EQ(row.q % set.fold, 0);
    EXPECT_EQ(parameterFileText(set), text);
}

INSTANTIATE_TEST_SUITE_P(
    Carnall1989, ExampleFile,
    ::testing::Values(ExampleCase{"Pr3plus-LaF3.par", 2, 68878, 751.7, 2.08, -88.6, -218, -788},
                      ExampleCase{"Nd3plus-LaF3.par", 3, 73018, 885.3, 2.11, 192, -256, -831},
                      ExampleCase{"Er3plus-LaF3.par", 11, 97483, 2376, 3.86, 594, -238, -536}),
    [](const auto& info) { return std::string(info.param.file).substr(0, 2) + "_LaF3"; });

}  // namespace
}  // namespace orvane
