#include "fit/observed_levels_file.hpp"

#include <array>
#include <optional>

#include "core/atomic_file.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "engine/cell_value.hpp"
#include "fit/observed_levels_sheet.hpp"
#include "fit/state_label.hpp"

namespace orvane {
namespace {

constexpr std::string_view kReadTitle = "Error in reading observed levels";
constexpr std::string_view kSaveTitle = "Error in saving observed levels";
constexpr std::string_view kRowShape = "\"state label energy [g ...]\"";
// The level table numbers states with 16-bit integers.
constexpr int kMaxStateNumber = 32767;

// The keys of the g fields, by GComponent (X, Y, Z).
constexpr std::array<std::string_view, 3> kComponentKeys = {"gx", "gy", "gz"};
constexpr std::array<GComponent, 3> kComponents = {GComponent::X, GComponent::Y, GComponent::Z};

std::string_view componentKey(GComponent component) {
    return kComponentKeys[static_cast<std::size_t>(component)];
}

// The row being read: every problem becomes a UserError naming file and line.
struct RowContext {
    const std::string& file;
    int line = 0;
    [[noreturn]] void fail(const std::string& problem) const {
        throw UserError(std::string(kReadTitle), problem, FileLocation{file, line});
    }
};

std::string inQuotes(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

int readStateNumber(const RowContext& row, std::string_view field) {
    if (field == "-") return 0;
    const auto number = parseInteger(field);
    if (!number)
        row.fail("the state number " + inQuotes(field) +
                 " is not an integer (\"-\" or 0: not assigned)");
    if (*number < 0) row.fail("the state number " + inQuotes(field) + " is negative");
    if (*number > kMaxStateNumber)
        row.fail("the state number " + inQuotes(field) + " is above " +
                 std::to_string(kMaxStateNumber));
    return *number;
}

std::string readLabel(const RowContext& row, std::string_view field) {
    if (field == "-") return {};
    if (!parseStateLabel(field))
        row.fail(inQuotes(field) +
                 " is not a state label (such as 4I9/2 or 4I9/2(1/2); \"-\" for none)");
    return std::string(field);
}

// "11420.5" or, withheld, "[11420.5]".
void readEnergy(const RowContext& row, std::string_view field, ObservedLevel& level) {
    std::string_view number = field;
    const bool opens = field.front() == '[', closes = field.back() == ']';
    if (opens || closes) {
        if (!opens || !closes || field.size() < 3)
            row.fail("the withheld energy " + inQuotes(field) +
                     " needs one number between \"[\" and \"]\"");
        number = field.substr(1, field.size() - 2);
        level.withheld = true;
    }
    const auto energy = parseNumber(number);
    if (!energy) row.fail("the energy " + inQuotes(field) + " is not a finite number");
    level.observedEnergy = *energy;
}

// "gz=2.95", "gx=1.1", "gy=1.1" or a bare number (gz).
ObservedGFactor readGField(const RowContext& row, std::string_view field) {
    ObservedGFactor g;
    std::string_view number = field;
    if (const auto equals = field.find('='); equals != std::string_view::npos) {
        const std::string_view key = field.substr(0, equals);
        bool known = false;
        for (GComponent component : kComponents)
            if (iequals(key, componentKey(component))) {
                g.component = component;
                known = true;
            }
        if (!known)
            row.fail("unknown g-factor field " + inQuotes(field) +
                     " (gx=, gy=, gz= or a bare gz value)");
        number = field.substr(equals + 1);
    }
    const auto value = parseNumber(number);
    if (!value) row.fail("the g-factor " + inQuotes(field) + " is not a finite number");
    g.observed = *value;
    return g;
}

void readRow(const RowContext& row, const std::vector<std::string>& fields,
             ObservedLevelsFile& file) {
    if (fields.size() < 3)
        row.fail("expected " + std::string(kRowShape) + ", found " + std::to_string(fields.size()) +
                 " field" + (fields.size() == 1 ? "" : "s"));
    ObservedLevel level;
    level.stateNumber = readStateNumber(row, fields[0]);
    level.stateLabel = readLabel(row, fields[1]);
    readEnergy(row, fields[2], level);
    std::array<bool, 3> given{};
    for (std::size_t i = 3; i < fields.size(); ++i) {
        ObservedGFactor g = readGField(row, fields[i]);
        auto& seen = given[static_cast<std::size_t>(g.component)];
        if (seen) row.fail(std::string(componentKey(g.component)) + " is given twice on this row");
        seen = true;
        g.stateNumber = level.stateNumber;
        g.label = level.stateLabel;
        file.gFactors.push_back(std::move(g));
    }
    file.levels.push_back(std::move(level));
}

bool sameAsFile(const ObservedLevel& a, const ObservedLevel& b) {
    return a.stateNumber == b.stateNumber && a.stateLabel == b.stateLabel &&
           a.observedEnergy == b.observedEnergy && a.withheld == b.withheld;
}
bool sameAsFile(const ObservedGFactor& a, const ObservedGFactor& b) {
    return a.stateNumber == b.stateNumber && a.label == b.label && a.component == b.component &&
           a.observed == b.observed;
}
template <class T>
bool sameAsFile(const std::vector<T>& a, const std::vector<T>& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (!sameAsFile(a[i], b[i])) return false;
    return true;
}

[[noreturn]] void refuseToSave(const std::string& message) {
    throw UserError(std::string(kSaveTitle), message);
}

bool fitsRow(const ObservedGFactor& g, const ObservedLevel& level,
             const std::vector<ObservedGFactor>& onRow) {
    if (level.stateNumber != g.stateNumber || level.stateLabel != g.label) return false;
    for (const ObservedGFactor& other : onRow)
        if (other.component == g.component) return false;
    return true;
}

// Per level row, the g-factors written on it. First in list order: each row
// takes the run of g-factors at the front that fit it (its state number and
// label, a component it does not hold yet), which gives back the order the
// reader produced. What is left goes on the first row it fits.
std::vector<std::vector<ObservedGFactor>> gFactorsByRow(
    const std::vector<ObservedLevel>& levels, const std::vector<ObservedGFactor>& gFactors) {
    std::vector<std::vector<ObservedGFactor>> byRow(levels.size());
    std::size_t next = 0;
    for (std::size_t r = 0; r < levels.size(); ++r)
        while (next < gFactors.size() && fitsRow(gFactors[next], levels[r], byRow[r]))
            byRow[r].push_back(gFactors[next++]);
    for (; next < gFactors.size(); ++next) {
        const ObservedGFactor& g = gFactors[next];
        std::size_t r = 0;
        while (r < levels.size() && !fitsRow(g, levels[r], byRow[r])) ++r;
        if (r == levels.size())
            refuseToSave("The observed " + std::string(componentKey(g.component)) + " of state " +
                         std::to_string(g.stateNumber) + " " + inQuotes(g.label) +
                         " has no observed level row to go on");
        byRow[r].push_back(g);
    }
    return byRow;
}

std::string levelRowText(const ObservedLevel& level, const std::vector<ObservedGFactor>& gFactors) {
    const std::string energy = exactNumberText(level.observedEnergy);
    std::string row =
        (level.stateNumber == 0 ? std::string("-") : std::to_string(level.stateNumber)) + "  " +
        (level.stateLabel.empty() ? std::string("-") : level.stateLabel) + "  " +
        (level.withheld ? "[" + energy + "]" : energy);
    for (const ObservedGFactor& g : gFactors)
        row += "  " + std::string(componentKey(g.component)) + "=" + exactNumberText(g.observed);
    return row;
}

}  // namespace

void appendObservedLevelRow(const std::vector<std::string>& fields, const std::string& fileNameForMessages, int line,
                            ObservedLevelsFile& file) {
    if (file.levels.size() == kObservedLevelsRowLimit)
        RowContext{fileNameForMessages, line}.fail("more than " + std::to_string(kObservedLevelsRowLimit) +
                                                   " observed levels");
    readRow(RowContext{fileNameForMessages, line}, fields, file);
}

std::vector<std::vector<ObservedGFactor>> observedGFactorsByRow(const std::vector<ObservedLevel>& levels,
                                                                const std::vector<ObservedGFactor>& gFactors) {
    return gFactorsByRow(levels, gFactors);
}

ObservedLevelsFile parseObservedLevelsText(std::string_view text,
                                           const std::string& fileNameForMessages) {
    RowContext row{fileNameForMessages, 1};
    ObservedLevelsFile file;
    for (std::size_t start = 0; start < text.size(); ++row.line) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        std::string_view line = text.substr(start, end - start);
        start = end + 1;
        line = trim(line.substr(0, line.find('#')));
        if (line.empty()) continue;
        appendObservedLevelRow(splitFields(line), fileNameForMessages, row.line, file);
    }
    return file;
}

bool sameFileContent(const ObservedLevelsFile& a, const ObservedLevelsFile& b) {
    return sameAsFile(a.levels, b.levels) && sameAsFile(a.gFactors, b.gFactors);
}

ObservedLevelsFile readObservedLevelsFile(const std::filesystem::path& path, std::string_view sheet) {
    if (Spreadsheet::isSpreadsheetPath(path)) return observedLevelsFromSheet(Spreadsheet::open(path, sheet));
    return parseObservedLevelsText(readTextFile(path, kMaxObservedLevelsFileBytes), path.string());
}

std::string observedLevelsFileText(const std::vector<ObservedLevel>& levels,
                                   const std::vector<ObservedGFactor>& gFactors) {
    const auto byRow = gFactorsByRow(levels, gFactors);
    std::string text = "# state  label  energy  g-factors\n";
    for (std::size_t r = 0; r < levels.size(); ++r)
        text += levelRowText(levels[r], byRow[r]) + "\n";
    // What is written must read back: a label or a value the reader refuses
    // or reads otherwise is refused here.
    ObservedLevelsFile expected{levels, {}};
    for (const auto& rowG : byRow)
        expected.gFactors.insert(expected.gFactors.end(), rowG.begin(), rowG.end());
    try {
        if (!sameFileContent(parseObservedLevelsText(text, "(levels to be saved)"), expected))
            refuseToSave(
                "The observed levels cannot be saved as they stand: a state label does not read "
                "back as given");
    } catch (const UserError& error) {
        if (error.title() == kSaveTitle) throw;
        refuseToSave("The observed levels cannot be saved as they stand: " + error.describe());
    }
    return text;
}

void writeObservedLevelsFile(const std::filesystem::path& path,
                             const std::vector<ObservedLevel>& levels,
                             const std::vector<ObservedGFactor>& gFactors) {
    writeFileAtomically(path, observedLevelsFileText(levels, gFactors));
}

}  // namespace orvane
