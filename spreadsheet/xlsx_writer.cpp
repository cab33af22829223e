// Writing a sheet as an .xlsx workbook with libxlsxwriter: numbers with their
// number formats (one format object per distinct format text), text as
// shared strings.
#include <map>
#include <memory>

#include <xlsxwriter.h>

#include "spreadsheet/xlsx_format.hpp"

namespace orvane {
namespace {

struct WorkbookCloser {
    void operator()(lxw_workbook* workbook) const { workbook_close(workbook); }
};

}  // namespace

void writeXlsx(const Spreadsheet& sheet, const std::filesystem::path& path, const std::string& nameForMessages) {
    const auto fail = [&](const std::string& reason) -> void {
        throw SpreadsheetError("File error", "Cannot write the file " + nameForMessages + ": " + reason);
    };
    std::unique_ptr<lxw_workbook, WorkbookCloser> workbook(workbook_new(path.c_str()));
    if (!workbook) fail("the workbook cannot be created");
    lxw_worksheet* worksheet = workbook_add_worksheet(workbook.get(), sheet.sheetName().c_str());
    if (!worksheet) fail("the sheet name \"" + sheet.sheetName() + "\" is not allowed in a workbook");
    std::map<std::string, lxw_format*> formats;
    for (const auto& [at, cell] : sheet.cells()) {
        const auto row = static_cast<lxw_row_t>(at.first);
        const auto column = static_cast<lxw_col_t>(at.second);
        lxw_error error = LXW_NO_ERROR;
        if (const auto* number = std::get_if<double>(&cell.value)) {
            lxw_format* format = nullptr;
            if (!cell.format.empty()) {
                auto& entry = formats[cell.format];
                if (!entry) {
                    entry = workbook_add_format(workbook.get());
                    format_set_num_format(entry, cell.format.c_str());
                }
                format = entry;
            }
            error = worksheet_write_number(worksheet, row, column, *number, format);
        } else if (const auto* text = std::get_if<std::string>(&cell.value)) {
            error = worksheet_write_string(worksheet, row, column, text->c_str(), nullptr);
        }
        if (error != LXW_NO_ERROR) fail("cell " + cellName(at.first, at.second) + ": " + lxw_strerror(error));
    }
    const lxw_error closed = workbook_close(workbook.release());
    if (closed != LXW_NO_ERROR) fail(lxw_strerror(closed));
}

}  // namespace orvane
