#include "engine/other_free_ion.hpp"

#include "core/text.hpp"
#include "core/user_error.hpp"
#include "engine/cell_value.hpp"

namespace orvane {
namespace {

constexpr std::size_t kM0 = 10, kM2 = 11, kM4 = 12, kP2 = 13, kP4 = 14, kP6 = 15;

// Conventional ratios used when a row is left blank (Hartree-Fock-type ratios
// of the Marvin integrals and of the P^k; see docs/parameter-file.md).
constexpr double kM2PerM0 = 0.56, kM4PerM0 = 0.38, kP4PerP2 = 0.75, kP6PerP2 = 0.5;

bool endsWithIgnoringCase(std::string_view text, std::string_view suffix) {
    return text.size() > suffix.size() &&
           iequals(text.substr(text.size() - suffix.size()), suffix);
}

}  // namespace

std::optional<std::size_t> otherFreeIonIndex(std::string_view name) {
    const std::string upper = toUpper(trim(name));
    for (std::size_t i = 0; i < kOtherFreeIonNames.size(); ++i)
        if (upper == kOtherFreeIonNames[i]) return i;
    return std::nullopt;
}

std::optional<std::string> defaultMultipleText(std::string_view name) {
    const auto index = otherFreeIonIndex(name);
    if (!index) return std::nullopt;
    switch (*index) {
        case kM2: return exactNumberText(kM2PerM0) + "M0";
        case kM4: return exactNumberText(kM4PerM0) + "M0";
        case kP4: return exactNumberText(kP4PerP2) + "P2";
        case kP6: return exactNumberText(kP6PerP2) + "P2";
        default: return std::nullopt;
    }
}

std::optional<OtherFreeIonCell> readOtherFreeIonCell(std::string_view name, std::string_view text) {
    const std::string cell = withoutBlanks(text);
    if (cell.empty()) return OtherFreeIonCell{};
    if (const auto number = readCellNumber(cell))
        return OtherFreeIonCell{OtherFreeIonForm::Number, *number};
    const auto index = otherFreeIonIndex(name);
    if (!index) return std::nullopt;
    const bool ofM0 = (*index == kM2 || *index == kM4) && endsWithIgnoringCase(cell, "M0");
    const bool ofP2 = (*index == kP4 || *index == kP6) && endsWithIgnoringCase(cell, "P2");
    if (!ofM0 && !ofP2) return std::nullopt;
    const std::string_view factorText = std::string_view(cell).substr(0, cell.size() - 2);
    const auto factor = parseNumber(factorText);
    if (!factor) return std::nullopt;
    return OtherFreeIonCell{ofM0 ? OtherFreeIonForm::MultipleOfM0 : OtherFreeIonForm::MultipleOfP2,
                            *factor};
}

double OtherFreeIonValues::operator[](std::string_view name) const {
    const auto index = otherFreeIonIndex(name);
    return index ? value[*index] : 0.0;
}

OtherFreeIonValues resolveOtherFreeIon(const std::vector<FreeIonRow>& rows) {
    std::array<std::optional<OtherFreeIonCell>, kOtherFreeIonNames.size()> cells{};
    for (const FreeIonRow& row : rows) {
        const auto index = otherFreeIonIndex(row.name);
        if (!index)
            throw UserError("Error in Main", "Invalid Other Free-ion Parameter name: " + row.name);
        const auto cell = readOtherFreeIonCell(row.name, row.cell.text);
        if (!cell)
            throw UserError("Error in Main", "Invalid value of other free-ion parameter " +
                                                 row.name + ": " + row.cell.text);
        cells[*index] = cell->form == OtherFreeIonForm::Blank ? std::nullopt : cell;
    }
    OtherFreeIonValues result;
    // Plain numbers first, so that multiples see the set's M0 and P2.
    for (std::size_t i = 0; i < cells.size(); ++i) {
        result.fromDefault[i] = !cells[i].has_value();
        if (cells[i] && cells[i]->form == OtherFreeIonForm::Number) result.value[i] = cells[i]->number;
    }
    const double m0 = result.value[kM0];
    const double p2 = result.value[kP2];
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (!cells[i]) continue;
        if (cells[i]->form == OtherFreeIonForm::MultipleOfM0) result.value[i] = cells[i]->number * m0;
        if (cells[i]->form == OtherFreeIonForm::MultipleOfP2) result.value[i] = cells[i]->number * p2;
    }
    if (result.fromDefault[kM2]) result.value[kM2] = kM2PerM0 * m0;
    if (result.fromDefault[kM4]) result.value[kM4] = kM4PerM0 * m0;
    if (result.fromDefault[kP4]) result.value[kP4] = kP4PerP2 * p2;
    if (result.fromDefault[kP6]) result.value[kP6] = kP6PerP2 * p2;
    return result;
}

}  // namespace orvane
