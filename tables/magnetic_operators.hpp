#pragma once
// The magnetic two-body operators of f^n: spin-spin (a double tensor of rank
// 2 in spin and in orbit) and spin-other-orbit plus electrostatically
// correlated spin-orbit (rank 1 in spin and in orbit), as reduced elements
// <term i || X || term j> (reduced in S and in L, independent of J).
//
// They are defined by their f^2 elements (Judd, Crosswhite & Crosswhite 1968,
// Phys. Rev. 169, 130, tables I, II, VII, IX) and carried to f^n (n = 3..7) by
// the two-body escalation through fractional parentage; f^N (N > 7) has the
// same reduced elements as f^(14-N), in the same term order (the Marvin and
// P^k parameters keep their sign under conjugation).
//
// Phases: every f^2 term has the single parent 2F; the published f^2 states
// are the coupled states |(f f) S L> whose coefficient of fractional parentage
// is +1, and Orvane's rule "first non-zero coefficient positive" gives the
// same +1 for all seven terms, so the published f^2 elements are already in
// Orvane's phase convention (no per-term sign).
//
// In the |S L J M> basis (spin coupled first):
// <SLJ|H|S'L'J> = (-1)^(S'+L+J) {S' L' J; L S t} <SL||X||S'L'>, t = 2 for
// spin-spin, t = 1 for the (11) operator. Building the spin-spin part with
// the rank-1 6j instead (the engine's "/wrongrankss" option) uses the same
// stored spin-spin elements.
#include <array>
#include <vector>

#include <Eigen/Dense>

#include "tables/reduced_tables.hpp"
#include "tables/term.hpp"

namespace orvane {

inline constexpr int kSpinSpinRank = 2;
inline constexpr int kSpinOtherOrbitRank = 1;

struct MagneticOperators {
    // Coefficients of M^0, M^2, M^4 in the spin-spin reduced elements.
    std::array<Eigen::MatrixXd, 3> spinSpin;
    // Coefficients of M^0, M^2, M^4, P^2, P^4, P^6 in the spin-other-orbit +
    // correlated spin-orbit reduced elements, with the part of the form of
    // the ordinary spin-orbit operator removed (Chen et al. 2008).
    std::array<Eigen::MatrixXd, 6> spinOtherOrbit;
};

// All matrices zero, T x T.
MagneticOperators zeroMagneticOperators(int termCount);

// The f^2 elements; `f2Terms` are the seven terms of f^2 (matched by label).
// Throws std::invalid_argument when a label is missing.
MagneticOperators magneticOperatorsOfF2(const std::vector<TermRecord>& f2Terms);

// f^n (n >= 3) from f^(n-1) by the two-body escalation.
MagneticOperators escalateMagneticOperators(int n, const std::vector<TermSpinOrbit>& terms,
                                            const std::vector<TermSpinOrbit>& parents,
                                            const Eigen::MatrixXd& cfp, const MagneticOperators& parent);

}  // namespace orvane
