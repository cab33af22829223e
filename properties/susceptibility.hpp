#pragma once
// Molar magnetic susceptibility of the ion (Van Vleck 1932), per axis a, in
// emu/mol (CGS), energies in cm^-1 (docs/properties.md):
//   chi_a = (N_A mu_B^2 / Z) sum_i exp(-x_i) [ sum_{|Delta| <= 1e-5} |<i|m_a|j>|^2 / kT
//                                             + sum_{1e-5 < |Delta| < 10000} 2 |<i|m_a|j>|^2 / Delta ]
// x_i = (E_i - E_1)/kT, Delta = E_j - E_i (cm^-1), m = L + g_s S in mu_B. The
// sum over i stops at the first state with x_i > 15; the first sum includes
// j = i; pairs with |Delta| >= 10000 cm^-1 are left out of the second on
// purpose (they hold the other multiplets' constant diamagnetic-like shift).
// k = kBoltzmannWavenumbers, N_A mu_B^2 = kMolarMomentWavenumbers (emu cm^-1/mol).
//
// The squared moments between the states that can be populated at the
// highest temperature of interest and every state are computed once
// (`SusceptibilityTable`); each temperature then costs a weighted sum.
#include <array>
#include <optional>
#include <vector>

#include <Eigen/Dense>

#include "properties/property_states.hpp"
#include "properties/tensor_operator.hpp"

namespace orvane {

inline constexpr double kPopulationCutoff = 15.0;          // in units of kT
inline constexpr double kDegeneratePairWavenumbers = 1e-5;
inline constexpr double kVanVleckLimitWavenumbers = 10000.0;

struct SusceptibilityTable {
    std::vector<double> energies;              // cm^-1 above the lowest state, every state
    double maxTemperature = 0.0;               // K
    std::array<Eigen::MatrixXd, 3> squares;    // |<i|m_a|j>|^2, retained states x all states
};

// Retains the states with (E_i - E_1) <= 15 k maxTemperature.
SusceptibilityTable susceptibilityTable(const PropertyStates& states, const TensorOperator& moment,
                                        double maxTemperature);

struct SusceptibilityPoint {
    double temperature = 0.0;       // K
    std::array<double, 3> chi{};    // chi_x, chi_y, chi_z in emu/mol
    double average() const { return (chi[0] + chi[1] + chi[2]) / 3.0; }
};

// Throws std::invalid_argument for T <= 0 or above the table's maximum.
SusceptibilityPoint susceptibilityAt(const SusceptibilityTable& table, double temperature);

// Curie constant C = chi T (emu K/mol) and effective moment
// mu_eff = sqrt(3 k_B chi T / (N_A mu_B^2)) in mu_B.
double curieConstant(double chi, double temperature);
double effectiveMoment(double chi, double temperature);

// The temperature grid of a request "LOW HIGH [STEP]" (K): a lower
// temperature of 0 becomes 0.01; with a step, LOW, LOW + STEP, ... up to HIGH;
// without one the logarithmic grid: k x 10^m (k = 1..9) for every decade m
// from floor(log10 LOW) (at least -4) to floor(log10 HIGH), kept within
// [LOW, HIGH], with LOW and HIGH themselves included.
// Throws std::invalid_argument for HIGH < LOW, negative values or a step <= 0.
std::vector<double> temperatureGrid(double lower, double upper, std::optional<double> step = std::nullopt);

}  // namespace orvane
