#include "tables/two_body_escalation.hpp"

#include <cmath>
#include <algorithm>
#include <stdexcept>

#include "core/angular.hpp"

namespace orvane {

namespace {

constexpr int kTwiceSpin = 1;     // s = 1/2
constexpr int kTwiceOrbital = 6;  // l = 3

double degeneracy(int twiceJ) { return twiceJ + 1.0; }

}  // namespace

// The parents with a non-zero coefficient, per term.
std::vector<std::vector<int>> parentsWithParentage(const Eigen::MatrixXd& cfp) {
    std::vector<std::vector<int>> result(static_cast<std::size_t>(cfp.rows()));
    for (int i = 0; i < cfp.rows(); ++i)
        for (int p = 0; p < cfp.cols(); ++p)
            if (cfp(i, p) != 0.0) result[static_cast<std::size_t>(i)].push_back(p);
    return result;
}

// Judd, Crosswhite & Crosswhite 1968, eq. (4) (two-body escalation of a (t t) double tensor).
std::vector<Eigen::MatrixXd> escalateTwoBodyDoubleTensors(int n, int rank, const std::vector<TermSpinOrbit>& terms,
                                                          const std::vector<TermSpinOrbit>& parents,
                                                          const Eigen::MatrixXd& cfp,
                                                          const std::vector<Eigen::MatrixXd>& parentMatrices) {
    if (n < 3) throw std::invalid_argument("two-body escalation needs n >= 3");
    const int T = static_cast<int>(terms.size());
    const int tt = 2 * rank;
    const double factor = n / (n - 2.0);
    const auto nonZero = parentsWithParentage(cfp);
    std::vector<Eigen::MatrixXd> result(parentMatrices.size(), Eigen::MatrixXd::Zero(T, T));
    std::vector<double> sums(parentMatrices.size());
    for (int i = 0; i < T; ++i) {
        const auto& a = terms[static_cast<std::size_t>(i)];
        for (int j = 0; j < T; ++j) {
            const auto& b = terms[static_cast<std::size_t>(j)];
            if (std::abs(a.twiceS - b.twiceS) > tt || std::abs(a.L - b.L) > rank) continue;
            std::fill(sums.begin(), sums.end(), 0.0);
            for (int p : nonZero[static_cast<std::size_t>(i)]) {
                const auto& pa = parents[static_cast<std::size_t>(p)];
                for (int q : nonZero[static_cast<std::size_t>(j)]) {
                    const auto& pb = parents[static_cast<std::size_t>(q)];
                    const double spin = SixJ2(a.twiceS, tt, b.twiceS, pb.twiceS, kTwiceSpin, pa.twiceS);
                    if (spin == 0.0) continue;
                    const double orbit = SixJ2(2 * a.L, tt, 2 * b.L, 2 * pb.L, kTwiceOrbital, 2 * pa.L);
                    if (orbit == 0.0) continue;
                    const int twicePhase = pa.twiceS + 2 * pa.L + kTwiceSpin + kTwiceOrbital + b.twiceS + 2 * b.L;
                    const double coefficient = cfp(i, p) * cfp(j, q) * PhaseSign(twicePhase / 2) * spin * orbit;
                    for (std::size_t m = 0; m < parentMatrices.size(); ++m) sums[m] += coefficient * parentMatrices[m](p, q);
                }
            }
            const double scale = factor * std::sqrt(degeneracy(a.twiceS) * degeneracy(b.twiceS) *
                                                    degeneracy(2 * a.L) * degeneracy(2 * b.L));
            for (std::size_t m = 0; m < parentMatrices.size(); ++m) result[m](i, j) = scale * sums[m];
        }
    }
    return result;
}

Eigen::MatrixXd escalateTwoBodyDoubleTensor(int n, int rank, const std::vector<TermSpinOrbit>& terms,
                                            const std::vector<TermSpinOrbit>& parents,
                                            const Eigen::MatrixXd& cfp, const Eigen::MatrixXd& parentMatrix) {
    return escalateTwoBodyDoubleTensors(n, rank, terms, parents, cfp, {parentMatrix}).front();
}

// Scalar k-body escalation, factor n/(n-k) (Judd 1966; docs/conventions.md).
Eigen::MatrixXd escalateScalarOperator(int n, int bodies, const std::vector<TermSpinOrbit>& terms,
                                       const std::vector<TermSpinOrbit>& parents, const Eigen::MatrixXd& cfp,
                                       const Eigen::MatrixXd& parentMatrix) {
    if (n <= bodies) throw std::invalid_argument("scalar escalation needs n > number of bodies");
    const int T = static_cast<int>(terms.size());
    const int P = static_cast<int>(parents.size());
    const double factor = n / static_cast<double>(n - bodies);
    Eigen::MatrixXd result = Eigen::MatrixXd::Zero(T, T);
    for (int i = 0; i < T; ++i)
        for (int j = 0; j < T; ++j) {
            const auto& a = terms[static_cast<std::size_t>(i)];
            const auto& b = terms[static_cast<std::size_t>(j)];
            if (a.twiceS != b.twiceS || a.L != b.L) continue;
            double sum = 0.0;
            for (int p = 0; p < P; ++p) {
                if (cfp(i, p) == 0.0) continue;
                for (int q = 0; q < P; ++q) {
                    const auto& pa = parents[static_cast<std::size_t>(p)];
                    const auto& pb = parents[static_cast<std::size_t>(q)];
                    if (pa.twiceS != pb.twiceS || pa.L != pb.L) continue;
                    sum += cfp(i, p) * cfp(j, q) * parentMatrix(p, q);
                }
            }
            result(i, j) = factor * sum;
        }
    return result;
}

double scalarProductTrace(const std::vector<TermSpinOrbit>& terms, const Eigen::MatrixXd& a,
                          const Eigen::MatrixXd& b) {
    double sum = 0.0;
    for (int i = 0; i < a.rows(); ++i) {
        const auto& t = terms[static_cast<std::size_t>(i)];
        sum += degeneracy(t.twiceS) * degeneracy(2 * t.L) * a.row(i).dot(b.col(i));
    }
    return sum;
}

// Edmonds (7.1.6) with sum_J [J] {S' L' J; L S t}^2 = 1/[t]: the trace over J and M of the
// product is sum_ij <i||A||j><i||B||j> / [t] (the transposition phases cancel).
double doubleTensorProductTrace(int rank, const Eigen::MatrixXd& a, const Eigen::MatrixXd& b) {
    return a.cwiseProduct(b).sum() / degeneracy(2 * rank);
}

}  // namespace orvane
