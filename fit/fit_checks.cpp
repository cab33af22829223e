#include "fit/fit_checks.hpp"

#include <cmath>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "fit/state_label.hpp"

namespace orvane {
namespace {

bool isFree(const FitParameter& row, FitScope scope) { return effectiveOption(row, scope) == kFitOptionFree; }

bool isElectrostatic(ParameterId id) {
    const auto info = parameterInfo(id);
    return info && (info->family == ParameterFamily::Electrostatic ||
                    info->family == ParameterFamily::ConfigurationInteraction ||
                    info->family == ParameterFamily::ThreeBody);
}

bool isMagnetic(ParameterId id) {
    const auto info = parameterInfo(id);
    return info && (info->family == ParameterFamily::SpinOrbit || info->family == ParameterFamily::Magnetic);
}

struct ObservationCounts {
    int energies = 0;
    int terms = 0;
    int multiplets = 0;
};

// Distinct observed (not withheld) energies, LS terms and J-multiplets.
ObservationCounts countObservations(const std::vector<ObservedLevel>& levels) {
    std::set<long long> energies;
    std::set<std::string> terms;
    std::set<std::pair<std::string, int>> multiplets;
    for (const auto& level : levels) {
        if (level.withheld) continue;
        energies.insert(std::llround(level.observedEnergy * 1e6));
        const auto label = parseStateLabel(level.stateLabel);
        if (!label || label->term.empty()) continue;
        terms.insert(label->term);
        if (label->twiceJ >= 0) multiplets.insert({label->term, label->twiceJ});
    }
    return {static_cast<int>(energies.size()), static_cast<int>(terms.size()), static_cast<int>(multiplets.size())};
}

void checkRows(const FitWorkspace& workspace, FitCheckOutcome& outcome) {
    const auto& rows = workspace.parameters;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto& row = rows[i];
        if (row.option != kFitOptionFree && row.option != kFitOptionFixed && row.option != kFitOptionLinked) {
            outcome.messages.push_back(fmt::format("Unknown Option = {} for {}", row.option, row.name));
            outcome.refused = true;
        } else if (row.option == kFitOptionLinked && row.linkedTo == row.name) {
            outcome.messages.push_back("Cannot link" + row.name + "to itself");
            outcome.refused = true;
        } else if (row.option == kFitOptionLinked && linkMasterIndex(rows, i) < 0) {
            outcome.messages.push_back(fmt::format("{} is related to \"{}\", which is not a parameter of the fit "
                                                   "or links back to it", row.name, row.linkedTo));
            outcome.refused = true;
        }
    }
}

void checkSuperposition(const FitWorkspace& workspace, FitCheckOutcome& outcome) {
    std::set<int> ranks;
    for (const auto& row : workspace.parameters)
        if (const auto part = crystalFieldPartOf(row.id);
            part && part->key.op == CrystalFieldOperator::Standard && row.finalFit != 0.0)
            ranks.insert(part->key.k);
    for (const int k : ranks) {
        const auto intrinsic = superpositionStrengthId(k);
        bool present = false;
        for (const auto& row : workspace.parameters) present = present || row.id == intrinsic;
        if (present) continue;
        outcome.messages.push_back(fmt::format("Insufficient no. of rank {} CFP set for Superposition Model fit!", k));
        outcome.messages.push_back(fmt::format(
            " >>You may link some rank {} CFP to the corresponding Superposition Model parameters with Option=-1", k));
        outcome.refused = true;
    }
}

void checkCounts(const FitWorkspace& workspace, FitCheckOutcome& outcome) {
    const auto scope = workspace.settings.scope;
    int freeCount = 0, freeElectrostatic = 0, freeMagnetic = 0;
    for (const auto& row : workspace.parameters) {
        if (!isFree(row, scope)) continue;
        ++freeCount;
        freeElectrostatic += isElectrostatic(row.id) ? 1 : 0;
        freeMagnetic += isMagnetic(row.id) ? 1 : 0;
    }
    const auto counts = countObservations(workspace.levels);
    const struct {
        int observed, free;
        const char* shortage;
        const char* advice;
    } checks[] = {
        {counts.energies, freeCount, "Just {} observed energies are not good enough to fit for {} free parameters!",
         ">>Need to fix some free parameters by setting their Option to 0 or -1."},
        {counts.terms, freeElectrostatic,
         "{} different observed terms are not good enough to fit for {} electrostatic interaction (including 2 and "
         "3-particle configuration interaction) parameters!",
         ">>Need to fix some free parameters for electrostatic interactions (F^k, alpha, beta, gamma, Ti) by setting "
         "their Option to 0 or -1."},
        {counts.multiplets, freeMagnetic,
         "{} different observed J-multiplets are not good enough to fit for {} intra-atomic magnetic interaction "
         "parameters!",
         ">>Need to fix some free parameters for intra-atomic interaction (zeta, Mk and Pk) by setting their Option "
         "to 0 or -1."},
    };
    for (const auto& check : checks) {
        if (check.observed >= check.free) continue;
        outcome.messages.push_back(fmt::format(fmt::runtime(check.shortage), check.observed, check.free));
        outcome.messages.push_back(check.advice);
        outcome.countWarnings = true;
    }
}

}  // namespace

std::int16_t effectiveOption(const FitParameter& row, FitScope scope) {
    if (row.option != kFitOptionFree) return row.option;
    const bool crystalField = crystalFieldPartOf(row.id).has_value();
    if (scope == FitScope::FreeIonOnly && crystalField) return kFitOptionFixed;
    if (scope == FitScope::CrystalFieldOnly && !crystalField) return kFitOptionFixed;
    return row.option;
}

int linkMasterIndex(const std::vector<FitParameter>& rows, std::size_t row) {
    std::size_t current = row;
    for (std::size_t step = 0; step <= rows.size(); ++step) {
        if (rows[current].option != kFitOptionLinked) return static_cast<int>(current);
        std::size_t next = rows.size();
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (rows[i].name == rows[current].linkedTo) next = i;
        if (next == rows.size() || next == row) return -1;
        current = next;
    }
    return -1;
}

FitCheckOutcome checkFitSetup(const FitWorkspace& workspace, const FitCheckContext& context) {
    FitCheckOutcome outcome;
    bool anyFree = false;
    for (const auto& row : workspace.parameters) anyFree = anyFree || isFree(row, workspace.settings.scope);
    if (!anyFree) {
        outcome.messages.push_back("No parameter selected for fitting!");
        outcome.refused = true;
        return outcome;
    }
    checkRows(workspace, outcome);
    if (context.superposition) checkSuperposition(workspace, outcome);
    if (outcome.refused) return outcome;
    checkCounts(workspace, outcome);
    outcome.askRealFitOfComplexSet =
        workspace.kind == FitKind::RealCrystalField && context.imaginaryCrystalField;
    return outcome;
}

bool hasImaginaryCrystalField(const ParameterSet& set) {
    for (const auto& row : set.crystalField)
        if (row.im.value != 0.0) return true;
    return false;
}

}  // namespace orvane
