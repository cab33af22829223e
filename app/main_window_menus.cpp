// The menus, toolbar and recent-file entries of the main window. Every
// command calls the same library or dialog function as the `orvane` command.
#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QFileDialog>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrinter>
#include <QToolBar>

#include "app/document_window.hpp"
#include "app/fit_window.hpp"
#include "app/help_window.hpp"
#include "app/intensity_window.hpp"
#include "app/state_vector_window.hpp"
#include "app/susceptibility_chart.hpp"
#include "app/log_book_window.hpp"
#include "app/main_window.hpp"
#include "app/options_window.hpp"
#include "app/parameter_editor.hpp"
#include "app/superposition_editor.hpp"
#include "core/user_error.hpp"
#include "core/version.hpp"
#include "interactive/calculators.hpp"
#include "interactive/interactive_eigen.hpp"
#include "interactive/interactive_generators.hpp"
#include "interactive/parameter_dialogs.hpp"
#include "interactive/published_comparison_dialogs.hpp"
#include "interactive/table_build_dialogs.hpp"
#include "tables/published_comparison.hpp"

namespace orvane::app {

namespace {

QPrinter& sharedPrinter() {
    static QPrinter printer;
    return printer;
}

QTextDocument* printableDocument(QWidget* window) {
    if (auto* log = qobject_cast<QTextEdit*>(window)) return log->document();
    if (auto* text = qobject_cast<QPlainTextEdit*>(window)) return text->document();
    return nullptr;
}

struct NamedTableBuild {
    const char* caption;
    TableBuild kind;
};

const NamedTableBuild kTableBuilds[] = {
    {"All tables of f^n...", TableBuild::Everything},
    {"U(k) unit tensors...", TableBuild::UnitTensors},
    {"V(1k) double tensors...", TableBuild::DoubleTensors},
    {"f(k) electrostatic...", TableBuild::Electrostatic},
    {"Three-body ti, zi (Hss), mk and pk...", TableBuild::ManyBody},
    {"LCCF UK...", TableBuild::CorrelationLccf},
    {"OCCF g(K)10A and g(K)10B...", TableBuild::CorrelationOccf},
};

struct NamedCheck {
    const char* caption;
    PublishedCheck check;
};

const NamedCheck kPublishedChecks[] = {
    {"U(k) and spin-orbit RME...", PublishedCheck::UnitTensorsAndSpinOrbit},
    {"2-particle electrostatic RME...", PublishedCheck::Electrostatic},
    {"ti (three-body) RME...", PublishedCheck::ThreeBody},
    {"mk and pk RME...", PublishedCheck::MkPk},
};

}  // namespace

void MainWindow::createMenus() {
    QMenu* file = menuBar()->addMenu("&File");
    QAction* newEditor = file->addAction("&New Parameters", this, [this] { openParameterEditor(); });
    newEditor->setShortcut(QKeySequence::New);
    QAction* open = file->addAction("&Open...", this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, "Open", {}, kOpenFileFilter);
        if (!path.isEmpty()) openFile(path.toStdString());
    });
    open->setShortcut(QKeySequence::Open);
    QAction* save = file->addAction("&Save", this, [this] {
        QWidget* window = activeWindow();
        if (auto* editor = qobject_cast<ParameterEditor*>(window)) {
            editor->save();
        } else if (auto* document = qobject_cast<DocumentWindow*>(window); document && !document->filePath().empty()) {
            try {
                document->saveTo(document->filePath());
            } catch (const UserError& error) {
                services_.asker->showMessage(error.title(), error.describe());
            }
        } else if (window) {
            findChild<QAction*>("saveAs")->trigger();
        }
    });
    save->setShortcut(QKeySequence::Save);
    QAction* saveAs = file->addAction("Save &As...", this, [this] {
        QWidget* window = activeWindow();
        if (!window) return;
        if (auto* editor = qobject_cast<ParameterEditor*>(window)) {
            const QString path = QFileDialog::getSaveFileName(this, "Save As", {}, "Par files (*.par);;All files (*)");
            if (!path.isEmpty()) editor->saveAs(path.toStdString());
            return;
        }
        const QString path = QFileDialog::getSaveFileName(this, "Save As", {}, kSaveFileFilter);
        if (path.isEmpty()) return;
        try {
            if (auto* log = qobject_cast<LogBookWindow*>(window)) log->saveTo(path.toStdString());
            else if (auto* document = qobject_cast<DocumentWindow*>(window)) document->saveTo(path.toStdString());
        } catch (const UserError& error) {
            services_.asker->showMessage(error.title(), error.describe());
        }
    });
    saveAs->setObjectName("saveAs");
    file->addAction("Save A&ll", this, [this] {
        for (QMdiSubWindow* frame : area_->subWindowList())
            if (auto* editor = qobject_cast<ParameterEditor*>(frame->widget()); editor && !editor->filePath().empty())
                editor->save();
    });
    file->addAction("&Close", this, [this] {
        if (QMdiSubWindow* frame = area_->activeSubWindow()) frame->close();
    });
    file->addSeparator();
    file->addAction("Page Set&up...", this, [this] { QPageSetupDialog(&sharedPrinter(), this).exec(); });
    QAction* print = file->addAction("&Print...", this, [this] {
        QTextDocument* document = printableDocument(activeWindow());
        if (!document) return;
        QPrintDialog dialog(&sharedPrinter(), this);
        if (dialog.exec() == QDialog::Accepted) document->print(&sharedPrinter());
    });
    print->setShortcut(QKeySequence::Print);
    file->addSeparator();
    recentMenu_ = file->addMenu("Recent &Files");
    rebuildRecentFilesMenu();
    file->addSeparator();
    file->addAction("E&xit", this, &QWidget::close)->setShortcut(QKeySequence::Quit);

    QMenu* edit = menuBar()->addMenu("&Edit");
    edit->addAction("&Copy", this, [this] {
        if (auto* text = qobject_cast<QTextEdit*>(activeWindow())) text->copy();
        if (auto* text = qobject_cast<QPlainTextEdit*>(activeWindow())) text->copy();
    })->setShortcut(QKeySequence::Copy);
    edit->addAction("Select &All", this, [this] {
        if (auto* text = qobject_cast<QTextEdit*>(activeWindow())) text->selectAll();
        if (auto* text = qobject_cast<QPlainTextEdit*>(activeWindow())) text->selectAll();
    });
    edit->addSeparator();
    edit->addAction("C&lear Log Book", this, &MainWindow::clearLogBook);
    edit->addAction("&Recover Log Book", this, &MainWindow::recoverLogBook);

    QMenu* view = menuBar()->addMenu("&View");
    view->addAction("&Log Book", this, [this] {
        QWidget* frame = logBook().parentWidget();
        frame->show();
        area_->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(frame));
    });
    view->addAction("&Parameter Editor", this, [this] { parameterEditor(true); });
    view->addAction("&Options...", this, [this] { OptionsWindow(*this, this).exec(); });

    createRunMenu();
    createTablesMenu();
    createToolsMenu();
    createFitMenu();
    createPropertiesMenu();

    QMenu* windows = menuBar()->addMenu("&Window");
    connect(windows, &QMenu::aboutToShow, this, [this, windows] {
        windows->clear();
        windows->addAction("&Cascade", area_, &QMdiArea::cascadeSubWindows);
        windows->addAction("&Tile", area_, &QMdiArea::tileSubWindows);
        windows->addAction("&Next", area_, &QMdiArea::activateNextSubWindow);
        windows->addAction("&Previous", area_, &QMdiArea::activatePreviousSubWindow);
        windows->addSeparator();
        for (QMdiSubWindow* frame : area_->subWindowList())
            windows->addAction(frame->windowTitle(), this, [this, frame] { area_->setActiveSubWindow(frame); });
    });
    createHelpMenu();

    QToolBar* tools = addToolBar("Main");
    tools->setObjectName("mainToolBar");
    tools->addAction(newEditor);
    tools->addAction(open);
    tools->addAction(save);
    tools->addSeparator();
    tools->addAction("Run Real CF", this, [this] { runFromMenu(0); });
    tools->addAction("Run Complex CF", this, [this] { runFromMenu(1); });
    tools->addAction("Run Free Ion", this, [this] { runFromMenu(2); });
}

