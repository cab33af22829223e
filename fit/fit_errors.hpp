#pragma once
// Errors of the fitted parameters and of the calculated levels
// (docs/fitting.md, "Fit errors").
//
// From the Jacobian J of the fitted levels at Final_fit (free parameters as
// columns) the unit-weight covariance is (J^T J)^+ (fit/least_squares_step.hpp).
//   Error                  = sigma sqrt(C_jj), sigma = S.E. of the fit (the method
//                            "Discrepancies between calc. and observed energies")
//                            or the uncertainty of the observed energies ("Experimental
//                            errors in observed energies");
//   Error (based on input) = observedEnergyError sqrt(C_jj).
// A linked parameter takes its master's errors times the ratio; a fixed one
// none. Fit_Err of a level = sigma sqrt(j C j^T), j its row of derivatives.
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "fit/fit_session.hpp"

namespace orvane {

struct ParameterError {
    double error = 0.0;
    double inputError = 0.0;
    bool moves = false;  // free, or linked to a free parameter
};

struct FitErrors {
    std::vector<ParameterError> parameters;  // per row of the parameter table
    Eigen::MatrixXd correlation;             // between the free parameters (session.freeRows())
    std::vector<double> levelErrors;         // per row of the level table (0 when not assigned)
};

FitErrors computeFitErrors(const FitSession& session);

// Fills Fit_Err of the level table.
void applyLevelErrors(FitWorkspace& workspace, const FitErrors& errors);

// "Parameters      Fitted value and  Error       Error (based on input)", one
// line per parameter ("(free)" / "(fixed)", "******" for an error too large to
// print), "CCF ratio ck:" lines for correlation crystal-field rows, and the
// correlation matrix when asked.
std::vector<std::string> fitErrorReport(const FitSession& session, const FitErrors& errors, bool withCorrelation);

}  // namespace orvane
