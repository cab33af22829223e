// libFuzzer target: the .xlsx reader either reads a sheet or refuses the
// input with a SpreadsheetError; what it reads is written as CSV and read
// back to the same cells, and the observed-levels import over it either
// reads or refuses. An input starting with "PK" goes through the zip
// container; any other is split at "\n=====\n" into the workbook, its
// relationships, the shared strings and xl/worksheets/sheet1.xml, so that the
// XML layer is reached without zip checksums in the way.
//   fuzz_xlsx_reader work/ seeds/ -max_len=8192 -timeout=5
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "fit/observed_levels_sheet.hpp"
#include "spreadsheet/csv_format.hpp"
#include "spreadsheet/xlsx_format.hpp"

namespace {

orvane::XlsxParts partsOf(std::string_view input) {
    static const char* const kNames[] = {"xl/workbook.xml", "xl/_rels/workbook.xml.rels", "xl/sharedStrings.xml",
                                         "xl/worksheets/sheet1.xml"};
    constexpr std::string_view kSeparator = "\n=====\n";
    orvane::XlsxParts parts;
    for (const char* name : kNames) {
        const auto end = input.find(kSeparator);
        parts[name] = std::string(input.substr(0, end));
        if (end == std::string_view::npos) break;
        input.remove_prefix(end + kSeparator.size());
    }
    return parts;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    orvane::Spreadsheet sheet;
    try {
        sheet = input.starts_with("PK") ? orvane::parseXlsx(input, "fuzz.xlsx", {})
                                        : orvane::parseXlsxParts(partsOf(input), "fuzz.xlsx", {});
    } catch (const orvane::SpreadsheetError&) {
        return 0;
    }
    const auto back = orvane::parseCsv(orvane::csvText(sheet), "fuzz.csv");
    if (back.cells().size() != sheet.cells().size()) std::abort();
    for (const auto& [at, cell] : sheet.cells())
        if (back.cell(at.first, at.second) != cell.value) std::abort();
    try {
        orvane::observedLevelsFromSheet(sheet);
    } catch (const orvane::UserError&) {
    }
    return 0;
}
