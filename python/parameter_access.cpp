#include "python/parameter_access.hpp"

#include <array>
#include <cmath>
#include <cstddef>

#include <fmt/format.h>

#include "core/text.hpp"
#include "core/user_error.hpp"
#include "engine/other_free_ion.hpp"

namespace orvane {
namespace {

constexpr const char* kErrorTitle = "Error in parameters";
constexpr std::array<std::string_view, 5> kMainNames = {"EAVG", "F2", "F4", "F6", "ZETA"};

std::string mainName(const ParameterSet& set, std::size_t i) {
    const auto& name = set.mainFreeIon[i].name;
    return name.empty() ? std::string(kMainNames[i]) : name;
}

std::optional<std::size_t> mainIndex(const ParameterSet& set, const std::string& upper) {
    for (std::size_t i = 0; i < set.mainFreeIon.size(); ++i)
        if (toUpper(mainName(set, i)) == upper) return i;
    return std::nullopt;
}

struct CrystalFieldName {
    int k = 0;
    int q = 0;
    bool imaginary = false;
};

// "B43" -> (4, 3), "IMB43" -> imaginary, "B122" -> (12, 2): a rank above 9 takes two digits.
std::optional<CrystalFieldName> crystalFieldName(const std::string& upper) {
    CrystalFieldName name;
    std::string_view rest = upper;
    if (rest.starts_with("IM")) {
        name.imaginary = true;
        rest.remove_prefix(2);
    }
    if (!rest.starts_with("B")) return std::nullopt;
    rest.remove_prefix(1);
    if (rest.size() < 2 || rest.size() > 4 || rest.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    const std::size_t rankDigits = rest.size() > 2 ? 2 : 1;
    name.k = std::stoi(std::string(rest.substr(0, rankDigits)));
    name.q = std::stoi(std::string(rest.substr(rankDigits)));
    if (name.k > kMaxCrystalFieldRank || name.q > name.k) return std::nullopt;
    return name;
}

// The text a value takes in its cell: the shortest form that reads back to the same number.
ParameterCell cellOf(double value) { return {fmt::format("{}", value), value}; }

}  // namespace

std::vector<std::string> parameterNames(const ParameterSet& set) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < set.mainFreeIon.size(); ++i) names.push_back(mainName(set, i));
    for (const auto& row : set.otherFreeIon) names.push_back(toUpper(row.name));
    for (const auto& row : set.crystalField) {
        names.push_back(fmt::format("B{}{}", row.k, row.q));
        if (row.im.value != 0.0) names.push_back(fmt::format("ImB{}{}", row.k, row.q));
    }
    return names;
}

std::optional<double> parameterValue(const ParameterSet& set, std::string_view name) {
    const std::string upper = toUpper(trim(name));
    if (const auto i = mainIndex(set, upper)) return set.mainFreeIon[*i].cell.value;
    if (otherFreeIonIndex(upper)) return resolveOtherFreeIon(set.otherFreeIon)[upper];
    const auto cf = crystalFieldName(upper);
    if (!cf) return std::nullopt;
    double value = 0.0;  // a later row of the same k, q replaces an earlier one, as in the engine
    for (const auto& row : set.crystalField)
        if (row.k == cf->k && row.q == cf->q) value = cf->imaginary ? row.im.value : row.re.value;
    return value;
}

void setParameterValue(ParameterSet& set, std::string_view name, double value) {
    if (!std::isfinite(value))
        throw UserError(kErrorTitle, fmt::format("the value of {} is not a finite number", name));
    const std::string upper = toUpper(trim(name));
    if (const auto i = mainIndex(set, upper)) {
        set.mainFreeIon[*i].cell = cellOf(value);
        return;
    }
    if (const auto index = otherFreeIonIndex(upper)) {
        FreeIonRow* found = nullptr;
        for (auto& row : set.otherFreeIon)
            if (otherFreeIonIndex(row.name) == index) found = &row;
        if (!found) found = &set.otherFreeIon.emplace_back(FreeIonRow{std::string(kOtherFreeIonNames[*index]), {}});
        found->cell = cellOf(value);
        return;
    }
    const auto cf = crystalFieldName(upper);
    if (!cf) throw UserError(kErrorTitle, fmt::format("{} is not a parameter of a parameter set", name));
    CrystalFieldRow* found = nullptr;
    for (auto& row : set.crystalField)
        if (row.k == cf->k && row.q == cf->q) found = &row;
    if (!found) found = &set.crystalField.emplace_back(CrystalFieldRow{cf->k, cf->q, cellOf(0.0), cellOf(0.0)});
    (cf->imaginary ? found->im : found->re) = cellOf(value);
}

}  // namespace orvane
