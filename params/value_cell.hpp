#pragma once
// Value cells: "12.5" or "12.5(0.3)" -- a number, optionally followed directly
// by its uncertainty in parentheses (same unit as the value). Cells that carry
// other text after the number (e.g. "0.56M0", a multiple of another parameter)
// are left alone by every rescaling, because they scale with the parameter
// they refer to.
#include <optional>
#include <string>
#include <string_view>

#include "params/cf_records.hpp"

namespace orvane::params {

struct ParsedCell {
    double value = 0.0;                 // 0 for a cell holding no number
    std::optional<double> uncertainty;  // from "(...)"
    bool hasNumber = false;
    bool plain = true;  // only a number and an optional "(uncertainty)"
};

ParsedCell parseValueCell(std::string_view text);

// The picture every rescaled value and uncertainty is written with.
inline constexpr std::string_view kCellPicture = "###0.0#";

// Text of a value with an optional uncertainty, "12.34(0.5)", with kCellPicture.
std::string formatValueCell(double value, std::optional<double> uncertainty,
                            std::string_view picture = kCellPicture);

// The number a cell stands for: its `value` when the text is that value written
// with kCellPicture (so that chains of conversions keep full precision), else the
// number read from the text (the user edited it), 0 when the text holds none.
double cellNumber(const ValueCell& cell);

// Multiplies the value by f and the uncertainty by |f| and writes the cell back.
// Cells with extra text (multiples) are left unchanged; an empty cell stays empty.
// The text shows the rounded value; `value` keeps the unrounded product.
void rescaleCell(ValueCell& cell, double factor);

// A cell holding `value` with the given picture (no uncertainty).
ValueCell makeCell(double value, std::string_view picture = kCellPicture);

}  // namespace orvane::params
