#include "tables/fractional_parentage.hpp"

#include <cmath>
#include <map>
#include <stdexcept>

#include <fmt/format.h>

#include "core/angular.hpp"
#include "core/atomic_file.hpp"
#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "tables/state_labels.hpp"

namespace orvane {

namespace {

constexpr ErrorCategory kReadTitle = ErrorCategory::ReadingParentage;
constexpr std::size_t kPrintZone = 14;

struct Token {
    std::string text;
    int line = 0;
};

}  // namespace

ParentageTable parseFractionalParentage(std::string_view text, const std::string& fileName) {
    ParentageTable table;
    std::vector<Token> tokens;
    int lineNumber = 0;
    std::size_t start = 0;
    while (start < text.size()) {
        auto end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        const auto line = text.substr(start, end - start);
        ++lineNumber;
        if (lineNumber == 1) {
            table.title = std::string(trim(line));
        } else {
            for (auto& field : splitFields(commasToBlanks(line))) tokens.push_back({field, lineNumber});
        }
        start = end + 1;
    }
    if (tokens.size() % 3 != 0)
        throw UserError(kReadTitle, "the last coefficient line does not hold three numbers",
                        FileLocation{fileName, tokens.back().line});
    struct Entry { int i, j; double value; };
    std::vector<Entry> entries;
    for (std::size_t t = 0; t < tokens.size(); t += 3) {
        double numbers[3];
        for (int k = 0; k < 3; ++k) {
            const auto& token = tokens[t + static_cast<std::size_t>(k)];
            const auto value = parseNumber(token.text);
            if (!value)
                throw UserError(kReadTitle, "\"" + token.text + "\" is not a number",
                                FileLocation{fileName, token.line});
            numbers[k] = *value;
        }
        const int line = tokens[t].line;
        for (int k = 0; k < 2; ++k)
            if (numbers[k] != std::round(numbers[k]) || numbers[k] < 1 || numbers[k] > kMaxTerms)
                throw UserError(kReadTitle,
                                fmt::format("term index {} is out of range (1 to {})",
                                            generalNumber(numbers[k]), kMaxTerms),
                                FileLocation{fileName, line});
        entries.push_back({static_cast<int>(numbers[0]), static_cast<int>(numbers[1]), numbers[2]});
        table.terms = std::max(table.terms, entries.back().i);
        table.parents = std::max(table.parents, entries.back().j);
    }
    table.values = Eigen::MatrixXd::Zero(table.terms, table.parents);
    for (const auto& e : entries) table.values(e.i - 1, e.j - 1) = e.value;
    return table;
}

ParentageTable readFractionalParentageFile(int n, const std::filesystem::path& file) {
    if (!std::filesystem::exists(file))
        throw UserError(kReadTitle, fmt::format("coefficient file of f{} not found: {}", n, file.string()));
    return parseFractionalParentage(readTextFile(file), file.string());
}

std::string fractionalParentageFileText(std::string_view title, const Eigen::MatrixXd& values) {
    std::string text(title);
    text += '\n';
    auto zone = [](std::string item) {
        item += ' ';
        while (item.size() % kPrintZone != 0) item += ' ';
        return item;
    };
    for (int i = 0; i < values.rows(); ++i)
        for (int j = 0; j < values.cols(); ++j) {
            if (values(i, j) == 0.0) continue;
            text += zone(generalNumber(i + 1)) + zone(generalNumber(j + 1)) +
                    generalNumber(values(i, j)) + '\n';
        }
    return text;
}

namespace {

std::map<std::string, int> indexByLabel(const std::vector<TermRecord>& terms) {
    std::map<std::string, int> index;
    for (std::size_t i = 0; i < terms.size(); ++i) index[terms[i].label] = static_cast<int>(i);
    return index;
}

int lookUp(const std::map<std::string, int>& index, const std::string& label) {
    const auto found = index.find(label);
    if (found == index.end()) throw std::invalid_argument("term " + label + " not in the source configuration");
    return found->second;
}

}  // namespace

// Complementarity of f^N and f^(15-N) (Racah 1943; docs/conventions.md):
// (psibar } psi)_N = xi (-1)^(S + L + Sbar + Lbar - 7/2) sqrt(n' [Sbar][Lbar] / (N [S][L])) (psi } psibar)_n',
// xi = (-1)^((vbar - 1)/2) for N = 8, 1 otherwise.
Eigen::MatrixXd complementaryParentage(int N, const ParentageTable& source,
                                       const std::vector<TermRecord>& sourceTerms,
                                       const std::vector<TermRecord>& sourceParents,
                                       const std::vector<TermRecord>& termsN,
                                       const std::vector<TermRecord>& parentsN) {
    if (N < 8 || N > 14) throw std::invalid_argument("complementary parentage needs N = 8..14");
    const int nPrime = 15 - N;
    const auto sourceTermIndex = indexByLabel(sourceTerms);
    const auto sourceParentIndex = indexByLabel(sourceParents);
    Eigen::MatrixXd result = Eigen::MatrixXd::Zero(static_cast<int>(termsN.size()),
                                                   static_cast<int>(parentsN.size()));
    for (std::size_t i = 0; i < termsN.size(); ++i) {
        const int twiceS = twiceSpinOf(termsN[i]);
        const int L = orbitalOf(termsN[i]);
        const int column = lookUp(sourceParentIndex, termsN[i].label);
        for (std::size_t j = 0; j < parentsN.size(); ++j) {
            const int row = lookUp(sourceTermIndex, parentsN[j].label);
            if (row >= source.values.rows() || column >= source.values.cols()) continue;
            const double coefficient = source.values(row, column);
            if (coefficient == 0.0) continue;
            const int twiceSbar = twiceSpinOf(parentsN[j]);
            const int Lbar = orbitalOf(parentsN[j]);
            double phase = PhaseSign((twiceS + 2 * L + twiceSbar + 2 * Lbar - 7) / 2.0);
            if (N == 8) phase *= PhaseSign((parentsN[j].seniority - 1) / 2.0);
            const double weight = std::sqrt(nPrime * (twiceSbar + 1.0) * (2 * Lbar + 1.0) /
                                            (N * (twiceS + 1.0) * (2 * L + 1.0)));
            result(static_cast<int>(i), static_cast<int>(j)) = phase * weight * coefficient;
        }
    }
    return result;
}

}  // namespace orvane
