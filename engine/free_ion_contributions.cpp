#include "engine/free_ion_contributions.hpp"

#include <array>
#include <utility>

namespace orvane {

namespace {

double weightOf(const FreeIonWeights& weights, const std::string& name) {
    const auto found = weights.find(name);
    return found == weights.end() ? 0.0 : found->second;
}

const FreeIonComponent* findPart(const std::vector<FreeIonComponent>& parts, const std::string& name) {
    for (const auto& part : parts)
        if (part.name == name) return &part;
    return nullptr;
}

// <psi|X|psi> of a component in a free-ion level (0 for a missing component).
double expectationOf(const FreeIonComponent* component, const FreeIonLevel& level) {
    if (!component) return 0.0;
    return level.vector.dot(component->blocks[static_cast<std::size_t>(level.block)] * level.vector);
}

// Report label and the parameter components whose shares it sums.
struct ShareLabel {
    const char* label;
    std::vector<const char*> components;
};

const std::vector<ShareLabel>& shareLabels() {
    static const std::vector<ShareLabel> labels = {
        {"E(f2)", {"F2"}},      {"E(f4)", {"F4"}},       {"E(f6)", {"F6"}},          {"E(SO)", {"ZETA"}},
        {"E(alpha)", {"ALPHA"}}, {"E(beta)", {"BETA"}},  {"E(gamma)", {"GAMMA"}},    {"E(t2)", {"T2", "T2'"}},
        {"E(t3)", {"T3"}},      {"E(t4)", {"T4"}},       {"E(t6)", {"T6"}},          {"E(t7)", {"T7"}},
        {"E(t8)", {"T8"}}};
    return labels;
}

constexpr std::array<const char*, 3> kMarvin = {"M0", "M2", "M4"};
constexpr std::array<const char*, 3> kCorrelated = {"P2", "P4", "P6"};

FreeIonLevelContributions contributionsOf(const FreeIonOperators& operators, const FreeIonWeights& weights,
                                          const FreeIonLevel& level) {
    FreeIonLevelContributions result;
    result.averageEnergy = weightOf(weights, "EAVG") * expectationOf(findComponent(operators, "EAVG"), level);
    for (const auto& share : shareLabels()) {
        double value = 0.0;
        for (const char* name : share.components)
            value += weightOf(weights, name) * expectationOf(findComponent(operators, name), level);
        result.shifts.push_back({share.label, value});
    }
    double spinSpin = 0.0, spinOtherOrbit = 0.0, correlated = 0.0;
    std::vector<LabelledValue> spinSpinElements, orbitElements, correlatedElements;
    for (std::size_t k = 0; k < kMarvin.size(); ++k) {
        const std::string index = std::to_string(2 * k);
        const double ss = expectationOf(findPart(operators.magneticParts, "mss" + index), level);
        const double soo = expectationOf(findPart(operators.magneticParts, "msoo" + index), level);
        const double p = expectationOf(findComponent(operators, kCorrelated[k]), level);
        spinSpin += weightOf(weights, kMarvin[k]) * ss;
        spinOtherOrbit += weightOf(weights, kMarvin[k]) * soo;
        correlated += weightOf(weights, kCorrelated[k]) * p;
        spinSpinElements.push_back({"mss" + index, ss});
        orbitElements.push_back({"msoo" + index, soo});
        correlatedElements.push_back({"100*p" + std::to_string(2 * k + 2), 100.0 * p});
    }
    for (auto* list : {&spinSpinElements, &orbitElements, &correlatedElements})
        for (auto& element : *list) result.magneticElements.push_back(std::move(element));
    result.magneticShifts = {{"E(SS)", spinSpin}, {"E(SOO)", spinOtherOrbit}, {"E(EL-SO)", correlated}};
    return result;
}

}  // namespace

std::vector<FreeIonLevelContributions> freeIonContributions(const FreeIonOperators& operators,
                                                            const FreeIonWeights& weights,
                                                            const FreeIonSolution& solution) {
    std::vector<FreeIonLevelContributions> all;
    all.reserve(solution.levels.size());
    for (const auto& level : solution.levels) all.push_back(contributionsOf(operators, weights, level));
    return all;
}

}  // namespace orvane
