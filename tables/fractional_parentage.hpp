#pragma once
// Coefficients of fractional parentage (f^n term {| f^(n-1) parent): the file
// "fNcfp.val" (a title line, then triples "term parent value" in print zones,
// read back in free format) and the complementarity relation that gives the
// coefficients of f^N, N = 8..14, from those of f^(15-N).
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <Eigen/Dense>

#include "tables/term.hpp"

namespace orvane {

inline constexpr int kMaxTerms = 120;  // bound on the terms of any configuration

struct ParentageTable {
    std::string title;
    int terms = 0;     // largest term index read
    int parents = 0;   // largest parent index read
    Eigen::MatrixXd values;  // terms x parents, pairs not listed are 0
};

// Reads the text of a coefficient file; throws UserError naming the file and
// line for a field that is not a number, an index outside 1..120, a value that
// is not finite or an incomplete triple.
ParentageTable parseFractionalParentage(std::string_view text, const std::string& fileName);

// Reads the coefficient file of f^n; throws UserError (ReadingParentage) when
// it does not exist (interactive/table_file_prompts.hpp asks for another name).
ParentageTable readFractionalParentageFile(int n, const std::filesystem::path& file);

// The file text: the title line, then one line per non-zero coefficient, the
// three numbers in the general number form in 14-column print zones.
std::string fractionalParentageFileText(std::string_view title, const Eigen::MatrixXd& values);

// Coefficients of f^N (N = 8..14) from those of f^n', n' = 15 - N, by the
// complementarity relation (Racah 1943; de-Shalit & Talmi, Nuclear Shell
// Theory, eq. 26.22; the seniority factor of N = 8 as in docs/conventions.md).
// termsN are the terms of f^N (labelled as f^(n'-1)), parentsN the terms of
// f^(N-1) (labelled as f^n'); terms are matched to the source by label.
// Throws std::invalid_argument for an N outside 8..14 or an unmatched label.
Eigen::MatrixXd complementaryParentage(int N, const ParentageTable& source,
                                       const std::vector<TermRecord>& sourceTerms,
                                       const std::vector<TermRecord>& sourceParents,
                                       const std::vector<TermRecord>& termsN,
                                       const std::vector<TermRecord>& parentsN);

}  // namespace orvane
