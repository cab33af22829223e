#pragma once
// A least-squares fit in progress: the workspace tables and the prepared
// model they are fitted with (built once per fit; every cycle only solves).
//
// One cycle (docs/fitting.md, "One fit cycle"): residuals observed -
// calculated of the observed, not withheld, assigned levels at Final_fit;
// the Jacobian from the engine's analytic derivatives (Hellmann-Feynman; a
// degenerate level takes the mean of its states' derivatives); a damped
// Gauss-Newton step (fit/least_squares_step.hpp) over the free parameters, a
// linked parameter moving with its master by their ratio; the step times
// scalingFactor. The damping adapts as in Marquardt (1963): a step that would
// raise the RMS deviation is retried with ten times the damping (at most
// kStepTrials trials; when none lowers it the parameters stay); an accepted
// step divides the damping by ten.
//
//   RMS Dev. = sqrt(sum d^2 / N),  S.E. = sqrt(sum d^2 / (N - P))
// with N fitted levels and P free parameters (N - P below 1 counts as 1).
//
// g-factors (fit/g_factor_fit.hpp), when "Set g-factors for fitting" is on:
// the residuals w (g_obs - g_calc) join the energy residuals, w = gWeight, or
// when gWeight is 0 (or the automatic weighting is on) w = RMS Dev. / RMS Dev.
// of g at the start of the cycle (the g deviation at least 1e-3): each g
// residual then weighs like an average energy residual.
//   RMS Dev. of g = sqrt(sum (g_obs - g_calc)^2 / N_g).
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "core/log_book.hpp"
#include "engine/model.hpp"
#include "engine/parameter_set.hpp"
#include "fit/calculated_labels.hpp"
#include "fit/fit_parameters.hpp"
#include "fit/fit_workspace.hpp"
#include "fit/least_squares_step.hpp"

namespace orvane {

inline constexpr int kStepTrials = 5;

struct FitCycleReport {
    int cycle = 0;  // 1-based
    double rmsDeviation = 0.0;
    double standardError = 0.0;
    double milliseconds = 0.0;
    bool stepApplied = false;
    int solves = 0;
    std::vector<std::string> messages;  // parameters the levels cannot determine, with advice
};

// The calculated states a fit compares with (the lowest maxLevels different
// levels), with the derivatives of the states of observed levels.
struct FitEvaluation {
    std::vector<double> energies;        // ascending, one per state
    std::vector<int> levelOfState;       // distinct-level number of each state
    std::vector<ModelLevel> levels;      // with vectors when asked
    std::vector<FreeIonLevel> freeIonLevels;  // free-ion model, with vectors when asked
    Eigen::MatrixXd jacobian;            // fitted observed levels x free parameters
    std::vector<int> fittedLevels;       // workspace.levels rows behind the Jacobian rows
    Eigen::MatrixXd allAssignedJacobian; // every assigned level (withheld too) x free parameters
    std::vector<int> assignedLevels;
    std::vector<double> gCalculated;     // per g row, when g-factors are fitted
    Eigen::MatrixXd gJacobian;           // g rows x free parameters
};

class FitSession {
public:
    // Builds the model for the workspace's kind from the set (its switches,
    // fold and crystal-field keys); throws UserError for missing tables.
    FitSession(const ParameterSet& set, FitWorkspace workspace, const std::filesystem::path& tableDirectory,
               LogBook& log);
    FitSession(const ParameterSet& set, FitWorkspace workspace, std::shared_ptr<const Model> model);

    FitWorkspace& workspace() { return workspace_; }
    const FitWorkspace& workspace() const { return workspace_; }
    const Model& model() const { return *model_; }
    std::shared_ptr<const Model> sharedModel() const { return model_; }
    const FitEvaluation& evaluation() const { return evaluation_; }

    // "Update statevectors": runs the engine with Final_fit and refreshes the
    // level table and the RMS figures (with vectors for labels when asked).
    void update(bool withVectors = false);
    // One fit cycle. Throws UserError ("Critical error in fitting free-ion and
    // complex crystal field parameters") when the engine fails.
    FitCycleReport runCycle();
    // The calculated states with their labels (runs the engine with vectors).
    std::vector<CalculatedState> calculatedStates();
    // AutoMatch of state labels (fit/automatch.hpp): re-assigns the state
    // numbers and refreshes the tables; returns the rows whose number changed.
    int autoMatchLevels();
    // Adopts the labels of the assigned states; true for "Alladopted".
    bool adoptLabels();
    // "Fit for Eav only": E_AVG moves by the mean difference of the fitted levels.
    std::vector<std::string> fitEavOnly();

    // Free parameter rows (the Jacobian's columns) and, per row of the table,
    // the master it follows and the ratio (-1 and 0 for an independent row).
    const std::vector<int>& freeRows() const { return freeRows_; }
    // The engine's parameters for the current Final_fit.
    ParameterVector currentParameters() const;
    int cyclesRun() const { return cycles_; }

private:
    ParameterSet set_;
    FitWorkspace workspace_;
    std::shared_ptr<const Model> model_;
    ModelWorkspace solveWorkspace_;
    ParameterVector base_;
    std::vector<int> freeRows_;
    std::vector<LinkFollower> followers_;
    std::vector<ParameterId> derivativeIds_;
    FitEvaluation evaluation_;
    double damping_ = 1e-3;
    int cycles_ = 0;

    bool fitsGFactors() const;
    // The weight of the g residuals in this cycle (gWeight, or automatic).
    double gResidualWeight() const;
    double objective(const FitEvaluation& evaluation, double gWeight) const;
    Eigen::RowVectorXd masterRow(const Eigen::RowVectorXd& byId, const std::vector<FitParameter>& rows) const;
    void prepareColumns();
    void applyFollowers(std::vector<FitParameter>& rows) const;
    FitEvaluation evaluate(const std::vector<FitParameter>& rows, bool withVectors);
    void refreshLevels(const FitEvaluation& evaluation);
    std::vector<std::string> undeterminedParameterAdvice(const LeastSquaresStep& step) const;
};

// Sum of squared differences of the fitted levels for the given calculated energies.
double sumOfSquaredDifferences(const FitWorkspace& workspace, const std::vector<double>& energies);

}  // namespace orvane
