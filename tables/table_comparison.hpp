#pragma once
// Comparison of generated tables with published ones, up to the phase
// conventions: each term may differ by a sign, and the two states of a
// repeated (S, L, v, W, U) pair by an orthogonal rotation. The transformation
// of f^n is found from the coefficients of fractional parentage (given that of
// f^(n-1)); every element is then compared after transforming the published
// table. A published element that disagrees with the value implied by the
// published table's own coefficients is reported as a published error, not as
// a mismatch.
#include <filesystem>
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

}  // namespace orvane

namespace orvane {

// Compares the generated tables of the configurations `electrons` (1..14) with
// the published files "fNcross" of `directory` (or of its "fncross" folder),
// logging the report lines and a final verdict. Transformations are chained
// from f^1, so every lower configuration is read too. Returns true when no
// mismatch was found. Throws UserError for a missing or unreadable file.
bool comparePublishedTables(const std::filesystem::path& directory, const std::vector<int>& electrons,
                            LogBook& log);

}  // namespace orvane
