#include "engine/pair_record_table.hpp"

#include <fmt/format.h>

#include "core/text.hpp"
#include "core/user_error.hpp"
#include "engine/engine_errors.hpp"

namespace orvane {

std::vector<Eigen::MatrixXd> parsePairRecords(std::string_view text, int termCount, int valueCount,
                                              const std::string& fileName) {
    std::vector<Eigen::MatrixXd> matrices(static_cast<std::size_t>(valueCount),
                                          Eigen::MatrixXd::Zero(termCount, termCount));
    int lineNumber = 0;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string_view line = text.substr(start, end - start);
        start = end + 1;
        ++lineNumber;
        if (lineNumber == 1 || trim(line).empty()) continue;  // title line
        auto fail = [&](const std::string& problem) {
            throw UserError(kRealEngineError, fmt::format("{}, line {}: {}", fileName, lineNumber, problem),
                            FileLocation{fileName, lineNumber});
        };
        const auto fields = splitFields(line);
        if (static_cast<int>(fields.size()) != 2 + valueCount)
            fail(fmt::format("expected two term numbers and {} values, found {} fields", valueCount, fields.size()));
        const auto i = parseInteger(fields[0]);
        const auto j = parseInteger(fields[1]);
        if (!i || !j || *i < 1 || *j < 1 || *i > termCount || *j > termCount)
            fail(fmt::format("term numbers must lie in 1..{}", termCount));
        for (int c = 0; c < valueCount; ++c) {
            const auto value = parseNumber(fields[static_cast<std::size_t>(2 + c)]);
            if (!value) fail("not a finite number: " + fields[static_cast<std::size_t>(2 + c)]);
            matrices[static_cast<std::size_t>(c)](*i - 1, *j - 1) = *value;
        }
    }
    return matrices;
}

}  // namespace orvane
