#pragma once
// What the property windows (state vectors, susceptibility chart,
// intensities) share: the engine run on the worker thread that gives them
// their states, the result table shown in a QTableWidget, and problems shown
// as messages through the asker.
#include <QObject>
#include <QString>
#include <filesystem>
#include <functional>
#include <memory>

#include "interactive/asker.hpp"
#include "interactive/property_run.hpp"

class QTableWidget;

namespace orvane::app {

class MainWindow;

using SharedPropertyRun = std::shared_ptr<const PropertyRun>;

// The run options of a window: `mode` 0 real crystal field, 1 complex
// crystal field, 2 free ion; the main window's table directory.
PropertyRunOptions propertyRunOptionsFor(MainWindow& main, const std::filesystem::path& parameterFile, int mode);

// Runs the engine on the worker thread as a job named after the file, then
// `more` on the worker with the run and the job's log book (may be empty),
// then `done` on the GUI thread, unless `receiver` is gone by then. False when
// the job could not start.
bool startPropertyJob(MainWindow& main, QObject* receiver, const PropertyRunOptions& options,
                      std::function<void(const PropertyRun&, LogBook&)> more, std::function<void(SharedPropertyRun)> done);

// Runs `work`; a UserError or std::exception becomes a message; false then.
bool showingErrors(Asker& asker, const std::function<void()>& work);

// The sheet's first row as the column heads and the rows below, each number
// in its cell's number format.
void showSheet(QTableWidget& table, const Spreadsheet& sheet);

inline QString qtText(const std::string& text) { return QString::fromStdString(text); }

}  // namespace orvane::app
