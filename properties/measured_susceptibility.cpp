#include "properties/measured_susceptibility.hpp"

#include "core/atomic_file.hpp"
#include "spreadsheet/csv_format.hpp"

namespace orvane {

MeasuredSusceptibilityData measuredSusceptibilityOf(const Spreadsheet& sheet, std::size_t rowLimit) {
    const auto header = findHeaderRow(sheet, {{"Temperature", true, true}, {"Average", true, true}});
    if (!header)
        throw SpreadsheetError("Magnetic susceptibility data file error",
                               sheet.where() + ": Data file error: Incorrect structure of Excel for the magnetic susceptibility");
    const int temperatureColumn = header->columns[0], averageColumn = header->columns[1];
    MeasuredSusceptibilityData data;
    for (int row : sheet.rowsBelow(header->row)) {
        if (data.points.size() == rowLimit) {
            ++data.rowsBeyondLimit;
            continue;
        }
        const double t = sheet.number(row, temperatureColumn, "temperature");
        if (t <= 0.0) sheet.fail(row, temperatureColumn, "the temperature is not positive");
        data.points.push_back({t, sheet.number(row, averageColumn, "susceptibility")});
    }
    return data;
}

MeasuredSusceptibilityData parseMeasuredSusceptibility(const std::string& text, const std::string& fileName,
                                                       std::size_t rowLimit) {
    return measuredSusceptibilityOf(parseCsv(text, fileName), rowLimit);
}

MeasuredSusceptibilityData readMeasuredSusceptibility(const std::filesystem::path& path, std::size_t rowLimit,
                                                      std::string_view sheet) {
    if (Spreadsheet::isSpreadsheetPath(path)) return measuredSusceptibilityOf(Spreadsheet::open(path, sheet), rowLimit);
    return parseMeasuredSusceptibility(readTextFile(path), path.string(), rowLimit);  // CSV under another name
}

}  // namespace orvane
