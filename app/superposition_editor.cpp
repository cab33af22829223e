#include "app/superposition_editor.hpp"

#include <QCheckBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>
#include <array>
#include <set>

#include "app/main_window.hpp"
#include "app/parameter_editor.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "interactive/cf_rotation_dialogs.hpp"
#include "interactive/superposition_dialogs.hpp"
#include "interactive/superposition_runs.hpp"
#include "params/ligand_file.hpp"

namespace orvane::app {

namespace {

constexpr const char* kLigandTitle = "Error in setting up ligand positions";
constexpr int kInitialLigandRows = 12;

QString cellText(const QTableWidget& table, int row, int column) {
    const QTableWidgetItem* item = table.item(row, column);
    return item ? item->text().trimmed() : QString();
}

void setCell(QTableWidget& table, int row, int column, const QString& text) {
    table.setItem(row, column, new QTableWidgetItem(text));
}

// A number typed in a field; empty counts as 0. Throws UserError naming the field.
double numberOf(const QString& text, const std::string& field) {
    if (text.isEmpty()) return 0.0;
    const auto value = parseNumber(text.toStdString());
    if (!value) throw UserError(kLigandTitle, field + ": \"" + text.toStdString() + "\" is not a number");
    return *value;
}

QString numberText(double value) { return QString::number(value, 'g', 12); }

}  // namespace

SuperpositionEditor::SuperpositionEditor(MainWindow& main, QWidget* parent) : QMainWindow(parent), main_(main) {
    setWindowTitle("Superposition Model");
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->addWidget(createLigandPanel());
    splitter->addWidget(createParameterPanel());
    setCentralWidget(splitter);
    createMenus();
    restoreLastData();
}

std::filesystem::path SuperpositionEditor::dataFile(const char* name) const {
    return main_.services().dataFolder / "cfp" / name;
}

// A damaged "smdata.txt" is left unread: the editor opens empty.
void SuperpositionEditor::restoreLastData() {
    std::error_code error;
    if (!std::filesystem::is_regular_file(dataFile("smdata.txt"), error)) return;
    try {
        const params::SuperpositionData data = params::readSuperpositionData(dataFile("smdata.txt"));
        setLigands(data.ligands);
        setParameters(data.parameters);
    } catch (const UserError& problem) {
        main_.services().log->appendLine(problem.title() + ": " + problem.describe());
    }
}

// Every row of the table is kept, also after a calculation of selected rows.
void SuperpositionEditor::keepData(const params::SuperpositionParameters& parameters,
                                   const std::vector<std::string>& lines) const {
    try {
        std::filesystem::create_directories(dataFile("").parent_path());
        params::writeSuperpositionData(dataFile("smdata.txt"), {parameters, ligands()});
        params::appendSuperpositionLog(dataFile("smdata.log"), lines);
    } catch (const std::exception& problem) {
        main_.services().log->appendLine(std::string("Superposition model data not kept: ") + problem.what());
    }
}

QWidget* SuperpositionEditor::createLigandPanel() {
    auto* group = new QGroupBox("Ligand positions", this);
    auto* layout = new QVBoxLayout(group);
    ligandTable_ = new QTableWidget(kInitialLigandRows, 3, group);
    ligandTable_->setObjectName("ligandTable");
    ligandTable_->setHorizontalHeaderLabels({"Distance R", "Theta/deg", "Phi/deg"});
    ligandTable_->setSelectionBehavior(QAbstractItemView::SelectRows);
    ligandTable_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    layout->addWidget(ligandTable_, 1);
    auto* lattice = new QHBoxLayout;
    lattice->addWidget(new QLabel("Lattice constants a, b, c:", group));
    for (QLineEdit*& field : lattice_) {
        field = new QLineEdit("1", group);
        lattice->addWidget(field);
    }
    layout->addLayout(lattice);
    return group;
}

QWidget* SuperpositionEditor::createParameterPanel() {
    auto* panel = new QWidget(this);
    auto* layout = new QVBoxLayout(panel);
    auto* form = new QFormLayout;
    r0_ = new QLineEdit(panel);
    r0_->setObjectName("referenceDistance");
    form->addRow("Reference Distance R0", r0_);
    stevensType_ = new QCheckBox("Stevens-type normalisation (no division by t(k,|q|))", panel);
    form->addRow(stevensType_);
    layout->addLayout(form);
    intrinsic_ = new QTableWidget(3, 2, panel);
    intrinsic_->setObjectName("intrinsicTable");
    intrinsic_->setHorizontalHeaderLabels({"Intrinsic Bk", "Exponent tk"});
    intrinsic_->setVerticalHeaderLabels({"k = 2", "k = 4", "k = 6"});
    intrinsic_->setMaximumHeight(130);
    intrinsic_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    layout->addWidget(intrinsic_);
    auto* buttons = new QHBoxLayout;
    auto* calculateAll = new QPushButton("Calculate Bkq", panel);
    auto* copy = new QPushButton("Copy Bkq to the parameter editor", panel);
    connect(calculateAll, &QPushButton::clicked, this, [this] { calculate(false); });
    connect(copy, &QPushButton::clicked, this, &SuperpositionEditor::copyToParameterEditor);
    buttons->addWidget(calculateAll);
    buttons->addWidget(copy);
    layout->addLayout(buttons);
    resultTable_ = new QTableWidget(0, 4, panel);
    resultTable_->setObjectName("resultTable");
    resultTable_->setHorizontalHeaderLabels({"k", "q", "Real Bkq", "Imaginary CFP"});
    resultTable_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    resultTable_->verticalHeader()->hide();
    resultTable_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    for (const int column : {0, 1}) resultTable_->horizontalHeader()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
    layout->addWidget(resultTable_, 1);
    return panel;
}

void SuperpositionEditor::createMenus() {
    QMenu* file = menuBar()->addMenu("&File");
    file->addAction("&Load Ligand File...", this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, "Ligand file", {}, "Ligand files (*.lig *.txt);;All files (*)");
        if (!path.isEmpty()) loadLigandFile(path.toStdString());
    });
    file->addAction("&Close", this, &QWidget::close);
    QMenu* ligands = menuBar()->addMenu("&Ligands");
    ligands->addAction("&Add Row", this, [this] {
        if (ligandTable_->rowCount() < params::kMaxLigands) ligandTable_->insertRow(ligandTable_->rowCount());
    });
    ligands->addAction("&Delete Rows", this, [this] {
        const auto rows = ligandRows(true);
        for (auto row = rows.rbegin(); row != rows.rend(); ++row) ligandTable_->removeRow(*row);
    });
    ligands->addAction("To &Polar Coord.", this, &SuperpositionEditor::convertLatticeToPolar);
    ligands->addAction("&Rotate Positions...", this, &SuperpositionEditor::rotatePositions);
    QMenu* calculation = menuBar()->addMenu("&Calculate");
    calculation->addAction("Bkq of &All Ligands", this, [this] { calculate(false); });
    calculation->addAction("Bkq of &Selected Ligands", this, [this] { calculate(true); });
    calculation->addAction("&Estimate Intrinsic Parameters", this, &SuperpositionEditor::estimate);
    calculation->addAction("&Copy Bkq to the Parameter Editor", this, &SuperpositionEditor::copyToParameterEditor);
}

