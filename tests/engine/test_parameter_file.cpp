// Parameter files: layout, round trips, the quirks of old files and every
// failure message.
#include "engine/parameter_file.hpp"

#include <gtest/gtest.h>

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

TEST(ParameterFile, ReadsEverySectionOfAVersion2File) {
    const ParameterSet set = parse(kCanonical);
    EXPECT_EQ(set.version, 2);
    EXPECT_EQ(set.title, "Tm3+:YAG");
    EXPECT_EQ(set.note, "a note");
    EXPECT_EQ(set.description, "free text");
    EXPECT_EQ(set.slaterType, SlaterType::SlaterFUpper);
    EXPECT_EQ(set.mainFreeIon[0].name, "EAVG");
    EXPECT_DOUBLE_EQ(set.mainFreeIon[0].cell.value, 18000);
    EXPECT_EQ(set.mainFreeIon[4].cell.text, "2630(3)");
    EXPECT_DOUBLE_EQ(set.mainFreeIon[4].cell.value, 2630);  // uncertainty not part of the value
    EXPECT_EQ(set.electronCount, 12);
    EXPECT_EQ(set.electronCountLabel, "No. of electrons");
    EXPECT_EQ(set.fold, 3);
    ASSERT_EQ(set.otherFreeIon.size(), 3u);
    EXPECT_EQ(set.otherFreeIon[2].cell.text, "0.56M0");
    EXPECT_EQ(set.cfConvention, CfConvention::Wybourne);
    ASSERT_EQ(set.crystalField.size(), 3u);
    EXPECT_EQ(set.crystalField[1].k, 4);
    EXPECT_EQ(set.crystalField[1].q, 3);
    EXPECT_DOUBLE_EQ(set.crystalField[1].im.value, -20.25);
    EXPECT_DOUBLE_EQ(set.crystalField[2].re.value, 35);
    EXPECT_TRUE(set.switches.noSpinSpin);
    EXPECT_EQ(set.switches.energyUnit, EnergyUnit::Kelvin);
    EXPECT_EQ(set.switches.pointGroup, 19);
    EXPECT_TRUE(set.switches.correlationSections);
    ASSERT_EQ(set.correlationCF.size(), 2u);
    EXPECT_EQ(set.correlationCF[0].kind, CorrelationKind::Sccf);
    ASSERT_EQ(set.correlationCF[0].rows.size(), 2u);
    EXPECT_DOUBLE_EQ(set.correlationCF[0].rows[1].re.value, -0.5);
    EXPECT_EQ(set.correlationCF[1].kind, CorrelationKind::OccfB);
    EXPECT_EQ(set.correlationCF[1].rows[0].k, 6);
}

TEST(ParameterFile, WriterReproducesItsOwnFileByteForByte) {
    EXPECT_EQ(parameterFileText(parse(kCanonical)), kCanonical);
}

TEST(ParameterFile, CrLfLinesReadAsLf) {
    std::string crlf;
    for (char c : kCanonical) {
        if (c == '\n') crlf += '\r';
        crlf += c;
    }
    EXPECT_EQ(parse(crlf), parse(kCanonical));
}

TEST(ParameterFile, ConventionRecognisedByWordsOfTheLabel) {
    struct Case {
        const char* label;
        CfConvention expected;
    } cases[] = {
        {"No. of crystal field parameters in unit operators convention = ", CfConvention::UnitOperators},
        {"No. of crystal field parameters in Stevens' convention = ", CfConvention::Stevens},
        {"No. of crystal field parameters in Wybourne's convention = ", CfConvention::Wybourne},
        {"Bkq count = ", CfConvention::Wybourne},  // neither word: Wybourne
    };
    for (const Case& c : cases) {
        const std::string text = edited(
            kCanonical, "No. of crystal field parameters in Wybourne's convention = ", c.label);
        EXPECT_EQ(parse(text).cfConvention, c.expected) << c.label;
    }
}

TEST(ParameterFile, Version1FileHasNoHeaderAndFirstLineIsTitle) {
    const std::string header =
        "\"Input parameters for Orvane - Spectroscopic Analysis Package (version #2)\"\n";
    const std::string v1 = kCanonical.substr(header.size());
    const ParameterSet set = parse(v1);
    EXPECT_EQ(set.version, 1);
    EXPECT_EQ(set.title, "Tm3+:YAG");
    EXPECT_EQ(set.description, "free text");
    EXPECT_EQ(set.crystalField.size(), 3u);
    EXPECT_EQ(parameterFileText(set), v1);  // written back without header
}

