#pragma once
// Reader of the many-valued term-pair tables of the table directory: a title
// line, then records "i j  v1 .. vm" (term numbers 1..T, m values each), as
// written for the three-body operators ("rmtic.val", "meti.val") and the
// magnetic operators ("mess.val", "mesooci.val", "rmziss.val", "rmzic.val").
// Blank lines are skipped. The records are put where they stand: element
// (i-1, j-1) of matrix c holds value c; the caller completes the other half.
#include <string>
#include <string_view>
#include <vector>

#include <Eigen/Dense>

namespace orvane {

// m matrices T x T. Throws UserError ("Error in real CF main program") naming
// the file and line for a record that is not two term numbers in 1..T
// followed by exactly m finite numbers.
std::vector<Eigen::MatrixXd> parsePairRecords(std::string_view text, int termCount, int valueCount,
                                              const std::string& fileName);

}  // namespace orvane
