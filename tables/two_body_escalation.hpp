#pragma once
// Escalation of few-body operators from f^(n-1) to f^n through the
// coefficients of fractional parentage.
//
// A k-body operator acting on n electrons is n/(n-k) times the operator acting
// on the first n-1 of them (each k-tuple of electrons is counted n-k times by
// the n choices of the spectator electron). The operator on the first n-1
// electrons is evaluated with the parentage expansion
// |f^n psi S L> = sum (psibar } psi) |(f^(n-1) psibar Sbar Lbar, f) S L>.
//
// Matrices are full (T x T, T the terms of f^n); element (i, j) is the reduced
// element <term i || X || term j> (reduced in both S and L for double tensors),
// or the plain matrix element of a scalar operator.
#include <vector>

#include <Eigen/Dense>

#include "tables/reduced_tables.hpp"

namespace orvane {

// Judd, Crosswhite & Crosswhite 1968, eq. (4): a two-body double tensor of
// ranks (t, t) in spin and orbit (J-independent reduced elements):
// <psi S L || T || psi' S' L'> = n/(n-2) sqrt([S][S'][L][L']) sum cfp(psi,pbar) cfp(psi',pbar')
//   (-1)^(Sbar + Lbar + s + l + S' + L') {S t S'; Sbar' s Sbar} {L t L'; Lbar' l Lbar} <pbar||T||pbar'>.
// `parentMatrix` holds the reduced elements of f^(n-1); n >= 3.
Eigen::MatrixXd escalateTwoBodyDoubleTensor(int n, int rank, const std::vector<TermSpinOrbit>& terms,
                                            const std::vector<TermSpinOrbit>& parents,
                                            const Eigen::MatrixXd& cfp, const Eigen::MatrixXd& parentMatrix);

// The same for several operators of equal rank at once (the angular
// coefficients are shared).
std::vector<Eigen::MatrixXd> escalateTwoBodyDoubleTensors(int n, int rank, const std::vector<TermSpinOrbit>& terms,
                                                          const std::vector<TermSpinOrbit>& parents,
                                                          const Eigen::MatrixXd& cfp,
                                                          const std::vector<Eigen::MatrixXd>& parentMatrices);

// Scalar k-body operator (rank 0 in S and L), e.g. the three-body t_i (k = 3):
// <psi S L | T | psi' S L> = n/(n-k) sum over parents of equal Sbar Lbar of
// cfp(psi,pbar) cfp(psi',pbar') <pbar | T | pbar'>; zero between different (S, L).
// `parentMatrix` holds the matrix elements in f^(n-1); n > k.
Eigen::MatrixXd escalateScalarOperator(int n, int bodies, const std::vector<TermSpinOrbit>& terms,
                                       const std::vector<TermSpinOrbit>& parents, const Eigen::MatrixXd& cfp,
                                       const Eigen::MatrixXd& parentMatrix);

// Tr over the |S L J M_J> states of the product of two scalar operators given
// by their term matrices: sum_ij [S_i][L_i] a(i,j) b(j,i).
double scalarProductTrace(const std::vector<TermSpinOrbit>& terms, const Eigen::MatrixXd& a,
                          const Eigen::MatrixXd& b);

// Tr over the |S L J M_J> states of the product of two scalar double-tensor
// operators (T^(t) . T^(t)) of equal rank given by their reduced elements:
// sum_ij <i||A||j><i||B||j> / (2t+1) (Edmonds (7.1.6) summed over J and M).
double doubleTensorProductTrace(int rank, const Eigen::MatrixXd& a, const Eigen::MatrixXd& b);

}  // namespace orvane
