#include "interactive/parameter_dialogs.hpp"

#include <optional>
#include <string>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "engine/experiment_comparison.hpp"
#include "engine/orthogonal_electrostatic.hpp"
#include "engine/other_free_ion.hpp"
#include "params/cf_conventions.hpp"
#include "params/superposition.hpp"
#include "params/value_cell.hpp"
#include "report/energy_file.hpp"

namespace orvane::params {

std::vector<CubicParameter> cubicApproximationAsking(CfTable& table, CfNormalisation normalisation,
                                                     CubicAxis axis, Asker& asker, LogBook& log) {
    const Invariants inv = computeInvariants(table, normalisation);
    double b40 = 0.0, b60 = 0.0;
    for (const CfRow& row : table.rows) {
        if (row.q != 0) continue;
        if (row.k == 4) b40 = cellNumber(row.re);
        if (row.k == 6) b60 = cellNumber(row.re);
    }
    // The signs are those of the Wybourne B40 and B60 (c_6 < 0 flips a unit-tensor B60).
    if (const auto c = conversionToWybourne(normalisation)) {
        b40 *= conversionFactor(*c, 4, 0);
        b60 *= conversionFactor(*c, 6, 0);
    }
    const auto set = cubicSet(inv, b40, b60, axis);
    for (const std::string& line : cubicListing(set, axis)) log.appendLine(line);
    if (asker.askChoice("Cubic approx. of CFP", "Adopt the above crystal field parameters?",
                        Buttons::YesNo) == Choice::Yes) {
        CfTable cubic = cubicTable(set);
        if (const auto back = conversionFromWybourne(normalisation)) applyConversion(cubic, *back);
        cubic.complexMode = table.complexMode;
        table = cubic;
    }
    return set;
}


bool convertAllAsking(ParameterValues& values, EnergyUnitCode to, Asker& asker) {
    const Choice choice =
        asker.askChoice("Energy unit", unitConversionQuestion(values.unit, to), Buttons::YesNo);
    if (choice == Choice::Yes) {
        convertEnergyUnit(values, to, UnitScope::All);
        return true;
    }
    values.unit = to;
    return false;
}


void runCoordinationFactorCalculator(Asker& asker, LogBook& log) {
    const Question question{"Give k, q, theta and phi (in degrees):",
                            "Calculation of Coordination Factor:", ""};
    while (true) {
        const auto answer = asker.askLine(question);
        if (!answer || trim(*answer).empty()) return;
        const auto fields = splitAnswerFields(*answer);
        std::optional<int> k, q;
        std::optional<double> theta, phi;
        if (fields.size() == 4) {
            k = parseInteger(fields[0]);
            q = parseInteger(fields[1]);
            theta = parseNumber(fields[2]);
            phi = parseNumber(fields[3]);
        }
        if (!k || !q || !theta || !phi) {
            asker.showMessage("Calculation of Coordination Factor:", "Invalid input: " + *answer);
            continue;
        }
        if (const auto error = coordinationArgumentsError(*k, *q)) {
            asker.showMessage(error->first, error->second);
            continue;
        }
        log.appendLine("Coordination factor K" + std::to_string(*k) + "," + std::to_string(*q) +
                       "(" + *answer + ") = " +
                       formatNumber(coordinationFactor(*k, *q, *theta, *phi), "##0.000000") +
                       " (Stevens type: " +
                       formatNumber(coordinationFactor(*k, *q, *theta, *phi, true), "##0.000000") +
                       ")");
    }
}


}  // namespace orvane::params

namespace orvane {

namespace {

constexpr std::string_view kValuePicture = "######0.0000";

// Sets the value of the named other free-ion row, appending the row when absent.
void setOtherRow(ParameterSet& set, std::string_view name, const ParameterCell& cell) {
    for (auto& row : set.otherFreeIon)
        if (otherFreeIonIndex(row.name) == otherFreeIonIndex(name)) {
            row.cell = cell;
            return;
        }
    set.otherFreeIon.push_back({std::string(name), cell});
}

ParameterCell cellOf(double value) { return {formatNumber(value, "#####0.0###"), value}; }

// The asked file name; std::nullopt when cancelled or empty.
std::optional<std::string> askFileName(Asker& asker, const std::string& prompt) {
    const auto answer = asker.askLine({prompt, "Comparison with experimental energies", ""});
    if (!answer || trim(*answer).empty()) return std::nullopt;
    return std::string(trim(*answer));
}

}  // namespace

bool convertToOrthogonalElectrostaticAsking(ParameterSet& set, const EngineTables& tables, Asker& asker,
                                            LogBook& log) {
    const auto converted = orthogonalParameters(orthogonaliseElectrostatic(tables), electrostaticParametersOf(set));
    log.appendLine("Conversion of two-particle electrostatic interaction parameters for the orthogonalised operators:");
    for (int j = 0; j < kElectrostaticOperatorCount; ++j)
        log.appendLine(fmt::format("{} = {}", kElectrostaticParameterNames[static_cast<std::size_t>(j)],
                                   formatNumber(converted[static_cast<std::size_t>(j)], kValuePicture)));
    log.appendLine(
        "Two-particle electrostatic interaction parameters for the orthogonalised operators have been converted into "
        "the Logbook.");
    log.appendLine("Warning - They are not suitable input parameters for this package!");
    if (asker.askChoice("Orthogonalised electrostatic parameters", "Adopt them into this input form?",
                        Buttons::YesNo) != Choice::Yes)
        return false;
    set.slaterType = SlaterType::RacahE;
    for (int k = 0; k < 3; ++k) {
        auto& row = set.mainFreeIon[static_cast<std::size_t>(k + 1)];
        row.name = std::string(kElectrostaticParameterNames[static_cast<std::size_t>(k)]);
        row.cell = cellOf(converted[static_cast<std::size_t>(k)]);
    }
    for (int j = 3; j < kElectrostaticOperatorCount; ++j)
        setOtherRow(set, kElectrostaticParameterNames[static_cast<std::size_t>(j)],
                    cellOf(converted[static_cast<std::size_t>(j)]));
    return true;
}

bool convertToOrthogonalElectrostaticAsking(ParameterSet& set, const std::filesystem::path& tableDirectory,
                                            Asker& asker, LogBook& log) {
    if (set.electronCount < 1 || set.electronCount > 13)
        throw UserError("Error in parameter conversion",
                        "No. of electrons must be 1..13 for the electrostatic parameters, found " +
                            std::to_string(set.electronCount));
    const EngineTables tables = loadEngineTables(set.electronCount, tableDirectory, log);
    return convertToOrthogonalElectrostaticAsking(set, tables, asker, log);
}

bool compareExperimentAsking(Asker& asker, LogBook& log) {
    const auto publishedName = askFileName(asker, "GIVE FILE NAME FOR getting Torvelde's experimental energies from");
    if (!publishedName) return false;
    const auto observed = parseExperimentBlock(readTextFile(*publishedName), *publishedName);
    const auto energyName = askFileName(asker, "GIVE FILE NAME FOR getting energies  from this Orvane program");
    if (!energyName) return false;
    std::vector<double> calculated;
    for (const auto& level : readEnergyFile(*energyName).levels) calculated.push_back(level.energy);
    log.appendLine("Comparison of experimental energies from " + *publishedName + " with energies from " + *energyName);
    for (const auto& line : experimentComparisonLines(compareWithExperiment(observed, calculated)))
        log.appendLine(line);
    return true;
}


}  // namespace orvane