void MainWindow::createRunMenu() {
    QMenu* run = menuBar()->addMenu("&Run");
    run->addAction("&Free Ion", this, [this] { runFromMenu(2); });
    run->addAction("&Real Crystal Field", this, [this] { runFromMenu(0); })->setShortcut(Qt::Key_F5);
    run->addAction("&Complex Crystal Field", this, [this] { runFromMenu(1); });
    run->addSeparator();
    run->addAction("&Options and Batch...", this, [this] { OptionsWindow(*this, this).exec(); });
    run->addAction("C&ancel", jobs_, &JobRunner::cancel);
}

void MainWindow::createTablesMenu() {
    QMenu* tables = menuBar()->addMenu("&Tables");
    const auto directory = services_.tableDirectory;
    for (const NamedTableBuild& build : kTableBuilds)
        tables->addAction(build.caption, this, [this, build, directory] {
            startJob(build.caption, [this, build, directory](LogBook& log) {
                buildTablesAsking(build.kind, *services_.asker, log, directory);
            });
        });
    tables->addSeparator();
    tables->addAction("Fractional parentage for N > 7...", this, [this, directory] {
        startJob("Fractional parentage", [this, directory](LogBook& log) {
            runComplementaryParentageGenerator(*services_.asker, log, directory);
        });
    });
    tables->addAction("Reduced matrix elements (one operator)...", this, [this, directory] {
        startJob("Reduced matrix elements", [this, directory](LogBook& log) {
            runReducedMatrixGenerator(*services_.asker, log, directory);
        });
    });
    QMenu* compare = tables->addMenu("&Compare with Published Tables");
    for (const NamedCheck& check : kPublishedChecks)
        compare->addAction(check.caption, this, [this, check] {
            startJob(check.caption, [this, check](LogBook& log) { comparePublishedAsking(check.check, *services_.asker, log); });
        });
    compare->addAction("Free-ion energies (EXPERIMENT block)...", this, [this] {
        startJob("Energies", [this](LogBook& log) { compareExperimentAsking(*services_.asker, log); });
    });
    compare->addAction("All tables against a folder of fNcross files...", this, [this] {
        const QString folder = QFileDialog::getExistingDirectory(this, "Folder of the published fNcross files");
        if (folder.isEmpty()) return;
        startJob("Compare tables", [folder](LogBook& log) {
            std::vector<int> electrons;
            for (int n = 1; n <= 14; ++n) electrons.push_back(n);
            comparePublishedTables(folder.toStdString(), electrons, log);
        });
    });
}

