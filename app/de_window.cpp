#include "app/de_window.hpp"

#include <QChart>
#include <QChartView>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QLineSeries>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QValueAxis>
#include <thread>

#include "app/fit_window.hpp"
#include "app/main_window.hpp"
#include "app/superposition_editor.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "fit/fit_parameters.hpp"
#include "interactive/de_search.hpp"
#include "params/ligand_file.hpp"

namespace orvane::app {

namespace {

constexpr const char* kDEErrorTitle = "DE error";
constexpr const char* kNoSuperposition = "You need to provide Superposition Model parameters and ligand positions";

struct SettingField {
    DESettingId id;
    const char* caption;
};
constexpr SettingField kSettingFields[] = {
    {DESettingId::Parents, "NP (No. of Parents)"}, {DESettingId::F, "F"},       {DESettingId::Cr, "CR"},
    {DESettingId::Lambda, "Lambda"},               {DESettingId::Sd, "SD"},     {DESettingId::Err, "ERR"},
    {DESettingId::MaxIterations, "Max Iteration"}, {DESettingId::GWeight, "g weighting"},
};

// Default box of a parameter: 20 % of its size on either side (at least 1 energy unit).
std::pair<double, double> defaultLimits(double value) {
    const double half = std::max(1.0, 0.2 * std::abs(value));
    return {value - half, value + half};
}

// Starting superposition rows: intrinsic parameters and the usual power laws.
const std::pair<const char*, double> kSuperpositionRows[] = {
    {"Abar2", 400.0}, {"Abar4", 60.0}, {"Abar6", 10.0}, {"t2", 7.0}, {"t4", 12.0}, {"t6", 11.0},
};

QString settingText(double value) { return QString::number(value, 'g', 10); }

}  // namespace

DEWindow::DEWindow(MainWindow& main, FitWindow& fit, bool superposition)
    : QMainWindow(nullptr), main_(main), fit_(&fit), superposition_(superposition) {
    setWindowTitle(kDEWindowTitle);
    createLayout();
    fillParameters();
    connect(&main_.jobs(), &JobRunner::finished, this, [this] {
        if (!running_) return;
        running_ = false;
        emit searchEnded();
    });
}

void DEWindow::createLayout() {
    parameters_ = new QTableWidget(this);
    auto* form = new QFormLayout;
    const DESettings defaults;
    for (const SettingField& field : kSettingFields) {
        auto* edit = new QLineEdit(settingText(deSettingValue(defaults, field.id)), this);
        form->addRow(field.caption, edit);
        settingFields_.emplace_back(field.id, edit);
    }
    scheme_ = new QComboBox(this);
    scheme_->addItems({kOrdinarySchemeText, kAcceleratedSchemeText});
    matching_ = new QComboBox(this);
    matching_->addItems({kFixedLevelsText, kAutoMatchText});
    polish_ = new QCheckBox(kPolishText, this);
    form->addRow("Scheme", scheme_);
    form->addRow("Levels", matching_);
    form->addRow(polish_);

    auto* chart = new QChart;
    chart->setTitle("RMS Dev. per iteration");
    auto* x = new QValueAxis;
    x->setTitleText("Iteration");
    x->setLabelFormat("%d");
    auto* y = new QValueAxis;
    y->setTitleText("RMS Dev.");
    chart->addAxis(x, Qt::AlignBottom);
    chart->addAxis(y, Qt::AlignLeft);
    best_ = new QLineSeries;
    best_->setName("best");
    mean_ = new QLineSeries;
    mean_->setName("mean");
    for (QLineSeries* series : {best_, mean_}) {
        chart->addSeries(series);
        series->attachAxis(x);
        series->attachAxis(y);
    }
    chart_ = new QChartView(chart, this);
    chart_->setMinimumHeight(220);

    auto* buttons = new QHBoxLayout;
    const std::pair<const char*, std::function<void()>> commands[] = {
        {"Start", [this] { start(); }},
        {"Break", [this] { requestBreak(); }},
        {"Transfer best set", [this] { transferBestSet(); }},
    };
    for (const auto& [caption, action] : commands) {
        auto* button = new QPushButton(caption, this);
        connect(button, &QPushButton::clicked, this, action);
        buttons->addWidget(button);
    }
    buttons->addStretch();
    auto* central = new QWidget(this);
    auto* top = new QHBoxLayout;
    top->addWidget(parameters_, 3);
    top->addLayout(form, 2);
    auto* layout = new QVBoxLayout(central);
    layout->addLayout(buttons);
    layout->addLayout(top);
    layout->addWidget(chart_);
    setCentralWidget(central);

    QMenu* file = menuBar()->addMenu("&File");
    file->addAction("Load ligand file...", this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, "Ligand positions", {}, "Ligand files (*.lig *.txt);;All files (*)");
        if (!path.isEmpty()) loadLigands(path.toStdString());
    });
}

