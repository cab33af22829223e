#pragma once
// The reduced-matrix-element tables of one configuration f^n as the
// energy-level engine uses them: the SL terms with S, L and the stored Casimir
// values, and the full term x term matrices of U(2), U(4), U(6), V(11) and the
// Coulomb matrices f(2), f(4), f(6). Read once per run; every later stage only
// combines these matrices.
#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "core/log_book.hpp"
#include "tables/table_builder.hpp"

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
};

// Index 0, 1, 2 of the rank arrays above for k = 2, 4, 6.
inline constexpr std::array<int, 3> kEvenRanks = {2, 4, 6};

// The tables of f^n (n = 1..14) from the table directory, generated there (or
// in the per-user cache) on first use. Throws UserError naming the file for a
// missing or malformed table.
EngineTables loadEngineTables(int n, const std::filesystem::path& directory, LogBook& log);

// The same tables from an in-memory build (no files).
EngineTables engineTablesFrom(const ConfigurationTables& tables);

}  // namespace orvane
