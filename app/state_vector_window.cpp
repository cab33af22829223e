#include "app/state_vector_window.hpp"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>

#include "app/main_window.hpp"
#include "core/atomic_file.hpp"
#include "interactive/property_dialogs.hpp"
#include "interactive/property_reports.hpp"
#include "properties/g_factors.hpp"

namespace orvane::app {

namespace {

// States with a coefficient below this are left out of a composition.
constexpr double kMinComponent = 0.002;

QPushButton* addButton(QHBoxLayout& row, const QString& text, QObject* receiver, const std::function<void()>& slot) {
    auto* button = new QPushButton(text);
    QObject::connect(button, &QPushButton::clicked, receiver, slot);
    row.addWidget(button);
    return button;
}

}  // namespace

StateVectorWindow::StateVectorWindow(MainWindow& main, std::filesystem::path parameterFile, int mode)
    : main_(main), options_(propertyRunOptionsFor(main, parameterFile, mode)) {
    setWindowTitle("Statevectors - " + qtText(parameterFile.filename().string()));
    auto* layout = new QVBoxLayout(this);
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel("Statevector #"));
    state_ = new QSpinBox;
    state_->setRange(1, 1);
    row->addWidget(state_);
    addButton(*row, "Composition", this, [this] { showComposition(state_->value()); });
    addButton(*row, "g-factors", this, [this] { calculateGFactors(); });
    addButton(*row, "Spin Hamiltonian...", this, [this] { askSpinHamiltonian(); });
    addButton(*row, "Magnetic moments...", this, [this] { askMomentElements(); });
    addButton(*row, "Clear", this, [this] { clearResults(); });
    addButton(*row, "Save...", this, [this] { saveAsking(); });
    addButton(*row, "Export g-factors...", this, [this] { exportAsking(); });
    row->addStretch();
    layout->addLayout(row);
    auto* split = new QSplitter(Qt::Vertical);
    results_ = new QPlainTextEdit;
    results_->setReadOnly(true);
    results_->setLineWrapMode(QPlainTextEdit::NoWrap);
    QFont font("Monospace");
    font.setStyleHint(QFont::TypeWriter);
    results_->setFont(font);
    gTable_ = new QTableWidget;
    split->addWidget(results_);
    split->addWidget(gTable_);
    layout->addWidget(split);
    status_ = new QLabel("Calculating the states ...");
    layout->addWidget(status_);
    startPropertyJob(main_, this, options_, {}, [this](SharedPropertyRun run) { runDone(std::move(run)); });
}

void StateVectorWindow::runDone(SharedPropertyRun run) {
    run_ = std::move(run);
    state_->setRange(1, stateCount());
    status(QString("%1 states").arg(stateCount()));
    emit statesReady();
}

int StateVectorWindow::stateCount() const { return run_ ? static_cast<int>(numberedStates(*run_).size()) : 0; }

void StateVectorWindow::status(const QString& text) { status_->setText(text); }

bool StateVectorWindow::withRun(const std::function<void(const PropertyRun&, LogBook&)>& report) {
    auto& asker = *main_.services().asker;
    if (!run_) {
        asker.showMessage("Statevectors", "The states are still being calculated.");
        return false;
    }
    MemoryLogBook lines;
    const bool done = showingErrors(asker, [&] { report(*run_, lines); });
    if (!lines.lines().empty()) results_->appendPlainText(qtText(lines.text()).chopped(1));
    return done;
}

bool StateVectorWindow::showComposition(int number) {
    return withRun([&](const PropertyRun& run, LogBook& log) {
        stateCompositionReport(run, {stateIndex(run, number, "Statevector #")}, kMinComponent, options_.complex, log);
    });
}

bool StateVectorWindow::showGFactors(const DoubletChoice& doubletsOf) {
    return withRun([&](const PropertyRun& run, LogBook& log) {
        const auto doublets = run.states.freeIon ? std::vector<std::pair<int, int>>{} : doubletsOf(run);
        gSheet_ = gFactorReport(run, doublets, options_, log).sheet();
        showSheet(*gTable_, gSheet_);
    });
}

bool StateVectorWindow::calculateGFactors() {
    return showGFactors([](const PropertyRun& run) { return pairDoublets(run.states); });
}

bool StateVectorWindow::askSpinHamiltonian() {
    if (!run_) return withRun({});
    const auto numbers = askSpinHamiltonianStates(*main_.services().asker, stateCount());
    if (!numbers) return false;
    return showGFactors([&](const PropertyRun& run) { return doubletsOfStates(run, *numbers); });
}

bool StateVectorWindow::askMomentElements() {
    if (!run_) return withRun({});
    const auto range = askStateRange(*main_.services().asker, stateCount());
    if (!range) return false;
    return withRun([&](const PropertyRun& run, LogBook& log) {
        const auto [first, last] = stateRange(run, range->first, range->last);
        momentReport(run, stateIndex(run, range->initial, "initial state#"), first, last, options_, log);
    });
}

void StateVectorWindow::clearResults() {
    results_->clear();
    gTable_->clear();
    gTable_->setRowCount(0);
    gTable_->setColumnCount(0);
    gSheet_ = Spreadsheet();
    status("Results cleared");
}

QString StateVectorWindow::resultText() const { return results_->toPlainText(); }

bool StateVectorWindow::saveResults(const std::filesystem::path& file) {
    const bool saved = showingErrors(*main_.services().asker, [&] {
        writeFileAtomically(file, resultText().toStdString() + '\n');
    });
    if (saved) status("Results saved");
    return saved;
}

bool StateVectorWindow::exportGFactors(const std::filesystem::path& file) {
    if (gSheet_.rowCount() < 2) {
        main_.services().asker->showMessage("Statevectors", "There is no g-factor table to export.");
        return false;
    }
    return showingErrors(*main_.services().asker, [&] { saveDatedTable(gSheet_, file); });
}

void StateVectorWindow::saveAsking() {
    const auto file = QFileDialog::getSaveFileName(this, "Save results", {}, "Plain Text (*.txt);;All Files (*.*)");
    if (!file.isEmpty()) saveResults(file.toStdString());
}

void StateVectorWindow::exportAsking() {
    const auto file = QFileDialog::getSaveFileName(this, "Export g-factors", {}, "Excel (*.xlsx)");
    if (!file.isEmpty()) exportGFactors(file.toStdString());
}

}  // namespace orvane::app
