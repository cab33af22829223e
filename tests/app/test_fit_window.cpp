// The fitting workspace and the differential-evolution window driven as a
// user would: opening rules, a fit of Nd3+:LaF3 that must land where
// `orvane fit` lands, withheld levels, the colours of a failed series, the
// DE window's refusals and a short seeded search, and the responsiveness of
// the interface thread while the fit runs.
#include <QElapsedTimer>
#include <QThread>
#include <atomic>
#include <QProcess>
#include <QTableWidget>
#include <QTimer>

#include "app/de_window.hpp"
#include "app/fit_chart.hpp"
#include "app/fit_tables_view.hpp"
#include "app/fit_window.hpp"
#include "app/log_book_window.hpp"
#include "app/parameter_editor.hpp"
#include "app/qt_log_book.hpp"
#include "app/picture_export.hpp"
#include "desktop_test_support.hpp"
#include "engine/parameter_file.hpp"
#include "fit/fit_parameters.hpp"
#include "fit/fit_session.hpp"
#include "fit/observed_levels_file.hpp"
#include "tables/table_directory.hpp"

using namespace orvane;
using namespace orvane::app;
using namespace orvane::app::testing;

namespace {

const std::vector<std::string> kFreeNames = {"F2", "ZETA", "B20", "B40", "B60"};

// Observed levels of Nd3+:LaF3 made from the example's own calculation: the
// lowest 24 Kramers doublets, each moved by a few cm^-1 (alternating signs),
// so that the fit has a definite optimum near the example's parameters.
std::filesystem::path writeSyntheticLevels(const std::filesystem::path& parameters, const std::filesystem::path& file) {
    const ParameterSet set = readParameterFile(parameters);
    FitWorkspace workspace;
    workspace.parameters = fitParameterRows(set, FitKind::RealCrystalField);
    for (int doublet = 0; doublet < 24; ++doublet) workspace.levels.push_back({2 * doublet + 1, "", false, 0.0});
    NullLogBook log;
    FitSession session(set, workspace, defaultTableDirectory(), log);
    session.update(true);
    session.adoptLabels();
    auto levels = session.workspace().levels;
    for (std::size_t i = 0; i < levels.size(); ++i)
        levels[i].observedEnergy = levels[i].calculatedEnergy + (i % 2 ? 4.0 : -3.0) * (1.0 + 0.1 * static_cast<double>(i % 5));
    writeObservedLevelsFile(file, levels, {});
    return file;
}

struct FitFixture : DesktopFixture {
    std::filesystem::path parameters = scratch("Nd.par");
    std::filesystem::path observed = scratch("Nd-levels.txt");
    ParameterEditor* editor = nullptr;
    explicit FitFixture(std::vector<Choice> choices = {}) : DesktopFixture({}, std::move(choices)) {
        std::filesystem::copy_file(examplesFolder() / "Nd3plus-LaF3.par", parameters);
        writeSyntheticLevels(parameters, observed);
        editor = window->openParameterEditor(parameters);
    }
    FitWindow* openFit() {
        window->chooseFitKind(FitKind::RealCrystalField);
        FitWindow* fit = window->openFitWindow();
        if (fit && fit->loadObservedLevels(observed))
            for (const auto& name : kFreeNames) fit->setFitOption(name, kFitOptionFree);
        return fit;
    }
};

}  // namespace

class FitWindowTest : public QObject {
    Q_OBJECT
private slots:
    void opensOnlyAfterAKindOfFit() {
        DesktopFixture fixture;
        QVERIFY(!fixture.window->openStateVectorWindow());
        QVERIFY(fixture.asker.messages().back().find("You must select a kind of fit to do before the Statevectors "
                                                     "Window could be displayed!") != std::string::npos);
        QVERIFY(!fixture.window->openFitWindow());
        QVERIFY(fixture.asker.messages().back().find("You must select a kind of fit to do before the Fitting Window "
                                                     "could be displayed!") != std::string::npos);
        fixture.window->chooseFitKind(FitKind::ComplexCrystalField);
        QVERIFY(fixture.window->logBook().plainContent().contains("Complex Crystal field Fitting - initialisation completed."));
        QVERIFY(!fixture.window->openFitWindow());  // no parameter editor yet
        QVERIFY(fixture.asker.messages().back().find(kEditorClosedMessage) != std::string::npos);
    }

