#include "app/susceptibility_chart.hpp"

#include <QActionGroup>
#include <QChart>
#include <QChartView>
#include <QFileDialog>
#include <QLabel>
#include <QLegend>
#include <QLineSeries>
#include <QLogValueAxis>
#include <QMenuBar>
#include <QPainter>
#include <QPointer>
#include <QScatterSeries>
#include <QValueAxis>
#include <QVBoxLayout>
#include <cmath>

#include <fmt/format.h>

#include "app/main_window.hpp"
#include "app/picture_export.hpp"
#include "core/user_error.hpp"
#include "interactive/property_dialogs.hpp"
#include "interactive/property_reports.hpp"

namespace orvane::app {

namespace {

const char* const kCurveNames[] = {"X(x)", "X(y)", "X(z)", "X(Average)"};

// chi in emu/mol as plotted: chi x 1000, or 1/chi in mol/emu.
double plotted(double chi, SusceptibilityGraph graph) {
    return graph == SusceptibilityGraph::InverseChiAgainstT ? 1.0 / chi : 1000.0 * chi;
}
double plottedTemperature(double t, SusceptibilityGraph graph) {
    return graph == SusceptibilityGraph::ChiAgainstInverseT ? 1.0 / t : t;
}

QAbstractAxis* makeAxis(bool log, const QString& title) {
    QAbstractAxis* axis = nullptr;
    if (log) {
        auto* logAxis = new QLogValueAxis;
        logAxis->setBase(10.0);
        logAxis->setLabelFormat("%g");
        axis = logAxis;
    } else {
        auto* linear = new QValueAxis;
        linear->setLabelFormat("%g");
        axis = linear;
    }
    axis->setTitleText(title);
    return axis;
}

}  // namespace

const std::vector<QString>& susceptibilityChartHints() {
    static const std::vector<QString> hints = {
        "You may notice the following options or ways of analysis:",
        "(1) Show different types of curves (susceptibility vs temp or inverse of temp; or  inverse of susceptibility "
        "vs temp) from [View]->[Types of graph].",
        "(2) Change to log scale for either x and/or y axis from [Edit]->[Axis scale].",
        "(3) Show curves for individual components (x, y, z or average) of susceptibility from [View]-[Curves to Show].",
        "(4) Change upper and limit for either x and/or y axis from [Edit]->[Axis Limits].",
        "(6) You may paste graph onto this window but the new graph cannot be edited."};
    return hints;
}

struct SusceptibilityChart::Computed {
    std::vector<SusceptibilityPoint> points;
    Spreadsheet exported;
};

SusceptibilityChart::SusceptibilityChart(MainWindow& main, std::filesystem::path parameterFile, int mode)
    : main_(main), options_(propertyRunOptionsFor(main, parameterFile, mode)) {
    setWindowTitle("Magnetic Susceptibility - " + qtText(parameterFile.filename().string()));
    chart_ = new QChart;
    view_ = new QChartView(chart_);
    view_->setRenderHint(QPainter::Antialiasing);
    auto* layout = new QVBoxLayout(this);
    createMenus();
    layout->addWidget(view_, 1);
    QStringList hints;
    for (const auto& line : susceptibilityChartHints()) {
        hints << line;
        main_.services().log->appendLine(line.toStdString());
    }
    auto* label = new QLabel(hints.join('\n'));
    label->setWordWrap(true);
    layout->addWidget(label);
    // A floating legend keeps its corner of the plot area when the chart is laid out again.
    connect(chart_, &QChart::plotAreaChanged, this, [this] {
        if (!chart_->legend()->isAttachedToChart()) placeLegend();
    });
    rebuild();
    startComputing(true);
}

void SusceptibilityChart::createMenus() {
    auto* bar = new QMenuBar(this);
    layout()->setMenuBar(bar);
    auto* file = bar->addMenu("File");
    file->addAction("Calculate again...", this, [this] { recalculate(); });
    file->addAction("Measured data...", this, [this] {
        const auto path = QFileDialog::getOpenFileName(this, "Measured susceptibility", {}, "Excel or CSV (*.xlsx *.csv);;All Files (*.*)");
        if (!path.isEmpty()) loadMeasured(path.toStdString());
    });
    file->addAction("Export table...", this, [this] {
        const auto path = QFileDialog::getSaveFileName(this, "Export susceptibility", {}, "Excel (*.xlsx)");
        if (!path.isEmpty()) exportTable(path.toStdString());
    });
    file->addAction("Export PNG...", this, [this] { exportAsking("PNG (*.png)"); });
    file->addAction("Export SVG...", this, [this] { exportAsking("SVG (*.svg)"); });

    auto* edit = bar->addMenu("Edit");
    auto* scale = edit->addMenu("Axis scale");
    for (auto axis : {Qt::Horizontal, Qt::Vertical}) {
        auto* action = scale->addAction(axis == Qt::Horizontal ? "Log scale of x axis" : "Log scale of y axis");
        action->setCheckable(true);
        connect(action, &QAction::toggled, this, [this, axis](bool on) { setLogScale(axis, on); });
    }
    edit->addAction("Axis Limits...", this, [this] { askAxisLimits(); });

    auto* view = bar->addMenu("View");
    auto* types = view->addMenu("Types of graph");
    auto* group = new QActionGroup(this);
    const std::pair<const char*, SusceptibilityGraph> graphs[] = {
        {"Susceptibility vs temperature", SusceptibilityGraph::ChiAgainstT},
        {"Susceptibility vs inverse of temperature", SusceptibilityGraph::ChiAgainstInverseT},
        {"Inverse of susceptibility vs temperature", SusceptibilityGraph::InverseChiAgainstT}};
    for (const auto& [text, graph] : graphs) {
        auto* action = types->addAction(text);
        action->setCheckable(true);
        action->setChecked(graph == graph_);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, graph = graph] { setGraph(graph); });
    }
    auto* curves = view->addMenu("Curves to Show");
    for (int c = 0; c < 4; ++c) {
        curveActions_[c] = curves->addAction(kCurveNames[c]);
        curveActions_[c]->setCheckable(true);
        curveActions_[c]->setChecked(true);
        connect(curveActions_[c], &QAction::toggled, this,
                [this, c](bool on) { setCurveShown(static_cast<SusceptibilityCurve>(c), on); });
    }
    auto* legend = view->addMenu("Legend position");
    for (const auto& [code, text] : std::vector<std::pair<int, const char*>>{
             {0, "(0) Top Left"}, {1, "(1) Top"}, {2, "(2) Top Right"}, {3, "(3) Left"}, {4, "(4) Right"},
             {6, "(6) Bottom"}, {8, "(8) Custom"}})
        legend->addAction(text, this, [this, code = code] { setLegendPosition(code, QPointF(80, 60)); });
}

