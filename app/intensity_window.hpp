#pragma once
// Transition intensities of a parameter file's states (docs/properties.md):
// the ED and MD tables from an initial state to a range of final states at a
// temperature, from Judd-Ofelt parameters and the host's refractive index
// given in the window; the Judd-Ofelt fit to a file of measured line
// strengths; and a stick spectrum of the ED line strengths against
// wavenumber or wavelength. The numbers and their texts are those of the
// intensity report (interactive/property_reports.hpp).
#include <QWidget>
#include <array>
#include <filesystem>

#include "app/property_window_support.hpp"
#include "interactive/property_reports.hpp"

class QChart;
class QChartView;
class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QTableWidget;

namespace orvane::app {

class IntensityWindow final : public QWidget {
    Q_OBJECT
public:
    // Starts the engine run (mode 0 real CF, 1 complex CF, 2 free ion) on the worker thread.
    IntensityWindow(MainWindow& main, std::filesystem::path parameterFile, int mode);

    bool ready() const { return run_ != nullptr; }

    // The inputs as the command line takes them: Omega_2,4,6 in 1E-20 cm^2;
    // a host of properties/refractive_index.hpp ("" none) or a constant index; <r^2> in a0^2.
    void setJuddOfelt(const std::array<double, 3>& omega);
    void setRefractiveIndex(const QString& host, double constant);
    void setRadiusSquared(double radiusSquared);

    // Asks the initial state and range, then the temperature, and fills the
    // tables and the stick spectrum; false when cancelled or refused.
    bool calculate();
    // The Judd-Ofelt fit to a file of "initial final S [sigma]" lines.
    bool fitJuddOfelt(const std::filesystem::path& measuredLines);
    // The stick spectrum against wavelength (nm) instead of wavenumber (cm^-1).
    void setWavelengthAxis(bool wavelength);
    // The rows of the tables by "State Number" (false) or by "Wavelength" (true).
    void setOrderByWavelength(bool byWavelength);

    const QTableWidget& electricTable() const { return *edTable_; }
    const QTableWidget& magneticTable() const { return *mdTable_; }
    const std::vector<TransitionLine>& lines() const { return report_.lines; }
    QChart& stickChart() const { return *chart_; }
    int stickCount() const;
    QString reportText() const;

signals:
    void statesReady();

private:
    bool inputsFromFields(IntensityRequest& request);
    void fillTables();
    void rebuildSticks();

    MainWindow& main_;
    PropertyRunOptions options_;
    SharedPropertyRun run_;
    IntensityReport report_{{}, PropertyTable({})};
    bool wavelengthAxis_ = false;
    QLineEdit* omega_ = nullptr;
    QComboBox* host_ = nullptr;
    QComboBox* order_ = nullptr;
    QLineEdit* index_ = nullptr;
    QLineEdit* radius_ = nullptr;
    QTableWidget* edTable_ = nullptr;
    QTableWidget* mdTable_ = nullptr;
    QPlainTextEdit* text_ = nullptr;
    QChart* chart_ = nullptr;
    QChartView* view_ = nullptr;
};

}  // namespace orvane::app
