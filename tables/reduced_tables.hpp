#pragma once
// Reduced matrix elements between the terms of f^n: unit tensors U(k), double
// tensors V(1k) and the Coulomb matrices f(k), computed from the coefficients
// of fractional parentage, and their table files.
//
// Every matrix here is full (T x T): element (i, j) is <term i || X || term j>.
// The files store i <= j only; the other half follows from
// <j||X||i> = (-1)^(S_i - S_j + L_i - L_j) <i||X||j> (real reduced elements of
// a Hermitian tensor operator, Edmonds (5.4.1) with spin first).
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <Eigen/Dense>

#include "tables/term.hpp"

namespace orvane {

enum class TableOperator { U, V1, Lccf, F };

// "rmu2.val", "rmv11.val", "rmulccf2.val", "rmf2.val" (looked up case-blind).
std::string tableFileName(TableOperator op, int rank);
// "U(2)", "V(11)", "UK(LCCF)2", "f(2)"
std::string operatorName(TableOperator op, int rank);

struct TermSpinOrbit {
    int twiceS = 0;
    int L = 0;
};
std::vector<TermSpinOrbit> spinOrbitOf(const std::vector<TermRecord>& terms);

// Racah 1943, eq. (44): n sqrt([L][L']) sum cfp cfp (-1)^(Lbar+l+L+k) {L k L'; l Lbar l}.
Eigen::MatrixXd unitTensorMatrix(int n, int k, const std::vector<TermSpinOrbit>& terms,
                                 const std::vector<TermSpinOrbit>& parents,
                                 const Eigen::MatrixXd& cfp);

// Racah 1943 (docs/conventions.md): n sqrt(3/2) sqrt([S][S'][L][L']) sum cfp cfp
// (-1)^(Sbar+s+S+1+Lbar+l+L+k) {S 1 S'; s Sbar s} {L k L'; l Lbar l}.
Eigen::MatrixXd doubleTensorMatrix(int n, int k, const std::vector<TermSpinOrbit>& terms,
                                   const std::vector<TermSpinOrbit>& parents,
                                   const Eigen::MatrixXd& cfp);

// Slater 1929 (docs/conventions.md): f_k(psi, psi') = 1/2 <f||C(k)||f>^2
// [ (1/[L]) sum_{psi'' of the same S, every L''} U(psi,psi'') U(psi',psi'') - delta n/7 ]
// for psi, psi' of equal S and L. `unitTensor` is the full U(k) matrix.
Eigen::MatrixXd coulombMatrix(int n, int k, const std::vector<TermSpinOrbit>& terms,
                              const Eigen::MatrixXd& unitTensor);

// The full matrix from the stored half (i <= j) with the transposition phase.
Eigen::MatrixXd completeFromStoredHalf(const Eigen::MatrixXd& stored,
                                       const std::vector<TermSpinOrbit>& terms);

// File text: the title, then "i j  value" for i <= j and |value| > 1e-13, in
// the general number form.
std::string reducedTableFileText(std::string_view title, const Eigen::MatrixXd& matrix);
// Reads a table file into a T x T matrix holding the stored half; throws
// UserError naming the file and line for malformed lines or indices outside 1..T.
Eigen::MatrixXd parseReducedTable(std::string_view text, int termCount, const std::string& fileName);

// Racah 1949 electrostatic operators e1, e2, e3 from f2, f4, f6 (docs/conventions.md)
// and the traces over the |SLJM> space (weights [S][L]).
struct ElectrostaticTraces {
    std::array<double, 3> squares{};          // Tr(e_i^2)
    std::array<double, 3> products{};         // Tr(e1 e2), Tr(e1 e3), Tr(e2 e3)
};
std::array<Eigen::MatrixXd, 3> racahElectrostaticOperators(int n, const Eigen::MatrixXd& f2,
                                                           const Eigen::MatrixXd& f4,
                                                           const Eigen::MatrixXd& f6);
ElectrostaticTraces electrostaticTraces(int n, const std::vector<TermSpinOrbit>& terms,
                                        const Eigen::MatrixXd& f2, const Eigen::MatrixXd& f4,
                                        const Eigen::MatrixXd& f6);
// The log lines "Trace^2 for e1 = ..." and "Trace of operaotr product between e1 and e2 = ...".
std::vector<std::string> electrostaticTraceLines(const ElectrostaticTraces& traces);

}  // namespace orvane
