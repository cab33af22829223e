#pragma once
// Term tables of the correlation crystal-field operators, as the engine uses
// them: spin-scalar tensors of orbital rank k = 2, 4, 6 between the SL terms,
// entering the crystal-field stage like U(k) (engine/crystal_field.hpp) with
// their own parameters from the parameter file's correlation sections.
//
// Orvane's definitions (the literature's normalisations and signs could not
// be checked; these are this program's own):
//  * "/sccf", parameters c(k,q): the spin-correlated crystal field
//      H = sum_kq c(k,q) sum_i 2 (s_i . S) u(k)_q(i)   (Judd 1977 form).
//    Because s_i . S = S . s_i, the operator is 2 (S . V(1k)_q) with
//    V(1k) = sum_i s_i u(k)(i): spin rank 0, hence diagonal in S, and
//    (Edmonds (7.1.1), spin part, <S||S||S> = sqrt(S(S+1)(2S+1)))
//      <aSL||H(k)||a'SL'> = 2 sqrt(S(S+1)/(2S+1)) <aSL||V(1k)||a'SL'>
//    with the V(1k) tables "rmv12.val", "rmv14.val", "rmv16.val". For f^1 it
//    is 3/2 u(k). V(1k), k even, is the same for f^n and f^(14-n), so the
//    c(k,q) keep their signs on the conjugate route.
//  * "/lccf", parameters d(k,q): D(k)_q = (1/2) sum_i {(L . l_i), u(k)_q(i)}
//    (tables/lccf_table.hpp), tables "RMULCCF2.val" ... of the actual f^n,
//    generated on first use. Its parts of odd and even one-electron rank
//    behave differently under f^n -> f^(14-n), so no sign rule exists: the
//    engine always reads the tables of the actual configuration (whose terms
//    carry the labels and phases of the conjugate basis; checked) and keeps
//    the parameters' signs.
//  * "/occf-g(K)10A", "/occf-g(K)10B", parameters g(k,q): the orthogonal
//    two-electron operators of (W U) = (220)(22) on singlet (A) and triplet
//    (B) pairs (tables/occf_table.hpp), tables "g(k)10A.val", "g(k)10B.val"
//    of the actual f^n, generated on first use like the LCCF tables.
//  Both kinds of generated tables are generated again when present without
//  this generator's version line or with a broken seal (docs/tables.md).
#include <filesystem>
#include <vector>

#include <Eigen/Dense>

#include "core/log_book.hpp"
#include "engine/configuration_tables.hpp"
#include "engine/crystal_field.hpp"

namespace orvane {

// 2 sqrt(S(S+1)/(2S+1)) <aSL||V(1k)||a'SL'> for S = S' (0 otherwise).
Eigen::MatrixXd spinCorrelatedTermTensor(const std::vector<EngineTerm>& terms, const Eigen::MatrixXd& doubleTensor);

// The term tables of the correlation operators among `keys` (only the ranks
// used). `tables` are those of the configuration the engine works in;
// `electrons` is the actual n. Throws UserError naming the missing or
// malformed table.
CorrelationTermTensors loadCorrelationTermTensors(const std::vector<CrystalFieldKey>& keys, const EngineTables& tables,
                                                  int electrons, const std::filesystem::path& directory, LogBook& log);

}  // namespace orvane
