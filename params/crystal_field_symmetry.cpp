#include "params/crystal_field_symmetry.hpp"

#include <complex>

namespace orvane::params {

namespace {

// Complex B(k,q), q = -k..k (index q + k), from the real coordinates.
Eigen::VectorXcd complexParameters(const Eigen::VectorXd& x, int k) {
    Eigen::VectorXcd b(2 * k + 1);
    b(k) = x(0);
    for (int q = 1; q <= k; ++q) {
        const std::complex<double> value(x(2 * q - 1), x(2 * q));
        b(k + q) = value;
        b(k - q) = (q % 2 == 0 ? 1.0 : -1.0) * std::conj(value);
    }
    return b;
}

Eigen::VectorXd realCoordinates(const Eigen::VectorXcd& b, int k) {
    Eigen::VectorXd x(2 * k + 1);
    x(0) = b(k).real();
    for (int q = 1; q <= k; ++q) {
        x(2 * q - 1) = b(k + q).real();
        x(2 * q) = b(k + q).imag();
    }
    return x;
}

}  // namespace

Eigen::MatrixXd invariantProjector(const PointGroup& group, int k) {
    const int size = 2 * k + 1;
    Eigen::MatrixXd projector = Eigen::MatrixXd::Zero(size, size);
    for (const auto& element : group.elements) {
        const Eigen::MatrixXcd d = wignerD(2 * k, element.su2);  // rows and columns q = -k..k
        for (int c = 0; c < size; ++c)
            projector.col(c) += realCoordinates(d * complexParameters(Eigen::VectorXd::Unit(size, c), k), k);
    }
    return projector / static_cast<double>(group.elements.size());
}

std::vector<CrystalFieldComponent> allowedCrystalFieldComponents(const PointGroup& group) {
    std::vector<CrystalFieldComponent> allowed;
    for (int k = 2; k <= 6; k += 2) {
        const Eigen::MatrixXd projector = invariantProjector(group, k);
        for (int q = 0; q <= k; ++q)
            for (bool imaginary : {false, true}) {
                if (q == 0 && imaginary) continue;
                const int index = q == 0 ? 0 : 2 * q - (imaginary ? 0 : 1);
                if (projector(index, index) > 1e-9) allowed.push_back({k, q, imaginary});
            }
    }
    return allowed;
}

bool crystalFieldComponentAllowed(const PointGroup& group, const CrystalFieldComponent& component) {
    if (component.k == 0) return component.q == 0 && !component.imaginary;
    for (const auto& allowed : allowedCrystalFieldComponents(group))
        if (allowed.k == component.k && allowed.q == component.q && allowed.imaginary == component.imaginary)
            return true;
    return false;
}

}  // namespace orvane::params
