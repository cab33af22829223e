// The menus of the fitting workspace: Run, Edit, Functions, Options and File.
#include <QActionGroup>
#include <QFileDialog>
#include <QMenuBar>
#include <QTableWidget>
#include <set>

#include <fmt/format.h>

#include "app/de_window.hpp"
#include "app/fit_chart.hpp"
#include "app/fit_window.hpp"
#include "app/main_window.hpp"
#include "app/parameter_editor.hpp"
#include "app/picture_export.hpp"
#include "app/state_vector_window.hpp"
#include "core/number_format.hpp"
#include "core/user_error.hpp"
#include "fit/fit_errors.hpp"
#include "fit/fit_parameters.hpp"
#include "fit/fit_settings.hpp"
#include "fit/level_table_edits.hpp"
#include "fit/observed_levels_file.hpp"
#include "fit/observed_levels_sheet.hpp"
#include "fit/parameter_sheet.hpp"
#include "fit/state_label.hpp"
#include "fit/workspace_functions.hpp"
#include "interactive/fit_dialogs.hpp"
#include "interactive/fit_runs.hpp"

namespace orvane::app {

namespace {

constexpr const char* kAutomaticUpdateOff =
    "You are going to turn off the Automatic Update function.  This will reduce the computing time but some "
    "automatic calculations are disabled or restricted.  Hence, you need to";
constexpr const char* kAutomaticUpdateOn =
    "You are going to turn on the Automatic Update function.  This will increase the computing time.";
const char* const kManualUpdateHints[] = {
    "(1) manually update the g-factor values (select [Functions]->[Calculate g-factors] in the menu), if necessary.",
    "(2) modify the default value of 150 for the maximum number of different levels to process ([Options]->[Energy "
    "level settings] in the menu).",
    "(3) check the [Compute Fit Errors] option in the menu [Options]->[Energy level settings] for automatic "
    "calculation of fit errors after each fit or do it manually from the menu [Functions]->[Calculate Fit Errors].",
};

template <typename Value>
QAction* checkable(QMenu* menu, const QString& caption, Value& value, QObject* context) {
    QAction* action = menu->addAction(caption);
    action->setCheckable(true);
    action->setChecked(static_cast<bool>(value));
    QObject::connect(action, &QAction::toggled, context, [&value](bool on) { value = on; });
    return action;
}

// A group of exclusive choices bound to one setting.
template <typename Enum>
void choices(QMenu* menu, Enum& value, std::initializer_list<std::pair<const char*, Enum>> options, QObject* context) {
    auto* group = new QActionGroup(menu);
    for (const auto& [caption, option] : options) {
        QAction* action = menu->addAction(caption);
        action->setCheckable(true);
        action->setChecked(value == option);
        group->addAction(action);
        QObject::connect(action, &QAction::triggered, context, [&value, option = option] { value = option; });
    }
}

std::filesystem::path askSavePath(QWidget* parent, const QString& caption, const QString& filter) {
    return QFileDialog::getSaveFileName(parent, caption, {}, filter).toStdString();
}

}  // namespace

void FitWindow::createMenus() {
    QMenu* file = menuBar()->addMenu("&File");
    file->addAction("Load observed levels...", this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, "Observed levels", {},
                                                          "Observed levels (*.txt *.xlsx *.csv);;All files (*)");
        if (!path.isEmpty()) loadObservedLevels(path.toStdString());
    });
    file->addAction("Save observed levels...", this, [this] {
        pullEdits();
        const auto path = askSavePath(this, "Observed levels", "Observed levels (*.txt)");
        if (path.empty()) return;
        try {
            writeObservedLevelsFile(path, workspace_.levels, workspace_.gFactors);
        } catch (const UserError& error) {
            main_.services().asker->showMessage(error.title(), error.describe());
        }
    });
    file->addAction("Import GRASP2K energies...", this, [this] { importGraspEnergies(); });
    file->addSeparator();
    const auto exportSheet = [this](const QString& caption, std::function<Spreadsheet(const std::string&)> make) {
        pullEdits();
        const auto path = askSavePath(this, caption, "Excel (*.xlsx);;CSV (*.csv)");
        if (path.empty()) return;
        try {
            make(formatDate(localNow())).save(path);
        } catch (const UserError& error) {
            main_.services().asker->showMessage(error.title(), error.describe());
        }
    };
    file->addAction("Export level table...", this, [this, exportSheet] {
        exportSheet("Level table", [this](const std::string& date) {
            return observedLevelsSheet(workspace_.levels, workspace_.gFactors, date, true);
        });
    });
    file->addAction("Export parameters...", this, [this, exportSheet] {
        exportSheet("Parameters", [this](const std::string& date) { return fittedParameterSheet(workspace_.parameters, date); });
    });
    file->addAction("Export g-factors...", this, [this, exportSheet] {
        exportSheet("g-factors", [this](const std::string& date) { return gFactorTableSheet(workspace_.gFactors, date); });
    });
    file->addAction("Export chart...", this, [this] {
        const auto path = askSavePath(this, "Chart", "PNG (*.png);;SVG (*.svg)");
        if (path.empty()) return;
        try {
            exportPicture(*chart_, path);
        } catch (const UserError& error) {
            main_.services().asker->showMessage(error.title(), error.describe());
        }
    });
    file->addAction("Write parameters to the editor", this, [this] {
        pullEdits();
        writeBackToEditor();
    });

    QMenu* run = menuBar()->addMenu("&Run");
    QMenu* leastSquares = run->addMenu("Least-Squares Method");
    for (const auto& [caption, kind] : {std::pair{"Real CF fit", FitKind::RealCrystalField},
                                        std::pair{"Complex CF fit", FitKind::ComplexCrystalField},
                                        std::pair{"Free-ion fit", FitKind::FreeIon}})
        leastSquares->addAction(caption, this, [this, kind = kind] {
            if (busy_) return;
            if (workspace_.kind != kind) {
                workspace_.kind = kind;
                workspace_.parameters = fitParameterRows(set_, kind);
                model_.reset();
                showWorkspace(workspace_);
            }
            runCommand();
        });
    QMenu* evolution = run->addMenu("Differentiation Evolution");
    evolution->addAction("Free-ion and CF parameters fit", this, [this] { main_.addDocument(new DEWindow(main_, *this, false)); });
    evolution->addAction("Superposition Model fit", this, [this] { main_.addDocument(new DEWindow(main_, *this, true)); });
    QMenu* calculations = run->addMenu("Calculations of Energy Levels");
    for (const auto& [caption, mode] : {std::pair{"Real CF calculation", 0}, std::pair{"Complex CF calculation", 1},
                                        std::pair{"Free-ion calculation", 2}})
        calculations->addAction(caption, this, [this, mode = mode] {
            if (editor_ && writeBackToEditor()) editor_->runFromEditor(mode);
        });
    run->addAction("Ultimate Fit", this, [this] { ultimateFit(); });
    run->addAction("Break", this, &FitWindow::breakFit);

    createEditMenu(menuBar()->addMenu("&Edit"));
    createFunctionsMenu(menuBar()->addMenu("F&unctions"));
    createOptionsMenu(menuBar()->addMenu("&Options"));
}

