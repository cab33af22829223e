#include "fit/workspace_functions.hpp"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "core/number_format.hpp"
#include "params/cf_invariants.hpp"
#include "params/free_ion_conversion.hpp"

namespace orvane {
namespace {

constexpr std::string_view kValuePicture = "######0.0000";
constexpr std::array<ParameterId, kElectrostaticOperatorCount> kStrengthIds = {
    parameter::kF2, parameter::kF4, parameter::kF6, parameter::kAlpha, parameter::kBeta, parameter::kGamma};
constexpr std::array<std::string_view, kElectrostaticOperatorCount> kStrengthNames = {"F2",    "F4",   "F6",
                                                                                      "ALPHA", "BETA", "GAMMA"};

std::string valueLine(std::string_view name, double value) {
    return std::string(name) + " = " + formatNumber(value, kValuePicture);
}

// Root-mean-square spread sqrt(Tr(H'^2)/Tr(1)) of a scalar operator given in
// the term basis, H' = H - Tr(H)/Tr(1), traces over the |SLJM> states.
double spreadOverStates(const std::vector<EngineTerm>& terms, const Eigen::MatrixXd& h) {
    const Eigen::MatrixXd one = Eigen::MatrixXd::Identity(h.rows(), h.cols());
    const double states = stateSpaceTrace(terms, one, one);
    const double mean = stateSpaceTrace(terms, h, one) / states;
    return std::sqrt(std::max(0.0, stateSpaceTrace(terms, h, h) / states - mean * mean));
}

}  // namespace

std::vector<std::string> energyAverageLines(const std::vector<double>& energies) {
    std::vector<std::string> lines = {"Average and SD of all energies"};
    if (energies.empty()) return lines;
    double sum = 0.0, squares = 0.0;
    for (double e : energies) sum += e;
    const double mean = sum / static_cast<double>(energies.size());
    for (double e : energies) squares += (e - mean) * (e - mean);
    lines.push_back("Number of energies = " + std::to_string(energies.size()));
    lines.push_back(valueLine("Average", mean));
    lines.push_back(valueLine("SD", std::sqrt(squares / static_cast<double>(energies.size()))));
    return lines;
}

std::vector<WybourneParameter> wybourneParametersOf(const ParameterVector& parameters) {
    std::vector<WybourneParameter> result;
    const auto values = parameters.withLinksApplied();
    for (const auto& [id, value] : values.entries()) {
        const auto part = crystalFieldPartOf(id);
        if (!part || part->key.op != CrystalFieldOperator::Standard) continue;
        auto found = std::find_if(result.begin(), result.end(), [&](const WybourneParameter& p) {
            return p.k == part->key.k && p.q == part->key.q;
        });
        if (found == result.end()) found = result.insert(result.end(), {part->key.k, part->key.q, 0.0, 0.0});
        (part->imaginary ? found->im : found->re) = value;
    }
    return result;
}

std::vector<std::string> crystalFieldInvariantLines(const std::vector<WybourneParameter>& parameters) {
    params::CfTable table;
    for (const auto& p : parameters) table.rows.push_back({p.k, p.q, {"", p.re}, {"", p.im}});
    std::vector<std::string> lines = {"Crystal field invariants and strength"};
    for (auto& line : params::invariantLines(params::computeInvariants(table, params::CfNormalisation::Wybourne)))
        lines.push_back(std::move(line));
    return lines;
}

ElectrostaticStrength electrostaticStrength(const EngineTables& tables, const ParameterVector& parameters) {
    // F^k f_k (Slater-Condon) and the two-body configuration-interaction
    // operators L(L+1), G(G2), G(R7) (Rajnak & Wybourne 1963).
    const auto racah = electrostaticOperators(tables);
    const std::array<const Eigen::MatrixXd*, kElectrostaticOperatorCount> operators = {
        &tables.coulomb[0], &tables.coulomb[1], &tables.coulomb[2], &racah[3], &racah[4], &racah[5]};
    const auto values = parameters.withLinksApplied();
    ElectrostaticStrength result;
    Eigen::MatrixXd h = Eigen::MatrixXd::Zero(racah[0].rows(), racah[0].cols());
    for (std::size_t i = 0; i < operators.size(); ++i) {
        const double p = values.value(kStrengthIds[i]);
        h += p * *operators[i];
        result.single[i] = std::abs(p) * spreadOverStates(tables.terms, *operators[i]);
    }
    result.total = spreadOverStates(tables.terms, h);
    return result;
}

std::vector<std::string> electrostaticStrengthLines(const EngineTables& tables, const ParameterVector& parameters) {
    const auto strength = electrostaticStrength(tables, parameters);
    std::vector<std::string> lines = {"Electrostatic repulsion strength", valueLine("Strength", strength.total)};
    for (std::size_t i = 0; i < kStrengthNames.size(); ++i)
        lines.push_back(valueLine(std::string(kStrengthNames[i]) + " alone", strength.single[i]));
    return lines;
}

std::vector<std::string> orthonormalisedElectrostaticLines(const EngineTables& tables,
                                                           const ParameterVector& parameters) {
    const auto values = parameters.withLinksApplied();
    const auto e = params::racahFromLowerSlater(params::lowerSlaterFromUpper(
        {values.value(parameter::kF2), values.value(parameter::kF4), values.value(parameter::kF6)}));
    const ElectrostaticParameters original = {e[0], e[1], e[2], values.value(parameter::kAlpha),
                                              values.value(parameter::kBeta), values.value(parameter::kGamma)};
    const auto converted = orthogonalParameters(orthogonaliseElectrostatic(tables), original);
    std::vector<std::string> lines = {"Orthonormalised electrostatic repulsion parameters"};
    for (std::size_t j = 0; j < converted.size(); ++j)
        lines.push_back(valueLine(kElectrostaticParameterNames[j], converted[j]));
    return lines;
}

}  // namespace orvane
