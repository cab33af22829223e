// Placeholder until the editor's fields land: loads and saves whole sets.
#include "app/parameter_editor.hpp"

#include "app/main_window.hpp"
#include "engine/parameter_file.hpp"

namespace orvane::app {

namespace {
ParameterSet placeholderSet;
}

ParameterEditor::ParameterEditor(MainWindow& main, QWidget* parent) : QMainWindow(parent), main_(main) {
    setWindowTitle("Input - ");
}
bool ParameterEditor::load(const std::filesystem::path& file) {
    placeholderSet = readParameterFile(file);
    file_ = file;
    return true;
}
bool ParameterEditor::save() { return saveAs(file_); }
bool ParameterEditor::saveAs(const std::filesystem::path& file) {
    writeParameterFile(file, placeholderSet);
    file_ = file;
    return true;
}
ParameterSet ParameterEditor::parameterSet() const { return placeholderSet; }
void ParameterEditor::setParameterSet(const ParameterSet& set) { placeholderSet = set; }
void ParameterEditor::runCommand(EditorCommand) {}
bool ParameterEditor::runFromEditor(int mode) { return main_.startRun({mode, file_, {}}); }

}  // namespace orvane::app
