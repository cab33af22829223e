#include "fit/grasp_energies.hpp"

#include <algorithm>
#include <cctype>
#include <optional>

#include "core/atomic_file.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {
namespace {

constexpr std::string_view kTitle = "Error in reading GRASP2K energies";
constexpr std::string_view kRowShape = "No Pos J Parity EnergyTotal Levels Configuration";
// GRASP2K level listings are a few kilobytes; larger files are refused unread.
constexpr std::uintmax_t kMaxGraspFileBytes = 1u << 20;

// 2J of an unsigned "4" or "9/2".
std::optional<int> twiceJOf(std::string_view text) {
    if (text.empty() || !std::isdigit(static_cast<unsigned char>(text.front())))
        return std::nullopt;
    const auto slash = text.find('/');
    if (slash == std::string_view::npos) {
        const auto j = parseInteger(text);
        return j && *j < 1000 ? std::optional<int>(2 * *j) : std::nullopt;
    }
    const auto numerator = parseInteger(text.substr(0, slash));
    if (!numerator || *numerator % 2 == 0 || *numerator >= 2000 || text.substr(slash + 1) != "2")
        return std::nullopt;
    return *numerator;
}

std::optional<GraspLevel> levelRow(std::string_view line) {
    const std::vector<std::string> fields = splitFields(line);
    if (fields.size() < 6) return std::nullopt;
    const auto number = parseInteger(fields[0]), position = parseInteger(fields[1]);
    const auto twiceJ = twiceJOf(fields[2]);
    const auto total = parseNumber(fields[4]), energy = parseNumber(fields[5]);
    if (!number || !position || *number < 1 || *position < 1 || !twiceJ || !total || !energy)
        return std::nullopt;
    if (fields[3] != "+" && fields[3] != "-") return std::nullopt;
    GraspLevel level{*twiceJ, fields[3] == "+" ? Parity::Even : Parity::Odd, *energy, {}};
    for (std::size_t i = 6; i < fields.size(); ++i)
        level.configuration += (i > 6 ? " " : "") + fields[i];
    return level;
}

bool isDashedLine(std::string_view line) {
    return line.size() >= 3 && line.find_first_not_of('-') == std::string_view::npos;
}

}  // namespace

std::vector<GraspLevel> parseGraspLevels(std::string_view text,
                                         const std::string& fileNameForMessages) {
    std::vector<GraspLevel> levels;
    int lineNumber = 0;
    for (std::size_t start = 0; start < text.size();) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        const std::string_view line = trim(text.substr(start, end - start));
        start = end + 1;
        ++lineNumber;
        const auto level = levelRow(line);
        if (level) {
            levels.push_back(*level);
            continue;
        }
        if (levels.empty() || line.empty()) continue;  // header, or a gap inside the table
        if (isDashedLine(line)) break;
        throw UserError(std::string(kTitle),
                        "expected a level row (" + std::string(kRowShape) +
                            ") or the closing dashed line, found: " + std::string(line),
                        FileLocation{fileNameForMessages, lineNumber});
    }
    if (levels.empty())
        throw UserError(std::string(kTitle), fileNameForMessages + ": no level row (" +
                                                 std::string(kRowShape) +
                                                 ") found; is this a GRASP2K level listing?");
    return levels;
}

std::vector<GraspLevel> readGraspLevels(const std::filesystem::path& path) {
    return parseGraspLevels(readTextFile(path, kMaxGraspFileBytes), path.string());
}

std::vector<double> graspLevelEnergies(const std::vector<GraspLevel>& levels, bool setZero) {
    std::vector<double> energies;
    for (const GraspLevel& level : levels) energies.push_back(level.energy);
    if (setZero && !energies.empty()) {
        const double lowest = *std::min_element(energies.begin(), energies.end());
        for (double& energy : energies) energy -= lowest;
    }
    return energies;
}

}  // namespace orvane
