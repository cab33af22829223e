#pragma once
// Cubic approximations: the cubic set (Wybourne) with the same invariants s_4, s_6
// as the current rows, along the 4-fold [001] or the 3-fold [111] axis.
//   [001]: B40 = sgn sqrt(21/4) s_4, B44 = sqrt(5/14) B40,
//          B60 = sgn sqrt(13/8) s_6, B64 = -sqrt(7/2) B60
//   [111]: B40 = sgn sqrt(7/3) s_4, B43 = sqrt(10/7) B40,
//          B60 = sgn (4/9) sqrt(26) s_6, B63 = -(1/4) sqrt(35/6) B60, B66 = (1/8) sqrt(77/3) B60
// The signs are those of the current B40 and B60 (+ when zero or absent); the
// uncertainties follow by the same factors from those of s_4 and s_6.
#include <string>
#include <vector>

#include "params/cf_invariants.hpp"
#include "params/cf_records.hpp"

namespace orvane::params {

enum class CubicAxis { Fourfold001, Threefold111 };

struct CubicParameter {
    int k = 0;
    int q = 0;
    double value = 0.0;
    double sigma = 0.0;
};

std::vector<CubicParameter> cubicSet(const Invariants& invariants, double signB40, double signB60,
                                     CubicAxis axis);

// The listing: heading line and "B40 = " ... lines.
std::vector<std::string> cubicListing(const std::vector<CubicParameter>& set, CubicAxis axis);

// Rows of the cubic set ("value(sigma)" cells written with "###0.0#").
CfTable cubicTable(const std::vector<CubicParameter>& set);

}  // namespace orvane::params
