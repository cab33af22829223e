#pragma once
// The fitting workspace ("CF Fitting -" + file name): the parameter, level
// and g-factor tables of a least-squares fit of the parameter editor's set,
// its commands (Run Command, Ultimate Fit, Update SV, AutoMatch, adopt
// labels, replace energies, GRASP2K import, Break), its option and function
// menus, and a chart of observed against calculated energies.
//
// Every engine call runs on the worker thread: a job takes a copy of the
// workspace, fits it with the library (interactive/fit_runs.hpp) and hands a
// copy back after each cycle, which the tables and the chart show. While a
// job runs the tables are read-only. The fitted values are written back into
// the parameter editor the fit was opened from.
#include <QMainWindow>
#include <QPointer>
#include <atomic>
#include <filesystem>
#include <memory>

#include "engine/parameter_set.hpp"
#include "fit/fit_session.hpp"
#include "fit/fit_workspace.hpp"

class QLabel;
class QTableWidget;
class QPushButton;

namespace orvane::app {

class FitChart;
class MainWindow;
class ParameterEditor;

inline constexpr const char* kEditorClosedMessage =
    "The CF Parameters Input Dialog not opened or already closed! You need to re-open it.";
inline constexpr const char* kUpdateSvReminder =
    "Remember to click [Update SV] button to update statevectors after Run!";

// The hints logged when a fit opens with Automatic Update off (the complex
// crystal-field fit): "To save computing time, ..." and the three numbered points.
std::vector<std::string> manualUpdateNote();

class FitWindow final : public QMainWindow {
    Q_OBJECT
public:
    FitWindow(MainWindow& main, ParameterEditor& editor, FitKind kind);

    // Observed levels and g-factors from a text file or a sheet (.xlsx, .csv);
    // problems are shown as messages and give false.
    bool loadObservedLevels(const std::filesystem::path& file);
    const FitWorkspace& workspace() const { return workspace_; }
    FitWorkspace& workspace() { return workspace_; }
    void setFitOption(const std::string& name, std::int16_t option, const std::string& linkedTo = {});
    // The parameter set the fit started from (the editor's, with the values written back since).
    const ParameterSet& parameterSet() const { return set_; }
    // Takes the Final_fit values of same-named rows (the best set of a
    // differential-evolution search), shows them and writes them back.
    void adoptParameterRows(const std::vector<FitParameter>& rows);

    // The commands; each returns false when nothing was started.
    bool runCommand();    // one fit cycle
    bool ultimateFit();   // cycles until the stopping rules hold
    bool updateStatevectors();
    bool autoMatch();
    bool adoptLabels();
    bool replaceEnergies();
    bool importGraspEnergies();
    void breakFit() { *stop_ = true; }
    // Withholds or releases a level (double-click, "Bracket Toggle").
    void toggleWithheld(int row);
    // Writes Final_fit into the editor; refuses with kEditorClosedMessage when it was closed.
    bool writeBackToEditor();

    QTableWidget& parameterTable() { return *parameters_; }
    QTableWidget& levelTable() { return *levels_; }
    QTableWidget& gFactorTable() { return *gFactors_; }
    FitChart& chart() { return *chart_; }
    QString rmsText() const;

signals:
    // After each cycle's tables are shown, and when a job of the window ends.
    void cycleShown();
    void jobEnded();

private:
    using FitBody = std::function<void(FitSession& session, LogBook& log)>;
    void createLayout();
    void createMenus();
    void createOptionsMenu(QMenu* options);
    void createFunctionsMenu(QMenu* functions);
    void createEditMenu(QMenu* edit);
    bool startFitJob(const QString& name, FitBody body, bool writeBack);
    void pullEdits();
    bool realFitOfComplexSet() const;
    void showWorkspace(const FitWorkspace& workspace);
    void setBusy(bool busy);
    void askSetting(int id);
    void logLines(const std::vector<std::string>& lines);

    MainWindow& main_;
    QPointer<ParameterEditor> editor_;
    ParameterSet set_;
    FitWorkspace workspace_;
    std::shared_ptr<const Model> model_;  // built by the first job, kept while the set's shape stays
    std::shared_ptr<std::atomic<bool>> stop_ = std::make_shared<std::atomic<bool>>(false);
    bool busy_ = false;
    QTableWidget* parameters_ = nullptr;
    QTableWidget* levels_ = nullptr;
    QTableWidget* gFactors_ = nullptr;
    QLabel* rms_ = nullptr;
    QLabel* rmsG_ = nullptr;
    FitChart* chart_ = nullptr;
    QList<QWidget*> commandButtons_;
};

}  // namespace orvane::app
