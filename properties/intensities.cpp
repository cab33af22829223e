#include "properties/intensities.hpp"

#include <cmath>
#include <stdexcept>

#include "core/physical_constants.hpp"
#include "engine/crystal_field.hpp"
#include "properties/magnetic_moment.hpp"

namespace orvane {

IntensityOperators intensityOperators(const PropertyStates& states, double spinG) {
    EngineTables termsOnly;
    termsOnly.terms = states.terms;
    std::vector<TensorOperator> unitTensors;
    for (std::size_t k = 0; k < 3; ++k) {
        const int rank = kEvenRanks[k];
        unitTensors.emplace_back(states, rank,
                                 tensorBetweenJStates(termsOnly, states.jBasis, states.unitTensor[k], rank));
    }
    return {std::move(unitTensors), magneticMomentOperator(states, spinG)};
}

DipolePolarisation electricDipolePolarisation(int q, int fold) {
    if (fold == 1) return DipolePolarisation::Both;
    const int residue = fold <= 0 ? q : ((q % fold) + fold) % fold;
    if (residue == 0) return DipolePolarisation::Pi;
    if (std::abs(residue) == 1 || residue == fold - 1) return DipolePolarisation::Sigma;
    return DipolePolarisation::Neither;
}

Eigen::MatrixXd lineSquaresFrom(const PropertyStates& states, const IntensityOperators& operators, int level) {
    Eigen::MatrixXd squares = Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(states.states.size()), kLineSquareColumns);
    for (int member : states.levelMembers(level)) {
        for (int k = 0; k < 3; ++k) {
            const auto& op = operators.unitTensors[static_cast<std::size_t>(k)];
            const Eigen::MatrixXd byQ = op.contract(op.braRows(member)).cwiseAbs2();  // columns Q = -rank..rank
            const int rank = static_cast<int>(byQ.cols() / 2);
            squares.col(kU2 + k) += byQ.rowwise().sum();
            for (int c = 0; c < byQ.cols(); ++c) {
                const auto polarisation = electricDipolePolarisation(c - rank, states.fold);
                const bool pi = polarisation == DipolePolarisation::Pi || polarisation == DipolePolarisation::Both;
                const bool sigma = polarisation == DipolePolarisation::Sigma || polarisation == DipolePolarisation::Both;
                if (pi) squares.col(kU2Pi + k) += byQ.col(c);
                if (sigma) squares.col(kU2Sigma + k) += byQ.col(c);
            }
        }
        const Eigen::MatrixXd moment = operators.moment.contract(operators.moment.braRows(member)).cwiseAbs2();
        squares.col(kMD2) += moment.rowwise().sum();
        squares.col(kMDSigma) += moment.col(1);                  // q = 0
        squares.col(kMDPi) += moment.col(0) + moment.col(2);     // q = -1, +1
    }
    return squares;
}

TransitionLine transitionLine(const PropertyStates& states, int initialLevel, int finalLevel,
                              const LineSquares& squares, const IntensityInput& input) {
    const auto initialMembers = states.levelMembers(initialLevel);
    const auto finalMembers = states.levelMembers(finalLevel);
    TransitionLine line;
    line.initial = initialMembers.front();
    line.final = finalMembers.front();
    const double initialEnergy = states.states[line.initial].energy, finalEnergy = states.states[line.final].energy;
    const bool absorption = finalEnergy >= initialEnergy;
    const double lowerDegeneracy = static_cast<double>(absorption ? initialMembers.size() : finalMembers.size());
    const double upperDegeneracy = static_cast<double>(absorption ? finalMembers.size() : initialMembers.size());
    line.wavenumber = std::abs(finalEnergy - initialEnergy);
    line.unitSquares = {squares[kU2], squares[kU4], squares[kU6]};
    line.magneticSquare = squares[kMD2];
    line.magneticSigma = squares[kMDSigma];
    line.magneticPi = squares[kMDPi];
    for (int k = 0; k < 3; ++k) {
        line.strengthED += input.omega[k] * squares[kU2 + k];
        line.strengthEDPi += input.omega[k] * squares[kU2Pi + k];
        line.strengthEDSigma += input.omega[k] * squares[kU2Sigma + k];
    }
    line.strengthMD = kBohrMagnetonSquaredDebye * line.magneticSquare;
    line.dipoleMD = line.strengthMD / lowerDegeneracy;
    if (line.wavenumber <= 0.0) return line;
    line.wavelength = 1e7 / line.wavenumber;
    const double n = input.index.at(line.wavelength);
    line.refractiveIndex = n;
    const double sigma = line.wavenumber;
    line.oscillatorMD = kMagneticOscillatorConstant * n * sigma * line.magneticSquare / lowerDegeneracy;
    line.oscillatorED = kElectricOscillatorConstant * sigma * std::pow(n * n + 2, 2) / (9 * n) * line.strengthED /
                        lowerDegeneracy;
    const double toRate = kRateFromOscillator * n * n * sigma * sigma * lowerDegeneracy / upperDegeneracy;
    line.rateMD = toRate * line.oscillatorMD;
    line.rateED = toRate * line.oscillatorED;
    line.rateEQ = kQuadrupoleRateConstant * std::pow(sigma, 5) * n * n * n * std::pow(input.radiusSquared, 2) *
                  kReducedC2 * kReducedC2 * squares[0] / upperDegeneracy;
    return line;
}

