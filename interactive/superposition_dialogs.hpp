#pragma once
// Questions of the superposition-model editor: the lattice-to-polar conversion of
// the ligand table, the rotation of ligand positions and the check of the
// reference distance R0 before the Bkq sums.
#include <array>
#include <optional>
#include <vector>

#include "interactive/asker.hpp"
#include "params/superposition.hpp"

namespace orvane::params {

// Asks "Give lattice constants - angles: alpha, beta and gamma in degrees" (default
// "90 90 90") until three angles that close a cell are given ("Invalid input:" and
// the answer otherwise) and converts the fractional rows with the lattice constants
// a, b, c. std::nullopt when the user cancels.
std::optional<std::vector<Ligand>> convertLatticeTableAsking(
    const std::vector<std::array<double, 3>>& fractional, double a, double b, double c,
    Asker& asker);

// Tells "The rotation of ionic positions is the inverse of the rotation of coordinate
// frames.", asks for the Euler angles and returns the moved ligands; std::nullopt on
// an empty answer.
std::optional<std::vector<Ligand>> rotateLigandsAsking(const std::vector<Ligand>& ligands,
                                                       Asker& asker);

// Checks R0 before the ligand sums. R0 = 0 shows "Reference ligand distance = 0!"
// titled "Error in setting up ligand positions" with Abort, Retry and Ignore:
//   Abort (or a closed dialog) ends the calculation: std::nullopt;
//   Retry asks for R0 again (and checks the new value the same way);
//   Ignore goes on with R0 = 0, with which every ligand contributes
//   b_k (0/R)^t_k K_kq = 0 for t_k > 0.
// A non-zero R0 is returned unchanged without a question.
std::optional<SuperpositionParameters> confirmReferenceDistance(SuperpositionParameters parameters, Asker& asker);

}  // namespace orvane::params
