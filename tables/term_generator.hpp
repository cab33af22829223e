#pragma once
// First-principles generator of the term basis of f^n (n = 0..7) and of the
// coefficients of fractional parentage, from Slater determinants.
//
// For each (S, L) the highest-weight states (M_S = S, M_L = L, annihilated by
// S+ and L+) are found as the null space of S-S+ + L-L+ in that sector, then
// separated by the simultaneous eigenvalues of the quasi-spin product Q+Q-
// (seniority), G(R7) and G(G2). Terms are numbered by the rule
//     S descending, then L ascending, then v, W (w1 w2 w3), U (u1 u2) ascending
// which is the published (Nielson-Koster) order. Inside a pair of terms with
// the same (S, L, v, W, U) the basis is fixed by the parent rule: the second
// state of the pair has no parentage in the first parent (in parent order) in
// which the pair has any parentage. The phase of every term makes its first
// non-zero coefficient of fractional parentage (in parent order) positive.
#include <array>
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "tables/term.hpp"

namespace orvane {

inline constexpr const char* kTableGeneratorVersion = "Orvane tables generator 2";

struct GeneratedTerm {
    int twiceS = 0;
    int L = 0;
    int seniority = 0;
    std::array<int, 3> w{};
    std::array<int, 2> u{};
    std::string label;
    Eigen::VectorXd state;  // M_S = S, M_L = L component over determinantSpace(n)
};

struct GeneratedConfiguration {
    int electrons = 0;
    std::vector<GeneratedTerm> terms;
    // cfp(i, j) = (f^(n-1) parent j {| f^n term i); empty for n = 0.
    Eigen::MatrixXd cfp;
};

// The terms of f^n with their highest-weight states, in the numbering rule's
// order, phases and pair bases not yet fixed (n = 0..7).
std::vector<GeneratedTerm> classifyTerms(int n);

// Raw coefficients of fractional parentage (rows: terms of f^n, columns:
// terms of f^(n-1)), from the annihilation operator and Clebsch-Gordan
// coefficients.
Eigen::MatrixXd parentageFromStates(int n, const std::vector<GeneratedTerm>& terms,
                                    const std::vector<GeneratedTerm>& parents);

// Applies the pair rule and the phase rule to terms and coefficients together.
void fixPairsAndPhases(std::vector<GeneratedTerm>& terms, Eigen::MatrixXd& cfp);

// f^0 .. f^maxElectrons (maxElectrons <= 7), each built on the one before.
std::vector<GeneratedConfiguration> generateConfigurations(int maxElectrons);

TermRecord termRecordOf(const GeneratedTerm& term);

}  // namespace orvane
