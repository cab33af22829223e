#pragma once
// The "/printhm" listing of the free-ion Hamiltonian: the matrix in the |SL J>
// states taken J block by J block (J ascending; inside a block in basis
// order, term by term), so that it is block diagonal. Each row r (1-based)
// is printed from its diagonal element c = r to the last column of its J
// block (the elements left of the diagonal follow by symmetry, those outside
// the block vanish):
//   ### Hamiltonian matrix elements of dim = 13
//   Hamiltonian matrix row = 1 (first element for column=1)
//      -2706.9767 ...            (eight values a line, "#######0.0000")
//   ...
//   ### End of Hamiltonian matrix elements ###
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "engine/free_ion.hpp"

namespace orvane {

// `blocks` as freeIonHamiltonian returns them (one matrix per J block of `basis`).
std::vector<std::string> hamiltonianPrintoutLines(const JBasis& basis, const std::vector<Eigen::MatrixXd>& blocks);

// A Hermitian block H as one real square array: Re H(i,j) on and above the
// diagonal (j >= i), Im H(i,j) below it (j < i; Im H(j,i) = -Im H(i,j)).
Eigen::MatrixXd packedHermitianArray(const Eigen::MatrixXcd& matrix);

// The complex engine's "/printhm" listing of one crystal-field block (rows and
// columns numbered within the block, each row printed in full from column 1):
//   ### Complex Hamiltonian matrix elements (real/imaginary ones at upper/lower diagonal) of dim = 4
//   Hamiltonian matrix row = 1 (first element for column=1)
//      ...                       (packedHermitianArray, "#######0.0000", eight a line)
//   ### End of Hamiltonian matrix elements ###
// The heading's words "real/imaginary" and "ones at upper/lower diagonal" are
// joined into one phrase; the closing line is the real listing's.
std::vector<std::string> complexHamiltonianPrintoutLines(const Eigen::MatrixXcd& block);

}  // namespace orvane
