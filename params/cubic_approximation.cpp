#include "params/cubic_approximation.hpp"

#include <cmath>

#include "core/number_format.hpp"
#include "params/cf_conventions.hpp"
#include "params/value_cell.hpp"

namespace orvane::params {

// Cubic ratios and invariant factors (Lea, Leask & Wolf 1962 in Wybourne form;
// the [111] set is the [001] set rotated by the cube-diagonal rotation).
std::vector<CubicParameter> cubicSet(const Invariants& inv, double signB40, double signB60,
                                     CubicAxis axis) {
    const double s4 = inv.s[1], sig4 = inv.sigmaS[1];
    const double s6 = inv.s[2], sig6 = inv.sigmaS[2];
    const double sg4 = signB40 < 0.0 ? -1.0 : 1.0;
    const double sg6 = signB60 < 0.0 ? -1.0 : 1.0;
    std::vector<CubicParameter> set;
    if (axis == CubicAxis::Fourfold001) {
        const double f40 = std::sqrt(21.0 / 4.0), f60 = std::sqrt(13.0 / 8.0);
        const double r44 = std::sqrt(5.0 / 14.0), r64 = -std::sqrt(7.0 / 2.0);
        const double b40 = sg4 * f40 * s4, b60 = sg6 * f60 * s6;
        const double e40 = f40 * sig4, e60 = f60 * sig6;
        set = {{4, 0, b40, e40}, {4, 4, r44 * b40, std::fabs(r44) * e40},
               {6, 0, b60, e60}, {6, 4, r64 * b60, std::fabs(r64) * e60}};
    } else {
        const double f40 = std::sqrt(7.0 / 3.0), f60 = (4.0 / 9.0) * std::sqrt(26.0);
        const double r43 = std::sqrt(10.0 / 7.0);
        const double r63 = -0.25 * std::sqrt(35.0 / 6.0), r66 = 0.125 * std::sqrt(77.0 / 3.0);
        const double b40 = sg4 * f40 * s4, b60 = sg6 * f60 * s6;
        const double e40 = f40 * sig4, e60 = f60 * sig6;
        set = {{4, 0, b40, e40},
               {4, 3, r43 * b40, std::fabs(r43) * e40},
               {6, 0, b60, e60},
               {6, 3, r63 * b60, std::fabs(r63) * e60},
               {6, 6, r66 * b60, std::fabs(r66) * e60}};
    }
    return set;
}

std::vector<std::string> cubicListing(const std::vector<CubicParameter>& set, CubicAxis axis) {
    std::vector<std::string> lines;
    lines.push_back(axis == CubicAxis::Fourfold001
                        ? "Cubic approximation of crystal field parameters along 4-fold [001] axis:"
                        : "Cubic approximation of crystal field parameters along 3-fold [111] axis:");
    for (const CubicParameter& p : set)
        lines.push_back("B" + std::to_string(p.k) + std::to_string(p.q) + " = " +
                        formatNumber(p.value, "###0.###") +
                        (p.sigma > 0.0 ? " +/- " + formatNumber(p.sigma, "##.###") : std::string()));
    return lines;
}

CfTable cubicTable(const std::vector<CubicParameter>& set) {
    CfTable table;
    table.complexMode = true;
    for (const CubicParameter& p : set) {
        CfRow row;
        row.k = p.k;
        row.q = p.q;
        row.re.text = formatValueCell(p.value, p.sigma > 0.0 ? std::optional<double>(p.sigma)
                                                             : std::nullopt);
        row.re.value = p.value;
        row.im = makeCell(0.0);
        table.rows.push_back(row);
    }
    return table;
}

}  // namespace orvane::params
