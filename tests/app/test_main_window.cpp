// The main window's life: start-up, placement, the log book's backup, the
// recent-file list, cancelled jobs, large documents and the bundled help.
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QTextBlock>
#include <fstream>

#include "app/document_window.hpp"
#include "app/help_window.hpp"
#include "app/log_book_window.hpp"
#include "app/qt_log_book.hpp"
#include "app/rich_text_file.hpp"
#include "app/window_placement.hpp"
#include "desktop_test_support.hpp"

using namespace orvane;
using namespace orvane::app;
using namespace orvane::app::testing;

class MainWindowTest : public QObject {
    Q_OBJECT
private slots:
    void startsTheLogBookAtTheDefaultPlacement() {
        DesktopFixture fixture;
        const QString text = fixture.window->logBook().plainContent();
        QVERIFY(text.startsWith("Orvane Log Book started on "));
        QVERIFY(text.contains(" at "));
        QVERIFY(text.contains('\n' + QString(55, '#') + '\n'));
        QVERIFY(!text.contains(QString(56, '#')));
        // 1000, 1000, 6500, 6500 twips at 15 twips to the pixel.
        QCOMPARE(fixture.window->pos(), QPoint(66, 66));
        QCOMPARE(fixture.window->size(), QSize(433, 433));
    }

    void savesPlacementUnlessMinimised() {
        DesktopFixture fixture;
        fixture.window->show();
        fixture.window->move(120, 90);
        fixture.window->resize(800, 600);
        fixture.window->close();
        fixture.open();
        QCOMPARE(fixture.window->pos(), QPoint(120, 90));
        QCOMPARE(fixture.window->size(), QSize(800, 600));
        QCOMPARE(readPlacement(*fixture.window->services().settings), (Placement{1800, 1350, 12000, 9000}));

        fixture.window->show();
        fixture.window->move(10, 10);
        fixture.window->showMinimized();
        QVERIFY(fixture.window->isMinimized());
        fixture.window->close();
        fixture.open();
        QCOMPARE(fixture.window->pos(), QPoint(120, 90));
    }

    void clearingTwiceKeepsTheSecondContentAndRecoverOpensIt() {
        DesktopFixture fixture({}, {Choice::Yes, Choice::No, Choice::Yes});
        MainWindow& window = *fixture.window;
        const auto windows = [&] { return window.documents().subWindowList().size(); };
        const auto before = windows();
        window.recoverLogBook();  // no backup yet: nothing opens
        QCOMPARE(windows(), before);

        window.logBook().appendLine("first content");
        window.clearLogBook();  // Yes
        QVERIFY(!window.logBook().plainContent().contains("first content"));
        QVERIFY(window.logBook().plainContent().startsWith("Orvane Log Book cleared and re-started on "));
        window.logBook().appendLine("second content");
        window.clearLogBook();  // No: nothing changes
        QVERIFY(window.logBook().plainContent().contains("second content"));
        window.clearLogBook();  // Yes
        const auto backup = window.logBook().backupContent();
        QVERIFY(backup && backup->contains("second content") && !backup->contains("first content"));

        fixture.open();  // after a restart the backup is still there
        fixture.window->recoverLogBook();
        auto* old = qobject_cast<DocumentWindow*>(fixture.window->documents().subWindowList().last()->widget());
        QVERIFY(old);
        QCOMPARE(old->windowTitle(), QString(kOldLogBookCaption));
        QVERIFY(old->toPlainText().contains("second content"));
    }

