#include "interactive/property_run.hpp"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "core/number_format.hpp"
#include "core/physical_constants.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "engine/model.hpp"
#include "engine/parameter_file.hpp"
#include "engine/parameter_vector.hpp"
#include "params/energy_units.hpp"
#include "report/state_vector_file.hpp"
#include "tables/table_directory.hpp"

namespace orvane {

namespace {

double wavenumbersPerUnit(const ParameterSet& set) {
    return params::unitInWavenumbers(static_cast<params::EnergyUnitCode>(static_cast<int>(set.switches.energyUnit)));
}

// The stored states of a .ev file on the model's basis (matched by term label, J and MJ).
PropertyStates statesFromVectorFile(const Model& model, const StateVectorFileContents& file, const std::string& name,
                                    bool crystalField, double factor) {
    if (file.withProjections != crystalField)
        throw UserError("Error in Main", name + ": a " + (file.withProjections ? "crystal-field" : "free-ion") +
                                             " state-vector file; " + (crystalField ? "add" : "omit") + " --free-ion");
    const auto& terms = model.tables().terms;
    const auto& jStates = model.freeIonOperators().basis.states;
    std::vector<int> offsets;
    for (int s = 0, next = 0; s < static_cast<int>(jStates.size()); next += jStates[s].twiceJ + 1, ++s) offsets.push_back(next);
    std::vector<int> indexOf;
    for (std::size_t b = 0; b < file.basis.size(); ++b) {
        const auto& stored = file.basis[b];
        int found = -1;
        for (int s = 0; s < static_cast<int>(jStates.size()) && found < 0; ++s)
            if (terms[jStates[s].term].label == stored.term && jStates[s].twiceJ == stored.twiceJ)
                found = crystalField ? offsets[s] + (stored.twiceM + stored.twiceJ) / 2 : s;
        if (found < 0)
            throw UserError("Error in Main", fmt::format("{}: basis state {} ({} 2J={}) is not in the basis of the parameter file's configuration",
                                                         name, b + 1, stored.term, stored.twiceJ));
        indexOf.push_back(found);
    }
    std::vector<ComponentState> given;
    for (const auto& vector : file.vectors) {
        ComponentState state;
        state.energy = (vector.energy - file.shift) * factor;
        for (const auto& component : vector.components)
            state.components.emplace_back(indexOf[component.basisIndex], component.coefficient);
        given.push_back(std::move(state));
    }
    return statesFromComponents(model, given, !crystalField);
}

}  // namespace

PropertyRun runForProperties(const PropertyRunOptions& options, LogBook& log) {
    PropertyRun run;
    run.set = readParameterFileForRun(options.file);
    run.spinG = options.spinG > 0 ? options.spinG : kElectronSpinG;
    const auto directory =
        options.tableDirectory.empty() ? defaultTableDirectory() : std::filesystem::path(options.tableDirectory);
    const bool crystalField = !options.freeIon;
    const auto model = Model::build(modelSetupOf(run.set, crystalField, options.complex), directory, log);
    if (!options.vectors.empty()) {
        run.states = statesFromVectorFile(model, readStateVectorFile(options.vectors), options.vectors, crystalField,
                                          wavenumbersPerUnit(run.set));
        return run;
    }
    ModelWorkspace workspace;
    const auto solution =
        model.solve(parameterVectorOf(run.set, options.complex), {options.freeIon, true, kAllEigenvalues, {}, {}}, workspace);
    if (solution.status != EigenStatus::Ok) throw UserError("Error in Main", "the diagonalisation failed");
    const double factor = wavenumbersPerUnit(run.set);
    const auto site = siteLabellingOf(run.set.switches);  // pairing by irreps under "/ptgp= n"
    run.states = crystalField ? crystalFieldStates(model, solution, factor, site ? &*site : nullptr)
                              : freeIonStates(model, solution.freeIon, factor);
    return run;
}

std::string propertyText(double value, const PropertyRunOptions& options, std::string_view defaultPicture) {
    if (options.accuracy.empty()) return formatNumber(value, defaultPicture);
    const auto limit = parseNumber(options.accuracy);
    if (!limit || *limit <= 0.0) throw UserError("Error in Main", "--accuracy " + options.accuracy + ": not a positive number");
    const int places = *limit >= 1.0 ? static_cast<int>(std::lround(*limit))
                                     : static_cast<int>(std::ceil(-std::log10(*limit) - 1e-9));
    return formatNumber(value, "##0." + std::string(static_cast<std::size_t>(std::clamp(places, 1, 15)), '0'));
}

PropertyTable::PropertyTable(const std::vector<std::string>& columns, std::vector<std::string> formats)
    : formats_(std::move(formats)) {
    for (std::size_t c = 0; c < columns.size(); ++c) sheet_.setText(0, static_cast<int>(c), columns[c]);
    sheet_.setCsvSignificantDigits(10);
}

void PropertyTable::add(const std::vector<SheetValue>& values) {
    const int row = sheet_.rowCount();
    for (std::size_t c = 0; c < values.size(); ++c) {
        const int column = static_cast<int>(c);
        if (const auto* number = std::get_if<double>(&values[c]))
            sheet_.setNumber(row, column, *number, c < formats_.size() ? formats_[c] : std::string());
        else if (const auto* text = std::get_if<std::string>(&values[c]))
            sheet_.setText(row, column, *text);
    }
}

void saveDatedTable(const Spreadsheet& sheet, const std::filesystem::path& path) {
    sheet.withDateRow(formatDate(localNow())).save(path);
}

std::vector<int> numberedStates(const PropertyRun& run) {
    std::vector<int> numbered;
    const auto& states = run.states.states;
    for (int i = 0; i < static_cast<int>(states.size()); ++i)
        if (!run.states.freeIon || i == 0 || states[i].level != states[i - 1].level) numbered.push_back(i);
    return numbered;
}

int stateIndex(const PropertyRun& run, int number, const std::string& option) {
    const auto numbered = numberedStates(run);
    const auto count = static_cast<int>(numbered.size());
    if (number < 1 || number > count)
        throw UserError("Error in Main", fmt::format("{} {}: the run has {} 1 to {}", option, number,
                                                     run.states.freeIon ? "multiplets" : "states", count));
    return numbered[number - 1];
}

int stateNumber(const PropertyRun& run, int state) {
    return run.states.freeIon ? run.states.states[state].level + 1 : state + 1;
}

std::pair<int, int> stateRange(const PropertyRun& run, int first, int last) {
    const int from = stateIndex(run, first, "--range"), to = stateIndex(run, last, "--range");
    const auto members = run.states.levelMembers(run.states.states[to].level);
    return {from, run.states.freeIon ? members.back() : to};
}

}  // namespace orvane
