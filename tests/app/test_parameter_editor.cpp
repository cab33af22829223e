// The parameter editor: exact round trip of a parameter file, a run started
// from the editor with its lines reaching the log book while it runs, the
// checks that refuse a save, a normalisation conversion and the free-ion
// question before a crystal-field run.
#include <QTest>
#include <cmath>
#include <filesystem>
#include <functional>
#include <fstream>
#include <sstream>

#include "app/log_book_window.hpp"
#include "app/parameter_editor.hpp"
#include "desktop_test_support.hpp"
#include "core/user_error.hpp"
#include "engine/parameter_file.hpp"

using namespace orvane;
using namespace orvane::app;
using namespace orvane::app::testing;
namespace fs = std::filesystem;

namespace {

std::string fileText(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// The Pr3+ example copied into the fixture's folder and opened in an editor.
ParameterEditor* openExample(DesktopFixture& fixture, fs::path& copy) {
    copy = fixture.scratch("Pr3plus-LaF3.par");
    fs::copy_file(examplesFolder() / "Pr3plus-LaF3.par", copy);
    return fixture.window->openParameterEditor(copy);
}

// The crystal-field row (k, q); a rotation writes every q of a rank.
CrystalFieldRow row(const ParameterSet& set, int k, int q) {
    for (const CrystalFieldRow& each : set.crystalField)
        if (each.k == k && each.q == q) return each;
    return {k, q, {"missing", std::nan("")}, {}};
}

bool anyMessageContains(const ScriptedAsker& asker, const std::string& fragment) {
    for (const std::string& message : asker.messages())
        if (message.find(fragment) != std::string::npos) return true;
    return false;
}

}  // namespace

class ParameterEditorTest : public QObject {
    Q_OBJECT
private slots:
    void loadedFileSavesByteIdentical() {
        DesktopFixture fixture;
        fs::path copy;
        ParameterEditor* editor = openExample(fixture, copy);
        QVERIFY(editor);
        QVERIFY(editor->parameterSet() == readParameterFile(copy));
        const fs::path saved = fixture.scratch("saved.par");
        QVERIFY(editor->saveAs(saved));
        QVERIFY(fileText(saved) == fileText(copy));
        QCOMPARE(editor->windowTitle(), QString::fromStdString("Input - " + saved.string()));
        QCOMPARE(QString::fromStdString(fixture.window->recentFiles().paths().front()), QString::fromStdString(saved.string()));
    }

    // Every readable parameter file of the examples and of the reader's corpus
    // comes back from the fields unchanged (version, labels, sections, fit set-up).
    void everyReadableFileRoundTripsThroughTheFields() {
        DesktopFixture fixture;
        ParameterEditor* editor = fixture.window->openParameterEditor();
        int checked = 0;
        for (const fs::path& folder : {examplesFolder(), fs::path(ORVANE_SOURCE_DIR) / "tests/engine/parameter_corpus"})
            for (const auto& entry : fs::directory_iterator(folder)) {
                if (entry.path().extension() != ".par") continue;
                ParameterSet set;
                try {
                    set = readParameterFile(entry.path());
                } catch (const UserError&) {
                    continue;
                }
                editor->setParameterSet(set);
                QVERIFY2(editor->parameterSet() == set, entry.path().filename().c_str());
                ++checked;
            }
        QVERIFY(checked > 3);  // the corpus contributes besides the three examples
    }

    void realCrystalFieldRunWritesResultsAndStreamsLines() {
        DesktopFixture fixture;
        fs::path copy;
        ParameterEditor* editor = openExample(fixture, copy);
        LogBookWindow& logBook = fixture.window->logBook();
        bool lineWhileRunning = false;
        const auto watch = connect(&logBook, &QTextEdit::textChanged, this, [&] {
            if (fixture.window->jobs().busy()) lineWhileRunning = true;
        });
        QVERIFY(editor->runFromEditor(0));
        QVERIFY(fixture.waitForJob());
        disconnect(watch);
        for (const char* suffix : {".gen", ".ev", ".eng"})
            QVERIFY2(fs::exists(fs::path(copy).replace_extension(suffix)), suffix);
        QVERIFY(logBook.plainContent().contains("Work completed."));
        QVERIFY(lineWhileRunning);
    }

