#pragma once
// The "Statevectors" window: the states of one engine run of a parameter
// file, and what the properties library derives from them
// (docs/properties.md): the composition of a chosen state, the g-factor
// table of the doublets, the spin-Hamiltonian values of listed states and
// the matrix elements of the magnetic moment over a range of states. The
// results collect in a text area that can be cleared and saved; the g-factor
// table can be exported as a dated spreadsheet. The texts are the reports of
// interactive/property_reports.hpp, the ones the command line prints.
#include <QWidget>
#include <filesystem>

#include "app/property_window_support.hpp"

class QPlainTextEdit;
class QSpinBox;
class QTableWidget;
class QLabel;

namespace orvane::app {

class StateVectorWindow final : public QWidget {
    Q_OBJECT
public:
    // Starts the engine run (mode 0 real CF, 1 complex CF, 2 free ion) on the worker thread.
    StateVectorWindow(MainWindow& main, std::filesystem::path parameterFile, int mode);

    bool ready() const { return run_ != nullptr; }
    // Decimal places, or an accuracy limit such as 1E-5, of the printed
    // g-factors and moments; "" the default pictures.
    void setAccuracy(const QString& accuracy) { options_.accuracy = accuracy.toStdString(); }
    // States (multiplets of a free-ion run) numbered 1..stateCount.
    int stateCount() const;

    // Each adds its report to the results; false (with a message) when the
    // states are not ready or the input is refused.
    bool showComposition(int number);
    bool calculateGFactors();      // every doublet, into the g-factor table
    bool askSpinHamiltonian();     // "Give a list of state number to calculate spin Hamiltonian parameters:"
    bool askMomentElements();      // the state-range prompt of the moment matrix elements
    void clearResults();           // "Results cleared"
    bool saveResults(const std::filesystem::path& file);     // "Results saved"
    bool exportGFactors(const std::filesystem::path& file);  // .xlsx, the date in A1

    QString resultText() const;
    const QTableWidget& gFactorTable() const { return *gTable_; }
    const Spreadsheet& gFactorSheet() const { return gSheet_; }

signals:
    void statesReady();

private:
    void runDone(SharedPropertyRun run);
    bool withRun(const std::function<void(const PropertyRun&, LogBook&)>& report);
    using DoubletChoice = std::function<std::vector<std::pair<int, int>>(const PropertyRun&)>;
    bool showGFactors(const DoubletChoice& doubletsOf);
    void saveAsking();
    void exportAsking();
    void status(const QString& text);

    MainWindow& main_;
    PropertyRunOptions options_;
    SharedPropertyRun run_;
    Spreadsheet gSheet_;
    QSpinBox* state_ = nullptr;
    QPlainTextEdit* results_ = nullptr;
    QTableWidget* gTable_ = nullptr;
    QLabel* status_ = nullptr;
};

}  // namespace orvane::app
