#pragma once
// The main window: a multi-document frame that holds the log book, the
// document windows and the editors, and carries the menus from which every
// calculation starts. Long work runs on a worker thread (JobRunner) with a
// progress bar and Cancel in the status bar.
//
// Start-up: the shared numeric tables, the log book with its opening line and
// the line of 55 '#', the window placement from "Settings" (defaults 1000,
// 1000, 6500, 6500 twips) and the recent-file list from "Files".
// Closing saves the placement unless the window is minimised.
#include <QMainWindow>
#include <QPointer>
#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

#include "app/desktop_services.hpp"
#include "app/job_runner.hpp"
#include "app/recent_files.hpp"
#include "fit/fit_workspace.hpp"
#include "report/run_request.hpp"

class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QProgressBar;
class QPushButton;
class QLabel;

namespace orvane::app {

class DocumentWindow;
class FitWindow;
class IntensityWindow;
class StateVectorWindow;
class SusceptibilityChart;
class LogBookWindow;
class ParameterEditor;
class QtLogBook;
class QtSettingsStore;

struct MainWindowSetup {
    std::filesystem::path dataFolder;      // empty: QStandardPaths::AppDataLocation
    std::filesystem::path tableDirectory;  // empty: the delivered tables (defaultTableDirectory)
    Asker* asker = nullptr;                // nullptr: Qt dialogs; tests give a scripted asker
};

// One run of the engine: the mode of report/run_request.hpp (0 real CF,
// 1 complex CF, 2 free ion), the parameter file and the run inputs.
struct RunLaunch {
    int mode = 0;
    std::filesystem::path parameterFile;
    RunRequest request;
};

// The filter of File > Open.
inline constexpr const char* kOpenFileFilter =
    "All Files (*.*);;General Output (*.gen);;Energies (*.eng);;Statevectors (*.ev);;"
    "Rich Text Format (*.rtf);;Plain Text (*.txt);;Excel (*.xls*);;Parameters (*.par);;"
    "Images (*.png *.svg *.jpg *.bmp)";
inline constexpr const char* kSaveFileFilter =
    "All Files (*.*);;General Output (*.gen);;Energies (*.eng);;Statevectors (*.ev);;"
    "Rich Text Format (*.rtf);;Plain Text (*.txt);;HTML (*.html);;PDF (*.pdf)";

class MainWindow final : public QMainWindow {
    Q_OBJECT
public:
    explicit MainWindow(MainWindowSetup setup = {});
    ~MainWindow() override;

    DesktopServices& services() { return services_; }
    LogBookWindow& logBook();  // created (and its record started) on first use
    JobRunner& jobs() { return *jobs_; }
    RecentFiles& recentFiles() { return recentFiles_; }
    QMdiArea& documents() { return *area_; }

    // Adds a window to the multi-document area and shows it.
    QMdiSubWindow* addDocument(QWidget* window);
    // Opens a file the way File > Open does: a parameter file in an editor,
    // a spreadsheet as a table, an image, anything else as text; the path
    // enters the recent-file list. Problems are shown as messages.
    void openFile(const std::filesystem::path& file);
    DocumentWindow* openTextDocument(const std::filesystem::path& file);
    void showText(const QString& caption, const QString& text);

    // The parameter editor in front (or the last one used); with `create`,
    // a new empty one when none is open.
    ParameterEditor* parameterEditor(bool create = true);
    ParameterEditor* openParameterEditor(const std::filesystem::path& file = {});

    // Starts a job on the worker thread; false (with a message) while another runs.
    bool startJob(const QString& name, JobRunner::Work work);
    // A run of the engine as a job: its lines go to the log book, then
    // "Work completed." and the table of the lowest levels; the general
    // output opens when the run says so.
    bool startRun(const RunLaunch& launch);
    // The run inputs of the options window (vectors to store, smallest
    // coefficient, result files, "/actualshell", "/printhm") as last applied.
    RunRequest optionsRunRequest() const;

    // The kind of fit chosen in the Fit menu; the fitting and state-vector
    // windows refuse to open before one is chosen.
    void chooseFitKind(FitKind kind);
    std::optional<FitKind> fitKind() const { return fitKind_; }
    // The fitting workspace over the parameter editor in front; nullptr
    // (with the refusal shown) without a kind of fit or an editor.
    FitWindow* openFitWindow();
    // The property windows over the parameter editor's file (or a file asked
    // for), in the mode of the chosen kind of fit (real crystal field when
    // none is chosen). The state-vector window needs a kind of fit like the
    // fitting window. nullptr when refused or cancelled.
    StateVectorWindow* openStateVectorWindow();
    SusceptibilityChart* openSusceptibilityChart();
    IntensityWindow* openIntensityWindow();

    void clearLogBook();
    // Opens the backup as "Old Log Book"; nothing when there is none.
    void recoverLogBook();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void createMenus();
    void createRunMenu();
    void createTablesMenu();
    void createToolsMenu();
    void createHelpMenu();
    void createFitMenu();
    void createPropertiesMenu();
    int propertyMode() const;
    std::filesystem::path propertyParameterFile();
    void createStatusBar();
    void rebuildRecentFilesMenu();
    void showJobProgress(const QString& stage, int done, int total);
    void jobFinished(const QString& name, JobEnd end, const QString& message);
    void runFromMenu(int mode);
    void runOnGuiThread(const std::function<void(Asker&, LogBook&)>& dialog);
    QWidget* activeWindow() const;
    std::filesystem::path askOpenPath(const QString& caption, const QString& filter);

    DesktopServices services_;
    std::unique_ptr<QtSettingsStore> settings_;
    std::unique_ptr<Asker> dialogs_;
    QtLogBook* logEvents_ = nullptr;
    QPointer<LogBookWindow> logBook_;
    JobRunner* jobs_ = nullptr;
    RecentFiles recentFiles_;
    QMdiArea* area_ = nullptr;
    QMenu* recentMenu_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton* cancel_ = nullptr;
    QLabel* jobLabel_ = nullptr;
    QPointer<ParameterEditor> lastEditor_;
    std::optional<FitKind> fitKind_;
};

}  // namespace orvane::app
