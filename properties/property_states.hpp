#pragma once
// The eigenstates a property calculation works on: energies in cm^-1 and
// coefficients over the |SL J MJ> basis of the configuration the model's
// tables describe (f^n, or f^(14-n) on the conjugate route; the operators of
// properties/ are built for that route, docs/properties.md).
//
// States come in groups that share the basis states their vectors span (a
// crystal-field block; for free-ion multiplets one J block at one MJ), so
// that an operator row can be contracted with every state of a group by one
// matrix product. States are numbered in ascending energy; degenerate states
// (energies within kDegenerateLevelTolerance) form one level.
#include <complex>
#include <string>
#include <utility>
#include <vector>

#include <Eigen/Dense>

#include "engine/level_symmetry.hpp"
#include "engine/j_basis.hpp"
#include "engine/level_labels.hpp"
#include "engine/model.hpp"

namespace orvane {

// Energies closer than this (cm^-1) belong to one level.
inline constexpr double kDegenerateLevelTolerance = 1e-4;

struct StateGroup {
    std::vector<int> basisIndices;   // into PropertyStates::basis.states
    Eigen::MatrixXcd vectors;        // basisIndices.size() x members.size()
    std::vector<int> members;        // state numbers (0-based) of the columns
};

struct PropertyState {
    double energy = 0.0;  // cm^-1, as computed
    int level = 0;        // degenerate level, 0-based, ascending
    int group = 0;
    int column = 0;       // in the group's vectors
    int twiceMu = 0;      // crystal quantum number (2 mu) of its block; 2 MJ for free-ion states
    std::string irrep;    // the level's irrep under the site group ("/ptgp= n"); empty without one
    int multiplet = -1;   // free-ion states: the free-ion level (multiplet) index; -1 otherwise
};

struct PropertyStates {
    int electrons = 0;        // of the actual configuration f^n
    bool conjugate = false;   // the basis and tables are those of f^(14-n)
    bool freeIon = false;     // states are the MJ components of free-ion multiplets
    int fold = 0;             // of the site's main axis; 0 for free-ion states (axial to any order)
    std::vector<EngineTerm> terms;
    JBasis jBasis;
    ResultBasis basis;               // every |SL J MJ> state, by |SL J> state then MJ ascending
    std::vector<int> basisOffsets;   // first index in `basis` of each |SL J> state
    // <term||U(k)||term'> of the actual configuration (k = 2, 4, 6): the
    // conjugate tables' U(k) changes sign for even k (docs/conventions.md).
    std::array<Eigen::MatrixXd, 3> unitTensor;
    std::vector<StateGroup> groups;
    std::vector<PropertyState> states;  // ascending energy
    int levelCount = 0;

    bool kramers() const { return electrons % 2 == 1; }
    int basisIndex(int jState, int twiceM) const {
        return basisOffsets[jState] + (twiceM + basis.states[basisOffsets[jState]].twiceJ) / 2;
    }
    Eigen::MatrixXcd::ConstColXpr vector(int state) const {
        const auto& s = states[state];
        return groups[s.group].vectors.col(s.column);
    }
    // Energy above the lowest state, cm^-1.
    double relativeEnergy(int state) const { return states[state].energy - states.front().energy; }
    std::vector<int> levelMembers(int level) const;
};

// The crystal-field levels of a solve with vectors; `wavenumbersPerUnit`
// converts the parameter set's energy unit to cm^-1. With a site labelling
// each state carries its level's irrep (engine/level_symmetry.hpp).
PropertyStates crystalFieldStates(const Model& model, const ModelSolution& solution, double wavenumbersPerUnit,
                                  const SiteLabelling* site = nullptr);

// The free-ion levels of a solve (FreeIonSolution with vectors), each
// multiplet expanded into its 2J+1 MJ components.
PropertyStates freeIonStates(const Model& model, const FreeIonSolution& solution, double wavenumbersPerUnit);

// States given by their components, e.g. read back from a state-vector file
// written earlier: energy in cm^-1 and (index, coefficient) pairs over the
// |SL J MJ> basis (`basisIndex`), or with `freeIon` over the |SL J> states of
// the model's basis, each such state then expanded into its 2J+1 MJ
// components. Components left out (below a file's minimum) count as zero.
struct ComponentState {
    double energy = 0.0;
    std::vector<std::pair<int, std::complex<double>>> components;
};
PropertyStates statesFromComponents(const Model& model, const std::vector<ComponentState>& given, bool freeIon);

}  // namespace orvane