void FitWindow::createEditMenu(QMenu* edit) {
    const auto editLevels = [this](std::function<void(std::vector<ObservedLevel>&)> change) {
        if (busy_) return;
        pullEdits();
        change(workspace_.levels);
        showWorkspace(workspace_);
    };
    edit->addAction("Bracket Toggle", this, [this] { toggleWithheld(levels_->currentRow()); });
    edit->addAction("Set 0 for Obs. Energies", this, [editLevels] { editLevels(setZeroOfObservedEnergies); });
    edit->addAction("Convert Energies to CF Splittings", this, [editLevels] { editLevels(convertToCrystalFieldSplittings); });
    QMenu* sort = edit->addMenu("Sort Energy Table Column");
    sort->addAction("Ascending order", this, [editLevels] { editLevels([](auto& l) { sortByObservedEnergy(l, true); }); });
    sort->addAction("Descending order", this, [editLevels] { editLevels([](auto& l) { sortByObservedEnergy(l, false); }); });
    edit->addAction("Insert row", this, [this, editLevels] {
        const int row = std::max(0, levels_->currentRow());
        editLevels([row](auto& l) { l.insert(l.begin() + std::min<std::size_t>(row, l.size()), ObservedLevel{}); });
    });
    edit->addAction("Delete row", this, [this, editLevels] {
        const int row = levels_->currentRow();
        editLevels([row](auto& l) {
            if (row >= 0 && row < static_cast<int>(l.size())) l.erase(l.begin() + row);
        });
    });
    // Unobserved levels: the calculated levels no observed row is assigned to (listed in the log book),
    // and the rows not assigned to any state (removed).
    edit->addAction("Show unobserved levels", this, [this] {
        startFitJob("Show unobserved levels", [](FitSession& s, LogBook& log) {
            std::set<int> assigned;
            for (const auto& level : s.workspace().levels) assigned.insert(level.stateNumber);
            const auto states = s.calculatedStates();
            log.appendLine("Unobserved levels (State#, Calc.Energy, State Label):");
            for (std::size_t i = 0; i < states.size(); ++i)
                if (!assigned.count(static_cast<int>(i) + 1))
                    log.appendLine(fmt::format("{:>5}  {:>12.3f}  {}", i + 1, states[i].energy, stateLabelText(states[i].label)));
        }, false);
    });
    edit->addAction("Remove unobserved levels", this, [editLevels] {
        editLevels([](auto& l) { std::erase_if(l, [](const ObservedLevel& level) { return level.stateNumber <= 0; }); });
    });
    edit->addSeparator();
    edit->addAction("Adopt calculated labels", this, [this] { adoptLabels(); });
    edit->addAction("Replace energies with calculated ones", this, [this] { replaceEnergies(); });
}

