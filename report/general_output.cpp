#include "report/general_output.hpp"

#include <algorithm>
#include <cmath>

#include "core/number_format.hpp"
#include "engine/parameter_file.hpp"

namespace orvane {

namespace {

std::string energyText(double value) { return formatNumber(value, "######0.0000"); }

void appendLines(LogBook& out, const std::vector<std::string>& lines) {
    for (const auto& line : lines) out.appendLine(line);
}

std::string bkqText(const CrystalFieldRow& row) {
    std::string text = "B" + std::to_string(row.k) + std::to_string(row.q) + " = " +
                       formatNumber(row.re.value, "######0.######");
    if (row.im.value != 0.0) text += " + i " + formatNumber(row.im.value, "######0.######");
    return text;
}

}  // namespace

// Landé formula (Condon & Shortley, The Theory of Atomic Spectra (1935), ch. XVI).
double landeG(int twiceS, int L, int twiceJ) {
    if (twiceJ == 0) return 0.0;
    const double S = twiceS / 2.0, J = twiceJ / 2.0;
    return 1.0 + (kElectronSpinG - 1.0) * (J * (J + 1) + S * (S + 1) - L * (L + 1.0)) / (2.0 * J * (J + 1));
}

double levelGFactor(const ResultLevel& level, const ResultBasis& basis, const std::vector<EngineTerm>& terms) {
    double g = 0.0;
    for (const auto& multiplet : level.multiplets) {
        const auto& state = basis.states[static_cast<std::size_t>(basis.firstOfJState[multiplet.jState])];
        const auto& term = terms[state.term];
        g += multiplet.weight * landeG(term.twiceS, term.L, state.twiceJ);
    }
    return g;
}

void writeBanner(LogBook& out, const std::string& version, bool solutionForm) {
    const std::string stars(79, '*');
    appendLines(out, {stars,
                      solutionForm ? " Orvane: Solution of the Hamiltonian for any f-state ions"
                                   : "Orvane: Spectroscopic Analysis Package for any f-state ions",
                      " including electrostatic (2-body), spin-orbit, two/three-particle and magnetic interactions ",
                      " and all CF interactions at general site-symmetry  (Windows 95/98/NT/XP/7/8/10 version " +
                          version + " )",
                      stars});
}

void writeParameterEcho(LogBook& out, const ParameterSet& set) {
    out.appendLine(set.title + (set.note.empty() ? "" : " {" + set.note + "}"));
    if (!set.description.empty()) out.appendLine(set.description);
    out.appendLine("no. of free ion parameters = 5");
    out.appendLine(std::string(slaterTypeText(set.slaterType)));
    for (const auto& row : set.mainFreeIon) out.appendLine(row.name + " = " + row.cell.text);
    out.appendLine("no. of f shell electron = " + std::to_string(set.electronCount));
    out.appendLine("no. of other free-ion parameters = " + std::to_string(set.otherFreeIon.size()));
    for (const auto& row : set.otherFreeIon) out.appendLine(row.name + " = " + row.cell.text);
    out.appendLine("no. of fold for rotational site-symmetry = " + std::to_string(set.fold));
    out.appendLine("no. of crystal field parameters = " + std::to_string(set.crystalField.size()));
    for (const auto& row : set.crystalField) out.appendLine(bkqText(row));
    switch (set.switches.energyUnit) {
        case EnergyUnit::MilliElectronVolt: out.appendLine("### Energy unit is meV  ###"); break;
        case EnergyUnit::Kelvin: out.appendLine("### Energy unit is K  ###"); break;
        case EnergyUnit::MilliRydberg: out.appendLine("### Energy unit is mRy  ###"); break;
        case EnergyUnit::Wavenumber: break;
    }
}

void writeCumulativeEnergies(LogBook& out, const std::vector<ResultLevel>& levels, double shift) {
    out.appendLine("Cumulative state no. and Energy  (original statevector no.)");
    std::string line;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        line += formatNumber(static_cast<double>(i + 1), "####") + energyText(levels[i].energy + shift) +
                formatNumber(levels[i].originalNumber, "(####)");
        if ((i + 1) % 5 == 0) {
            out.appendLine(line);
            line.clear();
        }
    }
    if (!line.empty()) out.appendLine(line);
}

void writeFreeIonLevelTable(LogBook& out, const std::vector<ResultLevel>& levels, const ResultBasis& basis,
                            const std::vector<EngineTerm>& terms, double shift) {
    out.appendLine("State     Energy    gJ-factor   Largest Statevectors");
    for (std::size_t i = 0; i < levels.size(); ++i) {
        std::string line = formatNumber(static_cast<double>(i + 1), "###") + energyText(levels[i].energy + shift) +
                           formatNumber(levelGFactor(levels[i], basis, terms), "##0.0000") + "  ";
        const auto& components = levels[i].components;
        for (std::size_t c = 0; c < std::min<std::size_t>(3, components.size()); ++c)
            line += formatNumber(components[c].coefficient.real(), "#0.000000") +
                    basisStateLabel(basis, components[c].basisIndex) + " ";
        out.appendLine(line);
    }
}

