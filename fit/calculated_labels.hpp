#pragma once
// The labels of the calculated states a fit compares with the observed
// levels (docs/fitting-automatch.md): each state is labelled by its largest
// |SL J> multiplet (weight = sum of |c|^2 over MJ), like the result files
// (engine/level_labels.hpp), and carries the crystal quantum number mu of its
// block as the irreducible representation ("1/2", "-3/2", "1", "0";
// docs/conventions.md, Crystal field).
#include <utility>
#include <vector>

#include "engine/level_symmetry.hpp"
#include "engine/model.hpp"
#include "fit/fit_workspace.hpp"

namespace orvane {

struct CalculatedState {
    double energy = 0.0;  // as computed, unit of the parameter set
    StateLabel label;     // of the largest multiplet
    // Every multiplet with a non-zero weight, decreasing weight (the weights
    // sum to 1); each label carries the state's irrep.
    std::vector<std::pair<StateLabel, double>> multiplets;
    bool mixed = false;  // the second-largest multiplet carries more than 10 %
};

// One state per crystal-field level of `model` solved with vectors (real or
// complex), in the order given (ascending energy: state number = index + 1).
// With a site labelling ("/ptgp= n") the irrep is the level's irreducible
// representation (engine/level_symmetry.hpp) instead of mu.
std::vector<CalculatedState> calculatedStates(const Model& model, const std::vector<ModelLevel>& levels,
                                              const SiteLabelling* site = nullptr);

// One state per free-ion level (a J multiplet, ModelSolution::freeIon.levels);
// the irreps are empty.
std::vector<CalculatedState> calculatedStates(const Model& model, const std::vector<FreeIonLevel>& levels);

}  // namespace orvane
