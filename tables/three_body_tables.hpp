#pragma once
// The three-body operators of every configuration f^0..f^14 and their table
// files "meti.val" (ordinary: legacy t2, t3, t4, t6, t7, t8) and "rmtic.val"
// (the "tic" form: the orthogonal t2', t3, t4, t6, t7, t8).
//
// Layout of both files: the title line "Reduced matrix elements of
// three-particle operators for f" n " shell" (the "tic" file says
// "three-particle operators (tic)"), then one line per ordered pair of terms
// (row, column, every row and column, both orders) whose six values do not all
// vanish (sum of magnitudes not below 1e-11): the row number, a blank, the
// column number, two blanks, then the six values each preceded by two blanks,
// in the general number form; a value below 1e-11 in magnitude is written 0.
// The operators are scalar, so only terms of equal S and L appear, and the
// matrix is symmetric.
#include <filesystem>
#include <string>
#include <vector>

#include "core/log_book.hpp"
#include "tables/table_builder.hpp"
#include "tables/three_body_operators.hpp"

namespace orvane {

// t2', t3, ..., t8 of f^0..f^14 (index n) from the configuration tables of
// f^0..f^7 (tables[m], m = 3..7 used; f^0..f^2 are zero); f^N, N > 7, is minus
// f^(14-N).
std::vector<ThreeBodyOperators> threeBodyOperatorsOfAll(const std::vector<ConfigurationTables>& tables);

// Racah's e3 of f^n from the Coulomb matrices f(2), f(4), f(6) of the tables.
Eigen::MatrixXd racahE3(const ConfigurationTables& tables);

// The ordinary set: legacy t2 (from t2' and e3 of f^n), t3, t4, t6, t7, t8.
ThreeBodyOperators ordinaryThreeBodyOperators(int n, const ThreeBodyOperators& orthogonal,
                                              const Eigen::MatrixXd& e3);

// File text of "meti.val" (`tic` false) or "rmtic.val" (`tic` true).
std::string threeBodyFileText(int n, const ThreeBodyOperators& operators, bool tic);

// Tr(t_a t_b) over the |SLJM> states, a, b over the six operators.
Eigen::MatrixXd threeBodyTraceMatrix(const std::vector<TermSpinOrbit>& terms, const ThreeBodyOperators& operators);

// Writes "meti.val" and "rmtic.val" of f^n with their start and finish log lines.
std::vector<std::filesystem::path> writeThreeBodyTables(int n, const ThreeBodyOperators& orthogonal,
                                                        const Eigen::MatrixXd& e3,
                                                        const std::filesystem::path& directory, LogBook& log);

}  // namespace orvane
