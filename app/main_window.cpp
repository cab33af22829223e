#include "app/main_window.hpp"

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTableWidget>
#include <QToolBar>

#include "app/document_window.hpp"
#include "app/log_book_window.hpp"
#include "app/parameter_editor.hpp"
#include "app/qt_asker.hpp"
#include "app/qt_log_book.hpp"
#include "app/qt_settings_store.hpp"
#include "app/window_placement.hpp"
#include "core/angular.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "interactive/run_dialogs.hpp"
#include "interactive/run_options.hpp"
#include "report/level_summary.hpp"
#include "spreadsheet/spreadsheet.hpp"
#include "tables/table_directory.hpp"

namespace orvane::app {

namespace {

std::filesystem::path defaultDataFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation).toStdString();
}

// The data folder of a set-up, created when missing.
std::filesystem::path preparedDataFolder(const MainWindowSetup& setup) {
    const auto folder = setup.dataFolder.empty() ? defaultDataFolder() : setup.dataFolder;
    std::filesystem::create_directories(folder);
    return folder;
}

QString qtPath(const std::filesystem::path& path) { return QString::fromStdString(path.string()); }

// Closing the log book's window hides it: the log book lives until the program ends.
class HideOnClose final : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Close) return false;
        event->ignore();
        static_cast<QWidget*>(watched)->hide();
        return true;
    }
};

QWidget* spreadsheetView(const std::filesystem::path& file) {
    const Spreadsheet sheet = Spreadsheet::open(file);
    auto* table = new QTableWidget(sheet.rowCount(), sheet.columnCount());
    for (int row = 0; row < sheet.rowCount(); ++row)
        for (int column = 0; column < sheet.columnCount(); ++column)
            table->setItem(row, column, new QTableWidgetItem(QString::fromStdString(sheet.text(row, column))));
    table->setWindowTitle(qtPath(file));
    return table;
}

QWidget* imageView(const std::filesystem::path& file) {
    QPixmap picture(qtPath(file));
    if (picture.isNull()) throw UserError("Error in opening file", file.string() + ": not a readable image");
    auto* label = new QLabel;
    label->setPixmap(picture);
    auto* scroll = new QScrollArea;
    scroll->setWidget(label);
    scroll->setWindowTitle(qtPath(file));
    return scroll;
}

bool isSpreadsheet(const std::string& suffix) { return suffix == ".xlsx" || suffix == ".xls" || suffix == ".csv"; }
bool isImage(const std::string& suffix) {
    return suffix == ".png" || suffix == ".svg" || suffix == ".jpg" || suffix == ".jpeg" || suffix == ".bmp";
}

}  // namespace

MainWindow::MainWindow(MainWindowSetup setup)
    : settings_(std::make_unique<QtSettingsStore>(settingsFileIn(preparedDataFolder(setup)))),
      recentFiles_(*settings_) {
    services_.dataFolder = preparedDataFolder(setup);
    services_.settings = settings_.get();
    services_.tableDirectory = setup.tableDirectory.empty() ? defaultTableDirectory() : setup.tableDirectory;
    if (setup.asker) {
        services_.asker = setup.asker;
    } else {
        dialogs_ = std::make_unique<QtAsker>(this);
        services_.asker = dialogs_.get();
    }
    logEvents_ = new QtLogBook(this);
    services_.log = logEvents_;
    connect(logEvents_, &QtLogBook::eventRecorded, this,
            [this](const orvane::LogEvent& event) { logBook().appendEvent(event); });
    jobs_ = new JobRunner(*logEvents_, this);

    setWindowTitle("Orvane");
    area_ = new QMdiArea(this);
    area_->setViewMode(QMdiArea::SubWindowView);
    setCentralWidget(area_);

    // The shared numeric tables, then the log book with its opening line.
    FactorialTable();
    logBook().startRecord();

    const QRect placement = pixelsOf(readPlacement(*services_.settings));
    move(placement.topLeft());
    resize(placement.size());
    recentFiles_.load();
    createMenus();
    createStatusBar();
}

MainWindow::~MainWindow() { jobs_->cancel(); jobs_->wait(); }

LogBookWindow& MainWindow::logBook() {
    if (!logBook_) {
        logBook_ = new LogBookWindow(services_.dataFolder);
        QMdiSubWindow* frame = addDocument(logBook_);
        frame->installEventFilter(new HideOnClose(frame));
        frame->resize(640, 400);
    }
    return *logBook_;
}

QMdiSubWindow* MainWindow::addDocument(QWidget* window) {
    window->setAttribute(Qt::WA_DeleteOnClose);
    QMdiSubWindow* frame = area_->addSubWindow(window);
    frame->show();
    return frame;
}

void MainWindow::showText(const QString& caption, const QString& text) {
    addDocument(new DocumentWindow(caption, text));
}

DocumentWindow* MainWindow::openTextDocument(const std::filesystem::path& file) {
    auto* document = new DocumentWindow(file);
    addDocument(document);
    return document;
}

void MainWindow::openFile(const std::filesystem::path& file) {
    try {
        const std::string suffix = toLower(file.extension().string());
        if (suffix == ".par") {
            if (!openParameterEditor(file)) return;
        } else if (isSpreadsheet(suffix)) {
            addDocument(spreadsheetView(file));
        } else if (isImage(suffix)) {
            addDocument(imageView(file));
        } else {
            openTextDocument(file);
        }
        recentFiles_.add(file.string());
        rebuildRecentFilesMenu();
    } catch (const UserError& error) {
        services_.asker->showMessage(error.title(), error.describe());
    }
}

