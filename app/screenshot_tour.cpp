#include "app/screenshot_tour.hpp"

#include <QApplication>
#include <QEventLoop>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPixmap>
#include <QTimer>

#include "app/de_window.hpp"
#include "app/fit_window.hpp"
#include "app/log_book_window.hpp"
#include "app/main_window.hpp"
#include "app/parameter_editor.hpp"
#include "app/picture_export.hpp"
#include "app/susceptibility_chart.hpp"
#include "fit/fit_workspace.hpp"

namespace orvane::app {

namespace {

// Lets pending events (log lines, layout) be handled before a picture is taken.
void settle(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

void waitForJob(MainWindow& window) {
    if (!window.jobs().busy()) return;
    QEventLoop loop;
    QObject::connect(&window.jobs(), &JobRunner::finished, &loop, &QEventLoop::quit);
    loop.exec();
}

void closeAllBut(MainWindow& window, const std::vector<QWidget*>& kept) {
    for (QMdiSubWindow* frame : window.documents().subWindowList())
        if (std::find(kept.begin(), kept.end(), frame->widget()) == kept.end() && frame->widget() != &window.logBook())
            frame->close();
}

// Two windows side by side in the multi-document area, the first taking `share` of the width.
void sideBySide(MainWindow& window, QWidget& left, QWidget& right, double share) {
    const QSize area = window.documents().viewport()->size();
    const int split = static_cast<int>(area.width() * share);
    left.parentWidget()->setGeometry(0, 0, split, area.height());
    right.parentWidget()->setGeometry(split, 0, area.width() - split, area.height());
    right.parentWidget()->raise();
    left.parentWidget()->raise();
}

// The run of Er3+: the log book beside the editor.
bool runPicture(MainWindow& window, const std::filesystem::path& examples, const std::filesystem::path& folder) {
    ParameterEditor* editor = window.openParameterEditor(examples / "Er3plus-LaF3.par");
    if (!editor || !editor->runFromEditor(0)) return false;
    waitForJob(window);
    settle(300);
    closeAllBut(window, {editor});
    sideBySide(window, window.logBook(), *editor, 0.45);
    window.logBook().moveCursor(QTextCursor::End);
    settle(300);
    exportPicture(window, folder / "desktop-main.png");
    exportPicture(*editor, folder / "desktop-editor.png");
    return true;
}

// An Ultimate Fit of four Pr3+ parameters to the example's observed levels, then a
// differential-evolution search from it caught mid-run.
bool fitPictures(MainWindow& window, const std::filesystem::path& examples, const std::filesystem::path& folder) {
    ParameterEditor* editor = window.openParameterEditor(examples / "Pr3plus-LaF3.par");
    if (!editor) return false;
    window.chooseFitKind(FitKind::RealCrystalField);
    FitWindow* fit = window.openFitWindow();
    if (!fit || !fit->loadObservedLevels(examples / "Pr3plus-LaF3-levels.txt")) return false;
    for (const char* name : {"EAVG", "F2", "B20", "B40"}) fit->setFitOption(name, kFitOptionFree);
    if (!fit->ultimateFit()) return false;
    waitForJob(window);
    settle(300);
    closeAllBut(window, {fit});
    fit->parentWidget()->setGeometry(QRect(QPoint(0, 0), window.documents().viewport()->size()));
    fit->parentWidget()->raise();
    settle(300);
    exportPicture(window, folder / "desktop-fit.png");

    auto* search = new DEWindow(window, *fit, false);
    window.addDocument(search);
    search->setSetting(DESettingId::Parents, "30");
    search->setSetting(DESettingId::MaxIterations, "400");
    search->setSetting(DESettingId::Sd, "1e-9");
    search->setSetting(DESettingId::Err, "1e-9");
    search->setSeed(1);
    sideBySide(window, window.logBook(), *search, 0.4);
    int shown = 0;
    QObject::connect(search, &DEWindow::generationShown, search, [&shown](int) { ++shown; });
    if (!search->start()) return false;
    while (shown < 25 && window.jobs().busy()) settle(50);
    exportPicture(window, folder / "desktop-de.png");
    window.jobs().cancel();
    waitForJob(window);
    return true;
}

// The susceptibility of Er3+ from 2 to 300 K on the logarithmic grid, with its average curve.
bool susceptibilityPicture(MainWindow& window, ScriptedAsker& answers, const std::filesystem::path& examples,
                           const std::filesystem::path& folder) {
    ParameterEditor* editor = window.openParameterEditor(examples / "Er3plus-LaF3.par");
    if (!editor) return false;
    answers.addAnswer("2 300");
    window.chooseFitKind(FitKind::RealCrystalField);
    SusceptibilityChart* chart = window.openSusceptibilityChart();
    if (!chart) return false;
    waitForJob(window);
    settle(300);
    if (!chart->ready()) return false;
    closeAllBut(window, {chart});
    sideBySide(window, window.logBook(), *chart, 0.35);
    settle(300);
    exportPicture(window, folder / "desktop-chi.png");
    return true;
}

}  // namespace

int takeScreenshots(MainWindow& window, ScriptedAsker& answers, const std::filesystem::path& examples,
                    const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    window.resize(1280, 820);
    window.show();
    settle(200);
    const bool taken = runPicture(window, examples, folder) && fitPictures(window, examples, folder) &&
                       susceptibilityPicture(window, answers, examples, folder);
    return taken ? 0 : 1;
}

}  // namespace orvane::app
