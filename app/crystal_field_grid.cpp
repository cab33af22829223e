#include "app/crystal_field_grid.hpp"

#include <QComboBox>
#include <QHeaderView>
#include <algorithm>

#include "app/parameter_cells.hpp"
#include "core/text.hpp"
#include "engine/cell_value.hpp"
#include "engine/parameter_file.hpp"

namespace orvane::app {
namespace {

constexpr CorrelationKind kKinds[] = {CorrelationKind::Sccf, CorrelationKind::Lccf, CorrelationKind::OccfA,
                                      CorrelationKind::OccfB};

// Crystal-field cells are read as the file reader reads them: blanks removed.
ParameterCell crystalFieldCell(const QTableWidget& table, int row, int column) {
    ParameterCell cell = cellOfItem(table, row, column,
                                    [](const std::string& text) { return readCellNumber(withoutBlanks(text)); });
    cell.text = withoutBlanks(cell.text);
    return cell;
}

}  // namespace

CrystalFieldGrid::CrystalFieldGrid(Content content, QWidget* parent)
    : QTableWidget(parent), first_(content == Content::CorrelationSections ? 1 : 0) {
    setColumnCount(first_ + 4);
    setValueHeading("Value (cm^-1)");
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    verticalHeader()->setDefaultSectionSize(22);
}

void CrystalFieldGrid::setValueHeading(const QString& heading) {
    QStringList labels;
    if (first_ == 1) labels << "Kind";
    labels << "k" << "q" << heading << "Im " + heading;
    setHorizontalHeaderLabels(labels);
}

void CrystalFieldGrid::setComplexMode(bool complex) {
    complex_ = complex;
    setColumnHidden(column(3), !complex);
}

void CrystalFieldGrid::fillRow(int row, const CrystalFieldRow& values) {
    setTextItem(*this, row, column(0), QString::number(values.k));
    setTextItem(*this, row, column(1), QString::number(values.q));
    setCellItem(*this, row, column(2), values.re);
    setCellItem(*this, row, column(3), values.im);
}

CrystalFieldRow CrystalFieldGrid::rowAt(int row) const {
    CrystalFieldRow values;
    values.k = parseInteger(itemText(*this, row, column(0))).value_or(0);
    values.q = parseInteger(itemText(*this, row, column(1))).value_or(0);
    values.re = crystalFieldCell(*this, row, column(2));
    values.im = crystalFieldCell(*this, row, column(3));
    if (values.im.text.empty()) values.im = {"0", 0.0};
    return values;
}

void CrystalFieldGrid::setRows(const std::vector<CrystalFieldRow>& rows) {
    clearContents();
    setRowCount(static_cast<int>(rows.size()));
    for (int i = 0; i < rowCount(); ++i) fillRow(i, rows[static_cast<std::size_t>(i)]);
}

std::vector<CrystalFieldRow> CrystalFieldGrid::rows() const {
    std::vector<CrystalFieldRow> rows;
    for (int i = 0; i < rowCount(); ++i)
        if (!isBlankRow(*this, i)) rows.push_back(rowAt(i));
    return rows;
}

std::vector<CrystalFieldEntry> CrystalFieldGrid::entries() const {
    std::vector<CrystalFieldEntry> entries;
    for (int i = 0; i < rowCount(); ++i)
        entries.push_back({itemText(*this, i, column(0)), itemText(*this, i, column(1)),
                           itemText(*this, i, column(2)), itemText(*this, i, column(3))});
    return entries;
}

void CrystalFieldGrid::setKind(int row, CorrelationKind kind) {
    auto* box = new QComboBox;
    for (CorrelationKind each : kKinds) box->addItem(QString::fromUtf8(correlationName(each).data(),
                                                                       static_cast<int>(correlationName(each).size())));
    box->setCurrentIndex(static_cast<int>(kind));
    setCellWidget(row, 0, box);
}

CorrelationKind CrystalFieldGrid::kindAt(int row) const {
    const auto* box = qobject_cast<const QComboBox*>(cellWidget(row, 0));
    return box ? kKinds[std::max(0, box->currentIndex())] : CorrelationKind::Sccf;
}

void CrystalFieldGrid::setSections(const std::vector<CorrelationSection>& sections) {
    clearContents();
    setRowCount(0);
    for (const CorrelationSection& section : sections)
        for (const CrystalFieldRow& row : section.rows) {
            const int index = rowCount();
            insertRow(index);
            setKind(index, section.kind);
            fillRow(index, row);
        }
}

std::vector<CorrelationSection> CrystalFieldGrid::sections() const {
    std::vector<CorrelationSection> sections;
    for (int i = 0; i < rowCount(); ++i) {
        if (isBlankRow(*this, i)) continue;
        const CorrelationKind kind = kindAt(i);
        if (sections.empty() || sections.back().kind != kind) sections.push_back({kind, {}});
        sections.back().rows.push_back(rowAt(i));
    }
    return sections;
}

void CrystalFieldGrid::addRow() {
    const int row = insertRowAfterCurrent(*this);
    if (first_ == 1) setKind(row, row > 0 ? kindAt(row - 1) : CorrelationKind::Sccf);
    setCurrentCell(row, column(0));
}

void CrystalFieldGrid::deleteSelectedRows() { removeSelectedRows(*this); }

}  // namespace orvane::app
