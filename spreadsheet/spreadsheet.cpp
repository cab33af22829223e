#include "spreadsheet/spreadsheet.hpp"

#include <algorithm>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/text.hpp"
#include "spreadsheet/csv_format.hpp"
#include "spreadsheet/xlsx_format.hpp"

namespace orvane {
namespace {

constexpr const char* kTitle = "File error";
// Workbooks and tables of this package's size: tens of kilobytes.
constexpr std::uintmax_t kMaxSpreadsheetBytes = 64u * 1024u * 1024u;

enum class SheetFormat { Xlsx, Csv, OldBinary, Other };

SheetFormat formatOf(const std::filesystem::path& path) {
    const std::string extension = toLower(path.extension().string());
    if (extension == ".xlsx") return SheetFormat::Xlsx;
    if (extension == ".csv") return SheetFormat::Csv;
    if (extension == ".xls") return SheetFormat::OldBinary;
    return SheetFormat::Other;
}

[[noreturn]] void refuseFormat(const std::filesystem::path& path, SheetFormat format) {
    throw SpreadsheetError(kTitle, format == SheetFormat::OldBinary
                                       ? path.string() + ": the old binary .xls format is not read; save it as .xlsx"
                                       : path.string() + ": not a spreadsheet file (.xlsx or .csv expected)");
}

const SheetValue kEmpty;

}  // namespace

std::string cellName(int row, int column) {
    std::string letters;
    for (int c = column + 1; c > 0; c = (c - 1) / 26) letters.insert(letters.begin(), char('A' + (c - 1) % 26));
    return letters + std::to_string(row + 1);
}

std::optional<std::pair<int, int>> parseCellName(std::string_view name) {
    std::size_t i = 0;
    long column = 0, row = 0;
    for (; i < name.size() && name[i] >= 'A' && name[i] <= 'Z' && i < 3; ++i) column = column * 26 + (name[i] - 'A' + 1);
    const std::size_t digits = i;
    for (; i < name.size() && name[i] >= '0' && name[i] <= '9' && i - digits < 7; ++i) row = row * 10 + (name[i] - '0');
    if (digits == 0 || i == digits || i != name.size() || name[digits] == '0') return std::nullopt;
    if (column > kMaxSheetColumns || row > kMaxSheetRows) return std::nullopt;
    return std::pair{static_cast<int>(row - 1), static_cast<int>(column - 1)};
}

Spreadsheet::Spreadsheet(std::string sourceName, std::string sheetName, bool fromWorkbook)
    : source_(std::move(sourceName)), sheet_(std::move(sheetName)), workbook_(fromWorkbook) {}

bool Spreadsheet::isSpreadsheetPath(const std::filesystem::path& path) {
    return formatOf(path) != SheetFormat::Other;
}

Spreadsheet Spreadsheet::open(const std::filesystem::path& path, std::string_view sheet) {
    const auto format = formatOf(path);
    if (format != SheetFormat::Xlsx && format != SheetFormat::Csv) refuseFormat(path, format);
    if (format == SheetFormat::Csv) {
        if (!sheet.empty())
            throw SpreadsheetError(kTitle, path.string() + ": a CSV file has no sheet \"" + std::string(sheet) + "\"");
        return parseCsv(readTextFile(path, kMaxSpreadsheetBytes), path.string());
    }
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) throw SpreadsheetError(kTitle, path.string() + " is a folder, not a file");
    const auto size = std::filesystem::file_size(path, error);
    if (error) throw SpreadsheetError(kTitle, "Cannot find the file " + path.string());
    if (size > kMaxSpreadsheetBytes)
        throw SpreadsheetError(kTitle, fmt::format("The file {} is too large ({} bytes; at most {})", path.string(), size,
                                                   kMaxSpreadsheetBytes));
    std::ifstream in(path, std::ios::binary);
    std::string bytes(size, '\0');
    if (!in.read(bytes.data(), static_cast<std::streamsize>(size)))
        throw SpreadsheetError(kTitle, "Cannot read the file " + path.string());
    return parseXlsx(bytes, path.string(), sheet);
}

int Spreadsheet::rowCount() const { return cells_.empty() ? 0 : cells_.rbegin()->first.first + 1; }

int Spreadsheet::columnCount() const {
    int columns = 0;
    for (const auto& [at, cell] : cells_) columns = std::max(columns, at.second + 1);
    return columns;
}

