#include "app/free_ion_grid.hpp"

#include <QHeaderView>

#include "app/parameter_cells.hpp"

namespace orvane::app {

FreeIonGrid::FreeIonGrid(FreeIonReader reader, QWidget* parent)
    : QTableWidget(0, 2, parent), reader_(std::move(reader)) {
    setHorizontalHeaderLabels({"Name", "Value"});
    horizontalHeader()->setStretchLastSection(true);
    verticalHeader()->setDefaultSectionSize(22);
}

void FreeIonGrid::setRows(const std::vector<FreeIonRow>& rows) {
    clearContents();
    setRowCount(static_cast<int>(rows.size()));
    for (int i = 0; i < rowCount(); ++i) {
        const FreeIonRow& row = rows[static_cast<std::size_t>(i)];
        setTextItem(*this, i, 0, QString::fromStdString(row.name));
        setCellItem(*this, i, 1, row.cell);
    }
}

std::vector<FreeIonRow> FreeIonGrid::rows(bool keepBlank) const {
    std::vector<FreeIonRow> rows;
    for (int i = 0; i < rowCount(); ++i) {
        if (!keepBlank && isBlankRow(*this, i)) continue;
        const std::string name = itemText(*this, i, 0);
        const CellReader read = [this, &name](const std::string& text) { return reader_(name, text); };
        rows.push_back({name, cellOfItem(*this, i, 1, read)});
    }
    return rows;
}

void FreeIonGrid::addRow() { setCurrentCell(insertRowAfterCurrent(*this), 0); }

void FreeIonGrid::deleteSelectedRows() { removeSelectedRows(*this); }

}  // namespace orvane::app
