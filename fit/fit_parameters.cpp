#include "fit/fit_parameters.hpp"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "core/user_error.hpp"
#include "engine/crystal_field_parameters.hpp"
#include "engine/other_free_ion.hpp"
#include "fit/fit_checks.hpp"

namespace orvane {
namespace {

constexpr const char* kFitErrorTitle = "Error in fitting";

// "B(4,3)" -> "B43", "SCCF c(2,1)" -> "SCCFc21": the registry name without
// blanks, brackets and commas.
std::string compactName(const std::string& name) {
    std::string out;
    for (char c : name)
        if (c != ' ' && c != '(' && c != ')' && c != ',') out += c;
    return out;
}

FitParameter rowOf(ParameterId id, double value) {
    FitParameter row;
    row.name = fitParameterName(id);
    row.id = id;
    row.initial = row.previous = row.finalFit = value;
    return row;
}

// A number as the fit writes it into a parameter file: up to four decimals.
std::string fittedText(double value) {
    std::string text = fmt::format("{:.4f}", value);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    if (text == "-0") text = "0";
    return text;
}

bool isMainFreeIonCell(const ParameterSet& set, const ParameterCell* cell) {
    for (const auto& row : set.mainFreeIon)
        if (&row.cell == cell) return true;
    return false;
}

void setCell(ParameterCell& cell, double value) {
    cell.text = fittedText(value);
    cell.value = std::stod(cell.text);
}

}  // namespace

std::string fitParameterName(ParameterId id) {
    const auto info = parameterInfo(id);
    return info ? compactName(info->name) : fmt::format("#{}", id);
}

std::optional<std::string> fitRefusal(const ParameterSet& set) {
    if (set.slaterType != SlaterType::SlaterFUpper)
        return "The fit works on Slater F^k parameters (type = 3); convert the electrostatic parameters first.";
    if (set.cfConvention != CfConvention::Wybourne)
        return "The fit works on crystal-field parameters in Wybourne's convention; convert them first.";
    if (set.switches.cubicCF) return "The fit cannot vary a cubic crystal field (\"/cubiccf\"); write its rows out first.";
    if (set.switches.t2Correction) return "The fit cannot vary T2 under \"/t2correction\".";
    return std::nullopt;
}

std::vector<FitParameter> fitParameterRows(const ParameterSet& set, FitKind kind) {
    if (const auto refusal = fitRefusal(set)) throw UserError(kFitErrorTitle, *refusal);
    const bool complex = kind == FitKind::ComplexCrystalField;
    const ParameterVector values = parameterVectorOf(set, complex).withLinksApplied();
    std::vector<FitParameter> rows;
    using namespace parameter;
    for (const ParameterId id : {kEavg, kF2, kF4, kF6, kZeta}) rows.push_back(rowOf(id, values.value(id)));
    for (const auto& other : set.otherFreeIon) {
        const auto id = parameterIdOf(other.name);
        if (!id || findFitParameter(rows, fitParameterName(*id))) continue;
        FitParameter row = rowOf(*id, values.value(*id));
        const auto cell = readOtherFreeIonCell(other.name, other.cell.text);
        if (cell && (cell->form == OtherFreeIonForm::MultipleOfM0 || cell->form == OtherFreeIonForm::MultipleOfP2)) {
            row.option = kFitOptionLinked;
            row.linkedTo = cell->form == OtherFreeIonForm::MultipleOfM0 ? "M0" : "P2";
            row.linkRatio = cell->number;
        }
        rows.push_back(std::move(row));
    }
    if (kind != FitKind::FreeIon) {
        const auto crystalField = crystalFieldParametersOf(set, false, complex);
        for (const auto& key : crystalField.keys) {
            for (int imaginary = 0; imaginary < (complex && key.q > 0 ? 2 : 1); ++imaginary) {
                const auto id = crystalFieldParameterId(key.op, key.k, key.q, imaginary == 1);
                if (!findFitParameter(rows, fitParameterName(id))) rows.push_back(rowOf(id, values.value(id)));
            }
        }
    }
    for (const auto& setup : set.fitSetup) {
        if (setup.option < INT16_MIN || setup.option > INT16_MAX)
            throw UserError(kFitErrorTitle, fmt::format("Unknown Option = {} for {}", setup.option, setup.name));
        setFitOption(rows, setup.name, static_cast<std::int16_t>(setup.option), setup.linkedTo);
    }
    return rows;
}

const FitParameter* findFitParameter(const std::vector<FitParameter>& rows, std::string_view name) {
    const auto it = std::find_if(rows.begin(), rows.end(), [&](const FitParameter& row) { return row.name == name; });
    return it == rows.end() ? nullptr : &*it;
}

void setFitOption(std::vector<FitParameter>& rows, std::string_view name, std::int16_t option,
                  std::string_view master) {
    auto it = std::find_if(rows.begin(), rows.end(), [&](const FitParameter& row) { return row.name == name; });
    if (it == rows.end())
        throw UserError(kFitErrorTitle, fmt::format("The parameter set has no parameter \"{}\" to fit", name));
    if (option == kFitOptionLinked && !master.empty() && !findFitParameter(rows, master))
        throw UserError(kFitErrorTitle,
                        fmt::format("\"{}\" cannot be linked to \"{}\": the set has no such parameter", name, master));
    const bool sameLink = it->option == kFitOptionLinked && it->linkedTo == master;
    it->option = option;
    if (option != kFitOptionLinked) {
        it->linkedTo.clear();
        it->linkRatio.reset();
    } else if (!sameLink) {
        it->linkedTo = std::string(master);
        it->linkRatio.reset();
    }
}

void applyCorrelationHandling(std::vector<FitParameter>& rows, CorrelationFitHandling handling) {
    std::vector<std::string> names;
    for (const auto& row : rows) names.push_back(row.name);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto part = crystalFieldPartOf(rows[i].id);
        if (!part || part->key.op == CrystalFieldOperator::Standard) continue;
        std::string master;
        if (handling == CorrelationFitHandling::InternalLink) {
            for (std::size_t j = 0; j < i && master.empty(); ++j)
                if (const auto other = crystalFieldPartOf(rows[j].id); other && other->key.op == part->key.op)
                    master = names[j];
        } else if (handling == CorrelationFitHandling::LinkWithCrystalField) {
            const auto standard =
                crystalFieldParameterId(CrystalFieldOperator::Standard, part->key.k, part->key.q, part->imaginary);
            if (findFitParameter(rows, fitParameterName(standard))) master = fitParameterName(standard);
        }
        const bool free = handling == CorrelationFitHandling::FreeAll ||
                          (handling == CorrelationFitHandling::InternalLink && master.empty());
        if (!master.empty())
            setFitOption(rows, names[i], kFitOptionLinked, master);
        else
            setFitOption(rows, names[i], free ? kFitOptionFree : kFitOptionFixed);
    }
}