    void saveRefusals_data() {
        QTest::addColumn<QString>("cell");
        QTest::addColumn<int>("fold");
        QTest::addColumn<int>("choice");
        QTest::addColumn<bool>("written");
        QTest::addColumn<QString>("message");
        // The example's point group C2v fixes the fold at 2.
        QTest::newRow("invalid cell") << "abc" << 2 << int(Choice::Yes) << false
                                      << "Invalid crystal field value in entry #1";
        QTest::newRow("fold cancelled") << "-218" << 3 << int(Choice::Cancel) << false
                                        << "should be updated from 3 to 2";
        QTest::newRow("fold updated") << "-218" << 3 << int(Choice::Yes) << true << "should be updated from 3 to 2";
        QTest::newRow("fold kept") << "-218" << 3 << int(Choice::No) << true << "should be updated from 3 to 2";
    }
    void saveRefusals() {
        QFETCH(QString, cell);
        QFETCH(int, fold);
        QFETCH(int, choice);
        QFETCH(bool, written);
        QFETCH(QString, message);
        DesktopFixture fixture({}, {static_cast<Choice>(choice)});
        fs::path copy;
        ParameterEditor* editor = openExample(fixture, copy);
        ParameterSet set = editor->parameterSet();
        set.crystalField[0].re.text = cell.toStdString();
        set.fold = fold;
        editor->setParameterSet(set);
        const fs::path target = fixture.scratch("target.par");
        QCOMPARE(editor->saveAs(target), written);
        QCOMPARE(fs::exists(target), written);
        QVERIFY(anyMessageContains(fixture.asker, message.toStdString()));
        if (written) QCOMPARE(readParameterFile(target).fold, static_cast<Choice>(choice) == Choice::Yes ? 2 : 3);
    }

    void stevensToWybourneConvertsRowsAndConvention() {
        DesktopFixture fixture;
        fs::path copy;
        ParameterEditor* editor = openExample(fixture, copy);
        ParameterSet set = editor->parameterSet();
        set.cfConvention = CfConvention::Stevens;
        editor->setParameterSet(set);
        editor->runCommand(EditorCommand::StevensToWybourne);
        const ParameterSet converted = editor->parameterSet();
        QVERIFY(converted.cfConvention == CfConvention::Wybourne);
        // Stevens A20 = B20 / 2 (lambda(2,0) = 1/2): Wybourne B20 = 2 x -218.
        QCOMPARE(converted.crystalField[0].re.value, -436.0);
        // A second conversion from Stevens is refused: the rows are Wybourne now.
        editor->runCommand(EditorCommand::StevensToWybourne);
        QCOMPARE(editor->parameterSet().crystalField[0].re.value, -436.0);
        QVERIFY(anyMessageContains(fixture.asker, "Error in CFP conversion"));
    }

    // Unit commands and a rotation with its recovery, on the rows (2,0) and (2,2).
    void unitAndRotationCommands() {
        using params::EnergyUnitCode;
        struct Case {
            const char* name;
            std::vector<std::string> answers;
            std::vector<Choice> choices;
            std::function<void(ParameterEditor&)> command;
            double b20, b22;
            EnergyUnit unit;
        };
        const double meV = 8.06573;  // cm^-1 per meV
        const Case cases[] = {
            {"cfp cm^-1 -> meV", {}, {}, [](ParameterEditor& e) {
                 e.convertEnergyUnits(EnergyUnitCode::Wavenumber, EnergyUnitCode::MilliElectronVolt,
                                      params::UnitScope::CrystalField);
             }, -218 / meV, -120 / meV, EnergyUnit::MilliElectronVolt},
            {"all cm^-1 -> K, values kept", {}, {Choice::No}, [](ParameterEditor& e) {
                 e.convertEnergyUnits(EnergyUnitCode::Wavenumber, EnergyUnitCode::Kelvin, params::UnitScope::All);
             }, -218, -120, EnergyUnit::Kelvin},
            // A quarter turn about z multiplies B(2,2) by exp(+-i pi) = -1.
            {"rotation by gamma = 90", {"0 0 90"}, {}, [](ParameterEditor& e) {
                 e.runCommand(EditorCommand::RotateByEulerAngles);
             }, -218, 120, EnergyUnit::Wavenumber},
            {"rotation recovered", {"0 0 90"}, {}, [](ParameterEditor& e) {
                 e.runCommand(EditorCommand::RotateByEulerAngles);
                 e.runCommand(EditorCommand::RecoverRotatedRows);
             }, -218, -120, EnergyUnit::Wavenumber},
        };
        for (const Case& c : cases) {
            DesktopFixture fixture(c.answers, c.choices);
            fs::path copy;
            ParameterEditor* editor = openExample(fixture, copy);
            c.command(*editor);
            const ParameterSet set = editor->parameterSet();
            QVERIFY2(std::abs(row(set, 2, 0).re.value - c.b20) < 1e-9, c.name);
            QVERIFY2(std::abs(row(set, 2, 2).re.value - c.b22) < 1e-9, c.name);
            QVERIFY2(std::abs(row(set, 2, 2).im.value) < 1e-9, c.name);
            QVERIFY2(set.switches.energyUnit == c.unit, c.name);
        }
    }

    void freeIonSetAsksBeforeCrystalFieldRun() {
        DesktopFixture fixture({}, {Choice::No});
        fs::path copy;
        ParameterEditor* editor = openExample(fixture, copy);
        ParameterSet set = editor->parameterSet();
        set.crystalField.clear();
        editor->setParameterSet(set);
        QVERIFY(!editor->runFromEditor(0));
        QVERIFY(!fixture.window->jobs().busy());
        QVERIFY(anyMessageContains(fixture.asker, "are for free-ion only. Do you really want to run this calculation "
                                                  "for real CF?"));
        QVERIFY(readParameterFile(copy).crystalField.empty());
    }
};

QTEST_MAIN(ParameterEditorTest)
#include "test_parameter_editor.moc"
