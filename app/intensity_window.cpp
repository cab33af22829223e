#include "app/intensity_window.hpp"

#include <QChart>
#include <QChartView>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QLineSeries>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScatterSeries>
#include <QTabWidget>
#include <QTableWidget>
#include <QValueAxis>
#include <QVBoxLayout>

#include <algorithm>

#include "app/main_window.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "interactive/property_dialogs.hpp"
#include "properties/refractive_index.hpp"

namespace orvane::app {

namespace {

// The columns of kTransitionColumns in the ED and the MD table.
const std::vector<int> kElectricColumns = {0, 1, 2, 3, 4};
const std::vector<int> kMagneticColumns = {0, 1, 2, 5, 6, 7, 8, 9, 10};

QTableWidget* transitionTable(const std::vector<int>& columns) {
    auto* table = new QTableWidget(0, static_cast<int>(columns.size()));
    for (int c = 0; c < static_cast<int>(columns.size()); ++c) {
        auto* head = new QTableWidgetItem(qtText(kTransitionColumns[columns[c]]));
        if (columns[c] == 1 || columns[c] == 2)
            head->setToolTip("Wavelength lambda(nm) or wavenumber k(cm^-1) of absorbed or emitted light");
        if (columns[c] == 3) head->setToolTip("Line strength S(ED) for Electric Dipole transition normally in 1E-20 cm^2");
        table->setHorizontalHeaderItem(c, head);
    }
    return table;
}

// The numbers of a field; UserError naming the field otherwise.
std::vector<double> numbersOf(const QLineEdit& field, const std::string& what, std::size_t count) {
    std::vector<double> numbers;
    for (const auto& text : splitAnswerFields(field.text().toStdString())) {
        const auto value = parseNumber(text);
        if (!value) throw UserError("Transition intensities", what + ": \"" + text + "\" is not a number");
        numbers.push_back(*value);
    }
    if (numbers.size() != count) throw UserError("Transition intensities", what + ": give " + std::to_string(count) + " number(s)");
    return numbers;
}

}  // namespace

IntensityWindow::IntensityWindow(MainWindow& main, std::filesystem::path parameterFile, int mode)
    : main_(main), options_(propertyRunOptionsFor(main, parameterFile, mode)) {
    setWindowTitle("Transition intensities - " + qtText(parameterFile.filename().string()));
    auto* layout = new QVBoxLayout(this);
    auto* inputs = new QFormLayout;
    omega_ = new QLineEdit("0 0 0");
    inputs->addRow("Omega2 Omega4 Omega6 (1E-20 cm^2)", omega_);
    host_ = new QComboBox;
    host_->addItem("");
    for (const auto& host : knownSellmeierHosts()) host_->addItem(qtText(host));
    inputs->addRow("Sellmeier set of the host", host_);
    index_ = new QLineEdit("1");
    inputs->addRow("Constant refractive index", index_);
    radius_ = new QLineEdit("1");
    inputs->addRow("<r^2> (a0^2) for A(EQ)", radius_);
    layout->addLayout(inputs);

    auto* buttons = new QHBoxLayout;
    auto* calculate = new QPushButton("ED/MD Calc.");
    connect(calculate, &QPushButton::clicked, this, [this] { this->calculate(); });
    auto* fit = new QPushButton("Judd-Ofelt fit...");
    connect(fit, &QPushButton::clicked, this, [this] {
        const auto path = QFileDialog::getOpenFileName(this, "Measured line strengths", {}, "All Files (*.*)");
        if (!path.isEmpty()) fitJuddOfelt(path.toStdString());
    });
    auto* wavelength = new QCheckBox("Wavelength");
    connect(wavelength, &QCheckBox::toggled, this, [this](bool on) { setWavelengthAxis(on); });
    buttons->addWidget(calculate);
    buttons->addWidget(fit);
    buttons->addWidget(wavelength);
    order_ = new QComboBox;
    order_->addItems({"State Number", "Wavelength"});
    connect(order_, &QComboBox::currentIndexChanged, this, [this] { if (run_) fillTables(); });
    buttons->addWidget(new QLabel("Order of the lines"));
    buttons->addWidget(order_);
    buttons->addStretch();
    layout->addLayout(buttons);

    auto* tabs = new QTabWidget;
    edTable_ = transitionTable(kElectricColumns);
    mdTable_ = transitionTable(kMagneticColumns);
    text_ = new QPlainTextEdit;
    text_->setReadOnly(true);
    text_->setLineWrapMode(QPlainTextEdit::NoWrap);
    chart_ = new QChart;
    chart_->legend()->hide();
    view_ = new QChartView(chart_);
    tabs->addTab(edTable_, "ED Calculation");
    tabs->addTab(mdTable_, "MD Calculation");
    tabs->addTab(view_, "Stick spectrum");
    tabs->addTab(text_, "Report");
    layout->addWidget(tabs, 1);
    rebuildSticks();
    startPropertyJob(main_, this, options_, {}, [this](SharedPropertyRun run) {
        run_ = std::move(run);
        emit statesReady();
    });
}

void IntensityWindow::setJuddOfelt(const std::array<double, 3>& omega) {
    omega_->setText(QString("%1 %2 %3").arg(omega[0]).arg(omega[1]).arg(omega[2]));
}

void IntensityWindow::setRefractiveIndex(const QString& host, double constant) {
    host_->setCurrentIndex(std::max(0, host_->findText(host, Qt::MatchFixedString)));
    index_->setText(QString::number(constant));
}

void IntensityWindow::setRadiusSquared(double radiusSquared) { radius_->setText(QString::number(radiusSquared)); }

bool IntensityWindow::inputsFromFields(IntensityRequest& request) {
    return showingErrors(*main_.services().asker, [&] {
        const auto omega = numbersOf(*omega_, "Omega2 Omega4 Omega6", 3);
        request.input.omega = {omega[0], omega[1], omega[2]};
        const double index = numbersOf(*index_, "refractive index", 1)[0];
        const double radiusSquared = numbersOf(*radius_, "<r^2>", 1)[0];
        if (!(index > 0.0) || !(radiusSquared > 0.0))
            throw UserError("Transition intensities", "the refractive index and <r^2> must be positive");
        request.input.index = refractiveIndexOf(host_->currentText().toStdString(), {}, index);
        request.input.radiusSquared = radiusSquared;
    });
}

bool IntensityWindow::calculate() {
    auto& asker = *main_.services().asker;
    if (!run_) {
        asker.showMessage("Transition intensities", "The states are still being calculated.");
        return false;
    }
    IntensityRequest request;
    if (!inputsFromFields(request)) return false;
    const auto range = askStateRange(asker, static_cast<int>(numberedStates(*run_).size()));
    if (!range) return false;
    request.temperature = askPopulationTemperature(asker);
    if (!request.temperature) return false;
    MemoryLogBook log;
    const bool done = showingErrors(asker, [&] {
        const auto [first, last] = stateRange(*run_, range->first, range->last);
        report_ = intensityReport(*run_, stateIndex(*run_, range->initial, "initial state#"), first, last, request, log);
    });
    text_->setPlainText(qtText(log.text()));
    if (!done) return false;
    fillTables();
    rebuildSticks();
    return true;
}

void IntensityWindow::fillTables() {
    // The lines by final state (as computed) or by wavelength.
    std::vector<std::size_t> order(report_.lines.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    if (order_->currentIndex() == 1)
        std::stable_sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
            return report_.lines[a].wavelength < report_.lines[b].wavelength;
        });
    const auto fill = [&](QTableWidget& table, const std::vector<int>& columns) {
        table.setRowCount(static_cast<int>(order.size()));
        for (int row = 0; row < table.rowCount(); ++row) {
            const auto cells = transitionCells(*run_, report_.lines[order[row]]);
            for (int c = 0; c < static_cast<int>(columns.size()); ++c)
                table.setItem(row, c, new QTableWidgetItem(qtText(cells[columns[c]]).trimmed()));
        }
        table.resizeColumnsToContents();
    };
    fill(*edTable_, kElectricColumns);
    fill(*mdTable_, kMagneticColumns);
}

