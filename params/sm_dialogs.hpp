#pragma once
// Questions of the superposition-model editor: the lattice-to-polar conversion of
// the ligand table and the rotation of ligand positions.
#include <array>
#include <optional>
#include <vector>

#include "core/asker.hpp"
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

}  // namespace orvane::params
