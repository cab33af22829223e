#include "engine/editor_checks.hpp"

#include <array>
#include <cctype>
#include <cstdlib>

#include "core/text.hpp"
#include "engine/cell_value.hpp"
#include "params/crystal_field_symmetry.hpp"

namespace orvane {
namespace {

// Element symbols in order of the f-electron count of their trivalent ions:
// La3+ 4f0 ... Lu3+ 4f14, Ac3+ 5f0 ... Lr3+ 5f14.
constexpr std::array<std::string_view, 15> kLanthanides = {
    "LA", "CE", "PR", "ND", "PM", "SM", "EU", "GD", "TB", "DY", "HO", "ER", "TM", "YB", "LU"};
constexpr std::array<std::string_view, 15> kActinides = {
    "AC", "TH", "PA", "U", "NP", "PU", "AM", "CM", "BK", "CF", "ES", "FM", "MD", "NO", "LR"};

std::optional<int> trivalentElectrons(std::string_view symbolUpper) {
    for (std::size_t i = 0; i < kLanthanides.size(); ++i) {
        if (symbolUpper == kLanthanides[i]) return static_cast<int>(i);
        if (symbolUpper == kActinides[i]) return static_cast<int>(i);
    }
    return std::nullopt;
}

bool isBlankEntry(const CrystalFieldEntry& e) {
    return trim(e.k).empty() && trim(e.q).empty() && trim(e.re).empty() && trim(e.im).empty();
}

// The ion charge written right after the symbol: "3+", "+3", "+++" (or none: 3).
std::optional<int> chargeAfterSymbol(std::string_view rest) {
    std::size_t i = 0;
    if (i < rest.size() && std::isdigit(static_cast<unsigned char>(rest[i]))) {
        int charge = 0;
        while (i < rest.size() && std::isdigit(static_cast<unsigned char>(rest[i])) && charge < 100)
            charge = charge * 10 + (rest[i++] - '0');
        if (i < rest.size() && rest[i] == '+') return charge;
        return std::nullopt;
    }
    if (i < rest.size() && rest[i] == '+') {
        if (i + 1 < rest.size() && std::isdigit(static_cast<unsigned char>(rest[i + 1]))) {
            int charge = 0;
            ++i;
            while (i < rest.size() && std::isdigit(static_cast<unsigned char>(rest[i])) && charge < 100)
                charge = charge * 10 + (rest[i++] - '0');
            return charge;
        }
        int charge = 0;
        while (i < rest.size() && rest[i] == '+') ++charge, ++i;
        return charge;
    }
    return 3;
}

}  // namespace

std::vector<std::string> checkCrystalFieldTable(const std::vector<CrystalFieldEntry>& rows) {
    std::vector<std::string> messages;
    bool anyFilled = false;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const CrystalFieldEntry& row = rows[i];
        if (isBlankEntry(row)) continue;
        anyFilled = true;
        const std::string number = std::to_string(i + 1);
        const auto k = parseInteger(trim(row.k));
        const bool kValid = k && *k >= 0 && *k <= kMaxCrystalFieldRank;
        if (!kValid) messages.push_back("Invalid k in entry #" + number);
        const auto q = parseInteger(trim(row.q));
        if (!q || (kValid && std::abs(*q) > *k)) messages.push_back("Invalid q in entry #" + number);
        const std::string im = withoutBlanks(row.im);
        if (!readCellNumber(withoutBlanks(row.re)) || (!im.empty() && !readCellNumber(im)))
            messages.push_back("Invalid crystal field value in entry #" + number);
    }
    if (!anyFilled) messages.push_back("No Crystal Field Parameters entered!");
    return messages;
}

IonElectrons electronsFromTitle(std::string_view title) {
    const std::string_view text = trim(title);
    std::size_t letters = 0;
    while (letters < text.size() && std::isalpha(static_cast<unsigned char>(text[letters])))
        ++letters;
    // The symbol is the whole run of letters at the start ("Er", "U").
    const std::size_t symbolLength = letters;
    const std::optional<int> base =
        letters >= 1 && letters <= 2 ? trivalentElectrons(toUpper(text.substr(0, letters)))
                                     : std::nullopt;
    if (!base) return {std::nullopt, "Not a f-shell ion: " + std::string(title)};
    const auto charge = chargeAfterSymbol(text.substr(symbolLength));
    if (!charge) return {std::nullopt, "Not a f-shell ion: " + std::string(title)};
    const int electrons = *base + 3 - *charge;
    if (electrons < 0 || electrons > 14)
        return {std::nullopt, "Invalid no. of electron from ion charge = " + std::to_string(electrons)};
    return {electrons, ""};
}

const std::vector<PointGroup>& crystallographicPointGroups() {
    static const std::vector<PointGroup> groups = [] {
        std::vector<PointGroup> list;
        for (int n = 1; n <= params::kPointGroupCount; ++n)
            list.push_back({params::pointGroup(n).name, params::pointGroup(n).fold});
        return list;
    }();
    return groups;
}

const PointGroup* pointGroupByIndex(int index) {
    const auto& groups = crystallographicPointGroups();
    if (index < 1 || index > static_cast<int>(groups.size())) return nullptr;
    return &groups[static_cast<std::size_t>(index - 1)];
}

FoldCheck checkFold(int fileFold, int pointGroupIndex) {
    const PointGroup* group = pointGroupByIndex(pointGroupIndex);
    if (fileFold < 1 || group == nullptr) return {false, std::nullopt, "Invalid Symmetry Fold"};
    if (fileFold == group->fold) return {};
    return {true, group->fold,
            "Fold of symmetry axis n should be updated from " + std::to_string(fileFold) + " to " +
                std::to_string(group->fold)};
}

std::vector<std::string> crystalFieldSymmetryWarnings(const ParameterSet& set) {
    std::vector<std::string> warnings;
    if (!set.switches.pointGroup || pointGroupByIndex(*set.switches.pointGroup) == nullptr) return warnings;
    const auto& group = params::pointGroup(*set.switches.pointGroup);
    for (const CrystalFieldRow& row : set.crystalField) {
        const int q = std::abs(row.q);
        for (const bool imaginary : {false, true}) {
            const double value = imaginary ? row.im.value : row.re.value;
            if (value == 0.0 || (imaginary && q == 0) || row.k % 2 != 0 || row.k > 6) continue;
            if (!params::crystalFieldComponentAllowed(group, {row.k, q, imaginary}))
                warnings.push_back(std::string(imaginary ? "Im " : "") + "B" + std::to_string(row.k) +
                                   std::to_string(row.q) + " is forbidden by the site symmetry " + group.name +
                                   " (standard orientation)");
        }
    }
    return warnings;
}

std::vector<std::string> correlationSectionQuestions(const ParameterSet& set) {
    std::vector<std::string> questions;
    for (const CorrelationSection& section : set.correlationCF) {
        if (section.rows.size() != set.crystalField.size())
            questions.push_back("No. of CCF parameters = " + std::to_string(section.rows.size()) +
                                " and not equal to the no. of CF parameters. Continue?");
        for (std::size_t r = 0; r < section.rows.size(); ++r) {
            const CrystalFieldRow& row = section.rows[r];
            bool found = false;
            for (const CrystalFieldRow& cf : set.crystalField)
                if (cf.k == row.k && cf.q == row.q) found = true;
            if (!found)
                questions.push_back("Incompatible k q = " + std::to_string(row.k) + " " +
                                    std::to_string(row.q) + " for  the row " +
                                    std::to_string(r + 1) + ". Continue?");
        }
    }
    return questions;
}

}  // namespace orvane
