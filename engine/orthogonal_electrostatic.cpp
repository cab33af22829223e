#include "engine/orthogonal_electrostatic.hpp"

#include <cmath>
#include <string>

#include <fmt/format.h>

#include "core/number_format.hpp"
#include "engine/free_ion.hpp"
#include "engine/other_free_ion.hpp"
#include "params/free_ion_conversion.hpp"
#include "tables/reduced_tables.hpp"
#include "tables/two_body_escalation.hpp"

namespace orvane {

namespace {

constexpr double kDependentFraction = 1e-20;  // Tr(o^2) / Tr(O'^2) below this: o lies in the earlier span

std::vector<TermSpinOrbit> spinOrbitOfTerms(const std::vector<EngineTerm>& terms) {
    std::vector<TermSpinOrbit> result;
    result.reserve(terms.size());
    for (const auto& t : terms) result.push_back({t.twiceS, t.L});
    return result;
}

Eigen::MatrixXd diagonalOf(const std::vector<EngineTerm>& terms, double (*value)(const EngineTerm&)) {
    Eigen::VectorXd d(static_cast<int>(terms.size()));
    for (std::size_t i = 0; i < terms.size(); ++i) d[static_cast<int>(i)] = value(terms[i]);
    return d.asDiagonal();
}

}  // namespace

double stateSpaceTrace(const std::vector<EngineTerm>& terms, const Eigen::MatrixXd& a, const Eigen::MatrixXd& b) {
    return scalarProductTrace(spinOrbitOfTerms(terms), a, b);
}

// Racah 1949 e_1, e_2, e_3 from f(2), f(4), f(6); L(L+1); G(G2) = (stored
// 12 G(G2))/12 and G(R7) = (stored 5 G(R7))/5 (Racah 1949; docs/conventions.md).
ElectrostaticOperators electrostaticOperators(const EngineTables& tables) {
    const auto e = racahElectrostaticOperators(tables.electrons, tables.coulomb[0], tables.coulomb[1],
                                               tables.coulomb[2]);
    const auto& terms = tables.terms;
    return {e[0],
            e[1],
            e[2],
            diagonalOf(terms, [](const EngineTerm& t) { return t.L * (t.L + 1.0); }),
            diagonalOf(terms, [](const EngineTerm& t) { return t.g2Value / 12.0; }),
            diagonalOf(terms, [](const EngineTerm& t) { return t.r7Value / 5.0; })};
}

// Traceless parts, then classical Gram-Schmidt over Tr(A B) on the |SLJM> states.
OrthogonalElectrostatic orthogonaliseElectrostatic(const EngineTables& tables) {
    const auto& terms = tables.terms;
    const int T = static_cast<int>(terms.size());
    const Eigen::MatrixXd identity = Eigen::MatrixXd::Identity(T, T);
    const double dimension = stateSpaceTrace(terms, identity, identity);  // C(14, n)
    OrthogonalElectrostatic result;
    result.expansion.setZero();
    const auto operators = electrostaticOperators(tables);
    std::array<double, kElectrostaticOperatorCount> norms{};
    for (int j = 0; j < kElectrostaticOperatorCount; ++j) {
        const auto uj = static_cast<std::size_t>(j);
        const Eigen::MatrixXd traceless =
            operators[uj] - (stateSpaceTrace(terms, operators[uj], identity) / dimension) * identity;
        Eigen::MatrixXd o = traceless;
        for (int i = 0; i < j; ++i) {
            const auto ui = static_cast<std::size_t>(i);
            if (norms[ui] == 0.0) continue;
            const double c = stateSpaceTrace(terms, traceless, result.orthogonal[ui]) / norms[ui];
            result.expansion(j, i) = c;
            o -= c * result.orthogonal[ui];
        }
        const double norm = stateSpaceTrace(terms, o, o);
        const double start = stateSpaceTrace(terms, traceless, traceless);
        if (norm <= kDependentFraction * start || norm == 0.0) {
            result.orthogonal[uj] = Eigen::MatrixXd::Zero(T, T);
            norms[uj] = 0.0;
        } else {
            result.orthogonal[uj] = o;
            norms[uj] = norm;
            result.expansion(j, j) = 1.0;
        }
    }
    return result;
}

ElectrostaticParameters orthogonalParameters(const OrthogonalElectrostatic& set,
                                             const ElectrostaticParameters& parameters) {
    Eigen::Matrix<double, 1, kElectrostaticOperatorCount> p;
    for (int i = 0; i < kElectrostaticOperatorCount; ++i) p[i] = parameters[static_cast<std::size_t>(i)];
    const Eigen::Matrix<double, 1, kElectrostaticOperatorCount> converted = p * set.expansion;
    ElectrostaticParameters result{};
    for (int j = 0; j < kElectrostaticOperatorCount; ++j) result[static_cast<std::size_t>(j)] = converted[j];
    return result;
}

// Racah E^k from F^k: F_k = F^k / D_k, then Racah 1949
// (E^1 = (70 F_2 + 231 F_4 + 2002 F_6)/9, E^2 = (F_2 - 3 F_4 + 7 F_6)/9, E^3 = (5 F_2 + 6 F_4 - 91 F_6)/3).
ElectrostaticParameters electrostaticParametersOf(const ParameterSet& set) {
    const auto& rows = set.mainFreeIon;
    const auto fUpper =
        slaterUpperIntegrals(set.slaterType, {rows[1].cell.value, rows[2].cell.value, rows[3].cell.value});
    const auto racah = params::racahFromLowerSlater(params::lowerSlaterFromUpper(fUpper));
    const auto other = resolveOtherFreeIon(set.otherFreeIon);
    return {racah[0], racah[1], racah[2], other["ALPHA"], other["BETA"], other["GAMMA"]};
}

}  // namespace orvane
