#pragma once
// The questions of the state-vector workspace (docs/properties.md): which
// states, which range, which temperatures. Each returns std::nullopt when the
// user cancels; an answer that cannot be used is asked again (the message
// says why). "," and ";" count as blanks. State numbers are 1-based.
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "interactive/asker.hpp"

namespace orvane {

// "Give a list of state number to calculate spin Hamiltonian parameters:"
std::optional<std::vector<int>> askSpinHamiltonianStates(Asker& asker, int stateCount);

struct StateRange {
    int initial = 1;
    int first = 1;  // lower limit (1 when omitted)
    int last = 1;
};
// "Give initial state#, [lower limit and] upper limit of state# to calculate
// the matrix elements of the magnetic moment:" (also the ED and MD tables).
std::optional<StateRange> askStateRange(Asker& asker, int stateCount);

struct TemperatureRequest {
    double lower = 0.001;
    double upper = 300.0;
    std::optional<double> step;  // none: the logarithmic grid
};
// The susceptibility temperatures, default "0.001 300" (an empty answer too).
std::optional<TemperatureRequest> askSusceptibilityTemperatures(Asker& asker);

// The temperature of the Curie constant (0 is taken as 0.001).
std::optional<double> askCurieTemperature(Asker& asker);

// The temperature of the populations of transition probabilities (K, > 0).
std::optional<double> askPopulationTemperature(Asker& asker);

// "Give limits of axes:min  x, max x, min y and max y" of a chart: four
// numbers, each minimum below its maximum; `current` is offered.
std::optional<std::array<double, 4>> askAxisLimits(Asker& asker, const std::string& current);

// A measured susceptibility file with more rows than are read: OK goes on
// with the rows read, Cancel stops.
bool askContinueWithoutExtraRows(Asker& asker, std::size_t rowLimit);
// The question's text: "There are too many data >" limit ". Still continue (by ignoring the remaining data)?".
std::string tooManyRowsQuestion(std::size_t rowLimit);

}  // namespace orvane
