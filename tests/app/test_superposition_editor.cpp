// The superposition-model editor: the cubic ratios of eight ligands at the
// corners of a cube, the answers to R0 = 0, the copy into the parameter editor
// and the data kept for the next editor.
#include <QLineEdit>
#include <QTableWidget>
#include <QtTest>
#include <cmath>
#include <map>

#include "app/parameter_editor.hpp"
#include "app/superposition_editor.hpp"
#include "desktop_test_support.hpp"

using namespace orvane;
using namespace orvane::app;
using namespace orvane::app::testing;

namespace {

// The cube of the examples with b_k = 1000 (so that the printed digits carry
// the ratios to 1e-6) and t_k = 5, 10, 12.
std::unique_ptr<SuperpositionEditor> cubeEditor(DesktopFixture& fixture) {
    auto editor = std::make_unique<SuperpositionEditor>(*fixture.window);
    if (!editor->loadLigandFile(examplesFolder() / "cube-eight-ligands.lig")) return nullptr;
    params::SuperpositionParameters p = editor->parameters();
    p.bk = {1000.0, 1000.0, 1000.0};
    p.tk = {5.0, 10.0, 12.0};
    editor->setParameters(p);
    return editor;
}

// Re B(k,q) by (k, q) as the result table shows them.
std::map<std::pair<int, int>, double> shownBkq(SuperpositionEditor& editor) {
    std::map<std::pair<int, int>, double> values;
    QTableWidget& table = editor.resultTable();
    for (int row = 0; row < table.rowCount(); ++row)
        values[{table.item(row, 0)->text().toInt(), table.item(row, 1)->text().toInt()}] =
            table.item(row, 2)->text().toDouble();
    return values;
}

}  // namespace

class SuperpositionEditorTest : public QObject {
    Q_OBJECT
private slots:
    void cubeGivesTheCubicRatios() {
        DesktopFixture fixture;
        auto editor = cubeEditor(fixture);
        QVERIFY(editor && editor->calculate());
        auto b = shownBkq(*editor);
        QCOMPARE(b.size(), std::size_t(15));
        QVERIFY(std::fabs(b[{4, 0}]) > 100.0);
        QVERIFY(std::fabs(b[{4, 4}] / b[{4, 0}] - std::sqrt(5.0 / 14.0)) < 1e-6);
        QVERIFY(std::fabs(b[{6, 4}] / b[{6, 0}] + std::sqrt(7.0 / 2.0)) < 1e-6);
        for (const auto& [kq, value] : b)
            if (kq.first == 2 || (kq.second != 0 && kq.second != 4)) QVERIFY(std::fabs(value) < 1e-6);
        SuperpositionEditor reopened(*fixture.window);  // the last data comes back from "smdata.txt"
        QCOMPARE(reopened.ligands().size(), std::size_t(8));
        QCOMPARE(reopened.parameters().tk[2], 12.0);
    }

    // Abort computes nothing; Ignore goes on with R0 = 0, where (0/R)^t_k = 0.
    void zeroReferenceDistance_data() {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("computed");
        QTest::newRow("Abort") << int(Choice::Abort) << false;
        QTest::newRow("Ignore") << int(Choice::Ignore) << true;
    }
    void zeroReferenceDistance() {
        QFETCH(int, answer);
        QFETCH(bool, computed);
        DesktopFixture fixture({}, {Choice(answer)});
        auto editor = cubeEditor(fixture);
        editor->referenceDistance().setText("0");
        QCOMPARE(editor->calculate(), computed);
        QVERIFY(fixture.asker.messages().front().find("Reference ligand distance = 0!") != std::string::npos);
        QCOMPARE(editor->resultTable().rowCount(), computed ? 15 : 0);
        for (const auto& [kq, value] : shownBkq(*editor)) QCOMPARE(value, 0.0);
    }

    void copyReplacesTheEditorRows() {
        DesktopFixture fixture;
        ParameterEditor* target = fixture.window->openParameterEditor(examplesFolder() / "Pr3plus-LaF3.par");
        QVERIFY(target && target->parameterSet().crystalField.size() == 9);
        auto editor = cubeEditor(fixture);
        QVERIFY(!editor->copyToParameterEditor());  // nothing calculated yet
        QVERIFY(editor->calculate() && editor->copyToParameterEditor());
        const auto rows = target->parameterSet().crystalField;
        const auto& result = editor->result().rows;
        QCOMPARE(rows.size(), result.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            QCOMPARE(std::pair(rows[i].k, rows[i].q), std::pair(result[i].k, result[i].q));
            QCOMPARE(rows[i].re.value, result[i].re.value);
        }
        QCOMPARE(target->parameterSet().electronCount, 2);  // the rest of the set is kept
    }

    void estimateNeedsLigandsR0AndBkq() {
        DesktopFixture fixture;
        SuperpositionEditor empty(*fixture.window);
        QVERIFY(!empty.estimate());
        auto editor = cubeEditor(fixture);
        editor->referenceDistance().setText("");
        QVERIFY(!editor->estimate());
        editor->referenceDistance().setText("2.36");
        QVERIFY(!editor->estimate());  // no parameter editor: no Bkq
        const auto& messages = fixture.asker.messages();
        QCOMPARE(messages.size(), std::size_t(3));
        QCOMPARE(messages[0], std::string("Error in SM estimation: Need to fill in ligand positions before estimation of SM parameters!"));
        QCOMPARE(messages[1], std::string("Error in SM estimation: Need to provide Reference Distance before estimation of SM parameters!"));
        QCOMPARE(messages[2], std::string("Error in SM estimation: Need to provide CFP values in the Input Form before estimation of SM parameters!"));
    }
};

QTEST_MAIN(SuperpositionEditorTest)
#include "test_superposition_editor.moc"
