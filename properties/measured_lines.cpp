#include "properties/measured_lines.hpp"

#include <sstream>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {

namespace {

constexpr const char* kTitle = "Error in reading measured line strengths";

[[noreturn]] void refuse(const std::string& file, int line, const std::string& problem) {
    if (line == 0) throw UserError(kTitle, file + ": " + problem);
    throw UserError(kTitle, problem, FileLocation{file, line});
}

}  // namespace

std::vector<MeasuredLine> parseMeasuredLines(const std::string& text, const std::string& fileName, int stateCount) {
    std::vector<MeasuredLine> lines;
    std::istringstream in(text);
    std::string raw;
    for (int number = 1; std::getline(in, raw); ++number) {
        const auto content = trim(raw);
        if (content.empty() || content.front() == '#') continue;
        const auto fields = splitAnswerFields(content);
        if (fields.size() < 3 || fields.size() > 4)
            refuse(fileName, number, "expected \"initial final S [sigma]\", found " + std::to_string(fields.size()) + " fields");
        const auto initial = parseInteger(fields[0]), final = parseInteger(fields[1]);
        const auto strength = parseNumber(fields[2]);
        const auto uncertainty = fields.size() == 4 ? parseNumber(fields[3]) : std::optional<double>(0.0);
        if (!initial || !final) refuse(fileName, number, "state numbers must be integers");
        if (*initial < 1 || *initial > stateCount || *final < 1 || *final > stateCount)
            refuse(fileName, number, fmt::format("state number outside 1..{}", stateCount));
        if (*initial == *final) refuse(fileName, number, "initial and final state are the same");
        if (!strength || *strength < 0.0) refuse(fileName, number, "the line strength must be a number >= 0");
        if (!uncertainty || *uncertainty < 0.0) refuse(fileName, number, "the uncertainty must be a number >= 0");
        lines.push_back({*initial, *final, *strength, *uncertainty});
    }
    if (lines.size() < 3) refuse(fileName, 0, "the Judd-Ofelt fit needs at least three measured lines");
    return lines;
}

std::vector<MeasuredLine> readMeasuredLines(const std::filesystem::path& path, int stateCount) {
    return parseMeasuredLines(readTextFile(path), path.string(), stateCount);
}

}  // namespace orvane
