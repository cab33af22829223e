// orvane-desktop: the desktop program. Settings and the log-book backup live
// in the per-user data folder (docs/desktop.md); a file named on the command
// line is opened as File > Open would.
#include <QApplication>

#include "app/main_window.hpp"
#include "core/atomic_file.hpp"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setOrganizationName("Orvane");
    QApplication::setApplicationName("orvane");
    orvane::removeTemporariesOnSignals();
    orvane::app::MainWindow window;
    window.show();
    for (const QString& file : QApplication::arguments().mid(1)) window.openFile(file.toStdString());
    return QApplication::exec();
}
