#pragma once
// Shared by the desktop tests: a main window over a fresh data folder and a
// scripted asker, and waiting for the worker thread's job with the event
// loop running.
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "app/job_runner.hpp"
#include "app/main_window.hpp"
#include "interactive/asker.hpp"

namespace orvane::app::testing {

struct DesktopFixture {
    QTemporaryDir folder;
    ScriptedAsker asker;
    std::unique_ptr<MainWindow> window;

    explicit DesktopFixture(std::vector<std::string> answers = {}, std::vector<Choice> choices = {})
        : asker(std::move(answers), std::move(choices)) {
        open();
    }
    std::filesystem::path dataFolder() const { return folder.filePath("data").toStdString(); }
    std::filesystem::path scratch(const char* name) const { return folder.filePath(name).toStdString(); }
    // A new main window over the same data folder (a restart of the program).
    void open() {
        window.reset();
        window = std::make_unique<MainWindow>(MainWindowSetup{dataFolder(), {}, &asker});
    }
    // Runs the event loop until the job ends (or the timeout passes); true when it ended.
    bool waitForJob(int timeoutMs = 120000) {
        return QTest::qWaitFor([this] { return !window->jobs().busy(); }, timeoutMs);
    }
};

// The source tree's examples folder.
inline std::filesystem::path examplesFolder() { return std::filesystem::path(ORVANE_SOURCE_DIR) / "examples"; }

}  // namespace orvane::app::testing
