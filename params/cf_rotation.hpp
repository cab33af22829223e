#pragma once
// Rotation of crystal-field parameters (Wybourne normalisation).
//
// Convention (angles in degrees at the boundary, every rank separately):
//   B'(k,q) = sum_q' B(k,q') exp(-i q' alpha) d(k)_{q q'}(beta) exp(-i q gamma)
// with d from RotationMatrixD. This is the active rotation of the ion's field by
// R = R_z(gamma) R_y(beta) R_z(alpha): H(B') = D H(B) D^dagger with the Wigner
// matrix D_{mm'} = exp(-i m gamma) d_{mm'}(beta) exp(-i m' alpha). Under it
//  * (alpha, 0, 0) gives B'(k,q) = B(k,q) exp(-i q alpha), so alpha = atan(Im/Re)/q
//    removes Im B(k,q);
//  * C4toC3 = (45, theta, 0) and C3toC4 = (0, -theta, -45) are mutual inverses and
//    C4toC3 turns the [001] cubic set into the [111] cubic set with the signs
//    B43/B40 = +sqrt(10/7), B63/B60 = -sqrt(35/6)/4, B66/B60 = +sqrt(77/3)/8;
//  * the rotation by (alpha, beta, gamma) is undone by (-gamma, -beta, -alpha).
#include "params/cf_records.hpp"

namespace orvane::params {

struct EulerAngles {
    double alpha = 0.0;  // degrees
    double beta = 0.0;
    double gamma = 0.0;
};

EulerAngles inverseAngles(const EulerAngles& angles);

// The angle between [001] and [111]: 45 atan(sqrt 2) / atan 1 = 54.7356... degrees.
double cubeDiagonalAngle();
EulerAngles c3ToC4Angles();  // (0, -theta, -45)
EulerAngles c4ToC3Angles();  // (45, theta, 0)

// Rotates every rank 1..6 of a complex parameter array (k = 0 is unchanged).
BkqArray rotateBkq(const BkqArray& b, const EulerAngles& angles);

// B(k,q) for q = -k..k from the stored q >= 0 entries (hermiticity).
std::complex<double> bkqAt(const BkqArray& b, int k, int q);

// The Wybourne values of a table's rows (text is the truth: "value(sigma)" read
// as value). Rows with negative q are folded onto q >= 0 by hermiticity; rows
// outside k = 0..6, |q| <= k are ignored. In real mode Im is 0.
BkqArray bkqFromTable(const CfTable& table);

// Which ranks have at least one row in the table (k = 0..6).
std::array<bool, 7> ranksPresent(const CfTable& table);

// Rows for every q = 0..k of the given ranks, cells written with `picture`.
// Rows of the table outside 1..6 (k = 0) are kept in front unchanged.
CfTable tableFromBkq(const BkqArray& b, const std::array<bool, 7>& ranks, const CfTable& like,
                     std::string_view picture);

// The picture of rotated parameters.
inline constexpr std::string_view kRotatedPicture = "#####0.0####";

// Rotates a table's rows; every rank present is written for all q >= 0.
CfTable rotateTable(const CfTable& table, const EulerAngles& angles);

}  // namespace orvane::params
