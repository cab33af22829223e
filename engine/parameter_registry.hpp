#pragma once
// The vocabulary of parameters: every parameter the engine, the fits and the
// parameter tools know has a stable id, the name the parameter file and the
// fit tables print, a family and a unit. Components of the prepared model and
// its derivatives are indexed by these ids (docs/parameters.md).
//
// Ids are plain integers so that they can be stored in files and passed to
// scripts: free-ion parameters have fixed small numbers; a crystal-field
// parameter encodes its operator, rank, component and part:
//   1000 + 1000 * operator + 100 * (imaginary) + 10 k + q,
// operator 0 = B(k,q) (Wybourne), 1 = SCCF, 2 = LCCF, 3 = OCCF A, 4 = OCCF B;
// superposition-model intrinsic parameters are 20000 + 10 k (Abar_k) and
// 20001 + 10 k (t_k).
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/crystal_field.hpp"

namespace orvane {

using ParameterId = int;

enum class ParameterFamily {
    Average,              // E_AVG
    Electrostatic,        // F^k (or E^k, F_k)
    SpinOrbit,            // zeta
    ConfigurationInteraction,  // alpha, beta, gamma
    ThreeBody,            // T^i
    Magnetic,             // M^k, P^k
    CrystalField,         // B(k,q)
    CorrelationCrystalField,
    Superposition,        // intrinsic parameters Abar_k, power laws t_k
};

namespace parameter {
inline constexpr ParameterId kEavg = 1, kF2 = 2, kF4 = 3, kF6 = 4, kZeta = 5, kAlpha = 6, kBeta = 7, kGamma = 8;
inline constexpr ParameterId kT2 = 9, kT2Prime = 10, kT3 = 11, kT4 = 12, kT6 = 13, kT7 = 14, kT8 = 15;
inline constexpr ParameterId kM0 = 16, kM2 = 17, kM4 = 18, kP2 = 19, kP4 = 20, kP6 = 21;
}  // namespace parameter

struct ParameterInfo {
    ParameterId id = 0;
    std::string name;  // "F2", "ZETA", "B(4,3)", "ImB(4,3)", "SCCF c(2,1)", "Abar4", "t4"
    ParameterFamily family = ParameterFamily::Average;
    std::string unit;  // "energy" (the parameter set's unit) or "1" for exponents
};

// The free-ion parameters in the order of their components (F^k form).
const std::vector<ParameterInfo>& freeIonParameters();

ParameterId crystalFieldParameterId(CrystalFieldOperator op, int k, int q, bool imaginary);
ParameterId superpositionStrengthId(int k);  // Abar_k
ParameterId superpositionExponentId(int k);  // t_k

// The description of an id; std::nullopt for an id no parameter has.
std::optional<ParameterInfo> parameterInfo(ParameterId id);
// The id of a printed name ("ZETA", "B(4,3)", "ImB(6,6)", "M2", ...); std::nullopt if unknown.
std::optional<ParameterId> parameterIdOf(std::string_view name);

// True for the parameters whose operators change sign in the conjugate shell
// f^(14-n) (Judd 1963, ch. 5: operators odd under particle-hole exchange):
// zeta, T2', T3..T8 and B(k,q) of the crystal field proper. Judd's legacy T2
// carries its own rule inside its component (engine/free_ion.hpp); the
// correlation crystal fields keep their signs (docs/engine.md).
bool changesSignInConjugateShell(ParameterId id);

// The crystal-field key and part of a crystal-field id (std::nullopt for others).
struct CrystalFieldPart {
    CrystalFieldKey key;
    bool imaginary = false;
};
std::optional<CrystalFieldPart> crystalFieldPartOf(ParameterId id);

// A ratio link of the literature: target = ratio x source (M2 = 0.56 M0,
// P4 = 0.5 P2, ...). A linked parameter is not free in a fit; its derivative
// adds to the source's with the factor `ratio`.
struct ParameterLink {
    ParameterId target = 0;
    ParameterId source = 0;
    double ratio = 1.0;
};

}  // namespace orvane