std::vector<TransitionLine> transitionLines(const PropertyStates& states, const IntensityOperators& operators,
                                            int initial, int first, int last, const IntensityInput& input) {
    const int initialLevel = states.states[initial].level;
    const Eigen::MatrixXd squares = lineSquaresFrom(states, operators, initialLevel);
    std::vector<TransitionLine> lines;
    int previousLevel = -1;
    const int end = std::min(last, static_cast<int>(states.states.size()) - 1);
    for (int j = std::max(first, 0); j <= end; ++j) {
        const int level = states.states[j].level;
        if (level == initialLevel || level == previousLevel) continue;
        previousLevel = level;
        LineSquares sums{};
        for (int member : states.levelMembers(level))
            for (int c = 0; c < kLineSquareColumns; ++c) sums[c] += squares(member, c);
        lines.push_back(transitionLine(states, initialLevel, level, sums, input));
    }
    return lines;
}

double levelPopulation(const PropertyStates& states, int level, double temperature) {
    if (!(temperature > 0.0)) throw std::invalid_argument("the temperature must be positive");
    const double kT = kBoltzmannWavenumbersLegacy * temperature;
    double partition = 0.0, own = 0.0;
    for (std::size_t i = 0; i < states.states.size(); ++i) {
        const double weight = std::exp(-states.relativeEnergy(static_cast<int>(i)) / kT);
        partition += weight;
        if (states.states[i].level == level) own += weight;
    }
    return own / partition;
}

JuddOfeltFit fitJuddOfelt(const std::vector<JuddOfeltObservation>& observations) {
    const auto m = static_cast<Eigen::Index>(observations.size());
    if (m < 3) throw std::invalid_argument("the Judd-Ofelt fit needs at least three measured lines");
    bool weighted = true;
    for (const auto& o : observations) weighted = weighted && o.uncertainty > 0.0;
    Eigen::MatrixXd design(m, 3);
    Eigen::VectorXd measured(m), weights(m);
    for (Eigen::Index t = 0; t < m; ++t) {
        const auto& o = observations[t];
        for (int k = 0; k < 3; ++k) design(t, k) = o.unitSquares[k];
        measured(t) = o.measured;
        weights(t) = weighted ? 1.0 / (o.uncertainty * o.uncertainty) : 1.0;
    }
    const Eigen::Matrix3d normal = design.transpose() * weights.asDiagonal() * design;
    const Eigen::LDLT<Eigen::Matrix3d> solver(normal);
    if (solver.info() != Eigen::Success || !solver.isPositive() || std::abs(normal.determinant()) <= 1e-14 * std::pow(normal.norm(), 3))
        throw std::invalid_argument("the measured lines do not determine Omega_2, Omega_4 and Omega_6");
    const Eigen::Vector3d omega = solver.solve(design.transpose() * weights.asDiagonal() * measured);
    const Eigen::VectorXd residuals = measured - design * omega;
    JuddOfeltFit fit;
    for (int k = 0; k < 3; ++k) fit.omega[k] = omega(k);
    fit.rms = std::sqrt(residuals.squaredNorm() / static_cast<double>(m));
    const Eigen::Matrix3d inverse = solver.solve(Eigen::Matrix3d::Identity());
    const double variance = weighted ? 1.0 : (m > 3 ? residuals.squaredNorm() / static_cast<double>(m - 3) : 0.0);
    fit.covariance = variance * inverse;
    for (int a = 0; a < 3; ++a)
        for (int b = 0; b < 3; ++b) fit.correlation(a, b) = inverse(a, b) / std::sqrt(inverse(a, a) * inverse(b, b));
    return fit;
}

}  // namespace orvane
