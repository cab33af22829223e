#include "tables/state_labels.hpp"

#include <cmath>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {

namespace {

constexpr ErrorCategory kReadTitle = ErrorCategory::ReadingStateLabels;

std::vector<std::string> splitLines(std::string_view text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start <= text.size()) {
        const auto end = text.find('\n', start);
        if (end == std::string_view::npos) {
            if (start < text.size()) lines.emplace_back(text.substr(start));
            break;
        }
        lines.emplace_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

}  // namespace

int CasimirG2Value(std::string_view uText, std::string* warning) {
    if (const auto value = g2ValueOfLabel(uText)) return *value;
    if (warning) *warning = "Invalid Casimir's operator: " + std::string(trim(uText));
    return 0;
}

int CasimirR7Value(std::string_view wText, std::string* warning) {
    if (const auto value = r7ValueOfLabel(wText)) return *value;
    if (warning) *warning = "Invalid Casimir's R7 operator: " + std::string(trim(wText));
    return 0;
}

StateLabelParse parseStateLabels(std::string_view text, StateLabelForm form, bool skipTitle,
                                 const std::string& fileName) {
    StateLabelParse result;
    const auto lines = splitLines(text);
    for (std::size_t i = skipTitle ? 1 : 0; i < lines.size(); ++i) {
        const auto fields = splitFields(lines[i]);
        if (fields.empty() || fields[0][0] < '0' || fields[0][0] > '9') continue;
        const int lineNumber = static_cast<int>(i + 1);
        TermRecord term;
        if (form == StateLabelForm::SecondField) {
            if (fields.size() < 2)
                throw UserError(kReadTitle, "a term line needs the label in its second field",
                                FileLocation{fileName, lineNumber});
            term.label = fields[1].substr(0, kTermLabelWidth);
            result.terms.push_back(std::move(term));
            continue;
        }
        if (fields.size() < 4)
            throw UserError(kReadTitle,
                            fmt::format("a term line needs four fields (label v W U), found {}",
                                        fields.size()),
                            FileLocation{fileName, lineNumber});
        term.label = fields[0].substr(0, kTermLabelWidth);
        const auto seniority = parseNumber(fields[1]);
        if (!seniority || std::abs(*seniority) > 14)
            throw UserError(kReadTitle, "the seniority \"" + fields[1] + "\" is not a number from 0 to 14",
                            FileLocation{fileName, lineNumber});
        term.seniority = static_cast<int>(std::lround(*seniority));
        std::string warning;
        term.r7Value = CasimirR7Value(fields[2], &warning);
        if (!warning.empty()) result.warnings.push_back(std::exchange(warning, {}));
        term.g2Value = CasimirG2Value(fields[3], &warning);
        if (!warning.empty()) result.warnings.push_back(warning);
        result.terms.push_back(std::move(term));
    }
    return result;
}

StateLabelParse readStateLabelFile(const std::filesystem::path& file, StateLabelForm form, bool skipTitle) {
    if (!std::filesystem::exists(file))
        throw UserError(kReadTitle, "state-label file not found: " + file.string());
    return parseStateLabels(readTextFile(file), form, skipTitle, file.string());
}

std::string stateLabelFileText(std::string_view title, const std::vector<TermLabelLine>& lines) {
    std::string text(title);
    text += '\n';
    for (const auto& line : lines)
        text += fmt::format("{:<4} {} {} {}\n", line.label, line.seniority, line.wText, line.uText);
    return text;
}

int twiceSpinOf(const TermRecord& term) {
    const auto value = twiceSpinOfLabel(term.label);
    if (!value) throw std::invalid_argument("term label without S and L: " + term.label);
    return *value;
}

int orbitalOf(const TermRecord& term) {
    const auto value = orbitalOfLabel(term.label);
    if (!value) throw std::invalid_argument("term label without S and L: " + term.label);
    return *value;
}

}  // namespace orvane
