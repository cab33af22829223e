#pragma once
// Derivatives of every energy by every parameter from the stored component
// matrices (Hellmann-Feynman: dE/dp = <psi| dH/dp |psi>), without rebuilding
// or re-diagonalising anything. For a degenerate level the fit sums the
// derivatives over the level's eigenvectors (the sum does not depend on the
// basis chosen inside the level).
//
// The parameters are the ones as applied by the engine: the free-ion
// component names ("EAVG", "F2", "F4", "F6", "ZETA", "ALPHA", "BETA",
// "GAMMA"; F^k whatever form the file used) and "ReB(k,q)", "ImB(k,q)" for the
// crystal field ("ReSCCF C(k,q)", "ReLCCF D(k,q)", "ReOCCFA G(k,q)", ... and
// their "Im" forms for the correlation crystal fields; those keep their signs
// on the conjugate route). With "/cubiccf" or Stevens/unit-operator input the
// derivatives are by the applied Wybourne B(k,q) of every key. On the conjugate route zeta and B(k,q) are applied with their
// signs flipped: the derivative by the file's value is the negative.
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "engine/energy_levels.hpp"

namespace orvane {

struct LevelDerivatives {
    std::vector<std::string> parameters;
    Eigen::MatrixXd values;  // levels x parameters, levels in the solution's (ascending) order
};

// Free-ion levels: v^T C v per component.
LevelDerivatives freeIonDerivatives(const EnergyLevelResult& result);

// Crystal-field levels (the result must hold eigenvectors: EnergyLevelOptions::wantVectors).
// The free-ion components act in the free-ion eigenbasis as
// <a J M|C|a' J M> = v_a^T C_J v_a' (diagonal in J and M).
LevelDerivatives crystalFieldDerivatives(const EnergyLevelResult& result);

}  // namespace orvane