void writeFreeIonJTable(LogBook& out, const std::vector<ResultLevel>& levels, const ResultBasis& basis,
                        const std::vector<EngineTerm>& terms, double shift) {
    out.appendLine("State     Energy     J    gJ-factor   Label");
    for (std::size_t i = 0; i < levels.size(); ++i)
        out.appendLine(formatNumber(static_cast<double>(i + 1), "###") +
                       formatNumber(levels[i].energy + shift, "#####0.0000") + " " +
                       formatNumber(levels[i].twiceJ, "##/2") +
                       formatNumber(levelGFactor(levels[i], basis, terms), "##0.0000") + "   " + levels[i].label);
}

void writeStatevectors(LogBook& out, const std::string& heading, const std::vector<ResultLevel>& levels,
                       const ResultBasis& basis, int count, double shift) {
    out.appendLine(heading);
    const std::size_t stored =
        count <= 0 ? levels.size() : std::min(levels.size(), static_cast<std::size_t>(count));
    std::vector<std::string> labels(basis.states.size());  // built once per basis state listed
    std::string block;  // the lines of some states, handed over in one piece
    for (std::size_t i = 0; i < stored; ++i) {
        block += "Statevector: " + std::to_string(i + 1) + "  Energy = " + energyText(levels[i].energy + shift) +
                 "  " + levels[i].label;
        for (const auto& component : levels[i].components) {
            auto& label = labels[static_cast<std::size_t>(component.basisIndex)];
            if (label.empty()) label = basisStateLabel(basis, component.basisIndex);
            block.push_back('\n');
            appendNumber(block, component.coefficient.real(), "#0.000000 ");
            if (component.coefficient.imag() != 0.0) {
                block += "+ i ";
                appendNumber(block, component.coefficient.imag(), "#0.000000 ");
            }
            block += label;
        }
        if (block.size() > (1u << 20) || i + 1 == stored) {
            out.appendBlock(block);
            block.clear();
        } else {
            block.push_back('\n');
        }
    }
}

void writeStateLabels(LogBook& out, const ResultBasis& basis) {
    out.appendLine("#### State labels: State#,  SL term#,  J-multiplet#,  J value and MJ value  ###");
    for (std::size_t i = 0; i < basis.states.size(); ++i) {
        const auto& state = basis.states[i];
        std::string line = formatNumber(static_cast<double>(i + 1), "#### ") + formatNumber(state.term + 1, "### ") +
                           formatNumber(state.jState + 1, "### ") + formatNumber(state.twiceJ / 2.0, "#0.0 ");
        if (basis.withProjections) line += formatNumber(state.twiceM / 2.0, "##0.0  ");
        out.appendLine(line + basis.termLabels[state.term]);
    }
}

std::vector<DegenerateGroup> degenerateGroups(const std::vector<ResultLevel>& levels) {
    std::vector<DegenerateGroup> groups;
    for (int i = 0; i < static_cast<int>(levels.size()); ++i) {
        if (!groups.empty() &&
            std::abs(levels[i].energy - levels[groups.back().first].energy) <= kDegeneracyTolerance)
            ++groups.back().size;
        else
            groups.push_back({i, 1});
    }
    return groups;
}

namespace {

// The "mu/IR" text of a level: its irrep when labelled, else its crystal quantum number.
std::string muOrIrrep(const ResultLevel& level, int fold) {
    if (!level.irrep.empty()) return level.irrep;
    return level.residue < 0 ? "  -" : formatTwiceJ(twiceCrystalQuantumNumber(level.residue, fold));
}

}  // namespace

void writeDetailedProperties(LogBook& out, const std::vector<ResultLevel>& levels, int fold,
                             const std::vector<DoubletGValues>& doublets, double shift) {
    out.appendLine("Detailed properties of the levels");
    out.appendLine("State     Energy      Label SLJ     mu/IR      <Jz>        gx        gy        gz");
    std::vector<const DoubletGValues*> doubletOf(levels.size(), nullptr);
    for (const auto& doublet : doublets)
        if (doublet.first >= 0 && doublet.first < static_cast<int>(levels.size())) doubletOf[doublet.first] = &doublet;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        std::string label = levels[i].label, mu = muOrIrrep(levels[i], fold);
        label.resize(std::max<std::size_t>(label.size(), 12), ' ');
        mu.insert(0, mu.size() < 7 ? 7 - mu.size() : 0, ' ');
        std::string line = formatNumber(static_cast<double>(i + 1), "####") + energyText(levels[i].energy + shift) +
                           "  " + label + mu + formatNumber(levels[i].jz, "###0.0000");
        if (const auto* doublet = doubletOf[i])
            for (double g : doublet->g) line += formatNumber(g, "####0.0000");
        out.appendLine(line);
    }
}

