#include "interactive/fit_dialogs.hpp"

#include "fit/grasp_energies.hpp"


namespace orvane {

bool confirmFitCycle(const FitCheckOutcome& outcome, Asker& asker, LogBook& log) {
    for (const auto& message : outcome.messages) log.appendLine(message);
    if (outcome.refused) return false;
    if (outcome.countWarnings) {
        const bool yes = asker.askChoice("Fit", kContinueFitQuestion, Buttons::YesNo) == Choice::Yes;
        log.appendLine(yes ? "  Yes" : " No");
        if (!yes) return false;
    }
    if (outcome.askRealFitOfComplexSet)
        return asker.askChoice("Fit", kRealFitOfComplexSetQuestion, Buttons::YesNo) == Choice::Yes;
    return true;
}

bool askFitSetting(FitSettings& settings, FitSettingId id, int levelsShown, Asker& asker) {
    const auto& prompt = fitSettingPrompt(id);
    while (true) {
        const auto answer = asker.askLine({prompt.prompt, prompt.title, fitSettingText(settings, id)});
        if (!answer) return false;
        FitSettings changed = settings;
        if (const auto refusal = applyFitSetting(changed, id, *answer)) {
            asker.showMessage("Fit", *refusal);
            continue;
        }
        if (id == FitSettingId::MaxLevels && dropsShownLevels(changed.maxLevels, levelsShown)) {
            asker.showMessage("Fit", kMaxLevelsWarning);
            if (asker.askChoice("Fit", kAreYouOk, Buttons::YesNo) != Choice::Yes) return false;
        }
        settings = changed;
        return true;
    }
}

std::optional<std::vector<ObservedLevel>> askGraspObservedLevels(Asker& asker, std::string fileName) {
    if (fileName.empty()) {
        const auto answer =
            asker.askLine({"Give file name for free-ion energies as calculated from GRASP2K", "", ""});
        if (!answer || answer->empty()) return std::nullopt;
        fileName = *answer;
    }
    const auto levels = readGraspLevels(fileName);
    const auto choice = asker.askChoice("Set zero energy", "Set zero for GRASP2k energies?", Buttons::YesNoCancel);
    if (choice == Choice::Cancel) return std::nullopt;
    std::vector<ObservedLevel> observed;
    const auto energies = graspLevelEnergies(levels, choice == Choice::Yes);
    for (std::size_t i = 0; i < energies.size(); ++i)
        observed.push_back({static_cast<int>(i + 1), "", false, energies[i]});
    return observed;
}

}  // namespace orvane
