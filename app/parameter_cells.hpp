#pragma once
// Value cells of the editor's grids. An item keeps the cell it was filled
// with (text and number): while its text is unchanged the number comes back
// unrounded (a converted value shows rounded text but keeps full precision);
// an edited text is read again by the caller's reader.
#include <QString>
#include <functional>
#include <optional>
#include <string>

#include "engine/parameter_set.hpp"

class QTableWidget;

namespace orvane::app {

// The number of a typed text, std::nullopt when the text holds none.
using CellReader = std::function<std::optional<double>(const std::string& text)>;

void setTextItem(QTableWidget& table, int row, int column, const QString& text);
void setCellItem(QTableWidget& table, int row, int column, const ParameterCell& cell);
// The trimmed text of an item ("" for a missing item).
std::string itemText(const QTableWidget& table, int row, int column);
// The cell as the item shows it: the cell it was filled with while the text is
// unchanged, else the typed text with the reader's number (0 when unreadable).
ParameterCell cellOfItem(const QTableWidget& table, int row, int column, const CellReader& reader);
bool isBlankRow(const QTableWidget& table, int row);
// Inserts a row below the current one (at the end when none is current); returns its index.
int insertRowAfterCurrent(QTableWidget& table);
// Removes the rows with a selected cell, or the current row.
void removeSelectedRows(QTableWidget& table);

}  // namespace orvane::app
