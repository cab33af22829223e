#include "engine/free_ion.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "core/angular.hpp"
#include "tables/magnetic_operators.hpp"
#include "tables/reduced_tables.hpp"

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

// Spin-orbit as a scalar product of tensors (Edmonds 1957, eq. 7.1.6): <SLJ|H_SO|S'L'J> = (-1)^(J+L+S') {L L' 1; S' S J} sqrt(l(l+1)(2l+1)) <SL||V(11)||S'L'>
// (the same 6j as {S' L' J; L S 1}).
double spinOrbitElement(const EngineTables& tables, const JState& a, const JState& b) {
    return scalarProductElement(tables.terms[a.term], tables.terms[b.term], a.twiceJ, 1,
                                std::sqrt(84.0) * tables.spinOrbitTensor(a.term, b.term));
}

// A component of a double-tensor operator of rank (t t) from its reduced elements between terms.
FreeIonComponent tensorComponent(const std::string& name, const EngineTables& tables, const JBasis& basis,
                                 const Eigen::MatrixXd& reduced, int rank) {
    return componentFrom(name, basis, [&](const JState& a, const JState& b) {
        return scalarProductElement(tables.terms[a.term], tables.terms[b.term], a.twiceJ, rank,
                                    reduced(a.term, b.term));
    });
}

// Average of a scalar operator over all C(14, n) states of the configuration
// (every term, weights (2S+1)(2L+1)), whatever part of the basis is kept.
double configurationAverage(const EngineTables& tables, const Eigen::VectorXd& termDiagonal) {
    double sum = 0.0, states = 0.0;
    for (std::size_t t = 0; t < tables.terms.size(); ++t) {
        const double weight = (tables.terms[t].twiceS + 1) * (2 * tables.terms[t].L + 1);
        sum += weight * termDiagonal(static_cast<Eigen::Index>(t));
        states += weight;
    }
    return states > 0.0 ? sum / states : 0.0;
}

// A component of a scalar operator (diagonal in S and L): the J element is the
// term element. Every scalar operator is barycentred (its configuration
// average taken off the diagonal), as in the published parameter sets, so that
// EAVG is the barycentre of the configuration and the conjugate route differs
// from the actual shell by no constant.
FreeIonComponent scalarComponent(const std::string& name, const EngineTables& tables, const JBasis& basis,
                                 const Eigen::MatrixXd& matrix) {
    const double average = configurationAverage(tables, matrix.diagonal());
    return componentFrom(name, basis, [&](const JState& a, const JState& b) {
        return matrix(a.term, b.term) - (a.term == b.term ? average : 0.0);
    });
}

// The diagonal term operator of a value per term, as a term x term matrix.
template <typename TermValue>
Eigen::MatrixXd diagonalTermOperator(const EngineTables& tables, TermValue value) {
    Eigen::VectorXd diagonal(static_cast<Eigen::Index>(tables.terms.size()));
    for (std::size_t t = 0; t < tables.terms.size(); ++t) diagonal(static_cast<Eigen::Index>(t)) = value(tables.terms[t]);
    return diagonal.asDiagonal();
}

// Judd 1966 (legacy t2, docs/conventions.md "Three-body operators"): legacy t2 of f^n = t2'(f^n) + (n - 2) e3 / (70 sqrt 2); through the
// conjugate tables f^(14-n), t2'(f^n) = -t2'(f^(14-n)) and e3 is the same in both shells.
Eigen::MatrixXd legacyThreeBodyT2(const EngineTables& tables, int electrons) {
    const double t2PrimeSign = electrons == tables.electrons ? 1.0 : -1.0;
    const auto e3 = racahElectrostaticOperators(tables.electrons, tables.coulomb[0], tables.coulomb[1],
                                                tables.coulomb[2])[2];
    return t2PrimeSign * tables.threeBody[0] + ((electrons - 2) / (70.0 * std::sqrt(2.0))) * e3;
}

constexpr std::array<const char*, 6> kThreeBodyNames = {"T2'", "T3", "T4", "T6", "T7", "T8"};
constexpr std::array<const char*, 3> kMarvinNames = {"M0", "M2", "M4"};
constexpr std::array<const char*, 3> kCorrelatedNames = {"P2", "P4", "P6"};

