#pragma once
// The levels of a run as the result files report them: each eigenstate
// expressed over the |SL J MJ> basis (crystal field) or the |SL J> basis
// (free ion), labelled by its largest multiplet, with its crystal quantum
// number and a mixing flag.
//
// A crystal-field eigenvector comes from the prepared model directly over the
// |SL J MJ> states of its block (engine/model.hpp): each entry is a component.
//
// Label: the term and J of the |SL J> multiplet carrying the largest weight
// (sum of |c|^2 over MJ): "3H4", "4I9/2"; a term label ending in a digit is
// joined to J by "-" ("2D1-5/2"). The level is flagged mixed when another
// multiplet carries more than 10 % of it.
// Crystal quantum number mu (docs/conventions.md, Crystal field): the block holds the MJ with
// 2 MJ = r (mod 2p); mu is the MJ of that class with |mu| <= p/2 (+p/2 when
// both ends qualify).
#include <complex>
#include <string>
#include <utility>
#include <vector>

#include "engine/configuration_tables.hpp"
#include "engine/energy_levels.hpp"

namespace orvane {

struct ResultBasisState {
    int jState = 0;  // index into JBasis::states
    int term = 0;    // index into the terms
    int twiceJ = 0;
    int twiceM = 0;  // 0 and unused in the |SL J> basis
};

struct ResultBasis {
    bool withProjections = false;       // |SL J MJ> (crystal field) or |SL J> (free ion)
    std::vector<std::string> termLabels;  // by term index
    std::vector<ResultBasisState> states;
    std::vector<int> firstOfJState;  // per |SL J> state (JBasis index): its first entry in `states`
};

struct LevelComponent {
    int basisIndex = 0;
    std::complex<double> coefficient;
};

// Weight of one |SL J> multiplet in a level.
struct MultipletWeight {
    int jState = 0;
    double weight = 0.0;
};

struct ResultLevel {
    double energy = 0.0;     // as computed (no shift), unit of the parameter set
    int originalNumber = 0;  // 1-based number before sorting: blocks in order, eigenvalues ascending in each
    int block = 0;           // residue block (crystal field) or J block (free ion)
    int eigenIndex = 0;      // 1-based within its block
    int residue = -1;        // 2 MJ mod 2p of the block; -1 for a free-ion level
    int twiceJ = 0;          // of the largest multiplet
    std::vector<LevelComponent> components;  // |c| >= the threshold, decreasing |c|
    std::vector<MultipletWeight> multiplets; // every non-zero multiplet weight, decreasing
    std::string label;
    bool mixed = false;
    std::string irrep;  // irreducible representation under the site group (engine/level_symmetry.hpp), or empty
    double jz = 0.0;    // <J_z> = sum |c|^2 MJ over the whole vector (crystal-field levels)
};

inline constexpr double kMixingShare = 0.10;

// "3H" + 8 -> "3H4"; "2D1" + 5 -> "2D1-5/2".
std::string multipletLabel(const std::string& termLabel, int twiceJ);

// "|3H 4 -3>" or "|3H 4>" for a basis state (J and MJ by formatTwiceJ).
std::string basisStateLabel(const ResultBasis& basis, int index);

// 2 mu of residue r = 2 MJ mod 2p.
int twiceCrystalQuantumNumber(int residue, int fold);

ResultBasis freeIonResultBasis(const std::vector<EngineTerm>& terms, const JBasis& basis);
ResultBasis crystalFieldResultBasis(const std::vector<EngineTerm>& terms, const JBasis& basis);

// Multiplet weights (decreasing), label, J, mixing flag and the components
// with |c| >= minComponent of one free-ion level (a vector over the |SL J>
// states of its J block), over the |SL J> `basis` (freeIonResultBasis).
// Energy, block and numbering are left to the caller.
void describeFreeIonLevel(const FreeIonLevel& source, const JBasis& jBasis, const ResultBasis& basis,
                          double minComponent, ResultLevel& level);

// The same for a crystal-field level of a prepared model solved with vectors
// (over the |SL J MJ> states of `block`), over the |SL J MJ> `basis`
// (crystalFieldResultBasis). Energy, block, residue and numbering are left to the caller.
void describeModelLevel(const ModelLevel& vectors, const ModelBlock& block, const ResultBasis& basis,
                        double minComponent, ResultLevel& level);

// The free-ion levels of `result`, components with |c| >= minComponent.
std::vector<ResultLevel> freeIonResultLevels(const EnergyLevelResult& result, const ResultBasis& basis,
                                             double minComponent);

// The crystal-field levels (computed with vectors: result.modelLevels), components over |SL J MJ>
// with |c| >= minComponent.
std::vector<ResultLevel> crystalFieldResultLevels(const EnergyLevelResult& result, const ResultBasis& basis,
                                                  double minComponent);

}  // namespace orvane
