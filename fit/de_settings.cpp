#include "fit/de_settings.hpp"

#include <algorithm>
#include <cmath>
#include <map>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/local_time.hpp"
#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {
namespace {

// In the order of DESettingId: deSettingsProblem names the first refusal.
constexpr DESettingId kAllSettings[] = {DESettingId::Parents, DESettingId::F,   DESettingId::Cr,
                                        DESettingId::Lambda,  DESettingId::Sd,  DESettingId::Err,
                                        DESettingId::MaxIterations, DESettingId::GWeight};

bool takesWholeNumbers(DESettingId id) { return id == DESettingId::Parents || id == DESettingId::MaxIterations; }

// The accepted ranges (docs/differential-evolution.md, "Settings"); a whole
// number setting arrives here already read as an integer.
bool accepted(DESettingId id, double value) {
    if (!std::isfinite(value)) return false;
    switch (id) {
        case DESettingId::Parents: return value > kMinimumParents;
        case DESettingId::F:
        case DESettingId::Sd:
        case DESettingId::Err:
        case DESettingId::MaxIterations: return value > 0;
        case DESettingId::Cr:
        case DESettingId::Lambda: return value > 0 && value <= 1;
        case DESettingId::GWeight: return value >= 0;
    }
    return false;
}

std::string refusalText(DESettingId id) {
    switch (id) {
        case DESettingId::Parents:
            return "Value of NP (No. of Parents) should be greater than " + std::to_string(kMinimumParents);
        case DESettingId::F: return "Positive value of F is needed!";
        case DESettingId::Cr: return "Positive and <=1 value of CR is needed!";
        case DESettingId::Lambda: return "Positive and <=1 value of Lambda is needed!";
        case DESettingId::Sd: return "Positive value of SD is needed!";
        case DESettingId::Err: return "Positive value of ERR is needed!";
        case DESettingId::MaxIterations: return "Positive value of Max Iteration is needed!";
        case DESettingId::GWeight: return "Invalid input for the weighting of fitting g-factors with energies!";
    }
    return kDESettingErrorText;
}

void assign(DESettings& s, DESettingId id, double value) {
    switch (id) {
        case DESettingId::Parents: s.parents = static_cast<int>(value); break;
        case DESettingId::F: s.f = value; break;
        case DESettingId::Cr: s.cr = value; break;
        case DESettingId::Lambda: s.lambda = value; break;
        case DESettingId::Sd: s.sd = value; break;
        case DESettingId::Err: s.err = value; break;
        case DESettingId::MaxIterations: s.maxIterations = static_cast<int>(value); break;
        case DESettingId::GWeight: s.gWeight = value; break;
    }
}

std::pair<std::string, std::string> dateAndTime(std::chrono::system_clock::time_point when) {
    const std::tm local = localTime(when);
    return {formatDate(local), formatTime(local)};
}

constexpr const char* kBoundsRowShape = "\"NAME lower upper\"";

struct BoundsRow {
    const std::string& file;
    int line = 0;
    [[noreturn]] void fail(const std::string& problem) const {
        throw UserError(kDESettingErrorText, problem, FileLocation{file, line});
    }
    double limit(const char* which, const std::string& name, std::string_view field) const {
        const auto value = parseNumber(field);
        if (!value) fail(fmt::format("the {} limit \"{}\" of {} is not a finite number", which, field, name));
        return *value;
    }
};

DEBound readBound(const BoundsRow& row, const std::vector<std::string>& fields) {
    if (fields.size() != 3)
        row.fail(fmt::format("expected {}, found {} field{}", kBoundsRowShape, fields.size(),
                             fields.size() == 1 ? "" : "s"));
    DEBound bound{fields[0], row.limit("lower", fields[0], fields[1]), row.limit("upper", fields[0], fields[2])};
    if (bound.lower > bound.upper)
        row.fail(fmt::format("the lower limit {} of {} is above its upper limit {}", bound.lower, bound.name,
                             bound.upper));
    return bound;
}

}  // namespace

std::optional<std::string> applyDESetting(DESettings& settings, DESettingId id, std::string_view text) {
    const std::string_view field = trim(text);
    const auto number = parseNumber(field);  // finite numbers only: "nan" and "inf" are no numbers
    if (!number) return id == DESettingId::GWeight ? refusalText(id) : std::string(kDESettingErrorText);
    double value = *number;
    if (takesWholeNumbers(id)) {
        const auto whole = parseInteger(field);
        if (!whole) return refusalText(id);
        value = *whole;
    }
    if (!accepted(id, value)) return refusalText(id);
    assign(settings, id, value);
    return std::nullopt;
}