void addThreeBodyComponents(const EngineTables& tables, const JBasis& basis, int electrons,
                            std::vector<FreeIonComponent>& list) {
    list.push_back(scalarComponent("T2", tables, basis, legacyThreeBodyT2(tables, electrons)));
    for (std::size_t i = 0; i < kThreeBodyNames.size(); ++i)
        list.push_back(scalarComponent(kThreeBodyNames[i], tables, basis, tables.threeBody[i]));
}

// M^k: spin-spin (rank 2, or as the options say) + spin-other-orbit (rank 1); P^k: rank 1.
void addMagneticComponents(const EngineTables& tables, const JBasis& basis, SpinSpinForm spinSpin,
                           FreeIonOperators& operators) {
    for (std::size_t k = 0; k < kMarvinNames.size(); ++k) {
        const std::string index = std::to_string(2 * k);
        auto orbit = tensorComponent("msoo" + index, tables, basis, tables.spinOtherOrbit[k], kSpinOtherOrbitRank);
        FreeIonComponent total{kMarvinNames[k], orbit.blocks};
        if (spinSpin != SpinSpinForm::Dropped) {
            const int rank = spinSpin == SpinSpinForm::WrongRank1 ? 1 : kSpinSpinRank;
            auto spin = tensorComponent("mss" + index, tables, basis, tables.spinSpin[k], rank);
            for (std::size_t b = 0; b < total.blocks.size(); ++b) total.blocks[b] += spin.blocks[b];
            operators.magneticParts.push_back(std::move(spin));
        }
        operators.magneticParts.push_back(std::move(orbit));
        operators.components.push_back(std::move(total));
    }
    for (std::size_t k = 0; k < kCorrelatedNames.size(); ++k)
        operators.components.push_back(tensorComponent(kCorrelatedNames[k], tables, basis,
                                                       tables.spinOtherOrbit[3 + k], kSpinOtherOrbitRank));
}

}  // namespace

double scalarProductElement(const EngineTerm& a, const EngineTerm& b, int twiceJ, int rank, double reduced) {
    if (reduced == 0.0) return 0.0;
    return phaseOfTwice(b.twiceS + 2 * a.L + twiceJ) * SixJ2(b.twiceS, 2 * b.L, twiceJ, 2 * a.L, a.twiceS, 2 * rank) *
           reduced;
}

FreeIonOperators buildFreeIonOperators(const EngineTables& tables, std::optional<int> minMultiplicity) {
    FreeIonBuildOptions options;
    options.minMultiplicity = minMultiplicity;
    return buildFreeIonOperators(tables, options);
}

FreeIonOperators buildFreeIonOperators(const EngineTables& tables, const FreeIonBuildOptions& options) {
    FreeIonOperators operators;
    operators.basis = buildJBasis(tables.terms, options.minMultiplicity);
    const auto& basis = operators.basis;
    auto& list = operators.components;
    list.push_back(componentFrom("EAVG", basis, [](const JState& a, const JState& b) {
        return a.term == b.term ? 1.0 : 0.0;
    }));
    for (int i = 0; i < 3; ++i) {
        // The Coulomb operator is a scalar in S and L: its J element is the term element.
        list.push_back(scalarComponent("F" + std::to_string(kEvenRanks[i]), tables, basis, tables.coulomb[i]));
    }
    list.push_back(componentFrom("ZETA", basis, [&](const JState& a, const JState& b) {
        return spinOrbitElement(tables, a, b);
    }));
    // Rajnak & Wybourne 1963: alpha L(L+1), beta G(G2), gamma G(R7); the
    // stored label values are 12 G(G2) and 5 G(R7) (docs/tables.md).
    list.push_back(scalarComponent("ALPHA", tables, basis, diagonalTermOperator(tables, [](const EngineTerm& t) {
                                       return double(t.L * (t.L + 1));
                                   })));
    list.push_back(scalarComponent("BETA", tables, basis, diagonalTermOperator(tables, [](const EngineTerm& t) {
                                       return t.g2Value / 12.0;
                                   })));
    list.push_back(scalarComponent("GAMMA", tables, basis, diagonalTermOperator(tables, [](const EngineTerm& t) {
                                       return t.r7Value / 5.0;
                                   })));
    const int electrons = options.electrons > 0 ? options.electrons : tables.electrons;
    addThreeBodyComponents(tables, basis, electrons, list);
    addMagneticComponents(tables, basis, options.spinSpin, operators);
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
