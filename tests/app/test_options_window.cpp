// The options window: the refusal of a bad min. coefficient, the question
// before a free-ion run of a truncated LS basis, discarded result files, the
// options kept over a restart and a batch that runs past a missing file.
#include <QCheckBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QTableWidget>
#include <QtTest>
#include <algorithm>
#include <fstream>

#include "app/log_book_window.hpp"
#include "app/options_window.hpp"
#include "desktop_test_support.hpp"

using namespace orvane;
using namespace orvane::app;
using namespace orvane::app::testing;

namespace {

// A copy of the Pr3+ example (f^2, quick free-ion runs); `truncate` adds "/spinmmin= 3".
std::filesystem::path copyExample(const DesktopFixture& fixture, const char* name, bool truncate = false) {
    const auto target = fixture.scratch(name);
    std::ifstream in(examplesFolder() / "Pr3plus-LaF3.par");
    std::string text((std::istreambuf_iterator<char>(in)), {});
    if (truncate) text.replace(text.find("/noss/ptgp= 7"), 13, "/noss/ptgp= 7 /spinmmin= 3");
    std::ofstream(target) << text;
    return target;
}

bool contains(const std::vector<std::string>& lines, const std::string& text) {
    return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) { return line == text; });
}

void chooseFreeIon(OptionsWindow& window) { window.findChild<QRadioButton*>("kind0")->setChecked(true); }

}  // namespace

class OptionsWindowTest : public QObject {
    Q_OBJECT
private slots:
    void minCoefficient_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("taken");
        QTest::newRow("zero") << "0" << true;
        QTest::newRow("one") << "1" << false;
        QTest::newRow("negative") << "-0.01" << false;
        QTest::newRow("text") << "small" << false;
    }
    void minCoefficient() {
        QFETCH(QString, typed);
        QFETCH(bool, taken);
        DesktopFixture fixture;
        OptionsWindow window(*fixture.window);
        window.findChild<QLineEdit*>("minCoefficient")->setText(typed);
        QCOMPARE(window.apply(), taken);
        QCOMPARE(window.options().minCoefficient, taken ? typed.toStdString() : std::string("0.002"));
        QCOMPARE(contains(fixture.asker.messages(), "Error: Invalid value of min. statevector coefficient to store!!!"),
                 !taken);
    }

    // Only Yes runs a truncated free-ion set; an untruncated one asks nothing.
    // The cleared energies box discards the energy file only.
    void freeIonRun_data() {
        QTest::addColumn<bool>("truncated");
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("runs");
        QTest::newRow("truncated, Yes") << true << int(Choice::Yes) << true;
        QTest::newRow("truncated, No") << true << int(Choice::No) << false;
        QTest::newRow("truncated, Cancel") << true << int(Choice::Cancel) << false;
        QTest::newRow("not truncated") << false << -1 << true;
    }
    void freeIonRun() {
        QFETCH(bool, truncated);
        QFETCH(int, answer);
        QFETCH(bool, runs);
        DesktopFixture fixture({}, answer < 0 ? std::vector<Choice>{} : std::vector{Choice(answer)});
        const auto file = copyExample(fixture, "Pr.par", truncated);
        OptionsWindow window(*fixture.window);
        chooseFreeIon(window);
        window.findChild<QLineEdit*>("inputFile")->setText(QString::fromStdString(file.string()));
        window.findChild<QCheckBox*>("writeEnergies")->setChecked(false);
        QCOMPARE(window.runOnce(), runs);
        QVERIFY(fixture.waitForJob());
        const bool asked = !fixture.asker.messages().empty();
        QCOMPARE(asked, truncated);
        QCOMPARE(std::filesystem::exists(fixture.scratch("Pr_fi.gen")), runs);
        QVERIFY(!std::filesystem::exists(fixture.scratch("Pr_fi.eng")));
    }

    void missingInputFileIsRefused() {
        DesktopFixture fixture;
        OptionsWindow window(*fixture.window);
        window.findChild<QLineEdit*>("inputFile")->setText(fixture.folder.filePath("absent.par"));
        QVERIFY(!window.runOnce());
        QVERIFY(contains(fixture.asker.messages(), "Error: Can't find input parameters file!"));
    }

    void optionsAndBatchListSurviveARestart() {
        DesktopFixture fixture;
        RunOptions applied;
        {
            OptionsWindow window(*fixture.window);
            chooseFreeIon(window);
            window.findChild<QLineEdit*>("vectorsToStore")->setText("7");
            window.findChild<QLineEdit*>("minCoefficient")->setText("0.01");
            window.findChild<QCheckBox*>("printHm")->setChecked(true);
            window.addBatchRows(1);
            window.batchTable().setItem(0, 0, new QTableWidgetItem("/data/x.par"));
            QVERIFY(window.apply());
            applied = window.options();
        }
        fixture.open();
        OptionsWindow reopened(*fixture.window);
        QVERIFY(reopened.options() == applied);
        QCOMPARE(reopened.options().vectorsToStore, 7);
        QCOMPARE(optionTextOf(reopened.options()), std::string("/printhm"));
        QCOMPARE(reopened.batchFiles(), std::vector<std::filesystem::path>{"/data/x.par"});
    }

    void batchRunsPastAMissingRow() {
        DesktopFixture fixture;
        const std::vector<std::filesystem::path> rows = {copyExample(fixture, "first.par"), fixture.scratch("absent.par"),
                                                         copyExample(fixture, "third.par")};
        OptionsWindow window(*fixture.window);
        chooseFreeIon(window);
        window.addBatchRows(3);
        for (int row = 0; row < 3; ++row)
            window.batchTable().setItem(row, 0, new QTableWidgetItem(QString::fromStdString(rows[row].string())));
        QVERIFY(window.runBatch());
        QVERIFY(fixture.waitForJob());
        QCoreApplication::processEvents();
        const QString log = fixture.window->logBook().plainContent();
        QVERIFY(log.contains(QString::fromStdString("Can't find input parameters file from " + rows[1].string())));
        QVERIFY(log.contains(QString::fromStdString("Calculations of " + rows[2].string() + " started on ")));
        QVERIFY(std::filesystem::exists(fixture.scratch("first_fi.gen")));
        QVERIFY(std::filesystem::exists(fixture.scratch("third_fi.eng")));
        QVERIFY(!std::filesystem::exists(fixture.scratch("absent_fi.gen")));
    }
};

QTEST_MAIN(OptionsWindowTest)
#include "test_options_window.moc"
