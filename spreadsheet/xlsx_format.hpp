#pragma once
// The Office Open XML workbook (ECMA-376 Part 1, SpreadsheetML): a zip
// container of XML parts. Reading goes through the workbook part and its
// relationships to the sheet's part, the shared strings (plain and rich-text
// runs) and the cells (numbers, shared and inline strings, booleans as
// "TRUE"/"FALSE", formula results). Writing uses libxlsxwriter.
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

#include "spreadsheet/spreadsheet.hpp"

namespace orvane {

// The bytes of an .xlsx file; `sheet` empty for the first sheet. Throws
// SpreadsheetError naming `fileName` for anything it cannot read.
Spreadsheet parseXlsx(std::string_view bytes, const std::string& fileName, std::string_view sheet);

// The same over the workbook's parts by name ("xl/workbook.xml", ...), the
// zip container left out: the XML layer alone, for fuzzing.
using XlsxParts = std::map<std::string, std::string>;
Spreadsheet parseXlsxParts(const XlsxParts& parts, const std::string& fileName, std::string_view sheet);

// Writes the sheet as a workbook of one sheet to `path` (replacing it).
void writeXlsx(const Spreadsheet& sheet, const std::filesystem::path& path, const std::string& nameForMessages);

}  // namespace orvane
