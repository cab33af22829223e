#include "engine/parameter_registry.hpp"

#include <cstdio>

#include <fmt/format.h>

namespace orvane {

namespace {

constexpr int kCrystalFieldBase = 1000;
constexpr int kSuperpositionBase = 20000;

const char* operatorPrefix(CrystalFieldOperator op) {
    switch (op) {
        case CrystalFieldOperator::Sccf: return "SCCF c";
        case CrystalFieldOperator::Lccf: return "LCCF d";
        case CrystalFieldOperator::OccfA: return "OCCFA g";
        case CrystalFieldOperator::OccfB: return "OCCFB g";
        case CrystalFieldOperator::Standard: break;
    }
    return "B";
}

constexpr CrystalFieldOperator kOperators[] = {CrystalFieldOperator::Standard, CrystalFieldOperator::Sccf,
                                               CrystalFieldOperator::Lccf, CrystalFieldOperator::OccfA,
                                               CrystalFieldOperator::OccfB};

}  // namespace

const std::vector<ParameterInfo>& freeIonParameters() {
    using F = ParameterFamily;
    using namespace parameter;
    static const std::vector<ParameterInfo> list = {
        {kEavg, "EAVG", F::Average, "energy"},   {kF2, "F2", F::Electrostatic, "energy"},
        {kF4, "F4", F::Electrostatic, "energy"}, {kF6, "F6", F::Electrostatic, "energy"},
        {kZeta, "ZETA", F::SpinOrbit, "energy"}, {kAlpha, "ALPHA", F::ConfigurationInteraction, "energy"},
        {kBeta, "BETA", F::ConfigurationInteraction, "energy"},
        {kGamma, "GAMMA", F::ConfigurationInteraction, "energy"},
        {kT2, "T2", F::ThreeBody, "energy"},     {kT2Prime, "T2'", F::ThreeBody, "energy"},
        {kT3, "T3", F::ThreeBody, "energy"},     {kT4, "T4", F::ThreeBody, "energy"},
        {kT6, "T6", F::ThreeBody, "energy"},     {kT7, "T7", F::ThreeBody, "energy"},
        {kT8, "T8", F::ThreeBody, "energy"},     {kM0, "M0", F::Magnetic, "energy"},
        {kM2, "M2", F::Magnetic, "energy"},      {kM4, "M4", F::Magnetic, "energy"},
        {kP2, "P2", F::Magnetic, "energy"},      {kP4, "P4", F::Magnetic, "energy"},
        {kP6, "P6", F::Magnetic, "energy"},
    };
    return list;
}

ParameterId crystalFieldParameterId(CrystalFieldOperator op, int k, int q, bool imaginary) {
    return kCrystalFieldBase + kCrystalFieldBase * static_cast<int>(op) + (imaginary ? 100 : 0) + 10 * k + q;
}

ParameterId superpositionStrengthId(int k) { return kSuperpositionBase + 10 * k; }
ParameterId superpositionExponentId(int k) { return kSuperpositionBase + 10 * k + 1; }

std::optional<CrystalFieldPart> crystalFieldPartOf(ParameterId id) {
    if (id < kCrystalFieldBase || id >= kSuperpositionBase) return std::nullopt;
    const int op = id / kCrystalFieldBase - 1;
    const int rest = id % kCrystalFieldBase;
    const bool imaginary = rest >= 100;
    const int k = (rest % 100) / 10, q = rest % 10;
    if (op > 4 || rest % 100 >= 70 || k % 2 != 0 || k < 2 || q > k || (imaginary && q == 0)) return std::nullopt;
    return CrystalFieldPart{{k, q, kOperators[op]}, imaginary};
}

bool changesSignInConjugateShell(ParameterId id) {
    using namespace parameter;
    if (const auto part = crystalFieldPartOf(id)) return part->key.op == CrystalFieldOperator::Standard;
    return id == kZeta || id == kT2Prime || id == kT3 || id == kT4 || id == kT6 || id == kT7 || id == kT8;
}

std::optional<ParameterInfo> parameterInfo(ParameterId id) {
    for (const auto& info : freeIonParameters())
        if (info.id == id) return info;
    if (const auto part = crystalFieldPartOf(id)) {
        const auto& key = part->key;
        const bool standard = key.op == CrystalFieldOperator::Standard;
        return ParameterInfo{id,
                             fmt::format("{}{}({},{})", part->imaginary ? "Im" : "", operatorPrefix(key.op), key.k,
                                         key.q),
                             standard ? ParameterFamily::CrystalField : ParameterFamily::CorrelationCrystalField,
                             "energy"};
    }
    const int rest = id - kSuperpositionBase;
    if (rest >= 20 && rest <= 61 && (rest / 10) % 2 == 0 && rest % 10 <= 1) {
        const int k = rest / 10;
        return rest % 10 == 0 ? ParameterInfo{id, fmt::format("Abar{}", k), ParameterFamily::Superposition, "energy"}
                              : ParameterInfo{id, fmt::format("t{}", k), ParameterFamily::Superposition, "1"};
    }
    return std::nullopt;
}

std::optional<ParameterId> parameterIdOf(std::string_view name) {
    for (const auto& info : freeIonParameters())
        if (info.name == name) return info.id;
    for (int imaginary = 0; imaginary < 2; ++imaginary)
        for (const auto op : kOperators)
            for (int k = 2; k <= 6; k += 2)
                for (int q = imaginary; q <= k; ++q) {
                    const auto id = crystalFieldParameterId(op, k, q, imaginary == 1);
                    if (parameterInfo(id)->name == name) return id;
                }
    for (int k = 2; k <= 6; k += 2) {
        if (name == fmt::format("Abar{}", k)) return superpositionStrengthId(k);
        if (name == fmt::format("t{}", k)) return superpositionExponentId(k);
    }
    return std::nullopt;
}

}  // namespace orvane