const SheetValue& Spreadsheet::cell(int row, int column) const {
    const auto found = cells_.find({row, column});
    return found == cells_.end() ? kEmpty : found->second.value;
}

double Spreadsheet::number(int row, int column, std::string_view what) const {
    const SheetValue& value = cell(row, column);
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* text = std::get_if<std::string>(&value)) {
        if (const auto parsed = parseNumber(trim(*text))) return *parsed;
        fail(row, column, fmt::format("the {} \"{}\" is text where a number is required", what, *text));
    }
    fail(row, column, fmt::format("the {} is empty", what));
}

std::string Spreadsheet::text(int row, int column) const {
    const SheetValue& value = cell(row, column);
    if (const auto* number = std::get_if<double>(&value)) return fmt::format("{}", *number);
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    return {};
}

std::vector<int> Spreadsheet::rowsBelow(int row) const {
    std::vector<int> rows;
    for (auto cell = cells_.lower_bound({row + 1, 0}); cell != cells_.end(); ++cell)
        if (rows.empty() || rows.back() != cell->first.first) rows.push_back(cell->first.first);
    return rows;
}

void Spreadsheet::setNumber(int row, int column, double value, std::string format) {
    cells_[{row, column}] = Cell{value, std::move(format)};
}

void Spreadsheet::setText(int row, int column, std::string text) {
    if (text.empty())
        cells_.erase({row, column});
    else
        cells_[{row, column}] = Cell{std::move(text), {}};
}

void Spreadsheet::setRow(int row, const std::vector<SheetValue>& values, const std::string& format) {
    for (std::size_t c = 0; c < values.size(); ++c) {
        const int column = static_cast<int>(c);
        if (const auto* number = std::get_if<double>(&values[c])) setNumber(row, column, *number, format);
        else if (const auto* text = std::get_if<std::string>(&values[c])) setText(row, column, *text);
    }
}

void Spreadsheet::save(const std::filesystem::path& path) const {
    const auto format = formatOf(path);
    if (format == SheetFormat::Csv) {
        writeFileAtomically(path, csvText(*this));
        return;
    }
    if (format != SheetFormat::Xlsx) refuseFormat(path, format);
    // libxlsxwriter writes a file by name: it writes the writer's temporary,
    // which the commit renames over the destination.
    AtomicFileWriter writer(path);
    writer.finish();
    writeXlsx(*this, writer.temporary(), path.string());
    writer.commit();
}

Spreadsheet Spreadsheet::withDateRow(const std::string& date) const {
    Spreadsheet dated(source_, sheet_, workbook_);
    dated.csvDigits_ = csvDigits_;
    dated.setText(0, 0, date);
    for (const auto& [at, cell] : cells_) dated.cells_[{at.first + 1, at.second}] = cell;
    return dated;
}

std::string Spreadsheet::where() const {
    return workbook_ ? source_ + ", sheet \"" + sheet_ + "\"" : source_;
}

void Spreadsheet::fail(int row, int column, const std::string& problem) const {
    throw SpreadsheetError(kTitle, where() + ", cell " + cellName(row, column) + ": " + problem,
                           FileLocation{source_, row + 1});
}

void Spreadsheet::fail(const std::string& problem) const { throw SpreadsheetError(kTitle, where() + ": " + problem); }

std::optional<HeaderRow> findHeaderRow(const Spreadsheet& sheet, const std::vector<ColumnHeading>& headings) {
    const auto matches = [](const ColumnHeading& heading, std::string_view text) {
        return heading.containing ? icontains(text, heading.text) : iequals(trim(text), heading.text);
    };
    const auto& cells = sheet.cells();
    for (auto cell = cells.begin(); cell != cells.end();) {
        HeaderRow header{cell->first.first, std::vector<int>(headings.size(), -1)};
        for (; cell != cells.end() && cell->first.first == header.row; ++cell) {
            const auto* text = std::get_if<std::string>(&cell->second.value);
            for (std::size_t h = 0; text && h < headings.size(); ++h)
                if (header.columns[h] < 0 && matches(headings[h], *text)) header.columns[h] = cell->first.second;
        }
        bool complete = true;
        for (std::size_t h = 0; h < headings.size(); ++h) complete = complete && (header.columns[h] >= 0 || !headings[h].required);
        if (complete) return header;
    }
    return std::nullopt;
}

}  // namespace orvane