    void recentFilesKeepTheLatestNine() {
        DesktopFixture fixture;
        std::vector<std::string> paths;
        for (int i = 1; i <= 11; ++i) {
            const auto file = fixture.scratch(("note" + std::to_string(i) + ".txt").c_str());
            std::ofstream(file) << "note " << i << '\n';
            fixture.window->openFile(file);
            paths.push_back(file.string());
        }
        fixture.window->openFile(paths[5]);  // an entry opened again moves to the front
        fixture.open();
        const auto& recent = fixture.window->recentFiles().paths();
        QCOMPARE(recent.size(), std::size_t{9});
        QCOMPARE(recent[0], paths[5]);
        QCOMPARE(recent[1], paths[10]);
        QCOMPARE(recent[8], paths[2]);
        QMenu* menu = fixture.window->menuBar()->findChild<QMenu*>();
        QVERIFY(menu);
        QStringList captions;
        for (QMenu* sub : fixture.window->findChildren<QMenu*>())
            for (QAction* action : sub->actions()) captions << action->text();
        QVERIFY(captions.contains(QString::fromStdString("&1 " + paths[5])));
        QVERIFY(captions.contains(QString::fromStdString("&9 " + paths[2])));
    }

    void cancelledRunLeavesNoResultFile() {
        DesktopFixture fixture;
        const auto parameters = fixture.scratch("Er.par");
        std::filesystem::copy_file(examplesFolder() / "Er3plus-LaF3.par", parameters);
        // Cancel from the worker at the run's first line, so that the run is certainly still going.
        auto* events = dynamic_cast<QtLogBook*>(fixture.window->services().log);
        QVERIFY(events);
        QMetaObject::Connection cancelAtOnce = connect(
            events, &QtLogBook::eventRecorded, this, [&] { fixture.window->jobs().cancel(); }, Qt::DirectConnection);
        bool sawCancel = false;
        connect(&fixture.window->jobs(), &JobRunner::finished, this,
                [&](const QString&, JobEnd end, const QString&) { sawCancel = end == JobEnd::Cancelled; });
        QVERIFY(fixture.window->startRun({0, parameters, {}}));
        QVERIFY(fixture.waitForJob());
        disconnect(cancelAtOnce);
        QVERIFY(sawCancel);
        for (const char* name : {"Er.gen", "Er.ev", "Er.eng"}) QVERIFY(!std::filesystem::exists(fixture.scratch(name)));
        QCOMPARE(std::distance(std::filesystem::directory_iterator(fixture.scratch("")), {}), 2);  // Er.par, data
    }

    void largeDocumentsLoadBetweenEvents() {
        DesktopFixture fixture;
        const auto file = fixture.scratch("large.ev");
        {
            std::ofstream out(file);
            for (int line = 0; line < 200000; ++line) out << "state " << line << "  0.123456789  -0.987654321\n";
        }
        DocumentWindow* document = fixture.window->openTextDocument(file);
        QVERIFY(document->loading());  // the constructor returned before the whole file was read
        QVERIFY(QTest::qWaitFor([&] { return !document->loading(); }, 60000));
        QCOMPARE(document->document()->blockCount(), 200000);
        QCOMPARE(document->document()->findBlockByNumber(199999).text(), QString("state 199999  0.123456789  -0.987654321"));
    }

    void richTextKeepsTheLines() {
        const std::string text = "Orvane Log Book\n{braces} and \\backslash\n\tB20 = -245.3 cm\u207b\u00b9\n";
        QCOMPARE(plainTextOfRichText(richTextOf(text)), text);
        QVERIFY(looksLikeRichText(richTextOf(text)));
        // Damaged files give what text they hold, never an exception.
        for (const char* damaged : {"{\\rtf1 a\\'zz b}", "{\\rtf1 \\u99999999999 x}", "{\\rtf1 \\'4", "}}}\\", "{\\rtf1 \\u-"})
            QVERIFY(plainTextOfRichText(damaged).size() < 20);
    }

    void helpPagesTravelWithTheProgram() {
        const QStringList pages = helpPages();
        QVERIFY(pages.contains("parameter-file.md"));
        QVERIFY(pages.contains("desktop.md"));
        HelpWindow help("parameter-file.md");
        QVERIFY(help.toPlainText().size() > 200);
    }
};

QTEST_MAIN(MainWindowTest)
#include "test_main_window.moc"
