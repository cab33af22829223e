#include "app/fit_window.hpp"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>

#include <fmt/format.h>

#include "app/fit_chart.hpp"
#include "app/fit_tables_view.hpp"
#include "app/main_window.hpp"
#include "app/parameter_editor.hpp"
#include "core/user_error.hpp"
#include "fit/fit_checks.hpp"
#include "fit/fit_parameters.hpp"
#include "fit/fit_tables.hpp"
#include "fit/observed_levels_file.hpp"
#include "interactive/fit_dialogs.hpp"
#include "interactive/fit_runs.hpp"

namespace orvane::app {

namespace {

constexpr const char* kAdoptLabelsQuestion =
    "Really want to adopt the calculated statevector label? Warning: All existing labels will be replaced!";
constexpr const char* kReplaceEnergiesQuestion = "Are you sure to replace all current energies with the calculated ones?";
constexpr const char* kRmsToolTip = "Root Mean Square Dev. between calculated and observed energies|Standard Error";

QPushButton* commandButton(const QString& caption, QWidget* parent) {
    auto* button = new QPushButton(caption, parent);
    button->setObjectName(caption);
    return button;
}

}  // namespace

FitWindow::FitWindow(MainWindow& main, ParameterEditor& editor, FitKind kind) : QMainWindow(nullptr), main_(main), editor_(&editor) {
    set_ = editor.parameterSet();
    workspace_.kind = kind;
    workspace_.parameterFileName = editor.filePath().filename().string();
    workspace_.parameters = fitParameterRows(set_, kind);
    setWindowTitle(QString::fromStdString(fitTitle(workspace_)));
    createLayout();
    createMenus();
    connect(&main_.jobs(), &JobRunner::finished, this, [this] {
        if (!busy_) return;
        setBusy(false);
        emit jobEnded();
    });
    showWorkspace(workspace_);
}

void FitWindow::createLayout() {
    parameters_ = new QTableWidget(this);
    levels_ = new QTableWidget(this);
    gFactors_ = new QTableWidget(this);
    chart_ = new FitChart(this);
    rms_ = new QLabel(this);
    rms_->setToolTip(kRmsToolTip);
    rmsG_ = new QLabel(this);
    connect(levels_, &QTableWidget::cellDoubleClicked, this, [this](int row, int) { toggleWithheld(row); });

    auto* buttons = new QHBoxLayout;
    const std::pair<const char*, std::function<void()>> commands[] = {
        {"Run Command", [this] { runCommand(); }},
        {"&Ultimate Fit", [this] { ultimateFit(); }},
        {"Update SV", [this] { updateStatevectors(); }},
        {"AutoMatch", [this] { autoMatch(); }},
        {"Adopt labels", [this] { adoptLabels(); }},
        {"Replace energies", [this] { replaceEnergies(); }},
    };
    for (const auto& [caption, action] : commands) {
        QPushButton* button = commandButton(caption, this);
        connect(button, &QPushButton::clicked, this, action);
        buttons->addWidget(button);
        commandButtons_ << button;
    }
    QPushButton* breakButton = commandButton("Break", this);
    connect(breakButton, &QPushButton::clicked, this, &FitWindow::breakFit);
    buttons->addWidget(breakButton);
    buttons->addStretch();

    auto* left = new QWidget(this);
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->addWidget(parameters_, 3);
    leftLayout->addWidget(rms_);
    leftLayout->addWidget(rmsG_);
    leftLayout->addWidget(gFactors_, 1);
    auto* splitter = new QSplitter(this);
    splitter->addWidget(left);
    splitter->addWidget(levels_);
    splitter->addWidget(chart_);
    splitter->setSizes({430, 470, 380});
    auto* central = new QWidget(this);
    auto* layout = new QVBoxLayout(central);
    layout->addLayout(buttons);
    layout->addWidget(splitter);
    setCentralWidget(central);
}

bool FitWindow::loadObservedLevels(const std::filesystem::path& file) {
    try {
        auto observed = readObservedLevelsFile(file);
        workspace_.levels = std::move(observed.levels);
        workspace_.gFactors = std::move(observed.gFactors);
        showWorkspace(workspace_);
        return true;
    } catch (const UserError& error) {
        main_.services().asker->showMessage(error.title(), error.describe());
        return false;
    }
}

void FitWindow::setFitOption(const std::string& name, std::int16_t option, const std::string& linkedTo) {
    pullEdits();
    orvane::setFitOption(workspace_.parameters, name, option, linkedTo);
    showWorkspace(workspace_);
}

void FitWindow::adoptParameterRows(const std::vector<FitParameter>& rows) {
    pullEdits();
    for (FitParameter& row : workspace_.parameters)
        if (const FitParameter* adopted = findFitParameter(rows, row.name)) {
            row.previous = row.finalFit;
            row.finalFit = adopted->finalFit;
        }
    showWorkspace(workspace_);
    writeBackToEditor();
}

bool FitWindow::realFitOfComplexSet() const {
    return workspace_.kind == FitKind::RealCrystalField && hasImaginaryCrystalField(set_);
}

void FitWindow::pullEdits() {
    if (busy_) return;
    readParameterEdits(*parameters_, workspace_.parameters);
    workspace_.levels = readLevelEdits(*levels_, workspace_.levels);
}

void FitWindow::showWorkspace(const FitWorkspace& workspace) {
    showParameterRows(*parameters_, workspace.parameters);
    showLevelRows(*levels_, workspace.levels);
    showGFactorRows(*gFactors_, workspace.gFactors);
    gFactors_->setVisible(!workspace.gFactors.empty());
    rms_->setText(QString::fromStdString(fmt::format("RMS Dev.|S.E. = {:.4f} | {:.4f}", workspace.rmsDeviation,
                                                     workspace.standardError)));
    rmsG_->setText(QString::fromStdString(fmt::format("RMS Dev. of g = {:.4f}", workspace.rmsDeviationG)));
    rmsG_->setVisible(workspace.settings.fitGFactors && !workspace.gFactors.empty());
    chart_->showWorkspace(workspace);
}

QString FitWindow::rmsText() const { return rms_->text(); }

void FitWindow::setBusy(bool busy) {
    busy_ = busy;
    for (QWidget* button : commandButtons_) button->setEnabled(!busy);
    const auto trigger = busy ? QAbstractItemView::NoEditTriggers
                              : QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                                    QAbstractItemView::AnyKeyPressed;
    parameters_->setEditTriggers(trigger);
    levels_->setEditTriggers(busy ? QAbstractItemView::NoEditTriggers
                                  : QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
}

bool FitWindow::startFitJob(const QString& name, FitBody body, bool writeBack) {
    if (busy_) return false;
    pullEdits();
    const ParameterSet set = set_;
    const FitWorkspace workspace = workspace_;
    const std::shared_ptr<const Model> model = model_;
    const auto tables = main_.services().tableDirectory;
    *stop_ = false;
    QPointer<FitWindow> self(this);
    const auto show = [self](FitWorkspace copy, std::shared_ptr<const Model> built, bool last) {
        QMetaObject::invokeMethod(
            self,
            [self, copy = std::move(copy), built = std::move(built), last] {
                if (!self) return;
                self->workspace_ = copy;
                if (built) self->model_ = built;
                self->showWorkspace(copy);
                if (last && self->editor_) self->writeBackToEditor();
                emit self->cycleShown();
            },
            Qt::QueuedConnection);
    };
    const bool started = main_.startJob(name, [=](LogBook& log) {
        auto session = model ? std::make_unique<FitSession>(set, workspace, model)
                             : std::make_unique<FitSession>(set, workspace, tables, log);
        session->update();
        body(*session, log);
        show(session->workspace(), session->sharedModel(), writeBack);
    });
    if (started) setBusy(true);
    return started;
}

bool FitWindow::runCommand() {
    pullEdits();
    const FitCheckOutcome outcome = checkFitSetup(workspace_, {false, realFitOfComplexSet()});
    if (!confirmFitCycle(outcome, *main_.services().asker, *main_.services().log)) return false;
    const auto stop = stop_;
    const bool started = startFitJob("Run Command", [stop](FitSession& session, LogBook& log) {
        runFitCycles(session, 1, [stop] { return stop->load(); }, log);
    }, true);
    if (started) {
        main_.services().log->appendLine(std::string("Read Log Book message and ") + kUpdateSvReminder);
        main_.services().asker->showMessage("Update SV", kUpdateSvReminder);
    }
    return started;
}

bool FitWindow::ultimateFit() {
    pullEdits();
    const FitCheckOutcome outcome = checkFitSetup(workspace_, {false, realFitOfComplexSet()});
    if (!confirmFitCycle(outcome, *main_.services().asker, *main_.services().log)) return false;
    const auto stop = stop_;
    Asker* asker = main_.services().asker;
    QPointer<FitWindow> self(this);
    return startFitJob("Ultimate Fit", [self, stop, asker](FitSession& session, LogBook& log) {
        runUltimateFitLogged(session, [stop] { return stop->load(); }, log, asker, [&](const FitCycleReport&) {
            // The tables follow the series cycle by cycle.
            FitWorkspace copy = session.workspace();
            QMetaObject::invokeMethod(self, [self, copy] {
                if (!self) return;
                self->showWorkspace(copy);
                emit self->cycleShown();
            }, Qt::QueuedConnection);
        });
    }, true);
}

bool FitWindow::updateStatevectors() {
    return startFitJob("Update SV", [](FitSession& session, LogBook&) { session.update(true); }, false);
}

bool FitWindow::autoMatch() {
    return startFitJob("AutoMatch", [](FitSession& session, LogBook& log) {
        log.appendLine(fmt::format("AutoMatch of state labels: {} state numbers changed.", session.autoMatchLevels()));
    }, false);
}

bool FitWindow::adoptLabels() {
    if (main_.services().asker->askChoice("Adopt labels", kAdoptLabelsQuestion, Buttons::YesNo) != Choice::Yes)
        return false;
    return startFitJob("Adopt labels", [](FitSession& session, LogBook& log) {
        if (session.adoptLabels()) log.appendLine("Alladopted");
    }, false);
}

bool FitWindow::replaceEnergies() {
    if (busy_) return false;
    pullEdits();
    if (main_.services().asker->askChoice("Replace energies", kReplaceEnergiesQuestion, Buttons::YesNo) != Choice::Yes)
        return false;
    for (ObservedLevel& level : workspace_.levels)
        if (level.stateNumber > 0) level.observedEnergy = level.calculatedEnergy;
    showWorkspace(workspace_);
    return true;
}

bool FitWindow::importGraspEnergies() {
    if (busy_) return false;
    const auto levels = askGraspObservedLevels(*main_.services().asker);
    if (!levels) return false;
    workspace_.levels = *levels;
    showWorkspace(workspace_);
    return true;
}

void FitWindow::toggleWithheld(int row) {
    if (busy_ || row < 0) return;
    pullEdits();
    if (row >= static_cast<int>(workspace_.levels.size())) return;
    ObservedLevel& level = workspace_.levels[static_cast<std::size_t>(row)];
    level.withheld = !level.withheld;
    showWorkspace(workspace_);
}

bool FitWindow::writeBackToEditor() {
    if (!editor_) {
        main_.services().asker->showMessage("Orvane", kEditorClosedMessage);
        return false;
    }
    set_ = withFittedValues(set_, workspace_.parameters);
    editor_->setParameterSet(set_);
    return true;
}

void FitWindow::logLines(const std::vector<std::string>& lines) {
    for (const auto& line : lines) main_.services().log->appendLine(line);
}

}  // namespace orvane::app
