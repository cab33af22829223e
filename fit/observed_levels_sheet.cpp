#include "fit/observed_levels_sheet.hpp"

#include "core/text.hpp"
#include "engine/cell_value.hpp"

namespace orvane {
namespace {

constexpr const char* kRefusal = "Incorrect structure of Excel for the input energy and state labels";
constexpr const char* kEnergyFormat = "######0.0000";
constexpr const char* kGFormat = "##0.00000";

enum Column { StateNumber, Label, Energy, Gz, Gx, Gy, kColumns };
const std::vector<ColumnHeading> kHeadings = {
    {"State#", false}, {"State Label"}, {"Obs.Energy"}, {"g-factor", false}, {"gx", false}, {"gy", false}};
constexpr const char* kGKeys[] = {"gz=", "gx=", "gy="};  // the text reader's fields of Gz, Gx, Gy

// A cell as a field of the text reader: numbers in their exact form (a
// number column holding other text is refused here, naming the cell).
std::string numberField(const Spreadsheet& sheet, int row, int column, const char* what) {
    return exactNumberText(sheet.number(row, column, what));
}

}  // namespace

ObservedLevelsFile observedLevelsFromSheet(const Spreadsheet& sheet) {
    const auto header = findHeaderRow(sheet, kHeadings);
    if (!header) throw SpreadsheetError("Error in reading observed levels", sheet.where() + ": " + kRefusal);
    const auto& at = header->columns;
    const auto filled = [&](int row, Column column) {
        return at[column] >= 0 && !std::holds_alternative<std::monostate>(sheet.cell(row, at[column]));
    };
    ObservedLevelsFile file;
    for (int row : sheet.rowsBelow(header->row)) {
        if (!filled(row, Energy)) continue;
        std::vector<std::string> fields(3, "-");
        if (filled(row, StateNumber)) fields[0] = numberField(sheet, row, at[StateNumber], "state number");
        if (filled(row, Label)) fields[1] = std::string(trim(sheet.text(row, at[Label])));
        const std::string energy(trim(sheet.text(row, at[Energy])));
        const bool withheld = std::holds_alternative<std::string>(sheet.cell(row, at[Energy])) && energy.starts_with('[');
        fields[2] = withheld ? energy : numberField(sheet, row, at[Energy], "observed energy");
        for (Column g : {Gz, Gx, Gy})
            if (filled(row, g)) fields.push_back(kGKeys[g - Gz] + numberField(sheet, row, at[g], "g-factor"));
        appendObservedLevelRow(fields, sheet.where(), row + 1, file);
    }
    return file;
}

Spreadsheet observedLevelsSheet(const std::vector<ObservedLevel>& levels, const std::vector<ObservedGFactor>& gFactors,
                                const std::string& date, bool calculated) {
    Spreadsheet sheet({}, "Observed levels");
    std::vector<SheetValue> headings = {"State#", "State Label", "Obs.Energy", "g-factor", "gx", "gy"};
    if (calculated) headings.insert(headings.end(), {"Calc.Energy", "E_Diff.", "Fit_Err"});
    sheet.setRow(0, headings);
    const auto byRow = observedGFactorsByRow(levels, gFactors);
    for (std::size_t i = 0; i < levels.size(); ++i) {
        const int row = static_cast<int>(i) + 1;
        const ObservedLevel& level = levels[i];
        if (level.stateNumber != 0) sheet.setNumber(row, StateNumber, level.stateNumber);
        sheet.setText(row, Label, level.stateLabel);
        if (level.withheld) sheet.setText(row, Energy, "[" + exactNumberText(level.observedEnergy) + "]");
        else
            sheet.setNumber(row, Energy, level.observedEnergy, kEnergyFormat);
        for (const ObservedGFactor& g : byRow[i])
            sheet.setNumber(row, g.component == GComponent::Z ? Gz : g.component == GComponent::X ? Gx : Gy, g.observed,
                            kGFormat);
        if (!calculated) continue;
        int column = kColumns;
        for (double value : {level.calculatedEnergy, level.energyDifference, level.fitError})
            sheet.setNumber(row, column++, value, kEnergyFormat);
    }
    return sheet.withDateRow(date);
}

Spreadsheet gFactorTableSheet(const std::vector<ObservedGFactor>& gFactors, const std::string& date) {
    Spreadsheet sheet({}, "g-factors");
    sheet.setRow(0, {"State#", "State Label", "Component", "Obs.g", "Calc.g", "g_Diff."});
    for (std::size_t i = 0; i < gFactors.size(); ++i) {
        const auto& g = gFactors[i];
        const int row = static_cast<int>(i) + 1;
        const char* component = g.component == GComponent::X ? "gx" : g.component == GComponent::Y ? "gy" : "gz";
        sheet.setRow(row, {double(g.stateNumber), g.label, component});
        sheet.setNumber(row, 3, g.observed, kGFormat);
        sheet.setNumber(row, 4, g.calculated, kGFormat);
        sheet.setNumber(row, 5, g.difference, kGFormat);
    }
    return sheet.withDateRow(date);
}

}  // namespace orvane
