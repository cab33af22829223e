#include "app/fit_tables_view.hpp"

#include <QHeaderView>

#include "core/text.hpp"

namespace orvane::app {

namespace {

constexpr const char* kOptionToolTip =
    "Options for selecting parameters for fitting: 1=free, 0=fixed, -1=linked with related parameters";

QString number(double value, int decimals) { return QString::number(value, 'f', decimals); }

QTableWidgetItem* fixedItem(const QString& text) {
    auto* item = new QTableWidgetItem(text);
    item->setFlags(item->flags() & ~Qt::ItemIsEditable);
    return item;
}

void prepare(QTableWidget& table, const QStringList& headings, int rows) {
    table.clearContents();
    table.setColumnCount(static_cast<int>(headings.size()));
    table.setHorizontalHeaderLabels(headings);
    table.setRowCount(rows);
}

std::optional<double> readNumber(const QString& text) { return parseNumber(trim(text.toStdString())); }

QString componentName(GComponent component) {
    return component == GComponent::X ? "gx" : component == GComponent::Y ? "gy" : "gz";
}

}  // namespace

QColor labelColour(LabelColour colour) {
    switch (colour) {
    case LabelColour::LightBlue: return QColor(173, 216, 230);
    case LabelColour::Red: return QColor(255, 80, 80);
    case LabelColour::None: break;
    }
    return {};
}

void showParameterRows(QTableWidget& table, const std::vector<FitParameter>& rows) {
    prepare(table, {"Parameter", "Initial", "Previous", "Final_fit", "Option", "Link"}, static_cast<int>(rows.size()));
    table.horizontalHeaderItem(4)->setToolTip(kOptionToolTip);
    for (int r = 0; r < static_cast<int>(rows.size()); ++r) {
        const FitParameter& row = rows[static_cast<std::size_t>(r)];
        table.setItem(r, 0, fixedItem(QString::fromStdString(row.name)));
        table.setItem(r, 1, fixedItem(number(row.initial, 4)));
        table.setItem(r, 2, fixedItem(number(row.previous, 4)));
        table.setItem(r, 3, new QTableWidgetItem(number(row.finalFit, 4)));
        auto* option = new QTableWidgetItem(QString::number(row.option));
        option->setToolTip(kOptionToolTip);
        table.setItem(r, 4, option);
        table.setItem(r, 5, new QTableWidgetItem(
                                row.option == kFitOptionLinked && !row.linkedTo.empty()
                                    ? QString::fromStdString("is related to " + row.linkedTo)
                                    : QString()));
    }
    table.resizeColumnsToContents();
}

void readParameterEdits(const QTableWidget& table, std::vector<FitParameter>& rows) {
    const int count = std::min(table.rowCount(), static_cast<int>(rows.size()));
    for (int r = 0; r < count; ++r) {
        FitParameter& row = rows[static_cast<std::size_t>(r)];
        // A cell shows its value rounded: it is read back only when the user changed it.
        const QString finalText = table.item(r, 3)->text();
        if (const auto value = readNumber(finalText); value && finalText != number(row.finalFit, 4)) row.finalFit = *value;
        if (const auto option = readNumber(table.item(r, 4)->text()); option && *option == std::floor(*option) &&
                                                                      std::abs(*option) <= 32767)
            row.option = static_cast<std::int16_t>(*option);
        QString link = table.item(r, 5) ? table.item(r, 5)->text().trimmed() : QString();
        if (link.startsWith("is related to")) link = link.mid(13).trimmed();
        row.linkedTo = row.option == kFitOptionLinked ? link.toStdString() : std::string();
    }
}

void showLevelRows(QTableWidget& table, const std::vector<ObservedLevel>& levels) {
    prepare(table, {"State#", "State Label", "Obs.Energy", "Calc.Energy", "E_Diff.", "Fit_Err"},
            static_cast<int>(levels.size()));
    for (int r = 0; r < static_cast<int>(levels.size()); ++r) {
        const ObservedLevel& level = levels[static_cast<std::size_t>(r)];
        table.setItem(r, 0, new QTableWidgetItem(level.stateNumber > 0 ? QString::number(level.stateNumber) : "-"));
        auto* label = new QTableWidgetItem(QString::fromStdString(level.stateLabel));
        if (level.colour != LabelColour::None) label->setBackground(labelColour(level.colour));
        if (level.adopted) label->setToolTip("adopted");
        table.setItem(r, 1, label);
        const QString observed = number(level.observedEnergy, 3);
        table.setItem(r, 2, new QTableWidgetItem(level.withheld ? "[" + observed + "]" : observed));
        const bool calculated = level.stateNumber > 0;
        table.setItem(r, 3, fixedItem(calculated ? number(level.calculatedEnergy, 3) : QString()));
        table.setItem(r, 4, fixedItem(calculated ? number(level.energyDifference, 3) : QString()));
        table.setItem(r, 5, fixedItem(level.fitError != 0.0 ? number(level.fitError, 3) : QString()));
    }
    table.resizeColumnsToContents();
}

std::vector<ObservedLevel> readLevelEdits(const QTableWidget& table, const std::vector<ObservedLevel>& levels) {
    std::vector<ObservedLevel> edited;
    for (int r = 0; r < table.rowCount(); ++r) {
        ObservedLevel level = r < static_cast<int>(levels.size()) ? levels[static_cast<std::size_t>(r)] : ObservedLevel{};
        const auto cell = [&](int column) { return table.item(r, column) ? table.item(r, column)->text().trimmed() : QString(); };
        QString energy = cell(2);
        level.withheld = energy.startsWith('[') && energy.endsWith(']');
        if (level.withheld) energy = energy.mid(1, energy.size() - 2);
        const auto value = readNumber(energy);
        if (!value) continue;
        if (energy != number(level.observedEnergy, 3) || r >= static_cast<int>(levels.size())) level.observedEnergy = *value;
        const auto state = readNumber(cell(0));
        level.stateNumber = state && *state >= 0 && *state <= 32767 ? static_cast<int>(*state) : 0;
        const std::string label = cell(1).toStdString();
        if (label != level.stateLabel) level.adopted = false;
        level.stateLabel = label;
        edited.push_back(level);
    }
    return edited;
}

void showGFactorRows(QTableWidget& table, const std::vector<ObservedGFactor>& rows) {
    prepare(table, {"g-factor Label", "Obs.g", "Calc.g", "g_Diff."}, static_cast<int>(rows.size()));
    for (int r = 0; r < static_cast<int>(rows.size()); ++r) {
        const ObservedGFactor& g = rows[static_cast<std::size_t>(r)];
        table.setItem(r, 0, fixedItem(QString("#%1 %2 %3").arg(g.stateNumber).arg(QString::fromStdString(g.label),
                                                                                    componentName(g.component))));
        table.setItem(r, 1, fixedItem(number(g.observed, 4)));
        table.setItem(r, 2, fixedItem(number(g.calculated, 4)));
        table.setItem(r, 3, fixedItem(number(g.difference, 4)));
    }
    table.resizeColumnsToContents();
}

}  // namespace orvane::app
