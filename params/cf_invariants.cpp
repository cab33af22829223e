#include "params/cf_invariants.hpp"

#include <cmath>
#include <cstdlib>

#include "core/log_book.hpp"
#include "core/number_format.hpp"
#include "params/cf_conventions.hpp"
#include "params/value_cell.hpp"

namespace orvane::params {

namespace {

double cellValue(const ValueCell& cell) {
    return cellNumber(cell);
}

double cellSigma(const ValueCell& cell) {
    return parseValueCell(cell.text).uncertainty.value_or(0.0);
}

}  // namespace

// S_k = (1/(2k+1)) sum_q |B(k,q)|^2 (the rotational invariant of a rank-k tensor's
// coefficients; Leavitt 1982, Chang et al. 1982 for the crystal-field strength).
Invariants computeInvariants(const CfTable& table, CfNormalisation normalisation) {
    const auto toWybourne = conversionToWybourne(normalisation);
    std::array<double, 3> sum{}, variance{};
    for (const CfRow& row : table.rows) {
        if (row.k != 2 && row.k != 4 && row.k != 6) continue;
        const int aq = std::abs(row.q);
        if (aq > row.k) continue;
        double f = 1.0;
        if (toWybourne) f = conversionFactor(*toWybourne, row.k, aq);
        const double imSign = (normalisation == CfNormalisation::Stevens) ? -1.0 : 1.0;
        const double re = f * cellValue(row.re);
        const double sre = std::fabs(f) * cellSigma(row.re);
        const double im = table.complexMode && aq > 0 ? imSign * f * cellValue(row.im) : 0.0;
        const double sim = table.complexMode && aq > 0 ? std::fabs(f) * cellSigma(row.im) : 0.0;
        const double w = aq == 0 ? 1.0 : 2.0;
        const int i = row.k / 2 - 1;
        sum[i] += w * (re * re + im * im);
        variance[i] += 4.0 * w * w * (re * re * sre * sre + im * im * sim * sim);
    }
    Invariants out;
    double total = 0.0, totalVariance = 0.0;
    for (int i = 0; i < 3; ++i) {
        const int k = 2 * (i + 1);
        const double sk = sum[i] / (2.0 * k + 1.0);
        const double sigmaSk = std::sqrt(variance[i]) / (2.0 * k + 1.0);
        out.s[i] = std::sqrt(sk);
        out.sigmaS[i] = out.s[i] > 0.0 ? sigmaSk / (2.0 * out.s[i]) : 0.0;
        total += sk;
        totalVariance += sigmaSk * sigmaSk;
    }
    out.strength = std::sqrt(total / 3.0);
    out.sigmaStrength = out.strength > 0.0 ? std::sqrt(totalVariance) / (6.0 * out.strength) : 0.0;
    return out;
}

namespace {

// " +/- sigma" with "##.##", or nothing when no uncertainty was given.
std::string uncertaintyText(double sigma, std::string_view picture) {
    return sigma > 0.0 ? " +/- " + formatNumber(sigma, picture) : std::string();
}

}  // namespace

std::vector<std::string> invariantLines(const Invariants& inv) {
    std::vector<std::string> lines;
    lines.push_back(logSeparatorLine());
    for (int i = 0; i < 3; ++i)
        lines.push_back("CF Rotational invariants s" + std::to_string(2 * (i + 1)) + " = " +
                        formatNumber(inv.s[i], "####.###") +
                        uncertaintyText(inv.sigmaS[i], "##.##"));
    lines.push_back("Crystal field strength = " + formatNumber(inv.strength, "####.###") +
                    uncertaintyText(inv.sigmaStrength, "##.##"));
    return lines;
}

}  // namespace orvane::params
