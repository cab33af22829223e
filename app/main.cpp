// orvane-desktop: the desktop program. Settings and the log-book backup live
// in the per-user data folder (docs/desktop.md); files named on the command
// line are opened as File > Open would.
#include <QApplication>
#include <QCommandLineParser>
#include <cstdio>

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

    const QStringList files = parser.positionalArguments();
    if (parser.isSet(screenshots)) {
        if (files.isEmpty()) return 2;
        // Unattended: every question is answered Yes, every message is printed.
        orvane::ScriptedAsker answers({}, std::vector<orvane::Choice>(100, orvane::Choice::Yes));
        orvane::app::MainWindow window({{}, {}, &answers});
        const int code = orvane::app::takeScreenshots(window, answers, files.front().toStdString(),
                                                      parser.value(screenshots).toStdString());
        for (const auto& message : answers.messages()) std::fprintf(stderr, "%s\n", message.c_str());
        return code;
    }
    orvane::app::MainWindow window;
    window.show();
    for (const QString& file : files) window.openFile(file.toStdString());
    return QApplication::exec();
}
