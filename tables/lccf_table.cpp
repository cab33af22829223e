#include "tables/table_seal.hpp"
#include "tables/lccf_table.hpp"

#include <algorithm>
#include <cmath>
#include <string>

#include <fmt/format.h>

#include "core/angular.hpp"
#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "tables/fractional_parentage.hpp"
#include "tables/state_labels.hpp"
#include "tables/table_builder.hpp"
#include "tables/table_directory.hpp"

namespace orvane {

namespace {

constexpr double kOrbitalReduced = 9.16515138991168;  // sqrt(84) = <f||l||f> = sqrt(l(l+1)(2l+1)), l = 3

double sign(int exponent) { return (exponent % 2 == 0) ? 1.0 : -1.0; }

}  // namespace

Eigen::MatrixXd lccfMatrix(int K, const std::vector<TermSpinOrbit>& terms,
                           const std::function<Eigen::MatrixXd(int)>& unitTensor) {
    const auto T = static_cast<Eigen::Index>(terms.size());
    Eigen::MatrixXd product = Eigen::MatrixXd::Zero(T, T);  // X = sum_i (L . l_i) u(K)(i)
    for (int x = K - 1; x <= K + 1; ++x) {
        const Eigen::MatrixXd u = unitTensor(x);
        const double oneElectron = SixJ2(2, 2 * K, 2 * x, 6, 6, 6);  // {1 K x; 3 3 3}
        if (oneElectron == 0.0) continue;
        for (Eigen::Index i = 0; i < T; ++i)
            for (Eigen::Index j = 0; j < T; ++j) {
                const auto& a = terms[static_cast<std::size_t>(i)];
                const auto& b = terms[static_cast<std::size_t>(j)];
                if (a.twiceS != b.twiceS || u(i, j) == 0.0) continue;
                const int L = a.L, Lp = b.L;
                const double recoupling = SixJ2(2, 2 * x, 2 * K, 2 * Lp, 2 * L, 2 * L);  // {1 x K; L' L L}
                product(i, j) += kOrbitalReduced * sign(L + Lp) * std::sqrt(L * (L + 1.0) * (2 * L + 1.0)) *
                                 (2 * x + 1.0) * recoupling * oneElectron * u(i, j);
            }
    }
    Eigen::MatrixXd result(T, T);
    for (Eigen::Index i = 0; i < T; ++i)
        for (Eigen::Index j = 0; j < T; ++j)
            result(i, j) = 0.5 * (product(i, j) +
                                  sign(terms[static_cast<std::size_t>(i)].L - terms[static_cast<std::size_t>(j)].L) *
                                      product(j, i));
    return result;
}

Eigen::MatrixXd lccfMatrixFromParentage(int n, int K, const std::vector<TermSpinOrbit>& terms,
                                        const std::vector<TermSpinOrbit>& parents, const Eigen::MatrixXd& cfp) {
    return lccfMatrix(K, terms, [&](int x) { return unitTensorMatrix(n, x, terms, parents, cfp); });
}

std::filesystem::path BuildLccfTable(int n, int K, const std::filesystem::path& directory, LogBook& log) {
    if (!isLccfRank(K)) throw UserError("Error in building tables", fmt::format("invalid Rank k  !!! ({})", K));
    const auto stored = readStoredParentage(n, directory, log);
    log.appendLine(fmt::format("Build UK(LCCF) RME of rank {}", K));
    const Eigen::MatrixXd table = lccfMatrixFromParentage(n, K, stored.terms, stored.parents, stored.cfp);
    const auto path = directory / configurationFileName(n, tableFileName(TableOperator::Lccf, K));
    writeGeneratedTable(path, reducedTableFileText(reducedTableTitle(operatorName(TableOperator::Lccf, K), n), table));
    log.appendLine(" (only for the lower triangle of the matrix).");
    return path;
}

}  // namespace orvane
