#include "python/script_fit.hpp"

#include <atomic>
#include <chrono>

#include <fmt/format.h>

#include "core/user_error.hpp"
#include "fit/fit_checks.hpp"
#include "fit/fit_parameters.hpp"
#include "fit/fit_session.hpp"
#include "fit/fit_tables.hpp"
#include "fit/ultimate_fit.hpp"

namespace orvane {
namespace {

constexpr const char* kFitErrorTitle = "Error in fitting";

bool hasImaginaryPart(const ParameterSet& set) {
    for (const auto& row : set.crystalField)
        if (row.im.value != 0.0) return true;
    return false;
}

void append(std::string& report, const std::vector<std::string>& lines) {
    for (const auto& line : lines) report += line + '\n';
}

}  // namespace

ScriptFit fitParameterSet(const ParameterSet& set, const ScriptFitRequest& request,
                          const std::filesystem::path& tableDirectory) {
    if (request.cycles && *request.cycles < 1) throw UserError(kFitErrorTitle, "the number of cycles must be at least 1");
    FitWorkspace workspace;
    workspace.parameterFileName = set.title;
    workspace.kind = request.complex ? FitKind::ComplexCrystalField : FitKind::RealCrystalField;
    workspace.parameters = fitParameterRows(set, workspace.kind);
    for (const auto& name : request.free) setFitOption(workspace.parameters, name, kFitOptionFree);
    workspace.levels = request.levels;
    workspace.gFactors = request.gFactors;
    workspace.settings.maxLevels = 0;  // every level, as the command line
    const auto check = checkFitSetup(workspace, {false, hasImaginaryPart(set)});
    ScriptFit out;
    append(out.report, check.messages);
    if (check.refused) throw UserError(kFitErrorTitle, out.report.empty() ? "The fit was not run." : out.report);

    NullLogBook log;
    FitSession session(set, std::move(workspace), tableDirectory, log);
    session.update();
    out.report += fitTitle(session.workspace()) + '\n';
    out.report += fmt::format("Start: RMS Dev. = {:.4f}, S.E. = {:.4f}\n", session.workspace().rmsDeviation,
                              session.workspace().standardError);
    if (request.cycles) {
        for (int i = 0; i < *request.cycles; ++i) out.report += cycleLine(session.runCycle()) + '\n';
    } else {
        const std::atomic<bool> never{false};
        const auto result =
            runUltimateFit(session, &never, [&](const FitCycleReport& cycle) { out.report += cycleLine(cycle) + '\n'; });
        append(out.report, ultimateFitReport(result.decision, result.iterations, session.workspace().settings,
                                             std::chrono::system_clock::now()));
    }
    const auto& fitted = session.workspace();
    append(out.report, parameterTableLines(fitted));
    append(out.report, levelTableLines(fitted));
    append(out.report, gFactorTableLines(fitted));
    append(out.report, rmsLines(fitted));
    out.fitted = withFittedValues(set, fitted.parameters);
    out.rmsDeviation = fitted.rmsDeviation;
    out.standardError = fitted.standardError;
    return out;
}

}  // namespace orvane