void FitWindow::createFunctionsMenu(QMenu* functions) {
    functions->addAction("Reset parameters to initial values", this, [this] {
        pullEdits();
        for (auto& row : workspace_.parameters) row.finalFit = row.initial;
        showWorkspace(workspace_);
    });
    functions->addAction("Recover parameters from previous fit", this, [this] {
        pullEdits();
        for (auto& row : workspace_.parameters) row.finalFit = row.previous;
        showWorkspace(workspace_);
    });
    functions->addAction("Fit for Eav only", this, [this] {
        startFitJob("Fit for Eav only", [](FitSession& s, LogBook& log) {
            for (const auto& line : s.fitEavOnly()) log.appendLine(line);
        }, true);
    });
    functions->addAction("Update energies", this, [this] {
        startFitJob("Update energies", [](FitSession& s, LogBook&) { s.update(); }, false);
    });
    functions->addAction("Update statevectors", this, [this] { updateStatevectors(); });
    const auto errors = [this] {
        const bool correlations = workspace_.settings.reportCorrelations;
        startFitJob("Calculate fit errors", [correlations](FitSession& s, LogBook& log) {
            const auto result = computeFitErrors(s);
            applyLevelErrors(s.workspace(), result);
            for (const auto& line : fitErrorReport(s, result, correlations)) log.appendLine(line);
        }, false);
    };
    functions->addAction("Estimate fit errors", this, errors);
    functions->addAction("Calculate fit errors", this, errors);
    functions->addAction("Calculate g-factors", this, [this] {
        startFitJob("Calculate g-factors", [](FitSession& s, LogBook&) {
            const bool fitted = s.workspace().settings.fitGFactors;
            s.workspace().settings.fitGFactors = true;
            s.update(true);
            s.workspace().settings.fitGFactors = fitted;
        }, false);
    });
    functions->addSeparator();
    const auto logged = [this](const QString& name, std::function<std::vector<std::string>(FitSession&)> lines) {
        startFitJob(name, [lines](FitSession& s, LogBook& log) {
            for (const auto& line : lines(s)) log.appendLine(line);
        }, false);
    };
    functions->addAction("Electrostatic repulsion strength", this, [logged] {
        logged("Electrostatic repulsion strength",
               [](FitSession& s) { return electrostaticStrengthLines(s.model().tables(), s.currentParameters()); });
    });
    functions->addAction("Orthonormalised electrostatic repulsion parameters", this, [logged] {
        logged("Orthonormalised electrostatic repulsion parameters",
               [](FitSession& s) { return orthonormalisedElectrostaticLines(s.model().tables(), s.currentParameters()); });
    });
    functions->addAction("Crystal field invariants and strength", this, [logged] {
        logged("Crystal field invariants and strength",
               [](FitSession& s) { return crystalFieldInvariantLines(wybourneParametersOf(s.currentParameters())); });
    });
    functions->addAction("Spin Hamiltonian parameters", this, [this] {
        if (auto* window = main_.openStateVectorWindow())
            connect(window, &StateVectorWindow::statesReady, window, [window] { window->askSpinHamiltonian(); });
    });
    functions->addAction("Average and SD of all energies", this, [logged] {
        logged("Average and SD of all energies", [](FitSession& s) { return energyAverageLines(s.evaluation().energies); });
    });
}

