// The editor's commands: each takes the set the fields show, calls one
// library operation (params/, engine/, interactive/) and shows the result.
#include <QCheckBox>
#include <QComboBox>

#include "app/main_window.hpp"
#include "app/parameter_editor.hpp"
#include "core/user_error.hpp"
#include "engine/crystal_field_table.hpp"
#include "engine/parameter_values.hpp"
#include "interactive/parameter_dialogs.hpp"
#include "params/cf_conventions.hpp"
#include "params/cf_invariants.hpp"

namespace orvane::app {
namespace {

void logFoldChange(LogBook& log, std::optional<int> before, int fold) {
    if (before)
        log.appendLine("Fold of symmetry axis changed from " + std::to_string(*before) + " to " + std::to_string(fold),
                       LogCategory::Parameters);
}

}  // namespace

void ParameterEditor::transformSet(const std::function<void(ParameterSet&)>& operation) {
    ParameterSet set = parameterSet();
    try {
        operation(set);
    } catch (const UserError& error) {
        main_.services().asker->showMessage(error.title(), error.describe());
        return;
    }
    // Complex mode stays on; it comes on when the result has imaginary parts.
    const bool complex = complex_->isChecked();
    setParameterSet(set);
    if (complex) complex_->setChecked(true);
}

void ParameterEditor::transformTable(
    const std::function<void(params::CfTable&, params::CfNormalisation)>& operation) {
    const bool complex = complex_->isChecked();
    transformSet([&](ParameterSet& set) {
        params::CfTable table = crystalFieldTableOf(set);
        table.complexMode = complex;
        operation(table, normalisationOf(set.cfConvention));
        logFoldChange(*main_.services().log, storeCrystalFieldTable(set, table), set.fold);
    });
}

void ParameterEditor::convertNormalisation(params::CfConversion conversion) {
    const bool complex = complex_->isChecked();
    transformSet([&](ParameterSet& set) { convertCrystalFieldConvention(set, conversion, complex); });
    // Rows kept before a rotation are in the normalisation they were rotated in.
    rotations_ = {};
}

void ParameterEditor::rotate(const std::function<void(params::CfTable&)>& rotation) {
    transformTable([&](params::CfTable& table, params::CfNormalisation form) {
        params::rotateInTensorForm(table, form, rotation);
    });
}

void ParameterEditor::listInvariants() {
    try {
        const ParameterSet set = parameterSet();
        const auto invariants = params::computeInvariants(crystalFieldTableOf(set), normalisationOf(set.cfConvention));
        for (const std::string& line : params::invariantLines(invariants))
            main_.services().log->appendLine(line, LogCategory::Parameters);
    } catch (const UserError& error) {
        main_.services().asker->showMessage(error.title(), error.describe());
    }
}

void ParameterEditor::runCommand(EditorCommand command) {
    Asker& asker = *main_.services().asker;
    LogBook& log = *main_.services().log;
    auto cubic = [&](params::CubicAxis axis) {
        transformTable([&](params::CfTable& table, params::CfNormalisation form) {
            params::cubicApproximationAsking(table, form, axis, asker, log);
        });
    };
    switch (command) {
        case EditorCommand::StevensToWybourne: return convertNormalisation(params::CfConversion::StevensToWybourne);
        case EditorCommand::WybourneToStevens: return convertNormalisation(params::CfConversion::WybourneToStevens);
        case EditorCommand::WybourneToUnitTensor: return convertNormalisation(params::CfConversion::WybourneToUnit);
        case EditorCommand::UnitTensorToWybourne: return convertNormalisation(params::CfConversion::UnitToWybourne);
        case EditorCommand::RotateByEulerAngles:
            return rotate([&](params::CfTable& t) { params::rotateByAskedAngles(t, asker, log, rotations_); });
        case EditorCommand::RotateC3toC4:
            return rotate([&](params::CfTable& t) { params::rotateC3toC4(t, log, rotations_); });
        case EditorCommand::RotateC4toC3:
            return rotate([&](params::CfTable& t) { params::rotateC4toC3(t, log, rotations_); });
        case EditorCommand::RotateToZeroImaginary:
            return rotate([&](params::CfTable& t) { params::rotateToZeroImaginaryAsking(t, asker, log, rotations_); });
        case EditorCommand::RotateToGarnetSite:
            return rotate([&](params::CfTable& t) { params::rotateToGarnetSiteAsking(t, asker, log, rotations_); });
        case EditorCommand::RecoverRotatedRows:
            return rotate([&](params::CfTable& t) { params::recoverPreviousRows(t, rotations_); });
        case EditorCommand::CubicApproximationC3: return cubic(params::CubicAxis::Threefold111);
        case EditorCommand::CubicApproximationC4: return cubic(params::CubicAxis::Fourfold001);
        case EditorCommand::CrystalFieldStrength: return listInvariants();
        case EditorCommand::OrthogonalElectrostatic:
            return transformSet([&](ParameterSet& set) {
                convertToOrthogonalElectrostaticAsking(set, main_.services().tableDirectory, asker, log);
            });
    }
}

void ParameterEditor::setEnergyUnit(params::EnergyUnitCode unit) { unit_->setCurrentIndex(static_cast<int>(unit) - 1); }

void ParameterEditor::convertEnergyUnits(params::EnergyUnitCode from, params::EnergyUnitCode to,
                                         params::UnitScope scope) {
    const bool complex = complex_->isChecked();
    transformSet([&](ParameterSet& set) {
        params::ParameterValues values = parameterValuesOf(set);
        values.unit = from;
        values.crystalField.complexMode = complex;
        if (scope == params::UnitScope::All) params::convertAllAsking(values, to, *main_.services().asker);
        else params::convertEnergyUnit(values, to, scope);
        logFoldChange(*main_.services().log, storeParameterValues(set, values), set.fold);
    });
}

}  // namespace orvane::app
