#include "tables/table_comparison.hpp"

#include <cmath>

#include <fmt/format.h>

#include "core/angular.hpp"
#include "tables/reduced_tables.hpp"

namespace orvane {

namespace {

// Labels printed in 4-character fields lose the last digit of a two-digit index.
bool sameLabel(const std::string& generated, const std::string& published) {
    if (generated == published) return true;
    return generated.size() == 4 && published.size() == 3 &&
           generated.substr(0, 2) + generated.substr(3) == published;
}

// Configuration average of f_k over all C(14, n) states (docs/conventions.md):
// -(n(n-1)/2) (7/13) (3 k 3; 0 0 0)^2.
double coulombAverage(int n, int k) {
    const double threeJ = ThreeJ2(6, 2 * k, 6, 0, 0, 0);
    return -(n * (n - 1) / 2.0) * (7.0 / 13.0) * threeJ * threeJ;
}

// Groups of terms that may mix: consecutive terms with the same S, L, v, W, U.
std::vector<std::pair<int, int>> mixingGroups(const std::vector<TermLabelLine>& lines) {
    std::vector<std::pair<int, int>> groups;
    const int T = static_cast<int>(lines.size());
    for (int i = 0; i < T;) {
        int end = i + 1;
        auto key = [&](int t) {
            const auto& l = lines[static_cast<std::size_t>(t)];
            return l.label.substr(0, 2) + "|" + std::to_string(l.seniority) + l.wText + l.uText;
        };
        while (end < T && key(end) == key(i)) ++end;
        groups.emplace_back(i, end - i);
        i = end;
    }
    return groups;
}

// Nearest orthogonal matrix (polar factor) of a small block.
Eigen::MatrixXd nearestOrthogonal(const Eigen::MatrixXd& block) {
    Eigen::JacobiSVD<Eigen::MatrixXd> svd(block, Eigen::ComputeFullU | Eigen::ComputeFullV);
    return svd.matrixU() * svd.matrixV().transpose();
}

// The rounding a published element may carry: half a unit of its last printed
// digit (six decimals) plus the rounding carried from the published CFPs into
// the published tables. The second part is not printed anywhere; it is taken
// from the files that have no known errors: their U(k), V(1k) and F columns
// agree with what their own CFPs imply to 2.5e-6 (f12; 1.3e-6 for f10, f11,
// 5e-7 for f2..f4).
constexpr double kHalfPrintedUnit = 5e-7;
constexpr double kCarriedRounding = 2.5e-6;
constexpr double kPublishedRounding = kHalfPrintedUnit + kCarriedRounding;

struct ElementCheck {
    ConfigurationComparison& result;
    const std::vector<TermLabelLine>& rows;
    double tolerance;