TEST(ParameterFile, TitleWithoutBracesAndNoteCutAtFirstBrace) {
    struct Case {
        const char* line;
        const char* title;
        const char* note;
    } cases[] = {
        {"\"Er3+ in LaF3\"", "Er3+ in LaF3", ""},
        {"\"Er3+ {one} two}\"", "Er3+", "one"},
        {"\"Er3+ {open note\"", "Er3+", "open note"},
        {"Er3+ {unquoted}", "Er3+", "unquoted"},
    };
    for (const Case& c : cases) {
        const ParameterSet set = parse(edited(kCanonical, "\"Tm3+:YAG {a note}\"", c.line));
        EXPECT_EQ(set.title, c.title) << c.line;
        EXPECT_EQ(set.note, c.note) << c.line;
    }
}

TEST(ParameterFile, SingleTokenMainRowIsTheValueAlone) {
    const ParameterSet set = parse(edited(kCanonical, "F4  70000\n", "70001\n"));
    EXPECT_EQ(set.mainFreeIon[2].name, "");
    EXPECT_DOUBLE_EQ(set.mainFreeIon[2].cell.value, 70001);
}

TEST(ParameterFile, CountLinesUseTheIntegerRightOfTheFirstEquals) {
    // Trailing text after the number and a line without "=" are both read.
    std::string text = edited(kCanonical, "No. of electrons = 12", "n = 12 (Tm3+)");
    text = edited(text, "Fold of symmetry axis = 3", "3");
    const ParameterSet set = parse(text);
    EXPECT_EQ(set.electronCount, 12);
    EXPECT_EQ(set.electronCountLabel, "n");
    EXPECT_EQ(set.fold, 3);
    EXPECT_EQ(set.foldLabel, "");
}

TEST(ParameterFile, FileEndingBeforeOptionLineKeepsDefaultSwitches) {
    const std::string text = kCanonical.substr(0, kCanonical.find("/noss"));
    const ParameterSet set = parse(text);
    EXPECT_FALSE(set.hasOptionLine);
    EXPECT_EQ(set.switches, RunSwitches{});
    EXPECT_EQ(parameterFileText(set), text);  // no option line written either
}

TEST(ParameterFile, CrystalFieldCellWithInnerBlankIsWrittenWithout) {
    ParameterSet set = parse(kCanonical);
    set.crystalField[0].re = ParameterCell{"1 234.5", 1234.5};
    const std::string text = parameterFileText(set);
    EXPECT_NE(text.find("\n2  0  1234.5  0\n"), std::string::npos) << text;
    EXPECT_DOUBLE_EQ(parse(text).crystalField[0].re.value, 1234.5);
}

TEST(ParameterFile, CellsWithoutTextAreWrittenAsExactNumbers) {
    ParameterSet set = parse(kCanonical);
    set.crystalField[0].re = ParameterCell{"", 0.1 + 0.2};
    set.crystalField[0].im = ParameterCell{"", -1e-7};
    const ParameterSet back = parse(parameterFileText(set));
    EXPECT_EQ(back.crystalField[0].re.value, 0.1 + 0.2);  // exact, not 15 digits
    EXPECT_EQ(back.crystalField[0].im.value, -1e-7);
}

TEST(ParameterFile, PrintHamiltonianSwitchIsReadButNotWritten) {
    const ParameterSet set = parse(edited(kCanonical, "/noss", "/printhm /noss"));
    EXPECT_TRUE(set.switches.printHamiltonian);
    EXPECT_EQ(parameterFileText(set), kCanonical);
}

TEST(ParameterFile, WriteThenReadGivesTheSameSetAndFile) {
    const auto dir = test::scratchDirectory("parameter_file_write");
    const auto path = dir / "set.par";
    writeParameterFile(path, parse(kCanonical));
    EXPECT_EQ(readTextFile(path), kCanonical);
    EXPECT_EQ(readParameterFile(path), parse(kCanonical));
}

