#pragma once
// The reports of the state-vector workspace (docs/properties.md): each writes
// its lines to a log book and returns its result table, for the command line
// (`orvane states|gfactors|moments|chi|intensities|jo-fit`) and the desktop
// windows alike. State numbers are 1-based in ascending energy, energies in
// cm^-1 above the lowest state; `state`, `initial`, `first` and `last` are
// 0-based indices into run.states.
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/log_book.hpp"
#include "interactive/property_run.hpp"
#include "properties/intensities.hpp"
#include "properties/measured_lines.hpp"
#include "properties/measured_susceptibility.hpp"
#include "properties/susceptibility.hpp"

namespace orvane {

// "Magnetic moment mu = -muB (L + gs S), gs = " and the value.
std::string spinGNote(double spinG);

// Compositions of the chosen states ("Statevector #", the components, "Subtotal").
PropertyTable stateCompositionReport(const PropertyRun& run, const std::vector<int>& states, double minComponent,
                                     bool complex, LogBook& log);

// The doublets holding the states numbered `numbers` (1-based), each once;
// UserError for a number outside the run or a state in no doublet.
std::vector<std::pair<int, int>> doubletsOfStates(const PropertyRun& run, const std::vector<int>& numbers);

// g values of the doublets (gx, gy, gz, "gz' + gz''" of quasi-doublets,
// moments, principal axes); a free-ion run gives g_J of every multiplet and
// ignores `doublets`. Table columns: first, second, energy, gx, gy, gz, then
// alpha, beta, gamma (crystal field) and gz1, gz2 (quasi-doublets).
PropertyTable gFactorReport(const PropertyRun& run, const std::vector<std::pair<int, int>>& doublets,
                            const PropertyRunOptions& options, LogBook& log);

// <i|m_a|j> and their squares for j = first..last.
PropertyTable momentReport(const PropertyRun& run, int initial, int first, int last, const PropertyRunOptions& options,
                           LogBook& log);

struct SusceptibilityReport {
    PropertyTable results{{"T", "chi_x", "chi_y", "chi_z", "chi_avg"}};
    std::vector<SusceptibilityPoint> points;  // one per temperature of the grid
    Spreadsheet exported;                     // the dated export form
};

// The susceptibility over `grid` (K), the Curie constant and effective moment
// at `curie` (K), and the comparison with measured data. Each temperature is
// also reported as progress.
SusceptibilityReport susceptibilityReport(const PropertyRun& run, const std::vector<double>& grid,
                                          std::optional<double> curie,
                                          const std::vector<MeasuredSusceptibility>& measured,
                                          const PropertyRunOptions& options, LogBook& log);

// The columns of a transition line in the intensity report.
inline const std::vector<std::string> kTransitionColumns = {
    "State@Energy", "lambda /nm",  "k/cm^-1",        "S(ED) calc.", "A(ED) /s^-1",
    "S(MD) /E-8*D^2", "D(MD) /E-8*D^2", "f(MD) /E-8", "A(MD) /s^-1", "A(EQ) /s^-1", "Atotal /s^-1"};
// The texts of a line under kTransitionColumns.
std::vector<std::string> transitionCells(const PropertyRun& run, const TransitionLine& line);

// The refractive index of a host: the Sellmeier set of a named host
// (properties/refractive_index.hpp), else the pairs "B1 C1 B2 C2 ..." (C in
// um^2), else the constant. UserError for an unknown host or an odd count.
RefractiveIndex refractiveIndexOf(const std::string& host, const std::vector<double>& sellmeierPairs, double constant);

struct IntensityRequest {
    IntensityInput input;                // Omega_2,4,6, refractive index, <r^2>
    std::optional<double> temperature;   // K: population of the initial level
};

struct IntensityReport {
    std::vector<TransitionLine> lines;
    PropertyTable table;
};

// ED, MD and EQ lines from the level of `initial` to the levels of first..last.
// UserError when the refractive index cannot be had at a line (the system's
// message is logged first).
IntensityReport intensityReport(const PropertyRun& run, int initial, int first, int last,
                                const IntensityRequest& request, LogBook& log);

// Judd-Ofelt parameters fitted to measured ED line strengths, with their
// correlation matrix. std::invalid_argument for fewer than 3 lines.
PropertyTable juddOfeltReport(const PropertyRun& run, const std::vector<MeasuredLine>& lines, LogBook& log);

}  // namespace orvane