// The ligands and intrinsic parameters of an open superposition-model editor, if any.
std::optional<std::pair<DESuperposition, params::SuperpositionParameters>> DEWindow::openSuperpositionEditor() const {
    for (QMdiSubWindow* frame : main_.documents().subWindowList())
        if (auto* editor = qobject_cast<SuperpositionEditor*>(frame->widget())) try {
                const auto parameters = editor->parameters();
                return std::pair{DESuperposition{editor->ligands(), parameters.r0}, parameters};
            } catch (const UserError&) {
                return std::nullopt;  // a cell that does not read: the search asks for a ligand file
            }
    return std::nullopt;
}

void DEWindow::fillParameters() {
    std::vector<DEParameter> rows;
    std::array<double, 6> intrinsic{};
    for (std::size_t i = 0; i < 6; ++i) intrinsic[i] = kSuperpositionRows[i].second;
    if (superposition_)
        if (const auto editor = openSuperpositionEditor()) {
            ligands_ = editor->first;
            for (std::size_t k = 0; k < 3; ++k) {
                if (editor->second.bk[k] != 0.0) intrinsic[k] = editor->second.bk[k];
                if (editor->second.tk[k] != 0.0) intrinsic[3 + k] = editor->second.tk[k];
            }
        }
    if (fit_)
        for (const FitParameter& row : fit_->workspace().parameters)
            if (row.option == kFitOptionFree && (!superposition_ || row.name.rfind('B', 0) != 0)) {
                const auto [lower, upper] = defaultLimits(row.finalFit);
                rows.push_back({row.name, row.finalFit, lower, upper, false});
            }
    if (superposition_)
        for (std::size_t i = 0; i < 6; ++i) {
            const auto [lower, upper] = defaultLimits(intrinsic[i]);
            rows.push_back({kSuperpositionRows[i].first, intrinsic[i], lower, upper, false});
        }
    parameters_->setColumnCount(5);
    parameters_->setHorizontalHeaderLabels({"Parameter", "Initial value", "Lower limit", "Upper limit", "fixed"});
    parameters_->setRowCount(static_cast<int>(rows.size()));
    for (int r = 0; r < static_cast<int>(rows.size()); ++r) {
        const DEParameter& p = rows[static_cast<std::size_t>(r)];
        auto* name = new QTableWidgetItem(QString::fromStdString(p.name));
        name->setFlags(name->flags() & ~Qt::ItemIsEditable);
        parameters_->setItem(r, 0, name);
        parameters_->setItem(r, 1, new QTableWidgetItem(settingText(p.initial)));
        parameters_->setItem(r, 2, new QTableWidgetItem(settingText(p.lower)));
        parameters_->setItem(r, 3, new QTableWidgetItem(settingText(p.upper)));
        auto* fixed = new QTableWidgetItem;
        fixed->setCheckState(Qt::Unchecked);
        parameters_->setItem(r, 4, fixed);
    }
    parameters_->resizeColumnsToContents();
}

std::vector<DEParameter> DEWindow::readParameters() const {
    std::vector<DEParameter> rows;
    for (int r = 0; r < parameters_->rowCount(); ++r) {
        const auto number = [&](int column) {
            const auto value = parseNumber(trim(parameters_->item(r, column)->text().toStdString()));
            if (!value) throw UserError(kDEErrorTitle, kDESettingErrorText);
            return *value;
        };
        rows.push_back({parameters_->item(r, 0)->text().toStdString(), number(1), number(2), number(3),
                        parameters_->item(r, 4)->checkState() == Qt::Checked});
    }
    return rows;
}

