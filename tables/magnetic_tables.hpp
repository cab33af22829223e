#pragma once
// The magnetic operators of every configuration f^0..f^14 and their table
// files.
//
// Files of f^n (table directory, "fN" prefix), each a title line then records
// "i j  v1 .. vm" for i <= j (term numbers as in "fNstate.lab") with at least
// one non-zero value; values in the general number form; the other half is
// <j||X||i> = (-1)^(S_i - S_j + L_i - L_j) <i||X||j>:
//   "rmziss.val"  spin-spin reduced elements <i||T(22)||j>: M^0, M^2, M^4 (3 values)
//   "mess.val"    the same operators m_k of spin-spin (3 values); these are the
//                 matrices the engine reads for the spin-spin part
//   "rmzic.val"   the spin-other-orbit + correlated spin-orbit reduced elements
//                 <i||X(11)||j>: M^0, M^2, M^4, P^2, P^4, P^6 (6 values)
//   "mesooci.val" the same m_k (spin-other-orbit) and p_k (6 values)
//   "memkpk.val"  all nine: mss_0, mss_2, mss_4, msoo_0, msoo_2, msoo_4, p_2, p_4, p_6
//                 (records "i j  v1 .. v9", preceded by one line "i label"
//                 per term: two fields, where a record has eleven)
// The z_i operators of the intermediate files are here the operators in the
// basis used (the Marvin / P^k coefficients themselves), so "rmziss.val" equals
// "mess.val" and "rmzic.val" equals "mesooci.val".
#include <filesystem>
#include <string>
#include <vector>

#include "core/log_book.hpp"
#include "tables/magnetic_operators.hpp"
#include "tables/table_builder.hpp"

namespace orvane {

// Operators of f^0..f^14 (index n) from the configuration tables of f^0..f^7
// (tables[m] for m = 2..7 are used; tables[0], tables[1] only for their size).
// f^N, N > 7: the operators of f^(14-N).
std::vector<MagneticOperators> magneticOperatorsOfAll(const std::vector<ConfigurationTables>& tables);

// The nine operators in the order of "memkpk.val".
std::vector<Eigen::MatrixXd> magneticOperatorList(const MagneticOperators& operators);
// "mss0" .. "p6"
std::vector<std::string> magneticOperatorNames();

// Record text "i j  v1 .. vm" for i <= j with a non-zero value, after a title.
std::string pairRecordsText(const std::string& title, const std::vector<Eigen::MatrixXd>& matrices);

// Traces of products over the |SLJM> states of every pair of the nine
// operators: entry (a, b) = Tr(O_a O_b); spin-spin with (11) operators is 0.
Eigen::MatrixXd magneticTraceMatrix(const MagneticOperators& operators);

// Writes "rmziss.val", "mess.val", "rmzic.val", "mesooci.val", "memkpk.val" of
// f^n with their log lines and the orthogonality listings "rmz1-4.txt",
// "rmz5-11c.txt", "memkpk.txt" (traces in "#0.000000" / "####0.000000").
std::vector<std::filesystem::path> writeMagneticTables(int n, const std::vector<TermRecord>& terms,
                                                       const MagneticOperators& operators,
                                                       const std::filesystem::path& directory, LogBook& log);

}  // namespace orvane
