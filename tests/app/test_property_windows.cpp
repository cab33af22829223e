// The property windows on Er3+:LaF3: the susceptibility chart's curves, axes
// and exports; the state-vector window's g-factor table against the
// properties library; the intensity window's tables and stick spectrum.
#include <QChart>
#include <QScatterSeries>
#include <QTableWidget>
#include <algorithm>
#include <set>

#include "app/intensity_window.hpp"
#include "app/state_vector_window.hpp"
#include "app/susceptibility_chart.hpp"
#include "core/atomic_file.hpp"
#include "desktop_test_support.hpp"
#include "properties/g_factors.hpp"
#include "properties/magnetic_moment.hpp"

using namespace orvane;
using namespace orvane::app;
using namespace orvane::app::testing;

namespace {

// The examples' parameter files copied into the fixture's folder; the Er3+ one.
std::filesystem::path copyExamples(const DesktopFixture& fixture) {
    for (const auto& entry : std::filesystem::directory_iterator(examplesFolder()))
        if (entry.path().extension() == ".par") std::filesystem::copy_file(entry.path(), fixture.scratch(entry.path().filename().string().c_str()));
    return fixture.scratch("Er3plus-LaF3.par");
}

PropertyRun referenceRun(const std::filesystem::path& file) {
    PropertyRunOptions options;
    options.file = file.string();
    NullLogBook log;
    return runForProperties(options, log);
}

}  // namespace

class PropertyWindowsTest : public QObject {
    Q_OBJECT
private slots:
    void susceptibilityChartCurvesAxesMeasuredAndExports() {
        DesktopFixture fixture({"1 300 10"});
        SusceptibilityChart chart(*fixture.window, copyExamples(fixture), 0);
        QVERIFY(fixture.waitForJob());
        QTRY_VERIFY(chart.ready());
        QCOMPARE(chart.seriesCount(), 4);
        chart.setCurveShown(kCurveX, false);
        chart.setCurveShown(kCurveY, false);
        QCOMPARE(chart.seriesCount(), 2);
        QVERIFY(!chart.isLogScale(Qt::Horizontal));
        chart.setLogScale(Qt::Horizontal, true);
        chart.setLogScale(Qt::Vertical, true);
        QVERIFY(chart.isLogScale(Qt::Horizontal) && chart.isLogScale(Qt::Vertical));
        QCOMPARE(chart.axisTitle(Qt::Vertical), QString("Magnetic Susceptibility *1000 (emu/mol)"));
        chart.setGraph(SusceptibilityGraph::InverseChiAgainstT);
        QCOMPARE(chart.axisTitle(Qt::Vertical), QString("Inverse of Magnetic Susceptibility (mol/emu)"));
        QCOMPARE(chart.axisTitle(Qt::Horizontal), QString("Temperature (K)"));

        // The exported table reads back as measured data, one row per temperature.
        const auto exported = fixture.scratch("chi.xlsx");
        QVERIFY(chart.exportTable(exported));
        QCOMPARE(readMeasuredSusceptibility(exported).points.size(), chart.points().size());

        const auto measured = fixture.scratch("measured.csv");
        writeFileAtomically(measured, "Temperature,Average\n2,0.9\n10,0.2\n100,0.03\n");
        QVERIFY(chart.loadMeasured(measured));
        QCOMPARE(chart.seriesCount(), 3);
        auto* scatter = qobject_cast<QScatterSeries*>(chart.chart().series().back());
        QVERIFY(scatter);
        QCOMPARE(scatter->count(), 3);
        // 1/chi of the measured 0.2 emu/mol at 10 K.
        QCOMPARE(scatter->at(1), QPointF(10.0, 5.0));

        chart.resize(640, 480);
        for (const auto& [name, signature] : {std::pair{"chart.png", "\x89PNG"}, std::pair{"chart.svg", "<svg"}}) {
            const auto file = fixture.scratch(name);
            QVERIFY(chart.exportChart(file));
            QVERIFY(readTextFile(file).find(signature) != std::string::npos);
        }
    }

