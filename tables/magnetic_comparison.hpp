#pragma once
// Comparison of the generated three-body and magnetic operators with a
// published table in the "cross" layout (E-S columns T2..T8, MK,PK block).
//
// Elements are compared in the published basis (X^T G X, X the term
// transformation found from the published CFPs), so that a differing element
// is named by its published position. A difference is explained when
//  * every differing element of the column involves one term and is the
//    negative of the generated one: the published block uses the opposite
//    phase of that term (reported as such), or
//  * the published column itself fails a consistency check that every
//    correct column passes: its pure three-body part (T2 minus
//    (n-2) e3/(70 sqrt 2)) must be traceless over the |SLJM> states and have
//    the norm of the generated operator (Tr(t^2) = C(8, n-3) Tr_f3(t^2));
//    the differing elements are then listed as published errors.
// Anything else is a mismatch.
#include <string>
#include <vector>

#include <Eigen/Dense>

#include "tables/magnetic_operators.hpp"
#include "tables/published_tables.hpp"
#include "tables/table_builder.hpp"
#include "tables/table_comparison.hpp"
#include "tables/three_body_operators.hpp"

namespace orvane {

struct ManyBodyComparison {
    int electrons = 0;
    int elementsCompared = 0;
    std::vector<ElementDifference> mismatches;
    std::vector<ElementDifference> publishedErrors;
    std::vector<std::string> phaseNotes;  // "T3: the published block has the opposite phase of 1S3"
};

// `orthogonal` are t2', t3, ..., t8 of f^n, `e3` Racah's e3 of f^n (generated basis).
ManyBodyComparison compareThreeBodyColumns(const ConfigurationTables& generated, const PublishedTables& published,
                                           const Eigen::MatrixXd& transformation,
                                           const ThreeBodyOperators& orthogonal, const Eigen::MatrixXd& e3,
                                           double tolerance = 3e-5);

ManyBodyComparison compareMagneticColumns(const ConfigurationTables& generated, const PublishedTables& published,
                                          const Eigen::MatrixXd& transformation, const MagneticOperators& magnetic);

// Report lines, ending with "Finished comparing reduced matrix elements of  ti operators for f" n
// (or "... of  mk and pk operators for f" n).
std::vector<std::string> manyBodyReportLines(const ManyBodyComparison& comparison, const std::string& what);

}  // namespace orvane