double linkRatioOf(const FitParameter& row, const FitParameter& master) {
    if (row.linkRatio) return *row.linkRatio;
    return master.initial != 0.0 ? row.initial / master.initial : 1.0;
}

std::vector<LinkFollower> linkFollowers(const std::vector<FitParameter>& rows) {
    std::vector<LinkFollower> followers;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].option != kFitOptionLinked) continue;
        const int master = linkMasterIndex(rows, i);
        if (master < 0) continue;
        double ratio = 1.0;
        for (std::size_t current = i; static_cast<int>(current) != master;) {
            std::size_t next = 0;
            while (rows[next].name != rows[current].linkedTo) ++next;
            ratio *= linkRatioOf(rows[current], rows[next]);
            current = next;
        }
        followers.push_back({static_cast<int>(i), master, ratio});
    }
    return followers;
}

void applyLinkFollowers(const std::vector<LinkFollower>& followers, std::vector<FitParameter>& rows) {
    for (const auto& follower : followers)
        rows[static_cast<std::size_t>(follower.row)].finalFit =
            follower.ratio * rows[static_cast<std::size_t>(follower.master)].finalFit;
}

ParameterVector fitParameterVector(const ParameterVector& base, const std::vector<FitParameter>& rows) {
    ParameterVector vector = base;
    vector.links.clear();  // the table's links replace the file's multiples
    for (const auto& row : rows) vector.set(row.id, row.finalFit);
    return vector;
}

ParameterCell* findParameterCell(ParameterSet& set, std::string_view name) {
    using namespace parameter;
    const ParameterId mainIds[] = {kEavg, kF2, kF4, kF6, kZeta};
    for (std::size_t i = 0; i < set.mainFreeIon.size(); ++i)
        if (fitParameterName(mainIds[i]) == name) return &set.mainFreeIon[i].cell;
    for (auto& other : set.otherFreeIon)
        if (other.name == name) return &other.cell;
    const auto cellOf = [name](CrystalFieldRow& row, CrystalFieldOperator op) -> ParameterCell* {
        for (int imaginary = 0; imaginary < 2; ++imaginary)
            if (fitParameterName(crystalFieldParameterId(op, row.k, row.q, imaginary == 1)) == name)
                return imaginary ? &row.im : &row.re;
        return nullptr;
    };
    for (auto& row : set.crystalField)
        if (auto* cell = cellOf(row, CrystalFieldOperator::Standard)) return cell;
    for (auto& section : set.correlationCF)
        for (auto& row : section.rows)
            if (auto* cell = cellOf(row, operatorOf(section.kind))) return cell;
    return nullptr;
}

ParameterSet withFittedValues(const ParameterSet& set, const std::vector<FitParameter>& rows) {
    ParameterSet out = set;
    for (const auto& row : rows) {
        const bool keepsMultiple = row.option == kFitOptionLinked && row.linkRatio &&
                                   (row.linkedTo == "M0" || row.linkedTo == "P2");
        auto* cell = findParameterCell(out, row.name);
        if (!cell || (keepsMultiple && !isMainFreeIonCell(out, cell))) continue;
        setCell(*cell, row.finalFit);
    }
    out.fitSetup.clear();
    for (const auto& row : rows)
        if (row.option != kFitOptionFixed) out.fitSetup.push_back({row.name, row.option, row.linkedTo});
    return out;
}

}  // namespace orvane
