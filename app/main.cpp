// orvane-desktop: the desktop program. Settings and the log-book backup live
// in the per-user data folder (docs/desktop.md); files named on the command
// line are opened as File > Open would.
#include <QApplication>
#include <QCommandLineParser>

#include "app/main_window.hpp"
#include "app/screenshot_tour.hpp"
#include "core/atomic_file.hpp"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setOrganizationName("Orvane");
    QApplication::setApplicationName("orvane");
    QCommandLineParser parser;
    parser.setApplicationDescription("Orvane: spectroscopy of open f-shell ions in crystals");
    parser.addHelpOption();
    parser.addPositionalArgument("files", "Files to open (parameter files open in the editor).", "[FILE...]");
    const QCommandLineOption screenshots("screenshots",
                                         "Take the documentation's pictures into FOLDER from the copies of the "
                                         "examples in the folder FILE, then quit.",
                                         "FOLDER");
    parser.addOption(screenshots);
    parser.process(application);
    orvane::removeTemporariesOnSignals();

    orvane::app::MainWindow window;
    const QStringList files = parser.positionalArguments();
    if (parser.isSet(screenshots)) {
        if (files.isEmpty()) return 2;
        return orvane::app::takeScreenshots(window, files.front().toStdString(),
                                            parser.value(screenshots).toStdString());
    }
    window.show();
    for (const QString& file : files) window.openFile(file.toStdString());
    return QApplication::exec();
}
