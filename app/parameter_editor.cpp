// The parameter editor's window and fields: how a set is shown and read back.
#include "app/parameter_editor.hpp"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QVBoxLayout>

#include "app/crystal_field_grid.hpp"
#include "app/free_ion_grid.hpp"
#include "app/main_window.hpp"
#include "app/parameter_cells.hpp"
#include "core/user_error.hpp"
#include "engine/cell_value.hpp"
#include "engine/editor_checks.hpp"
#include "engine/other_free_ion.hpp"
#include "engine/parameter_file.hpp"

namespace orvane::app {
namespace {

QString qtText(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<int>(text.size())); }

constexpr SlaterType kSlaterTypes[] = {SlaterType::RacahE, SlaterType::SlaterFLower, SlaterType::SlaterFUpper};
constexpr CfConvention kConventions[] = {CfConvention::Wybourne, CfConvention::Stevens, CfConvention::UnitOperators};
constexpr const char* kConventionNames[] = {"Wybourne", "Stevens", "Unit operators"};

QPushButton* rowButton(const QString& text, QWidget* parent, const std::function<void()>& action) {
    auto* button = new QPushButton(text, parent);
    QObject::connect(button, &QPushButton::clicked, parent, action);
    return button;
}

QGroupBox* group(const QString& title, QLayout* layout) {
    auto* box = new QGroupBox(title);
    box->setLayout(layout);
    return box;
}

bool hasImaginaryPart(const std::vector<CrystalFieldRow>& rows) {
    for (const CrystalFieldRow& row : rows)
        if (row.im.value != 0.0) return true;
    return false;
}

}  // namespace

ParameterEditor::ParameterEditor(MainWindow& main, QWidget* parent)
    : QMainWindow(parent),
      main_(main),
      switches_{{{"/opimkpk", &RunSwitches::opimkpk},
                 {"/noss", &RunSwitches::noSpinSpin},
                 {"/wrongrankss", &RunSwitches::wrongRankSpinSpin},
                 {"/t2correction", &RunSwitches::t2Correction},
                 {"/usezic", &RunSwitches::useZic},
                 {"/actualshell", &RunSwitches::actualShell},
                 {"/cubiccf", &RunSwitches::cubicCF},
                 {"/detailedproperties", &RunSwitches::detailedProperties},
                 {"/IRproper", &RunSwitches::properRotationIrreps}}} {
    auto* content = new QWidget;
    auto* layout = new QVBoxLayout(content);
    layout->addWidget(buildIdentityFields());
    layout->addWidget(buildFreeIonFields());
    layout->addWidget(buildCrystalFieldFields());
    layout->addWidget(buildSwitchFields());
    layout->addWidget(buildCorrelationFields());
    auto* scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setWidget(content);
    setCentralWidget(scroll);
    createMenus();
    setParameterSet(ParameterSet{});
    setWindowTitle("Input - ");
}

QWidget* ParameterEditor::buildIdentityFields() {
    auto* form = new QFormLayout;
    title_ = new QLineEdit;
    note_ = new QLineEdit;
    description_ = new QLineEdit;
    form->addRow("Title (ion)", title_);
    form->addRow("Note", note_);
    form->addRow("Description", description_);
    connect(title_, &QLineEdit::editingFinished, this, [this] {
        if (title_->isModified()) takeElectronsFromTitle();
        title_->setModified(false);
    });
    return group("Title", form);
}

QWidget* ParameterEditor::buildFreeIonFields() {
    auto* layout = new QVBoxLayout;
    slaterType_ = new QComboBox;
    for (SlaterType type : kSlaterTypes) slaterType_->addItem(qtText(slaterTypeText(type)));
    layout->addWidget(slaterType_);
    mainRows_ = new FreeIonGrid([](const std::string&, const std::string& text) { return readCellNumber(text); });
    mainRows_->setMinimumHeight(150);
    layout->addWidget(mainRows_);
    auto* counts = new QFormLayout;
    electrons_ = new QSpinBox;
    electrons_->setRange(0, kMaxElectronCount);
    fold_ = new QSpinBox;
    fold_->setRange(1, kMaxFold);
    counts->addRow("No. of electrons", electrons_);
    counts->addRow("Fold of symmetry axis", fold_);
    layout->addLayout(counts);
    layout->addWidget(new QLabel("Other free-ion parameters"));
    otherRows_ = new FreeIonGrid([](const std::string& name, const std::string& text) -> std::optional<double> {
        const auto cell = readOtherFreeIonCell(name, text);
        return cell ? std::optional(cell->number) : std::nullopt;
    });
    otherRows_->setMinimumHeight(180);
    connect(otherRows_, &QTableWidget::cellChanged, this, &ParameterEditor::fillBlankMultiple);
    layout->addWidget(otherRows_);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(rowButton("Add row", this, [this] { otherRows_->addRow(); }));
    buttons->addWidget(rowButton("Delete rows", this, [this] { otherRows_->deleteSelectedRows(); }));
    buttons->addStretch();
    layout->addLayout(buttons);
    layout->addWidget(new QLabel("If M2 or M4 left blank, M2=0.56*M0, M4=0.38*M0"));
    layout->addWidget(new QLabel("If P4 or P6 left blank, P4=0.75*P2 and P6=0.5*P2"));
    return group("Free-ion parameters", layout);
}

