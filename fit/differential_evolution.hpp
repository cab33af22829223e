#pragma once
// Differential evolution (Storn & Price 1997) over boxes of the free
// parameters: a global search for the parameters that minimise the RMS
// deviation of the observed levels (docs/differential-evolution.md).
//
// Generation 0: every free parameter of every parent is c + (r - 0.5) w
// (c the centre, w the width of its box, r uniform in [0, 1)). Each
// generation builds one trial per parent from the population at the start of
// the generation:
//   ordinary scheme    v = x_r1 + F (x_r2 - x_r3)                     (DE/rand/1)
//   accelerated scheme v = x_i + Lambda (x_best - x_i) + F (x_r1 - x_r2)
// (r1, r2, r3 distinct members other than i), then binomial crossover: from
// a random start index the first parameter always comes from v, each next
// one when a uniform r < CR. A component outside its box is put at a random
// point between the parent's value and the violated limit. The trials are
// evaluated together (on several threads) and a trial replaces its parent
// when its deviation is smaller (a tie keeps the parent).
//
// Randomness: every member's numbers of a generation come from a generator
// seeded by (seed, generation, member), so a run is reproducible bit for bit
// whatever the number of threads.
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/model.hpp"
#include "engine/parameter_set.hpp"
#include "fit/de_settings.hpp"
#include "fit/fit_parameters.hpp"
#include "fit/fit_workspace.hpp"
#include "params/superposition.hpp"

namespace orvane {

// The deviation a member is judged by. Called from several threads at once,
// each with its own workspace.
class DEObjective {
public:
    virtual ~DEObjective() = default;
    // `values`: one per DEParameter row, in order.
    virtual double deviation(const std::vector<double>& values, ModelWorkspace& workspace) const = 0;
};

// Superposition model over fixed ligand positions: the rows "Abar2", "Abar4",
// "Abar6" (intrinsic parameters b_k at r0) and "t2", "t4", "t6" (power laws)
// replace the B(k,q) of the set.
struct DESuperposition {
    std::vector<params::Ligand> ligands;
    double r0 = 0.0;
};

// RMS deviation of the observed (not withheld) levels from the calculated
// ones of a prepared model. Fixed matching: each level's state number.
// Automatic matching: the observed levels in ascending energy each take the
// nearest calculated level (distinct energies) not taken before.
//
// With observed g-factors (crystal-field kinds; fit/g_factor_fit.hpp) the
// deviation is the weighted RMS of energies and g together,
//   WRMS Dev. = sqrt((sum dE^2 + w^2 sum dg^2) / (N_E + N_g)),
// w = gWeight, or when it is 0 the ratio RMS Dev(E) / RMS Dev(g) of the
// initial set (the g deviation at least 1e-3), fixed for the whole search.
class LevelDeviation final : public DEObjective {
public:
    LevelDeviation(std::shared_ptr<const Model> model, const ParameterSet& set, FitKind kind,
                   const std::vector<DEParameter>& parameters, std::vector<ObservedLevel> levels,
                   DELevelMatching matching, std::optional<DESuperposition> superposition = std::nullopt,
                   std::vector<ObservedGFactor> gFactors = {}, double gWeight = 0.0);
    double deviation(const std::vector<double>& values, ModelWorkspace& workspace) const override;
    // The footer's figures for a member.
    DEFinalDeviations finalDeviations(const std::vector<double>& values) const;
    double gWeight() const { return gWeight_; }

    // Least-squares polish of a member of a superposition-model search with
    // fixed level matching: damped Gauss-Newton steps (fit/least_squares_step.hpp)
    // on the searched rows, the derivatives by the chain rule
    //   dE/db_k = sum_q dE/dB(k,q) dB(k,q)/db_k  (likewise t_k),
    // dE/dB(k,q) from the engine (Hellmann-Feynman) and dB(k,q)/db_k, dt_k from
    // params/superposition.hpp; searched free-ion rows by their own
    // derivatives. A step is kept when it lowers the deviation (damping times
    // ten otherwise, at most five trials); the polish ends when a cycle gains
    // less than 1e-6 or after `maxCycles`.
    struct Polish {
        std::vector<double> values;
        double deviation = 0.0;
        int cycles = 0;
    };
    Polish polishSuperposition(std::vector<double> values, int maxCycles = 30) const;
    // The fit table with the values of a member (for the transfer of the best set).
    std::vector<FitParameter> rowsOf(const std::vector<double>& values) const;

private:
    std::shared_ptr<const Model> model_;
    ParameterVector base_;
    std::vector<FitParameter> rows_;
    std::vector<LinkFollower> followers_;
    std::vector<int> rowOfParameter_;      // fit-table row of each DE row, -1 for a superposition row
    std::vector<bool> searched_;           // a DE row with a box to search
    std::vector<int> superpositionIndex_;  // 0..5 (Abar2, Abar4, Abar6, t2, t4, t6) or -1
    std::vector<ObservedLevel> levels_;
    DELevelMatching matching_;
    std::optional<DESuperposition> superposition_;
    int statesNeeded_ = kAllEigenvalues;
    std::vector<ObservedGFactor> gFactors_;
    double gWeight_ = 0.0;

    struct Sums {
        double energies = 0.0, g = 0.0;
        int energyCount = 0, gCount = 0;
    };
    Sums sums(const std::vector<double>& values, ModelWorkspace& workspace) const;
};

struct DEGeneration {
    int iteration = 0;  // 0: the initial parents
    double best = 0.0;  // minimal deviation
    double mean = 0.0;  // mean deviation of the population
    double sd = 0.0;    // standard deviation of the population's deviations
    int updates = 0;
    double updateShare = 0.0;  // updates / NP
    long cumulativeUpdates = 0;
};

enum class DEStop { MaxIterations, StandardDeviation, MinimalDeviation, Interrupted };

struct DEOptions {
    std::uint64_t seed = 0;
    int threads = 1;
    const std::atomic<bool>* stop = nullptr;  // read between generations
    std::function<void(const DEGeneration&)> onGeneration;
};

struct DEResult {
    std::vector<double> best;  // one value per DEParameter row
    double bestDeviation = 0.0;
    std::vector<DEGeneration> history;
    long evaluations = 0;
    DEStop stop = DEStop::MaxIterations;
};

// Throws UserError ("Error in setting Differential Evolution parameter") for
// settings or rows that cannot run (a refused setting, an empty or inverted box).
DEResult runDifferentialEvolution(const std::vector<DEParameter>& parameters, const DESettings& settings,
                                  const DEObjective& objective, const DEOptions& options);

// "**  ** DE - Iteration #n  RMS Dev = 12.345 37.500 %" (the minimal deviation
// and the share of parents replaced), then "Update # " and "Cumulative updates = ".
std::string deIterationLine(const DEGeneration& generation);
// " (SD of RMS Dev < " SD ")", " (minimal RMS Dev < " ERR ")", "DE Interrupted", or empty.
std::string deStopText(DEStop stop, const DESettings& settings);

// A seed from the clock (when no seed is given).
std::uint64_t clockSeed();

}  // namespace orvane