void MainWindow::createToolsMenu() {
    QMenu* tools = menuBar()->addMenu("T&ools");
    QMenu* parameters = tools->addMenu("&Crystal-Field Parameters");
    for (const NamedEditorCommand& named : editorCommands())
        parameters->addAction(named.caption, this, [this, named] {
            if (ParameterEditor* editor = parameterEditor(true)) editor->runCommand(named.command);
        });
    tools->addAction("&Superposition Model...", this, [this] { addDocument(new SuperpositionEditor(*this))->resize(760, 560); });
    tools->addAction("Coordination &Factor...", this,
                     [this] { runOnGuiThread([](Asker& a, LogBook& l) { params::runCoordinationFactorCalculator(a, l); }); });
    QMenu* calculators = tools->addMenu("C&alculators");
    calculators->addAction("3j symbol...", this, [this] { runOnGuiThread(runThreeJCalculator); });
    calculators->addAction("6j symbol...", this, [this] { runOnGuiThread(runSixJCalculator); });
    calculators->addAction("9j symbol...", this, [this] { runOnGuiThread(runNineJCalculator); });
    calculators->addAction("<l||C(k)||l'>...", this, [this] { runOnGuiThread(runReducedCkCalculator); });
    calculators->addAction("Rotation matrix d(J)(beta)...", this, [this] { runOnGuiThread(runRotationMatrixCalculator); });
    tools->addAction("&Eigen Solver...", this, [this] {
        const auto file = askOpenPath("Matrix file", "Matrix files (*.txt *.dat);;All files (*)");
        if (file.empty()) return;
        startJob("Eigen solver", [this, file](LogBook& log) { solveMatrixFile(file, log, *services_.asker); });
    });
}

void MainWindow::createHelpMenu() {
    QMenu* help = menuBar()->addMenu("&Help");
    auto showHelp = [this](const QString& page) {
        if (helpPages().isEmpty()) {
            services_.asker->showMessage("Orvane", kNoHelpMessage);
            return;
        }
        addDocument(new HelpWindow(page))->resize(700, 560);
    };
    help->addAction("&Contents", this, [showHelp] { showHelp({}); })->setShortcut(QKeySequence::HelpContents);
    help->addAction("&Search for Help On...", this, [showHelp] { showHelp({}); });
    help->addAction("&Manual", this, [showHelp] { showHelp("engine.md"); });
    help->addSeparator();
    help->addAction("&About Orvane", this, [this] {
        QMessageBox::about(this, "About Orvane",
                           QString("<b>Orvane</b> %1<br>Spectroscopy of open f-shell ions in crystals:"
                                   " energy levels, fits, crystal-field parameters and derived properties.")
                               .arg(orvaneVersion()));
    });
}

