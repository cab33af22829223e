#include "params/cf_conventions.hpp"

#include <cstdlib>

#include "core/user_error.hpp"
#include "params/stevens_lambda.hpp"
#include "params/value_cell.hpp"

namespace orvane::params {

namespace {

bool isStevensConversion(CfConversion c) {
    return c == CfConversion::StevensToWybourne || c == CfConversion::WybourneToStevens;
}

}  // namespace

// Stevens: A(q,k)<r^k> = lambda(k,q) Re B(k,q), A(-q,k)<r^k> = -lambda(k,q) Im B(k,q)
// (operator equivalents against Racah's C(k,q)); unit tensor: B(U) = <f||C(k)||f> B(C).
double conversionFactor(CfConversion conversion, int k, int q) {
    switch (conversion) {
        case CfConversion::StevensToWybourne: {
            const double lambda = stevensFactor(k, q);
            return lambda == 0.0 ? 0.0 : 1.0 / lambda;
        }
        case CfConversion::WybourneToStevens: return stevensFactor(k, q);
        case CfConversion::WybourneToUnit: return unitTensorFactor(k);
        case CfConversion::UnitToWybourne: {
            const double c = unitTensorFactor(k);
            return c == 0.0 ? 0.0 : 1.0 / c;
        }
    }
    return 0.0;
}

std::optional<int> applyConversion(CfTable& table, CfConversion conversion) {
    for (std::size_t i = 0; i < table.rows.size(); ++i) {
        CfRow& row = table.rows[i];
        const int aq = std::abs(row.q);
        if (row.k > kMaxRank || aq > row.k || row.k < 0) return static_cast<int>(i) + 1;
        const double f = conversionFactor(conversion, row.k, aq);
        if (f == 0.0) continue;  // k = 0 or odd k: no factor, row unchanged
        rescaleCell(row.re, f);
        if (table.complexMode) rescaleCell(row.im, isStevensConversion(conversion) ? -f : f);
    }
    return std::nullopt;
}

void convertTable(CfTable& table, CfConversion conversion) {
    if (applyConversion(table, conversion))
        throw UserError("Error in CFP conversion", "Incorrect values of kq in CFP!");
}

std::optional<CfConversion> conversionToWybourne(CfNormalisation from) {
    switch (from) {
        case CfNormalisation::Stevens: return CfConversion::StevensToWybourne;
        case CfNormalisation::UnitTensor: return CfConversion::UnitToWybourne;
        case CfNormalisation::Wybourne: break;
    }
    return std::nullopt;
}

std::optional<CfConversion> conversionFromWybourne(CfNormalisation to) {
    switch (to) {
        case CfNormalisation::Stevens: return CfConversion::WybourneToStevens;
        case CfNormalisation::UnitTensor: return CfConversion::WybourneToUnit;
        case CfNormalisation::Wybourne: break;
    }
    return std::nullopt;
}

CfNormalisation conversionSource(CfConversion conversion) {
    switch (conversion) {
        case CfConversion::StevensToWybourne: return CfNormalisation::Stevens;
        case CfConversion::UnitToWybourne: return CfNormalisation::UnitTensor;
        case CfConversion::WybourneToStevens:
        case CfConversion::WybourneToUnit: break;
    }
    return CfNormalisation::Wybourne;
}

CfNormalisation conversionTarget(CfConversion conversion) {
    switch (conversion) {
        case CfConversion::WybourneToStevens: return CfNormalisation::Stevens;
        case CfConversion::WybourneToUnit: return CfNormalisation::UnitTensor;
        case CfConversion::StevensToWybourne:
        case CfConversion::UnitToWybourne: break;
    }
    return CfNormalisation::Wybourne;
}

void rotateInTensorForm(CfTable& table, CfNormalisation form, const std::function<void(CfTable&)>& rotation) {
    if (form != CfNormalisation::Stevens) {
        rotation(table);
        return;
    }
    convertTable(table, CfConversion::StevensToWybourne);
    rotation(table);
    convertTable(table, CfConversion::WybourneToStevens);
}

}  // namespace orvane::params
