// The parameter editor's own menus: File, Conversions, Rotations, Energy
// units, Functions and Run.
#include <QFileDialog>
#include <QMenu>
#include <QMenuBar>
#include <utility>

#include "app/parameter_editor.hpp"

namespace orvane::app {
namespace {

constexpr NamedEditorCommand kEditorCommands[] = {
    {"Stevens -> Wybourne", EditorCommand::StevensToWybourne},
    {"Wybourne -> Stevens", EditorCommand::WybourneToStevens},
    {"Wybourne Ckq -> unit tensor Ukq", EditorCommand::WybourneToUnitTensor},
    {"Unit tensor Ukq -> Wybourne Ckq", EditorCommand::UnitTensorToWybourne},
    {"Rotate by Euler's angles...", EditorCommand::RotateByEulerAngles},
    {"Rotate [111] -> [001]", EditorCommand::RotateC3toC4},
    {"Rotate [001] -> [111]", EditorCommand::RotateC4toC3},
    {"Rotate to set ImBkq = 0...", EditorCommand::RotateToZeroImaginary},
    {"Equivalent garnet sites...", EditorCommand::RotateToGarnetSite},
    {"Recover rows before rotation", EditorCommand::RecoverRotatedRows},
    {"Cubic approximation along [111]", EditorCommand::CubicApproximationC3},
    {"Cubic approximation along [001]", EditorCommand::CubicApproximationC4},
    {"Rotational invariants and CF strength", EditorCommand::CrystalFieldStrength},
    {"Orthogonalised electrostatic parameters", EditorCommand::OrthogonalElectrostatic},
};

using params::EnergyUnitCode;
using params::UnitScope;

struct NamedScope {
    const char* caption;
    UnitScope scope;
};
constexpr NamedScope kScopes[] = {{"&All parameters", UnitScope::All},
                                  {"&Crystal field parameters", UnitScope::CrystalField},
                                  {"&Main free-ion parameters", UnitScope::MajorFreeIon},
                                  {"&Other free-ion parameters", UnitScope::MinorFreeIon}};

// The conversions offered: cm^-1 at one end.
constexpr std::pair<EnergyUnitCode, EnergyUnitCode> kUnitPairs[] = {
    {EnergyUnitCode::Wavenumber, EnergyUnitCode::MilliElectronVolt},
    {EnergyUnitCode::Wavenumber, EnergyUnitCode::Kelvin},
    {EnergyUnitCode::Wavenumber, EnergyUnitCode::MilliRydberg},
    {EnergyUnitCode::MilliElectronVolt, EnergyUnitCode::Wavenumber},
    {EnergyUnitCode::Kelvin, EnergyUnitCode::Wavenumber},
    {EnergyUnitCode::MilliRydberg, EnergyUnitCode::Wavenumber}};

QString unitCaption(EnergyUnitCode unit) {
    return QString("%1 (%2)").arg(static_cast<int>(unit)).arg(QString::fromStdString(params::unitName(unit)));
}

}  // namespace

std::span<const NamedEditorCommand> editorCommands() { return kEditorCommands; }

void ParameterEditor::createMenus() {
    QMenu* file = menuBar()->addMenu("&File");
    file->addAction("&Load...", this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, "Load", {}, "Par files (*.par);;All files (*)");
        if (!path.isEmpty()) load(path.toStdString());
    });
    file->addAction("&Save", this, [this] { save(); });
    file->addAction("Save &As...", this, [this] {
        const QString path = QFileDialog::getSaveFileName(this, "Save As", {}, "Par files (*.par);;All files (*)");
        if (!path.isEmpty()) saveAs(path.toStdString());
    });

    QMenu* conversions = menuBar()->addMenu("&Conversions");
    QMenu* rotations = menuBar()->addMenu("&Rotations");
    QMenu* units = menuBar()->addMenu("&Energy units");
    QMenu* functions = menuBar()->addMenu("F&unctions");
    for (const NamedEditorCommand& named : kEditorCommands) {
        const int index = static_cast<int>(named.command);
        QMenu* menu = index <= static_cast<int>(EditorCommand::UnitTensorToWybourne) ||
                              named.command == EditorCommand::OrthogonalElectrostatic
                          ? conversions
                      : index <= static_cast<int>(EditorCommand::RecoverRotatedRows) ? rotations
                                                                                      : functions;
        menu->addAction(named.caption, this, [this, named] { runCommand(named.command); });
    }

    QMenu* setUnit = units->addMenu("&Set unit (no conversion)");
    for (int code = 1; code <= 4; ++code) {
        const auto unit = *params::unitFromCode(code);
        setUnit->addAction(unitCaption(unit), this, [this, unit] { setEnergyUnit(unit); });
    }
    for (const NamedScope& scope : kScopes) {
        QMenu* convert = units->addMenu(QString("Convert ") + scope.caption);
        for (const auto& pair : kUnitPairs) {
            const EnergyUnitCode from = pair.first, to = pair.second;
            const UnitScope unitScope = scope.scope;
            convert->addAction(unitCaption(from) + " -> " + unitCaption(to), this,
                               [this, from, to, unitScope] { convertEnergyUnits(from, to, unitScope); });
        }
    }

    QMenu* run = menuBar()->addMenu("R&un");
    run->addAction("&Real CF", this, [this] { runFromEditor(0); });
    run->addAction("&Complex CF", this, [this] { runFromEditor(1); });
    run->addAction("&Free ion", this, [this] { runFromEditor(2); });
}

}  // namespace orvane::app