void SusceptibilityChart::startComputing(bool withEngine) {
    auto result = std::make_shared<Computed>();
    Asker* asker = main_.services().asker;
    const PropertyRunOptions options = options_;
    const auto compute = [result, asker, options](const PropertyRun& run, LogBook& log) {
        const auto request = askSusceptibilityTemperatures(*asker);
        if (!request) return;
        const auto grid = temperatureGrid(request->lower, request->upper, request->step);
        auto report = susceptibilityReport(run, grid, std::nullopt, {}, options, log);
        result->points = std::move(report.points);
        result->exported = std::move(report.exported);
    };
    const auto done = [this, result](SharedPropertyRun run) {
        if (!result->points.empty()) exported_ = result->exported;
        computed(std::move(run), result->points);
    };
    if (withEngine) {
        startPropertyJob(main_, this, options_, compute, done);
        return;
    }
    QPointer<SusceptibilityChart> self(this);
    const SharedPropertyRun run = run_;
    main_.startJob("Magnetic Susceptibility", [self, run, compute, done](LogBook& log) {
        compute(*run, log);
        QMetaObject::invokeMethod(
            self.data(), [self, run, done] { if (self) done(run); }, Qt::QueuedConnection);
    });
}

bool SusceptibilityChart::recalculate() {
    if (!run_) return false;
    startComputing(false);
    return true;
}

void SusceptibilityChart::computed(SharedPropertyRun run, const std::vector<SusceptibilityPoint>& points) {
    run_ = std::move(run);
    if (points.empty()) return;
    points_ = points;
    rebuild();
    emit curvesReady();
}

void SusceptibilityChart::setGraph(SusceptibilityGraph graph) {
    graph_ = graph;
    limits_.reset();
    rebuild();
}

void SusceptibilityChart::setCurveShown(SusceptibilityCurve curve, bool shown) {
    shown_[curve] = shown;
    if (curveActions_[curve] && curveActions_[curve]->isChecked() != shown) curveActions_[curve]->setChecked(shown);
    rebuild();
}

void SusceptibilityChart::setLogScale(Qt::Orientation axis, bool log) {
    log_[axis == Qt::Horizontal ? 0 : 1] = log;
    limits_.reset();
    rebuild();
}

bool SusceptibilityChart::askAxisLimits() {
    std::string current;
    const auto x = chart_->axes(Qt::Horizontal), y = chart_->axes(Qt::Vertical);
    const auto range = [](QAbstractAxis* axis) -> std::pair<double, double> {
        if (auto* value = qobject_cast<QValueAxis*>(axis)) return {value->min(), value->max()};
        if (auto* log = qobject_cast<QLogValueAxis*>(axis)) return {log->min(), log->max()};
        return {0.0, 1.0};
    };
    if (!x.isEmpty() && !y.isEmpty()) {
        const auto [x0, x1] = range(x.front());
        const auto [y0, y1] = range(y.front());
        current = fmt::format("{:g} {:g} {:g} {:g}", x0, x1, y0, y1);
    }
    const auto limits = orvane::askAxisLimits(*main_.services().asker, current);
    if (!limits) return false;
    limits_ = *limits;
    rebuild();
    return true;
}