void writeLevelTable(LogBook& out, const std::vector<ResultLevel>& levels, int fold, double shift) {
    out.appendLine("*No. (State) [Eigen]   Energy      Label SLJ  mu/IR Splitting         s'     deg.  mixing");
    if (levels.empty()) return;
    const double lowest = levels.front().energy;
    int number = 0;
    for (const auto& group : degenerateGroups(levels)) {
        const auto& level = levels[group.first];
        const std::string mu = muOrIrrep(level, fold);
        std::string label = level.label;
        label.resize(std::max<std::size_t>(label.size(), 10), ' ');
        std::string muText = mu;
        muText.insert(0, muText.size() < 5 ? 5 - muText.size() : 0, ' ');
        out.appendLine(formatNumber(++number, "####") + formatNumber(group.first + 1, "(####)") +
                       formatNumber(level.eigenIndex, "[####]") + energyText(level.energy + shift) + "  " + label +
                       muText + " " + energyText(level.energy - lowest) + "  " +
                       formatNumber(group.size, "####") + (level.mixed ? "  >10%" : ""));
    }
}

void writeMultipletElements(LogBook& out, const std::vector<MultipletElements>& elements,
                            const std::vector<ResultLevel>& freeIonLevels) {
    std::string heading = "J-multiplet       <||C(2)||>  <||C(4)||>  <||C(6)||>";
    if (!elements.empty())
        for (const auto& column : elements.front().correlation) heading += " " + column.label;
    out.appendLine(heading);
    for (const auto& entry : elements) {
        std::string label = entry.level < static_cast<int>(freeIonLevels.size()) ? freeIonLevels[entry.level].label
                                                                                 : formatTwiceJ(entry.twiceJ);
        label.resize(std::max<std::size_t>(label.size(), 14), ' ');
        std::string line = formatNumber(entry.level + 1, "###") + " " + label;
        for (double value : entry.reducedCk) line += "  " + formatNumber(value, "###0.00000");
        for (const auto& column : entry.correlation) line += "  " + formatNumber(column.value, "###0.00000");
        out.appendLine(line);
    }
}

void writeInvariants(LogBook& out, const std::array<double, 3>& s) {
    out.appendLine("CF Rotational invariants sk: " + formatNumber(s[0], "######0.0000") +
                   formatNumber(s[1], "######0.0000") + formatNumber(s[2], "######0.0000"));
}

void writeBarycentreShifts(LogBook& out, const std::vector<BarycentreShift>& shifts, double shift) {
    const std::string rule(90, '=');
    out.appendLine(rule);
    out.appendLine("Inclusion of shift in J-multiplet barycenter due to the second order effect of crystal field mixing");
    out.appendLine(rule);
    out.appendLine("State       J         Energy        New Energy         Shift");
    for (const auto& entry : shifts)
        out.appendLine(formatNumber(entry.level + 1, "###") + "  " + formatNumber(entry.twiceJ, "##/2") + "  " +
                       energyText(entry.energy + shift) + "  " + energyText(entry.energy + entry.shift + shift) +
                       "  " + energyText(entry.shift));
    out.appendLine(rule);
}

void writeContributions(LogBook& out, const std::vector<FreeIonLevelContributions>& contributions) {
    out.appendLine("shifts in energy levels as caused by electrostatic and spin-orbit interactions");
    for (std::size_t i = 0; i < contributions.size(); ++i) {
        const auto& entry = contributions[i];
        std::string line = formatNumber(static_cast<double>(i + 1), "###") + "  E(ave) = " +
                           formatNumber(entry.averageEnergy, "#######0.00");
        for (const auto& share : entry.shifts) line += "  " + share.label + formatNumber(share.value, "#######0.00");
        out.appendLine(line);
    }
    const bool anyMagnetic = std::any_of(contributions.begin(), contributions.end(), [](const auto& entry) {
        return !entry.magneticElements.empty() || !entry.magneticShifts.empty();
    });
    if (!anyMagnetic) return;
    out.appendLine("tranformed magnetic matrix elements and shifts in energy levels as caused by Hss, Hsoo and Hel-so");
    for (std::size_t i = 0; i < contributions.size(); ++i) {
        std::string line = formatNumber(static_cast<double>(i + 1), "###");
        for (const auto& value : contributions[i].magneticElements)
            line += "  " + value.label + formatNumber(value.value, "#######0.00");
        for (const auto& value : contributions[i].magneticShifts)
            line += "  " + value.label + formatNumber(value.value, "#######0.00");
        out.appendLine(line);
    }
}

}  // namespace orvane