void FitWindow::askSetting(int id) {
    if (busy_) return;
    askFitSetting(workspace_.settings, static_cast<FitSettingId>(id), static_cast<int>(workspace_.levels.size()),
                  *main_.services().asker);
}

void FitWindow::createOptionsMenu(QMenu* options) {
    FitSettings& s = workspace_.settings;
    const auto settingAction = [this](QMenu* menu, const QString& caption, FitSettingId id) {
        menu->addAction(caption, this, [this, id] { askSetting(static_cast<int>(id)); });
    };
    QMenu* ultimate = options->addMenu("Ultimate fit criteria");
    settingAction(ultimate, "Max. number of iterations...", FitSettingId::MaxIterations);
    settingAction(ultimate, "Scaling factor...", FitSettingId::ScalingFactor);
    settingAction(ultimate, "Convergence limit...", FitSettingId::ConvergenceLimit);
    checkable(ultimate, "AutoMatch of state labels", s.autoMatch, this);

    QMenu* criteria = options->addMenu("Fit Criteria");
    choices(criteria, s.scope, {{"Set fit for free-ion parameters only", FitScope::FreeIonOnly},
                                {"Set fit for Crystal Field parameters only", FitScope::CrystalFieldOnly},
                                {"Set fit for all parameters", FitScope::All}}, this);
    criteria->addSeparator();
    checkable(criteria, "Set g-factors for fitting", s.fitGFactors, this);
    checkable(criteria, "Automatic weighting for g-fit", s.automaticGWeight, this);
    settingAction(criteria, "Weighting for fit of g-factors...", FitSettingId::GWeight);
    criteria->addSeparator();
    QMenu* correlation = criteria->addMenu("CCF parameters");
    choices(correlation, s.correlation, {{"Fix values of all CCF parameters", CorrelationFitHandling::FixAll},
                                         {"Free fit of all CCF parameters", CorrelationFitHandling::FreeAll},
                                         {"Internal link of CCF parameters", CorrelationFitHandling::InternalLink},
                                         {"Link CCF parameters with CF parameters", CorrelationFitHandling::LinkWithCrystalField}},
            this);
    connect(correlation, &QMenu::triggered, this, [this] {
        pullEdits();
        applyCorrelationHandling(workspace_.parameters, workspace_.settings.correlation);
        showWorkspace(workspace_);
    });
    QMenu* errors = criteria->addMenu("Error estimation");
    choices(errors, s.errorMethod, {{"Discrepancies between calc. and observed energies", FitErrorMethod::Discrepancies},
                                    {"Experimental errors in observed energies", FitErrorMethod::ExperimentalErrors}},
            this);
    QMenu* reports = criteria->addMenu("Reports after a fit");
    checkable(reports, "Report parameter values", s.reportValues, this);
    checkable(reports, "Report parameter errors", s.reportErrors, this);
    checkable(reports, "Report correlation coeffs between parameters", s.reportCorrelations, this);

    QMenu* levels = options->addMenu("Energy level settings");
    settingAction(levels, "Max. number of levels...", FitSettingId::MaxLevels);
    settingAction(levels, "Accuracy of physical properties...", FitSettingId::PropertyAccuracy);
    checkable(levels, "Compute Fit Errors", s.computeFitErrors, this);

    QMenu* matching = options->addMenu("AutoMatch settings");
    settingAction(matching, "Percent for nearly match...", FitSettingId::NearMatchPercent);
    settingAction(matching, "State adoption ratio...", FitSettingId::MinorStateRatio);
    settingAction(matching, "User-defined settings...", FitSettingId::LabelWeights);

    QAction* automatic = options->addAction("Automatic Update");
    automatic->setCheckable(true);
    automatic->setChecked(s.automaticUpdate);
    connect(automatic, &QAction::toggled, this, [this](bool on) {
        workspace_.settings.automaticUpdate = on;
        std::string text = on ? kAutomaticUpdateOn : kAutomaticUpdateOff;
        if (!on)
            for (const char* hint : kManualUpdateHints) text += std::string("\n") + hint;
        main_.services().asker->showMessage("Automatic Update", text);
    });
}

// The hints shown when a fit opens with Automatic Update off (the complex crystal-field fit).
std::vector<std::string> manualUpdateNote() {
    std::vector<std::string> lines{
        "To save computing time, some automatic calculations are disabled or restricted.  Hence, you need to"};
    for (const char* hint : kManualUpdateHints) lines.emplace_back(hint);
    return lines;
}

}  // namespace orvane::app
