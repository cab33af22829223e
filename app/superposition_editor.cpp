// Placeholder until the superposition-model editor lands.
#include "app/superposition_editor.hpp"

namespace orvane::app {

SuperpositionEditor::SuperpositionEditor(MainWindow& main, QWidget* parent) : QMainWindow(parent), main_(main) {
    setWindowTitle("Superposition Model");
}

}  // namespace orvane::app