    void fitReachesTheCommandLinesParametersWithoutBlockingTheInterface() {
        FitFixture fixture;
        FitWindow* fit = fixture.openFit();
        QVERIFY(fit);
        QCOMPARE(fit->windowTitle(), QString("CF Fitting -Nd.par"));
        QCOMPARE(fit->levelTable().rowCount(), 24);

        // The interface thread's longest pause while the fit runs on the worker.
        QElapsedTimer clock;
        qint64 last = 0, longest = 0;
        QTimer tick;
        connect(&tick, &QTimer::timeout, this, [&] {
            const qint64 now = clock.elapsed();
            longest = std::max(longest, now - last);
            last = now;
        });
        // Every cycle line of the fit is written from the worker thread (a direct connection runs in the emitter's).
        std::atomic<int> cycleLines = 0, cycleLinesOnInterfaceThread = 0;
        QThread* interfaceThread = QThread::currentThread();
        connect(dynamic_cast<QtLogBook*>(fixture.window->services().log), &QtLogBook::eventRecorded, this,
                [&](const LogEvent& event) {
                    if (event.text.rfind("Cycle ", 0) != 0) return;
                    ++cycleLines;
                    if (QThread::currentThread() == interfaceThread) ++cycleLinesOnInterfaceThread;
                }, Qt::DirectConnection);
        int cyclesShown = 0;
        connect(fit, &FitWindow::cycleShown, this, [&] { ++cyclesShown; });
        clock.start();
        tick.start(5);
        QVERIFY(fit->ultimateFit());
        QVERIFY(fixture.waitForJob(300000));
        tick.stop();
        QTest::qWait(50);
        qInfo("longest pause of the interface thread during the fit: %lld ms; cycles shown: %d", longest, cyclesShown);
        QVERIFY(cyclesShown >= 2);  // the tables followed the series
        // Generous against a loaded machine: the fit as a whole must not have run on this thread.
        QVERIFY(cycleLines > 0);
        QCOMPARE(cycleLinesOnInterfaceThread.load(), 0);
        QVERIFY(longest < 1000);

        QProcess cli;
        cli.start(QString(ORVANE_BINARY_DIR) + "/orvane",
                  {"fit", QString::fromStdString(fixture.parameters.string()), "--observed",
                   QString::fromStdString(fixture.observed.string()), "--free", "F2,ZETA,B20,B40,B60", "--ultimate",
                   "--max-levels", "150", "--yes", "-q", "-o", QString::fromStdString(fixture.scratch("cli.par").string())});
        QVERIFY(cli.waitForFinished(300000));
        QCOMPARE(cli.exitCode(), 0);
        const ParameterSet fromCommand = readParameterFile(fixture.scratch("cli.par"));
        ParameterSet fromWindow = fixture.editor->parameterSet();
        for (const auto& name : kFreeNames) {
            const double expected = findParameterCell(const_cast<ParameterSet&>(fromCommand), name)->value;
            const double actual = findParameterCell(fromWindow, name)->value;
            qInfo("%s: window %.6f, command %.6f", name.c_str(), actual, expected);
            QVERIFY2(std::abs(actual - expected) <= 1e-6 * std::max(1.0, std::abs(expected)), name.c_str());
        }
        QVERIFY(findParameterCell(fromWindow, "B20")->value != -256.0);  // the fit moved away from the start
    }