void SusceptibilityChart::setLegendPosition(int code, QPointF custom) {
    legendCode_ = code;
    legendCustom_ = custom;
    placeLegend();
}

void SusceptibilityChart::placeLegend() {
    auto* legend = chart_->legend();
    const auto attach = [legend](Qt::Alignment alignment) {
        legend->attachToChart();
        legend->setAlignment(alignment);
    };
    switch (legendCode_) {
        case 1: attach(Qt::AlignTop); return;
        case 3: attach(Qt::AlignLeft); return;
        case 4: attach(Qt::AlignRight); return;
        case 6: attach(Qt::AlignBottom); return;
        default: break;
    }
    // Top left, top right and custom: a legend floating over the plot area.
    legend->detachFromChart();
    legend->setBackgroundVisible(true);
    const QRectF area = chart_->plotArea();
    const QSizeF size(210, 24.0 * (legend->markers().size() + 1));
    QPointF corner = legendCode_ == 8 ? legendCustom_ : area.topLeft() + QPointF(8, 8);
    if (legendCode_ == 2) corner = QPointF(area.right() - size.width() - 8, area.top() + 8);
    legend->setGeometry(QRectF(corner, size));
    legend->update();
}

void SusceptibilityChart::rebuild() {
    chart_->removeAllSeries();
    for (auto* axis : chart_->axes()) {
        chart_->removeAxis(axis);
        delete axis;
    }
    const bool inverseT = graph_ == SusceptibilityGraph::ChiAgainstInverseT;
    auto* x = makeAxis(log_[0], inverseT ? "Inverse of Temperature (1/K)" : "Temperature (K)");
    auto* y = makeAxis(log_[1], graph_ == SusceptibilityGraph::InverseChiAgainstT
                                    ? "Inverse of Magnetic Susceptibility (mol/emu)"
                                    : "Magnetic Susceptibility *1000 (emu/mol)");
    chart_->addAxis(x, Qt::AlignBottom);
    chart_->addAxis(y, Qt::AlignLeft);
    // A logarithmic axis takes positive values only.
    const auto keep = [this](double px, double py) {
        return std::isfinite(px) && std::isfinite(py) && (!log_[0] || px > 0) && (!log_[1] || py > 0);
    };
    const auto add = [&](QXYSeries* series) {
        chart_->addSeries(series);
        series->attachAxis(x);
        series->attachAxis(y);
    };
    for (int c = 0; c < 4 && !points_.empty(); ++c) {
        if (!shown_[c]) continue;
        auto* series = new QLineSeries;
        series->setName(kCurveNames[c]);
        for (const auto& point : points_) {
            const double chi = c == kCurveAverage ? point.average() : point.chi[c];
            const double px = plottedTemperature(point.temperature, graph_), py = plotted(chi, graph_);
            if (keep(px, py)) series->append(px, py);
        }
        add(series);
    }
    if (!measured_.empty()) {
        auto* series = new QScatterSeries;
        series->setName("Measured X(Average)");
        series->setMarkerSize(7);
        for (const auto& point : measured_) {
            const double px = plottedTemperature(point.temperature, graph_), py = plotted(point.average, graph_);
            if (keep(px, py)) series->append(px, py);
        }
        add(series);
    }
    if (limits_) {
        x->setRange((*limits_)[0], (*limits_)[1]);
        y->setRange((*limits_)[2], (*limits_)[3]);
    }
    placeLegend();
}

bool SusceptibilityChart::loadMeasured(const std::filesystem::path& file) {
    auto& asker = *main_.services().asker;
    return showingErrors(asker, [&] {
        auto data = readMeasuredSusceptibility(file);
        if (data.rowsBeyondLimit > 0 && !askContinueWithoutExtraRows(asker, kMeasuredSusceptibilityRowLimit)) return;
        measured_ = std::move(data.points);
        rebuild();
    }) && !measured_.empty();
}

bool SusceptibilityChart::exportTable(const std::filesystem::path& file) {
    if (points_.empty()) return false;
    return showingErrors(*main_.services().asker, [&] { exported_.save(file); });
}

bool SusceptibilityChart::exportChart(const std::filesystem::path& file) {
    return showingErrors(*main_.services().asker, [&] { exportPicture(*view_, file); });
}

void SusceptibilityChart::exportAsking(const QString& filter) {
    const auto path = QFileDialog::getSaveFileName(this, "Export chart", {}, filter);
    if (!path.isEmpty()) exportChart(path.toStdString());
}

int SusceptibilityChart::seriesCount() const { return static_cast<int>(chart_->series().size()); }

bool SusceptibilityChart::isLogScale(Qt::Orientation axis) const {
    const auto axes = chart_->axes(axis);
    return !axes.isEmpty() && axes.front()->type() == QAbstractAxis::AxisTypeLogValue;
}

QString SusceptibilityChart::axisTitle(Qt::Orientation axis) const {
    const auto axes = chart_->axes(axis);
    return axes.isEmpty() ? QString() : axes.front()->titleText();
}

}  // namespace orvane::app
