// Placeholder until the options window lands.
#include "app/options_window.hpp"

namespace orvane::app {

OptionsWindow::OptionsWindow(MainWindow& main, QWidget* parent) : QDialog(parent), main_(main) {
    setWindowTitle("Options");
}

}  // namespace orvane::app