void SuperpositionEditor::showError(const std::exception& error) const {
    if (const auto* user = dynamic_cast<const UserError*>(&error))
        main_.services().asker->showMessage(user->title(), user->describe());
    else
        main_.services().asker->showMessage("Superposition Model", error.what());
}

std::vector<int> SuperpositionEditor::ligandRows(bool selectedOnly) const {
    std::set<int> rows;
    if (selectedOnly) {
        for (const QModelIndex& index : ligandTable_->selectionModel()->selectedRows()) rows.insert(index.row());
        if (rows.empty() && ligandTable_->currentRow() >= 0) rows.insert(ligandTable_->currentRow());
    } else {
        for (int row = 0; row < ligandTable_->rowCount(); ++row) rows.insert(row);
    }
    return {rows.begin(), rows.end()};
}

std::vector<params::Ligand> SuperpositionEditor::ligands(bool selectedOnly) const {
    std::vector<params::Ligand> result;
    for (const int row : ligandRows(selectedOnly)) {
        const QString r = cellText(*ligandTable_, row, 0);
        const QString theta = cellText(*ligandTable_, row, 1);
        const QString phi = cellText(*ligandTable_, row, 2);
        if (r.isEmpty() && theta.isEmpty() && phi.isEmpty()) continue;
        const std::string where = "Ligand row " + std::to_string(row + 1);
        result.push_back({numberOf(r, where), numberOf(theta, where), numberOf(phi, where)});
    }
    return result;
}

void SuperpositionEditor::setLigands(const std::vector<params::Ligand>& ligands) {
    ligandTable_->setRowCount(std::max<int>(static_cast<int>(ligands.size()), kInitialLigandRows));
    ligandTable_->clearContents();
    for (std::size_t i = 0; i < ligands.size(); ++i) {
        const int row = static_cast<int>(i);
        setCell(*ligandTable_, row, 0, numberText(ligands[i].r));
        setCell(*ligandTable_, row, 1, numberText(ligands[i].thetaDeg));
        setCell(*ligandTable_, row, 2, numberText(ligands[i].phiDeg));
    }
}

params::SuperpositionParameters SuperpositionEditor::parameters() const {
    params::SuperpositionParameters p;
    p.r0 = numberOf(r0_->text().trimmed(), "Reference Distance R0");
    for (int i = 0; i < 3; ++i) {
        const std::string rank = " of k = " + std::to_string(2 * i + 2);
        p.bk[i] = numberOf(cellText(*intrinsic_, i, 0), "Intrinsic Bk" + rank);
        p.tk[i] = numberOf(cellText(*intrinsic_, i, 1), "Exponent tk" + rank);
    }
    p.stevensType = stevensType_->isChecked();
    return p;
}

