#pragma once
// Rotational invariants of a crystal-field parameter set and the crystal-field strength.
//
// Normalisation (Wybourne parameters, any frame):
//   S_k = (1/(2k+1)) (B(k,0)^2 + 2 sum_{q>0} |B(k,q)|^2),   s_k = sqrt(S_k),  k = 2, 4, 6
//   crystal-field strength  S = sqrt((S_2 + S_4 + S_6) / 3)   (root mean square of the s_k)
// Uncertainties by first-order propagation, each parameter's uncertainty
// independent: sigma(S_k) = (2/(2k+1)) sqrt(sum w^2 B^2 sigma_B^2) with w = 1 for
// q = 0 and 2 otherwise (Re and Im separately), sigma(s_k) = sigma(S_k) / (2 s_k),
// sigma(S) = sqrt(sum sigma(S_k)^2) / (6 S). A zero invariant has zero uncertainty.
#include <array>
#include <string>
#include <vector>

#include "params/cf_records.hpp"

namespace orvane::params {

struct Invariants {
    std::array<double, 3> s{};       // s_2, s_4, s_6
    std::array<double, 3> sigmaS{};  // their uncertainties
    double strength = 0.0;
    double sigmaStrength = 0.0;
};

// Rows in the given normalisation are brought to Wybourne form first (Stevens rows
// by 1/lambda, unit-tensor rows by 1/c_k, without rounding).
Invariants computeInvariants(const CfTable& table, CfNormalisation normalisation);

// The text display: a row of '#', "CF Rotational invariants s" k " = " lines and
// "Crystal field strength = "; each value followed by " +/- " and its uncertainty
// when one was given.
std::vector<std::string> invariantLines(const Invariants& invariants);

}  // namespace orvane::params