    void compare(const std::string& table, const Eigen::MatrixXd& generated, const Eigen::MatrixXd& published,
                 const Eigen::MatrixXd& implied, const std::vector<std::string>& columns, bool upperOnly) {
        TableSummary summary{table};
        for (int i = 0; i < generated.rows(); ++i)
            for (int j = upperOnly ? i : 0; j < generated.cols(); ++j) {
                const double g = generated(i, j), p = published(i, j), q = implied(i, j);
                if (g == 0.0 && p == 0.0) continue;
                ++summary.elementsCompared;
                const double difference = std::abs(g - p);
                if (difference <= tolerance) {
                    summary.largestDifference = std::max(summary.largestDifference, difference);
                    continue;
                }
                ElementDifference element{table, rows[static_cast<std::size_t>(i)].label,
                                          columns[static_cast<std::size_t>(j)], g, p, q};
                // The generated value agrees with what the published coefficients
                // imply: the published element is either within its rounding or
                // a published error.
                if (std::abs(g - q) <= tolerance && std::abs(p - q) <= kPublishedRounding) {
                    ++summary.withinPublishedRounding;
                } else if (std::abs(g - q) <= tolerance) {
                    ++summary.publishedErrors;
                    result.publishedErrors.push_back(element);
                } else {
                    ++summary.mismatches;
                    result.mismatches.push_back(element);
                }
            }
        result.summaries.push_back(summary);
    }
};

}  // namespace

ConfigurationComparison compareConfiguration(const ConfigurationTables& generated,
                                             const PublishedTables& published,
                                             const Eigen::MatrixXd& previousTransformation,
                                             double tolerance) {
    ConfigurationComparison result;
    const int n = generated.electrons;
    result.electrons = n;
    const int T = static_cast<int>(generated.terms.size());
    result.termsAgree = static_cast<int>(published.labels.size()) == T;
    for (int i = 0; result.termsAgree && i < T; ++i)
        result.termsAgree = sameLabel(generated.terms[static_cast<std::size_t>(i)].label,
                                      published.labels[static_cast<std::size_t>(i)]);
    result.transformation = Eigen::MatrixXd::Identity(T, T);
    if (!result.termsAgree) {
        result.mismatches.push_back({"terms", "term list", "", 0, 0, 0});
        return result;
    }
    std::vector<std::string> termLabels, parentLabels;
    for (const auto& t : generated.terms) termLabels.push_back(t.label);
    for (const auto& t : generated.parents) parentLabels.push_back(t.label);
    const auto terms = spinOrbitOf(generated.terms);
    const auto parents = spinOrbitOf(generated.parents);

    // Published CFPs padded to the generated parent count.
    Eigen::MatrixXd publishedCfp = Eigen::MatrixXd::Zero(T, generated.cfp.cols());
    if (published.hasParentage) {
        const int cols = std::min<int>(static_cast<int>(published.cfp.cols()), static_cast<int>(generated.cfp.cols()));
        publishedCfp.leftCols(cols) = published.cfp.leftCols(cols);
    }
    // generated = X pub P^T  =>  X = generated P pub^T, block by block.
    const Eigen::MatrixXd overlap = generated.cfp * previousTransformation * publishedCfp.transpose();
    for (const auto& [start, size] : mixingGroups(generated.termLines))
        result.transformation.block(start, start, size, size) =
            nearestOrthogonal(overlap.block(start, start, size, size));
    const Eigen::MatrixXd& X = result.transformation;
    ElementCheck check{result, generated.termLines, tolerance};

    const Eigen::MatrixXd transformedCfp = X * publishedCfp * previousTransformation.transpose();
    check.compare("CFP", generated.cfp, transformedCfp, transformedCfp, parentLabels, false);

    auto fullPublished = [&](const Eigen::MatrixXd& stored) { return completeFromStoredHalf(stored, terms); };
    if (published.hasUnitTensors)
        for (int k = 0; k <= 6; ++k) {
            const Eigen::MatrixXd p = X * fullPublished(published.unitTensor[static_cast<std::size_t>(k)]) * X.transpose();
            const Eigen::MatrixXd q = X * unitTensorMatrix(n, k, terms, parents, publishedCfp) * X.transpose();
            check.compare(fmt::format("U({})", k), generated.unitTensor[static_cast<std::size_t>(k)], p, q,
                          termLabels, true);
        }
    if (published.hasDoubleTensors)
        for (int k = 0; k <= 6; ++k) {
            const Eigen::MatrixXd p = X * fullPublished(published.doubleTensor[static_cast<std::size_t>(k)]) * X.transpose();
            const Eigen::MatrixXd q = X * doubleTensorMatrix(n, k, terms, parents, publishedCfp) * X.transpose();
            check.compare(fmt::format("V(1{})", k), generated.doubleTensor[static_cast<std::size_t>(k)], p, q,
                          termLabels, true);
        }
    if (published.hasElectrostatic)
        for (int r = 0; r < 3; ++r) {
            const int k = 2 * r + 2;
            const Eigen::MatrixXd shift = coulombAverage(n, k) * Eigen::MatrixXd::Identity(T, T);
            const Eigen::MatrixXd g = generated.coulomb[static_cast<std::size_t>(r)] - shift;
            const Eigen::MatrixXd p = X * fullPublished(published.coulombCentred[static_cast<std::size_t>(r)]) * X.transpose();
            const Eigen::MatrixXd fromCfp =
                coulombMatrix(n, k, terms, unitTensorMatrix(n, k, terms, parents, publishedCfp)) - shift;
            const Eigen::MatrixXd q = X * fromCfp * X.transpose();
            check.compare(fmt::format("f({})", k), g, p, q, termLabels, true);
        }
    return result;
}

std::vector<std::string> comparisonReportLines(const ConfigurationComparison& c) {
    std::vector<std::string> lines;
    if (!c.termsAgree) {
        lines.push_back(fmt::format("Some mismatch found in f{}: the term lists differ", c.electrons));
        return lines;
    }
    int compared = 0;
    for (const auto& s : c.summaries) compared += s.elementsCompared;
    if (c.mismatches.empty())
        lines.push_back(fmt::format("No mismatch found in f{} ({} elements compared, {} published errors)",
                                    c.electrons, compared, c.publishedErrors.size()));
    else
        lines.push_back(fmt::format("Some mismatch found in f{}: {} of {} elements", c.electrons,
                                    c.mismatches.size(), compared));
    const auto details = comparisonDetailLines(c, [](const std::string&) { return true; });
    lines.insert(lines.end(), details.begin(), details.end());
    return lines;
}

std::vector<std::string> comparisonDetailLines(const ConfigurationComparison& c,
                                               const std::function<bool(const std::string& table)>& selected) {
    std::vector<std::string> lines;
    for (const auto& s : c.summaries) {
        if (!selected(s.table)) continue;
        lines.push_back(fmt::format("  {:<6} {:>6} elements  {:>4} mismatches  {:>4} published errors  {:>4} within the published rounding  largest agreeing difference {:.1e}",
                                    s.table, s.elementsCompared, s.mismatches, s.publishedErrors,
                                    s.withinPublishedRounding, s.largestDifference));
    }
    for (const auto& e : c.mismatches) {
        if (!selected(e.table)) continue;
        lines.push_back(fmt::format("  mismatch  f{} {} {} {}: generated {:.9f} published {:.9f}", c.electrons,
                                    e.table, e.row, e.column, e.generated, e.published));
    }
    for (const auto& e : c.publishedErrors) {
        if (!selected(e.table)) continue;
        lines.push_back(fmt::format("  published error  f{} {} {} {}: published {:.9f}, its own CFPs give {:.9f}, generated {:.9f}",
                                    c.electrons, e.table, e.row, e.column, e.published,
                                    e.fromPublishedParentage, e.generated));
    }
    return lines;
}

}  // namespace orvane
