// Saving the editor's set (after the checks of engine/editor_checks.hpp) and
// starting runs from the editor.
#include <QFileDialog>
#include <QSpinBox>

#include "app/crystal_field_grid.hpp"
#include "app/main_window.hpp"
#include "interactive/run_options.hpp"
#include "app/parameter_editor.hpp"
#include "core/number_format.hpp"
#include "core/user_error.hpp"
#include "engine/editor_checks.hpp"
#include "engine/parameter_file.hpp"

namespace orvane::app {
namespace {

constexpr std::string_view kCorrelationCheckTitle = "Check - correlation crystal field";

std::string joinedLines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + line;
    return text;
}

bool hasFilledEntry(const std::vector<CrystalFieldEntry>& entries) {
    for (const CrystalFieldEntry& entry : entries)
        if (!entry.k.empty() || !entry.q.empty() || !entry.re.empty() || !entry.im.empty()) return true;
    return false;
}

}  // namespace

// The grid as typed, the fold against the selected point group and the
// correlation sections against the crystal-field rows. A set without any
// crystal-field row (a free-ion set) passes the grid check.
bool ParameterEditor::checkBeforeSaving() {
    Asker& asker = *main_.services().asker;
    const std::vector<CrystalFieldEntry> entries = crystalField_->entries();
    if (hasFilledEntry(entries)) {
        const std::vector<std::string> problems = checkCrystalFieldTable(entries);
        if (!problems.empty()) {
            asker.showMessage(kCrystalFieldTableTitle, joinedLines(problems));
            return false;
        }
    }
    const ParameterSet set = parameterSet();
    if (set.switches.pointGroup) {
        const FoldCheck fold = checkFold(set.fold, *set.switches.pointGroup);
        if (!fold.valid) {
            asker.showMessage(kFoldCheckTitle, fold.message);
            return false;
        }
        if (fold.suggestedFold) {
            const Choice choice =
                asker.askChoice(kFoldCheckTitle, fold.message + "\n" + std::string(kFoldQuestion), Buttons::YesNoCancel);
            if (choice == Choice::Cancel) return false;
            if (choice == Choice::Yes) fold_->setValue(*fold.suggestedFold);
        }
    }
    return askCorrelationQuestions(set);
}

bool ParameterEditor::askCorrelationQuestions(const ParameterSet& set) {
    for (const std::string& question : correlationSectionQuestions(set))
        if (main_.services().asker->askChoice(kCorrelationCheckTitle, question, Buttons::YesNo) != Choice::Yes)
            return false;
    return true;
}

bool ParameterEditor::save() {
    if (!file_.empty()) return saveAs(file_);
    const QString path = QFileDialog::getSaveFileName(this, "Save As", {}, "Par files (*.par);;All files (*)");
    return !path.isEmpty() && saveAs(path.toStdString());
}

bool ParameterEditor::saveAs(const std::filesystem::path& file) {
    if (!checkBeforeSaving()) return false;
    const ParameterSet set = parameterSet();
    try {
        writeParameterFile(file, set);
    } catch (const UserError& error) {
        main_.services().asker->showMessage(error.title(), error.describe());
        return false;
    }
    base_ = set;
    file_ = file;
    setWindowTitle(QString::fromStdString("Input - " + file.string()));
    main_.recentFiles().add(file.string());
    LogBook& log = *main_.services().log;
    for (const std::string& warning : crystalFieldSymmetryWarnings(set)) log.warn(LogCategory::Parameters, warning);
    log.appendLine("## Input parameters saved to: " + file.string() + " at " + formatTime(localNow()),
                   LogCategory::Files);
    return true;
}

bool ParameterEditor::runFromEditor(int mode) {
    if (!save()) return false;
    const ParameterSet set = parameterSet();
    if (set.crystalField.empty() && (mode == 0 || mode == 1)) {
        const std::string question =
            std::string("This set of input parameters are for free-ion only. Do you really want to run this "
                        "calculation for ") +
            (mode == 0 ? "real CF?" : "complex CF?");
        if (main_.services().asker->askChoice("Orvane", question, Buttons::YesNo) != Choice::Yes) return false;
    }
    if (mode == 2 && !confirmFreeIonRun(RunChoice::FreeIon, file_, *main_.services().asker)) return false;
    return main_.startRun({mode, file_, main_.optionsRunRequest()});
}

}  // namespace orvane::app