QWidget* ParameterEditor::buildCrystalFieldFields() {
    auto* layout = new QVBoxLayout;
    auto* choices = new QFormLayout;
    convention_ = new QComboBox;
    for (const char* name : kConventionNames) convention_->addItem(name);
    unit_ = new QComboBox;
    for (int code = 1; code <= 4; ++code) unit_->addItem(QString::fromStdString(params::unitName(*params::unitFromCode(code))));
    complex_ = new QCheckBox("Complex crystal field (show Im)");
    choices->addRow("Convention", convention_);
    choices->addRow("Energy unit", unit_);
    choices->addRow(complex_);
    layout->addLayout(choices);
    crystalField_ = new CrystalFieldGrid(CrystalFieldGrid::Content::CrystalField);
    crystalField_->setMinimumHeight(220);
    layout->addWidget(crystalField_);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(rowButton("Add row", this, [this] { crystalField_->addRow(); }));
    buttons->addWidget(rowButton("Delete rows", this, [this] { crystalField_->deleteSelectedRows(); }));
    buttons->addStretch();
    layout->addLayout(buttons);
    auto* symmetry = new QFormLayout;
    pointGroup_ = new QComboBox;
    pointGroup_->addItem("(none)");
    for (const PointGroup& point : crystallographicPointGroups()) pointGroup_->addItem(qtText(point.name));
    pointGroupFold_ = new QLabel;
    symmetry->addRow("Point group", pointGroup_);
    symmetry->addRow("Fold of high symmetry axis (z-axis) as determined by selected point group", pointGroupFold_);
    layout->addLayout(symmetry);
    connect(convention_, &QComboBox::currentIndexChanged, this, [this] { showUnitHeading(); });
    connect(unit_, &QComboBox::currentIndexChanged, this, [this] { showUnitHeading(); });
    connect(complex_, &QCheckBox::toggled, this, [this](bool on) {
        crystalField_->setComplexMode(on);
        correlation_->setComplexMode(on);
    });
    connect(pointGroup_, &QComboBox::currentIndexChanged, this, [this] { showPointGroupFold(); });
    return group("Crystal-field parameters", layout);
}

QWidget* ParameterEditor::buildSwitchFields() {
    auto* grid = new QGridLayout;
    int index = 0;
    for (SwitchBox& entry : switches_) {
        entry.box = new QCheckBox(entry.text);
        grid->addWidget(entry.box, index / 3, index % 3);
        ++index;
    }
    auto* numbers = new QFormLayout;
    irNotation_ = new QSpinBox;
    irNotation_->setRange(1, 4);
    minSpin_ = new QSpinBox;
    minSpin_->setRange(0, 8);
    minSpin_->setSpecialValueText("none");
    numbers->addRow("IR notation", irNotation_);
    numbers->addRow("Min spin multiplicity: ", minSpin_);
    auto* layout = new QVBoxLayout;
    layout->addLayout(grid);
    layout->addLayout(numbers);
    return group("Switches", layout);
}

QWidget* ParameterEditor::buildCorrelationFields() {
    auto* layout = new QVBoxLayout;
    correlation_ = new CrystalFieldGrid(CrystalFieldGrid::Content::CorrelationSections);
    correlation_->setMinimumHeight(120);
    layout->addWidget(correlation_);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(rowButton("Add row", this, [this] { correlation_->addRow(); }));
    buttons->addWidget(rowButton("Delete rows", this, [this] { correlation_->deleteSelectedRows(); }));
    buttons->addStretch();
    layout->addLayout(buttons);
    return group("Correlation crystal field", layout);
}

