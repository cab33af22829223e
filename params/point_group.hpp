#pragma once
// The 32 crystallographic point groups and their double groups, built from
// generators in the standard orientations of docs/conventions.md ("Site
// symmetry"): elements, conjugacy classes and the irreducible characters,
// computed here (Burnside's class-multiplication method), then named with
// Koster's numbering (Koster, Dimmock, Wheeler & Statz, "Properties of the
// Thirty-Two Point Groups", MIT Press 1963) and Mulliken's names.
//
// Elements. A proper rotation R(n, phi) (active, counter-clockwise seen from
// the tip of n) is carried by its SU(2) lift U = exp(-i phi n.sigma/2); the
// double group holds U and -U (the "barred" element). An improper element
// I R is the pair (U(R), improper): inversion commutes with everything and
// squares to E. On the states of f^n an improper element acts as (-1)^n times
// its proper part (parity of f^n), or, in the proper-rotation labelling used
// by part of the literature, as its proper part alone.
#include <complex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <Eigen/Dense>

namespace orvane::params {

struct GroupElement {
    Eigen::Matrix2cd su2 = Eigen::Matrix2cd::Identity();  // basis |+1/2>, |-1/2>
    bool improper = false;
};

// SU(2) lift of the rotation by `angle` (radians) about the unit direction of `axis`.
Eigen::Matrix2cd rotationLift(const Eigen::Vector3d& axis, double angle);

// "E", "E_bar", "C4z+", "C2[110]", "C2(60)", "mz", "S4z-", "I", with "_bar"
// for the barred partner (naming of docs/conventions.md).
std::string elementName(const GroupElement& element);

struct SymmetryClass {
    std::vector<int> elements;  // indices into PointGroup::elements
    std::string name;           // size and representative: "6C4z+", "E_bar"
};

struct Irrep {
    int koster = 0;        // Koster's number n of Gamma_n
    char parity = 0;       // 'g' / 'u' in groups with the inversion, else 0
    std::string mulliken;  // "A1g", "E'", "E1/2u"; empty for spinor irreps without a conventional name
    int dimension = 0;
    bool doubleValued = false;  // chi(-U) = -chi(U)
    int frobeniusSchur = 1;     // 1 real, 0 complex, -1 quaternionic
    int conjugate = -1;         // index of the complex-conjugate irrep (itself when real)
    std::vector<std::complex<double>> characters;  // per class
};

// "G6", "G5+" (ASCII for Gamma: result files are plain text).
std::string kosterName(const Irrep& irrep);
// Mulliken name, or the Koster name where there is none.
std::string mullikenOrKoster(const Irrep& irrep);

struct PointGroup {
    int number = 0;  // 1..32, the order that "/ptgp= n" indexes
    std::string name;            // Schoenflies
    std::string hermannMauguin;
    std::vector<GroupElement> elements;  // the double group, 2 |G| elements, elements[0] = E, [1] = E_bar
    std::vector<int> classOf;            // per element
    std::vector<SymmetryClass> classes;  // classes[0] = {E}, classes[1] = {E_bar}
    std::vector<std::vector<int>> product;  // product[a][b] = index of a b
    std::vector<Irrep> irreps;  // single-valued first, then double-valued; by Koster number, g before u
    bool hasInversion = false;
    // Fold of the z axis on the even-rank crystal field: the largest n with a
    // proper part rotating by 360/n degrees about z (T, Th: 2; O, Td, Oh: 4).
    int fold = 1;
    int order() const { return static_cast<int>(elements.size()) / 2; }
    int indexOf(const GroupElement& element) const;  // -1 when absent
};

inline constexpr int kPointGroupCount = 32;

// Group number 1..32 (built once, on first use; thread-safe). Throws
// std::out_of_range for another number.
const PointGroup& pointGroup(int number);
// By Schoenflies name ("D3h"; "S6" or "C3i", "S2" or "Ci", "C1h" or "Cs"; case
// as written) or Hermann-Mauguin symbol ("-6m2"); std::nullopt when unknown.
std::optional<int> pointGroupNumber(std::string_view name);

// Wigner D(J) of an SU(2) element: <J M'| U |J M>, rows and columns M = -J..J.
Eigen::MatrixXcd wignerD(int twiceJ, const Eigen::Matrix2cd& su2);

// How an improper element acts on the states of f^n.
enum class ImproperAction {
    Parity,      // (-1)^n times the proper part (the default)
    ProperPart,  // as the proper part (proper-rotation labelling)
};
// +1 or -1: the factor of improper elements on f^n.
int improperFactor(ImproperAction action, int electrons);

// Characters of the (2J+1) states |J M> on each class; improper elements carry `improperSign`.
std::vector<std::complex<double>> angularMomentumCharacters(const PointGroup& group, int twiceJ, int improperSign);

// Multiplicity of each irrep in a representation of the given characters (per class).
std::vector<double> irrepMultiplicities(const PointGroup& group, const std::vector<std::complex<double>>& characters);

}  // namespace orvane::params
