#include "tables/occf_table.hpp"

#include <array>
#include <cmath>

#include <fmt/format.h>

#include "core/angular.hpp"
#include "core/user_error.hpp"
#include "tables/table_builder.hpp"
#include "tables/table_directory.hpp"
#include "tables/table_seal.hpp"

namespace orvane {

namespace {

constexpr int kL = 3;                  // f electrons
constexpr int kStates = 2 * kL + 1;    // m = -3..3
constexpr int kPair = kStates * kStates;
constexpr double kCasimirR7Of220 = 2.4;  // [w1(w1+5) + w2(w2+3) + w3(w3+1)]/10, W = (220)
constexpr double kCasimirG2Of22 = 2.5;   // [u1^2 + u1 u2 + u2^2 + 5 u1 + 4 u2]/12, U = (22)

double sign(int exponent) { return (exponent % 2 == 0) ? 1.0 : -1.0; }

int pairIndex(int m1, int m2) { return (m1 + kL) * kStates + (m2 + kL); }

// U(k)_q = u(k)_q(1) + u(k)_q(2) on the product states |m1 m2>, <l||u(k)||l> = 1.
Eigen::MatrixXd pairUnitTensor(int k, int q) {
    Eigen::MatrixXd one = Eigen::MatrixXd::Zero(kStates, kStates);
    for (int m = -kL; m <= kL; ++m)
        for (int mp = -kL; mp <= kL; ++mp)
            one(m + kL, mp + kL) = sign(kL - m) * ThreeJ2(2 * kL, 2 * k, 2 * kL, -2 * m, 2 * q, 2 * mp);
    Eigen::MatrixXd pair = Eigen::MatrixXd::Zero(kPair, kPair);
    for (int a = -kL; a <= kL; ++a)
        for (int b = -kL; b <= kL; ++b)
            for (int c = -kL; c <= kL; ++c) {
                pair(pairIndex(a, c), pairIndex(b, c)) += one(a + kL, b + kL);  // electron 1
                pair(pairIndex(c, a), pairIndex(c, b)) += one(a + kL, b + kL);  // electron 2
            }
    return pair;
}

// The coupled pair state |(l l) L M> = sum CG(l m1 l m2 | L M) |m1 m2>.
Eigen::VectorXd coupledPair(int L, int M) {
    Eigen::VectorXd v = Eigen::VectorXd::Zero(kPair);
    for (int m1 = -kL; m1 <= kL; ++m1) {
        const int m2 = M - m1;
        if (std::abs(m2) > kL) continue;
        v(pairIndex(m1, m2)) = sign(M) * std::sqrt(2.0 * L + 1) * ThreeJ2(2 * kL, 2 * kL, 2 * L, 2 * m1, 2 * m2, -2 * M);
    }
    return v;
}

// The q = 0 component of the rank-K operator with <L||X||L'> = 1 and no other reduced element.
Eigen::MatrixXd unitComponent(int L, int Lp, int K) {
    Eigen::MatrixXd x = Eigen::MatrixXd::Zero(kPair, kPair);
    for (int M = -std::min(L, Lp); M <= std::min(L, Lp); ++M)
        x += sign(L - M) * ThreeJ2(2 * L, 2 * K, 2 * Lp, -2 * M, 0, 2 * M) * coupledPair(L, M) *
             coupledPair(Lp, M).transpose();
    return x;
}

struct Generator {
    double weight;
    std::vector<std::pair<Eigen::MatrixXd, Eigen::MatrixXd>> components;  // (U_q, (-1)^q U_-q)
};

std::vector<Generator> casimirGenerators(const std::vector<std::pair<int, double>>& weights) {
    std::vector<Generator> result;
    for (const auto& [k, weight] : weights) {
        Generator g{weight, {}};
        for (int q = -k; q <= k; ++q) g.components.emplace_back(pairUnitTensor(k, q), sign(q) * pairUnitTensor(k, -q));
        result.push_back(std::move(g));
    }
    return result;
}

// sum_k w_k sum_q (-1)^q [U_q, [U_-q, X]].
Eigen::MatrixXd adjointCasimir(const std::vector<Generator>& generators, const Eigen::MatrixXd& x) {
    Eigen::MatrixXd result = Eigen::MatrixXd::Zero(x.rows(), x.cols());
    for (const auto& g : generators)
        for (const auto& [u, v] : g.components) {
            const Eigen::MatrixXd inner = v * x - x * v;
            result += g.weight * (u * inner - inner * u);
        }
    return result;
}

}  // namespace

std::string occfTableName(int K, char variant) { return fmt::format("g({})10{}.val", K, variant); }

Eigen::MatrixXd occfPairMatrix(int K, char variant, const std::vector<TermSpinOrbit>& pairTerms) {
    const int parityOfL = variant == 'A' ? 0 : 1;  // singlet pairs have even L, triplet pairs odd L
    std::vector<std::pair<int, int>> basis;
    for (int L = parityOfL; L <= 2 * kL; L += 2)
        for (int Lp = parityOfL; Lp <= 2 * kL; Lp += 2)
            if (std::abs(L - Lp) <= K && K <= L + Lp) basis.emplace_back(L, Lp);
    std::vector<Eigen::MatrixXd> components;
    for (const auto& [L, Lp] : basis) components.push_back(unitComponent(L, Lp, K));
    static const auto r7 = casimirGenerators({{1, 3.0 / 5}, {3, 7.0 / 5}, {5, 11.0 / 5}});
    static const auto g2 = casimirGenerators({{1, 3.0 / 4}, {5, 11.0 / 4}});
    const auto B = static_cast<Eigen::Index>(basis.size());
    Eigen::MatrixXd conditions = Eigen::MatrixXd::Zero(2 * B, B);
    for (Eigen::Index b = 0; b < B; ++b) {
        const Eigen::MatrixXd cr = adjointCasimir(r7, components[b]) - kCasimirR7Of220 * components[b];
        const Eigen::MatrixXd cg = adjointCasimir(g2, components[b]) - kCasimirG2Of22 * components[b];
        for (Eigen::Index a = 0; a < B; ++a) {  // coordinates: <X_a, Y> (2K+1), the X_a orthogonal
            conditions(a, b) = (2 * K + 1) * (components[a].array() * cr.array()).sum();
            conditions(B + a, b) = (2 * K + 1) * (components[a].array() * cg.array()).sum();
        }
    }
    Eigen::JacobiSVD<Eigen::MatrixXd> svd(conditions, Eigen::ComputeFullV);
    const auto& s = svd.singularValues();
    if (s(B - 1) > 1e-9 || (B > 1 && s(B - 2) < 1e-6))
        throw UserError("Error in building tables", fmt::format("no unique (220)(22) operator of rank {}", K));
    Eigen::VectorXd reduced = svd.matrixV().col(B - 1);
    const auto T = static_cast<Eigen::Index>(pairTerms.size());
    Eigen::MatrixXd result = Eigen::MatrixXd::Zero(T, T);
    for (Eigen::Index i = 0; i < T; ++i)
        for (Eigen::Index j = 0; j < T; ++j)
            for (Eigen::Index b = 0; b < B; ++b)
                if (pairTerms[i].twiceS == 2 * (variant == 'A' ? 0 : 1) && pairTerms[i].twiceS == pairTerms[j].twiceS &&
                    basis[b] == std::pair{pairTerms[i].L, pairTerms[j].L})
                    result(i, j) = reduced(b);
    result /= result.norm();
    for (Eigen::Index i = 0; i < T * T; ++i)
        if (std::abs(result(i % T, i / T)) > 1e-9) {
            if (result(i % T, i / T) < 0) result = -result;
            break;
        }
    return result;
}

Eigen::MatrixXd escalateTwoBodyOrbitalTensor(int n, int K, const std::vector<TermSpinOrbit>& terms,
                                             const std::vector<TermSpinOrbit>& parents, const Eigen::MatrixXd& cfp,
                                             const Eigen::MatrixXd& parentMatrix) {
    const auto T = static_cast<Eigen::Index>(terms.size());
    const auto P = static_cast<Eigen::Index>(parents.size());
    Eigen::MatrixXd result = Eigen::MatrixXd::Zero(T, T);
    for (Eigen::Index i = 0; i < T; ++i)
        for (Eigen::Index j = 0; j < T; ++j) {
            const auto &a = terms[i], &b = terms[j];
            if (a.twiceS != b.twiceS || std::abs(a.L - b.L) > K || a.L + b.L < K) continue;
            double sum = 0.0;
            for (Eigen::Index p = 0; p < P; ++p) {
                if (cfp(i, p) == 0.0) continue;
                for (Eigen::Index pp = 0; pp < P; ++pp) {
                    if (cfp(j, pp) == 0.0 || parents[p].twiceS != parents[pp].twiceS || parentMatrix(p, pp) == 0.0)
                        continue;
                    const int Lbar = parents[p].L, Lbarp = parents[pp].L;
                    sum += cfp(i, p) * cfp(j, pp) * sign(Lbar + kL + b.L + K) *
                           SixJ2(2 * Lbar, 2 * a.L, 2 * kL, 2 * b.L, 2 * Lbarp, 2 * K) * parentMatrix(p, pp);
                }
            }
            result(i, j) = double(n) / (n - 2) * std::sqrt((2 * a.L + 1.0) * (2 * b.L + 1.0)) * sum;
        }
    return result;
}

std::filesystem::path BuildOccfTable(int n, int K, char variant, const std::filesystem::path& directory, LogBook& log) {
    if (!isOccfRank(K) || !isOccfVariant(variant))
        throw UserError("Error in building tables", fmt::format("invalid OCCF operator g({})10{}", K, variant));
    log.appendLine(fmt::format("Build g({})10{} (OCCF) RME", K, variant));
    Eigen::MatrixXd table = Eigen::MatrixXd::Zero(1, 1);  // f^1: a two-electron operator vanishes
    if (n >= 2) {
        table = occfPairMatrix(K, variant, readStoredParentage(2, directory, log).terms);
        for (int m = 3; m <= n; ++m) {
            const auto stored = readStoredParentage(m, directory, log);
            table = escalateTwoBodyOrbitalTensor(m, K, stored.terms, stored.parents, stored.cfp, table);
        }
    }
    const auto path = directory / configurationFileName(n, occfTableName(K, variant));
    writeGeneratedTable(path,
                        reducedTableFileText(reducedTableTitle(fmt::format("g({})10{}", K, variant), n), table));
    return path;
}

}  // namespace orvane
