// LevelDeviation::polishSuperposition (fit/differential_evolution.hpp).
#include <cmath>
#include <map>
#include <set>

#include <Eigen/Dense>

#include "core/user_error.hpp"
#include "fit/differential_evolution.hpp"
#include "fit/least_squares_step.hpp"

namespace orvane {

LevelDeviation::Polish LevelDeviation::polishSuperposition(std::vector<double> values, int maxCycles) const {
    if (!superposition_ || matching_ != DELevelMatching::Fixed)
        throw UserError("Error in running Differential Evolution",
                        "The polish of a superposition-model search needs fixed energy levels");
    // Derivatives wanted: the standard B(k,q) of the model and the searched free-ion rows with their followers.
    std::set<ParameterId> idSet;
    for (const auto& key : model_->setup().keys) {
        if (key.op != CrystalFieldOperator::Standard) continue;
        idSet.insert(crystalFieldParameterId(key.op, key.k, key.q, false));
        if (model_->setup().complex && key.q > 0) idSet.insert(crystalFieldParameterId(key.op, key.k, key.q, true));
    }
    for (std::size_t p = 0; p < values.size(); ++p) {
        if (!searched_[p] || rowOfParameter_[p] < 0) continue;
        idSet.insert(rows_[static_cast<std::size_t>(rowOfParameter_[p])].id);
        for (const auto& follower : followers_)
            if (follower.master == rowOfParameter_[p]) idSet.insert(rows_[static_cast<std::size_t>(follower.row)].id);
    }
    const std::vector<ParameterId> ids(idSet.begin(), idSet.end());
    std::map<ParameterId, Eigen::Index> column;
    for (std::size_t i = 0; i < ids.size(); ++i) column[ids[i]] = static_cast<Eigen::Index>(i);
    std::vector<const ObservedLevel*> fitted;
    std::set<int> states;
    for (const auto& level : levels_)
        if (!level.withheld && level.stateNumber >= 1) {
            fitted.push_back(&level);
            states.insert(level.stateNumber - 1);
        }
    std::vector<int> searchedRows;
    for (std::size_t p = 0; p < values.size(); ++p)
        if (searched_[p]) searchedRows.push_back(static_cast<int>(p));

    ModelWorkspace workspace;
    Polish result{values, deviation(values, workspace), 0};
    double damping = 1e-3;
    for (; result.cycles < maxCycles; ++result.cycles) {
        SolveRequest request;
        request.lowest = statesNeeded_;
        request.derivatives = ids;
        request.derivativeLevels.assign(states.begin(), states.end());
        request.averageDegenerateLevels = true;
        const auto solution = model_->solve(fitParameterVector(base_, rowsOf(result.values)), request, workspace);
        if (solution.status != EigenStatus::Ok) break;
        std::map<int, Eigen::Index> rowOfState;
        for (const int s : states) rowOfState.emplace(s, static_cast<Eigen::Index>(rowOfState.size()));
        params::SuperpositionParameters sm;
        sm.r0 = superposition_->r0;
        for (std::size_t p = 0; p < values.size(); ++p) {
            const int s = superpositionIndex_[p];
            if (s >= 0 && s < 3) sm.bk[static_cast<std::size_t>(s)] = result.values[p];
            if (s >= 3) sm.tk[static_cast<std::size_t>(s - 3)] = result.values[p];
        }
        const auto byIntrinsic = params::superpositionDerivatives(superposition_->ligands, sm);
        Eigen::VectorXd residuals(static_cast<Eigen::Index>(fitted.size()));
        Eigen::MatrixXd jacobian = Eigen::MatrixXd::Zero(residuals.size(), static_cast<Eigen::Index>(searchedRows.size()));
        for (std::size_t l = 0; l < fitted.size(); ++l) {
            const auto li = static_cast<Eigen::Index>(l);
            const int state = fitted[l]->stateNumber - 1;
            if (static_cast<std::size_t>(state) >= solution.levels.size()) return result;
            residuals(li) = fitted[l]->observedEnergy - solution.levels[static_cast<std::size_t>(state)].energy;
            const auto d = solution.derivatives.row(rowOfState.at(state));
            for (std::size_t c = 0; c < searchedRows.size(); ++c) {
                const auto p = static_cast<std::size_t>(searchedRows[c]);
                double& entry = jacobian(li, static_cast<Eigen::Index>(c));
                if (const int s = superpositionIndex_[p]; s >= 0) {
                    const int k = 2 * (s % 3 + 1);
                    const auto& by = s < 3 ? byIntrinsic.byBk : byIntrinsic.byTk;
                    for (const auto& key : model_->setup().keys) {
                        if (key.op != CrystalFieldOperator::Standard || key.k != k) continue;
                        const auto dB = by[static_cast<std::size_t>(key.k)][static_cast<std::size_t>(key.q)];
                        entry += d(column.at(crystalFieldParameterId(key.op, key.k, key.q, false))) * dB.real();
                        if (model_->setup().complex && key.q > 0)
                            entry += d(column.at(crystalFieldParameterId(key.op, key.k, key.q, true))) * dB.imag();
                    }
                    continue;
                }
                const int row = rowOfParameter_[p];
                entry += d(column.at(rows_[static_cast<std::size_t>(row)].id));
                for (const auto& follower : followers_)
                    if (follower.master == row)
                        entry += follower.ratio * d(column.at(rows_[static_cast<std::size_t>(follower.row)].id));
            }
        }
        bool improved = false;
        for (int trial = 0; trial < 5 && !improved; ++trial) {
            const auto step = dampedGaussNewtonStep(jacobian, residuals, damping);
            std::vector<double> candidate = result.values;
            for (std::size_t c = 0; c < searchedRows.size(); ++c)
                candidate[static_cast<std::size_t>(searchedRows[c])] += step.step(static_cast<Eigen::Index>(c));
            const double d = deviation(candidate, workspace);
            if (d < result.deviation) {
                improved = result.deviation - d >= 1e-6;
                result.values = std::move(candidate);
                result.deviation = d;
                damping = std::max(damping / 10.0, 1e-12);
                if (!improved) return result;
            } else {
                damping *= 10.0;
            }
        }
        if (!improved) break;
    }
    return result;
}

}  // namespace orvane
