#include "properties/magnetic_moment.hpp"

#include <cmath>

#include "core/angular.hpp"

namespace orvane {

namespace {

double sign(int twiceExponent) { return (twiceExponent / 2) % 2 == 0 ? 1.0 : -1.0; }

}  // namespace

Eigen::MatrixXd magneticMomentReduced(const std::vector<EngineTerm>& terms, const JBasis& basis, double spinG) {
    const auto count = static_cast<Eigen::Index>(basis.states.size());
    Eigen::MatrixXd reduced = Eigen::MatrixXd::Zero(count, count);
    for (Eigen::Index a = 0; a < count; ++a)
        for (Eigen::Index b = 0; b < count; ++b) {
            const auto& sa = basis.states[a];
            const auto& sb = basis.states[b];
            if (sa.term != sb.term || std::abs(sa.twiceJ - sb.twiceJ) > 2) continue;
            const auto& term = terms[sa.term];
            const int tS = term.twiceS, tL = 2 * term.L, tJ = sa.twiceJ, tJp = sb.twiceJ;
            const double S = tS / 2.0, L = term.L;
            const double root = std::sqrt((tJ + 1.0) * (tJp + 1.0));
            const double orbital = sign(tS + tL + tJ + 2) * root * SixJ2(tL, tJ, tS, tJp, tL, 2) *
                                   std::sqrt(L * (L + 1) * (2 * L + 1));
            const double spin = sign(tS + tL + tJp + 2) * root * SixJ2(tS, tJ, tL, tJp, tS, 2) *
                                std::sqrt(S * (S + 1) * (2 * S + 1));
            reduced(a, b) = orbital + spinG * spin;
        }
    return reduced;
}

TensorOperator magneticMomentOperator(const PropertyStates& states, double spinG) {
    return TensorOperator(states, 1, magneticMomentReduced(states.terms, states.jBasis, spinG));
}

Eigen::MatrixXcd momentElements(const TensorOperator& moment, int state) {
    return moment.contract(cartesianFromSpherical(moment.braRows(state)));
}

}  // namespace orvane
