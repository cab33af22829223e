#include "engine/barycentre_shift.hpp"

#include <cmath>

#include "core/angular.hpp"
#include "engine/configuration_tables.hpp"

namespace orvane {

std::vector<BarycentreShift> barycentreShifts(const TransformedTensors& tensors,
                                              const std::vector<double>& freeIonEnergies,
                                              const std::array<double, 3>& invariantsSquared) {
    const int levels = static_cast<int>(tensors.levelTwiceJ.size());
    std::array<double, 3> ckSquared{};
    for (int i = 0; i < 3; ++i) ckSquared[i] = std::pow(ReducedCk(3, kEvenRanks[i], 3), 2);
    std::vector<BarycentreShift> shifts;
    shifts.reserve(levels);
    for (int a = 0; a < levels; ++a) {
        double sum = 0.0;
        for (int b = 0; b < levels; ++b) {
            const double gap = freeIonEnergies[a] - freeIonEnergies[b];
            if (b == a || std::abs(gap) < 1e-9) continue;
            double coupling = 0.0;
            for (int i = 0; i < 3; ++i)
                coupling += invariantsSquared[i] * ckSquared[i] * std::pow(tensors.unitTensor[i](a, b), 2);
            sum += coupling / gap;
        }
        // dE_a = sum_b sum_k S_k |<a||C(k)||b>|^2 / ((2J_a+1)(E_a - E_b)) (second-order perturbation, Edmonds 3.7.8)
        shifts.push_back({a, tensors.levelTwiceJ[a], freeIonEnergies[a], sum / (tensors.levelTwiceJ[a] + 1)});
    }
    return shifts;
}

}  // namespace orvane
