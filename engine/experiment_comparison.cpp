#include "engine/experiment_comparison.hpp"

#include <cmath>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {

namespace {

constexpr ErrorCategory kTitle = ErrorCategory::ComparingEnergies;

bool endsBlock(std::string_view line) {
    const auto t = trim(line);
    return t.rfind("END", 0) == 0 || t.find("FOR F") != std::string_view::npos;
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) {
            if (start < text.size()) lines.push_back(text.substr(start));
            break;
        }
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

}  // namespace

std::vector<double> parseExperimentBlock(std::string_view text, const std::string& fileName) {
    const auto lines = linesOf(text);
    std::size_t i = 0;
    while (i < lines.size() && lines[i].find("EXPERIMENT") == std::string_view::npos) ++i;
    if (i == lines.size()) throw UserError(kTitle, "no block \"EXPERIMENT\" in " + fileName);
    const int titleLine = static_cast<int>(i) + 1;
    std::vector<double> energies;
    for (++i; i < lines.size() && !endsBlock(lines[i]); ++i)
        for (const auto& field : splitAnswerFields(trim(lines[i]))) {  // trim: CR of CRLF files
            const auto value = parseNumber(field);
            if (!value)
                throw UserError(kTitle, "\"" + field + "\" is not an energy",
                                FileLocation{fileName, static_cast<int>(i) + 1});
            energies.push_back(*value);
        }
    if (energies.empty())
        throw UserError(kTitle, "the block \"EXPERIMENT\" holds no energies", FileLocation{fileName, titleLine});
    return energies;
}

ExperimentComparison compareWithExperiment(const std::vector<double>& observed, const std::vector<double>& calculated) {
    ExperimentComparison result;
    const std::size_t pairs = std::min(observed.size(), calculated.size());
    double sum = 0.0;
    for (std::size_t i = 0; i < pairs; ++i) {
        const double d = observed[i] - calculated[i];
        result.rows.push_back({static_cast<int>(i) + 1, observed[i], calculated[i], d});
        sum += d * d;
    }
    result.rmsDifference = pairs > 0 ? std::sqrt(sum / static_cast<double>(pairs)) : 0.0;
    result.observedWithoutLevel = static_cast<int>(observed.size() - pairs);
    return result;
}

std::vector<std::string> experimentComparisonLines(const ExperimentComparison& c) {
    std::vector<std::string> lines;
    lines.push_back("Level    Experiment   Calculated   Exp.-Calc.");
    for (const auto& r : c.rows)
        lines.push_back(fmt::format("{:>5} {} {} {:>12}", r.level, formatNumber(r.observed, "######0.0000"),
                                    formatNumber(r.calculated, "######0.0000"), formatNumber(r.difference, "##0.0##")));
    lines.push_back(fmt::format("{} pairs, rms of Exp.-Calc. = {}", c.rows.size(),
                                trim(formatNumber(c.rmsDifference, "##0.0##"))));
    if (c.observedWithoutLevel > 0)
        lines.push_back(fmt::format("{} experimental energies have no calculated level", c.observedWithoutLevel));
    return lines;
}

}  // namespace orvane
