#include "app/options_window.hpp"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <set>

#include "app/main_window.hpp"
#include "core/text.hpp"
#include "interactive/batch_run.hpp"

namespace orvane::app {

namespace {

QString qtPath(const std::filesystem::path& path) { return QString::fromStdString(path.string()); }

QPushButton* button(const QString& text, const char* name, QWidget* parent) {
    auto* b = new QPushButton(text, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    return b;
}

std::vector<std::filesystem::path> splitPaths(const std::string& text) {
    std::vector<std::filesystem::path> paths;
    std::size_t start = 0;
    while (start <= text.size()) {
        const auto end = std::min(text.find('\n', start), text.size());
        if (const auto line = trim(std::string_view(text).substr(start, end - start)); !line.empty())
            paths.emplace_back(std::string(line));
        start = end + 1;
    }
    return paths;
}

}  // namespace

OptionsWindow::OptionsWindow(MainWindow& main, QWidget* parent) : QDialog(parent), main_(main) {
    setWindowTitle("Options");
    auto* layout = new QVBoxLayout(this);
    auto* top = new QHBoxLayout;
    top->addWidget(createRunGroup());
    top->addWidget(createStoringGroup());
    layout->addLayout(top);
    layout->addWidget(createFilesGroup());
    layout->addWidget(createBatchGroup(), 1);
    layout->addWidget(createButtons());

    options_ = readRunOptions(*main_.services().settings);
    showOptions(options_);
    setBatchFiles(splitPaths(main_.services().settings->read("Settings", kBatchFilesKey).value_or("")));
}

QWidget* OptionsWindow::createRunGroup() {
    auto* group = new QGroupBox("Kind of run", this);
    auto* layout = new QVBoxLayout(group);
    kind_ = new QButtonGroup(group);
    const std::pair<const char*, RunChoice> kinds[] = {{"Free ion", RunChoice::FreeIon},
                                                       {"Real crystal field", RunChoice::RealCrystalField},
                                                       {"Complex crystal field", RunChoice::ComplexCrystalField}};
    for (const auto& [label, kind] : kinds) {
        auto* radio = new QRadioButton(label, group);
        radio->setObjectName(QString("kind%1").arg(static_cast<int>(kind)));
        kind_->addButton(radio, static_cast<int>(kind));
        layout->addWidget(radio);
    }
    return group;
}

QWidget* OptionsWindow::createFilesGroup() {
    auto* group = new QGroupBox("Files", this);
    auto* layout = new QVBoxLayout(group);
    auto* inputRow = new QHBoxLayout;
    input_ = new QLineEdit(group);
    input_->setObjectName("inputFile");
    auto* browse = button("Browse...", "browseInput", group);
    connect(browse, &QPushButton::clicked, this, &OptionsWindow::browseInput);
    inputRow->addWidget(new QLabel("Input *.par", group));
    inputRow->addWidget(input_, 1);
    inputRow->addWidget(browse);
    layout->addLayout(inputRow);
    auto* results = new QHBoxLayout;
    general_ = new QCheckBox("general *.gen", group);
    energies_ = new QCheckBox("energies *.eng", group);
    vectors_ = new QCheckBox("state vectors *.ev", group);
    general_->setObjectName("writeGeneral");
    energies_->setObjectName("writeEnergies");
    vectors_->setObjectName("writeVectors");
    results->addWidget(new QLabel("Result files:", group));
    for (QCheckBox* box : {general_, energies_, vectors_}) results->addWidget(box);
    results->addStretch(1);
    layout->addLayout(results);
    return group;
}

QWidget* OptionsWindow::createStoringGroup() {
    auto* group = new QGroupBox("State vectors", this);
    auto* form = new QFormLayout(group);
    vectorCount_ = new QLineEdit(group);
    vectorCount_->setObjectName("vectorsToStore");
    vectorCount_->setToolTip(QString("1 to %1").arg(kMaxVectorsToStore));
    minCoefficient_ = new QLineEdit(group);
    minCoefficient_->setObjectName("minCoefficient");
    actualShell_ = new QCheckBox("/actualshell", group);
    actualShell_->setObjectName("actualShell");
    printHm_ = new QCheckBox("/printhm", group);
    printHm_->setObjectName("printHm");
    form->addRow("No. of state vectors to store", vectorCount_);
    form->addRow("Min. statevector coefficient to store", minCoefficient_);
    form->addRow(actualShell_);
    form->addRow(printHm_);
    return group;
}

QWidget* OptionsWindow::createBatchGroup() {
    auto* group = new QGroupBox("Batch job files", this);
    auto* layout = new QVBoxLayout(group);
    batch_ = new QTableWidget(0, 1, group);
    batch_->setObjectName("batchTable");
    batch_->setHorizontalHeaderLabels({"Parameter file"});
    batch_->horizontalHeader()->setStretchLastSection(true);
    batch_->setSelectionBehavior(QAbstractItemView::SelectRows);
    layout->addWidget(batch_, 1);
    auto* buttons = new QHBoxLayout;
    auto* addRow = button("Add row", "addBatchRow", group);
    auto* addRows = button("Add rows...", "addBatchRows", group);
    auto* remove = button("Delete row(s)", "deleteBatchRows", group);
    auto* run = button("Run batch", "runBatch", group);
    connect(addRow, &QPushButton::clicked, this, [this] { addBatchRows(1); });
    connect(addRows, &QPushButton::clicked, this, &OptionsWindow::addBatchRowsAsking);
    connect(remove, &QPushButton::clicked, this, &OptionsWindow::deleteSelectedBatchRows);
    connect(run, &QPushButton::clicked, this, &OptionsWindow::runBatch);
    for (QPushButton* b : {addRow, addRows, remove, run}) buttons->addWidget(b);
    buttons->addStretch(1);
    layout->addLayout(buttons);
    return group;
}

QWidget* OptionsWindow::createButtons() {
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    auto* ok = button("OK", "ok", row);
    auto* applyButton = button("Apply", "apply", row);
    auto* cancel = button("Cancel", "cancel", row);
    auto* defaults = button("Default", "default", row);
    auto* run = button("Run", "run", row);
    connect(ok, &QPushButton::clicked, this, [this] {
        if (apply()) accept();
    });
    connect(applyButton, &QPushButton::clicked, this, &OptionsWindow::apply);
    connect(cancel, &QPushButton::clicked, this, &OptionsWindow::reject);
    connect(defaults, &QPushButton::clicked, this, &OptionsWindow::restoreDefaults);
    connect(run, &QPushButton::clicked, this, &OptionsWindow::runOnce);
    layout->addStretch(1);
    for (QPushButton* b : {ok, applyButton, cancel, defaults, run}) layout->addWidget(b);
    return row;
}

void OptionsWindow::showOptions(const RunOptions& options) {
    kind_->button(static_cast<int>(options.kind))->setChecked(true);
    input_->setText(qtPath(options.inputFile));
    general_->setChecked(options.writeGeneral);
    energies_->setChecked(options.writeEnergies);
    vectors_->setChecked(options.writeVectors);
    vectorCount_->setText(QString::number(options.vectorsToStore));
    minCoefficient_->setText(QString::fromStdString(options.minCoefficient));
    actualShell_->setChecked(options.actualShell);
    printHm_->setChecked(options.printHamiltonian);
}

bool OptionsWindow::apply() {
    RunOptions taken = options_;
    taken.kind = static_cast<RunChoice>(kind_->checkedId());
    taken.inputFile = input_->text().trimmed().toStdString();
    taken.writeGeneral = general_->isChecked();
    taken.writeEnergies = energies_->isChecked();
    taken.writeVectors = vectors_->isChecked();
    taken.actualShell = actualShell_->isChecked();
    taken.printHamiltonian = printHm_->isChecked();
    const auto count = vectorsToStoreOf(vectorCount_->text().toStdString());
    if (count) taken.vectorsToStore = *count;
    const std::string minimum = minCoefficient_->text().trimmed().toStdString();
    const bool minimumTaken = acceptMinCoefficient(minimum, *main_.services().asker);
    if (minimumTaken) taken.minCoefficient = minimum;
    options_ = taken;
    showOptions(options_);  // a refused field shows the value kept
    writeRunOptions(*main_.services().settings, options_);
    storeBatchFiles();
    return count && minimumTaken;
}

void OptionsWindow::restoreDefaults() {
    RunOptions defaults;
    defaults.inputFile = input_->text().trimmed().toStdString();  // the file is no setting
    showOptions(defaults);
}

bool OptionsWindow::runOnce() {
    if (!apply()) return false;
    const auto prepared = prepareRun(options_, *main_.services().asker);
    return prepared && main_.startRun({prepared->mode, prepared->parameterFile, prepared->request});
}

bool OptionsWindow::runBatch() {
    if (!apply()) return false;
    const auto files = batchFiles();
    if (files.empty()) return false;
    std::vector<BatchRun> rows;
    for (const auto& file : files) rows.push_back({file, runModeOf(options_.kind), runRequestOf(options_)});
    const DesktopServices services = main_.services();
    const RunChoice kind = options_.kind;
    return main_.startJob("Batch", [rows, services, kind](LogBook& log) {
        InteractiveRunEnvironment environment{log, *services.asker, *services.settings, services.tableDirectory};
        BatchHooks hooks;
        hooks.confirm = [&](const BatchRun& row) { return confirmFreeIonRun(kind, row.file, *services.asker); };
        hooks.failed = [&](const UserError& error) { log.appendLine(error.describe()); };
        orvane::runBatch(rows, environment, hooks);
    });
}

void OptionsWindow::addBatchRows(int count) {
    for (int i = 0; i < count; ++i) batch_->insertRow(batch_->rowCount());
}

void OptionsWindow::addBatchRowsAsking() {
    const auto answer = main_.services().asker->askLine({"Give number of data rows to add:", "Batch job files", "1"});
    if (!answer) return;
    // At most as many rows as a batch sensibly holds at once.
    constexpr int kMaxRowsAdded = 1000;
    if (const auto count = parseInteger(trim(*answer)); count && *count > 0)
        addBatchRows(std::min(*count, kMaxRowsAdded));
}

void OptionsWindow::deleteSelectedBatchRows() {
    std::set<int> rows;
    for (const QModelIndex& index : batch_->selectionModel()->selectedRows()) rows.insert(index.row());
    if (rows.empty() && batch_->currentRow() >= 0) rows.insert(batch_->currentRow());
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) batch_->removeRow(*row);
}

std::vector<std::filesystem::path> OptionsWindow::batchFiles() const {
    std::vector<std::filesystem::path> files;
    for (int row = 0; row < batch_->rowCount(); ++row)
        if (const QTableWidgetItem* item = batch_->item(row, 0); item && !item->text().trimmed().isEmpty())
            files.emplace_back(item->text().trimmed().toStdString());
    return files;
}

void OptionsWindow::setBatchFiles(const std::vector<std::filesystem::path>& files) {
    batch_->setRowCount(0);
    for (const auto& file : files) {
        const int row = batch_->rowCount();
        batch_->insertRow(row);
        batch_->setItem(row, 0, new QTableWidgetItem(qtPath(file)));
    }
}

void OptionsWindow::storeBatchFiles() {
    std::string text;
    for (const auto& file : batchFiles()) text += file.string() + "\n";
    main_.services().settings->write("Settings", kBatchFilesKey, text);
}

void OptionsWindow::browseInput() {
    const QString file = QFileDialog::getOpenFileName(this, "Input *.par", input_->text(),
                                                      "Par files (*.par);;All files (*)");
    if (!file.isEmpty()) input_->setText(file);
}

}  // namespace orvane::app
