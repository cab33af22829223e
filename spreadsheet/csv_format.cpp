#include "spreadsheet/csv_format.hpp"

#include <fmt/format.h>

#include "core/text.hpp"

namespace orvane {
namespace {

// "," unless the first line has no comma outside quotes but a ";" or a tab.
char separatorOf(std::string_view text) {
    bool quoted = false, semicolon = false, tab = false;
    for (char c : text) {
        if (c == '"') quoted = !quoted;
        if (quoted) continue;
        if (c == '\n' || c == '\r') break;
        if (c == ',') return ',';
        semicolon = semicolon || c == ';';
        tab = tab || c == '\t';
    }
    return semicolon ? ';' : tab ? '\t' : ',';
}

// The field ends: quoted fields keep their text, others become numbers
// where they are whole numbers.
void storeField(Spreadsheet& sheet, int row, int column, std::string& field, bool quoted) {
    if (quoted) {
        sheet.setText(row, column, field);
    } else {
        const std::string_view trimmed = trim(field);
        if (const auto number = parseNumber(trimmed)) sheet.setNumber(row, column, *number);
        else
            sheet.setText(row, column, std::string(trimmed));
    }
    field.clear();
}

// Any of the separators a reader may take (a lone ";" in the first line would
// make it the separator), quotes, blanks and line breaks.
bool needsQuotes(std::string_view text) {
    return text.find_first_of(",;\" \t\r\n") != std::string_view::npos ||
           parseNumber(trim(text)).has_value();
}

std::string numberText(double value, int digits) {
    return digits > 0 ? fmt::format("{:.{}g}", value, digits) : fmt::format("{}", value);
}

}  // namespace

Spreadsheet parseCsv(std::string_view text, const std::string& fileName) {
    Spreadsheet sheet(fileName);
    const char separator = separatorOf(text);
    int row = 0, column = 0, quoteRow = 0;
    std::string field;
    bool quoted = false, inQuotes = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inQuotes) {
            if (c != '"') field += c;
            else if (i + 1 < text.size() && text[i + 1] == '"') field += text[++i];
            else
                inQuotes = false;
        } else if (c == '"' && trim(field).empty()) {
            field.clear();
            inQuotes = quoted = true;
            quoteRow = row;
        } else if (c == separator) {
            storeField(sheet, row, column++, field, quoted);
            quoted = false;
        } else if (c == '\n' || c == '\r') {
            storeField(sheet, row, column, field, quoted);
            quoted = false;
            if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
            ++row;
            column = 0;
        } else if (!quoted) {
            field += c;  // text after a closing quote is dropped
        }
    }
    if (inQuotes) sheet.fail(quoteRow, column, "a quoted field is not closed");
    storeField(sheet, row, column, field, quoted);
    return sheet;
}

std::string csvText(const Spreadsheet& sheet) {
    std::string text;
    int row = 0, column = 0;
    for (const auto& [at, cell] : sheet.cells()) {
        for (; row < at.first; ++row, column = 0) text += '\n';
        for (; column < at.second; ++column) text += ',';
        if (const auto* number = std::get_if<double>(&cell.value)) {
            text += numberText(*number, sheet.csvSignificantDigits());
        } else if (const auto* value = std::get_if<std::string>(&cell.value)) {
            if (!needsQuotes(*value)) text += *value;
            else {
                text += '"';
                for (char c : *value) text += c == '"' ? std::string("\"\"") : std::string(1, c);
                text += '"';
            }
        }
    }
    if (!sheet.cells().empty()) text += '\n';
    return text;
}

}  // namespace orvane