TEST(ParameterFile, WriterRefusesWhatCannotBeReadBackAndLeavesOldFile) {
    const auto dir = test::scratchDirectory("parameter_file_refuse");
    const auto path = dir / "set.par";
    writeFileAtomically(path, "old content\n");
    struct Case {
        const char* what;
        void (*spoil)(ParameterSet&);
    } cases[] = {
        {"title with brace", [](ParameterSet& s) { s.title = "Er{3+"; }},
        {"note with closing brace", [](ParameterSet& s) { s.note = "a}b"; }},
        {"line break in description", [](ParameterSet& s) { s.description = "a\nb"; }},
        {"unreadable cell", [](ParameterSet& s) { s.crystalField[0].re.text = "abc"; }},
        {"unknown other name", [](ParameterSet& s) { s.otherFreeIon[0].name = "ZETA2"; }},
        {"name with blank", [](ParameterSet& s) { s.otherFreeIon[0].name = "AL PHA"; }},
        {"rank too large", [](ParameterSet& s) { s.crystalField[0].k = 13; }},
    };
    for (const Case& c : cases) {
        ParameterSet set = parse(kCanonical);
        c.spoil(set);
        try {
            writeParameterFile(path, set);
            ADD_FAILURE() << "written although " << c.what;
        } catch (const UserError& error) {
            EXPECT_EQ(error.title(), "Error in saving parameters") << c.what;
        }
        EXPECT_EQ(readTextFile(path), "old content\n") << c.what;
    }
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
    {"slater type text", edited(kCanonical, "type = 3", "type = x"), "Error in Main",
     "Incorrect Slater paramter type!!", 4},
    {"bad Bkq row", edited(kCanonical, "4  3  100  -20.25", "4  3  1OO  -20.25"),
     "Error in Crystal Field Parameters file",
     "Incorrect content for crystal field parameters: 4  3  1OO  -20.25", 18},
    {"q beyond k", edited(kCanonical, "4  3  100", "2  3  100"),
     "Error in Crystal Field Parameters file", "Incorrect content for crystal field parameters: ",
     18},
    {"NaN cell", edited(kCanonical, "-250.5", "nan"), "Error in Crystal Field Parameters file",
     "Incorrect content for crystal field parameters: 2  0  nan  0", 17},
    {"infinite cell", edited(kCanonical, "-250.5", "1e999"),
     "Error in Crystal Field Parameters file", "Incorrect content for crystal field parameters: ",
     17},
    {"five fields", edited(kCanonical, "-250.5", "1 234.5"), "Error in Crystal Field Parameters file",
     "Incorrect content for crystal field parameters: 2  0  1 234.5  0", 17},
    {"ccf marker unknown", edited(kCanonical, "/occf-g(K)10B", "/occf-g(K)10C"), "Error in Main",
     "Input CCF data file error", 25},
    {"ccf row prefix wrong", edited(kCanonical, "ck 4  3", "dk 4  3"), "Error in Main",
     "Input CCF data file error", 24},
    {"ccf count lies", edited(kCanonical, "No. of OCCF g(K)10B parameters = 1", "= 5"),
     "Error in Main", "Input CCF data file error", 26},
    {"ccf negative count", edited(kCanonical, "No. of SCCF parameters = 2", "= -1"),
     "Error in Main", "Input CCF data file error", 22},
    {"ccf duplicate section", edited(kCanonical, "/occf-g(K)10B", "/sccf"), "Error in Main",
     "Input CCF data file error", 25},
    {"Tamsor header",
     edited(kCanonical, "Orvane - Spectroscopic", "Tamsor - Spectroscopic"),
     "Wrong set of input parameters",
     "The input parameters are appropriate only for a d-shell ion instead of a f-shell ion for "
     "this Tamsor package.  Abort input of parameters!",
     1},
    {"other product", edited(kCanonical, "Orvane - Spectroscopic", "Other - Spectroscopic"),
     "Wrong set of input parameters", "The input parameters are appropriate only for a d-shell", 1},
    {"unknown other name", edited(kCanonical, "ALPHA  17", "ALFA  17"), "Error in Main",
     "Invalid Other Free-ion Parameter name: ALFA", 13},
    {"multiple of wrong parameter", edited(kCanonical, "ALPHA  17", "ALPHA  0.5M0"),
     "Error in Main", "Invalid value of other free-ion parameter ALPHA: 0.5M0", 13},
    {"main value junk", edited(kCanonical, "F2  100000", "F2  1e5x"), "Error in Main",
     "Invalid value of free-ion parameter: F2  1e5x", 6},
    {"electrons 15", edited(kCanonical, "electrons = 12", "electrons = 15"), "Error in Main",
     "wrong no. of e- !!!", 10},
    {"electrons not integral", edited(kCanonical, "electrons = 12", "electrons = 2.5"),
     "Error in Main", "The number of electrons cannot be read", 10},
    {"fold 0", edited(kCanonical, "axis = 3", "axis = 0"), "Error in Main", "Invalid Symmetry Fold",
     11},
    {"other count lies", edited(kCanonical, "free-ion parameters = 3", "free-ion parameters = 300"),
     "Error in Main", "The file announces 300 other free-ion parameters but only 15 lines follow",
     12},
    {"other count negative", edited(kCanonical, "free-ion parameters = 3", "free-ion parameters = -2"),
     "Error in Main", "The number of other free-ion parameters is negative", 12},
    {"huge count", edited(kCanonical, "convention = 3", "convention = 2147483647"), "Error in Main",
     "The file announces 2147483647 crystal field parameters", 16},
    {"count beyond int", edited(kCanonical, "convention = 3", "convention = 1e12"), "Error in Main",
     "The number of crystal field parameters cannot be read", 16},
    {"truncated in main rows", kCanonical.substr(0, kCanonical.find("F6  50000")), "Error in Main",
     "The file ends before main free-ion parameter 4 of 5", 8},
    {"truncated before crystal field", kCanonical.substr(0, kCanonical.find("No. of crystal")),
     "Error in Main", "The file ends before the number of crystal field parameters", 16},
    {"empty file", "", "Error in Main", "The parameter file is empty", 1},
    {"only header", "\"Input parameters for Orvane - Spectroscopic Analysis Package (version #2)\"\n",
     "Error in Main", "The file ends before the title line", 2},
};

