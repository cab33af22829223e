#include "engine/level_symmetry.hpp"

#include <cmath>
#include <complex>
#include <map>

namespace orvane {

namespace {

using Complex = std::complex<double>;

// Positions of the states of one block, by |SL J> state: (position, 2 MJ).
using MultipletPositions = std::map<int, std::vector<std::pair<int, int>>>;

MultipletPositions multipletPositions(const ModelBlock& block) {
    MultipletPositions positions;
    for (std::size_t p = 0; p < block.states.size(); ++p)
        positions[block.states[p].jState].emplace_back(static_cast<int>(p), block.states[p].twiceM);
    return positions;
}

Complex component(const ModelLevel& level, int position) {
    return level.complexVector.size() > 0 ? level.complexVector(position) : Complex(level.vector(position), 0.0);
}

// <v| D(g) |v> over the multiplets of the level's block.
Complex expectation(const ModelLevel& level, const ModelBlock& block, const MultipletPositions& positions,
                    const Eigen::Matrix2cd& su2, std::map<int, Eigen::MatrixXcd>& wigner) {
    Complex sum = 0.0;
    for (const auto& [jState, states] : positions) {
        const int twiceJ = block.states[static_cast<std::size_t>(states.front().first)].twiceJ;
        auto found = wigner.find(twiceJ);
        if (found == wigner.end()) found = wigner.emplace(twiceJ, params::wignerD(twiceJ, su2)).first;
        const Eigen::MatrixXcd& d = found->second;
        for (const auto& [row, twiceMRow] : states)
            for (const auto& [column, twiceMColumn] : states)
                sum += std::conj(component(level, row)) * d((twiceMRow + twiceJ) / 2, (twiceMColumn + twiceJ) / 2) *
                       component(level, column);
    }
    return sum;
}

bool nearInteger(double value) { return std::abs(value - std::round(value)) < 1e-3; }

}  // namespace

LevelSymmetry levelSymmetry(const Model& model, const std::vector<ModelLevel>& levels, int first, int count,
                            const params::PointGroup& group, params::ImproperAction action) {
    const int sign = params::improperFactor(action, model.setup().electrons);
    std::vector<Complex> characters(group.classes.size(), 0.0);
    std::map<int, MultipletPositions> positions;  // by block
    for (std::size_t c = 0; c < group.classes.size(); ++c) {
        const auto& element = group.elements[static_cast<std::size_t>(group.classes[c].elements.front())];
        std::map<int, Eigen::MatrixXcd> wigner;  // D(J) of this element, by 2J
        for (int n = first; n < first + count; ++n) {
            const ModelLevel& level = levels[static_cast<std::size_t>(n)];
            const ModelBlock& block = model.blocks()[static_cast<std::size_t>(level.block)];
            auto found = positions.find(level.block);
            if (found == positions.end()) found = positions.emplace(level.block, multipletPositions(block)).first;
            characters[c] += expectation(level, block, found->second, element.su2, wigner);
        }
        if (element.improper) characters[c] *= sign;
    }
    LevelSymmetry symmetry;
    symmetry.first = first;
    symmetry.count = count;
    symmetry.multiplicities = params::irrepMultiplicities(group, characters);
    int total = 0;
    bool integral = true;
    for (std::size_t a = 0; a < group.irreps.size(); ++a) {
        const double m = symmetry.multiplicities[a];
        integral = integral && nearInteger(m);
        const int copies = static_cast<int>(std::lround(m));
        total += copies;
        for (int i = 0; i < copies; ++i) symmetry.irreps.push_back(static_cast<int>(a));
    }
    const auto& irreps = symmetry.irreps;
    const bool single = irreps.size() == 1;
    const bool conjugatePair = irreps.size() == 2 && group.irreps[irreps[0]].conjugate == irreps[1] &&
                               irreps[0] != irreps[1];
    const bool realSpinorTwice = irreps.size() == 2 && irreps[0] == irreps[1] &&
                                 group.irreps[irreps[0]].doubleValued && group.irreps[irreps[0]].frobeniusSchur == 1;
    symmetry.oneIrrep = integral && total > 0 && (single || conjugatePair || realSpinorTwice);
    return symmetry;
}

std::string levelSymmetryLabel(const LevelSymmetry& symmetry, const params::PointGroup& group, IrNotation notation) {
    if (!symmetry.oneIrrep) return "?";
    const params::Irrep& first = group.irreps[symmetry.irreps.front()];
    const params::Irrep& last = group.irreps[symmetry.irreps.back()];
    if (notation == IrNotation::Mulliken && !first.mulliken.empty() && !last.mulliken.empty()) {
        std::string name = first.mulliken.size() <= last.mulliken.size() ? first.mulliken : last.mulliken;
        if (const auto star = name.find('*'); star != std::string::npos) name.erase(star, 1);  // E + E* is one level E
        return name;
    }
    if (&first == &last) return params::kosterName(first);
    std::string name = "G" + std::to_string(std::min(first.koster, last.koster)) + "," +
                       std::to_string(std::max(first.koster, last.koster));
    if (first.parity != 0) name += first.parity == 'g' ? '+' : '-';
    return name;
}

std::optional<SiteLabelling> siteLabellingOf(const RunSwitches& switches) {
    const auto notation = static_cast<IrNotation>(switches.irNotation);
    if (!switches.pointGroup || *switches.pointGroup < 1 || *switches.pointGroup > params::kPointGroupCount ||
        notation == IrNotation::CrystalQuantumNumber)
        return std::nullopt;
    return SiteLabelling{&params::pointGroup(*switches.pointGroup),
                         switches.properRotationIrreps ? params::ImproperAction::ProperPart
                                                       : params::ImproperAction::Parity,
                         notation == IrNotation::Mulliken ? IrNotation::Mulliken : IrNotation::Koster};
}

std::vector<LevelSymmetry> levelSymmetries(const Model& model, const std::vector<ModelLevel>& levels,
                                           const params::PointGroup& group, params::ImproperAction action) {
    std::vector<LevelSymmetry> symmetries;
    for (std::size_t first = 0; first < levels.size();) {
        std::size_t end = first + 1;
        while (end < levels.size() && degenerateEnergies(levels[first].energy, levels[end].energy)) ++end;
        symmetries.push_back(
            levelSymmetry(model, levels, static_cast<int>(first), static_cast<int>(end - first), group, action));
        first = end;
    }
    return symmetries;
}

std::vector<std::string> levelIrrepLabels(const Model& model, const std::vector<ModelLevel>& levels,
                                          const SiteLabelling& site) {
    std::vector<std::string> labels(levels.size());
    for (const auto& symmetry : levelSymmetries(model, levels, *site.group, site.action))
        for (int i = symmetry.first; i < symmetry.first + symmetry.count; ++i)
            labels[i] = levelSymmetryLabel(symmetry, *site.group, site.notation);
    return labels;
}

}  // namespace orvane
