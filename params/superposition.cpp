#include "params/superposition.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <Eigen/Dense>

#include "core/user_error.hpp"
#include "params/stevens_lambda.hpp"
#include "params/value_cell.hpp"

namespace orvane::params {

namespace {

double toRadians(double degrees) { return degrees * std::atan(1.0) / 45.0; }
double toDegrees(double radians) { return radians * 45.0 / std::atan(1.0); }

const char* kSumTitle = "Superposition Model calculation CFP Bkq and their derivative error";

}  // namespace

// Angular polynomials of the coordination factors (Newman & Ng 1989, table 1.1, in the
// Stevens-numerator scaling: P_kq = t(k,q) times the real part of C(k,q)*).
double coordinationPolynomial(int k, int aq, double c, double s) {
    const double c2 = c * c, s2 = s * s;
    switch (k * 10 + aq) {
        case 20: return (3.0 * c2 - 1.0) / 2.0;
        case 21: return 6.0 * s * c;
        case 22: return 1.5 * s2;
        case 40: return (35.0 * c2 * c2 - 30.0 * c2 + 3.0) / 8.0;
        case 41: return 5.0 * (7.0 * c2 * c - 3.0 * c) * s;
        case 42: return 2.5 * (7.0 * c2 - 1.0) * s2;
        case 43: return 35.0 * c * s2 * s;
        case 44: return (35.0 / 8.0) * s2 * s2;
        case 60: return (231.0 * c2 * c2 * c2 - 315.0 * c2 * c2 + 105.0 * c2 - 5.0) / 16.0;
        case 61: return (21.0 / 4.0) * (33.0 * c2 * c2 * c - 30.0 * c2 * c + 5.0 * c) * s;
        case 62: return (105.0 / 32.0) * (33.0 * c2 * c2 - 18.0 * c2 + 1.0) * s2;
        case 63: return (105.0 / 8.0) * (11.0 * c2 * c - 3.0 * c) * s2 * s;
        case 64: return (63.0 / 16.0) * (11.0 * c2 - 1.0) * s2 * s2;
        case 65: return (693.0 / 8.0) * c * s2 * s2 * s;
        case 66: return (231.0 / 32.0) * s2 * s2 * s2;
        default: return 0.0;
    }
}

std::optional<std::pair<std::string, std::string>> coordinationArgumentsError(int k, int q) {
    if (k != 2 && k != 4 && k != 6)
        return std::make_pair(std::string("Error in using the coordination factor"),
                              "Error in rank k = " + std::to_string(k));
    if (std::abs(q) > k)
        return std::make_pair("Error in using the coordination factor k=" + std::to_string(k),
                              "Error in q = " + std::to_string(q));
    return std::nullopt;
}

double coordinationFactor(int k, int q, double thetaDeg, double phiDeg, bool stevensType) {
    if (coordinationArgumentsError(k, q)) return 0.0;
    const int aq = std::abs(q);
    const double theta = toRadians(thetaDeg), phi = toRadians(phiDeg);
    const double polynomial = coordinationPolynomial(k, aq, std::cos(theta), std::sin(theta));
    const double azimuthal = q >= 0 ? std::cos(aq * phi) : -std::sin(aq * phi);
    const double value = polynomial * azimuthal;
    return stevensType ? value : value / StevensLambda()[k][aq];
}

void checkSuperpositionInput(const std::vector<Ligand>& ligands, const SuperpositionParameters& p) {
    if ((p.r0 == 0.0 && !p.zeroR0Ignored) || !std::isfinite(p.r0))
        throw UserError("Error in setting up ligand positions", "Reference ligand distance = 0!");
    if (p.r0 != 0.0 && !ligandDistanceInRange(p.r0))
        throw UserError(kSumTitle, "The reference distance R0 must lie between " +
                                       std::to_string(kMinLigandDistance) + " and " +
                                       std::to_string(kMaxLigandDistance));
    for (int i = 0; i < 3; ++i)
        if (!std::isfinite(p.bk[i]) || !std::isfinite(p.tk[i]) || std::fabs(p.tk[i]) > kMaxPowerLawExponent)
            throw UserError(kSumTitle, "Invalid intrinsic parameter or exponent for k = " +
                                           std::to_string(2 * i + 2) +
                                           ": b_k must be finite and |t_k| at most 100");
    if (ligands.size() > static_cast<std::size_t>(kMaxLigands))
        throw UserError(kSumTitle, "Too many ligands: " + std::to_string(ligands.size()) +
                                       " (at most " + std::to_string(kMaxLigands) + ")");
    for (std::size_t i = 0; i < ligands.size(); ++i) {
        const Ligand& l = ligands[i];
        if (!ligandDistanceInRange(l.r) || !std::isfinite(l.thetaDeg) ||
            !std::isfinite(l.phiDeg))
            throw UserError(kSumTitle, "Invalid position of ligand " + std::to_string(i + 1) +
                                           ": the distance must lie between 0.001 and 1000 and every value be finite");
    }
}

// B(k,q) = sum_L b_k (R0/R_L)^t_k K_kq; dB/db_k = sum (R0/R_L)^t_k K_kq;
// dB/dt_k = sum b_k (R0/R_L)^t_k ln(R0/R_L) K_kq (Newman & Ng 1989, eq. 1.2).
SuperpositionDerivatives superpositionDerivatives(const std::vector<Ligand>& ligands, const SuperpositionParameters& p) {
    checkSuperpositionInput(ligands, p);
    SuperpositionDerivatives d;
    for (const Ligand& l : ligands) {
        const double ratio = p.r0 / l.r;
        for (int i = 0; i < 3; ++i) {
            const int k = 2 * (i + 1);
            const double power = std::pow(ratio, p.tk[i]);
            const double logRatio = std::log(ratio);
            for (int q = 0; q <= k; ++q) {
                const double re = coordinationFactor(k, q, l.thetaDeg, l.phiDeg, p.stevensType);
                const double im =
                    q == 0 ? 0.0 : coordinationFactor(k, -q, l.thetaDeg, l.phiDeg, p.stevensType);
                const std::complex<double> factor(re, im);
                d.byBk[k][q] += power * factor;
                d.byTk[k][q] += p.bk[i] * power * logRatio * factor;
            }
        }
    }
    return d;
}

BkqArray superpositionBkq(const std::vector<Ligand>& ligands, const SuperpositionParameters& p) {
    const SuperpositionDerivatives d = superpositionDerivatives(ligands, p);
    BkqArray b{};
    for (int i = 0; i < 3; ++i) {
        const int k = 2 * (i + 1);
        for (int q = 0; q <= k; ++q) {
            b[k][q] = p.bk[i] * d.byBk[k][q];
            if (!std::isfinite(b[k][q].real()) || !std::isfinite(b[k][q].imag()))
                throw UserError(kSumTitle, "The superposition sum for B" + std::to_string(k) +
                                               std::to_string(q) + " is not a finite number");
        }
    }
    return b;
}

CfTable superpositionTable(const BkqArray& b, std::string_view picture) {
    CfTable table;
    table.complexMode = true;
    for (int k = 2; k <= 6; k += 2)
        for (int q = 0; q <= k; ++q) {
            CfRow row;
            row.k = k;
            row.q = q;
            row.re = makeCell(b[k][q].real(), picture);
            row.im = makeCell(b[k][q].imag(), picture);
            table.rows.push_back(row);
        }
    return table;
}

// Cartesian rotation R_z(a) R_y(b) R_z(c) (right-handed, active).
static Eigen::Matrix3d eulerMatrix(double a, double b, double c) {
    using Eigen::AngleAxisd;
    using Eigen::Vector3d;
    return (AngleAxisd(a, Vector3d::UnitZ()) * AngleAxisd(b, Vector3d::UnitY()) *
            AngleAxisd(c, Vector3d::UnitZ()))
        .toRotationMatrix();
}

std::vector<Ligand> rotateLigands(const std::vector<Ligand>& ligands, double alpha, double beta,
                                  double gamma) {
    // Rotating the frame by (alpha, beta, gamma) moves the field actively by
    // R_z(gamma) R_y(beta) R_z(alpha); moving the ligands is its inverse.
    const Eigen::Matrix3d r =
        eulerMatrix(toRadians(gamma), toRadians(beta), toRadians(alpha)).transpose();
    std::vector<Ligand> out;
    out.reserve(ligands.size());
    for (const Ligand& l : ligands) {
        const double th = toRadians(l.thetaDeg), ph = toRadians(l.phiDeg);
        const Eigen::Vector3d v(l.r * std::sin(th) * std::cos(ph), l.r * std::sin(th) * std::sin(ph),
                                l.r * std::cos(th));
        const Eigen::Vector3d w = r * v;
        const double rr = w.norm();
        Ligand moved;
        moved.r = rr;
        moved.thetaDeg = rr > 0.0 ? toDegrees(std::acos(std::clamp(w.z() / rr, -1.0, 1.0))) : 0.0;
        moved.phiDeg = toDegrees(std::atan2(w.y(), w.x()));
        out.push_back(moved);
    }
    return out;
}

// Fractional to Cartesian coordinates of a triclinic cell (International Tables for
// Crystallography, vol. B, 3.3.1.1: a along x, b in the xy plane).
std::optional<Ligand> latticeToPolar(const std::array<double, 3>& f, const LatticeCell& cell) {
    const double ca = std::cos(toRadians(cell.alpha)), cb = std::cos(toRadians(cell.beta));
    const double cg = std::cos(toRadians(cell.gamma)), sg = std::sin(toRadians(cell.gamma));
    if (std::fabs(sg) < 1e-12) return std::nullopt;
    const double cy = (ca - cb * cg) / sg;
    const double cz2 = 1.0 - cb * cb - cy * cy;
    if (!(cz2 > 0.0)) return std::nullopt;
    const Eigen::Vector3d a(cell.a, 0.0, 0.0);
    const Eigen::Vector3d b(cell.b * cg, cell.b * sg, 0.0);
    const Eigen::Vector3d c(cell.c * cb, cell.c * cy, cell.c * std::sqrt(cz2));
    const Eigen::Vector3d v = f[0] * a + f[1] * b + f[2] * c;
    const double r = v.norm();
    if (!(r > 0.0)) return std::nullopt;
    Ligand l;
    l.r = r;
    l.thetaDeg = toDegrees(std::acos(std::clamp(v.z() / r, -1.0, 1.0)));
    l.phiDeg = toDegrees(std::atan2(v.y(), v.x()));
    return l;
}

}  // namespace orvane::params
