#pragma once
// The parameter-input editor: every field of a parameter file (title and
// note, description, electrostatic form and the five main free-ion rows, the
// electron count and fold, the other free-ion rows, the crystal-field grid in
// its convention and energy unit, the run switches and the correlation
// sections), loaded from and saved to ".par" files with the checks of
// engine/editor_checks.hpp, the conversions of the crystal-field and free-ion
// parameters as commands, and runs started from the editor.
#include <QMainWindow>
#include <array>
#include <filesystem>
#include <functional>
#include <span>

#include "engine/parameter_set.hpp"
#include "interactive/cf_rotation_dialogs.hpp"
#include "params/cf_conventions.hpp"
#include "params/energy_units.hpp"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QSpinBox;

namespace orvane::app {

class CrystalFieldGrid;
class FreeIonGrid;
class MainWindow;

// The editor's commands that transform its rows in place (menus of the
// editor and the main window's Tools menu).
enum class EditorCommand {
    StevensToWybourne,
    WybourneToStevens,
    WybourneToUnitTensor,
    UnitTensorToWybourne,
    RotateByEulerAngles,
    RotateC3toC4,
    RotateC4toC3,
    RotateToZeroImaginary,
    RotateToGarnetSite,
    RecoverRotatedRows,
    CubicApproximationC3,
    CubicApproximationC4,
    CrystalFieldStrength,
    OrthogonalElectrostatic,
};

// The commands with their menu captions, in menu order.
struct NamedEditorCommand {
    const char* caption;
    EditorCommand command;
};
std::span<const NamedEditorCommand> editorCommands();

class ParameterEditor final : public QMainWindow {
    Q_OBJECT
public:
    explicit ParameterEditor(MainWindow& main, QWidget* parent = nullptr);

    // Loads a file into the fields; problems are shown as messages and give false.
    bool load(const std::filesystem::path& file);
    // Saves to the current file (asks for a path when there is none); the
    // checks before saving may ask questions. True when the file was written.
    bool save();
    bool saveAs(const std::filesystem::path& file);

    // The set as the fields show it, and the fields filled from a set.
    ParameterSet parameterSet() const;
    void setParameterSet(const ParameterSet& set);
    const std::filesystem::path& filePath() const { return file_; }

    void runCommand(EditorCommand command);
    // The energy-unit commands: the unit named without converting, and the
    // conversion of one scope from `from` to `to` (one of them cm^-1); the
    // "all" scope asks whether to convert the values or rename the unit only.
    void setEnergyUnit(params::EnergyUnitCode unit);
    void convertEnergyUnits(params::EnergyUnitCode from, params::EnergyUnitCode to, params::UnitScope scope);
    // Saves, then runs mode 0 (real CF), 1 (complex CF) or 2 (free ion)
    // through MainWindow::startRun. False when nothing was started.
    bool runFromEditor(int mode);

private:
    // The switches shown as check boxes.
    struct SwitchBox {
        const char* text;
        bool RunSwitches::*flag;
        QCheckBox* box = nullptr;
    };

    QWidget* buildIdentityFields();
    QWidget* buildFreeIonFields();
    QWidget* buildCrystalFieldFields();
    QWidget* buildSwitchFields();
    QWidget* buildCorrelationFields();
    void createMenus();
    void showUnitHeading();
    void showPointGroupFold();
    void takeElectronsFromTitle();
    void fillBlankMultiple(int row, int column);

    // The checks before saving; false when the user refused or a check failed.
    bool checkBeforeSaving();
    bool askCorrelationQuestions(const ParameterSet& set);
    // Runs an operation on the set the fields show and shows the result;
    // a UserError becomes a message and leaves the fields as they were.
    void transformSet(const std::function<void(ParameterSet&)>& operation);
    // The same for the crystal-field rows as a table in the set's normalisation.
    void transformTable(const std::function<void(params::CfTable&, params::CfNormalisation)>& operation);
    void convertNormalisation(params::CfConversion conversion);
    void rotate(const std::function<void(params::CfTable&)>& rotation);
    void listInvariants();

    MainWindow& main_;
    std::filesystem::path file_;
    ParameterSet base_;  // what the fields do not show: version, labels, option line, fit set-up
    params::RotationHistory rotations_;

    QLineEdit* title_ = nullptr;
    QLineEdit* note_ = nullptr;
    QLineEdit* description_ = nullptr;
    QComboBox* slaterType_ = nullptr;
    FreeIonGrid* mainRows_ = nullptr;
    QSpinBox* electrons_ = nullptr;
    QSpinBox* fold_ = nullptr;
    FreeIonGrid* otherRows_ = nullptr;
    QComboBox* convention_ = nullptr;
    QComboBox* unit_ = nullptr;
    QCheckBox* complex_ = nullptr;
    CrystalFieldGrid* crystalField_ = nullptr;
    QComboBox* pointGroup_ = nullptr;
    QLabel* pointGroupFold_ = nullptr;
    std::array<SwitchBox, 9> switches_;
    QSpinBox* irNotation_ = nullptr;
    QSpinBox* minSpin_ = nullptr;
    CrystalFieldGrid* correlation_ = nullptr;
};

}  // namespace orvane::app
