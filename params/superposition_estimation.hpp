#pragma once
// Estimation of the intrinsic parameters b_k from given B(k,q) (Wybourne) at fixed
// exponents t_k: B(k,q) is linear in b_k, so the estimate is the linear
// least-squares solution of  B_obs(k,q) = b_k G(k,q),  G = sum_L (R0/R_L)^t_k K_kq,
// over the real and imaginary parts of every given row of rank 2, 4 and 6.
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "params/cf_records.hpp"
#include "params/superposition.hpp"

namespace orvane::params {

struct SuperpositionEstimate {
    // std::nullopt: no parameter of that rank given, or the ligand geometry makes the
    // rank's coordination sums vanish (e.g. rank 2 of a cube)
    std::array<std::optional<double>, 3> bk;
    double rmsDeviation = 0.0;                // of the fitted B(k,q) from the given ones
    int observations = 0;
};

// Throws UserError titled "Error in SM estimation" for missing ligands, R0 or B(k,q).
SuperpositionEstimate estimateIntrinsicParameters(const std::vector<Ligand>& ligands,
                                       const SuperpositionParameters& fixedExponents, const CfTable& bkq);

// Log lines of an estimate ("####0.000").
std::vector<std::string> estimateLines(const SuperpositionEstimate& estimate);

}  // namespace orvane::params
