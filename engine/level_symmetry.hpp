#pragma once
// The irreducible representation of each crystal-field level under the site's
// point group (params/point_group.hpp), from the characters of the group's
// elements on the level's degenerate eigenspace.
//
// For an element g (SU(2) lift U, improper or not) the character is
// chi(g) = sum_i <v_i| D(g) |v_i> over orthonormal vectors v_i of the level,
// where D(g) acts on each |SL J MJ> multiplet by the Wigner matrix D(J)(U)
// (intermediate coupling and J mixing included: the vectors are over the full
// |SL J MJ> basis), times (-1)^n for an improper element (parity of f^n), or
// times 1 in the proper-rotation labelling. The characters are reduced over
// the group's character table. A level is one irrep, or the pair that time
// reversal joins (an irrep and its complex conjugate, "G5,6"; two copies of a
// real spinor irrep, "G6" of C3); anything else (accidental degeneracy, or a
// parameter set of lower symmetry than the group) is flagged "?".
#include <optional>
#include <string>
#include <vector>

#include "engine/energy_levels.hpp"
#include "engine/level_labels.hpp"
#include "params/point_group.hpp"

namespace orvane {

// Values of "/IRnotation= n".
enum class IrNotation { Koster = 1, Mulliken = 2, UserDefined = 3, CrystalQuantumNumber = 4 };

struct LevelSymmetry {
    int first = 0, count = 0;            // the level's members in the ascending levels
    std::vector<double> multiplicities;  // per irrep of the group
    std::vector<int> irreps;             // the irreps of the level when it is one (with its time-reversal partner)
    bool oneIrrep = false;
};

// The degenerate levels first..first+count-1 of `levels` (a solve of `model` with vectors).
LevelSymmetry levelSymmetry(const Model& model, const std::vector<ModelLevel>& levels, int first, int count,
                            const params::PointGroup& group, params::ImproperAction action);

// "G6-", "G5,6", "Eg", "E1/2u"; "?" for a level that is not one irrep. Koster or Mulliken.
std::string levelSymmetryLabel(const LevelSymmetry& symmetry, const params::PointGroup& group, IrNotation notation);

// How the levels of a run are labelled: the group of "/ptgp= n", the action
// of improper elements ("/IRproper") and the notation of "/IRnotation= n"
// (user-defined labels start from Koster's).
struct SiteLabelling {
    const params::PointGroup* group = nullptr;
    params::ImproperAction action = params::ImproperAction::Parity;
    IrNotation notation = IrNotation::Koster;
};
// None without a valid "/ptgp= n", or with "/IRnotation= 4" (crystal quantum numbers).
std::optional<SiteLabelling> siteLabellingOf(const RunSwitches& switches);

// Every degenerate level (degenerateEnergies) of `levels` (ascending, solved with vectors).
std::vector<LevelSymmetry> levelSymmetries(const Model& model, const std::vector<ModelLevel>& levels,
                                           const params::PointGroup& group, params::ImproperAction action);

// The label of every level of `levels`, the same for the members of one degenerate level.
std::vector<std::string> levelIrrepLabels(const Model& model, const std::vector<ModelLevel>& levels,
                                          const SiteLabelling& site);

}  // namespace orvane
