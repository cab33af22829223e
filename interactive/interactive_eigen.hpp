#pragma once
// The interactive eigen solver: a Hermitian matrix read from a text file (the
// format is described in docs/matrix-file.md) is diagonalised with
// HermitianEigen and its eigenvalues and eigenvectors are printed to the log
// book: the line "Eigenvectors", then per eigenvalue (ascending) one line
//   eigenvalue <value>  eigenvector <components>
// with numbers in the picture "##0.0000000". Each eigenvector is given the
// phase that makes its largest component real and positive; for a matrix with
// complex entries every component is printed as "re,im".
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <Eigen/Dense>

#include "interactive/asker.hpp"
#include "core/hermitian_eigen.hpp"
#include "core/log_book.hpp"
#include "core/user_error.hpp"

namespace orvane {

// Largest order a matrix file may declare (above the disk threshold, so that
// the disk mode can be used from the command line).
inline constexpr int kMaxMatrixFileOrder = 4000;
// Largest matrix file read (bytes).
inline constexpr std::uintmax_t kMaxMatrixFileBytes = 256u * 1024u * 1024u;
// Relative tolerance of the Hermitian check: |H(i,k) - conj H(k,i)| and
// |Im H(i,i)| may not exceed it times max(1, largest |H(i,k)|).
inline constexpr double kHermitianTolerance = 1e-9;

inline constexpr ErrorCategory kEigenSolverErrorTitle = ErrorCategory::EigenSolver;

struct MatrixFile {
    Eigen::MatrixXcd matrix;
    bool complexEntries = false;  // some entry was written as "re,im" with im != 0
};

// Parses the text of a matrix file; throws UserError naming fileName and the
// line of the first problem (malformed or non-finite entry, wrong count,
// non-Hermitian matrix).
MatrixFile parseMatrixFile(std::string_view text, const std::string& fileName);
// Reads and parses a matrix file (UserError also when it is missing or too large).
MatrixFile readMatrixFile(const std::filesystem::path& path);

// The printed lines: "Eigenvectors", then one line per eigenvalue.
std::vector<std::string> eigenReportLines(const HermitianEigenResult& result, bool complexEntries);

// Reads, diagonalises (mode 1: vectors, no print file) and prints to the log
// book. Throws UserError for a bad file and when the solver does not converge.
void solveMatrixFile(const std::filesystem::path& path, LogBook& log, Asker& asker);

}  // namespace orvane