void IntensityWindow::setOrderByWavelength(bool byWavelength) { order_->setCurrentIndex(byWavelength ? 1 : 0); }

void IntensityWindow::setWavelengthAxis(bool wavelength) {
    wavelengthAxis_ = wavelength;
    rebuildSticks();
}

void IntensityWindow::rebuildSticks() {
    chart_->removeAllSeries();
    for (auto* axis : chart_->axes()) {
        chart_->removeAxis(axis);
        delete axis;
    }
    auto* x = new QValueAxis;
    x->setTitleText(wavelengthAxis_ ? "lambda /nm" : "k/cm^-1");
    auto* y = new QValueAxis;
    y->setTitleText("S(ED) calc. (1E-20 cm^2)");
    chart_->addAxis(x, Qt::AlignBottom);
    chart_->addAxis(y, Qt::AlignLeft);
    auto* sticks = new QLineSeries;  // down-up-down at each line
    auto* tops = new QScatterSeries;
    tops->setMarkerSize(6);
    double low = 0, high = 1, tallest = 0;
    for (std::size_t i = 0; i < report_.lines.size(); ++i) {
        const auto& line = report_.lines[i];
        const double at = wavelengthAxis_ ? line.wavelength : line.wavenumber;
        sticks->append(at, 0.0);
        sticks->append(at, line.strengthED);
        sticks->append(at, 0.0);
        tops->append(at, line.strengthED);
        low = i == 0 ? at : std::min(low, at);
        high = i == 0 ? at : std::max(high, at);
        tallest = std::max(tallest, line.strengthED);
    }
    for (QXYSeries* series : {static_cast<QXYSeries*>(sticks), static_cast<QXYSeries*>(tops)}) {
        chart_->addSeries(series);
        series->attachAxis(x);
        series->attachAxis(y);
    }
    const double margin = std::max(1.0, 0.05 * (high - low));
    x->setRange(low - margin, high + margin);
    y->setRange(0.0, tallest > 0 ? 1.1 * tallest : 1.0);
}

int IntensityWindow::stickCount() const {
    for (auto* series : chart_->series())
        if (auto* tops = qobject_cast<QScatterSeries*>(series)) return static_cast<int>(tops->count());
    return 0;
}

bool IntensityWindow::fitJuddOfelt(const std::filesystem::path& measuredLines) {
    auto& asker = *main_.services().asker;
    if (!run_) {
        asker.showMessage("Transition intensities", "The states are still being calculated.");
        return false;
    }
    MemoryLogBook log;
    const bool done = showingErrors(asker, [&] {
        const auto lines = readMeasuredLines(measuredLines, static_cast<int>(numberedStates(*run_).size()));
        juddOfeltReport(*run_, lines, log);
    });
    if (!log.lines().empty()) text_->appendPlainText(qtText(log.text()).chopped(1));
    return done;
}

QString IntensityWindow::reportText() const { return text_->toPlainText(); }

}  // namespace orvane::app
