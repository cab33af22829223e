#include "params/point_group.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <numbers>
#include <stdexcept>

#include <fmt/format.h>

#include "core/angular.hpp"
#include "core/eigen_solver.hpp"
#include "params/point_group_definitions.hpp"

namespace orvane::params {

namespace {

using Complex = std::complex<double>;
constexpr double kSame = 1e-8;
constexpr double kPi = std::numbers::pi;

bool sameElement(const GroupElement& a, const GroupElement& b) {
    return a.improper == b.improper && (a.su2 - b.su2).cwiseAbs().maxCoeff() < kSame;
}

GroupElement times(const GroupElement& a, const GroupElement& b) {
    return {a.su2 * b.su2, a.improper != b.improper};
}

GroupElement inverse(const GroupElement& a) { return {a.su2.adjoint(), a.improper}; }

// Closes the generators (with E_bar) under multiplication; E first, E_bar second.
std::vector<GroupElement> closure(const std::vector<GroupElement>& generators) {
    std::vector<GroupElement> elements = {GroupElement{}, GroupElement{-Eigen::Matrix2cd::Identity(), false}};
    auto known = [&](const GroupElement& g) {
        for (const auto& e : elements)
            if (sameElement(e, g)) return true;
        return false;
    };
    for (std::size_t i = 0; i < elements.size(); ++i)
        for (const auto& generator : generators) {
            const GroupElement next = times(elements[i], generator);
            if (!known(next)) elements.push_back(next);
        }
    return elements;
}

void buildProductsAndClasses(PointGroup& group) {
    const int n = static_cast<int>(group.elements.size());
    group.product.assign(n, std::vector<int>(n, -1));
    for (int a = 0; a < n; ++a)
        for (int b = 0; b < n; ++b) {
            group.product[a][b] = group.indexOf(times(group.elements[a], group.elements[b]));
            if (group.product[a][b] < 0) throw std::logic_error("point group not closed: " + group.name);
        }
    std::vector<bool> placed(n, false);
    std::vector<SymmetryClass> classes;
    for (int x = 0; x < n; ++x) {
        if (placed[x]) continue;
        SymmetryClass cls;
        for (int g = 0; g < n; ++g) {
            const int conjugate = group.indexOf(times(times(group.elements[g], group.elements[x]),
                                                      inverse(group.elements[g])));
            if (!placed[conjugate]) placed[conjugate] = true, cls.elements.push_back(conjugate);
        }
        // Named after an unbarred member where there is one: "6C4z+", "E_bar".
        std::string name = elementName(group.elements[x]);
        for (int e : cls.elements)
            if (const auto text = elementName(group.elements[e]); text.find("_bar") == std::string::npos) {
                name = text;
                break;
            }
        const auto size = cls.elements.size();
        cls.name = (size > 1 ? std::to_string(size) : "") + name;
        classes.push_back(cls);
    }
    // E, E_bar, then proper before improper, classes with an unbarred name first.
    std::stable_sort(classes.begin() + 2, classes.end(), [&](const SymmetryClass& a, const SymmetryClass& b) {
        auto key = [&](const SymmetryClass& c) {
            return std::pair(group.elements[c.elements.front()].improper, c.name.find("_bar") != std::string::npos);
        };
        return key(a) < key(b);
    });
    group.classes = classes;
    group.classOf.assign(n, -1);
    for (std::size_t c = 0; c < classes.size(); ++c)
        for (int e : classes[c].elements) group.classOf[e] = static_cast<int>(c);
}

// Burnside's method (Burnside 1911; Dixon 1967): with c(r,s,t) the class
// multiplication coefficients, the vectors u_t = sqrt(|C_t|/|G|) chi(C_t) of
// the irreducible characters are the common orthonormal eigenvectors of the
// normal matrices M_r(s,t) = c(r,s,t) sqrt(|C_t|/|C_s|), M_r' = M_r^+ for the
// inverse class. One Hermitian combination with unrelated weights separates
// them all; its eigenvectors give the characters.
std::vector<std::vector<Complex>> irreducibleCharacters(const PointGroup& group) {
    const int classes = static_cast<int>(group.classes.size());
    const double order = static_cast<double>(group.elements.size());
    std::vector<Eigen::MatrixXd> coefficient(classes, Eigen::MatrixXd::Zero(classes, classes));
    for (int r = 0; r < classes; ++r)
        for (int x : group.classes[r].elements)
            for (int y = 0; y < static_cast<int>(group.elements.size()); ++y)
                coefficient[r](group.classOf[y], group.classOf[group.product[x][y]]) += 1.0;
    Eigen::MatrixXcd combination = Eigen::MatrixXcd::Zero(classes, classes);
    for (int r = 0; r < classes; ++r) {
        Eigen::MatrixXd normal(classes, classes);
        for (int s = 0; s < classes; ++s)
            for (int t = 0; t < classes; ++t) {
                const double sizeS = static_cast<double>(group.classes[s].elements.size());
                const double sizeT = static_cast<double>(group.classes[t].elements.size());
                // coefficient counts pairs (x in C_r, y in C_s) with x y in C_t: divide by |C_t|
                normal(s, t) = coefficient[r](s, t) / sizeT * std::sqrt(sizeT / sizeS);
            }
        const Complex weight(std::sqrt(2.0 + r), std::sqrt(3.0 + 2 * r) - 1.0);  // unrelated weights
        combination += weight * normal + std::conj(weight) * normal.transpose();
    }
    const auto eigen = hermitianEigenpairs(combination);
    for (int i = 1; i < classes; ++i)
        if (eigen.values(i) - eigen.values(i - 1) < 1e-6)
            throw std::logic_error("irreducible characters not separated in " + group.name);
    std::vector<std::vector<Complex>> characters;
    for (int i = 0; i < classes; ++i) {
        Eigen::VectorXcd u = eigen.vectors.col(i);
        u *= std::abs(u(0)) / u(0);  // chi(E) real and positive
        const double dimension = std::round(u(0).real() * std::sqrt(order));
        std::vector<Complex> row(classes);
        // u_t / u_E = sqrt(|C_t|) chi_t / d: undo the class size
        for (int t = 0; t < classes; ++t)
            row[t] = u(t) / u(0).real() * dimension / std::sqrt(static_cast<double>(group.classes[t].elements.size()));
        for (auto& value : row) {  // exact zeros and integers where the value is one
            auto clean = [](double v) { return std::abs(v - std::round(v)) < 1e-10 ? std::round(v) + 0.0 : v; };
            value = {clean(value.real()), clean(value.imag())};
        }
        characters.push_back(row);
    }
    return characters;
}

void completeIrreps(PointGroup& group) {
    const auto characters = irreducibleCharacters(group);
    const double order = static_cast<double>(group.elements.size());
    for (const auto& row : characters) {
        Irrep irrep;
        irrep.characters = row;
        irrep.dimension = static_cast<int>(std::lround(row[0].real()));
        irrep.doubleValued = row[1].real() < 0;  // class 1 is E_bar
        double indicator = 0.0;  // Frobenius-Schur: (1/|G|) sum_g chi(g^2)
        for (std::size_t g = 0; g < group.elements.size(); ++g)
            indicator += row[group.classOf[group.product[g][g]]].real();
        irrep.frobeniusSchur = static_cast<int>(std::lround(indicator / order));
        group.irreps.push_back(irrep);
    }
    for (auto& irrep : group.irreps)
        for (std::size_t b = 0; b < group.irreps.size(); ++b) {
            bool conjugate = true;
            for (std::size_t t = 0; t < irrep.characters.size(); ++t)
                conjugate = conjugate && std::abs(std::conj(irrep.characters[t]) - group.irreps[b].characters[t]) < 1e-8;
            if (conjugate) irrep.conjugate = static_cast<int>(b);
        }
}

int foldOfZ(const PointGroup& group) {
    int fold = 1;
    for (const auto& element : group.elements) {
        if (std::abs(element.su2(0, 1)) > kSame) continue;  // proper part not about z
        const double angle = 2.0 * std::arg(element.su2(1, 1));  // phi (mod 2 pi)
        for (int n = 1; n <= 6; ++n)
            if (std::abs(std::remainder(n * angle, 2 * kPi)) < 1e-8) {
                fold = std::max(fold, n);
                break;
            }
    }
    return fold;
}

PointGroup buildGroup(int number) {
    const GroupDefinition& definition = groupDefinition(number);
    PointGroup group;
    group.number = number;
    group.name = std::string(definition.name);
    group.hermannMauguin = std::string(definition.hermannMauguin);
    std::vector<GroupElement> generators;
    for (const auto& generator : definition.generators)
        generators.push_back({rotationLift(generator.axis, generator.degrees * kPi / 180.0), generator.improper});
    group.elements = closure(generators);
    group.hasInversion = group.indexOf({Eigen::Matrix2cd::Identity(), true}) >= 0;
    buildProductsAndClasses(group);
    completeIrreps(group);
    group.fold = foldOfZ(group);
    nameIrreps(group, definition);
    return group;
}

}  // namespace

Eigen::Matrix2cd rotationLift(const Eigen::Vector3d& axis, double angle) {
    const Eigen::Vector3d n = axis.normalized();
    const Complex i(0.0, 1.0);
    Eigen::Matrix2cd nSigma;
    nSigma << n.z(), Complex(n.x(), -n.y()), Complex(n.x(), n.y()), -n.z();
    return std::cos(angle / 2) * Eigen::Matrix2cd::Identity() - i * std::sin(angle / 2) * nSigma;
}

int PointGroup::indexOf(const GroupElement& element) const {
    for (std::size_t i = 0; i < elements.size(); ++i)
        if (sameElement(elements[i], element)) return static_cast<int>(i);
    return -1;
}

const PointGroup& pointGroup(int number) {
    if (number < 1 || number > kPointGroupCount)
        throw std::out_of_range(fmt::format("no crystallographic point group number {}", number));
    static std::array<PointGroup, kPointGroupCount> groups;
    static std::array<std::once_flag, kPointGroupCount> built;
    std::call_once(built[number - 1], [&] { groups[number - 1] = buildGroup(number); });
    return groups[number - 1];
}

Eigen::MatrixXcd wignerD(int twiceJ, const Eigen::Matrix2cd& u) {
    // U = exp(-i a Jz) exp(-i b Jy) exp(-i c Jz) on spin 1/2:
    // u00 = e^{-i(a+c)/2} cos(b/2), u10 = e^{i(a-c)/2} sin(b/2). The half
    // angles are kept as found so that half-integral J follow the lift.
    const double beta = 2.0 * std::atan2(std::abs(u(1, 0)), std::abs(u(0, 0)));
    const double sum = std::abs(u(0, 0)) > 1e-12 ? -std::arg(u(0, 0)) : 0.0;  // (a + c) / 2
    const double difference = std::abs(u(1, 0)) > 1e-12 ? std::arg(u(1, 0)) : 0.0;  // (a - c) / 2
    const double alpha = sum + difference, gamma = sum - difference;
    const Eigen::MatrixXd d = RotationMatrixD2(twiceJ, beta);
    Eigen::MatrixXcd D(twiceJ + 1, twiceJ + 1);
    for (int r = 0; r <= twiceJ; ++r)
        for (int c = 0; c <= twiceJ; ++c) {
            const double mRow = r - twiceJ / 2.0, mColumn = c - twiceJ / 2.0;
            D(r, c) = std::polar(d(r, c), -mRow * alpha - mColumn * gamma);
        }
    return D;
}

int improperFactor(ImproperAction action, int electrons) {
    return action == ImproperAction::ProperPart || electrons % 2 == 0 ? 1 : -1;
}

std::vector<std::complex<double>> angularMomentumCharacters(const PointGroup& group, int twiceJ, int improperSign) {
    std::vector<Complex> characters;
    for (const auto& cls : group.classes) {
        const auto& element = group.elements[cls.elements.front()];
        // trace of D(J) = sin((2J+1) phi/2) / sin(phi/2) with cos(phi/2) = Re tr U / 2
        const double halfAngle = std::acos(std::clamp(element.su2.trace().real() / 2.0, -1.0, 1.0));
        double trace = 0.0;
        for (int twiceM = -twiceJ; twiceM <= twiceJ; twiceM += 2) trace += std::cos(twiceM * halfAngle);
        characters.emplace_back(trace * (element.improper ? improperSign : 1), 0.0);
    }
    return characters;
}

std::vector<double> irrepMultiplicities(const PointGroup& group, const std::vector<std::complex<double>>& characters) {
    std::vector<double> multiplicities;
    for (const auto& irrep : group.irreps) {
        Complex sum = 0.0;
        for (std::size_t t = 0; t < group.classes.size(); ++t)
            sum += static_cast<double>(group.classes[t].elements.size()) * std::conj(irrep.characters[t]) *
                   characters[t];
        multiplicities.push_back(sum.real() / static_cast<double>(group.elements.size()));
    }
    return multiplicities;
}

}  // namespace orvane::params