void MainWindow::rebuildRecentFilesMenu() {
    recentMenu_->clear();
    int number = 0;
    for (const std::string& path : recentFiles_.paths()) {
        const std::filesystem::path file = path;
        recentMenu_->addAction(QString::fromStdString(recentFileCaption(++number, path)), this,
                               [this, file] { openFile(file); });
    }
    recentMenu_->setEnabled(number > 0);
}

}  // namespace orvane::app

namespace orvane::app {

namespace {

constexpr const char* kNoFitKindForFitting =
    "You must select a kind of fit to do before the Fitting Window could be displayed!";
constexpr const char* kNoFitKindForStateVectors =
    "You must select a kind of fit to do before the Statevectors Window could be displayed!";

}  // namespace

void MainWindow::chooseFitKind(FitKind kind) {
    fitKind_ = kind;
    if (kind != FitKind::ComplexCrystalField) return;
    // The complex fit opens with the automatic updates restricted.
    services_.log->appendLine("Complex Crystal field Fitting - initialisation completed.");
    for (const auto& line : manualUpdateNote()) services_.log->appendLine(line);
}

FitWindow* MainWindow::openFitWindow() {
    if (!fitKind_) {
        services_.asker->showMessage("Orvane", kNoFitKindForFitting);
        return nullptr;
    }
    ParameterEditor* editor = parameterEditor(false);
    if (!editor) {
        services_.asker->showMessage("Orvane", kEditorClosedMessage);
        return nullptr;
    }
    try {
        auto* window = new FitWindow(*this, *editor, *fitKind_);
        addDocument(window)->resize(1100, 640);
        return window;
    } catch (const UserError& error) {
        services_.asker->showMessage(error.title(), error.describe());
        return nullptr;
    }
}

void MainWindow::createFitMenu() {
    QMenu* fit = menuBar()->addMenu("Fi&t");
    auto* kinds = new QActionGroup(fit);
    for (const auto& [caption, kind] : {std::pair{"Free-ion fit", FitKind::FreeIon},
                                        std::pair{"Real CF fit", FitKind::RealCrystalField},
                                        std::pair{"Complex CF fit (Imaginary Bkq)", FitKind::ComplexCrystalField}}) {
        QAction* action = fit->addAction(caption, this, [this, kind = kind] { chooseFitKind(kind); });
        action->setCheckable(true);
        kinds->addAction(action);
    }
    fit->addSeparator();
    fit->addAction("&Fitting Window", this, [this] { openFitWindow(); });
    fit->addAction("&Statevectors Window", this, [this] { openStateVectorWindow(); });
}

int MainWindow::propertyMode() const {
    if (!fitKind_) return 0;
    return *fitKind_ == FitKind::FreeIon ? 2 : *fitKind_ == FitKind::ComplexCrystalField ? 1 : 0;
}

std::filesystem::path MainWindow::propertyParameterFile() {
    if (ParameterEditor* editor = parameterEditor(false); editor && !editor->filePath().empty())
        return editor->save() ? editor->filePath() : std::filesystem::path();
    return askOpenPath("File for Free-in and Crystal Field Parameters ", "Par files (*.par);;All files (*)");
}

namespace {

// A property window of the given size over the parameter file the main window finds (or asks for).
template <typename Window>
Window* openPropertyWindow(MainWindow& main, const std::filesystem::path& file, int mode, QSize size) {
    if (file.empty()) return nullptr;
    auto* window = new Window(main, file, mode);
    main.addDocument(window)->resize(size);
    return window;
}

}  // namespace

StateVectorWindow* MainWindow::openStateVectorWindow() {
    if (!fitKind_) {
        services_.asker->showMessage("Orvane", kNoFitKindForStateVectors);
        return nullptr;
    }
    return openPropertyWindow<StateVectorWindow>(*this, propertyParameterFile(), propertyMode(), {820, 560});
}

SusceptibilityChart* MainWindow::openSusceptibilityChart() {
    return openPropertyWindow<SusceptibilityChart>(*this, propertyParameterFile(), propertyMode(), {820, 600});
}

IntensityWindow* MainWindow::openIntensityWindow() {
    return openPropertyWindow<IntensityWindow>(*this, propertyParameterFile(), propertyMode(), {900, 600});
}

void MainWindow::createPropertiesMenu() {
    QMenu* properties = menuBar()->addMenu("&Properties");
    properties->addAction("&Statevectors and g-factors...", this, [this] { openStateVectorWindow(); });
    properties->addAction("Magnetic &Susceptibility Plot...", this, [this] { openSusceptibilityChart(); });
    properties->addAction("Transition &Intensities...", this, [this] { openIntensityWindow(); });
}

}  // namespace orvane::app
