#include "engine/j_multiplet_elements.hpp"

#include "core/angular.hpp"
#include "engine/configuration_tables.hpp"

namespace orvane {

std::vector<MultipletElements> multipletCrystalFieldElements(const TransformedTensors& tensors, bool conjugate) {
    const double routeSign = conjugate ? -1.0 : 1.0;
    std::vector<MultipletElements> elements;
    for (int a = 0; a < static_cast<int>(tensors.levelTwiceJ.size()); ++a) {
        MultipletElements entry{a, tensors.levelTwiceJ[a], {}};
        for (int i = 0; i < 3; ++i)
            // <a J||C(k)||a J> = <f||C(k)||f> <a J||U(k)||a J> (physics notes 1.3 and 4.1)
            entry.reducedCk[i] = routeSign * ReducedCk(3, kEvenRanks[i], 3) * tensors.unitTensor[i](a, a);
        elements.push_back(entry);
    }
    return elements;
}

}  // namespace orvane