void ParameterEditor::showUnitHeading() {
    const auto unit = params::unitFromCode(unit_->currentIndex() + 1).value_or(params::EnergyUnitCode::Wavenumber);
    const QString heading = QString::fromStdString(params::unitHeading(unit)) + "\n" +
                            kConventionNames[convention_->currentIndex()];
    crystalField_->setValueHeading(heading);
    correlation_->setValueHeading(heading);
}

void ParameterEditor::showPointGroupFold() {
    const PointGroup* point = pointGroupByIndex(pointGroup_->currentIndex());
    pointGroupFold_->setText(point ? QString::number(point->fold) : QString());
}

void ParameterEditor::takeElectronsFromTitle() {
    const IonElectrons ion = electronsFromTitle(title_->text().trimmed().toStdString());
    if (ion.electrons) electrons_->setValue(*ion.electrons);
    else main_.services().asker->showMessage(kInvalidIonTitle, ion.message);
}

// A named M2, M4, P4 or P6 row with a blank value shows its default multiple.
void ParameterEditor::fillBlankMultiple(int row, int column) {
    if (column != 0 || !itemText(*otherRows_, row, 1).empty()) return;
    if (const auto text = defaultMultipleText(itemText(*otherRows_, row, 0)))
        setTextItem(*otherRows_, row, 1, QString::fromStdString(*text));
}

ParameterSet ParameterEditor::parameterSet() const {
    ParameterSet set = base_;
    set.title = title_->text().trimmed().toStdString();
    set.note = note_->text().toStdString();
    set.description = description_->text().toStdString();
    set.slaterType = kSlaterTypes[slaterType_->currentIndex()];
    const std::vector<FreeIonRow> main = mainRows_->rows(true);
    for (std::size_t i = 0; i < set.mainFreeIon.size() && i < main.size(); ++i) set.mainFreeIon[i] = main[i];
    set.electronCount = electrons_->value();
    set.fold = fold_->value();
    set.otherFreeIon = otherRows_->rows();
    set.cfConvention = kConventions[convention_->currentIndex()];
    set.crystalField = crystalField_->rows();
    set.correlationCF = correlation_->sections();
    RunSwitches& s = set.switches;
    for (const SwitchBox& entry : switches_) s.*entry.flag = entry.box->isChecked();
    s.irNotation = irNotation_->value();
    s.energyUnit = static_cast<EnergyUnit>(unit_->currentIndex() + 1);
    s.pointGroup = pointGroup_->currentIndex() > 0 ? std::optional(pointGroup_->currentIndex()) : std::nullopt;
    s.minSpinMultiplicity = minSpin_->value() > 0 ? std::optional(minSpin_->value()) : std::nullopt;
    return set;
}

void ParameterEditor::setParameterSet(const ParameterSet& set) {
    base_ = set;
    title_->setText(QString::fromStdString(set.title));
    title_->setModified(false);
    note_->setText(QString::fromStdString(set.note));
    description_->setText(QString::fromStdString(set.description));
    slaterType_->setCurrentIndex(static_cast<int>(set.slaterType) - 1);
    mainRows_->setRows({set.mainFreeIon.begin(), set.mainFreeIon.end()});
    electrons_->setValue(set.electronCount);
    fold_->setValue(set.fold);
    {
        const QSignalBlocker quiet(otherRows_);
        otherRows_->setRows(set.otherFreeIon);
    }
    convention_->setCurrentIndex(static_cast<int>(set.cfConvention));
    unit_->setCurrentIndex(static_cast<int>(set.switches.energyUnit) - 1);
    crystalField_->setRows(set.crystalField);
    correlation_->setSections(set.correlationCF);
    complex_->setChecked(hasImaginaryPart(set.crystalField));
    crystalField_->setComplexMode(complex_->isChecked());
    correlation_->setComplexMode(complex_->isChecked());
    for (SwitchBox& entry : switches_) entry.box->setChecked(set.switches.*entry.flag);
    irNotation_->setValue(set.switches.irNotation);
    pointGroup_->setCurrentIndex(set.switches.pointGroup.value_or(0));
    minSpin_->setValue(set.switches.minSpinMultiplicity.value_or(0));
    showUnitHeading();
    showPointGroupFold();
}

bool ParameterEditor::load(const std::filesystem::path& file) {
    try {
        setParameterSet(readParameterFile(file));
    } catch (const UserError& error) {
        main_.services().asker->showMessage(error.title(), error.describe());
        return false;
    }
    rotations_ = {};
    file_ = file;
    setWindowTitle(QString::fromStdString("Input - " + file.string()));
    main_.recentFiles().add(file.string());
    return true;
}

}  // namespace orvane::app
