#include "interactive/fit_dialogs.hpp"


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

}  // namespace orvane
