#pragma once
// HermitianEigen: the diagonaliser of every Hamiltonian matrix.
//
// Input packing. A complex Hermitian matrix H of order n travels in one real
// square array A (0-based here, first index the row):
//   A(i, k) = Re H(i, k) and A(k, i) = Im H(i, k) for i > k (the element below
//   the diagonal), A(i, i) = H(i, i) (real).
// packHermitian/unpackHermitian convert between this array and a complex matrix.
//
// In memory the work is the engine's eigen solver (core/eigen_solver.hpp,
// divide and conquer: zheevd reduces H to a real symmetric tridiagonal
// T = Q^H H Q by Householder reflectors, solves T by dstedc, or dsterf for
// values only, and back-transforms). The disk mode below does the same steps
// one by one, so that the reflectors can wait on disk. Eigenvalues come out in
// ascending order, each column of `eigenvectors` belonging to the eigenvalue of
// the same index.
//
// Output type: the eigenvectors are an n x n complex matrix (Eigen::MatrixXcd,
// column-major), which holds the same numbers as an n x n x 2 array of real
// and imaginary parts. Vectors are normalised; their global phases are those
// LAPACK produces.
//
// Disk mode. When eigenvectors are wanted and n is above the disk threshold
// (3500), the reflectors of the reduction are written to a scratch file of a
// unique name ("orvane-heigen-XXXXXX", mkstemp) in the system's temporary
// folder (TMPDIR, else /tmp), so that runs in one folder never share it; the
// reduced matrix is released, and
// only then is the eigenvector array allocated; the back-transformation reads
// the file back in the order written and the file is removed (also when the
// run fails or is ended by SIGINT/SIGTERM), so the n x n matrix and the n x n eigenvector array never
// coexist. The file's layout: one line per row i = 2..n of the strict lower
// triangle of the reduced matrix (1-based), holding for j = 1..i-1 the real
// and the imaginary part of the element (i, j) - the values A(i, j) and A(j, i)
// of the packing above - each followed by a blank.
//
// Failures. A finished run has status Ok. LAPACK's report that the tridiagonal
// iteration did not converge gives NoConvergence (logged and shown in modes
// 0-2, silent from mode 3 on); non-square or non-finite input and a negative
// mode give InvalidInput. Files that cannot be written or read back (the
// scratch file, the print file) throw UserError naming the file.
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include <Eigen/Dense>

#include "core/log_book.hpp"

namespace orvane {

// Modes of HermitianEigen.
inline constexpr int kEigenVectorsAndPrintFile = 0;  // vectors, print file unless the name is null
inline constexpr int kEigenVectors = 1;              // vectors, no print file
inline constexpr int kEigenValuesOnly = 2;           // eigenvalues only
inline constexpr int kEigenValuesSilent = 3;         // eigenvalues only, failures not reported

// Order above which the eigenvector modes keep the reflectors on disk.
inline constexpr int kHermitianEigenDiskThreshold = 3500;
// The sweep limit named in the no-convergence messages. (LAPACK's tridiagonal
// solvers allow 30 implicit QL/QR sweeps per eigenvalue, summed over the matrix.)
inline constexpr int kHermitianEigenIterationLimit = 30;

enum class HermitianEigenStatus { Ok, NoConvergence, InvalidInput };

struct HermitianEigenResult {
    HermitianEigenStatus status = HermitianEigenStatus::Ok;
    Eigen::VectorXd eigenvalues;    // ascending (unordered after NoConvergence)
    Eigen::MatrixXcd eigenvectors;  // n x n, column j for eigenvalues(j); 0 x 0 in modes 2 and above
    int statesFound = 0;            // n when finished; where the iteration stopped otherwise
    int failedEigenvalue = 0;       // 1-based number of the eigenvalue that did not converge
    bool usedScratchFile = false;
};

struct HermitianEigenOptions {
    int diskThreshold = kHermitianEigenDiskThreshold;
    // Folder of the scratch file; empty means the system's temporary folder.
    std::filesystem::path scratchDirectory;
    // Called with the scratch file's path after it has been written and closed,
    // before the back-transformation reads it (lets a caller observe the file).
    std::function<void(const std::filesystem::path&)> afterScratchWritten;
};

// Diagonalises the packed Hermitian matrix. The array is consumed: pass it with
// std::move so that the solver can release its memory early. printFile is the
// print file of mode 0 (skipped when empty or "nul:" in any case).
HermitianEigenResult HermitianEigen(Eigen::MatrixXd packed, int mode, std::string_view printFile,
                                    LogBook& log, const HermitianEigenOptions& options = {});

// The packing described above; packHermitian reads the lower triangle of h.
Eigen::MatrixXd packHermitian(const Eigen::MatrixXcd& h);
Eigen::MatrixXcd unpackHermitian(const Eigen::MatrixXd& packed);

// The no-convergence report of modes 0 to 2 for eigenvalue number l (1-based):
// two log lines (silent in mode 3 and above). The message box that goes with
// them is the caller's (interactive/interactive_eigen.hpp).
void reportNoConvergence(int eigenvalueNumber, int mode, LogBook& log);

// The print file of mode 0: an empty line, the headings line
// "eigenvalue   eigenvector", then per state
// "Statevector: " with its number and eigenvalue, and its components as
// real and imaginary part, "#0.0000000 " each, five components to a line.
std::string printFileText(const Eigen::VectorXd& eigenvalues, const Eigen::MatrixXcd& eigenvectors);

}  // namespace orvane
