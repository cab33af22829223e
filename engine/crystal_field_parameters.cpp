#include "engine/crystal_field_parameters.hpp"

#include <map>
#include <string>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include "core/user_error.hpp"
#include "engine/engine_errors.hpp"
#include "params/cf_conventions.hpp"
#include "params/cubic_approximation.hpp"

namespace orvane {

namespace {

std::string keyText(const CrystalFieldRow& row, std::string_view name = "B") {
    return fmt::format("{}({},{})", name, row.k, row.q);
}

std::string_view parameterLetter(CrystalFieldOperator op) {
    switch (op) {
        case CrystalFieldOperator::Sccf: return "SCCF c";
        case CrystalFieldOperator::Lccf: return "LCCF d";
        case CrystalFieldOperator::OccfA: return "OCCF g(K)10A ";
        case CrystalFieldOperator::OccfB: return "OCCF g(K)10B ";
        case CrystalFieldOperator::Standard: break;
    }
    return "B";
}

// Checks of one row: finite values, rank 2, 4, 6, 0 <= q <= k, q = 0 real,
// no imaginary part for the real engine.
void checkRow(const CrystalFieldRow& row, std::string_view name, bool complex) {
    const auto text = keyText(row, name);
    requireFiniteParameter(row.re.value, text);
    requireFiniteParameter(row.im.value, text);
    if (row.k != 2 && row.k != 4 && row.k != 6)
        throw UserError(kCfHamiltonianError, fmt::format("{}: rank k must be 2, 4 or 6", text));
    if (row.q < 0 || row.q > row.k)
        throw UserError(kCfHamiltonianError, fmt::format("{}: q must lie between 0 and k", text));
    if (row.q == 0 && row.im.value != 0.0)
        throw UserError(kCfHamiltonianError, fmt::format("{}: {}(k,0) is real; the imaginary part must be 0", text, name));
    if (!complex && row.im.value != 0.0)
        throw UserError(kCfHamiltonianError, fmt::format("{}: imaginary part {} needs the complex engine", text,
                                                         row.im.value));
}

CrystalFieldRow rowOf(int k, int q, double re, double im = 0.0) {
    return {k, q, {fmt::format("{}", re), re}, {fmt::format("{}", im), im}};
}

// Adds the rows of one operator (later rows of the same k, q replace earlier ones).
void addRows(CrystalFieldValues& values, const std::vector<CrystalFieldRow>& rows, CrystalFieldOperator op,
             double sign, int fold) {
    std::map<std::pair<int, int>, std::pair<double, double>> byKey;
    for (const auto& row : rows) byKey[{row.k, row.q}] = {row.re.value, row.im.value};
    for (const auto& [kq, value] : byKey) {
        if (value.first == 0.0 && value.second == 0.0) continue;
        if (fold < 1 || kq.second % fold != 0)
            throw UserError(kCfHamiltonianError, fmt::format("{}({},{}) couples different blocks of the fold {}: "
                                                             "the fold of symmetry axis does not match the parameters",
                                                             parameterLetter(op), kq.first, kq.second, fold));
        values.keys.push_back({kq.first, kq.second, op});
        values.re.push_back(sign * value.first);
        values.im.push_back(sign * value.second);
    }
}

}  // namespace

CrystalFieldOperator operatorOf(CorrelationKind kind) {
    switch (kind) {
        case CorrelationKind::Lccf: return CrystalFieldOperator::Lccf;
        case CorrelationKind::OccfA: return CrystalFieldOperator::OccfA;
        case CorrelationKind::OccfB: return CrystalFieldOperator::OccfB;
        case CorrelationKind::Sccf: break;
    }
    return CrystalFieldOperator::Sccf;
}

std::vector<CrystalFieldRow> wybourneRowsOf(const ParameterSet& set) {
    if (set.cfConvention == CfConvention::Wybourne) return set.crystalField;
    const auto conversion = set.cfConvention == CfConvention::Stevens ? params::CfConversion::StevensToWybourne
                                                                      : params::CfConversion::UnitToWybourne;
    // The Stevens sine-type parameter is -lambda Im B: the imaginary column takes the negated factor.
    const double imaginarySign = set.cfConvention == CfConvention::Stevens ? -1.0 : 1.0;
    std::vector<CrystalFieldRow> rows;
    for (const auto& row : set.crystalField) {
        if (row.k != 2 && row.k != 4 && row.k != 6) {
            rows.push_back(row);  // refused later with its message
            continue;
        }
        const double factor = params::conversionFactor(conversion, row.k, row.q);
        rows.push_back(rowOf(row.k, row.q, factor * row.re.value, imaginarySign * factor * row.im.value));
    }
    return rows;
}

std::vector<CrystalFieldRow> cubicCrystalFieldRows(double b40, double b60, int fold) {
    if (fold != 1 && fold != 2 && fold != 3 && fold != 4)
        throw UserError(kCfHamiltonianError,
                        fmt::format("Cubic Crystal Field assumed! needs a fold of 1, 2 or 4 (main axis [001]) or 3 "
                                    "(main axis [111]), not {}",
                                    fold));
    const auto axis = fold == 3 ? params::CubicAxis::Threefold111 : params::CubicAxis::Fourfold001;
    params::Invariants unit;
    unit.s = {0.0, 1.0, 1.0};
    const auto set = params::cubicSet(unit, 1.0, 1.0, axis);
    // The set's B(4,0) and B(6,0) scale the relations: B(k,q) = (set B(k,q) / set B(k,0)) B(k,0).
    double set40 = 0.0, set60 = 0.0;
    for (const auto& p : set) {
        if (p.k == 4 && p.q == 0) set40 = p.value;
        if (p.k == 6 && p.q == 0) set60 = p.value;
    }
    std::vector<CrystalFieldRow> rows;
    for (const auto& p : set) rows.push_back(rowOf(p.k, p.q, p.value * (p.k == 4 ? b40 / set40 : b60 / set60)));
    return rows;
}

CrystalFieldValues crystalFieldParametersOf(const ParameterSet& set, bool conjugate, bool complex) {
    CrystalFieldValues values;
    for (const auto& row : set.crystalField) checkRow(row, "B", complex);
    auto rows = wybourneRowsOf(set);
    if (set.switches.cubicCF) {
        double b40 = 0.0, b60 = 0.0;
        for (const auto& row : rows) {
            if (row.k == 4 && row.q == 0) b40 = row.re.value;
            if (row.k == 6 && row.q == 0) b60 = row.re.value;
        }
        rows = cubicCrystalFieldRows(b40, b60, set.fold);
    }
    addRows(values, rows, CrystalFieldOperator::Standard, conjugate ? -1.0 : 1.0, set.fold);
    for (const auto& section : set.correlationCF) {
        const auto op = operatorOf(section.kind);
        for (const auto& row : section.rows) checkRow(row, parameterLetter(op), complex);
        addRows(values, section.rows, op, 1.0, set.fold);
    }
    return values;
}

}  // namespace orvane
