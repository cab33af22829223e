#pragma once
// The state-label file "fNstate.lab": a title line, then one line per term
// "label v W U" (W the R7 label as digits, U the G2 label as digits). Lines
// whose first field does not start with a digit are skipped, so comment lines
// may stand anywhere; terms are numbered in file order.
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "core/log_book.hpp"
#include "tables/term.hpp"

namespace orvane {

enum class StateLabelForm {
    Standard,      // label in the first field, then v, W, U
    SecondField,   // only labels, taken from the second field
};

struct StateLabelParse {
    std::vector<TermRecord> terms;
    std::vector<std::string> warnings;  // "Invalid Casimir's operator: ..." texts
};

// Reads the text of a state-label file. Throws UserError naming `fileName`
// and the line for a term line that cannot be read.
StateLabelParse parseStateLabels(std::string_view text, StateLabelForm form, bool skipTitle,
                                 const std::string& fileName);

// Stored value of a G2 label ("31" -> 32); 0 and the warning
// "Invalid Casimir's operator: <label>" in `warning` for an unknown label.
int CasimirG2Value(std::string_view uText, std::string* warning = nullptr);
// Stored value of an R7 label ("221" -> 13); 0 and
// "Invalid Casimir's R7 operator: <label>" for an unknown label.
int CasimirR7Value(std::string_view wText, std::string* warning = nullptr);

// Reads the state-label file; throws UserError (ReadingStateLabels) when it
// does not exist (interactive/table_file_prompts.hpp asks for another name).
StateLabelParse readStateLabelFile(const std::filesystem::path& file, StateLabelForm form, bool skipTitle = true);

// One written term line.
struct TermLabelLine {
    std::string label;
    int seniority = 0;
    std::string wText;  // "221"
    std::string uText;  // "31"
};

// The file text: the title, then "label v W U" lines ("2D1  3 210 20").
std::string stateLabelFileText(std::string_view title, const std::vector<TermLabelLine>& lines);

// S and L of a term record from its label (2S and L); throws std::invalid_argument
// for a label that does not carry them.
int twiceSpinOf(const TermRecord& term);
int orbitalOf(const TermRecord& term);

}  // namespace orvane