ParameterEditor* MainWindow::parameterEditor(bool create) {
    if (auto* active = area_->activeSubWindow())
        if (auto* editor = qobject_cast<ParameterEditor*>(active->widget())) lastEditor_ = editor;
    if (!lastEditor_)
        for (QMdiSubWindow* frame : area_->subWindowList())
            if (auto* editor = qobject_cast<ParameterEditor*>(frame->widget())) lastEditor_ = editor;
    if (!lastEditor_ && create) return openParameterEditor();
    return lastEditor_;
}

ParameterEditor* MainWindow::openParameterEditor(const std::filesystem::path& file) {
    auto* editor = new ParameterEditor(*this);
    if (!file.empty() && !editor->load(file)) {
        delete editor;
        return nullptr;
    }
    addDocument(editor)->resize(760, 600);
    lastEditor_ = editor;
    return editor;
}

bool MainWindow::startJob(const QString& name, JobRunner::Work work) {
    if (jobs_->start(name, std::move(work))) return true;
    services_.asker->showMessage("Orvane", ("Please wait: " + jobs_->currentJob() + " is still running.").toStdString());
    return false;
}

bool MainWindow::startRun(const RunLaunch& launch) {
    const DesktopServices services = services_;
    QPointer<MainWindow> self(this);
    return startJob(qtPath(launch.parameterFile.filename()), [launch, services, self](LogBook& log) {
        InteractiveRunEnvironment environment{log, *services.asker, *services.settings, services.tableDirectory};
        const RunOutcome outcome = runEngineAsking(launch.mode, launch.parameterFile, launch.request, environment);
        log.appendLine("Work completed.");
        for (const std::string& line : levelSummaryLines(outcome, kDefaultSummaryLevels)) log.appendLine(line);
        if (outcome.showGeneralOutput && outcome.names.general != kNullOutput) {
            const std::filesystem::path general = outcome.names.general;
            QMetaObject::invokeMethod(
                self, [self, general] { if (self) self->openTextDocument(general); }, Qt::QueuedConnection);
        }
    });
}

RunRequest MainWindow::optionsRunRequest() const { return runRequestOf(readRunOptions(*services_.settings)); }

void MainWindow::clearLogBook() { logBook().clearAsking(*services_.asker); }

void MainWindow::recoverLogBook() {
    if (const auto content = logBook().backupContent()) showText(kOldLogBookCaption, *content);
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!isMinimized()) writePlacement(*services_.settings, placementOf(QRect(pos(), size())));
    settings_->flush();
    jobs_->cancel();
    jobs_->wait();
    event->accept();
}

void MainWindow::createStatusBar() {
    jobLabel_ = new QLabel(this);
    progress_ = new QProgressBar(this);
    progress_->setMaximumWidth(220);
    cancel_ = new QPushButton("Cancel", this);
    cancel_->setObjectName("cancelJob");
    statusBar()->addPermanentWidget(jobLabel_);
    statusBar()->addPermanentWidget(progress_);
    statusBar()->addPermanentWidget(cancel_);
    progress_->hide();
    cancel_->hide();
    connect(cancel_, &QPushButton::clicked, jobs_, &JobRunner::cancel);
    connect(jobs_, &JobRunner::started, this, [this](const QString& name) {
        jobLabel_->setText(name);
        progress_->setRange(0, 0);
        progress_->show();
        cancel_->show();
    });
    connect(jobs_, &JobRunner::progressed, this, &MainWindow::showJobProgress);
    connect(jobs_, &JobRunner::finished, this, &MainWindow::jobFinished);
    statusBar()->showMessage("Ready");
}

void MainWindow::showJobProgress(const QString& stage, int done, int total) {
    jobLabel_->setText(jobs_->currentJob() + ": " + stage);
    progress_->setRange(0, std::max(total, 1));
    progress_->setValue(done);
}

void MainWindow::jobFinished(const QString& name, JobEnd end, const QString& message) {
    progress_->hide();
    cancel_->hide();
    jobLabel_->clear();
    if (end == JobEnd::Cancelled) {
        logBook().appendLine(name + " cancelled.");
        statusBar()->showMessage(name + " cancelled", 5000);
    } else if (end == JobEnd::Failed) {
        logBook().appendLine(message);
        const auto colon = message.indexOf(": ");
        services_.asker->showMessage(message.left(colon).toStdString(), message.mid(colon + 2).toStdString());
    } else {
        statusBar()->showMessage(name + " done", 5000);
    }
}

std::filesystem::path MainWindow::askOpenPath(const QString& caption, const QString& filter) {
    return QFileDialog::getOpenFileName(this, caption, {}, filter).toStdString();
}

void MainWindow::runOnGuiThread(const std::function<void(Asker&, LogBook&)>& dialog) {
    try {
        dialog(*services_.asker, *services_.log);
    } catch (const UserError& error) {
        services_.asker->showMessage(error.title(), error.describe());
    }
}

QWidget* MainWindow::activeWindow() const {
    QMdiSubWindow* frame = area_->activeSubWindow();
    return frame ? frame->widget() : nullptr;
}

void MainWindow::runFromMenu(int mode) {
    if (ParameterEditor* editor = parameterEditor(false); editor && !editor->filePath().empty()) {
        editor->runFromEditor(mode);
        return;
    }
    const auto file = askOpenPath("File for Free-in and Crystal Field Parameters ", "Par files (*.par);;All files (*)");
    if (file.empty()) return;
    if (mode == 2 && !confirmFreeIonRun(RunChoice::FreeIon, file, *services_.asker)) return;
    startRun({mode, file, optionsRunRequest()});
}

}  // namespace orvane::app
