#include "fit/fit_session.hpp"

#include <algorithm>
#include <cmath>
#include <set>

#include <fmt/format.h>

#include "core/user_error.hpp"
#include "fit/automatch.hpp"
#include "fit/fit_checks.hpp"
#include "fit/fit_parameters.hpp"
#include "fit/g_factor_fit.hpp"

namespace orvane {
namespace {

constexpr const char* kCriticalFitError = "Critical error in fitting free-ion and complex crystal field parameters";
std::shared_ptr<const Model> buildModel(const ParameterSet& set, FitKind kind,
                                        const std::filesystem::path& tableDirectory, LogBook& log) {
    const auto setup = modelSetupOf(set, kind != FitKind::FreeIon, kind == FitKind::ComplexCrystalField);
    return std::make_shared<const Model>(Model::build(setup, tableDirectory, log));
}

int stateCount(const Model& model) {
    if (!model.setup().crystalField) return static_cast<int>(model.freeIonOperators().basis.states.size());
    int count = 0;
    for (const auto& block : model.blocks()) count += static_cast<int>(block.states.size());
    return count;
}

bool isFitted(const ObservedLevel& level, std::size_t states) {
    return !level.withheld && level.stateNumber >= 1 && static_cast<std::size_t>(level.stateNumber) <= states;
}

// ">>You may fix ..." for a parameter the levels do not determine.
std::string adviceFor(const FitParameter& row) {
    if (const auto part = crystalFieldPartOf(row.id); part && part->key.op == CrystalFieldOperator::Standard) {
        const std::string kq = fmt::format("{}{}", part->key.k, part->key.q);
        return ">>You may fix B" + kq + " with Option=0" + " OR may link B" + kq + " to B2 with Option=-1";
    }
    const auto info = parameterInfo(row.id);
    if (info && info->family == ParameterFamily::ThreeBody && row.name.size() == 2) {
        const std::string i = row.name.substr(1);
        return ">>You may fix t" + i + " with Option=0" + " OR may link t" + i + " to t2 with Option=-1";
    }
    return ">>Need to fix some free parameters by setting their Option to 0 or -1.";
}

}  // namespace

double sumOfSquaredDifferences(const FitWorkspace& workspace, const std::vector<double>& energies) {
    double sum = 0.0;
    for (const auto& level : workspace.levels)
        if (isFitted(level, energies.size())) {
            const double d = level.observedEnergy - energies[static_cast<std::size_t>(level.stateNumber - 1)];
            sum += d * d;
        }
    return sum;
}

FitSession::FitSession(const ParameterSet& set, FitWorkspace workspace, const std::filesystem::path& tableDirectory,
                       LogBook& log)
    : FitSession(set, std::move(workspace), buildModel(set, workspace.kind, tableDirectory, log)) {}

FitSession::FitSession(const ParameterSet& set, FitWorkspace workspace, std::shared_ptr<const Model> model)
    : set_(set), workspace_(std::move(workspace)), model_(std::move(model)) {
    base_ = parameterVectorOf(set_, workspace_.kind == FitKind::ComplexCrystalField).withLinksApplied();
    base_.links.clear();
}

void FitSession::prepareColumns() {
    const auto& rows = workspace_.parameters;
    freeRows_.clear();
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (effectiveOption(rows[i], workspace_.settings.scope) == kFitOptionFree) freeRows_.push_back(static_cast<int>(i));
    followers_ = linkFollowers(rows);
    std::set<ParameterId> ids;
    for (const int row : freeRows_) ids.insert(rows[static_cast<std::size_t>(row)].id);
    for (const auto& follower : followers_)
        if (std::find(freeRows_.begin(), freeRows_.end(), follower.master) != freeRows_.end())
            ids.insert(rows[static_cast<std::size_t>(follower.row)].id);
    derivativeIds_.assign(ids.begin(), ids.end());
}

void FitSession::applyFollowers(std::vector<FitParameter>& rows) const { applyLinkFollowers(followers_, rows); }

ParameterVector FitSession::currentParameters() const { return fitParameterVector(base_, workspace_.parameters); }

bool FitSession::fitsGFactors() const {
    return workspace_.settings.fitGFactors && !workspace_.gFactors.empty() && model_->setup().crystalField;
}

// The Jacobian row over the free parameters of derivatives by derivativeIds_:
// each free parameter's own derivative plus its followers' times their ratios.
Eigen::RowVectorXd FitSession::masterRow(const Eigen::RowVectorXd& byId, const std::vector<FitParameter>& rows) const {
    const auto columns = static_cast<Eigen::Index>(freeRows_.size());
    Eigen::RowVectorXd row = Eigen::RowVectorXd::Zero(columns);
    if (byId.size() == 0) return row;
    auto idColumn = [&](ParameterId id) {
        return static_cast<Eigen::Index>(std::lower_bound(derivativeIds_.begin(), derivativeIds_.end(), id) -
                                         derivativeIds_.begin());
    };
    for (Eigen::Index c = 0; c < columns; ++c) {
        const int master = freeRows_[static_cast<std::size_t>(c)];
        row(c) += byId(idColumn(rows[static_cast<std::size_t>(master)].id));
        for (const auto& follower : followers_)
            if (follower.master == master)
                row(c) += follower.ratio * byId(idColumn(rows[static_cast<std::size_t>(follower.row)].id));
    }
    return row;
}

FitEvaluation FitSession::evaluate(const std::vector<FitParameter>& rows, bool withVectors) {
    const int total = stateCount(*model_);
    const int maxLevels = workspace_.settings.maxLevels;
    const bool gFactors = fitsGFactors();
    // g-factor derivatives sum over every state of a block: the whole spectrum.
    const int retained = maxLevels > 0 && !gFactors ? std::min(total, 4 * maxLevels) : total;
    std::set<int> wanted;
    for (const auto& level : workspace_.levels)
        if (level.stateNumber >= 1 && level.stateNumber <= retained) wanted.insert(level.stateNumber - 1);
    SolveRequest request;
    request.vectors = withVectors || gFactors;
    request.lowest = retained < total ? retained : kAllEigenvalues;
    if (!wanted.empty()) {
        request.derivatives = derivativeIds_;
        request.derivativeLevels.assign(wanted.begin(), wanted.end());
    }
    request.averageDegenerateLevels = true;
    auto solution = model_->solve(fitParameterVector(base_, rows), request, solveWorkspace_);
    if (solution.status != EigenStatus::Ok) throw UserError("Error in fitting", kCriticalFitError);

    FitEvaluation evaluation;
    if (gFactors) {
        const auto g = evaluateGFactors(*model_, solution.levels, workspace_.gFactors, derivativeIds_);
        evaluation.gCalculated = g.calculated;
        evaluation.gJacobian.resize(g.derivatives.rows(), static_cast<Eigen::Index>(freeRows_.size()));
        for (Eigen::Index r = 0; r < g.derivatives.rows(); ++r) evaluation.gJacobian.row(r) = masterRow(g.derivatives.row(r), rows);
    }
    if (model_->setup().crystalField) {
        for (const auto& level : solution.levels) evaluation.energies.push_back(level.energy);
        evaluation.levels = std::move(solution.levels);
    } else {
        for (const auto& level : solution.freeIon.levels) evaluation.energies.push_back(level.energy);
        if (withVectors) evaluation.freeIonLevels = solution.freeIon.levels;
    }
    for (const double e : evaluation.energies)
        if (!std::isfinite(e)) throw UserError("Error in fitting", kCriticalFitError);
    int distinct = -1;
    for (std::size_t s = 0; s < evaluation.energies.size(); ++s) {
        if (s == 0 || !degenerateEnergies(evaluation.energies[s - 1], evaluation.energies[s])) ++distinct;
        if (maxLevels > 0 && distinct >= maxLevels) break;
        evaluation.levelOfState.push_back(distinct);
    }
    evaluation.energies.resize(evaluation.levelOfState.size());
    if (!evaluation.levels.empty()) evaluation.levels.resize(evaluation.levelOfState.size());
    if (!evaluation.freeIonLevels.empty()) evaluation.freeIonLevels.resize(evaluation.levelOfState.size());

    // Row of each wanted state in the solution's derivatives (the mean over its level).
    std::vector<int> rowOfState(evaluation.energies.size(), -1);
    int next = 0;
    for (const int s : wanted) {
        if (static_cast<std::size_t>(s) < rowOfState.size()) rowOfState[static_cast<std::size_t>(s)] = next;
        ++next;
    }
    for (std::size_t i = 0; i < workspace_.levels.size(); ++i) {
        const auto& level = workspace_.levels[i];
        if (level.stateNumber < 1 || static_cast<std::size_t>(level.stateNumber) > evaluation.energies.size()) continue;
        evaluation.assignedLevels.push_back(static_cast<int>(i));
        if (!level.withheld) evaluation.fittedLevels.push_back(static_cast<int>(i));
    }
    const auto columns = static_cast<Eigen::Index>(freeRows_.size());
    evaluation.allAssignedJacobian.resize(static_cast<Eigen::Index>(evaluation.assignedLevels.size()), columns);
    evaluation.jacobian.resize(static_cast<Eigen::Index>(evaluation.fittedLevels.size()), columns);
    for (std::size_t a = 0, f = 0; a < evaluation.assignedLevels.size(); ++a) {
        const auto& level = workspace_.levels[static_cast<std::size_t>(evaluation.assignedLevels[a])];
        const int row = rowOfState[static_cast<std::size_t>(level.stateNumber - 1)];
        const Eigen::RowVectorXd jacobianRow =
            masterRow(row >= 0 ? Eigen::RowVectorXd(solution.derivatives.row(row)) : Eigen::RowVectorXd(), rows);
        evaluation.allAssignedJacobian.row(static_cast<Eigen::Index>(a)) = jacobianRow;
        if (!level.withheld) evaluation.jacobian.row(static_cast<Eigen::Index>(f++)) = jacobianRow;
    }
    return evaluation;
}

void FitSession::refreshLevels(const FitEvaluation& evaluation) {
    double sum = 0.0;
    int fitted = 0;
    for (auto& level : workspace_.levels) {
        const bool assigned =
            level.stateNumber >= 1 && static_cast<std::size_t>(level.stateNumber) <= evaluation.energies.size();
        level.calculatedEnergy = assigned ? evaluation.energies[static_cast<std::size_t>(level.stateNumber - 1)] : 0.0;
        level.energyDifference = assigned ? level.observedEnergy - level.calculatedEnergy : 0.0;
        if (assigned && !level.withheld) {
            sum += level.energyDifference * level.energyDifference;
            ++fitted;
        }
    }
    double gSum = 0.0;
    int gCount = 0;
    for (std::size_t r = 0; r < workspace_.gFactors.size(); ++r) {
        auto& g = workspace_.gFactors[r];
        const bool known = r < evaluation.gCalculated.size() && std::isfinite(evaluation.gCalculated[r]);
        g.calculated = known ? evaluation.gCalculated[r] : 0.0;
        g.difference = known ? g.observed - g.calculated : 0.0;
        if (known) {
            gSum += g.difference * g.difference;
            ++gCount;
        }
    }
    workspace_.rmsDeviationG = gCount > 0 ? std::sqrt(gSum / gCount) : 0.0;
    const int freeCount = static_cast<int>(freeRows_.size());
    workspace_.rmsDeviation = fitted > 0 ? std::sqrt(sum / fitted) : 0.0;
    workspace_.standardError = fitted > 0 ? std::sqrt(sum / std::max(fitted - freeCount, 1)) : 0.0;
}

void FitSession::update(bool withVectors) {
    prepareColumns();
    applyFollowers(workspace_.parameters);
    evaluation_ = evaluate(workspace_.parameters, withVectors);
    refreshLevels(evaluation_);
}

std::vector<std::string> FitSession::undeterminedParameterAdvice(const LeastSquaresStep& step) const {
    std::vector<std::string> lines;
    const auto& rows = workspace_.parameters;
    auto nameOf = [&](int column) { return rows[static_cast<std::size_t>(freeRows_[static_cast<std::size_t>(column)])].name; };
    auto rowOf = [&](int column) -> const FitParameter& {
        return rows[static_cast<std::size_t>(freeRows_[static_cast<std::size_t>(column)])];
    };
    for (const int column : step.zeroColumns) {
        lines.push_back(fmt::format("{} does not move any fitted level: the observed levels cannot determine it.",
                                    nameOf(column)));
        lines.push_back(adviceFor(rowOf(column)));
    }
    for (const auto& set : step.collinearSets) {
        std::string names;
        for (std::size_t i = 0; i < set.size(); ++i) names += (i ? ", " : "") + nameOf(set[i]);
        lines.push_back(fmt::format("{}: the observed levels determine only a combination of these parameters.", names));
        for (const int column : set) lines.push_back(adviceFor(rowOf(column)));
    }
    return lines;
}

double FitSession::gResidualWeight() const {
    const auto& s = workspace_.settings;
    if (s.gWeight > 0 && !s.automaticGWeight) return s.gWeight;
    return workspace_.rmsDeviation > 0 ? workspace_.rmsDeviation / std::max(workspace_.rmsDeviationG, 1e-3) : 1.0;
}

double FitSession::objective(const FitEvaluation& evaluation, double gWeight) const {
    double sum = sumOfSquaredDifferences(workspace_, evaluation.energies);
    for (std::size_t r = 0; r < evaluation.gCalculated.size(); ++r)
        if (std::isfinite(evaluation.gCalculated[r])) {
            const double d = gWeight * (workspace_.gFactors[r].observed - evaluation.gCalculated[r]);
            sum += d * d;
        }
    return sum;
}

FitCycleReport FitSession::runCycle() {
    const auto start = std::chrono::steady_clock::now();
    FitCycleReport report;
    if (workspace_.settings.autoMatch) {
        autoMatchLevels();
        report.solves += 2;
    } else if (freeRows_.empty() || evaluation_.energies.empty()) {
        update();
        ++report.solves;
    }
    // Residuals and Jacobian: the fitted levels, then the weighted g-factors.
    const double gWeight = fitsGFactors() ? gResidualWeight() : 0.0;
    std::vector<int> gRows;
    for (std::size_t r = 0; r < evaluation_.gCalculated.size(); ++r)
        if (std::isfinite(evaluation_.gCalculated[r])) gRows.push_back(static_cast<int>(r));
    const auto levelCount = static_cast<Eigen::Index>(evaluation_.fittedLevels.size());
    Eigen::VectorXd residuals(levelCount + static_cast<Eigen::Index>(gRows.size()));
    Eigen::MatrixXd jacobian(residuals.size(), static_cast<Eigen::Index>(freeRows_.size()));
    jacobian.topRows(levelCount) = evaluation_.jacobian;
    for (Eigen::Index i = 0; i < levelCount; ++i) {
        const auto& level = workspace_.levels[static_cast<std::size_t>(evaluation_.fittedLevels[static_cast<std::size_t>(i)])];
        residuals(i) = level.observedEnergy - level.calculatedEnergy;
    }
    for (std::size_t k = 0; k < gRows.size(); ++k) {
        const auto r = static_cast<std::size_t>(gRows[k]);
        const auto row = levelCount + static_cast<Eigen::Index>(k);
        residuals(row) = gWeight * (workspace_.gFactors[r].observed - evaluation_.gCalculated[r]);
        jacobian.row(row) = gWeight * evaluation_.gJacobian.row(static_cast<Eigen::Index>(r));
    }
    const double before = residuals.squaredNorm();
    auto& rows = workspace_.parameters;
    for (int trial = 0; trial < kStepTrials && !freeRows_.empty(); ++trial) {
        const auto step = dampedGaussNewtonStep(jacobian, residuals, damping_);
        if (trial == 0) report.messages = undeterminedParameterAdvice(step);
        std::vector<FitParameter> candidate = rows;
        for (std::size_t c = 0; c < freeRows_.size(); ++c)
            candidate[static_cast<std::size_t>(freeRows_[c])].finalFit +=
                workspace_.settings.scalingFactor * step.step(static_cast<Eigen::Index>(c));
        applyFollowers(candidate);
        FitEvaluation trialEvaluation = evaluate(candidate, false);
        ++report.solves;
        const double after = objective(trialEvaluation, gWeight);
        if (std::isfinite(after) && after <= before * (1.0 + 1e-12)) {
            for (std::size_t i = 0; i < rows.size(); ++i) candidate[i].previous = rows[i].finalFit;
            rows = std::move(candidate);
            evaluation_ = std::move(trialEvaluation);
            damping_ = std::max(damping_ / 10.0, 1e-12);
            report.stepApplied = true;
            break;
        }
        damping_ = std::min(damping_ * 10.0, 1e12);
    }
    if (!report.stepApplied)
        for (auto& row : rows) row.previous = row.finalFit;
    refreshLevels(evaluation_);
    report.cycle = ++cycles_;
    report.rmsDeviation = workspace_.rmsDeviation;
    report.standardError = workspace_.standardError;
    report.milliseconds = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    return report;
}

std::vector<CalculatedState> FitSession::calculatedStates() {
    update(true);
    const auto site = siteLabellingOf(set_.switches);  // irreps of "/ptgp= n", else mu
    return model_->setup().crystalField ? orvane::calculatedStates(*model_, evaluation_.levels, site ? &*site : nullptr)
                                        : orvane::calculatedStates(*model_, evaluation_.freeIonLevels);
}

int FitSession::autoMatchLevels() {
    const auto states = calculatedStates();
    const auto matches = autoMatch(workspace_.levels, states, workspace_.settings);
    int changed = 0;
    for (std::size_t i = 0; i < matches.size(); ++i) {
        if (matches[i].kind == MatchKind::Kept) continue;
        changed += workspace_.levels[i].stateNumber != matches[i].stateNumber ? 1 : 0;
        workspace_.levels[i].stateNumber = matches[i].stateNumber;
    }
    update();
    return changed;
}

bool FitSession::adoptLabels() {
    const auto states = calculatedStates();
    return adoptCalculatedLabels(workspace_.levels, states);
}

std::vector<std::string> FitSession::fitEavOnly() {
    update();
    double sum = 0.0;
    for (const int i : evaluation_.fittedLevels) sum += workspace_.levels[static_cast<std::size_t>(i)].energyDifference;
    const double shift = evaluation_.fittedLevels.empty() ? 0.0 : sum / static_cast<double>(evaluation_.fittedLevels.size());
    for (auto& row : workspace_.parameters) {
        row.previous = row.finalFit;
        if (row.id == parameter::kEavg) row.finalFit += shift;
    }
    update();
    const auto* eavg = findFitParameter(workspace_.parameters, "EAVG");
    return {fmt::format("Fit for Eav only: EAVG = {:.4f} (moved by {:.4f}), RMS Dev. = {:.4f}",
                        eavg ? eavg->finalFit : 0.0, shift, workspace_.rmsDeviation)};
}

}  // namespace orvane
