#include "tables/slater_determinants.hpp"

#include <array>
#include <bit>
#include <cmath>

#include "core/angular.hpp"

namespace orvane {

namespace {

DeterminantSpace makeSpace(int n) {
    DeterminantSpace space;
    space.electrons = n;
    space.indexOfMask.assign(1u << kSpinOrbitals, -1);
    for (unsigned mask = 0; mask < (1u << kSpinOrbitals); ++mask) {
        if (std::popcount(mask) != n) continue;
        space.indexOfMask[mask] = static_cast<int>(space.masks.size());
        space.masks.push_back(static_cast<std::uint16_t>(mask));
    }
    return space;
}

// (-1)^(number of occupied spin-orbitals below p)
double orderingSign(unsigned mask, int p) {
    return (std::popcount(mask & ((1u << p) - 1u)) % 2 == 0) ? 1.0 : -1.0;
}

}  // namespace

const DeterminantSpace& determinantSpace(int n) {
    static const std::array<DeterminantSpace, kSpinOrbitals + 1> spaces = [] {
        std::array<DeterminantSpace, kSpinOrbitals + 1> all;
        for (int k = 0; k <= kSpinOrbitals; ++k) all[static_cast<std::size_t>(k)] = makeSpace(k);
        return all;
    }();
    return spaces.at(static_cast<std::size_t>(n));
}

int twiceSpinProjectionOf(std::uint16_t mask) {
    int total = 0;
    for (int p = 0; p < kSpinOrbitals; ++p)
        if (mask & (1u << p)) total += twiceSpinProjection(p);
    return total;
}

int orbitalProjectionOf(std::uint16_t mask) {
    int total = 0;
    for (int p = 0; p < kSpinOrbitals; ++p)
        if (mask & (1u << p)) total += orbitalProjection(p);
    return total;
}

// Standard ladder elements: l+ |l m> = sqrt(l(l+1) - m(m+1)) |l m+1>.
OneBodyOperator orbitalRaising() {
    OneBodyOperator op;
    for (int m = -kShellL; m < kShellL; ++m)
        for (int s : {1, -1})
            op.push_back({spinOrbital(m + 1, s), spinOrbital(m, s),
                          std::sqrt(kShellL * (kShellL + 1.0) - m * (m + 1.0))});
    return op;
}

OneBodyOperator orbitalLowering() {
    OneBodyOperator op;
    for (const auto& e : orbitalRaising()) op.push_back({e.annihilator, e.creator, e.value});
    return op;
}

// s+ |1/2 -1/2> = |1/2 1/2>.
OneBodyOperator spinRaising() {
    OneBodyOperator op;
    for (int m = -kShellL; m <= kShellL; ++m) op.push_back({spinOrbital(m, 1), spinOrbital(m, -1), 1.0});
    return op;
}

OneBodyOperator spinLowering() {
    OneBodyOperator op;
    for (const auto& e : spinRaising()) op.push_back({e.annihilator, e.creator, e.value});
    return op;
}

// Edmonds (5.4.1) with <l||u(k)||l> = 1.
OneBodyOperator unitTensorComponent(int k, int q) {
    OneBodyOperator op;
    for (int m = -kShellL; m <= kShellL; ++m) {
        const int mp = m - q;
        if (mp < -kShellL || mp > kShellL) continue;
        const double value = (((kShellL - m) % 2 == 0) ? 1.0 : -1.0) *
                             ThreeJ2(2 * kShellL, 2 * k, 2 * kShellL, -2 * m, 2 * q, 2 * mp);
        if (value == 0.0) continue;
        for (int s : {1, -1}) op.push_back({spinOrbital(m, s), spinOrbital(mp, s), value});
    }
    return op;
}

Eigen::VectorXd applyOneBody(const OneBodyOperator& op, const DeterminantSpace& space,
                             const Eigen::VectorXd& state) {
    Eigen::VectorXd result = Eigen::VectorXd::Zero(space.size());
    for (int i = 0; i < space.size(); ++i) {
        const double c = state[i];
        if (c == 0.0) continue;
        const unsigned mask = space.masks[static_cast<std::size_t>(i)];
        for (const auto& e : op) {
            if (!(mask & (1u << e.annihilator))) continue;
            const unsigned removed = mask ^ (1u << e.annihilator);
            if (removed & (1u << e.creator)) continue;
            const double sign = orderingSign(mask, e.annihilator) * orderingSign(removed, e.creator);
            const unsigned target = removed | (1u << e.creator);
            result[space.indexOfMask[target]] += sign * e.value * c;
        }
    }
    return result;
}

Eigen::VectorXd annihilate(int p, const DeterminantSpace& from, const Eigen::VectorXd& state) {
    const auto& to = determinantSpace(from.electrons - 1);
    Eigen::VectorXd result = Eigen::VectorXd::Zero(to.size());
    for (int i = 0; i < from.size(); ++i) {
        const double c = state[i];
        if (c == 0.0) continue;
        const unsigned mask = from.masks[static_cast<std::size_t>(i)];
        if (!(mask & (1u << p))) continue;
        result[to.indexOfMask[mask ^ (1u << p)]] += orderingSign(mask, p) * c;
    }
    return result;
}

Eigen::VectorXd create(int p, const DeterminantSpace& from, const Eigen::VectorXd& state) {
    const auto& to = determinantSpace(from.electrons + 1);
    Eigen::VectorXd result = Eigen::VectorXd::Zero(to.size());
    for (int i = 0; i < from.size(); ++i) {
        const double c = state[i];
        if (c == 0.0) continue;
        const unsigned mask = from.masks[static_cast<std::size_t>(i)];
        if (mask & (1u << p)) continue;
        result[to.indexOfMask[mask | (1u << p)]] += orderingSign(mask, p) * c;
    }
    return result;
}

// Scalar product of tensor operators, Edmonds (5.1.2): sum_q (-1)^q T_q T_-q.
Eigen::VectorXd applyUnitTensorScalar(int k, const DeterminantSpace& space,
                                      const Eigen::VectorXd& state) {
    Eigen::VectorXd result = Eigen::VectorXd::Zero(space.size());
    for (int q = -k; q <= k; ++q) {
        const Eigen::VectorXd inner = applyOneBody(unitTensorComponent(k, -q), space, state);
        const double sign = (q % 2 == 0) ? 1.0 : -1.0;
        result += sign * applyOneBody(unitTensorComponent(k, q), space, inner);
    }
    return result;
}

// Quasi-spin of the f shell (Judd, Second Quantization and Atomic Spectroscopy, 1967):
// Q+ = 1/2 sum_{m sigma} (-1)^(l - m + 1/2 - sigma) a+_{m sigma} a+_{-m -sigma};
// Q- = (Q+)^dagger = 1/2 sum (same phase) a_{-m -sigma} a_{m sigma}.
Eigen::VectorXd applyQuasiSpinProduct(const DeterminantSpace& space, const Eigen::VectorXd& state) {
    if (space.electrons < 2) return Eigen::VectorXd::Zero(space.size());
    const auto& lower = determinantSpace(space.electrons - 1);
    const auto& pairRemoved = determinantSpace(space.electrons - 2);
    Eigen::VectorXd annihilated = Eigen::VectorXd::Zero(pairRemoved.size());
    std::vector<std::pair<int, int>> pairs;
    std::vector<double> phases;
    for (int m = -kShellL; m <= kShellL; ++m)
        for (int s : {1, -1}) {
            // exponent l - m + 1/2 - sigma with sigma = s/2: (2l - 2m + 1 - s)/2
            const int exponent = (2 * kShellL - 2 * m + 1 - s) / 2;
            phases.push_back(0.5 * ((exponent % 2 == 0) ? 1.0 : -1.0));
            pairs.emplace_back(spinOrbital(m, s), spinOrbital(-m, -s));
        }
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const auto once = annihilate(pairs[i].first, space, state);
        annihilated += phases[i] * annihilate(pairs[i].second, lower, once);
    }
    Eigen::VectorXd result = Eigen::VectorXd::Zero(space.size());
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const auto once = create(pairs[i].second, pairRemoved, annihilated);
        result += phases[i] * create(pairs[i].first, lower, once);
    }
    return result;
}

}  // namespace orvane