bool DEWindow::loadLigands(const std::filesystem::path& file) {
    try {
        const auto ligands = params::readLigandFile(file);
        ligands_ = DESuperposition{ligands.ligands, ligands.r0.value_or(0.0)};
        return true;
    } catch (const UserError& error) {
        main_.services().asker->showMessage(error.title(), error.describe());
        return false;
    }
}

void DEWindow::setSetting(DESettingId id, const QString& text) {
    for (auto& [field, edit] : settingFields_)
        if (field == id) edit->setText(text);
}

void DEWindow::setSeed(std::uint64_t seed) { seed_ = seed; }

std::optional<DESettings> DEWindow::readSettings() {
    DESettings settings;
    for (const auto& [id, edit] : settingFields_)
        if (const auto refusal = applyDESetting(settings, id, edit->text().toStdString())) {
            main_.services().asker->showMessage(kDEErrorTitle, *refusal);
            return std::nullopt;
        }
    settings.scheme = scheme_->currentIndex() == 1 ? DEScheme::Accelerated : DEScheme::Ordinary;
    settings.matching = matching_->currentIndex() == 1 ? DELevelMatching::Automatic : DELevelMatching::Fixed;
    settings.polish = polish_->isChecked();
    return settings;
}

bool DEWindow::start() {
    if (running_ || !fit_) return false;
    if (superposition_ && (!ligands_ || ligands_->ligands.empty() || ligands_->r0 <= 0)) {
        main_.services().asker->showMessage(kDEErrorTitle, kNoSuperposition);
        return false;
    }
    const auto settings = readSettings();
    if (!settings) return false;
    DESearch search;
    try {
        search.parameters = readParameters();
    } catch (const UserError& error) {
        main_.services().asker->showMessage(kDEErrorTitle, error.describe());
        return false;
    }
    const FitWorkspace& workspace = fit_->workspace();
    search.set = withFittedValues(fit_->parameterSet(), workspace.parameters);
    search.kind = workspace.kind;
    search.levels = workspace.levels;
    search.gFactors = workspace.gFactors;
    if (superposition_) search.superposition = ligands_;
    search.settings = *settings;
    search.seed = seed_.value_or(clockSeed());
    search.threads = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
    search.tableDirectory = main_.services().tableDirectory;
    best_->clear();
    mean_->clear();
    result_.reset();
    *breakRequested_ = false;
    auto stop = std::make_shared<std::atomic<bool>>(false);
    auto breakRequested = breakRequested_;
    Asker* asker = main_.services().asker;
    QPointer<DEWindow> self(this);
    running_ = main_.startJob("Differential evolution", [=](LogBook& log) {
        const auto outcome = runDESearch(search, *asker, log, log, stop.get(), [&](const DEGeneration& g) {
            QMetaObject::invokeMethod(self, [self, g] { if (self) self->showGeneration(g); }, Qt::QueuedConnection);
            if (breakRequested->exchange(false) &&
                asker->askChoice("DE", kDEContinueQuestion, Buttons::OkCancel) != Choice::Ok)
                stop->store(true);
        });
        if (!outcome) return;
        QMetaObject::invokeMethod(self, [self, outcome] {
            if (!self) return;
            self->result_ = outcome->result;
            self->bestRows_ = outcome->bestRows;
        }, Qt::QueuedConnection);
    });
    return running_;
}

void DEWindow::showGeneration(const DEGeneration& generation) {
    best_->append(generation.iteration, generation.best);
    mean_->append(generation.iteration, generation.mean);
    QChart* chart = chart_->chart();
    double top = 0.0;
    for (const QPointF& point : mean_->points()) top = std::max(top, point.y());
    for (const QPointF& point : best_->points()) top = std::max(top, point.y());
    chart->axes(Qt::Horizontal).front()->setRange(0, std::max(1, generation.iteration));
    chart->axes(Qt::Vertical).front()->setRange(0, top * 1.05 + 1e-9);
    emit generationShown(generation.iteration);
}

int DEWindow::chartPoints() const { return static_cast<int>(best_->count()); }

bool DEWindow::transferBestSet() {
    if (!result_ || !fit_) return false;
    fit_->adoptParameterRows(bestRows_);
    return true;
}

}  // namespace orvane::app
