#pragma once
// The free-ion stage: one component matrix per parameter in the |SL J> basis
// (one matrix per J block, since every free-ion operator is diagonal in J),
// built once per configuration; the Hamiltonian of a parameter set is their
// weighted sum, diagonalised J block by J block.
//
// Components (by name, the weights are the parameters in any one energy unit;
// levels come out in that unit):
//   "EAVG"  identity (average energy)
//   "F2", "F4", "F6"  f(k), the coefficients of the Slater integrals F^k
//   "ZETA"  spin-orbit sum_i s_i.l_i
//   "ALPHA" L(L+1), "BETA" G(G2), "GAMMA" G(R7)
//   "T2"    Judd's legacy t2 of the actual configuration f^n:
//           t2' + (n - 2) e3 / (70 sqrt 2) for tables of f^n, and
//           -t2' + (n - 2) e3 / (70 sqrt 2) for the conjugate tables f^(14-n)
//   "T2'", "T3", "T4", "T6", "T7", "T8"  the t_i of the tables
//   "M0", "M2", "M4"  spin-spin (rank 2 in S and L) + spin-other-orbit (rank 1)
//   "P2", "P4", "P6"  electrostatically correlated spin-orbit (rank 1)
// Besides the parameter components, the spin-spin and spin-other-orbit parts
// of M^k are kept apart ("mss0", "mss2", "mss4", "msoo0", "msoo2", "msoo4") for
// the per-level shares; they are not parameters.
#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "core/eigen_solver.hpp"
#include "engine/configuration_tables.hpp"
#include "engine/j_basis.hpp"
#include "engine/parameter_set.hpp"

namespace orvane {

struct FreeIonComponent {
    std::string name;
    std::vector<Eigen::MatrixXd> blocks;  // one per JBasis block
};

struct FreeIonOperators {
    JBasis basis;
    std::vector<FreeIonComponent> components;     // one per parameter name
    // "mss0", "msoo0", "mss2", "msoo2", "mss4", "msoo4" (the "mss" parts absent with SpinSpinForm::Dropped)
    std::vector<FreeIonComponent> magneticParts;
};

// How the spin-spin part of M^k enters: with its true rank 2, not at all
// ("/noss"), or with the J coupling of rank 1 ("/wrongrankss", kept on purpose
// for comparison with calculations that made that choice).
enum class SpinSpinForm { Rank2, Dropped, WrongRank1 };

struct FreeIonBuildOptions {
    std::optional<int> minMultiplicity;  // "/spinmmin= n"
    int electrons = 0;  // of the actual configuration: the tables' n or 14 - n (conjugate); 0: the tables' n
    SpinSpinForm spinSpin = SpinSpinForm::Rank2;
};

// Parameter name -> value; names without a component are an error of the caller.
using FreeIonWeights = std::map<std::string, double>;

FreeIonOperators buildFreeIonOperators(const EngineTables& tables, const FreeIonBuildOptions& options);
FreeIonOperators buildFreeIonOperators(const EngineTables& tables,
                                       std::optional<int> minMultiplicity = std::nullopt);

// Element of a scalar product of rank-t tensors in spin and orbit between
// |S L J> and |S' L' J> from the reduced element <SL||X||S'L'>.
// Edmonds (7.1.6), spin coupled first: (-1)^(S'+L+J) {S' L' J; L S t} <SL||X||S'L'>.
double scalarProductElement(const EngineTerm& a, const EngineTerm& b, int twiceJ, int rank, double reduced);

// The component of a name, or nullptr.
const FreeIonComponent* findComponent(const FreeIonOperators& operators, const std::string& name);

// Sum of weight x component, per J block. Throws std::invalid_argument for a
// weight whose name has no component.
std::vector<Eigen::MatrixXd> freeIonHamiltonian(const FreeIonOperators& operators,
                                                const FreeIonWeights& weights);

struct FreeIonLevel {
    int block = 0;  // index into JBasis::blocks
    int twiceJ = 0;
    double energy = 0.0;
    Eigen::VectorXd vector;  // over the states of the block, in block order
};

struct FreeIonSolution {
    EigenStatus status = EigenStatus::Ok;
    std::vector<FreeIonLevel> levels;  // ascending energy (stable within ties by J, then block order)
};

FreeIonSolution solveFreeIon(const FreeIonOperators& operators, const FreeIonWeights& weights);

// F^2, F^4, F^6 from the three electrostatic parameters of a file in the
// given form: Racah E^1, E^2, E^3 (E^0 belongs to the average energy),
// Slater F_k (F^k = D_k F_k), or F^k itself.
// Racah 1949: F_2 = (E1 + 143 E2 + 11 E3)/42,
// F_4 = (E1 - 130 E2 + 4 E3)/77, F_6 = (E1 + 35 E2 - 7 E3)/462; D = 225, 1089, 184041/25.
std::array<double, 3> slaterUpperIntegrals(SlaterType form, const std::array<double, 3>& values);

}  // namespace orvane
