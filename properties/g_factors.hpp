#pragma once
// g-factors of doublets (docs/properties.md).
//
// Pairing: states in ascending energy; a state not yet paired is paired with
// the next one when the gap to it is smaller than the gap from that one to
// the state after it (a Kramers pair or a quasi-doublet of non-Kramers
// states). When the two gaps agree within kDegenerateLevelTolerance, the
// labels decide: with a site group ("/ptgp= n") the pair is formed when the two
// states carry the same irrep label (one level), otherwise when they carry
// opposite mu (time-reversal partners).
//
// g tensor of a doublet {|1>, |2>} with m = L + g_s S (Abragam & Bleaney
// 1970, ch. 15): (g g^T)_ab = 2 Re Tr(M_a M_b), M_a the 2 x 2 block of m_a;
// its eigenvalues are the squared principal g values, its eigenvectors the
// principal axes. For a quasi-doublet, m along the principal axis z' of the
// largest g is diagonalised in the pair: gz' = |lambda_1|, gz'' = |lambda_2|
// and gz = gz' + gz'' (the splitting in a field along z' over mu_B B).
#include <array>
#include <utility>
#include <vector>

#include <Eigen/Dense>

#include "properties/property_states.hpp"
#include "properties/tensor_operator.hpp"

namespace orvane {

struct DoubletG {
    int first = 0;   // state numbers, 0-based
    int second = 0;
    bool quasiDoublet = false;     // non-Kramers pair
    std::array<double, 3> g{};     // principal values, matched to the frame axes x, y, z
    Eigen::Matrix3d axes;          // columns: the principal axes of g[0], g[1], g[2] (right-handed)
    std::array<double, 3> eulerAngles{};  // degrees, zyz: axes = R_z(alpha) R_y(beta) R_z(gamma)
    double gz1 = 0.0, gz2 = 0.0;   // quasi-doublet: gz' and gz'' along the axis of the largest g
    std::array<double, 3> moment{};  // ux, uy, uz (Kramers: g/2; quasi-doublet: uz' = gz', ux = uy = 0)
};

// The doublets formed by the pairing rule; states left single are not listed.
std::vector<std::pair<int, int>> pairDoublets(const PropertyStates& states);

// The g tensor of a pair of states; `moment` is the operator of
// properties/magnetic_moment.hpp.
DoubletG doubletGFactors(const PropertyStates& states, const TensorOperator& moment, int first, int second);

// The 2 x 2 blocks M_a (a = x, y, z) of m in the pair.
std::array<Eigen::Matrix2cd, 3> momentBlocks(const TensorOperator& moment, int first, int second);

// The symmetric tensor g g^T of the blocks.
Eigen::Matrix3d gTensorSquare(const std::array<Eigen::Matrix2cd, 3>& blocks);

}  // namespace orvane
