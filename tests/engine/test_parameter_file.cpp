// Parameter files: a round trip and malformed files.
#include "engine/parameter_file.hpp"

#include <gtest/gtest.h>

#include <string>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
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
    "g(K)10B 6  6  2  0\n"
    "Fit options = 3\n"
    "F2  1\n"
    "M2  -1  M0\n"
    "ImB43  2\n";

ParameterSet parse(const std::string& text) { return parseParameterText(text, "test.par"); }

// Replaces the first occurrence of `from` by `to` (the test fails if absent).
std::string edited(std::string text, const std::string& from, const std::string& to) {
    const auto at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) text.replace(at, from.size(), to);
    return text;
}

// One read and one round trip: the written text equals the file, as text and
// through the disk, and CR LF lines read as LF.
TEST(ParameterFile, ReadsEverySectionAndRoundTrips) {
    const ParameterSet set = parse(kCanonical);
    EXPECT_EQ(set.note, "a note");
    EXPECT_DOUBLE_EQ(set.mainFreeIon[4].cell.value, 2630);  // uncertainty not part of the value
    EXPECT_EQ(set.otherFreeIon[2].cell.text, "0.56M0");
    EXPECT_DOUBLE_EQ(set.crystalField[1].im.value, -20.25);
    EXPECT_EQ(set.switches.energyUnit, EnergyUnit::Kelvin);
    EXPECT_EQ(set.correlationCF[1].kind, CorrelationKind::OccfB);
    EXPECT_EQ(set.fitSetup, (std::vector<FitSetupRow>{{"F2", 1, ""}, {"M2", -1, "M0"}, {"ImB43", 2, ""}}));
    std::string crlf;
    for (char c : kCanonical) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    EXPECT_EQ(parse(crlf), set);
    ParameterSet exact = set;  // cells without text are written as exact numbers
    exact.crystalField[0].re = ParameterCell{"", 0.1 + 0.2};
    EXPECT_EQ(parse(parameterFileText(exact)).crystalField[0].re.value, 0.1 + 0.2);
    const auto path = test::scratchDirectory("parameter_file_write") / "set.par";
    writeParameterFile(path, set);
    EXPECT_EQ(readTextFile(path), kCanonical);
    EXPECT_EQ(readParameterFile(path), set);
    for (const char* file : {"Pr3plus-LaF3.par", "Nd3plus-LaF3.par", "Er3plus-LaF3.par"}) {
        const auto example = test::sourceDirectory() / "examples" / file;
        EXPECT_EQ(parameterFileText(readParameterFile(example)), readTextFile(example)) << file;
    }
}

// Malformed files are refused with file and line (more in parameter_corpus/).
TEST(ParameterFile, MalformedFilesNameFileAndLine) {
    struct Case {
        std::string text;
        int line;
    };
    const Case cases[] = {
        {edited(kCanonical, "type = 3", "type = 4"), 4},
        {edited(kCanonical, "4  3  100  -20.25", "4  3  1OO  -20.25"), 18},
        {edited(kCanonical, "-250.5", "1 234.5"), 17},
        {edited(kCanonical, "/occf-g(K)10B", "/occf-g(K)10C"), 25},
        {edited(kCanonical, "No. of OCCF g(K)10B parameters = 1", "= 5"), 26},
        {edited(kCanonical, "F2  100000", "F2  1e5x"), 6},
        {kCanonical.substr(0, kCanonical.find("F6  50000")), 8},
        {"", 1},
        {edited(kCanonical, "M2  -1  M0", "M2  -1"), 30},
        {edited(kCanonical, "F2  1\n", "F2  1  M0\n"), 29},
        {edited(kCanonical, "ImB43  2", "ImB43  40000"), 31},
        {edited(kCanonical, "ImB43  2", "F2  0"), 31},
        {kCanonical + "B20  1\n", 32},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        try {
            (void)parse(c.text);
            ADD_FAILURE() << "accepted";
        } catch (const UserError& error) {
            ASSERT_TRUE(error.where().has_value());
            EXPECT_EQ(error.where()->file, "test.par");
            EXPECT_EQ(error.where()->line, c.line);
        }
    }
}

}  // namespace
}  // namespace orvane