INSTANTIATE_TEST_SUITE_P(Cases, ParameterFileFailure, ::testing::ValuesIn(kFailures));

TEST(ParameterFileLimits, HugeTextAndHugeFileAreRefusedUnread) {
    const std::string huge(kMaxParameterFileBytes + 1, 'x');
    EXPECT_THROW((void)parse(huge), UserError);
    const auto dir = test::scratchDirectory("parameter_file_huge");
    {
        std::ofstream out(dir / "huge.par", std::ios::binary);
        out << huge;
    }
    try {
        (void)readParameterFile(dir / "huge.par");
        FAIL() << "huge file read";
    } catch (const UserError& error) {
        EXPECT_NE(std::string(error.what()).find("huge.par"), std::string::npos) << error.what();
    }
}

TEST(ParameterFileLimits, MissingFileNamesThePath) {
    try {
        (void)readParameterFile("/nonexistent/dir/none.par");
        FAIL() << "missing file read";
    } catch (const UserError& error) {
        EXPECT_NE(std::string(error.what()).find("none.par"), std::string::npos) << error.what();
    }
}

// The examples: each reads, resolves, and is reproduced byte for byte by the
// writer. Values checked against Carnall, Goodman, Rajnak & Rana, J. Chem. Phys.
// 90, 3443 (1989), Table I (LaF3).
struct ExampleCase {
    const char* file;
    int electrons;
    double f2;
    double zeta;
    double m0;
    double p2;
    double b20;
    double b66;
};

class ExampleFile : public ::testing::TestWithParam<ExampleCase> {};

TEST_P(ExampleFile, ReadsAndRoundTrips) {
    const ExampleCase& c = GetParam();
    const auto path = test::sourceDirectory() / "examples" / c.file;
    const std::string text = readTextFile(path);
    const ParameterSet set = readParameterFile(path);
    EXPECT_EQ(set.electronCount, c.electrons);
    EXPECT_EQ(set.slaterType, SlaterType::SlaterFUpper);
    EXPECT_EQ(set.fold, 2);
    EXPECT_DOUBLE_EQ(set.mainFreeIon[1].cell.value, c.f2) << "F2, Carnall 1989 Table I";
    EXPECT_DOUBLE_EQ(set.mainFreeIon[4].cell.value, c.zeta) << "zeta, Carnall 1989 Table I";
    EXPECT_TRUE(set.switches.noSpinSpin);
    const OtherFreeIonValues values = resolveOtherFreeIon(set.otherFreeIon);
    EXPECT_DOUBLE_EQ(values["M0"], c.m0);
    EXPECT_NEAR(values["M2"], 0.56 * c.m0, 1e-12);
    EXPECT_NEAR(values["M4"], 0.38 * c.m0, 1e-12);
    EXPECT_NEAR(values["P4"], 0.5 * c.p2, 1e-12);
    EXPECT_NEAR(values["P6"], 0.1 * c.p2, 1e-12);
    ASSERT_EQ(set.crystalField.size(), 9u);
    EXPECT_EQ(set.crystalField.front().k, 2);
    EXPECT_DOUBLE_EQ(set.crystalField.front().re.value, c.b20) << "B20";
    EXPECT_EQ(set.crystalField.back().q, 6);
    EXPECT_DOUBLE_EQ(set.crystalField.back().re.value, c.b66) << "B66";
    for (const CrystalFieldRow& row : set.crystalField) EXPECT_EQ(row.q % set.fold, 0);
    EXPECT_EQ(parameterFileText(set), text);
    EXPECT_EQ(parse(parameterFileText(set)), parse(text));
}

INSTANTIATE_TEST_SUITE_P(
    Carnall1989, ExampleFile,
    ::testing::Values(ExampleCase{"Pr3plus-LaF3.par", 2, 68878, 751.7, 2.08, -88.6, -218, -788},
                      ExampleCase{"Nd3plus-LaF3.par", 3, 73018, 885.3, 2.11, 192, -256, -831},
                      ExampleCase{"Er3plus-LaF3.par", 11, 97483, 2376, 3.86, 594, -238, -536}));

}  // namespace
}  // namespace orvane
