#pragma once
// Comparison of generated tables with published ones, up to the phase
// conventions: each term may differ by a sign, and the two states of a
// repeated (S, L, v, W, U) pair by an orthogonal rotation. The transformation
// of f^n is found from the coefficients of fractional parentage (given that of
// f^(n-1)); every element is then compared after transforming the published
// table. A published element that disagrees with the value implied by the
// published table's own coefficients by more than the published rounding
// (3e-6) is reported as a published error, not as a mismatch.
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "core/log_book.hpp"

#include <Eigen/Dense>

#include "tables/published_tables.hpp"
#include "tables/table_builder.hpp"

namespace orvane {

struct ElementDifference {
    std::string table;     // "CFP", "U(2)", "V(11)", "f(4)", "terms"
    std::string row, column;
    double generated = 0.0;
    double published = 0.0;          // after the phase transformation
    double fromPublishedParentage = 0.0;
};

struct TableSummary {
    std::string table;
    int elementsCompared = 0;
    int mismatches = 0;
    int publishedErrors = 0;
    // Published elements off the generated value by more than the tolerance but
    // within the published rounding of what the published CFPs imply (half a
    // unit of the sixth decimal plus 2.5e-6 carried from the CFPs): not errors.
    int withinPublishedRounding = 0;
    double largestDifference = 0.0;  // over the elements that agree
};

struct ConfigurationComparison {
    int electrons = 0;
    bool termsAgree = false;
    Eigen::MatrixXd transformation;          // generated = transformation * published (term states)
    std::vector<TableSummary> summaries;
    std::vector<ElementDifference> mismatches;
    std::vector<ElementDifference> publishedErrors;
};

// `previousTransformation` is that of f^(n-1) (1x1 identity for n = 1).
ConfigurationComparison compareConfiguration(const ConfigurationTables& generated,
                                             const PublishedTables& published,
                                             const Eigen::MatrixXd& previousTransformation,
                                             double tolerance = 1e-6);

// Report lines: a verdict per configuration ("No mismatch found ..." or
// "Some mismatch found ..."), a summary per table and every element listed.
std::vector<std::string> comparisonReportLines(const ConfigurationComparison& comparison);
// The summary and element lines (no verdict) of the tables `selected` accepts.
std::vector<std::string> comparisonDetailLines(const ConfigurationComparison& comparison,
                                               const std::function<bool(const std::string& table)>& selected);

}  // namespace orvane
