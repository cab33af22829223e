#include "fit/fit_errors.hpp"

#include <cmath>

#include <fmt/format.h>

#include "fit/fit_checks.hpp"
#include "fit/least_squares_step.hpp"

namespace orvane {
namespace {

constexpr std::size_t kErrorWidth = 10;

std::string errorText(double error) {
    const std::string text = std::isfinite(error) ? fmt::format("{:.4f}", error) : std::string();
    return text.empty() || text.size() > kErrorWidth ? std::string("******") : text;
}

double sigmaOf(const FitWorkspace& workspace) {
    return workspace.settings.errorMethod == FitErrorMethod::Discrepancies ? workspace.standardError
                                                                            : workspace.settings.observedEnergyError;
}

}  // namespace

FitErrors computeFitErrors(const FitSession& session) {
    const auto& workspace = session.workspace();
    const auto& evaluation = session.evaluation();
    const auto& freeRows = session.freeRows();
    FitErrors errors;
    errors.parameters.resize(workspace.parameters.size());
    errors.levelErrors.assign(workspace.levels.size(), 0.0);
    if (freeRows.empty() || evaluation.jacobian.rows() == 0) return errors;
    const Eigen::MatrixXd covariance = unitCovariance(evaluation.jacobian);
    const double sigma = sigmaOf(workspace);
    const double inputSigma = workspace.settings.observedEnergyError;
    for (std::size_t c = 0; c < freeRows.size(); ++c) {
        const double unit = std::sqrt(covariance(static_cast<Eigen::Index>(c), static_cast<Eigen::Index>(c)));
        errors.parameters[static_cast<std::size_t>(freeRows[c])] = {sigma * unit, inputSigma * unit, true};
    }
    // Linked rows follow their master (directly or through a chain) by the ratio of their values.
    for (std::size_t i = 0; i < workspace.parameters.size(); ++i) {
        const auto& row = workspace.parameters[i];
        if (row.option != kFitOptionLinked) continue;
        const int master = linkMasterIndex(workspace.parameters, i);
        if (master < 0 || !errors.parameters[static_cast<std::size_t>(master)].moves) continue;
        const auto& masterRow = workspace.parameters[static_cast<std::size_t>(master)];
        const double ratio = masterRow.finalFit != 0.0 ? std::abs(row.finalFit / masterRow.finalFit) : 0.0;
        const auto& m = errors.parameters[static_cast<std::size_t>(master)];
        errors.parameters[i] = {ratio * m.error, ratio * m.inputError, true};
    }
    const Eigen::VectorXd scale = covariance.diagonal().cwiseSqrt();
    errors.correlation = covariance;
    for (Eigen::Index a = 0; a < covariance.rows(); ++a)
        for (Eigen::Index b = 0; b < covariance.cols(); ++b)
            errors.correlation(a, b) = scale(a) > 0 && scale(b) > 0 ? covariance(a, b) / (scale(a) * scale(b)) : 0.0;
    for (std::size_t a = 0; a < evaluation.assignedLevels.size(); ++a) {
        const Eigen::RowVectorXd j = evaluation.allAssignedJacobian.row(static_cast<Eigen::Index>(a));
        errors.levelErrors[static_cast<std::size_t>(evaluation.assignedLevels[a])] =
            sigma * std::sqrt(std::max(0.0, (j * covariance * j.transpose())(0, 0)));
    }
    return errors;
}

void applyLevelErrors(FitWorkspace& workspace, const FitErrors& errors) {
    for (std::size_t i = 0; i < workspace.levels.size() && i < errors.levelErrors.size(); ++i)
        workspace.levels[i].fitError = errors.levelErrors[i];
}

std::vector<std::string> fitErrorReport(const FitSession& session, const FitErrors& errors, bool withCorrelation) {
    const auto& rows = session.workspace().parameters;
    std::vector<std::string> lines{"Parameters      Fitted value and  Error       Error (based on input)"};
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto& e = errors.parameters[i];
        lines.push_back(fmt::format("{:<16}{:>14.4f}  {:>10}  {:>10}  {}", rows[i].name, rows[i].finalFit,
                                    e.moves ? errorText(e.error) : "", e.moves ? errorText(e.inputError) : "",
                                    e.moves ? "(free)" : "(fixed)"));
        const auto part = crystalFieldPartOf(rows[i].id);
        if (!part || part->key.op == CrystalFieldOperator::Standard) continue;
        const auto standard = crystalFieldParameterId(CrystalFieldOperator::Standard, part->key.k, part->key.q,
                                                      part->imaginary);
        for (const auto& b : rows)
            if (b.id == standard && b.finalFit != 0.0)
                lines.push_back(fmt::format("CCF ratio ck: {:.6f}", rows[i].finalFit / b.finalFit));
    }
    if (!withCorrelation || errors.correlation.rows() == 0) return lines;
    lines.push_back("Correlation coefficients between parameters");
    const auto& freeRows = session.freeRows();
    for (Eigen::Index a = 0; a < errors.correlation.rows(); ++a) {
        std::string line = fmt::format("{:<16}", rows[static_cast<std::size_t>(freeRows[static_cast<std::size_t>(a)])].name);
        for (Eigen::Index b = 0; b <= a; ++b) line += fmt::format("{:>8.3f}", errors.correlation(a, b));
        lines.push_back(std::move(line));
    }
    return lines;
}

}  // namespace orvane
