#pragma once
// The differential-evolution window ("Differential Evolution - Free-ion and
// Superposition Model Parameters"): the parameter table with limits, the
// settings with their refusals, a live chart of the best and mean RMS
// deviation per iteration, Break with "Continue or Cancel DE iteration", and
// the transfer of the best set into the fitting workspace it was opened from.
// The search runs on the worker thread (interactive/de_search.hpp). A
// superposition-model search takes its ligands, R0 and starting intrinsic
// parameters from an open superposition-model editor, or the ligands from a
// ligand file.
#include <QMainWindow>
#include <QPointer>
#include <atomic>
#include <memory>
#include <optional>

#include "fit/de_settings.hpp"
#include "fit/differential_evolution.hpp"
#include "fit/fit_workspace.hpp"
#include "params/superposition.hpp"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QLineSeries;
class QChartView;
class QTableWidget;

namespace orvane::app {

class FitWindow;
class MainWindow;

inline constexpr const char* kDEWindowTitle = "Differential Evolution - Free-ion and Superposition Model Parameters";
inline constexpr const char* kDEContinueQuestion = "Continue or Cancel DE iteration";

class DEWindow final : public QMainWindow {
    Q_OBJECT
public:
    // `superposition`: search the intrinsic parameters and power laws over
    // the ligands of a ligand file instead of the crystal-field parameters.
    DEWindow(MainWindow& main, FitWindow& fit, bool superposition);

    // A ligand file (params/ligand_file.hpp) for a superposition search.
    bool loadLigands(const std::filesystem::path& file);
    // Reads the settings fields; the first refusal is shown (title "DE error") and gives std::nullopt.
    std::optional<DESettings> readSettings();
    void setSetting(DESettingId id, const QString& text);
    void setSeed(std::uint64_t seed);
    // Starts the search; false when refused or another job runs.
    bool start();
    // Asks at the next iteration whether to go on ("Continue or Cancel DE iteration").
    void requestBreak() { *breakRequested_ = true; }
    // Copies the best set into the fitting workspace; false before a search ended.
    bool transferBestSet();

    QTableWidget& parameterTable() { return *parameters_; }
    int chartPoints() const;
    const std::optional<DEResult>& result() const { return result_; }

signals:
    void generationShown(int iteration);
    void searchEnded();

private:
    void createLayout();
    std::optional<std::pair<DESuperposition, params::SuperpositionParameters>> openSuperpositionEditor() const;
    void fillParameters();
    std::vector<DEParameter> readParameters() const;
    void showGeneration(const DEGeneration& generation);

    MainWindow& main_;
    QPointer<FitWindow> fit_;
    bool superposition_ = false;
    std::optional<DESuperposition> ligands_;
    std::optional<std::uint64_t> seed_;
    std::shared_ptr<std::atomic<bool>> breakRequested_ = std::make_shared<std::atomic<bool>>(false);
    std::optional<DEResult> result_;
    std::vector<FitParameter> bestRows_;
    bool running_ = false;
    QTableWidget* parameters_ = nullptr;
    std::vector<std::pair<DESettingId, QLineEdit*>> settingFields_;
    QComboBox* scheme_ = nullptr;
    QComboBox* matching_ = nullptr;
    QCheckBox* polish_ = nullptr;
    QChartView* chart_ = nullptr;
    QLineSeries* best_ = nullptr;
    QLineSeries* mean_ = nullptr;
};

}  // namespace orvane::app