    void gFactorTableIsThatOfThePropertiesLibrary() {
        DesktopFixture fixture;
        const auto file = copyExamples(fixture);
        StateVectorWindow window(*fixture.window, file, 0);
        QVERIFY(fixture.waitForJob());
        QTRY_VERIFY(window.ready());
        QVERIFY(window.calculateGFactors());

        const auto run = referenceRun(file);
        const auto moment = magneticMomentOperator(run.states, run.spinG);
        const auto doublets = pairDoublets(run.states);
        const auto& table = window.gFactorTable();
        QCOMPARE(table.rowCount(), static_cast<int>(doublets.size()));
        QCOMPARE(table.horizontalHeaderItem(3)->text(), QString("gx"));
        for (int row = 0; row < table.rowCount(); ++row) {
            const auto g = doubletGFactors(run.states, moment, doublets[row].first, doublets[row].second);
            QCOMPARE(table.item(row, 0)->data(Qt::UserRole).toDouble(), double(doublets[row].first + 1));
            for (int a = 0; a < 3; ++a) QCOMPARE(table.item(row, 3 + a)->data(Qt::UserRole).toDouble(), g.g[a]);
        }
        const auto workbook = fixture.scratch("g.xlsx");
        QVERIFY(window.exportGFactors(workbook));
        QCOMPARE(Spreadsheet::open(workbook).number(2, 3, "gx"), doubletGFactors(run.states, moment, doublets[0].first, doublets[0].second).g[0]);
        // Spin-Hamiltonian values of listed states: the doublet holding state 4 only.
        const auto holding = std::find_if(doublets.begin(), doublets.end(), [](const auto& d) { return d.first == 3 || d.second == 3; });
        fixture.asker.addAnswer("4");
        QVERIFY(window.askSpinHamiltonian());
        QCOMPARE(table.rowCount(), 1);
        QCOMPARE(table.item(0, 0)->data(Qt::UserRole).toDouble(), double(holding->first + 1));

        QVERIFY(window.showComposition(2));
        const auto saved = fixture.scratch("results.txt");
        QVERIFY(window.saveResults(saved));
        QCOMPARE(QString::fromStdString(readTextFile(saved)), window.resultText() + '\n');
        QVERIFY(window.resultText().contains("Statevector # 2"));
        window.clearResults();
        QVERIFY(window.resultText().isEmpty());

    }

    void intensityTablesHaveOneRowPerFinalLevel() {
        DesktopFixture fixture({"1 2 12", "300"});
        const auto file = copyExamples(fixture);
        IntensityWindow window(*fixture.window, file, 0);
        QVERIFY(fixture.waitForJob());
        QTRY_VERIFY(window.ready());
        window.setJuddOfelt({1.0, 2.0, 3.0});
        QVERIFY(window.calculate());

        const auto run = referenceRun(file);
        std::set<int> finalLevels;
        for (int s = 1; s < 12; ++s) finalLevels.insert(run.states.states[s].level);
        finalLevels.erase(run.states.states[0].level);
        const int rows = static_cast<int>(finalLevels.size());
        QVERIFY(rows > 1);
        QCOMPARE(window.electricTable().rowCount(), rows);
        QCOMPARE(window.magneticTable().rowCount(), rows);
        QCOMPARE(window.electricTable().horizontalHeaderItem(3)->text(), QString("S(ED) calc."));
        QCOMPARE(window.stickCount(), rows);
        window.setOrderByWavelength(true);
        const auto lambda = [&](int row) { return window.electricTable().item(row, 1)->text().toDouble(); };
        for (int row = 1; row < rows; ++row) QVERIFY(lambda(row - 1) <= lambda(row));
        window.setWavelengthAxis(true);
        QCOMPARE(window.stickCount(), rows);
    }
};

QTEST_MAIN(PropertyWindowsTest)
#include "test_property_windows.moc"
