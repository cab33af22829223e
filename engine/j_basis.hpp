#pragma once
// The |SL J> states of a configuration and their grouping.
//
// Free-ion stage: every term (S, L) gives the states J = |L - S| .. L + S,
// listed term by term with J ascending. The free-ion Hamiltonian is diagonal
// in J, so the states are grouped into J blocks (twice-J ascending).
// Crystal-field stage: the |a J MJ> states of the free-ion levels a fall into
// blocks by the residue of MJ modulo the fold p of the site's main axis,
// taken as 2 MJ mod 2p so that half-integral MJ work alike (docs/engine.md).
// Angular momenta are twice-J integers throughout.
#include <optional>
#include <vector>

#include "engine/configuration_tables.hpp"

namespace orvane {

struct JState {
    int term = 0;  // index into EngineTables::terms
    int twiceJ = 0;
};

struct JBlock {
    int twiceJ = 0;
    std::vector<int> states;  // indices into JBasis::states, in basis order
};

struct JBasis {
    std::vector<JState> states;
    std::vector<JBlock> blocks;  // twice-J ascending
};

// All |SL J> states of the terms; with `minMultiplicity` the terms whose
// 2S+1 is below it are left out.
JBasis buildJBasis(const std::vector<EngineTerm>& terms, std::optional<int> minMultiplicity = std::nullopt);

// 2 MJ mod 2p, in 0 .. 2p-1.
int twiceMResidue(int twiceM, int fold);

struct JMState {
    int level = 0;  // index of the free-ion level
    int twiceJ = 0;
    int twiceM = 0;
};

struct ResidueBlock {
    int residue = 0;  // 2 MJ mod 2p
    std::vector<JMState> states;
};

// The |a J MJ> states of free-ion levels with the given twice-J values, split
// by residue; blocks in ascending residue, states level by level with MJ
// ascending; empty residues are left out. fold >= 1.
std::vector<ResidueBlock> residueBlocks(const std::vector<int>& levelTwiceJ, int fold);

}  // namespace orvane
