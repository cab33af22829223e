#include "fit/fit_tables.hpp"

#include <fmt/format.h>

namespace orvane {
namespace {

std::string optionText(const FitParameter& row) {
    std::string text = std::to_string(row.option);
    if (row.option == kFitOptionLinked) text += "  " + row.name + " is related to " + row.linkedTo;
    return text;
}

const char* colourText(LabelColour colour) {
    switch (colour) {
        case LabelColour::LightBlue: return "  (light blue)";
        case LabelColour::Red: return "  (red)";
        case LabelColour::None: break;
    }
    return "";
}

std::string observedText(const ObservedLevel& level) {
    const std::string value = fmt::format("{:.2f}", level.observedEnergy);
    return level.withheld ? "[" + value + "]" : value;
}

const char* componentName(GComponent component) {
    return component == GComponent::X ? "gx" : component == GComponent::Y ? "gy" : "gz";
}

}  // namespace

std::string fitTitle(const FitWorkspace& workspace) { return "CF Fitting -" + workspace.parameterFileName; }

std::vector<std::string> parameterTableLines(const FitWorkspace& workspace) {
    std::vector<std::string> lines{fmt::format("{:<12}{:>14}{:>14}{:>14}  {}", "Parameter", "Initial", "Previous",
                                               "Final_fit", "Option")};
    for (const auto& row : workspace.parameters)
        lines.push_back(fmt::format("{:<12}{:>14.4f}{:>14.4f}{:>14.4f}  {}", row.name, row.initial, row.previous,
                                    row.finalFit, optionText(row)));
    return lines;
}

std::vector<std::string> levelTableLines(const FitWorkspace& workspace) {
    std::vector<std::string> lines{fmt::format("{:>6}  {:<16}{:>13}{:>13}{:>11}{:>10}", "State", "State Label",
                                               "Obs.Energy", "Calc.Energy", "E_Diff.", "Fit_Err")};
    for (const auto& level : workspace.levels) {
        const bool assigned = level.stateNumber > 0;
        std::string label = level.stateLabel.empty() ? "-" : level.stateLabel;
        if (level.adopted) label += " adopted";
        lines.push_back(fmt::format("{:>6}  {:<16}{:>13}{:>13}{:>11}{:>10}{}",
                                    assigned ? std::to_string(level.stateNumber) : "-", label, observedText(level),
                                    assigned ? fmt::format("{:.2f}", level.calculatedEnergy) : "-",
                                    assigned ? fmt::format("{:.2f}", level.energyDifference) : "-",
                                    level.fitError > 0 ? fmt::format("{:.2f}", level.fitError) : "",
                                    colourText(level.colour)));
    }
    return lines;
}

std::vector<std::string> gFactorTableLines(const FitWorkspace& workspace) {
    if (workspace.gFactors.empty()) return {};
    std::vector<std::string> lines{
        fmt::format("{:>6}  {:<20}{:>10}{:>10}{:>10}", "State", "g-factor Label", "Obs.g", "Calc.g", "g_Diff.")};
    for (const auto& g : workspace.gFactors)
        lines.push_back(fmt::format("{:>6}  {:<20}{:>10.4f}{:>10.4f}{:>10.4f}", g.stateNumber,
                                    (g.label.empty() ? std::string("-") : g.label) + " " + componentName(g.component),
                                    g.observed, g.calculated, g.difference));
    return lines;
}

std::vector<std::string> rmsLines(const FitWorkspace& workspace) {
    std::vector<std::string> lines{
        fmt::format("RMS Dev.|S.E. = {:.4f} | {:.4f}", workspace.rmsDeviation, workspace.standardError)};
    if (workspace.settings.fitGFactors && !workspace.gFactors.empty())
        lines.push_back(fmt::format("RMS Dev. of g = {:.5f}", workspace.rmsDeviationG));
    return lines;
}

std::string cycleLine(const FitCycleReport& report) {
    return fmt::format("Cycle {}: RMS Dev. = {:.4f}, S.E. = {:.4f}, time = {:.1f} ms{}", report.cycle,
                       report.rmsDeviation, report.standardError, report.milliseconds,
                       report.stepApplied ? "" : " (no step lowered the deviation)");
}

std::string levelTableCsv(const FitWorkspace& workspace) {
    std::string csv = "state,label,observed,withheld,calculated,difference,fit_error\n";
    for (const auto& level : workspace.levels)
        csv += fmt::format("{},\"{}\",{:.10g},{},{:.10g},{:.10g},{:.10g}\n", level.stateNumber, level.stateLabel,
                           level.observedEnergy, level.withheld ? 1 : 0, level.calculatedEnergy,
                           level.energyDifference, level.fitError);
    return csv;
}

}  // namespace orvane
