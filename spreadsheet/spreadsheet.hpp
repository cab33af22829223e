#pragma once
// One sheet of a spreadsheet file, read or to be written: the seam behind
// every import and export of tables (docs/spreadsheets.md). The format
// follows the file's extension: ".xlsx" (Office Open XML workbook) or ".csv"
// (comma-separated text; ";" or tab when the first line holds no comma).
//
// Rows and columns are 0-based here; messages name cells as the spreadsheet
// shows them ("B4" is row 3, column 1). A cell is empty, a number or text.
// Every problem of a file (not a zip, no such sheet, broken XML, text where a
// number is required) throws SpreadsheetError naming the file and, where it
// applies, the sheet and the cell.
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "core/user_error.hpp"

namespace orvane {

class SpreadsheetError : public UserError {
public:
    using UserError::UserError;
};

// The content of one cell.
using SheetValue = std::variant<std::monostate, double, std::string>;

// "A1" of (0, 0), "AB12" of (11, 27).
std::string cellName(int row, int column);
// The 0-based row and column of "AB12" (letters, then a row number from 1);
// std::nullopt for anything else or beyond the largest sheet (1048576 rows,
// 16384 columns "XFD").
std::optional<std::pair<int, int>> parseCellName(std::string_view name);

inline constexpr int kMaxSheetRows = 1048576;
inline constexpr int kMaxSheetColumns = 16384;

class Spreadsheet {
public:
    // An empty sheet to fill, named `sheetName` in a workbook. `sourceName`
    // is the file for messages; `fromWorkbook` names the sheet in them too.
    explicit Spreadsheet(std::string sourceName = {}, std::string sheetName = "Sheet1", bool fromWorkbook = false);

    // Reads `sheet` (the first when empty) of an .xlsx file, or a .csv file
    // (which has no sheet names; a name is refused).
    static Spreadsheet open(const std::filesystem::path& path, std::string_view sheet = {});
    // True for the extensions of spreadsheets (".xlsx", ".csv", and ".xls",
    // which open() refuses by name), in any case.
    static bool isSpreadsheetPath(const std::filesystem::path& path);

    const std::string& sourceName() const { return source_; }  // the file, for messages
    const std::string& sheetName() const { return sheet_; }
    int rowCount() const;     // last used row + 1
    int columnCount() const;  // last used column + 1

    // Out of range gives an empty cell.
    const SheetValue& cell(int row, int column) const;
    // A number cell, or a text cell holding a whole number ("12.5"; spreadsheets
    // often keep numbers as text); otherwise SpreadsheetError "... holds text
    // where a number is required" (or "is empty"), naming `what`.
    double number(int row, int column, std::string_view what) const;
    // The text of a cell as shown: text as is, a number in its shortest exact form, "" when empty.
    std::string text(int row, int column) const;
    // The rows after `row` that hold a cell, in order.
    std::vector<int> rowsBelow(int row) const;

    // `format` is a number format of the spreadsheet ("##0.00000",
    // "0.0000E+00"); the value itself is stored in full (CSV: exactly; .xlsx:
    // 16 significant digits, as libxlsxwriter writes them).
    void setNumber(int row, int column, double value, std::string format = {});
    void setText(int row, int column, std::string text);
    // The cells of `row`, from column 0: numbers with `format`, text as text.
    void setRow(int row, const std::vector<SheetValue>& values, const std::string& format = {});

    // Significant digits of numbers in CSV text; 0 (default) the shortest exact form.
    void setCsvSignificantDigits(int digits) { csvDigits_ = digits; }
    int csvSignificantDigits() const { return csvDigits_; }

    // Writes by the extension, through a temporary file renamed over `path`
    // when complete (core/atomic_file.hpp).
    void save(const std::filesystem::path& path) const;

    // The same sheet moved down one row, "YYYY-MM-DD" in A1: the form of the exports.
    Spreadsheet withDateRow(const std::string& date) const;

    // A problem at a cell: "FILE, sheet "S", cell B4: problem" (the sheet
    // named for workbooks), located at the file and the row number.
    [[noreturn]] void fail(int row, int column, const std::string& problem) const;
    // A problem of the whole sheet: "FILE[, sheet "S"]: problem".
    [[noreturn]] void fail(const std::string& problem) const;
    std::string where() const;  // "FILE" or "FILE, sheet "S""

    struct Cell {
        SheetValue value;
        std::string format;
    };
    // Every non-empty cell by (row, column), in row order.
    const std::map<std::pair<int, int>, Cell>& cells() const { return cells_; }

private:
    std::string source_;
    std::string sheet_;
    bool workbook_ = false;  // read from a workbook: messages name the sheet
    int csvDigits_ = 0;
    std::map<std::pair<int, int>, Cell> cells_;
};

// A heading looked for in a header row: equal to the cell's text (case-blind,
// blanks at both ends ignored) or, with `containing`, part of it.
struct ColumnHeading {
    std::string_view text;
    bool required = true;
    bool containing = false;
};

// The first row holding every required heading, with each heading's column
// (-1 for an optional heading not there). std::nullopt when no row has them all.
struct HeaderRow {
    int row = 0;
    std::vector<int> columns;
};
std::optional<HeaderRow> findHeaderRow(const Spreadsheet& sheet, const std::vector<ColumnHeading>& headings);

}  // namespace orvane
