#include "engine/energy_levels_derivatives.hpp"

#include <complex>
#include <stdexcept>

#include <fmt/format.h>

namespace orvane {

namespace {

// A component of the free-ion stage between free-ion levels (zero between different J).
Eigen::MatrixXd componentBetweenLevels(const FreeIonComponent& component, const FreeIonSolution& freeIon) {
    const auto count = static_cast<Eigen::Index>(freeIon.levels.size());
    Eigen::MatrixXd matrix = Eigen::MatrixXd::Zero(count, count);
    for (Eigen::Index a = 0; a < count; ++a)
        for (Eigen::Index b = 0; b < count; ++b) {
            const auto& x = freeIon.levels[a];
            const auto& y = freeIon.levels[b];
            if (x.block == y.block) matrix(a, b) = x.vector.dot(component.blocks[x.block] * y.vector);
        }
    return matrix;
}

// <psi| A |psi> for a real symmetric or antisymmetric-times-i block operator.
template <typename Matrix>
double expectation(const CrystalFieldLevel& level, const Matrix& matrix, bool timesI) {
    if (level.complexVector.size() > 0) {
        const Eigen::VectorXcd applied = matrix.template cast<std::complex<double>>() * level.complexVector;
        const std::complex<double> value = level.complexVector.dot(applied);
        return timesI ? -value.imag() : value.real();  // <psi| i A |psi> = i (a + i b) -> -b
    }
    if (timesI) return 0.0;  // a real vector gives <psi| i A |psi> = 0 for antisymmetric A
    return level.vector.dot(matrix * level.vector);
}

// The parameter letter of a crystal-field operator: "B", or the correlation
// sections' "SCCF C", "LCCF D", "OCCFA G", "OCCFB G".
const char* parameterName(CrystalFieldOperator op) {
    switch (op) {
        case CrystalFieldOperator::Sccf: return "SCCF C";
        case CrystalFieldOperator::Lccf: return "LCCF D";
        case CrystalFieldOperator::OccfA: return "OCCFA G";
        case CrystalFieldOperator::OccfB: return "OCCFB G";
        case CrystalFieldOperator::Standard: break;
    }
    return "B";
}

}  // namespace

LevelDerivatives freeIonDerivatives(const EnergyLevelResult& result) {
    LevelDerivatives derivatives;
    const auto& components = result.freeIonOperators.components;
    const auto& levels = result.freeIon.levels;
    derivatives.values.resize(static_cast<Eigen::Index>(levels.size()), static_cast<Eigen::Index>(components.size()));
    for (std::size_t c = 0; c < components.size(); ++c) {
        derivatives.parameters.push_back(components[c].name);
        for (std::size_t l = 0; l < levels.size(); ++l)
            derivatives.values(l, c) =
                levels[l].vector.dot(components[c].blocks[levels[l].block] * levels[l].vector);
    }
    return derivatives;
}

LevelDerivatives crystalFieldDerivatives(const EnergyLevelResult& result) {
    const auto& levels = result.crystalField.levels;
    // The components between free-ion levels (the engine itself works on |SL J MJ>, engine/model.hpp).
    const bool complexVectors = !levels.empty() && levels.front().complexVector.size() > 0;
    const auto operators = levelBasisOperators(result, complexVectors);
    for (const auto& level : levels)
        if (level.vector.size() == 0 && level.complexVector.size() == 0)
            throw std::invalid_argument("crystal-field derivatives need the eigenvectors");
    LevelDerivatives derivatives;
    const auto& components = result.freeIonOperators.components;
    const bool complex = !operators.imaginaryPart.empty();
    const auto parameterCount = components.size() + operators.keys.size() * (complex ? 2 : 1);
    derivatives.values = Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(levels.size()),
                                               static_cast<Eigen::Index>(parameterCount));
    std::size_t column = 0;
    for (const auto& component : components) {
        derivatives.parameters.push_back(component.name);
        const auto betweenLevels = componentBetweenLevels(component, result.freeIon);
        // Per block: the component in the |a J M> states (diagonal in J and M).
        std::vector<Eigen::MatrixXd> blocks;
        for (const auto& block : operators.blocks) {
            const auto size = static_cast<Eigen::Index>(block.states.size());
            Eigen::MatrixXd matrix = Eigen::MatrixXd::Zero(size, size);
            for (Eigen::Index i = 0; i < size; ++i)
                for (Eigen::Index j = 0; j < size; ++j) {
                    const auto& a = block.states[i];
                    const auto& b = block.states[j];
                    if (a.twiceJ == b.twiceJ && a.twiceM == b.twiceM) matrix(i, j) = betweenLevels(a.level, b.level);
                }
            blocks.push_back(std::move(matrix));
        }
        for (std::size_t l = 0; l < levels.size(); ++l)
            derivatives.values(l, column) = expectation(levels[l], blocks[levels[l].block], false);
        ++column;
    }
    for (std::size_t key = 0; key < operators.keys.size(); ++key) {
        const auto& k = operators.keys[key];
        derivatives.parameters.push_back(fmt::format("Re{}({},{})", parameterName(k.op), k.k, k.q));
        for (std::size_t l = 0; l < levels.size(); ++l)
            derivatives.values(l, column) = expectation(levels[l], operators.realPart[key][levels[l].block], false);
        ++column;
        if (!complex) continue;
        derivatives.parameters.push_back(fmt::format("Im{}({},{})", parameterName(k.op), k.k, k.q));
        for (std::size_t l = 0; l < levels.size(); ++l)
            derivatives.values(l, column) =
                expectation(levels[l], operators.imaginaryPart[key][levels[l].block], true);
        ++column;
    }
    return derivatives;
}

}  // namespace orvane
