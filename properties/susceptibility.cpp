#include "properties/susceptibility.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "core/physical_constants.hpp"
#include "properties/magnetic_moment.hpp"

namespace orvane {

SusceptibilityTable susceptibilityTable(const PropertyStates& states, const TensorOperator& moment,
                                        double maxTemperature) {
    if (!(maxTemperature > 0.0)) throw std::invalid_argument("the highest temperature must be positive");
    SusceptibilityTable table;
    table.maxTemperature = maxTemperature;
    const auto count = static_cast<int>(states.states.size());
    for (int i = 0; i < count; ++i) table.energies.push_back(states.relativeEnergy(i));
    const double limit = kPopulationCutoff * kBoltzmannWavenumbers * maxTemperature;
    int retained = 0;
    while (retained < count && table.energies[retained] <= limit) ++retained;
    // Rows of every retained state side by side: one contraction for all.
    const auto basisSize = static_cast<Eigen::Index>(states.basis.states.size());
    Eigen::MatrixXcd rows(basisSize, 3 * retained);
    for (int i = 0; i < retained; ++i) rows.middleCols(3 * i, 3) = cartesianFromSpherical(moment.braRows(i));
    const Eigen::MatrixXcd elements = moment.contract(rows);
    for (int a = 0; a < 3; ++a) {
        table.squares[a].resize(retained, count);
        for (int i = 0; i < retained; ++i) table.squares[a].row(i) = elements.col(3 * i + a).cwiseAbs2().transpose();
    }
    return table;
}

SusceptibilityPoint susceptibilityAt(const SusceptibilityTable& table, double temperature) {
    if (!(temperature > 0.0)) throw std::invalid_argument("the temperature must be positive");
    if (temperature > table.maxTemperature * (1 + 1e-12))
        throw std::invalid_argument("temperature above the range the moment table was built for");
    const double kT = kBoltzmannWavenumbers * temperature;
    const auto count = static_cast<Eigen::Index>(table.energies.size());
    SusceptibilityPoint point;
    point.temperature = temperature;
    double partition = 0.0;
    std::array<double, 3> sum{};
    for (Eigen::Index i = 0; i < table.squares[0].rows(); ++i) {
        const double x = table.energies[i] / kT;
        if (x > kPopulationCutoff) break;
        const double weight = std::exp(-x);
        partition += weight;
        for (int a = 0; a < 3; ++a) {
            const auto row = table.squares[a].row(i);
            double first = 0.0, second = 0.0;
            for (Eigen::Index j = 0; j < count; ++j) {
                const double delta = table.energies[j] - table.energies[i];
                const double size = std::abs(delta);
                if (size <= kDegeneratePairWavenumbers) first += row(j);
                else if (size < kVanVleckLimitWavenumbers) second += 2.0 * row(j) / delta;
            }
            sum[a] += weight * (first / kT + second);
        }
    }
    for (int a = 0; a < 3; ++a) point.chi[a] = kMolarMomentWavenumbers * sum[a] / partition;
    return point;
}

double curieConstant(double chi, double temperature) { return chi * temperature; }

double effectiveMoment(double chi, double temperature) {
    return std::sqrt(std::max(0.0, 3.0 * chi * temperature / kMolarMomentKelvin));
}

std::vector<double> temperatureGrid(double lower, double upper, std::optional<double> step) {
    if (lower < 0.0 || upper < 0.0) throw std::invalid_argument("temperatures must not be negative");
    if (lower == 0.0) lower = 0.01;
    if (upper < lower) throw std::invalid_argument("the upper temperature is below the lower one");
    std::vector<double> grid;
    const double tolerance = 1e-9 * upper;
    if (step) {
        if (!(*step > 0.0)) throw std::invalid_argument("the temperature interval must be positive");
        const auto steps = static_cast<long>(std::floor((upper - lower) / *step + 1e-9));
        for (long s = 0; s <= steps; ++s) grid.push_back(lower + static_cast<double>(s) * *step);
        return grid;
    }
    const int first = std::max(-4, static_cast<int>(std::floor(std::log10(lower) + 1e-9)));
    const int last = static_cast<int>(std::floor(std::log10(upper) + 1e-9));
    grid.push_back(lower);
    for (int m = first; m <= last; ++m)
        for (int k = 1; k <= 9; ++k) {
            const double t = k * std::pow(10.0, m);
            if (t > lower * (1 + 1e-9) && t < upper - tolerance) grid.push_back(t);
        }
    if (upper > lower) grid.push_back(upper);
    return grid;
}

}  // namespace orvane
