#pragma once
// The magnetic susceptibility of a parameter file's states against
// temperature as a chart (docs/properties.md): chi x 1000 against T or 1/T,
// or 1/chi against T; the components x, y, z and the average as separate
// curves; linear or logarithmic axes; axis limits; the legend's place;
// measured data overlaid as points; export as PNG or SVG. The numbers are
// those of the susceptibility report (interactive/property_reports.hpp),
// computed on the worker thread over the temperatures the user gives.
#include <QWidget>
#include <array>
#include <filesystem>
#include <optional>
#include <vector>

#include "app/property_window_support.hpp"
#include "properties/measured_susceptibility.hpp"
#include "properties/susceptibility.hpp"

class QChart;
class QChartView;
class QLabel;
class QAction;

namespace orvane::app {

enum class SusceptibilityGraph { ChiAgainstT, ChiAgainstInverseT, InverseChiAgainstT };
enum SusceptibilityCurve : int { kCurveX = 0, kCurveY = 1, kCurveZ = 2, kCurveAverage = 3 };

// The lines of the view that list its possibilities.
const std::vector<QString>& susceptibilityChartHints();

class SusceptibilityChart final : public QWidget {
    Q_OBJECT
public:
    // Starts the engine run and, on the worker, asks the temperatures.
    SusceptibilityChart(MainWindow& main, std::filesystem::path parameterFile, int mode);

    // Asks the temperatures again and recomputes on the worker thread.
    bool recalculate();
    bool ready() const { return !points_.empty(); }
    const std::vector<SusceptibilityPoint>& points() const { return points_; }

    void setGraph(SusceptibilityGraph graph);
    void setCurveShown(SusceptibilityCurve curve, bool shown);
    void setLogScale(Qt::Orientation axis, bool log);
    // "Give limits of axes:min  x, max x, min y and max y"; false when cancelled.
    bool askAxisLimits();
    // The legend's place by its code: 0 top left, 1 top, 2 top right, 3 left,
    // 4 right, 6 bottom, 8 custom (at `custom`, in the chart's coordinates).
    void setLegendPosition(int code, QPointF custom = {});
    // Measured X(Average) from .xlsx or CSV, drawn as points.
    bool loadMeasured(const std::filesystem::path& file);
    // The table as a dated spreadsheet ("Temperature/K", "X(Average)", "C(Average)", ...).
    bool exportTable(const std::filesystem::path& file);
    // The chart as PNG or SVG by the file's suffix (app/picture_export.hpp).
    bool exportChart(const std::filesystem::path& file);

    QChart& chart() const { return *chart_; }
    int seriesCount() const;
    bool isLogScale(Qt::Orientation axis) const;
    QString axisTitle(Qt::Orientation axis) const;

signals:
    void curvesReady();

private:
    struct Computed;
    void createMenus();
    void startComputing(bool withEngine);
    void computed(SharedPropertyRun run, const std::vector<SusceptibilityPoint>& points);
    void rebuild();
    void placeLegend();
    void exportAsking(const QString& filter);

    MainWindow& main_;
    PropertyRunOptions options_;
    SharedPropertyRun run_;
    std::vector<SusceptibilityPoint> points_;
    Spreadsheet exported_;
    std::vector<MeasuredSusceptibility> measured_;
    SusceptibilityGraph graph_ = SusceptibilityGraph::ChiAgainstT;
    std::array<bool, 4> shown_{true, true, true, true};
    std::array<bool, 2> log_{false, false};  // x, y
    std::optional<std::array<double, 4>> limits_;
    int legendCode_ = 1;
    QPointF legendCustom_;
    QChart* chart_ = nullptr;
    QChartView* view_ = nullptr;
    std::array<QAction*, 4> curveActions_{};
};

}  // namespace orvane::app
