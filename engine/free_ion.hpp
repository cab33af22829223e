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
// The three-body (T^i), magnetic (M^k) and correlated spin-orbit (P^k)
// operators join the list under their parameter names when their tables are
// read; nothing else changes.
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
    std::vector<FreeIonComponent> components;
};

// Parameter name -> value; names without a component are an error of the caller.
using FreeIonWeights = std::map<std::string, double>;

FreeIonOperators buildFreeIonOperators(const EngineTables& tables,
                                       std::optional<int> minMultiplicity = std::nullopt);

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
// Racah 1949 / physics notes 5.1: F_2 = (E1 + 143 E2 + 11 E3)/42,
// F_4 = (E1 - 130 E2 + 4 E3)/77, F_6 = (E1 + 35 E2 - 7 E3)/462; D = 225, 1089, 184041/25.
std::array<double, 3> slaterUpperIntegrals(SlaterType form, const std::array<double, 3>& values);

}  // namespace orvane
