#include "engine/parameter_vector.hpp"

#include <algorithm>

#include "engine/crystal_field_parameters.hpp"
#include "engine/free_ion_weights.hpp"
#include "engine/other_free_ion.hpp"

namespace orvane {

namespace {

auto lowerBound(std::vector<std::pair<ParameterId, double>>& entries, ParameterId id) {
    return std::lower_bound(entries.begin(), entries.end(), id,
                            [](const std::pair<ParameterId, double>& entry, ParameterId x) { return entry.first < x; });
}

// The links of the multiples written in the other free-ion rows ("0.56M0", "0.5P2").
std::vector<ParameterLink> linksOf(const std::vector<FreeIonRow>& rows) {
    std::vector<ParameterLink> links;
    for (const auto& row : rows) {
        const auto cell = readOtherFreeIonCell(row.name, row.cell.text);
        const auto target = parameterIdOf(row.name);
        if (!cell || !target) continue;
        if (cell->form == OtherFreeIonForm::MultipleOfM0) links.push_back({*target, parameter::kM0, cell->number});
        if (cell->form == OtherFreeIonForm::MultipleOfP2) links.push_back({*target, parameter::kP2, cell->number});
    }
    return links;
}

}  // namespace

void ParameterVector::set(ParameterId id, double value) {
    const auto it = lowerBound(entries_, id);
    if (it != entries_.end() && it->first == id)
        it->second = value;
    else
        entries_.insert(it, {id, value});
}

double ParameterVector::value(ParameterId id) const {
    const auto it = std::lower_bound(entries_.begin(), entries_.end(), id,
                                     [](const std::pair<ParameterId, double>& e, ParameterId x) { return e.first < x; });
    return it != entries_.end() && it->first == id ? it->second : 0.0;
}

bool ParameterVector::contains(ParameterId id) const {
    return std::binary_search(entries_.begin(), entries_.end(), std::pair<ParameterId, double>{id, 0.0},
                              [](const auto& x, const auto& y) { return x.first < y.first; });
}

ParameterVector ParameterVector::withLinksApplied() const {
    ParameterVector result = *this;
    for (const auto& link : links) result.set(link.target, link.ratio * value(link.source));
    return result;
}

ParameterVector parameterVectorOf(const ParameterSet& set, bool complex) {
    ParameterVector vector;
    const auto weights = freeIonWeightsOf(set, /*conjugate=*/false);
    for (const auto& info : freeIonParameters()) vector.set(info.id, weights.at(info.name));
    vector.links = linksOf(set.otherFreeIon);
    const auto crystalField = crystalFieldParametersOf(set, /*conjugate=*/false, complex);
    for (std::size_t i = 0; i < crystalField.keys.size(); ++i) {
        const auto& key = crystalField.keys[i];
        vector.set(crystalFieldParameterId(key.op, key.k, key.q, false), crystalField.re[i]);
        if (complex && key.q > 0)
            vector.set(crystalFieldParameterId(key.op, key.k, key.q, true), crystalField.im[i]);
    }
    return vector;
}

}  // namespace orvane
