#pragma once
// The chart of a fit: observed against calculated energies (with the line
// of perfect agreement) and the residual E_obs - E_calc of each level,
// redrawn after every cycle. Withheld levels are drawn apart.
#include <QWidget>

#include "fit/fit_workspace.hpp"

class QChart;
class QChartView;
class QScatterSeries;
class QLineSeries;

namespace orvane::app {

class FitChart final : public QWidget {
    Q_OBJECT
public:
    explicit FitChart(QWidget* parent = nullptr);
    void showWorkspace(const FitWorkspace& workspace);
    // Points drawn: fitted and withheld levels of the comparison chart.
    int fittedPoints() const;
    int withheldPoints() const;
    int residualPoints() const;

private:
    QChartView* comparison_ = nullptr;
    QChartView* residuals_ = nullptr;
    QScatterSeries* fitted_ = nullptr;
    QScatterSeries* withheld_ = nullptr;
    QLineSeries* diagonal_ = nullptr;
    QScatterSeries* residualSeries_ = nullptr;
};

}  // namespace orvane::app