double deSettingValue(const DESettings& s, DESettingId id) {
    switch (id) {
        case DESettingId::Parents: return s.parents;
        case DESettingId::F: return s.f;
        case DESettingId::Cr: return s.cr;
        case DESettingId::Lambda: return s.lambda;
        case DESettingId::Sd: return s.sd;
        case DESettingId::Err: return s.err;
        case DESettingId::MaxIterations: return s.maxIterations;
        case DESettingId::GWeight: return s.gWeight;
    }
    return 0.0;
}

std::optional<std::string> deSettingsProblem(const DESettings& settings) {
    for (DESettingId id : kAllSettings)
        if (!accepted(id, deSettingValue(settings, id))) return refusalText(id);
    return std::nullopt;
}

std::vector<std::string> deHeaderLines(const DESettings& s, int freeParameters,
                                       std::chrono::system_clock::time_point when) {
    const auto [date, time] = dateAndTime(when);
    std::vector<std::string> lines = {
        fmt::format("**** CF Fitting by Differential Evolution Method started on {} *****", date),
        "Started at " + time,
        std::string(55, '#'),
        fmt::format("NP: {}  ||F = {} ||CR = {} ||Lambda = {}  ||SD = {}", s.parents, s.f, s.cr, s.lambda, s.sd),
        fmt::format("No. of parameters = {}  ||No. of parents = {}  ||Max. no. of iteration = {}", freeParameters,
                    s.parents, s.maxIterations),
        fmt::format("ERR = {}", s.err),
        s.scheme == DEScheme::Accelerated ? kAcceleratedSchemeText : kOrdinarySchemeText,
        s.matching == DELevelMatching::Automatic ? kAutoMatchText : kFixedLevelsText,
    };
    if (s.polish) lines.emplace_back(kPolishText);
    return lines;
}

std::vector<std::string> deFooterLines(const DEFinalDeviations& d, std::chrono::system_clock::time_point when) {
    const auto [date, time] = dateAndTime(when);
    std::vector<std::string> lines = {
        "**** CF Fitting by Differential Evolution Method completed on " + date,
        "Completed at " + time,
        fmt::format("  RMS Dev. = {:.4f}", d.rms),
    };
    if (!d.withGFactors) return lines;
    // The deviation the search minimised first, then its parts.
    lines.push_back(fmt::format("  Weighted RMS Dev.= {:.4f}", d.weightedBoth));
    lines.push_back(fmt::format("  Weighted RMS Dev. for energies = {:.4f}  for g-factors = {:.4f}",
                               d.weightedEnergies, d.weightedG));
    lines.push_back(fmt::format("  Weighted RMS Dev. for energies and g-factors = {:.4f}", d.weightedBoth));
    lines.push_back(fmt::format("  RMS Dev. for energies and weighted g-factors = {:.4f}", d.rmsWithWeightedG));
    return lines;
}

std::vector<DEBound> parseDEBounds(std::string_view text, const std::string& fileNameForMessages) {
    std::vector<DEBound> bounds;
    std::map<std::string, int> lineOfName;
    BoundsRow row{fileNameForMessages};
    for (std::size_t start = 0; start < text.size();) {
        ++row.line;
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string_view raw = text.substr(start, end - start);
        const std::string_view line = trim(raw.substr(0, raw.find('#')));
        start = end + 1;
        if (line.empty()) continue;
        if (bounds.size() == kDEBoundsRowLimit)
            row.fail(fmt::format("more than {} bounds rows", kDEBoundsRowLimit));
        DEBound bound = readBound(row, splitFields(line));
        if (const auto [it, isNew] = lineOfName.emplace(bound.name, row.line); !isNew)
            row.fail(fmt::format("{} is given twice (first on line {})", bound.name, it->second));
        bounds.push_back(std::move(bound));
    }
    return bounds;
}

std::vector<DEBound> readDEBoundsFile(const std::string& path) {
    return parseDEBounds(readTextFile(path, kMaxDEBoundsFileBytes), path);
}

}  // namespace orvane
