#include "fit/differential_evolution.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <thread>

#include <fmt/format.h>

#include "core/blas_threads.hpp"
#include "core/user_error.hpp"
#include "fit/g_factor_fit.hpp"

namespace orvane {
namespace {

constexpr const char* kSettingError = "Error in setting Differential Evolution parameter";
constexpr const char* kRunError = "Error in running Differential Evolution";

std::uint64_t splitMix(std::uint64_t x) {
    x += 0x9E3779B97F4A7C15ULL;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ULL;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBULL;
    return x ^ (x >> 31);
}

// The random numbers of one member in one generation (xoshiro-free: splitmix
// of a counter is enough for DE and is the same on every platform).
class MemberRandom {
public:
    MemberRandom(std::uint64_t seed, int generation, int member)
        : state_(splitMix(seed ^ splitMix((static_cast<std::uint64_t>(generation) << 32) ^
                                          static_cast<std::uint64_t>(member)))) {}
    double uniform() { return static_cast<double>(next() >> 11) * 0x1.0p-53; }  // [0, 1)
    int index(int n) { return static_cast<int>(uniform() * n); }

private:
    std::uint64_t state_;
    std::uint64_t next() { return splitMix(state_++); }
};

const char* const kSuperpositionNames[6] = {"Abar2", "Abar4", "Abar6", "t2", "t4", "t6"};

struct Population {
    std::vector<std::vector<double>> members;
    std::vector<double> deviations;
};

// Evaluates every vector on `threads` threads, each with its own workspace.
std::vector<double> evaluateAll(const std::vector<std::vector<double>>& vectors, const DEObjective& objective,
                                std::vector<ModelWorkspace>& workspaces) {
    std::vector<double> deviations(vectors.size());
    std::atomic<std::size_t> next{0};
    auto work = [&](ModelWorkspace& workspace) {
        for (std::size_t i = next++; i < vectors.size(); i = next++) deviations[i] = objective.deviation(vectors[i], workspace);
    };
    {
        std::vector<std::jthread> pool;
        for (std::size_t t = 1; t < workspaces.size(); ++t) pool.emplace_back(work, std::ref(workspaces[t]));
        work(workspaces[0]);
    }
    return deviations;
}

DEGeneration summary(int iteration, const std::vector<double>& deviations, int updates, long cumulative) {
    DEGeneration g;
    g.iteration = iteration;
    g.best = *std::min_element(deviations.begin(), deviations.end());
    double mean = 0.0;
    for (double d : deviations) mean += d;
    mean /= static_cast<double>(deviations.size());
    g.mean = mean;
    double variance = 0.0;
    for (double d : deviations) variance += (d - mean) * (d - mean);
    g.sd = std::sqrt(variance / static_cast<double>(deviations.size()));
    g.updates = updates;
    g.updateShare = static_cast<double>(updates) / static_cast<double>(deviations.size());
    g.cumulativeUpdates = cumulative;
    return g;
}

// The trial of member i (mutation, crossover, box) from the population.
std::vector<double> trialOf(const Population& population, int i, int bestMember, const std::vector<int>& freeIndex,
                            const std::vector<DEParameter>& parameters, const DESettings& settings,
                            MemberRandom& random) {
    const int np = static_cast<int>(population.members.size());
    int r[3];
    for (int k = 0; k < 3; ++k) {
        do r[k] = random.index(np);
        while (r[k] == i || (k > 0 && r[k] == r[0]) || (k > 1 && r[k] == r[1]));
    }
    const auto& x = population.members[static_cast<std::size_t>(i)];
    std::vector<double> trial = x;
    const int d = static_cast<int>(freeIndex.size());
    const int start = random.index(d);
    for (int k = 0; k < d; ++k) {
        const int j = freeIndex[static_cast<std::size_t>((start + k) % d)];
        const double u = random.uniform();
        if (k > 0 && u >= settings.cr) continue;
        auto member = [&](int m) { return population.members[static_cast<std::size_t>(m)][static_cast<std::size_t>(j)]; };
        const double xj = x[static_cast<std::size_t>(j)];
        double v = settings.scheme == DEScheme::Ordinary
                       ? member(r[0]) + settings.f * (member(r[1]) - member(r[2]))
                       : xj + settings.lambda * (member(bestMember) - xj) + settings.f * (member(r[0]) - member(r[1]));
        const auto& p = parameters[static_cast<std::size_t>(j)];
        if (v < p.lower) v = xj + random.uniform() * (p.lower - xj);
        if (v > p.upper) v = xj + random.uniform() * (p.upper - xj);
        trial[static_cast<std::size_t>(j)] = v;
    }
    return trial;
}

}  // namespace

std::uint64_t clockSeed() {
    return static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
}

LevelDeviation::LevelDeviation(std::shared_ptr<const Model> model, const ParameterSet& set, FitKind kind,
                               const std::vector<DEParameter>& parameters, std::vector<ObservedLevel> levels,
                               DELevelMatching matching, std::optional<DESuperposition> superposition,
                               std::vector<ObservedGFactor> gFactors, double gWeight)
    : model_(std::move(model)),
      levels_(std::move(levels)),
      matching_(matching),
      superposition_(std::move(superposition)),
      gFactors_(model_->setup().crystalField ? std::move(gFactors) : std::vector<ObservedGFactor>{}),
      gWeight_(gWeight) {
    base_ = parameterVectorOf(set, kind == FitKind::ComplexCrystalField).withLinksApplied();
    base_.links.clear();
    rows_ = fitParameterRows(set, kind);
    followers_ = linkFollowers(rows_);
    for (const auto& parameter : parameters) {
        int superpositionIndex = -1;
        for (int s = 0; s < 6; ++s)
            if (parameter.name == kSuperpositionNames[s]) superpositionIndex = s;
        int row = -1;
        for (std::size_t r = 0; r < rows_.size(); ++r)
            if (rows_[r].name == parameter.name) row = static_cast<int>(r);
        if (row < 0 && (superpositionIndex < 0 || !superposition_))
            throw UserError(kSettingError, "The parameter set has no parameter \"" + parameter.name + "\" to vary");
        rowOfParameter_.push_back(row);
        searched_.push_back(!parameter.fixed && parameter.lower < parameter.upper);
        superpositionIndex_.push_back(row < 0 ? superpositionIndex : -1);
    }
    if (matching_ == DELevelMatching::Fixed && gFactors_.empty()) {
        statesNeeded_ = 0;
        for (const auto& level : levels_) statesNeeded_ = std::max(statesNeeded_, level.stateNumber);
    }
    if (!gFactors_.empty() && gWeight_ <= 0.0) {
        std::vector<double> initial;
        for (const auto& parameter : parameters) initial.push_back(parameter.initial);
        ModelWorkspace workspace;
        const auto start = sums(initial, workspace);
        const double rmsEnergies = start.energyCount > 0 ? std::sqrt(start.energies / start.energyCount) : 0.0;
        const double rmsG = start.gCount > 0 ? std::sqrt(start.g / start.gCount) : 0.0;
        gWeight_ = rmsEnergies > 0 ? rmsEnergies / std::max(rmsG, 1e-3) : 1.0;
    }
}

std::vector<FitParameter> LevelDeviation::rowsOf(const std::vector<double>& values) const {
    std::vector<FitParameter> rows = rows_;
    for (std::size_t p = 0; p < values.size(); ++p)
        if (rowOfParameter_[p] >= 0) rows[static_cast<std::size_t>(rowOfParameter_[p])].finalFit = values[p];
    applyLinkFollowers(followers_, rows);
    if (!superposition_) return rows;
    // The B(k,q) rows from the ligands and the intrinsic parameters.
    params::SuperpositionParameters sm;
    sm.r0 = superposition_->r0;
    for (std::size_t p = 0; p < values.size(); ++p) {
        const int s = superpositionIndex_[p];
        if (s >= 0 && s < 3) sm.bk[static_cast<std::size_t>(s)] = values[p];
        if (s >= 3) sm.tk[static_cast<std::size_t>(s - 3)] = values[p];
    }
    const auto bkq = params::superpositionBkq(superposition_->ligands, sm);
    for (auto& row : rows) {
        const auto part = crystalFieldPartOf(row.id);
        if (!part || part->key.op != CrystalFieldOperator::Standard) continue;
        const auto value = bkq[static_cast<std::size_t>(part->key.k)][static_cast<std::size_t>(part->key.q)];
        row.finalFit = part->imaginary ? value.imag() : value.real();
    }
    return rows;
}

double LevelDeviation::deviation(const std::vector<double>& values, ModelWorkspace& workspace) const {
    const auto s = sums(values, workspace);
    const int count = s.energyCount + s.gCount;
    if (!std::isfinite(s.energies)) return s.energies;
    return count > 0 ? std::sqrt((s.energies + gWeight_ * gWeight_ * s.g) / count) : 0.0;
}

DEFinalDeviations LevelDeviation::finalDeviations(const std::vector<double>& values) const {
    ModelWorkspace workspace;
    const auto s = sums(values, workspace);
    DEFinalDeviations d;
    d.rms = s.energyCount > 0 ? std::sqrt(s.energies / s.energyCount) : 0.0;
    d.withGFactors = s.gCount > 0;
    if (!d.withGFactors) return d;
    const double rmsG = std::sqrt(s.g / s.gCount);
    d.weightedEnergies = d.rms;
    d.weightedG = gWeight_ * rmsG;
    d.weightedBoth = std::sqrt((s.energies + gWeight_ * gWeight_ * s.g) / (s.energyCount + s.gCount));
    d.rmsWithWeightedG = std::sqrt(d.rms * d.rms + d.weightedG * d.weightedG);
    return d;
}

LevelDeviation::Sums LevelDeviation::sums(const std::vector<double>& values, ModelWorkspace& workspace) const {
    Sums result;
    std::vector<FitParameter> rows;
    try {
        rows = rowsOf(values);
    } catch (const UserError&) {  // intrinsic parameters the superposition model refuses: no solution
        result.energies = std::numeric_limits<double>::infinity();
        return result;
    }
    const ParameterVector parameters = fitParameterVector(base_, rows);
    SolveRequest request;
    request.freeIon = false;
    request.vectors = !gFactors_.empty();
    request.lowest = statesNeeded_;
    const auto solution = model_->solve(parameters, request, workspace);
    if (solution.status != EigenStatus::Ok) {
        result.energies = std::numeric_limits<double>::infinity();
        return result;
    }
    if (!gFactors_.empty()) {
        const auto g = evaluateGFactors(*model_, solution.levels, gFactors_, {});
        for (std::size_t r = 0; r < gFactors_.size(); ++r)
            if (std::isfinite(g.calculated[r])) {
                const double d = gFactors_[r].observed - g.calculated[r];
                result.g += d * d;
                ++result.gCount;
            }
    }
    std::vector<double> energies;
    if (model_->setup().crystalField)
        for (const auto& level : solution.levels) energies.push_back(level.energy);
    else
        for (const auto& level : solution.freeIon.levels) energies.push_back(level.energy);
    double sum = 0.0;
    int count = 0;
    if (matching_ == DELevelMatching::Fixed) {
        for (const auto& level : levels_) {
            if (level.withheld || level.stateNumber < 1 || static_cast<std::size_t>(level.stateNumber) > energies.size())
                continue;
            const double d = level.observedEnergy - energies[static_cast<std::size_t>(level.stateNumber - 1)];
            sum += d * d;
            ++count;
        }
    } else {
        std::vector<double> distinct;
        for (std::size_t s = 0; s < energies.size(); ++s)
            if (s == 0 || !degenerateEnergies(energies[s - 1], energies[s])) distinct.push_back(energies[s]);
        std::vector<double> observed;
        for (const auto& level : levels_)
            if (!level.withheld) observed.push_back(level.observedEnergy);
        std::sort(observed.begin(), observed.end());
        std::vector<bool> taken(distinct.size(), false);
        for (const double e : observed) {
            std::size_t bestLevel = distinct.size();
            for (std::size_t l = 0; l < distinct.size(); ++l)
                if (!taken[l] && (bestLevel == distinct.size() || std::abs(distinct[l] - e) < std::abs(distinct[bestLevel] - e)))
                    bestLevel = l;
            if (bestLevel == distinct.size()) break;
            taken[bestLevel] = true;
            sum += (e - distinct[bestLevel]) * (e - distinct[bestLevel]);
            ++count;
        }
    }
    result.energies = sum;
    result.energyCount = count;
    return result;
}

DEResult runDifferentialEvolution(const std::vector<DEParameter>& parameters, const DESettings& settings,
                                  const DEObjective& objective, const DEOptions& options) {
    if (const auto problem = deSettingsProblem(settings)) throw UserError(kSettingError, *problem);
    std::vector<int> freeIndex;
    for (std::size_t j = 0; j < parameters.size(); ++j) {
        const auto& p = parameters[j];
        if (!(p.lower <= p.upper) || !std::isfinite(p.lower) || !std::isfinite(p.upper))
            throw UserError(kSettingError, fmt::format("The limits of {} are not a range: {} to {}", p.name, p.lower, p.upper));
        if (!p.fixed && p.lower < p.upper) freeIndex.push_back(static_cast<int>(j));
    }
    if (freeIndex.empty()) throw UserError(kSettingError, "No parameter has a range to search");
    std::vector<ModelWorkspace> workspaces(static_cast<std::size_t>(std::max(1, options.threads)));
    const SingleThreadedBlas blas;  // our threads share the cores, not OpenBLAS's
    const int np = settings.parents;
    Population population;
    for (int i = 0; i < np; ++i) {
        MemberRandom random(options.seed, 0, i);
        std::vector<double> x;
        for (const auto& p : parameters) x.push_back(p.initial);
        for (const int j : freeIndex) {
            const auto& p = parameters[static_cast<std::size_t>(j)];
            x[static_cast<std::size_t>(j)] = 0.5 * (p.lower + p.upper) + (random.uniform() - 0.5) * (p.upper - p.lower);
        }
        population.members.push_back(std::move(x));
    }
    DEResult result;
    population.deviations = evaluateAll(population.members, objective, workspaces);
    result.evaluations = np;
    long cumulative = 0;
    result.history.push_back(summary(0, population.deviations, 0, 0));
    if (options.onGeneration) options.onGeneration(result.history.back());
    for (int iteration = 1;; ++iteration) {
        const auto& last = result.history.back();
        if (last.best < settings.err) {
            result.stop = DEStop::MinimalDeviation;
            break;
        }
        if (iteration > 1 && last.sd < settings.sd) {
            result.stop = DEStop::StandardDeviation;
            break;
        }
        if (iteration > settings.maxIterations) {
            result.stop = DEStop::MaxIterations;
            break;
        }
        if (options.stop && options.stop->load()) {
            result.stop = DEStop::Interrupted;
            break;
        }
        const int bestMember = static_cast<int>(std::min_element(population.deviations.begin(), population.deviations.end()) -
                                                population.deviations.begin());
        std::vector<std::vector<double>> trials;
        for (int i = 0; i < np; ++i) {
            MemberRandom random(options.seed, iteration, i);
            trials.push_back(trialOf(population, i, bestMember, freeIndex, parameters, settings, random));
        }
        const auto deviations = evaluateAll(trials, objective, workspaces);
        result.evaluations += np;
        int updates = 0;
        for (std::size_t i = 0; i < trials.size(); ++i)
            if (deviations[i] < population.deviations[i]) {
                population.members[i] = std::move(trials[i]);
                population.deviations[i] = deviations[i];
                ++updates;
            }
        cumulative += updates;
        result.history.push_back(summary(iteration, population.deviations, updates, cumulative));
        if (options.onGeneration) options.onGeneration(result.history.back());
    }
    const auto best = std::min_element(population.deviations.begin(), population.deviations.end()) - population.deviations.begin();
    result.best = population.members[static_cast<std::size_t>(best)];
    result.bestDeviation = population.deviations[static_cast<std::size_t>(best)];
    if (!std::isfinite(result.bestDeviation)) throw UserError(kRunError, "no member of the population could be solved");
    return result;
}

std::string deIterationLine(const DEGeneration& g) {
    return fmt::format("**  ** DE - Iteration #{}  RMS Dev = {:.3f} {:.3f} %  Update # {}  Cumulative updates = {}",
                       g.iteration, g.best, 100.0 * g.updateShare, g.updates, g.cumulativeUpdates);
}

std::string deStopText(DEStop stop, const DESettings& settings) {
    switch (stop) {
        case DEStop::StandardDeviation: return fmt::format(" (SD of RMS Dev < {})", settings.sd);
        case DEStop::MinimalDeviation: return fmt::format(" (minimal RMS Dev < {})", settings.err);
        case DEStop::Interrupted: return "DE Interrupted";
        case DEStop::MaxIterations: break;
    }
    return {};
}

}  // namespace orvane
