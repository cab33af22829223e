#include "app/fit_chart.hpp"

#include <QChart>
#include <QChartView>
#include <QLineSeries>
#include <QScatterSeries>
#include <QVBoxLayout>
#include <QValueAxis>
#include <algorithm>

namespace orvane::app {

namespace {

QChartView* chartView(const QString& title, const QString& xTitle, const QString& yTitle) {
    auto* chart = new QChart;
    chart->setTitle(title);
    auto* x = new QValueAxis;
    x->setTitleText(xTitle);
    auto* y = new QValueAxis;
    y->setTitleText(yTitle);
    chart->addAxis(x, Qt::AlignBottom);
    chart->addAxis(y, Qt::AlignLeft);
    auto* view = new QChartView(chart);
    view->setRenderHint(QPainter::Antialiasing);
    view->setMinimumHeight(200);
    return view;
}

template <typename Series>
Series* addSeries(QChart* chart, const QString& name) {
    auto* series = new Series;
    series->setName(name);
    chart->addSeries(series);
    for (QAbstractAxis* axis : chart->axes()) series->attachAxis(axis);
    return series;
}

void fitAxes(QChart* chart, double xMin, double xMax, double yMin, double yMax) {
    const double xPad = std::max(1.0, 0.03 * (xMax - xMin));
    const double yPad = std::max(1.0, 0.05 * (yMax - yMin));
    chart->axes(Qt::Horizontal).front()->setRange(xMin - xPad, xMax + xPad);
    chart->axes(Qt::Vertical).front()->setRange(yMin - yPad, yMax + yPad);
}

}  // namespace

FitChart::FitChart(QWidget* parent) : QWidget(parent) {
    setWindowTitle("Fit chart");
    comparison_ = chartView("Observed against calculated energies", "Calc.Energy", "Obs.Energy");
    residuals_ = chartView("Residuals", "Obs.Energy", "E_Diff. (Obs. - Calc.)");
    QChart* chart = comparison_->chart();
    diagonal_ = addSeries<QLineSeries>(chart, "Obs. = Calc.");
    fitted_ = addSeries<QScatterSeries>(chart, "fitted levels");
    withheld_ = addSeries<QScatterSeries>(chart, "withheld levels");
    fitted_->setMarkerSize(7);
    withheld_->setMarkerSize(7);
    withheld_->setMarkerShape(QScatterSeries::MarkerShapeRectangle);
    residualSeries_ = addSeries<QScatterSeries>(residuals_->chart(), "E_Diff.");
    residualSeries_->setMarkerSize(7);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(comparison_, 3);
    layout->addWidget(residuals_, 2);
}

void FitChart::showWorkspace(const FitWorkspace& workspace) {
    QList<QPointF> fitted, withheld, residual;
    double low = 0.0, high = 1.0, lowDiff = -1.0, highDiff = 1.0;
    bool first = true;
    for (const ObservedLevel& level : workspace.levels) {
        if (level.stateNumber <= 0) continue;
        const QPointF point(level.calculatedEnergy, level.observedEnergy);
        (level.withheld ? withheld : fitted).append(point);
        residual.append(QPointF(level.observedEnergy, level.energyDifference));
        if (first) {
            low = high = level.observedEnergy;
            lowDiff = highDiff = level.energyDifference;
            first = false;
        }
        low = std::min({low, level.observedEnergy, level.calculatedEnergy});
        high = std::max({high, level.observedEnergy, level.calculatedEnergy});
        lowDiff = std::min(lowDiff, level.energyDifference);
        highDiff = std::max(highDiff, level.energyDifference);
    }
    fitted_->replace(fitted);
    withheld_->replace(withheld);
    diagonal_->replace(QList<QPointF>{{low, low}, {high, high}});
    residualSeries_->replace(residual);
    fitAxes(comparison_->chart(), low, high, low, high);
    fitAxes(residuals_->chart(), low, high, std::min(lowDiff, -1.0), std::max(highDiff, 1.0));
}

int FitChart::fittedPoints() const { return static_cast<int>(fitted_->count()); }
int FitChart::withheldPoints() const { return static_cast<int>(withheld_->count()); }
int FitChart::residualPoints() const { return static_cast<int>(residualSeries_->count()); }

}  // namespace orvane::app
