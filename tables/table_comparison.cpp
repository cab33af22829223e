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

// Configuration average of f_k over all C(14, n) states (physics notes 5.3):
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

constexpr double kHalfPrintedUnit = 5e-7;  // published tables print six decimals
constexpr double kLastDigitSlack = 2e-6;

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
                // A published error: the tabulated value is not the six-decimal
                // rounding of what the published coefficients imply, and the
                // generated value agrees with that implied value.
                if (std::abs(g - q) <= tolerance && std::abs(p - q) > kHalfPrintedUnit) {
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
    for (const auto& s : c.summaries)
        lines.push_back(fmt::format("  {:<6} {:>6} elements  {:>4} mismatches  {:>4} published errors  largest agreeing difference {:.1e}",
                                    s.table, s.elementsCompared, s.mismatches, s.publishedErrors,
                                    s.largestDifference));
    for (const auto& e : c.mismatches)
        lines.push_back(fmt::format("  mismatch  f{} {} {} {}: generated {:.9f} published {:.9f}", c.electrons,
                                    e.table, e.row, e.column, e.generated, e.published));
    // Published elements off by one unit of their last printed digit are
    // counted; larger published errors are listed one by one.
    int lastDigit = 0;
    for (const auto& e : c.publishedErrors) {
        if (std::abs(e.published - e.fromPublishedParentage) <= kLastDigitSlack) {
            ++lastDigit;
            continue;
        }
        lines.push_back(fmt::format("  published error  f{} {} {} {}: published {:.9f}, its own CFPs give {:.9f}, generated {:.9f}",
                                    c.electrons, e.table, e.row, e.column, e.published,
                                    e.fromPublishedParentage, e.generated));
    }
    if (lastDigit > 0)
        lines.push_back(fmt::format("  published last-digit errors in f{}: {} elements differ from the values their own CFPs imply by at most {:.0e}",
                                    c.electrons, lastDigit, kLastDigitSlack));
    return lines;
}

}  // namespace orvane

#include <algorithm>

#include "core/atomic_file.hpp"
#include "core/user_error.hpp"
#include "tables/magnetic_comparison.hpp"
#include "tables/magnetic_tables.hpp"
#include "tables/table_directory.hpp"
#include "tables/three_body_tables.hpp"

namespace orvane {

bool comparePublishedTables(const std::filesystem::path& directory, const std::vector<int>& electrons,
                            LogBook& log) {
    std::filesystem::path folder = directory;
    if (std::filesystem::is_directory(directory / "fncross")) folder = directory / "fncross";
    const int highest = electrons.empty() ? 0 : *std::max_element(electrons.begin(), electrons.end());
    const auto generated = generateConfigurations(7);
    Eigen::MatrixXd previous = Eigen::MatrixXd::Identity(1, 1);
    bool allAgree = true;
    int publishedErrors = 0;
    // Three-body and magnetic operators (escalated from f^2, f^3), when a shell above f^1 is compared.
    const auto lower = highest >= 2 ? lowerConfigurationTables(generated) : std::vector<ConfigurationTables>{};
    const auto threeBody = highest >= 2 ? threeBodyOperatorsOfAll(lower) : std::vector<ThreeBodyOperators>{};
    const auto magnetic = highest >= 2 ? magneticOperatorsOfAll(lower) : std::vector<MagneticOperators>{};
    for (int n = 1; n <= highest; ++n) {
        const std::string name = "f" + std::to_string(n) + "cross";
        const auto file = findCaseBlind(folder, name);
        if (!file)
            throw UserError("Error in comparing tables", "published table " + name + " not found in " + folder.string());
        const auto published = parsePublishedTables(readTextFile(*file), file->string());
        const auto tables = computeConfigurationTables(n, generated);
        const auto comparison = compareConfiguration(tables, published, previous);
        previous = comparison.transformation;
        if (std::find(electrons.begin(), electrons.end(), n) == electrons.end()) continue;
        for (const auto& line : comparisonReportLines(comparison)) log.appendLine(line);
        allAgree = allAgree && comparison.termsAgree && comparison.mismatches.empty();
        publishedErrors += static_cast<int>(comparison.publishedErrors.size());
        if (!comparison.termsAgree || n < 2) continue;
        const auto index = static_cast<std::size_t>(n);
        if (published.hasThreeBody) {
            const auto many = compareThreeBodyColumns(tables, published, comparison.transformation, threeBody[index],
                                                      racahE3(tables));
            for (const auto& line : manyBodyReportLines(many, "three-body")) log.appendLine(line);
            allAgree = allAgree && many.mismatches.empty();
            publishedErrors += static_cast<int>(many.publishedErrors.size());
        }
        if (published.hasMagnetic) {
            const auto many = compareMagneticColumns(tables, published, comparison.transformation, magnetic[index]);
            for (const auto& line : manyBodyReportLines(many, "magnetic")) log.appendLine(line);
            allAgree = allAgree && many.mismatches.empty();
        }
    }
    if (allAgree)
        log.appendLine(fmt::format("No mismatch found in any configuration compared ({} published errors listed)",
                                   publishedErrors));
    else
        log.appendLine("Some mismatch found: see the lines above");
    return allAgree;
}

}  // namespace orvane
