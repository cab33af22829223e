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

}  // namespace orvane
