#include "app/property_window_support.hpp"

#include <QHeaderView>
#include <QMetaObject>
#include <QPointer>
#include <QTableWidget>

#include "app/main_window.hpp"
#include "core/number_format.hpp"
#include "core/user_error.hpp"

namespace orvane::app {

PropertyRunOptions propertyRunOptionsFor(MainWindow& main, const std::filesystem::path& parameterFile, int mode) {
    PropertyRunOptions options;
    options.file = parameterFile.string();
    options.complex = mode == 1;
    options.freeIon = mode == 2;
    options.tableDirectory = main.services().tableDirectory.string();
    return options;
}

bool startPropertyJob(MainWindow& main, QObject* receiver, const PropertyRunOptions& options,
                      std::function<void(const PropertyRun&, LogBook&)> more, std::function<void(SharedPropertyRun)> done) {
    QPointer<QObject> target(receiver);
    const auto name = qtText(std::filesystem::path(options.file).filename().string());
    return main.startJob(name, [options, target, more, done](LogBook& log) {
        auto run = std::make_shared<PropertyRun>(runForProperties(options, log));
        if (more) more(*run, log);
        QMetaObject::invokeMethod(
            target.data(), [target, done, run] { if (target) done(run); }, Qt::QueuedConnection);
    });
}

bool showingErrors(Asker& asker, const std::function<void()>& work) {
    try {
        work();
        return true;
    } catch (const UserError& error) {
        asker.showMessage(error.title(), error.describe());
    } catch (const std::exception& error) {
        asker.showMessage("Error", error.what());
    }
    return false;
}

void showSheet(QTableWidget& table, const Spreadsheet& sheet) {
    table.clear();
    table.setColumnCount(sheet.columnCount());
    table.setRowCount(std::max(0, sheet.rowCount() - 1));
    for (const auto& [where, cell] : sheet.cells()) {
        const auto [row, column] = where;
        const auto* number = std::get_if<double>(&cell.value);
        const QString text = qtText(number && !cell.format.empty() ? formatNumber(*number, cell.format) : sheet.text(row, column));
        if (row == 0) table.setHorizontalHeaderItem(column, new QTableWidgetItem(text));
        else {
            auto* item = new QTableWidgetItem(text);
            if (number) item->setData(Qt::UserRole, *number);
            table.setItem(row - 1, column, item);
        }
    }
    table.resizeColumnsToContents();
}

}  // namespace orvane::app
