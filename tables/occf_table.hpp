#pragma once
// Orthogonal correlation crystal-field operators g(K)10A and g(K)10B of rank
// K (K = 2, 4, 6) between the terms of f^n, and their table files
// "g(2)10A.val" ... "g(6)10B.val".
//
// Orvane's definition (Judd 1977 classifies the orthogonal two-electron
// operators by the irreps (W U) of R7 and G2; "10A" and "10B" are the two
// operators of (W U) = (220)(22); the literature's choice of the pair and its
// normalisation could not be checked, so these are this program's own):
//
//   g(K)10A: the spin-scalar two-electron operator of orbital rank K acting on
//            spin-singlet pairs only, whose f^2 matrix transforms as
//            (220) of R7 and (22) of G2;
//   g(K)10B: the same on spin-triplet pairs.
//
// Each is unique up to a factor in its pair sector (the (220)(22) part of the
// operators on the f^2 singlet states (000)+(200), resp. triplet states
// (110)); it is found as the common null vector of the R7 and G2 Casimir
// operators, acting by double commutators with the generators U(1), U(3),
// U(5) (Racah 1949), minus their (220) and (22) values 12/5 and 5/2 (same
// normalisation as G(R7), G(G2) in docs/tables.md). Normalisation: the f^2
// reduced elements have sum_ij <i||g||j>^2 = 1, and the first non-zero one
// (in term order) is positive. For n >= 3 the operator is escalated as a
// two-body operator (tables/two_body_escalation.hpp).
#include <filesystem>
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "core/log_book.hpp"
#include "tables/reduced_tables.hpp"

namespace orvane {

inline bool isOccfRank(int K) { return K == 2 || K == 4 || K == 6; }
inline bool isOccfVariant(char variant) { return variant == 'A' || variant == 'B'; }

// "g(K)10A.val" / "g(K)10B.val".
std::string occfTableName(int K, char variant);

// Orbital reduced elements <S L||g||S L'> of g(K)10A/B between the given f^2 terms.
Eigen::MatrixXd occfPairMatrix(int K, char variant, const std::vector<TermSpinOrbit>& pairTerms);

// A spin-scalar two-body operator of orbital rank K from f^(n-1) to f^n,
// Edmonds (7.1.7) on the parent-electron coupling:
// <psi S L||G||psi' S L'> = n/(n-2) sum cfp(psi,pbar) cfp(psi',pbar') delta(Sbar,Sbar')
//   (-1)^(Lbar + l + L' + K) sqrt([L][L']) {Lbar L l; L' Lbar' K} <pbar||G||pbar'>; n >= 3.
Eigen::MatrixXd escalateTwoBodyOrbitalTensor(int n, int K, const std::vector<TermSpinOrbit>& terms,
                                             const std::vector<TermSpinOrbit>& parents, const Eigen::MatrixXd& cfp,
                                             const Eigen::MatrixXd& parentMatrix);

// Builds g(K)10A/B of f^n from the stored state labels and coefficients of
// f^2..f^n in `directory` and writes "fN" + occfTableName(K, variant) there.
// Returns its path. Throws UserError for missing tables or a bad rank/variant.
std::filesystem::path BuildOccfTable(int n, int K, char variant, const std::filesystem::path& directory, LogBook& log);

}  // namespace orvane
