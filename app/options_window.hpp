#pragma once
// The options window: the kind of run, the input parameter file, the result
// files to write, the number of state vectors to store and the smallest
// coefficient stored, the switches "/actualshell" and "/printhm", and the
// batch list of parameter files run one after the other.
#include <QDialog>

namespace orvane::app {

class MainWindow;

class OptionsWindow final : public QDialog {
    Q_OBJECT
public:
    explicit OptionsWindow(MainWindow& main, QWidget* parent = nullptr);

private:
    MainWindow& main_;
};

}  // namespace orvane::app
