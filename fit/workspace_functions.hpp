#pragma once
// Log-book functions of the fitting workspace that need no window: each
// returns the lines to print, headed by the name of its menu command
// (docs/fitting-automatch.md, Log-book functions). Energies and parameters
// are in the parameter set's energy unit.
#include <array>
#include <string>
#include <vector>

#include "engine/configuration_tables.hpp"
#include "engine/orthogonal_electrostatic.hpp"
#include "engine/parameter_vector.hpp"

namespace orvane {

// "Average and SD of all energies": mean and population standard deviation.
std::vector<std::string> energyAverageLines(const std::vector<double>& energies);

// A Wybourne crystal-field parameter B(k,q) = re + i im, 0 <= q <= k.
struct WybourneParameter {
    int k = 0;
    int q = 0;
    double re = 0.0;
    double im = 0.0;
};

// The B(k,q) of the crystal field proper held by `parameters`.
std::vector<WybourneParameter> wybourneParametersOf(const ParameterVector& parameters);

// "Crystal field invariants and strength" (params/cf_invariants.hpp).
std::vector<std::string> crystalFieldInvariantLines(const std::vector<WybourneParameter>& parameters);

// Root-mean-square spread over the |SLJM> states of f^n of the traceless
// electrostatic Hamiltonian H' (docs/fitting-automatch.md): the whole and
// each of F2, F4, F6, ALPHA, BETA, GAMMA alone. The tables may be those of
// f^n or of the conjugate f^(14-n): the spreads are the same.
struct ElectrostaticStrength {
    double total = 0.0;
    std::array<double, kElectrostaticOperatorCount> single{};  // F2, F4, F6, ALPHA, BETA, GAMMA
};
ElectrostaticStrength electrostaticStrength(const EngineTables& tables, const ParameterVector& parameters);

// "Electrostatic repulsion strength".
std::vector<std::string> electrostaticStrengthLines(const EngineTables& tables, const ParameterVector& parameters);

// "Orthonormalised electrostatic repulsion parameters": the parameters of
// the orthogonalised operators (engine/orthogonal_electrostatic.hpp) for the
// E^1, E^2, E^3 (from F^k), ALPHA, BETA, GAMMA of `parameters`.
std::vector<std::string> orthonormalisedElectrostaticLines(const EngineTables& tables,
                                                           const ParameterVector& parameters);

}  // namespace orvane
