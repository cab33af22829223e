#include "app/screenshot_tour.hpp"

#include <QApplication>
#include <QEventLoop>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPixmap>
#include <QTimer>

#include "app/log_book_window.hpp"
#include "app/main_window.hpp"
#include "app/parameter_editor.hpp"

namespace orvane::app {

namespace {

// Lets pending events (log lines, layout) be handled before a picture is taken.
void settle(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

bool savePicture(QWidget& widget, const std::filesystem::path& file) {
    return widget.grab().save(QString::fromStdString(file.string()), "PNG");
}

void waitForJob(MainWindow& window) {
    if (!window.jobs().busy()) return;
    QEventLoop loop;
    QObject::connect(&window.jobs(), &JobRunner::finished, &loop, &QEventLoop::quit);
    loop.exec();
}

}  // namespace

int takeScreenshots(MainWindow& window, const std::filesystem::path& parameterFile,
                    const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    window.resize(1280, 820);
    window.show();
    ParameterEditor* editor = window.openParameterEditor(parameterFile);
    if (!editor) return 1;
    settle(200);
    if (!editor->runFromEditor(0)) return 1;
    waitForJob(window);
    settle(300);
    // The log book on the left, the editor on the right.
    QMdiSubWindow* logFrame = qobject_cast<QMdiSubWindow*>(window.logBook().parentWidget());
    QMdiSubWindow* editorFrame = qobject_cast<QMdiSubWindow*>(editor->parentWidget());
    for (QMdiSubWindow* frame : window.documents().subWindowList())
        if (frame != logFrame && frame != editorFrame) frame->close();
    const QSize area = window.documents().viewport()->size();
    logFrame->setGeometry(0, 0, area.width() * 9 / 20, area.height());
    editorFrame->setGeometry(area.width() * 9 / 20, 0, area.width() - area.width() * 9 / 20, area.height());
    window.logBook().moveCursor(QTextCursor::End);
    settle(300);
    bool written = savePicture(window, folder / "desktop-main.png");
    written = savePicture(*editor, folder / "desktop-editor.png") && written;
    return written ? 0 : 1;
}

}  // namespace orvane::app
