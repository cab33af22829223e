#include "engine/free_ion.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "core/angular.hpp"

namespace orvane {

namespace {

// (-1)^(x/2) for an even twice-value x.
double phaseOfTwice(int twiceExponent) { return ((twiceExponent / 2) % 2 == 0) ? 1.0 : -1.0; }

// One component from an element function of two J states of equal J.
template <typename Element>
FreeIonComponent componentFrom(const std::string& name, const JBasis& basis, Element element) {
    FreeIonComponent component{name, {}};
    for (const auto& block : basis.blocks) {
        const auto size = static_cast<Eigen::Index>(block.states.size());
        Eigen::MatrixXd matrix = Eigen::MatrixXd::Zero(size, size);
        for (Eigen::Index i = 0; i < size; ++i)
            for (Eigen::Index j = 0; j < size; ++j)
                matrix(i, j) = element(basis.states[block.states[i]], basis.states[block.states[j]]);
        component.blocks.push_back(std::move(matrix));
    }
    return component;
}

// Physics notes 4.2: <SLJ|H_SO|S'L'J> = (-1)^(J+L+S') {L L' 1; S' S J} sqrt(l(l+1)(2l+1)) <SL||V(11)||S'L'>.
double spinOrbitElement(const EngineTables& tables, const JState& a, const JState& b) {
    const double reduced = tables.spinOrbitTensor(a.term, b.term);
    if (reduced == 0.0) return 0.0;
    const auto& ta = tables.terms[a.term];
    const auto& tb = tables.terms[b.term];
    return phaseOfTwice(a.twiceJ + 2 * ta.L + tb.twiceS) *
           SixJ2(2 * ta.L, 2 * tb.L, 2, tb.twiceS, ta.twiceS, a.twiceJ) * std::sqrt(84.0) * reduced;
}

}  // namespace

FreeIonOperators buildFreeIonOperators(const EngineTables& tables, std::optional<int> minMultiplicity) {
    FreeIonOperators operators;
    operators.basis = buildJBasis(tables.terms, minMultiplicity);
    const auto& basis = operators.basis;
    auto& list = operators.components;
    list.push_back(componentFrom("EAVG", basis, [](const JState& a, const JState& b) {
        return a.term == b.term ? 1.0 : 0.0;
    }));
    for (int i = 0; i < 3; ++i) {
        // The Coulomb operator is a scalar in S and L: its J element is the term element.
        list.push_back(componentFrom("F" + std::to_string(kEvenRanks[i]), basis,
                                     [&, i](const JState& a, const JState& b) {
                                         return tables.coulomb[i](a.term, b.term);
                                     }));
    }
    list.push_back(componentFrom("ZETA", basis, [&](const JState& a, const JState& b) {
        return spinOrbitElement(tables, a, b);
    }));
    // Rajnak & Wybourne 1963: alpha L(L+1), beta G(G2), gamma G(R7); the
    // stored label values are 12 G(G2) and 5 G(R7) (physics notes 2.2).
    list.push_back(componentFrom("ALPHA", basis, [&](const JState& a, const JState& b) {
        const int L = tables.terms[a.term].L;
        return a.term == b.term ? double(L * (L + 1)) : 0.0;
    }));
    list.push_back(componentFrom("BETA", basis, [&](const JState& a, const JState& b) {
        return a.term == b.term ? tables.terms[a.term].g2Value / 12.0 : 0.0;
    }));
    list.push_back(componentFrom("GAMMA", basis, [&](const JState& a, const JState& b) {
        return a.term == b.term ? tables.terms[a.term].r7Value / 5.0 : 0.0;
    }));
    return operators;
}

const FreeIonComponent* findComponent(const FreeIonOperators& operators, const std::string& name) {
    for (const auto& component : operators.components)
        if (component.name == name) return &component;
    return nullptr;
}

std::vector<Eigen::MatrixXd> freeIonHamiltonian(const FreeIonOperators& operators,
                                                const FreeIonWeights& weights) {
    std::vector<Eigen::MatrixXd> blocks;
    for (const auto& block : operators.basis.blocks) {
        const auto size = static_cast<Eigen::Index>(block.states.size());
        blocks.push_back(Eigen::MatrixXd::Zero(size, size));
    }
    for (const auto& [name, weight] : weights) {
        const auto* component = findComponent(operators, name);
        if (!component) throw std::invalid_argument("no free-ion operator for parameter " + name);
        if (weight == 0.0) continue;
        for (std::size_t b = 0; b < blocks.size(); ++b) blocks[b] += weight * component->blocks[b];
    }
    return blocks;
}

FreeIonSolution solveFreeIon(const FreeIonOperators& operators, const FreeIonWeights& weights) {
    FreeIonSolution solution;
    auto blocks = freeIonHamiltonian(operators, weights);
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        auto result = symmetricEigenpairs(std::move(blocks[b]));
        if (result.status != EigenStatus::Ok) {
            solution.status = result.status;
            solution.levels.clear();
            return solution;
        }
        for (Eigen::Index i = 0; i < result.values.size(); ++i)
            solution.levels.push_back({static_cast<int>(b), operators.basis.blocks[b].twiceJ,
                                       result.values(i), result.vectors.col(i)});
    }
    std::stable_sort(solution.levels.begin(), solution.levels.end(),
                     [](const FreeIonLevel& x, const FreeIonLevel& y) { return x.energy < y.energy; });
    return solution;
}

std::array<double, 3> slaterUpperIntegrals(SlaterType form, const std::array<double, 3>& values) {
    constexpr std::array<double, 3> D = {225.0, 1089.0, 184041.0 / 25.0};
    std::array<double, 3> lower = values;
    switch (form) {
        case SlaterType::SlaterFUpper:
            return values;
        case SlaterType::SlaterFLower:
            break;
        case SlaterType::RacahE: {
            const double e1 = values[0], e2 = values[1], e3 = values[2];
            lower = {(e1 + 143.0 * e2 + 11.0 * e3) / 42.0, (e1 - 130.0 * e2 + 4.0 * e3) / 77.0,
                     (e1 + 35.0 * e2 - 7.0 * e3) / 462.0};
            break;
        }
    }
    return {D[0] * lower[0], D[1] * lower[1], D[2] * lower[2]};
}

}  // namespace orvane
