// The spreadsheet seam and the imports and exports over it: cell names, CSV
// and .xlsx round trips, workbooks written and read by an independent reader
// (openpyxl, through tests/spreadsheet/workbooks.py; skipped without it) and
// the refusals of malformed workbooks and tables.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <tuple>
#include <unistd.h>

#include "engine/parameter_file.hpp"
#include "fit/fit_parameters.hpp"
#include "fit/observed_levels_sheet.hpp"
#include "fit/parameter_sheet.hpp"
#include "properties/measured_susceptibility.hpp"
#include "properties/susceptibility_sheet.hpp"
#include "spreadsheet/csv_format.hpp"
#include "spreadsheet/spreadsheet.hpp"
#include "tests/support/reference_data.hpp"

namespace orvane {
namespace {

// One folder per test process: ctest runs the cases in parallel processes.
const std::filesystem::path kScratch = test::scratchDirectory("spreadsheet_" + std::to_string(::getpid()));

bool haveOpenpyxl() { return std::system("/usr/bin/python3 -c 'import openpyxl' >/dev/null 2>&1") == 0; }

// The standard output of tests/spreadsheet/workbooks.py with `arguments`.
std::string workbooks(const std::string& arguments) {
    const std::string command = "/usr/bin/python3 '" +
                                (test::sourceDirectory() / "tests" / "spreadsheet" / "workbooks.py").string() + "' " +
                                arguments;
    FILE* pipe = ::popen(command.c_str(), "r");
    std::string out;
    char buffer[4096];
    for (std::size_t n; pipe && (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
    EXPECT_TRUE(pipe && ::pclose(pipe) == 0) << command;
    return out;
}

void writeBytes(const std::filesystem::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

// A sheet with what a file must carry: text needing quotes, text that looks
// like a number, numbers that need all their digits, gaps.
Spreadsheet sampleSheet() {
    Spreadsheet sheet;
    sheet.setRow(0, {"State Label", "a, \"quoted\" text", "two\nlines", "12", "x;y"});
    sheet.setRow(1, {1.0 / 3.0, -0.5, 1e-300, 6.02214076e23});
    sheet.setNumber(4, 5, -218.25, "##0.00000");
    sheet.setText(4, 2, "4I9/2(3/2)");
    return sheet;
}

void expectSameCells(const Spreadsheet& a, const Spreadsheet& b, const std::string& what) {
    ASSERT_EQ(a.cells().size(), b.cells().size()) << what;
    for (const auto& [at, cell] : a.cells())
        EXPECT_EQ(cell.value, b.cell(at.first, at.second)) << what << " " << cellName(at.first, at.second);
}

TEST(Spreadsheet, CellNamesReadAndWriteBothWays) {
    for (const auto& [name, row, column] : std::vector<std::tuple<std::string, int, int>>{
             {"A1", 0, 0}, {"Z1", 0, 25}, {"AA1", 0, 26}, {"AB12", 11, 27}, {"XFD1048576", 1048575, 16383}}) {
        EXPECT_EQ(cellName(row, column), name);
        EXPECT_EQ(parseCellName(name), std::pair(row, column)) << name;
    }
    for (const char* bad : {"", "A", "12", "A0", "a1", "A1B", "XFE1", "A1048577", "AAAA1", "A01"})
        EXPECT_FALSE(parseCellName(bad)) << bad;
}

TEST(Spreadsheet, CsvAndXlsxGiveBackEveryCell) {
    const Spreadsheet sheet = sampleSheet();
    for (const char* name : {"sample.csv", "sample.xlsx"}) {
        sheet.save(kScratch / name);
        expectSameCells(sheet, Spreadsheet::open(kScratch / name), name);
    }
    Spreadsheet oneColumn;  // a first line without a comma: ";" in it must not become the separator
    oneColumn.setRow(0, {"x;y"});
    oneColumn.setRow(1, {2.0});
    expectSameCells(oneColumn, parseCsv(csvText(oneColumn), "one.csv"), "one column");
    // Separators other than the comma, CR LF line ends, blanks around unquoted fields.
    const auto semicolons = parseCsv("T;\"X(Average)\"\r\n 2 ; 0.5\r\n", "t.csv");
    EXPECT_EQ(semicolons.cell(1, 0), SheetValue(2.0));
    EXPECT_EQ(semicolons.cell(0, 1), SheetValue(std::string("X(Average)")));
    EXPECT_EQ(parseCsv("a\tb\n1\t2\n", "t.csv").cell(1, 1), SheetValue(2.0));
}

TEST(Spreadsheet, OpenpyxlReadsTheObservedLevelsOrvaneWrote) {
    if (!haveOpenpyxl()) GTEST_SKIP() << "python3-openpyxl is not installed";
    ObservedLevelsFile levels;
    levels.levels = {{1, "4I9/2(1/2)", false, -0.125}, {3, "4I9/2(3/2)", false, 132.2500001},
                     {0, "", false, 1987.5, true}, {12, "4F3/2", false, 11420.123456789}};
    levels.gFactors = {{1, "4I9/2(1/2)", GComponent::Z, 2.95}, {1, "4I9/2(1/2)", GComponent::X, 1.0 / 3.0},
                       {12, "4F3/2", GComponent::Y, 0.8}};
    const auto path = kScratch / "levels-by-orvane.xlsx";
    const Spreadsheet sheet = observedLevelsSheet(levels.levels, levels.gFactors, "2026-11-24");
    sheet.save(path);
    std::istringstream cells(workbooks("read '" + path.string() + "'"));
    Spreadsheet seen;
    int row, column;
    std::string kind, value;
    while (cells >> row >> column >> kind && std::getline(cells >> std::ws, value)) {
        if (kind == "n") seen.setNumber(row, column, std::strtod(value.c_str(), nullptr));
        else
            seen.setText(row, column, value);
    }
    expectSameCells(sheet, seen, "openpyxl");
    EXPECT_EQ(seen.cell(0, 0), SheetValue(std::string("2026-11-24")));
    EXPECT_TRUE(sameFileContent(readObservedLevelsFile(path), levels));
}

TEST(Spreadsheet, ReadsObservedLevelsFromAWorkbookOpenpyxlWrote) {
    if (!haveOpenpyxl()) GTEST_SKIP() << "python3-openpyxl is not installed";
    const auto path = kScratch / "levels-by-openpyxl.xlsx";
    workbooks("levels '" + path.string() + "'");
    ObservedLevelsFile expected;
    expected.levels = {{1, "4I9/2", false, 0.0}, {3, "4I9/2(3/2)", false, 132.25}, {0, "4I11/2", false, 1987.5, true},
                       {7, "", false, 5012.125}};
    expected.gFactors = {{1, "4I9/2", GComponent::Z, 2.95}, {7, "", GComponent::Z, 1.5}};
    EXPECT_TRUE(sameFileContent(readObservedLevelsFile(path, "levels"), expected));
}

TEST(Spreadsheet, ReadsPrefixedPartsRichTextInlineStringsAndBooleans) {
    const auto path = kScratch / "prefixed.xlsx";
    workbooks("part '" + path.string() + "' prefixed");
    const auto sheet = Spreadsheet::open(path);
    EXPECT_EQ(sheet.sheetName(), "Data");
    const struct {
        const char* cell;
        SheetValue value;
    } cells[] = {{"B2", "State Label"}, {"C2", "Obs.Energy"}, {"D2", "TRUE"},
                 {"B3", "2H11/2"},      {"C3", 19012.5},      {"D3", "ok"}};
    for (const auto& c : cells) {
        const auto at = *parseCellName(c.cell);
        EXPECT_EQ(sheet.cell(at.first, at.second), c.value) << c.cell;
    }
    EXPECT_EQ(observedLevelsFromSheet(sheet).levels.at(0).stateLabel, "2H11/2");
}

// Each malformed input gives its refusal, naming the file.
TEST(Spreadsheet, MalformedInputIsRefusedWithItsMessage) {
    for (const char* kind : {"prefixed", "broken-xml", "no-sheet-part", "bad-string-index"})
        workbooks("part '" + (kScratch / kind).string() + ".xlsx' " + kind);
    writeBytes(kScratch / "text.xlsx", "State Label,Obs.Energy\n");
    writeBytes(kScratch / "old.xls", "\xD0\xCF\x11\xE0");
    writeBytes(kScratch / "word.csv", "State Label,Obs.Energy\n4I9/2,0\n4I11/2,about 2000\n");
    writeBytes(kScratch / "open.csv", "State Label,Obs.Energy\n\"4I9/2,0\n");
    writeBytes(kScratch / "chi.csv", "T,chi\n1,2\n");
    writeBytes(kScratch / "cold.csv", "Temperature,Average\n0,2\n");
    using Reader = std::function<void(const std::filesystem::path&, std::string_view)>;
    const Reader levels = [](const auto& p, std::string_view s) { readObservedLevelsFile(p, s); };
    const Reader values = [](const auto& p, std::string_view s) { withSheetParameterValues({}, Spreadsheet::open(p, s)); };
    const Reader chi = [](const auto& p, std::string_view) { readMeasuredSusceptibility(p); };
    const struct {
        const char* file;
        const char* sheet;
        const Reader& read;
        const char* message;
    } cases[] = {
        {"text.xlsx", "", levels, "not an .xlsx workbook (not a zip archive)"},
        {"prefixed.xlsx", "Lines", levels, "the workbook has no sheet \"Lines\" (its sheets: \"Data\")"},
        {"prefixed.xlsx", "", values, "sheet \"Data\": Incorrect structure of Excel for the free-ion and crystal field parameters"},
        {"chi.csv", "", levels, "Incorrect structure of Excel for the input energy and state labels"},
        {"broken-xml.xlsx", "", levels, "part xl/worksheets/data.xml is not well-formed XML"},
        {"no-sheet-part.xlsx", "", levels, "part xl/worksheets/data.xml is missing"},
        {"bad-string-index.xlsx", "", levels, "cell C2: refers to a shared string \"9\""},
        {"old.xls", "", levels, "the old binary .xls format is not read"},
        {"word.csv", "", levels, "cell B3: the observed energy \"about 2000\" is text where a number is required"},
        {"open.csv", "", levels, "cell A2: a quoted field is not closed"},
        {"chi.csv", "", chi, "Data file error: Incorrect structure of Excel for the magnetic susceptibility"},
        {"cold.csv", "", chi, "cell A2: the temperature is not positive"},
    };
    for (const auto& c : cases) {
        const auto path = kScratch / c.file;
        try {
            c.read(path, c.sheet);
            ADD_FAILURE() << c.file << " was read";
        } catch (const SpreadsheetError& error) {
            const std::string message = error.what();
            EXPECT_NE(message.find(path.string()), std::string::npos) << message;
            EXPECT_NE(message.find(c.message), std::string::npos) << message;
        }
    }
}

TEST(Spreadsheet, ParameterValuesGoIntoTheirRowsAndFittedValuesReadBack) {
    const auto set = readParameterFile(test::sourceDirectory() / "examples" / "Pr3plus-LaF3.par");
    ParameterSet changed = withSheetParameterValues(
        set, parseCsv("2026-11-24\nParameter,Value,Note\nF2,68000.5\nZETA,751.7(0.4)\nB20,-210.25,moved\n\nB66,\"  12 \"\n", "p.csv"));
    for (const auto& [name, value, text] : std::vector<std::tuple<std::string, double, std::string>>{
             {"F2", 68000.5, "68000.5"}, {"ZETA", 751.7, "751.7(0.4)"}, {"B20", -210.25, "-210.25"}, {"B66", 12, "12"}}) {
        ASSERT_TRUE(findParameterCell(changed, name)) << name;
        EXPECT_EQ(*findParameterCell(changed, name), (ParameterCell{text, value})) << name;
    }
    try {
        withSheetParameterValues(set, parseCsv("Parameter,Value\nB21x,1\n", "p.csv"));
        ADD_FAILURE() << "unknown name read";
    } catch (const SpreadsheetError& error) {
        EXPECT_NE(std::string(error.what()).find("p.csv, cell A2: the parameter set has no parameter \"B21x\""), std::string::npos)
            << error.what();
    }
    auto fitted = fitParameterRows(set, FitKind::RealCrystalField);
    for (std::size_t i = 0; i < fitted.size(); ++i) fitted[i].finalFit = 1000.0 / (3.0 + static_cast<double>(i));
    const auto path = kScratch / "fitted.xlsx";
    fittedParameterSheet(fitted, "2026-11-24").save(path);
    ParameterSet back = withSheetParameterValues(set, Spreadsheet::open(path));
    // .xlsx numbers carry 16 significant digits.
    for (const auto& row : fitted) EXPECT_DOUBLE_EQ(findParameterCell(back, row.name)->value, row.finalFit) << row.name;
}

TEST(Spreadsheet, ExportedSusceptibilityReadsBackAsMeasuredData) {
    std::vector<SusceptibilityPoint> points;
    for (double t : {0.5, 2.0, 300.0}) points.push_back({t, {0.1 / t, 0.2 / t, 3e-5}});
    const auto path = kScratch / "chi.xlsx";
    susceptibilitySheet(points, "2026-11-24").save(path);
    const auto sheet = Spreadsheet::open(path);
    EXPECT_DOUBLE_EQ(std::get<double>(sheet.cell(2, 2)), curieConstant(points[0].average(), 0.5));  // C(Average), 0.5 K
    const auto read = readMeasuredSusceptibility(path, 2);
    ASSERT_EQ(read.points.size(), 2u);
    EXPECT_EQ(read.rowsBeyondLimit, 1u);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(read.points[i].temperature, points[i].temperature);
        EXPECT_DOUBLE_EQ(read.points[i].average, points[i].average());
    }
}

}  // namespace
}  // namespace orvane
