#include "interactive/run_dialogs.hpp"

#include <fmt/format.h>

#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "properties/g_factors.hpp"
#include "properties/magnetic_moment.hpp"
#include "properties/property_states.hpp"

namespace orvane {

void askRunInputs(Asker& asker, RunRequest& request) {
    if (const auto answer = asker.askLine({"min. value of eigenstate to be processed is ", "", request.minComponent})) {
        const auto value = parseNumber(trim(*answer));
        if (value && *value >= 0.0 && *value < 1.0) request.minComponent = std::string(trim(*answer));
    }
    if (const auto answer = asker.askLine({"Give the no. of eigenvectors to be stored (0 by default) >", "",
                                           std::to_string(request.eigenvectorsToStore)})) {
        const auto value = parseInteger(trim(*answer));
        if (value && *value >= 0) request.eigenvectorsToStore = *value;
    }
    if (const auto answer = asker.askLine({"Give the shift in calculated energies (0 by default) >", "",
                                           fmt::format("{}", request.energyShift)})) {
        if (const auto value = parseNumber(trim(*answer))) request.energyShift = *value;
    }
}

namespace {

// The g-factors of the doublets of a crystal-field run (properties/g_factors.hpp).
std::vector<DoubletGValues> doubletGValues(const EnergyLevelResult& result, const SiteLabelling* site) {
    if (!result.model || result.modelLevels.empty()) return {};
    ModelSolution solution;
    solution.levels = result.modelLevels;
    const auto states = crystalFieldStates(*result.model, solution, 1.0, site);
    const auto moment = magneticMomentOperator(states);
    std::vector<DoubletGValues> doublets;
    for (const auto& [first, second] : pairDoublets(states))
        doublets.push_back({first, second, doubletGFactors(states, moment, first, second).g});
    return doublets;
}

}  // namespace

RunOutcome runEngineAsking(int mode, std::filesystem::path parameterFile, RunRequest request,
                           InteractiveRunEnvironment& environment) {
    Asker& asker = environment.asker;
    if (parameterFile.empty()) {
        const auto answer =
            asker.askLine({"Par files|*.par|All files|*.*", "File for Free-in and Crystal Field Parameters ", ""});
        if (!answer || trim(*answer).empty()) throw UserError(ErrorCategory::Main, "no parameter file was chosen");
        parameterFile = std::string(trim(*answer));
    }
    if (environment.settings.readInt(kSettingsSection, kInteractivePromptKey, 0) != 0) askRunInputs(asker, request);
    RunEnvironment run{environment.log, environment.settings, environment.tableDirectory,
                       [&asker](const UserError& cause) -> std::optional<std::filesystem::path> {
                           std::optional<std::string> answer;
                           try {
                               answer = asker.askLine({"GIVE FILE NAME FOR U(6) RME from ", "", ""});
                           } catch (const UserError& unanswered) {
                               // The asker cannot ask: the reason the tables are missing comes first.
                               throw UserError(cause.title(), cause.describe() + "\n" + unanswered.what());
                           }
                           if (!answer || trim(*answer).empty()) return std::nullopt;
                           std::filesystem::path given = std::string(trim(*answer));
                           return std::filesystem::is_directory(given) ? given : given.parent_path();
                       }};
    run.doubletGFactors = doubletGValues;
    return runEngine(mode, std::move(parameterFile), std::move(request), run);
}

}  // namespace orvane