    void withheldLevelsAndTheColoursOfAFailedSeries() {
        FitFixture fixture;
        FitWindow* fit = fixture.openFit();
        QVERIFY(fit);
        QCOMPARE(fit->chart().fittedPoints(), 24);
        fit->toggleWithheld(3);
        QVERIFY(fit->levelTable().item(3, 2)->text().startsWith('['));
        QCOMPARE(fit->chart().fittedPoints(), 23);
        QCOMPARE(fit->chart().withheldPoints(), 1);
        // A level assigned to a state far from it, two cycles and a limit no series meets.
        fit->levelTable().item(5, 0)->setText("40");
        fit->workspace().settings.maxIterations = 2;
        fit->workspace().settings.convergenceLimit = 1e-12;
        fixture.asker.addAnswer("");
        QVERIFY(fit->ultimateFit());
        QVERIFY(fixture.waitForJob());
        QTest::qWait(20);
        QVERIFY(fixture.window->logBook().plainContent().contains(
            "Note the following color code for the background color of the State Label cell"));
        QCOMPARE(fit->levelTable().item(5, 1)->background().color(), labelColour(LabelColour::Red));
        QCOMPARE(fit->levelTable().item(3, 1)->background().style(), Qt::NoBrush);  // withheld: never coloured
        for (const char* name : {"fit.png", "fit.svg"}) {
            exportPicture(fit->chart(), fixture.scratch(name));
            QVERIFY(std::filesystem::file_size(fixture.scratch(name)) > 1000);
        }
    }

    void differentialEvolutionRefusesThenSearchesAndTransfers() {
        // Yes to "Go ahead?" should a loaded machine make the estimate reach a minute; Yes (not Continue)
        // to "Continue or Cancel DE iteration" stops the search.
        FitFixture fixture({Choice::Yes, Choice::Yes, Choice::Yes});
        FitWindow* fit = fixture.openFit();
        QVERIFY(fit);
        DEWindow superposition(*fixture.window, *fit, true);
        QVERIFY(!superposition.start());
        QVERIFY(fixture.asker.messages().back().find(
                    "You need to provide Superposition Model parameters and ligand positions") != std::string::npos);

        DEWindow search(*fixture.window, *fit, false);
        QCOMPARE(search.parameterTable().rowCount(), static_cast<int>(kFreeNames.size()));
        const struct {
            DESettingId id;
            const char* text;
            const char* refusal;
        } refusals[] = {{DESettingId::Parents, "3", "Value of NP (No. of Parents) should be greater than 4"},
                        {DESettingId::Cr, "1.5", "Positive and <=1 value of CR is needed!"},
                        {DESettingId::MaxIterations, "0", "Positive value of Max Iteration is needed!"}};
        for (const auto& refusal : refusals) {
            DEWindow window(*fixture.window, *fit, false);
            window.setSetting(refusal.id, refusal.text);
            QVERIFY(!window.start());
            QVERIFY2(fixture.asker.messages().back().find(refusal.refusal) != std::string::npos, refusal.text);
        }
        search.setSetting(DESettingId::Parents, "8");
        search.setSetting(DESettingId::MaxIterations, "3");
        search.setSetting(DESettingId::Sd, "1e-12");
        search.setSetting(DESettingId::Err, "1e-12");
        search.setSeed(7);
        QVERIFY(search.start());
        QVERIFY(fixture.waitForJob());
        QTest::qWait(20);
        QVERIFY(search.result());
        QCOMPARE(search.chartPoints(), 4);  // generations 0..3
        QVERIFY(search.transferBestSet());
        const auto& best = search.result()->best;
        const auto* f2 = findFitParameter(fit->workspace().parameters, "F2");
        QCOMPARE(f2->finalFit, best[0]);
        QVERIFY(fixture.window->logBook().plainContent().contains("CF Fitting by Differential Evolution Method started on"));

        // Break: "Continue or Cancel DE iteration" answered other than Continue interrupts the search.
        search.setSetting(DESettingId::MaxIterations, "40");
        QVERIFY(search.start());
        search.requestBreak();
        QVERIFY(fixture.waitForJob());
        QTest::qWait(20);
        const auto& messages = fixture.asker.messages();
        QVERIFY(std::any_of(messages.begin(), messages.end(),
                            [](const std::string& m) { return m.find(kDEContinueQuestion) != std::string::npos; }));
        QVERIFY(fixture.window->logBook().plainContent().contains("DE Interrupted"));
        QVERIFY(search.chartPoints() < 41);
    }
};

QTEST_MAIN(FitWindowTest)
#include "test_fit_window.moc"
