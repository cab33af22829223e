#include "app/parameter_cells.hpp"

#include <QTableWidget>
#include <functional>
#include <set>

namespace orvane::app {
namespace {
constexpr int kStoredTextRole = Qt::UserRole;
constexpr int kStoredValueRole = Qt::UserRole + 1;
}  // namespace

void setTextItem(QTableWidget& table, int row, int column, const QString& text) {
    table.setItem(row, column, new QTableWidgetItem(text));
}

void setCellItem(QTableWidget& table, int row, int column, const ParameterCell& cell) {
    auto* item = new QTableWidgetItem(QString::fromStdString(cell.text));
    item->setData(kStoredTextRole, QString::fromStdString(cell.text));
    item->setData(kStoredValueRole, cell.value);
    table.setItem(row, column, item);
}

std::string itemText(const QTableWidget& table, int row, int column) {
    const QTableWidgetItem* item = table.item(row, column);
    return item ? item->text().trimmed().toStdString() : std::string();
}

ParameterCell cellOfItem(const QTableWidget& table, int row, int column, const CellReader& reader) {
    const QTableWidgetItem* item = table.item(row, column);
    if (item && item->data(kStoredTextRole).isValid() && item->text() == item->data(kStoredTextRole).toString())
        return {item->text().toStdString(), item->data(kStoredValueRole).toDouble()};
    const std::string text = itemText(table, row, column);
    return {text, reader(text).value_or(0.0)};
}

bool isBlankRow(const QTableWidget& table, int row) {
    for (int column = 0; column < table.columnCount(); ++column)
        if (!itemText(table, row, column).empty()) return false;
    return true;
}

int insertRowAfterCurrent(QTableWidget& table) {
    const int row = table.currentRow() < 0 ? table.rowCount() : table.currentRow() + 1;
    table.insertRow(row);
    return row;
}

void removeSelectedRows(QTableWidget& table) {
    std::set<int, std::greater<>> selected;
    for (const QModelIndex& index : table.selectionModel()->selectedIndexes()) selected.insert(index.row());
    if (selected.empty() && table.currentRow() >= 0) selected.insert(table.currentRow());
    for (int row : selected) table.removeRow(row);
}

}  // namespace orvane::app
