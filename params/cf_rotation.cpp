#include "params/cf_rotation.hpp"

#include <cmath>
#include <cstdlib>

#include "core/angular.hpp"
#include "params/value_cell.hpp"

namespace orvane::params {

namespace {

double toRadians(double degrees) { return degrees * std::atan(1.0) / 45.0; }

}  // namespace

EulerAngles inverseAngles(const EulerAngles& a) { return {-a.gamma, -a.beta, -a.alpha}; }

double cubeDiagonalAngle() { return 45.0 * std::atan(std::sqrt(2.0)) / std::atan(1.0); }

EulerAngles c3ToC4Angles() { return {0.0, -cubeDiagonalAngle(), -45.0}; }

EulerAngles c4ToC3Angles() { return {45.0, cubeDiagonalAngle(), 0.0}; }

// Hermiticity of the crystal-field operator: B(k,-q) = (-1)^q B(k,q)*.
std::complex<double> bkqAt(const BkqArray& b, int k, int q) {
    if (q >= 0) return b[k][q];
    const double sign = (q % 2 == 0) ? 1.0 : -1.0;
    return sign * std::conj(b[k][-q]);
}

// B'(k,q) = sum_q' B(k,q') e^{-i q' alpha} d(k)_{q q'}(beta) e^{-i q gamma} (Wigner rotation
// of a rank-k tensor's coefficients; Edmonds (4.1.12) with the d of RotationMatrixD).
BkqArray rotateBkq(const BkqArray& b, const EulerAngles& angles) {
    const double alpha = toRadians(angles.alpha);
    const double beta = toRadians(angles.beta);
    const double gamma = toRadians(angles.gamma);
    BkqArray out{};
    out[0] = b[0];
    for (int k = 1; k <= 6; ++k) {
        const Eigen::MatrixXd d = RotationMatrixD(k, beta);
        for (int q = 0; q <= k; ++q) {
            std::complex<double> sum = 0.0;
            for (int qp = -k; qp <= k; ++qp) {
                const std::complex<double> phaseAlpha = std::polar(1.0, -qp * alpha);
                sum += bkqAt(b, k, qp) * phaseAlpha * d(q + k, qp + k);
            }
            out[k][q] = sum * std::polar(1.0, -q * gamma);
        }
        out[k][0] = out[k][0].real();  // B(k,0) is real by hermiticity
    }
    return out;
}

BkqArray bkqFromTable(const CfTable& table) {
    BkqArray b{};
    for (const CfRow& row : table.rows) {
        if (row.k < 0 || row.k > 6 || std::abs(row.q) > row.k) continue;
        const double re = cellNumber(row.re);
        const double im = table.complexMode ? cellNumber(row.im) : 0.0;
        std::complex<double> value(re, im);
        if (row.q < 0) {
            const double sign = (row.q % 2 == 0) ? 1.0 : -1.0;
            b[row.k][-row.q] += sign * std::conj(value);
        } else {
            b[row.k][row.q] += value;
        }
    }
    return b;
}

std::array<bool, 7> ranksPresent(const CfTable& table) {
    std::array<bool, 7> present{};
    for (const CfRow& row : table.rows)
        if (row.k >= 0 && row.k <= 6) present[row.k] = true;
    return present;
}

CfTable tableFromBkq(const BkqArray& b, const std::array<bool, 7>& ranks, const CfTable& like,
                     std::string_view picture) {
    CfTable out;
    out.complexMode = like.complexMode;
    for (const CfRow& row : like.rows)
        if (row.k == 0 || row.k > 6) out.rows.push_back(row);
    for (int k = 1; k <= 6; ++k) {
        if (!ranks[k]) continue;
        for (int q = 0; q <= k; ++q) {
            CfRow row;
            row.k = k;
            row.q = q;
            row.re = makeCell(b[k][q].real(), picture);
            row.im = makeCell(q == 0 ? 0.0 : b[k][q].imag(), picture);
            if (row.im.value != 0.0) out.complexMode = true;
            out.rows.push_back(row);
        }
    }
    return out;
}

CfTable rotateTable(const CfTable& table, const EulerAngles& angles) {
    return tableFromBkq(rotateBkq(bkqFromTable(table), angles), ranksPresent(table), table,
                        kRotatedPicture);
}

}  // namespace orvane::params
