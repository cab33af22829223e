#include "tables/magnetic_comparison.hpp"

#include <cmath>
#include <map>

#include <fmt/format.h>

#include "tables/three_body_tables.hpp"
#include "tables/two_body_escalation.hpp"

namespace orvane {

namespace {

constexpr const char* kThreeBodyColumns[] = {"T2", "T3", "T4", "T6", "T7", "T8"};
constexpr const char* kMagneticColumns[] = {"M0", "M2", "M4", "P2", "P4", "P6"};
constexpr double kConsistency = 1e-5;  // relative, for the trace and norm checks

bool evenPhase(const TermSpinOrbit& a, const TermSpinOrbit& b) {
    return (((a.twiceS - b.twiceS) / 2 + a.L - b.L) % 2) == 0;
}

// Full matrix from printed rows that may name a pair in either order.
Eigen::MatrixXd fullFromPrintedRows(const Eigen::MatrixXd& stored, const std::vector<TermSpinOrbit>& terms) {
    Eigen::MatrixXd upper = Eigen::MatrixXd::Zero(stored.rows(), stored.cols());
    for (int i = 0; i < stored.rows(); ++i)
        for (int j = 0; j < stored.cols(); ++j) {
            if (stored(i, j) == 0.0) continue;
            if (i <= j)
                upper(i, j) = stored(i, j);
            else
                upper(j, i) = evenPhase(terms[static_cast<std::size_t>(i)], terms[static_cast<std::size_t>(j)])
                                  ? stored(i, j)
                                  : -stored(i, j);
        }
    return completeFromStoredHalf(upper, terms);
}

struct Differing {
    int i, j;
    double generated, published;
};

std::vector<Differing> differingElements(const Eigen::MatrixXd& generated, const Eigen::MatrixXd& published,
                                         double tolerance, int& compared) {
    std::vector<Differing> result;
    for (int i = 0; i < generated.rows(); ++i)
        for (int j = i; j < generated.cols(); ++j) {
            if (generated(i, j) == 0.0 && published(i, j) == 0.0) continue;
            ++compared;
            if (std::abs(generated(i, j) - published(i, j)) > tolerance)
                result.push_back({i, j, generated(i, j), published(i, j)});
        }
    return result;
}

// The term shared by every element that differs only in sign (over all columns), or -1:
// a published block written with the opposite phase of that term.
int phaseTermOf(const std::vector<std::vector<Differing>>& columns, double tolerance) {
    std::map<int, int> count;
    int negated = 0;
    for (const auto& column : columns)
        for (const auto& d : column) {
            if (d.i == d.j || std::abs(d.generated + d.published) > tolerance) continue;
            ++negated;
            ++count[d.i];
            ++count[d.j];
        }
    for (const auto& [term, c] : count)
        if (c == negated) return term;
    return -1;
}

bool explainedByPhase(const Differing& d, int phaseTerm, double tolerance) {
    return phaseTerm >= 0 && d.i != d.j && (d.i == phaseTerm || d.j == phaseTerm) &&
           std::abs(d.generated + d.published) <= tolerance;
}

ElementDifference differenceRecord(const std::string& table, const ConfigurationTables& generated,
                                   const Differing& d) {
    return {table, generated.terms[static_cast<std::size_t>(d.i)].label,
            generated.terms[static_cast<std::size_t>(d.j)].label, d.generated, d.published, d.generated};
}

}  // namespace

ManyBodyComparison compareThreeBodyColumns(const ConfigurationTables& generated, const PublishedTables& published,
                                           const Eigen::MatrixXd& transformation,
                                           const ThreeBodyOperators& orthogonal, const Eigen::MatrixXd& e3,
                                           double tolerance) {
    const int n = generated.electrons;
    ManyBodyComparison result;
    result.electrons = n;
    if (!published.hasThreeBody) return result;
    const auto terms = spinOrbitOf(generated.terms);
    const Eigen::MatrixXd& X = transformation;
    const auto ordinary = ordinaryThreeBodyOperators(n, orthogonal, e3);
    const Eigen::MatrixXd e3Part = (n - 2) / (70.0 * std::sqrt(2.0)) * (X.transpose() * e3 * X);
    const int T = static_cast<int>(terms.size());
    const Eigen::MatrixXd identity = Eigen::MatrixXd::Identity(T, T);
    std::vector<std::vector<Differing>> differing;
    std::vector<Eigen::MatrixXd> publishedColumns;
    for (std::size_t c = 0; c < ordinary.size(); ++c) {
        const Eigen::MatrixXd ours = X.transpose() * ordinary[c] * X;
        publishedColumns.push_back(completeFromStoredHalf(published.threeBody[c], terms));
        differing.push_back(differingElements(ours, publishedColumns.back(), tolerance, result.elementsCompared));
    }
    const int phaseTerm = phaseTermOf(differing, tolerance);
    for (std::size_t c = 0; c < ordinary.size(); ++c) {
        std::vector<Differing> unexplained;
        int byPhase = 0;
        for (const auto& d : differing[c]) {
            if (explainedByPhase(d, phaseTerm, tolerance))
                ++byPhase;
            else
                unexplained.push_back(d);
        }
        if (byPhase > 0)
            result.phaseNotes.push_back(fmt::format("{}: {} elements of the published block have the opposite phase of {}",
                                                    kThreeBodyColumns[c], byPhase,
                                                    generated.terms[static_cast<std::size_t>(phaseTerm)].label));
        if (unexplained.empty()) continue;
        // Consistency of the published column (phase-corrected): its pure three-body part.
        Eigen::VectorXd flip = Eigen::VectorXd::Ones(T);
        if (phaseTerm >= 0 && byPhase > 0) flip[phaseTerm] = -1.0;
        const Eigen::MatrixXd theirs = flip.asDiagonal() * publishedColumns[c] * flip.asDiagonal();
        const Eigen::MatrixXd pure = c == 0 ? Eigen::MatrixXd(theirs - e3Part) : theirs;
        const Eigen::MatrixXd oursPure = X.transpose() * orthogonal[c] * X;
        const double norm = scalarProductTrace(terms, oursPure, oursPure);
        const double trace = scalarProductTrace(terms, pure, identity);
        const double publishedNorm = scalarProductTrace(terms, pure, pure);
        const bool consistent = std::abs(trace) <= kConsistency * std::sqrt(norm) * T &&
                                std::abs(publishedNorm - norm) <= kConsistency * norm;
        for (const auto& d : unexplained)
            (consistent ? result.mismatches : result.publishedErrors)
                .push_back(differenceRecord(kThreeBodyColumns[c], generated, d));
    }
    return result;
}

ManyBodyComparison compareMagneticColumns(const ConfigurationTables& generated, const PublishedTables& published,
                                          const Eigen::MatrixXd& transformation, const MagneticOperators& magnetic) {
    ManyBodyComparison result;
    result.electrons = generated.electrons;
    if (!published.hasMagnetic) return result;
    const auto terms = spinOrbitOf(generated.terms);
    const Eigen::MatrixXd& X = transformation;
    for (std::size_t c = 0; c < magnetic.spinOtherOrbit.size(); ++c) {
        const Eigen::MatrixXd ours = X.transpose() * magnetic.spinOtherOrbit[c] * X;
        const Eigen::MatrixXd theirs = fullFromPrintedRows(published.magnetic[c], terms);
        // printed to 6 decimals; values up to a few hundred
        const double tolerance = 3e-5 + 2e-6 * theirs.cwiseAbs().maxCoeff();
        for (const auto& d : differingElements(ours, theirs, tolerance, result.elementsCompared))
            result.mismatches.push_back(differenceRecord(kMagneticColumns[c], generated, d));
    }
    return result;
}

std::vector<std::string> manyBodyReportLines(const ManyBodyComparison& c, const std::string& what) {
    std::vector<std::string> lines;
    lines.push_back(fmt::format("{} of f{}: {} elements compared, {} mismatches, {} published errors", what,
                                c.electrons, c.elementsCompared, c.mismatches.size(), c.publishedErrors.size()));
    for (const auto& note : c.phaseNotes) lines.push_back("  phase  f" + std::to_string(c.electrons) + " " + note);
    for (const auto& e : c.mismatches)
        lines.push_back(fmt::format("  mismatch  f{} {} {} {}: generated {:.6f} published {:.6f}", c.electrons, e.table,
                                    e.row, e.column, e.generated, e.published));
    for (const auto& e : c.publishedErrors)
        lines.push_back(fmt::format(
            "  published error  f{} {} {} {}: published {:.6f}, generated {:.6f} (the published column fails the trace/norm check)",
            c.electrons, e.table, e.row, e.column, e.published, e.generated));
    lines.push_back(fmt::format("Finished comparing reduced matrix elements of  {} operators for f{}",
                                what == "three-body" ? "ti" : "mk and pk", c.electrons));
    return lines;
}

}  // namespace orvane
