#include "engine/crystal_field_table.hpp"

#include <cstdlib>
#include <numeric>

#include "core/user_error.hpp"
#include "params/value_cell.hpp"

namespace orvane {
params::ValueCell valueCellOf(const ParameterCell& cell) { return {cell.text, cell.value}; }
ParameterCell parameterCellOf(const params::ValueCell& cell) {
    return {cell.text.empty() ? "0" : cell.text, params::cellNumber(cell)};
}

params::CfNormalisation normalisationOf(CfConvention convention) {
    switch (convention) {
        case CfConvention::Stevens: return params::CfNormalisation::Stevens;
        case CfConvention::UnitOperators: return params::CfNormalisation::UnitTensor;
        case CfConvention::Wybourne: break;
    }
    return params::CfNormalisation::Wybourne;
}

CfConvention conventionOf(params::CfNormalisation normalisation) {
    switch (normalisation) {
        case params::CfNormalisation::Stevens: return CfConvention::Stevens;
        case params::CfNormalisation::UnitTensor: return CfConvention::UnitOperators;
        case params::CfNormalisation::Wybourne: break;
    }
    return CfConvention::Wybourne;
}

params::CfTable crystalFieldTableOf(const ParameterSet& set) {
    params::CfTable table;
    table.complexMode = true;
    for (const CrystalFieldRow& row : set.crystalField)
        table.rows.push_back({row.k, row.q, valueCellOf(row.re), valueCellOf(row.im)});
    return table;
}

std::optional<int> storeCrystalFieldTable(ParameterSet& set, const params::CfTable& table) {
    set.crystalField.clear();
    for (const params::CfRow& row : table.rows)
        set.crystalField.push_back({row.k, row.q, parameterCellOf(row.re), parameterCellOf(row.im)});
    int divisor = 0;
    for (const CrystalFieldRow& row : set.crystalField)
        if (row.q != 0 && (row.re.value != 0.0 || row.im.value != 0.0)) divisor = std::gcd(divisor, std::abs(row.q));
    if (divisor == 0 || (set.fold > 0 && divisor % set.fold == 0)) return std::nullopt;
    const int before = set.fold;
    set.fold = divisor;
    return before;
}

std::string normalisationName(params::CfNormalisation normalisation) {
    switch (normalisation) {
        case params::CfNormalisation::Stevens: return "Stevens";
        case params::CfNormalisation::UnitTensor: return "unit operators";
        case params::CfNormalisation::Wybourne: break;
    }
    return "Wybourne";
}

void convertCrystalFieldConvention(ParameterSet& set, params::CfConversion conversion, bool complexMode) {
    const params::CfNormalisation current = normalisationOf(set.cfConvention);
    const params::CfNormalisation from = params::conversionSource(conversion);
    if (current != from)
        throw UserError("Error in CFP conversion", "The crystal-field parameters are in " +
                                                       normalisationName(current) + " form, not " +
                                                       normalisationName(from));
    params::CfTable table = crystalFieldTableOf(set);
    table.complexMode = complexMode;
    params::convertTable(table, conversion);
    storeCrystalFieldTable(set, table);
    set.cfConvention = conventionOf(params::conversionTarget(conversion));
}

}  // namespace orvane
