#pragma once
// The reduced-matrix-element tables of one configuration f^n as the
// energy-level engine uses them: the SL terms with S, L and the stored Casimir
// values, and the full term x term matrices of U(2), U(4), U(6), V(11), the
// Coulomb matrices f(2), f(4), f(6), the three-body operators t_i and the
// magnetic operators (spin-spin, spin-other-orbit + correlated spin-orbit).
// Read once per run; every later stage only combines these matrices.
#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "core/log_book.hpp"
#include "tables/magnetic_operators.hpp"
#include "tables/table_builder.hpp"
#include "tables/three_body_operators.hpp"

namespace orvane {

struct EngineTerm {
    std::string label;  // "3H", "2D1"
    int twiceS = 0;
    int L = 0;
    int r7Value = 0;  // 5 G(R7)
    int g2Value = 0;  // 12 G(G2)
};

struct EngineTables {
    int electrons = 0;  // the configuration the tables belong to
    std::vector<EngineTerm> terms;
    std::array<Eigen::MatrixXd, 3> unitTensor;  // <term||U(k)||term'>, k = 2, 4, 6
    Eigen::MatrixXd spinOrbitTensor;            // <term||V(11)||term'>
    std::array<Eigen::MatrixXd, 3> coulomb;     // f(k), k = 2, 4, 6 (coefficients of F^k)
    // Scalar three-body operators t2' (orthogonal), t3, t4, t6, t7, t8 ("rmtic.val");
    // non-zero only between terms of equal S and L.
    std::array<Eigen::MatrixXd, 6> threeBody;
    // Spin-spin <term||T(22)||term'>: coefficients of M^0, M^2, M^4.
    std::array<Eigen::MatrixXd, 3> spinSpin;
    // Spin-other-orbit + correlated spin-orbit <term||X(11)||term'>: coefficients of
    // M^0, M^2, M^4, P^2, P^4, P^6 (the part of spin-orbit form removed).
    std::array<Eigen::MatrixXd, 6> spinOtherOrbit;
};

// Which pair of magnetic table files is read: the operator files "mess.val"
// (spin-spin) and "mesooci.val" (spin-other-orbit + correlated spin-orbit), or,
// with the run switch "/usezic", the z-form files "rmziss.val" and "rmzic.val".
// Orvane's generator writes the same reduced elements into both pairs.
enum class MagneticTableFiles { Operators, ZForm };

// Index 0, 1, 2 of the rank arrays above for k = 2, 4, 6.
inline constexpr std::array<int, 3> kEvenRanks = {2, 4, 6};

// The tables of f^n (n = 1..14) from the table directory, generated there (or
// in the per-user cache) on first use. Throws UserError naming the file for a
// missing or malformed table.
// The three-body and magnetic tables are generated with the others when missing.
EngineTables loadEngineTables(int n, const std::filesystem::path& directory, LogBook& log,
                              MagneticTableFiles magneticFiles = MagneticTableFiles::Operators);

// The same tables from an in-memory build (no files). The one-argument form
// leaves the three-body and magnetic operators at zero (T x T).
EngineTables engineTablesFrom(const ConfigurationTables& tables);
EngineTables engineTablesFrom(const ConfigurationTables& tables, const ThreeBodyOperators& threeBody,
                              const MagneticOperators& magnetic);

// File names (without the "fN" prefix) read for the three-body and magnetic
// operators: "rmtic.val", then the spin-spin and the (11) file of the choice.
std::vector<std::string> manyBodyTableNames(MagneticTableFiles magneticFiles);

}  // namespace orvane
