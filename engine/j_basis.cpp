#include "engine/j_basis.hpp"

#include <algorithm>
#include <cstdlib>
#include <map>

namespace orvane {

JBasis buildJBasis(const std::vector<EngineTerm>& terms, std::optional<int> minMultiplicity) {
    JBasis basis;
    std::map<int, std::vector<int>> byJ;
    for (int t = 0; t < static_cast<int>(terms.size()); ++t) {
        const auto& term = terms[t];
        if (minMultiplicity && term.twiceS + 1 < *minMultiplicity) continue;
        const int twiceL = 2 * term.L;
        for (int twiceJ = std::abs(twiceL - term.twiceS); twiceJ <= twiceL + term.twiceS; twiceJ += 2) {
            byJ[twiceJ].push_back(static_cast<int>(basis.states.size()));
            basis.states.push_back({t, twiceJ});
        }
    }
    for (auto& [twiceJ, states] : byJ) basis.blocks.push_back({twiceJ, std::move(states)});
    return basis;
}

int twiceMResidue(int twiceM, int fold) {
    const int period = 2 * fold;
    return ((twiceM % period) + period) % period;
}

std::vector<ResidueBlock> residueBlocks(const std::vector<int>& levelTwiceJ, int fold) {
    std::map<int, std::vector<JMState>> byResidue;
    for (int level = 0; level < static_cast<int>(levelTwiceJ.size()); ++level) {
        const int twiceJ = levelTwiceJ[level];
        for (int twiceM = -twiceJ; twiceM <= twiceJ; twiceM += 2)
            byResidue[twiceMResidue(twiceM, fold)].push_back({level, twiceJ, twiceM});
    }
    std::vector<ResidueBlock> blocks;
    for (auto& [residue, states] : byResidue) blocks.push_back({residue, std::move(states)});
    return blocks;
}

}  // namespace orvane
