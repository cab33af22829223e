// The 32 groups (generators in the standard orientations of
// docs/conventions.md) and the names of their irreducible representations.
//
// Names. Koster's numbering is that of Koster, Dimmock, Wheeler & Statz,
// "Properties of the Thirty-Two Point Groups" (MIT Press, 1963); Mulliken's
// names follow Atkins, Child & Phillips, "Tables for Group Theory" (1970) for
// the single-valued irreps, with E1/2, E3/2, E5/2, F3/2 for the spinor irreps
// where that name is conventional. Both are attached through the proper
// rotation group of each group (the proper parts map one to one onto C1, C2,
// C3, C4, C6, D2, D3, D4, D6, T or O; a group with the inversion is its
// proper subgroup times {E, I}, with g/u from chi(I)). An irrep of that group
// is recognised by its dimension, its kind, its crystal quantum numbers mu
// (the character on the rotation by 360/n degrees about the principal axis,
// sum over mu of exp(-i mu 360/n)) and, where mu does not separate irreps,
// its character on a two-fold axis perpendicular to z.
#include <cmath>
#include <numbers>
#include <stdexcept>

#include <fmt/format.h>

#include "params/point_group_definitions.hpp"

namespace orvane::params {

namespace {

using Complex = std::complex<double>;
constexpr double kPi = std::numbers::pi;
constexpr double kTolerance = 1e-6;

const Eigen::Vector3d kX(1, 0, 0), kY(0, 1, 0), kZ(0, 0, 1), kBodyDiagonal(1, 1, 1);

// Where mu leaves two irreps alike: the character on a perpendicular two-fold
// element. XAxis: the rotation by 180 degrees about x. MajorityClass (D3):
// the class that holds two of the three lifts -i n.sigma of the two-fold axes
// n (n in the positive hemisphere); it is the class Koster prints unbarred.
enum class Secondary { None, XAxis, MajorityClass };

struct KosterEntry {
    std::vector<int> twiceMu;  // crystal quantum numbers on the principal probe; size = dimension
    Complex secondary;         // expected character on the secondary element (0: not used)
    std::string_view mulliken;
};

struct LabelTable {
    Eigen::Vector3d axis;  // principal probe: rotation by 360/fold about it
    int fold;
    Secondary secondary;
    std::vector<KosterEntry> irreps;  // in Koster order
};

const Complex kI(0.0, 1.0);

const LabelTable& labelTable(LabelGroup group) {
    static const std::vector<LabelTable> tables = {
        {kZ, 1, Secondary::None, {{{0}, 0, "A"}, {{1}, 0, ""}}},
        {kZ, 2, Secondary::None, {{{0}, 0, "A"}, {{2}, 0, "B"}, {{-1}, 0, ""}, {{1}, 0, ""}}},
        {kZ, 3, Secondary::None,
         {{{0}, 0, "A"}, {{-2}, 0, "E"}, {{2}, 0, "E*"}, {{-1}, 0, ""}, {{1}, 0, ""}, {{3}, 0, ""}}},
        {kZ, 4, Secondary::None,
         {{{0}, 0, "A"}, {{4}, 0, "B"}, {{-2}, 0, "E"}, {{2}, 0, "E*"}, {{-1}, 0, ""}, {{1}, 0, ""},
          {{3}, 0, ""}, {{-3}, 0, ""}}},
        {kZ, 6, Secondary::None,
         {{{0}, 0, "A"}, {{4}, 0, "E2*"}, {{-4}, 0, "E2"}, {{6}, 0, "B"}, {{-2}, 0, "E1"}, {{2}, 0, "E1*"},
          {{-1}, 0, ""}, {{1}, 0, ""}, {{5}, 0, ""}, {{-5}, 0, ""}, {{-3}, 0, ""}, {{3}, 0, ""}}},
        {kZ, 2, Secondary::XAxis,
         {{{0}, 1, "A"}, {{2}, -1, "B2"}, {{0}, -1, "B1"}, {{2}, 1, "B3"}, {{1, -1}, 0, "E1/2"}}},
        {kZ, 3, Secondary::MajorityClass,
         {{{0}, 1, "A1"}, {{0}, -1, "A2"}, {{2, -2}, 0, "E"}, {{1, -1}, 0, "E1/2"}, {{3}, kI, ""},
          {{3}, -kI, ""}}},
        {kZ, 4, Secondary::XAxis,
         {{{0}, 1, "A1"}, {{0}, -1, "A2"}, {{4}, 1, "B1"}, {{4}, -1, "B2"}, {{2, -2}, 0, "E"},
          {{1, -1}, 0, "E1/2"}, {{3, -3}, 0, "E3/2"}}},
        {kZ, 6, Secondary::XAxis,
         {{{0}, 1, "A1"}, {{0}, -1, "A2"}, {{6}, 1, "B1"}, {{6}, -1, "B2"}, {{2, -2}, 0, "E1"},
          {{4, -4}, 0, "E2"}, {{1, -1}, 0, "E1/2"}, {{5, -5}, 0, "E5/2"}, {{3, -3}, 0, "E3/2"}}},
        {kBodyDiagonal, 3, Secondary::None,
         {{{0}, 0, "A"}, {{-2}, 0, "E"}, {{2}, 0, "E*"}, {{0, 2, -2}, 0, "T"}, {{1, -1}, 0, "E1/2"},
          {{3, -1}, 0, ""}, {{3, 1}, 0, ""}}},
        {kZ, 4, Secondary::None,
         {{{0}, 0, "A1"}, {{4}, 0, "A2"}, {{0, 4}, 0, "E"}, {{0, 2, -2}, 0, "T1"}, {{4, 2, -2}, 0, "T2"},
          {{1, -1}, 0, "E1/2"}, {{3, -3}, 0, "E5/2"}, {{1, -1, 3, -3}, 0, "F3/2"}}},
    };
    return tables[static_cast<std::size_t>(group)];
}

GeneratorSpec rotation(const Eigen::Vector3d& axis, double degrees) { return {axis, degrees, false}; }
GeneratorSpec improper(const Eigen::Vector3d& axis, double degrees) { return {axis, degrees, true}; }
const GeneratorSpec kInversion{kZ, 0.0, true};
const GeneratorSpec kC2z = rotation(kZ, 180), kC2x = rotation(kX, 180), kC3z = rotation(kZ, 120),
                    kC4z = rotation(kZ, 90), kC6z = rotation(kZ, 60), kC3d = rotation(kBodyDiagonal, 120);
const GeneratorSpec kMirrorZ = improper(kZ, 180), kMirrorY = improper(kY, 180), kS4z = improper(kZ, 90);

// International Tables order (1..32), the order "/ptgp= n" indexes.
const std::vector<GroupDefinition>& definitions() {
    using L = LabelGroup;
    static const std::vector<GroupDefinition> groups = {
        {"C1", "", "1", {}, L::C1, {}},
        {"Ci", "S2", "-1", {kInversion}, L::C1, {}},
        {"C2", "", "2", {kC2z}, L::C2, {}},
        {"Cs", "C1h", "m", {kMirrorZ}, L::C2, {"A'", "A''"}},
        {"C2h", "", "2/m", {kC2z, kInversion}, L::C2, {}},
        {"D2", "V", "222", {kC2z, kC2x}, L::D2, {}},
        {"C2v", "", "mm2", {kC2z, kMirrorY}, L::D2, {"A1", "B1", "A2", "B2"}},
        {"D2h", "Vh", "mmm", {kC2z, kC2x, kInversion}, L::D2, {}},
        {"C4", "", "4", {kC4z}, L::C4, {}},
        {"S4", "", "-4", {kS4z}, L::C4, {}},
        {"C4h", "", "4/m", {kC4z, kInversion}, L::C4, {}},
        {"D4", "", "422", {kC4z, kC2x}, L::D4, {}},
        {"C4v", "", "4mm", {kC4z, kMirrorY}, L::D4, {}},
        {"D2d", "Vd", "-42m", {kS4z, kC2x}, L::D4, {}},
        {"D4h", "", "4/mmm", {kC4z, kC2x, kInversion}, L::D4, {}},
        {"C3", "", "3", {kC3z}, L::C3, {}},
        {"S6", "C3i", "-3", {kC3z, kInversion}, L::C3, {}},
        {"D3", "", "32", {kC3z, kC2x}, L::D3, {}},
        {"C3v", "", "3m", {kC3z, kMirrorY}, L::D3, {}},
        {"D3d", "", "-3m", {kC3z, kC2x, kInversion}, L::D3, {}},
        {"C6", "", "6", {kC6z}, L::C6, {}},
        {"C3h", "", "-6", {kC3z, kMirrorZ}, L::C6, {"A'", "E'", "E'*", "A''", "E''", "E''*"}},
        {"C6h", "", "6/m", {kC6z, kInversion}, L::C6, {}},
        {"D6", "", "622", {kC6z, kC2x}, L::D6, {}},
        {"C6v", "", "6mm", {kC6z, kMirrorY}, L::D6, {"A1", "A2", "B2", "B1", "E1", "E2"}},
        {"D3h", "", "-6m2", {kC3z, kC2x, kMirrorZ}, L::D6, {"A1'", "A2'", "A1''", "A2''", "E''", "E'"}},
        {"D6h", "", "6/mmm", {kC6z, kC2x, kInversion}, L::D6, {}},
        {"T", "", "23", {kC2z, kC2x, kC3d}, L::T, {}},
        {"Th", "", "m-3", {kC2z, kC2x, kC3d, kInversion}, L::T, {}},
        {"O", "", "432", {kC4z, kC3d}, L::O, {}},
        {"Td", "", "-43m", {kS4z, kC3d}, L::O, {}},
        {"Oh", "", "m-3m", {kC4z, kC3d, kInversion}, L::O, {}},
    };
    return groups;
}

// The character of the irrep of the label group on the proper rotation `lift`:
// that of the element of `group` with this proper part (the proper one when
// the group holds both, which it does exactly when it has the inversion).
std::optional<Complex> imageCharacter(const PointGroup& group, const Irrep& irrep, const Eigen::Matrix2cd& lift) {
    const int proper = group.indexOf({lift, false});
    const int index = proper >= 0 ? proper : group.indexOf({lift, true});
    if (index < 0) return std::nullopt;
    return irrep.characters[group.classOf[index]];
}

// The class of D3 type that holds most positive-hemisphere lifts -i n.sigma
// of the perpendicular two-fold axes (proper elements only in a group with the inversion).
int majorityClass(const PointGroup& group) {
    std::vector<int> count(group.classes.size(), 0);
    for (std::size_t e = 0; e < group.elements.size(); ++e) {
        const auto& element = group.elements[e];
        if (group.hasInversion && element.improper) continue;
        const Eigen::Matrix2cd& u = element.su2;
        if (std::abs(u(0, 0)) > kTolerance) continue;  // not a two-fold rotation about an axis in the xy plane
        const double nx = -u(1, 0).imag(), ny = u(1, 0).real();  // u = -i n.sigma
        if (nx > kTolerance || (std::abs(nx) <= kTolerance && ny > 0)) ++count[group.classOf[e]];
    }
    return static_cast<int>(std::max_element(count.begin(), count.end()) - count.begin());
}

std::string withParity(std::string_view name, char parity) {
    std::string text(name);
    if (text.empty() || parity == 0) return text;
    const auto star = text.find('*');
    text.insert(star == std::string::npos ? text.size() : star, 1, parity);
    return text;
}

}  // namespace

const GroupDefinition& groupDefinition(int number) { return definitions().at(static_cast<std::size_t>(number - 1)); }

void nameIrreps(PointGroup& group, const GroupDefinition& definition) {
    const LabelTable& table = labelTable(definition.labels);
    const Eigen::Matrix2cd probe = rotationLift(table.axis, 2 * kPi / table.fold);
    const int inversion = group.indexOf({Eigen::Matrix2cd::Identity(), true});
    for (auto& irrep : group.irreps) {
        // Characters of the label group's irrep: improper elements divided by the parity.
        const double parity = inversion >= 0 ? irrep.characters[group.classOf[inversion]].real() / irrep.dimension : 1.0;
        irrep.parity = inversion < 0 ? 0 : (parity > 0 ? 'g' : 'u');
        auto image = [&](const Eigen::Matrix2cd& lift) { return imageCharacter(group, irrep, lift); };
        const Complex principal = *image(probe);
        Complex secondary = 0.0;
        if (table.secondary == Secondary::XAxis) secondary = image(rotationLift(kX, kPi)).value_or(0.0);
        if (table.secondary == Secondary::MajorityClass) secondary = irrep.characters[majorityClass(group)];
        int matched = 0;
        for (std::size_t k = 0; k < table.irreps.size(); ++k) {
            const KosterEntry& entry = table.irreps[k];
            Complex expected = 0.0;
            for (int twiceMu : entry.twiceMu) expected += std::polar(1.0, -twiceMu * kPi / table.fold);
            const bool spinor = std::abs(entry.twiceMu.front()) % 2 == 1;
            if (static_cast<int>(entry.twiceMu.size()) != irrep.dimension || spinor != irrep.doubleValued ||
                std::abs(expected - principal) > kTolerance ||
                (entry.secondary != 0.0 && std::abs(entry.secondary - secondary) > kTolerance))
                continue;
            ++matched;
            irrep.koster = static_cast<int>(k) + 1;
            const bool renamed = !irrep.doubleValued && k < definition.singleValuedNames.size();
            irrep.mulliken = withParity(renamed ? definition.singleValuedNames[k] : entry.mulliken, irrep.parity);
        }
        if (matched != 1)
            throw std::logic_error(fmt::format("{}: an irrep of dimension {} matches {} Koster entries", group.name,
                                               irrep.dimension, matched));
    }
    // Permute the irreps (and the conjugate indices) into the order single, double; Koster number; g, u.
    std::vector<int> order(group.irreps.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<int>(i);
    auto key = [&](int i) {
        const Irrep& irrep = group.irreps[i];
        return std::tuple(irrep.doubleValued, irrep.parity == 'u', irrep.koster);
    };
    std::sort(order.begin(), order.end(), [&](int a, int b) { return key(a) < key(b); });
    std::vector<int> position(order.size());
    for (std::size_t p = 0; p < order.size(); ++p) position[order[p]] = static_cast<int>(p);
    std::vector<Irrep> sorted;
    for (int i : order) {
        sorted.push_back(group.irreps[i]);
        sorted.back().conjugate = position[sorted.back().conjugate];
    }
    group.irreps = std::move(sorted);
}

std::optional<int> pointGroupNumber(std::string_view name) {
    const auto& groups = definitions();
    for (std::size_t i = 0; i < groups.size(); ++i)
        if (name == groups[i].name || name == groups[i].hermannMauguin ||
            (!groups[i].alias.empty() && name == groups[i].alias))
            return static_cast<int>(i) + 1;
    return std::nullopt;
}

std::string kosterName(const Irrep& irrep) {
    std::string name = "G" + std::to_string(irrep.koster);
    if (irrep.parity != 0) name += irrep.parity == 'g' ? '+' : '-';
    return name;
}

std::string mullikenOrKoster(const Irrep& irrep) { return irrep.mulliken.empty() ? kosterName(irrep) : irrep.mulliken; }

namespace {

// "z", "x", "y", "[1-10]" (cubic directions), "(60)" (azimuth in the xy plane).
std::string axisText(const Eigen::Vector3d& n) {
    if (std::abs(n.z() - 1) < kTolerance) return "z";
    if (std::abs(n.x() - 1) < kTolerance) return "x";
    if (std::abs(n.y() - 1) < kTolerance) return "y";
    const Eigen::Vector3d scaled = n / n.cwiseAbs().maxCoeff();
    if ((scaled.array().abs() - scaled.array().abs().round()).abs().maxCoeff() < kTolerance) {
        std::string text = "[";
        for (int c = 0; c < 3; ++c) text += fmt::format("{}", static_cast<int>(std::lround(scaled(c))));
        return text + "]";
    }
    return fmt::format("({})", static_cast<int>(std::lround(std::atan2(n.y(), n.x()) * 180 / kPi)));
}

}  // namespace

std::string elementName(const GroupElement& element) {
    const Eigen::Matrix2cd& u = element.su2;
    // u = cos(phi/2) - i sin(phi/2) n.sigma: sin(phi/2) n = (-Im u10, Re u10, -Im u00)
    Eigen::Vector3d sn(-u(1, 0).imag(), u(1, 0).real(), -u(0, 0).imag());
    double phi = 2.0 * std::atan2(sn.norm(), u(0, 0).real());  // [0, 2 pi]
    Eigen::Vector3d n = sn.norm() > kTolerance ? Eigen::Vector3d(sn.normalized()) : kZ;
    const bool negative = n.z() < -kTolerance || (std::abs(n.z()) <= kTolerance &&
                                                  (n.x() < -kTolerance || (std::abs(n.x()) <= kTolerance && n.y() < 0)));
    if (negative) n = -n, phi = -phi;
    if (phi > kPi + kTolerance) phi -= 2 * kPi;
    if (phi < -kPi + kTolerance) phi += 2 * kPi;  // 180 degrees about the positive-hemisphere axis
    const bool barred = (rotationLift(n, phi) - u).cwiseAbs().maxCoeff() > kTolerance;
    auto sign = [](int order, double angle) { return order > 2 ? (angle > 0 ? "+" : "-") : ""; };
    std::string name;
    if (std::abs(phi) < kTolerance) {
        name = element.improper ? "I" : "E";
    } else if (!element.improper) {
        const int order = static_cast<int>(std::lround(2 * kPi / std::abs(phi)));
        name = fmt::format("C{}{}{}", order, axisText(n), sign(order, phi));
    } else if (std::abs(std::abs(phi) - kPi) < kTolerance) {
        name = "m" + axisText(n);
    } else {  // I R(phi) = sigma_h R(phi + 180): the rotoreflection S_m by psi = phi + 180 degrees
        const double psi = std::remainder(phi + kPi, 2 * kPi);
        const int order = static_cast<int>(std::lround(2 * kPi / std::abs(psi)));
        name = fmt::format("S{}{}{}", order, axisText(n), sign(order, psi));
    }
    return barred ? name + "_bar" : name;
}

}  // namespace orvane::params
