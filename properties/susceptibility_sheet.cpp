#include "properties/susceptibility_sheet.hpp"

#include <cmath>

namespace orvane {
namespace {

std::string valueFormat(double value) {
    return std::abs(value) < 0.001 && value != 0.0 ? "0.0000E+00" : "#0.000000";
}

}  // namespace

Spreadsheet susceptibilitySheet(const std::vector<SusceptibilityPoint>& points, const std::string& date) {
    Spreadsheet sheet({}, "Susceptibility");
    sheet.setRow(0, {"Temperature/K", "X(Average)", "C(Average)", "X(x)", "X(y)", "X(z)", "C(x)", "C(y)", "C(z)"});
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto& point = points[i];
        const double t = point.temperature;
        const std::vector<double> values = {point.average(), curieConstant(point.average(), t),
                                            point.chi[0],    point.chi[1],
                                            point.chi[2],    curieConstant(point.chi[0], t),
                                            curieConstant(point.chi[1], t), curieConstant(point.chi[2], t)};
        const int row = static_cast<int>(i) + 1;
        sheet.setNumber(row, 0, t, "##0.0000");
        for (std::size_t c = 0; c < values.size(); ++c)
            sheet.setNumber(row, static_cast<int>(c) + 1, values[c], valueFormat(values[c]));
    }
    return sheet.withDateRow(date);
}

}  // namespace orvane
