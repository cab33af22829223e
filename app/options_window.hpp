#pragma once
// The options window: the kind of run, the input parameter file, the result
// files to write, the number of state vectors to store and the smallest
// coefficient stored, the switches "/actualshell" and "/printhm", and the
// batch list of parameter files run one after the other.
//
// The options are those of interactive/run_options.hpp and are kept in its
// settings keys (section "Settings"); the batch list is kept under
// "OptionsBatchFiles" (the paths, one per line).
//
// OK and Apply take the fields (a refused field keeps the value it had, see
// run_options.hpp) and store them; Cancel drops the changes; Default puts
// back the default options. Run applies and runs the input file once
// (MainWindow::startRun); Run batch applies and runs every row of the batch
// table with the window's options as one job on the worker thread
// (interactive/batch_run.hpp).
#include <QDialog>
#include <filesystem>
#include <vector>

#include "interactive/run_options.hpp"

class QButtonGroup;
class QCheckBox;
class QLineEdit;
class QTableWidget;

namespace orvane::app {

class MainWindow;

inline constexpr const char* kBatchFilesKey = "OptionsBatchFiles";

class OptionsWindow final : public QDialog {
    Q_OBJECT
public:
    explicit OptionsWindow(MainWindow& main, QWidget* parent = nullptr);

    // The options last applied (as in the settings store).
    const RunOptions& options() const { return options_; }
    // Takes the fields and stores them; false when a field was refused.
    bool apply();
    void restoreDefaults();
    // Run: false when nothing was started.
    bool runOnce();
    // Run batch: false when nothing was started (no rows, or a job is running).
    bool runBatch();

    void addBatchRows(int count);
    // Asks "Give number of data rows to add:".
    void addBatchRowsAsking();
    // The selected rows, or the current one when none is selected.
    void deleteSelectedBatchRows();
    // The non-empty rows of the batch table.
    std::vector<std::filesystem::path> batchFiles() const;
    QTableWidget& batchTable() { return *batch_; }

private:
    QWidget* createRunGroup();
    QWidget* createFilesGroup();
    QWidget* createStoringGroup();
    QWidget* createBatchGroup();
    QWidget* createButtons();
    void showOptions(const RunOptions& options);
    void setBatchFiles(const std::vector<std::filesystem::path>& files);
    void storeBatchFiles();
    void browseInput();

    MainWindow& main_;
    RunOptions options_;
    QButtonGroup* kind_ = nullptr;
    QLineEdit* input_ = nullptr;
    QCheckBox* general_ = nullptr;
    QCheckBox* energies_ = nullptr;
    QCheckBox* vectors_ = nullptr;
    QLineEdit* vectorCount_ = nullptr;
    QLineEdit* minCoefficient_ = nullptr;
    QCheckBox* actualShell_ = nullptr;
    QCheckBox* printHm_ = nullptr;
    QTableWidget* batch_ = nullptr;
};

}  // namespace orvane::app
