#include "engine/j_multiplet_elements.hpp"

#include "core/angular.hpp"
#include "engine/configuration_tables.hpp"

namespace orvane {

namespace {

// The letter of a correlation operator's column label.
const char* correlationLetter(CrystalFieldOperator op) {
    switch (op) {
        case CrystalFieldOperator::Sccf: return "S";
        case CrystalFieldOperator::Lccf: return "L";
        case CrystalFieldOperator::OccfA:
        case CrystalFieldOperator::OccfB: return "G";
        case CrystalFieldOperator::Standard: break;
    }
    return "?";
}

// <a J||X(k)||a J> of every correlation operator and rank the tensors hold.
std::vector<LabelledElement> correlationElements(const TransformedTensors& tensors, int level) {
    std::vector<LabelledElement> elements;
    for (const auto& [op, ranks] : tensors.correlation)
        for (int i = 0; i < 3; ++i)
            if (ranks[i].size() > 0)
                elements.push_back({std::string("<||V") + correlationLetter(op) + "(" +
                                        std::to_string(kEvenRanks[i]) + ")||>",
                                    ranks[i](level, level)});
    return elements;
}

}  // namespace

std::vector<MultipletElements> multipletCrystalFieldElements(const TransformedTensors& tensors, bool conjugate) {
    const double routeSign = conjugate ? -1.0 : 1.0;
    std::vector<MultipletElements> elements;
    for (int a = 0; a < static_cast<int>(tensors.levelTwiceJ.size()); ++a) {
        MultipletElements entry{a, tensors.levelTwiceJ[a], {}, correlationElements(tensors, a)};
        for (int i = 0; i < 3; ++i)
            // <a J||C(k)||a J> = <f||C(k)||f> <a J||U(k)||a J> (Edmonds 1957, section 7.1; docs/conventions.md)
            entry.reducedCk[i] = routeSign * ReducedCk(3, kEvenRanks[i], 3) * tensors.unitTensor[i](a, a);
        elements.push_back(entry);
    }
    return elements;
}

}  // namespace orvane
