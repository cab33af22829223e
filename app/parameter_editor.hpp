#pragma once
// The parameter-input editor: every field of a parameter file (title and
// note, description, electrostatic form and the five main free-ion rows, the
// electron count and fold, the other free-ion rows, the crystal-field grid in
// its convention and energy unit, the run switches and the correlation
// sections), loaded from and saved to ".par" files with the checks of
// engine/editor_checks.hpp, the conversions of the crystal-field and free-ion
// parameters as commands, and runs started from the editor.
#include <QMainWindow>
#include <filesystem>

#include "engine/parameter_set.hpp"

namespace orvane::app {

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
    // Saves, then runs mode 0 (real CF), 1 (complex CF) or 2 (free ion)
    // through MainWindow::startRun. False when nothing was started.
    bool runFromEditor(int mode);

private:
    MainWindow& main_;
    std::filesystem::path file_;
};

}  // namespace orvane::app
