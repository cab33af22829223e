#pragma once
// The superposition-model editor: the ligand table (distance R, theta, phi in
// degrees, or lattice coordinates converted to polar ones), the reference
// distance R0 and the intrinsic parameters b_k and exponents t_k, the Bkq
// computed from them (with the R0 = 0 Abort/Retry/Ignore question), the
// estimate of intrinsic parameters from the Bkq of the parameter editor, and
// the copy of the Bkq into the parameter editor.
#include <QMainWindow>

namespace orvane::app {

class MainWindow;

class SuperpositionEditor final : public QMainWindow {
    Q_OBJECT
public:
    explicit SuperpositionEditor(MainWindow& main, QWidget* parent = nullptr);

private:
    MainWindow& main_;
};

}  // namespace orvane::app