void SuperpositionEditor::setParameters(const params::SuperpositionParameters& p) {
    r0_->setText(numberText(p.r0));
    for (int i = 0; i < 3; ++i) {
        setCell(*intrinsic_, i, 0, numberText(p.bk[i]));
        setCell(*intrinsic_, i, 1, numberText(p.tk[i]));
    }
    stevensType_->setChecked(p.stevensType);
}

bool SuperpositionEditor::loadLigandFile(const std::filesystem::path& file) {
    try {
        const params::LigandFile read = params::readLigandFile(file);
        setLigands(read.ligands);
        if (read.r0) r0_->setText(numberText(*read.r0));
        main_.services().log->appendLine("Ligand positions read from " + file.string() + ": " +
                                         std::to_string(read.ligands.size()) + " ligands");
        return true;
    } catch (const std::exception& error) {
        showError(error);
        return false;
    }
}

bool SuperpositionEditor::calculate(bool selectedOnly) {
    try {
        const auto rows = ligands(selectedOnly);
        const auto outcome = params::superpositionBkqAsking(rows, parameters(), *main_.services().asker);
        if (!outcome) return false;
        if (outcome->parameters.r0 != parameters().r0) r0_->setText(numberText(outcome->parameters.r0));
        result_ = outcome->table;
        showResult();
        std::vector<std::string> lines = {
            "Superposition model: " + std::to_string(rows.size()) + " ligands, R0 = " +
                numberText(outcome->parameters.r0).toStdString(),
            outcome->parameters.stevensType ? "Bkq (Stevens-type coordination factors):" : "Bkq (Wybourne):"};
        for (const params::CfRow& row : result_.rows) lines.push_back(params::formatRowLine(row, true));
        for (const std::string& line : lines) main_.services().log->appendLine(line);
        keepData(outcome->parameters, lines);
        return true;
    } catch (const std::exception& error) {
        showError(error);
        return false;
    }
}

void SuperpositionEditor::showResult() {
    resultTable_->setRowCount(static_cast<int>(result_.rows.size()));
    for (std::size_t i = 0; i < result_.rows.size(); ++i) {
        const params::CfRow& row = result_.rows[i];
        const int line = static_cast<int>(i);
        setCell(*resultTable_, line, 0, QString::number(row.k));
        setCell(*resultTable_, line, 1, QString::number(row.q));
        setCell(*resultTable_, line, 2, QString::fromStdString(row.re.text));
        setCell(*resultTable_, line, 3, QString::fromStdString(row.im.text));
    }
}

bool SuperpositionEditor::copyToParameterEditor() {
    if (result_.rows.empty()) {
        main_.services().asker->showMessage("Superposition Model", "Calculate the Bkq before copying them.");
        return false;
    }
    ParameterEditor* editor = main_.parameterEditor();
    ParameterSet set = editor->parameterSet();
    if (const auto before = params::adoptSuperpositionBkq(set, result_))
        main_.services().log->appendLine("Fold of symmetry axis changed from " + std::to_string(*before) + " to " +
                                         std::to_string(set.fold));
    editor->setParameterSet(set);
    return true;
}

bool SuperpositionEditor::estimate() {
    try {
        ParameterEditor* editor = main_.parameterEditor(false);
        const ParameterSet set = editor ? editor->parameterSet() : ParameterSet{};
        const auto found = params::estimateFromParameterSet(ligands(), parameters(), set);
        for (int i = 0; i < 3; ++i)
            if (found.bk[i]) setCell(*intrinsic_, i, 0, numberText(*found.bk[i]));
        for (const std::string& line : params::estimateLines(found)) main_.services().log->appendLine(line);
        return true;
    } catch (const std::exception& error) {
        showError(error);
        return false;
    }
}

bool SuperpositionEditor::convertLatticeToPolar() {
    try {
        std::vector<std::array<double, 3>> fractional;
        for (const params::Ligand& row : ligands()) fractional.push_back({row.r, row.thetaDeg, row.phiDeg});
        std::array<double, 3> cell{};
        for (int i = 0; i < 3; ++i) cell[i] = numberOf(lattice_[i]->text().trimmed(), "Lattice constant");
        const auto polar =
            params::convertLatticeTableAsking(fractional, cell[0], cell[1], cell[2], *main_.services().asker);
        if (!polar) return false;
        setLigands(*polar);
        return true;
    } catch (const std::exception& error) {
        showError(error);
        return false;
    }
}

bool SuperpositionEditor::rotatePositions() {
    try {
        const auto moved = params::rotateLigandsAsking(ligands(), *main_.services().asker);
        if (!moved) return false;
        setLigands(*moved);
        return true;
    } catch (const std::exception& error) {
        showError(error);
        return false;
    }
}

}  // namespace orvane::app
