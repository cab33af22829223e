#pragma once
// Physical constants shared by the libraries (CODATA 2018 unless noted), in
// the units the code uses: energies in cm^-1, moments in Bohr magnetons,
// molar magnetic quantities in CGS-emu (docs/properties.md).

namespace orvane {

// Free-electron spin g factor g_s of mu = -mu_B (L + g_s S).
inline constexpr double kElectronSpinG = 2.0023193043622;

// Boltzmann constant k_B / (h c) in cm^-1 per K (CODATA 2018).
inline constexpr double kBoltzmannWavenumbers = 0.6950348;

// The rounded value of the energy-unit table (1 K = 0.69502 cm^-1), kept for
// the thermal populations of transition probabilities for compatibility with
// existing results.
inline constexpr double kBoltzmannWavenumbersLegacy = 0.69502;

// N_A mu_B^2 / (h c * 1 cm^-1): chi in emu/mol from |<i|m|j>|^2 (mu_B^2)
// over an energy in cm^-1.
inline constexpr double kMolarMomentWavenumbers = 0.2607410;

// N_A mu_B^2 / k_B in emu K/mol; the Curie constant of a moment g_J^2 J(J+1)
// is this over 3 times g_J^2 J(J+1).
inline constexpr double kMolarMomentKelvin = 0.3751481;

}  // namespace orvane
