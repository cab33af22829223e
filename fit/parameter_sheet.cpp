#include "fit/parameter_sheet.hpp"

#include "core/text.hpp"
#include "engine/cell_value.hpp"
#include "fit/fit_parameters.hpp"

namespace orvane {
namespace {

constexpr const char* kTitle = "Error in Crystal Field Parameters file";
constexpr const char* kRefusal = "Incorrect structure of Excel for the free-ion and crystal field parameters";

}  // namespace

ParameterSet withSheetParameterValues(const ParameterSet& set, const Spreadsheet& sheet) {
    const auto header = findHeaderRow(sheet, {{"Parameter"}, {"Value"}});
    if (!header) throw SpreadsheetError(kTitle, sheet.where() + ": " + kRefusal);
    const int nameColumn = header->columns[0], valueColumn = header->columns[1];
    ParameterSet out = set;
    for (int row : sheet.rowsBelow(header->row)) {
        const std::string name(trim(sheet.text(row, nameColumn)));
        if (name.empty()) continue;
        ParameterCell* cell = findParameterCell(out, name);
        if (!cell) sheet.fail(row, nameColumn, "the parameter set has no parameter \"" + name + "\"");
        const auto& value = sheet.cell(row, valueColumn);
        if (const auto* text = std::get_if<std::string>(&value); text && readCellNumber(withoutBlanks(*text))) {
            cell->text = withoutBlanks(*text);
            cell->value = *readCellNumber(cell->text);
        } else {
            cell->value = sheet.number(row, valueColumn, "value of " + name);
            cell->text = exactNumberText(cell->value);
        }
    }
    return out;
}

Spreadsheet fittedParameterSheet(const std::vector<FitParameter>& rows, const std::string& date) {
    Spreadsheet sheet({}, "Parameters");
    sheet.setRow(0, {"Parameter", "Value"});
    for (std::size_t i = 0; i < rows.size(); ++i) {
        sheet.setText(static_cast<int>(i) + 1, 0, rows[i].name);
        sheet.setNumber(static_cast<int>(i) + 1, 1, rows[i].finalFit, "#####0.0000");
    }
    return sheet.withDateRow(date);
}

}  // namespace orvane
