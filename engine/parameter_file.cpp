#include "engine/parameter_file.hpp"

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "core/atomic_file.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "engine/cell_value.hpp"
#include "engine/other_free_ion.hpp"
#include "engine/run_switches.hpp"

namespace orvane {
namespace {

constexpr std::string_view kReadTitle = "Error in Main";
constexpr std::string_view kCrystalFieldTitle = "Error in Crystal Field Parameters file";
constexpr std::string_view kSaveTitle = "Error in saving parameters";
constexpr std::string_view kSlaterLabel = "Electrostatic ineraction parameters  type = ";
constexpr std::string_view kOtherCountLabel = "No. of other free-ion parameters = ";
constexpr std::string_view kCcfError = "Input CCF data file error";
constexpr std::string_view kTamsorRefusal =
    "The input parameters are appropriate only for a d-shell ion instead of a f-shell ion for "
    "this Tamsor package.  Abort input of parameters!";

constexpr std::array<CorrelationKind, 4> kCorrelationKinds = {
    CorrelationKind::Sccf, CorrelationKind::Lccf, CorrelationKind::OccfA, CorrelationKind::OccfB};

// The lines of a text (LF or CRLF); a final line break ends the last line
// rather than starting an empty one.
std::vector<std::string_view> splitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        std::string_view line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        lines.push_back(line);
        start = end + 1;
    }
    return lines;
}

// A quoted text field: the enclosing double quotes are removed.
std::string unquote(std::string_view line) {
    std::string_view s = trim(line);
    if (!s.empty() && s.front() == '"') {
        s.remove_prefix(1);
        if (!s.empty() && s.back() == '"') s.remove_suffix(1);
    }
    return std::string(s);
}

// Walks the lines of one file, turning every problem into a UserError that
// names the file and the line.
class LineReader {
public:
    LineReader(std::vector<std::string_view> lines, std::string file)
        : lines_(std::move(lines)), file_(std::move(file)) {}

    bool atEnd() const { return next_ >= lines_.size(); }
    // The line `ahead` lines after the next one, without taking it.
    std::optional<std::string_view> peek(std::size_t ahead = 0) const {
        if (next_ + ahead >= lines_.size()) return std::nullopt;
        return lines_[next_ + ahead];
    }
    std::size_t remaining() const { return lines_.size() - next_; }
    int currentLineNumber() const { return static_cast<int>(next_); }  // of the last line taken

    // The next line; `what` names the item for the message when the file ends.
    std::string_view take(std::string_view what) {
        if (atEnd())
            throw UserError(std::string(kReadTitle), "The file ends before " + std::string(what),
                            FileLocation{file_, static_cast<int>(lines_.size()) + 1});
        return lines_[next_++];
    }

    [[noreturn]] void fail(std::string_view title, const std::string& message) const {
        failAt(currentLineNumber(), title, message);
    }
    [[noreturn]] void failAt(int line, std::string_view title, const std::string& message) const {
        throw UserError(std::string(title), message, FileLocation{file_, line});
    }

private:
    std::vector<std::string_view> lines_;
    std::string file_;
    std::size_t next_ = 0;
};

// The integer right of the first "=" of a count or value line (the whole line
// when it has no "="), read as the runtime's Val does: the leading number,
// trailing text ignored. It must be integral.
std::optional<int> integerRightOfEquals(std::string_view line) {
    std::size_t consumed = 0;
    const auto number = leadingNumber(rightOfFirstEquals(line), &consumed);
    if (!number || consumed == 0 || *number != std::floor(*number)) return std::nullopt;
    if (std::fabs(*number) > std::numeric_limits<int>::max()) return std::nullopt;
    return static_cast<int>(*number);
}

std::string leftOfFirstEquals(std::string_view line) {
    const auto at = line.find('=');
    return at == std::string_view::npos ? std::string() : std::string(trim(line.substr(0, at)));
}

// A count line whose rows must follow: "label = N" with a label holding
// `labelWords`, nothing but the integer right of "=", and N bounded by the
// lines left in the file. A parameter row in place of the count line (the
// line deleted, say) is refused instead of being read as a count.
int readCount(LineReader& in, std::string_view line, std::string_view what,
              std::string_view labelWords, std::string_view errorTitle,
              const std::string& errorMessage) {
    const auto refuse = [&](const std::string& message) {
        in.fail(errorTitle, errorMessage.empty() ? message : errorMessage);
    };
    const auto equals = line.find('=');
    if (equals == std::string_view::npos || !icontains(line.substr(0, equals), labelWords))
        refuse("Expected the count line of the " + std::string(what) + " (\"... " +
               std::string(labelWords) + " ... = N\") but found: " + std::string(trim(line)));
    const auto count = parseInteger(trim(line.substr(equals + 1)));
    if (!count) refuse("The number of " + std::string(what) + " cannot be read: " + std::string(line));
    if (*count < 0)
        refuse("The number of " + std::string(what) + " is negative: " + std::to_string(*count));
    if (static_cast<std::size_t>(*count) > in.remaining())
        refuse("The file announces " + std::to_string(*count) + " " + std::string(what) +
               " but only " + std::to_string(in.remaining()) + " lines follow");
    return *count;
}

// Refuses rows that look like further rows of a section after its announced
// count: "The file announces 5 crystal field parameters but 9 rows follow".
template <class LooksLikeRow>
void refuseSurplusRows(LineReader& in, int announced, std::string_view what,
                       std::string_view errorTitle, LooksLikeRow looksLikeRow) {
    std::size_t surplus = 0;
    while (const auto line = in.peek(surplus)) {
        if (!looksLikeRow(*line)) break;
        ++surplus;
    }
    if (surplus == 0) return;
    in.failAt(in.currentLineNumber() + 1, errorTitle,
              "The file announces " + std::to_string(announced) + " " + std::string(what) +
                  " but " + std::to_string(announced + static_cast<int>(surplus)) + " rows follow");
}

// Remembers the line of each parameter of a section and refuses the second
// occurrence of one, naming both lines.
template <class Key>
class DuplicateGuard {
public:
    void add(LineReader& in, const Key& key, const std::string& name, std::string_view errorTitle) {
        const int line = in.currentLineNumber();
        for (const auto& [seen, seenLine] : seen_)
            if (seen == key)
                in.fail(errorTitle, name + " is given twice: lines " + std::to_string(seenLine) +
                                        " and " + std::to_string(line));
        seen_.emplace_back(key, line);
    }

private:
    std::vector<std::pair<Key, int>> seen_;
};

ParameterCell readMainCell(LineReader& in, std::string_view text, std::string_view row) {
    const auto value = readCellNumber(text);
    if (!value) in.fail(kReadTitle, "Invalid value of free-ion parameter: " + std::string(trim(row)));
    return ParameterCell{std::string(text), *value};
}

// "name value": the last field is the value, the fields before it the name;
// a single field is the value alone.
FreeIonRow readMainRow(LineReader& in, std::string_view line) {
    const std::vector<std::string> fields = splitFields(line);
    if (fields.empty()) in.fail(kReadTitle, "A main free-ion parameter row is empty");
    FreeIonRow row;
    for (std::size_t i = 0; i + 1 < fields.size(); ++i) {
        if (i > 0) row.name += ' ';
        row.name += fields[i];
    }
    row.cell = readMainCell(in, fields.back(), line);
    return row;
}

// "name value": the first field is the name, the rest (blanks removed) the
// value, which may be blank, a number or a multiple of M0 / P2.
FreeIonRow readOtherRow(LineReader& in, std::string_view line) {
    const std::vector<std::string> fields = splitFields(line);
    if (fields.empty()) in.fail(kReadTitle, "An other free-ion parameter row is empty");
    FreeIonRow row;
    row.name = fields.front();
    if (!otherFreeIonIndex(row.name))
        in.fail(kReadTitle, "Invalid Other Free-ion Parameter name: " + row.name);
    for (std::size_t i = 1; i < fields.size(); ++i) row.cell.text += fields[i];
    const auto cell = readOtherFreeIonCell(row.name, row.cell.text);
    if (!cell)
        in.fail(kReadTitle, "Invalid value of other free-ion parameter " + row.name + ": " +
                                row.cell.text);
    row.cell.value = cell->number;
    return row;
}

// "k  q  Re  Im" (Im may be missing: 0). std::nullopt when unreadable or
// when k, q are not a rank and a component (0 <= k <= kMaxCrystalFieldRank, |q| <= k).
std::optional<CrystalFieldRow> parseCrystalFieldFields(std::string_view text) {
    const std::vector<std::string> fields = splitFields(text);
    if (fields.size() != 3 && fields.size() != 4) return std::nullopt;
    const auto k = parseInteger(fields[0]);
    const auto q = parseInteger(fields[1]);
    if (!k || !q || *k < 0 || *k > kMaxCrystalFieldRank || std::abs(*q) > *k) return std::nullopt;
    const auto re = readCellNumber(fields[2]);
    const std::string imText = fields.size() == 4 ? fields[3] : "0";
    const auto im = readCellNumber(imText);
    if (!re || !im) return std::nullopt;
    return CrystalFieldRow{*k, *q, ParameterCell{fields[2], *re}, ParameterCell{imText, *im}};
}

CfConvention conventionOfLabel(std::string_view label) {
    if (icontains(label, "unit operator")) return CfConvention::UnitOperators;
    if (icontains(label, "Stevens")) return CfConvention::Stevens;
    return CfConvention::Wybourne;
}

void readHeaderAndTitle(LineReader& in, ParameterSet& set) {
    const std::string first = unquote(in.take("the title line"));
    if (first.find("version #2") != std::string::npos &&
        first.find("Spectroscopic Analysis Package") != std::string::npos) {
        if (first.find("Tamsor") != std::string::npos || first.find("Orvane") == std::string::npos)
            in.fail("Wrong set of input parameters", std::string(kTamsorRefusal));
        set.version = 2;
        set.title.clear();
    } else {
        set.version = 1;
    }
    const std::string titleLine = set.version == 2 ? unquote(in.take("the title line")) : first;
    const auto open = titleLine.find('{');
    if (open == std::string::npos) {
        set.title = std::string(trim(titleLine));
        set.note.clear();
    } else {
        set.title = std::string(trim(std::string_view(titleLine).substr(0, open)));
        const auto close = titleLine.find('}', open + 1);
        set.note = titleLine.substr(open + 1, close == std::string::npos ? std::string::npos
                                                                          : close - open - 1);
    }
    set.description = unquote(in.take("the description line"));
}

void readFreeIon(LineReader& in, ParameterSet& set) {
    const auto type = integerRightOfEquals(in.take("the electrostatic parameter type line"));
    if (!type || *type < 1 || *type > 3) in.fail(kReadTitle, "Incorrect Slater paramter type!!");
    set.slaterType = static_cast<SlaterType>(*type);

    for (std::size_t i = 0; i < set.mainFreeIon.size(); ++i)
        set.mainFreeIon[i] = readMainRow(
            in, in.take("main free-ion parameter " + std::to_string(i + 1) + " of 5"));

    const std::string_view electronLine = in.take("the line of the number of electrons");
    const auto electrons = integerRightOfEquals(electronLine);
    if (!electrons)
        in.fail(kReadTitle, "The number of electrons cannot be read: " + std::string(electronLine));
    if (*electrons < 0 || *electrons > kMaxElectronCount) in.fail(kReadTitle, "wrong no. of e- !!!");
    set.electronCountLabel = leftOfFirstEquals(electronLine);
    set.electronCount = *electrons;

    const std::string_view foldLine = in.take("the line of the fold of the symmetry axis");
    const auto fold = integerRightOfEquals(foldLine);
    if (!fold || *fold < 1 || *fold > kMaxFold) in.fail(kReadTitle, "Invalid Symmetry Fold");
    set.foldLabel = leftOfFirstEquals(foldLine);
    set.fold = *fold;

    const std::string_view countLine = in.take("the number of other free-ion parameters");
    const int count =
        readCount(in, countLine, "other free-ion parameters", "other free-ion", kReadTitle, "");
    set.otherFreeIon.clear();
    DuplicateGuard<std::size_t> seen;
    for (int i = 0; i < count; ++i) {
        set.otherFreeIon.push_back(readOtherRow(in, in.take("")));
        const std::string& name = set.otherFreeIon.back().name;
        seen.add(in, *otherFreeIonIndex(name), name, kReadTitle);
    }
    refuseSurplusRows(in, count, "other free-ion parameters", kReadTitle, [](std::string_view line) {
        const auto fields = splitFields(line);
        return !fields.empty() && otherFreeIonIndex(fields.front()).has_value();
    });
}

std::string crystalFieldName(std::string_view prefix, int k, int q) {
    return std::string(prefix) + std::to_string(k) + std::to_string(q);
}

void readCrystalField(LineReader& in, ParameterSet& set) {
    const std::string_view label = in.take("the number of crystal field parameters");
    set.cfConvention = conventionOfLabel(label);
    const int count =
        readCount(in, label, "crystal field parameters", "crystal field", kReadTitle, "");
    set.crystalField.clear();
    DuplicateGuard<std::pair<int, int>> seen;
    for (int i = 0; i < count; ++i) {
        const std::string_view line = in.take("");
        const auto row = parseCrystalFieldFields(line);
        if (!row)
            in.fail(kCrystalFieldTitle,
                    "Incorrect content for crystal field parameters: " + std::string(trim(line)));
        seen.add(in, {row->k, row->q}, crystalFieldName("B", row->k, row->q), kCrystalFieldTitle);
        set.crystalField.push_back(*row);
    }
    refuseSurplusRows(in, count, "crystal field parameters", kCrystalFieldTitle,
                      [](std::string_view line) { return parseCrystalFieldFields(line).has_value(); });
}

// "Fit options = N": the count line of the fit set-up, the last section.
bool isFitSetupCountLine(std::string_view line) {
    return iequals(leftOfFirstEquals(line), "Fit options");
}

// The option line holds switches ("/noss/ptgp= 7"), with free text between
// them allowed; a line without any switch (a parameter row, say) is refused.
// A "Fit options" line in its place means that the file has no option line.
void readOptionLine(LineReader& in, ParameterSet& set) {
    const auto next = in.peek();
    set.hasOptionLine = next && !isFitSetupCountLine(*next);
    set.optionLine = set.hasOptionLine ? std::string(in.take("")) : std::string();
    if (!trim(set.optionLine).empty() && set.optionLine.find('/') == std::string::npos)
        in.fail(kReadTitle, "The option line holds no switches (\"/noss\", \"/Eunit=2\", ...): " +
                                std::string(trim(set.optionLine)));
    if (const auto problem = switchValueProblem(set.optionLine)) in.fail(kReadTitle, *problem);
    set.switches = readRunSwitches(set.optionLine);
}

std::optional<CorrelationKind> kindOfMarker(std::string_view line) {
    for (CorrelationKind kind : kCorrelationKinds)
        if (iequals(trim(line), correlationMarker(kind))) return kind;
    return std::nullopt;
}

// After "/ccf": per kind a marker line, a count line and the rows, each row
// led by the kind's prefix. Blank lines between sections are skipped.
void readCorrelationSections(LineReader& in, ParameterSet& set) {
    set.correlationCF.clear();
    const std::string ccfError(kCcfError);
    while (!in.atEnd() && !isFitSetupCountLine(*in.peek())) {
        const std::string_view markerLine = in.take("");
        if (trim(markerLine).empty()) continue;
        const auto kind = kindOfMarker(markerLine);
        if (!kind) in.fail(kReadTitle, ccfError);
        for (const CorrelationSection& done : set.correlationCF)
            if (done.kind == *kind) in.fail(kReadTitle, ccfError);
        CorrelationSection section{*kind, {}};
        const std::string_view countLine = in.take("the count line of a correlation section");
        const int count = readCount(in, countLine, "", "parameters", kReadTitle, ccfError);
        const std::string_view prefix = trim(correlationRowPrefix(*kind));
        const auto rowOf = [prefix](std::string_view text) -> std::optional<CrystalFieldRow> {
            const std::string_view line = trim(text);
            if (line.size() < prefix.size() || !iequals(line.substr(0, prefix.size()), prefix))
                return std::nullopt;
            return parseCrystalFieldFields(line.substr(prefix.size()));
        };
        DuplicateGuard<std::pair<int, int>> seen;
        for (int i = 0; i < count; ++i) {
            const auto row = rowOf(in.take(""));
            if (!row) in.fail(kReadTitle, ccfError);
            seen.add(in, {row->k, row->q}, crystalFieldName(prefix, row->k, row->q), kReadTitle);
            section.rows.push_back(*row);
        }
        refuseSurplusRows(in, count, std::string(correlationName(*kind)) + " parameters", kReadTitle,
                          [&rowOf](std::string_view line) { return rowOf(line).has_value(); });
        set.correlationCF.push_back(std::move(section));
    }
}

// "NAME option [MASTER]": a name token, an integer in the 16-bit range and,
// for option -1 only, the name of the parameter it is linked to.
FitSetupRow readFitSetupRow(LineReader& in, std::string_view line) {
    const std::vector<std::string> fields = splitFields(line);
    if (fields.size() < 2 || fields.size() > 3)
        in.fail(kReadTitle, "Expected a fit option \"NAME option [MASTER]\" but found: " +
                                std::string(trim(line)));
    const auto option = parseInteger(fields[1]);
    if (!option || *option < std::numeric_limits<std::int16_t>::min() ||
        *option > std::numeric_limits<std::int16_t>::max())
        in.fail(kReadTitle, "The fit option of " + fields[0] +
                                " is not an integer from -32768 to 32767: " + fields[1]);
    FitSetupRow row{fields[0], *option, fields.size() == 3 ? fields[2] : std::string()};
    if (row.option == -1 && row.linkedTo.empty())
        in.fail(kReadTitle,
                "The fit option -1 of " + row.name + " needs the parameter it is linked to");
    if (row.option != -1 && !row.linkedTo.empty())
        in.fail(kReadTitle,
                "Only a fit option -1 names a linked parameter: " + std::string(trim(line)));
    return row;
}

// After the option line (and the correlation sections) only blank lines and
// the fit set-up may follow: "Fit options = N" and N rows, then nothing.
void readFitSetup(LineReader& in, ParameterSet& set) {
    set.fitSetup.clear();
    while (!in.atEnd() && trim(*in.peek()).empty()) in.take("");
    if (in.atEnd()) return;
    const std::string_view countLine = in.take("");
    if (!isFitSetupCountLine(countLine))
        in.fail(kReadTitle,
                "Nothing may follow the option line (no \"/ccf\" on it) but the fit options "
                "(\"Fit options = N\"): " +
                    std::string(trim(countLine)));
    const int count = readCount(in, countLine, "fit options", "Fit options", kReadTitle, "");
    DuplicateGuard<std::string> seen;
    for (int i = 0; i < count; ++i) {
        set.fitSetup.push_back(readFitSetupRow(in, in.take("")));
        seen.add(in, set.fitSetup.back().name, "The fit option of " + set.fitSetup.back().name,
                 kReadTitle);
    }
    while (!in.atEnd()) {
        const std::string_view line = in.take("");
        if (!trim(line).empty())
            in.fail(kReadTitle,
                    "The file announces " + std::to_string(count) +
                        " fit options; nothing may follow them: " + std::string(trim(line)));
    }
}

// --- writing -------------------------------------------------------------

[[noreturn]] void refuseToSave(const std::string& message) {
    throw UserError(std::string(kSaveTitle), message);
}

void requireSingleLine(std::string_view text, std::string_view what) {
    if (text.find_first_of("\r\n") != std::string_view::npos)
        refuseToSave("The " + std::string(what) + " must not contain a line break");
}

// A cell as written: the typed text without blanks, or the exact number when
// the cell has no text.
std::string cellText(const ParameterCell& cell) {
    const std::string text = withoutBlanks(cell.text);
    return text.empty() ? exactNumberText(cell.value) : text;
}

std::string crystalFieldRowText(const CrystalFieldRow& row) {
    return std::to_string(row.k) + "  " + std::to_string(row.q) + "  " + cellText(row.re) + "  " +
           cellText(row.im);
}

std::string labelled(const std::string& label, int value) {
    return label.empty() ? std::to_string(value) : label + " = " + std::to_string(value);
}

}  // namespace

std::string_view slaterTypeText(SlaterType type) {
    switch (type) {
        case SlaterType::RacahE: return "Racah parameters (in E^k form) and spin-orbit zeta";
        case SlaterType::SlaterFLower: return "Slater parameters (in Fk form) and spin-orbit zeta";
        case SlaterType::SlaterFUpper: break;
    }
    return "Slater parameters (in F^k form) and spin-orbit zeta";
}

std::string_view crystalFieldCountLabel(CfConvention convention) {
    switch (convention) {
        case CfConvention::UnitOperators:
            return "No. of crystal field parameters in unit operators convention = ";
        case CfConvention::Stevens: return "No. of crystal field parameters in Stevens' convention = ";
        case CfConvention::Wybourne: break;
    }
    return "No. of crystal field parameters in Wybourne's convention = ";
}

std::string_view correlationMarker(CorrelationKind kind) {
    switch (kind) {
        case CorrelationKind::Lccf: return "/lccf";
        case CorrelationKind::OccfA: return "/occf-g(K)10A";
        case CorrelationKind::OccfB: return "/occf-g(K)10B";
        case CorrelationKind::Sccf: break;
    }
    return "/sccf";
}

std::string_view correlationRowPrefix(CorrelationKind kind) {
    switch (kind) {
        case CorrelationKind::Lccf: return "dk ";
        case CorrelationKind::OccfA: return "g(K)10A ";
        case CorrelationKind::OccfB: return "g(K)10B ";
        case CorrelationKind::Sccf: break;
    }
    return "ck ";
}

std::string_view correlationName(CorrelationKind kind) {
    switch (kind) {
        case CorrelationKind::Lccf: return "LCCF";
        case CorrelationKind::OccfA: return "OCCF g(K)10A";
        case CorrelationKind::OccfB: return "OCCF g(K)10B";
        case CorrelationKind::Sccf: break;
    }
    return "SCCF";
}

namespace {

// The parsed set and the 1-based line of its option line (0 when absent).
ParameterSet parseWithOptionLine(std::string_view text, const std::string& fileNameForMessages,
                                 int& optionLineNumber) {
    if (text.size() > kMaxParameterFileBytes)
        throw UserError(std::string(kReadTitle),
                        "The parameter file is too large (" + std::to_string(text.size()) +
                            " bytes; at most " + std::to_string(kMaxParameterFileBytes) + ")",
                        FileLocation{fileNameForMessages, 1});
    LineReader in(splitLines(text), fileNameForMessages);
    if (in.atEnd())
        throw UserError(std::string(kReadTitle), "The parameter file is empty",
                        FileLocation{fileNameForMessages, 1});
    ParameterSet set;
    readHeaderAndTitle(in, set);
    readFreeIon(in, set);
    readCrystalField(in, set);
    readOptionLine(in, set);
    optionLineNumber = set.hasOptionLine ? in.currentLineNumber() : 0;
    if (set.switches.correlationSections) readCorrelationSections(in, set);
    readFitSetup(in, set);
    return set;
}

}  // namespace

ParameterSet parseParameterText(std::string_view text, const std::string& fileNameForMessages) {
    int optionLineNumber = 0;
    return parseWithOptionLine(text, fileNameForMessages, optionLineNumber);
}

ParameterSet readParameterFile(const std::filesystem::path& path) {
    const std::string text = readTextFile(path, kMaxParameterFileBytes);
    return parseParameterText(text, path.string());
}

ParameterSet readParameterFileForRun(const std::filesystem::path& path) {
    const std::string text = readTextFile(path, kMaxParameterFileBytes);
    int optionLineNumber = 0;
    ParameterSet set = parseWithOptionLine(text, path.string(), optionLineNumber);
    refuseUnsupportedSwitches(set.switches, FileLocation{path.string(), optionLineNumber});
    return set;
}

std::string parameterFileText(const ParameterSet& set) {
    requireSingleLine(set.title, "title");
    requireSingleLine(set.note, "note");
    requireSingleLine(set.description, "description");
    requireSingleLine(set.electronCountLabel, "label of the number of electrons");
    requireSingleLine(set.foldLabel, "label of the fold");
    if (set.title.find('{') != std::string::npos) refuseToSave("The title must not contain \"{\"");
    if (set.note.find('}') != std::string::npos) refuseToSave("The note must not contain \"}\"");
    if (set.electronCountLabel.find('=') != std::string::npos ||
        set.foldLabel.find('=') != std::string::npos)
        refuseToSave("The labels of the electron and fold lines must not contain \"=\"");

    if (set.version == 1 && set.title.find("version #2") != std::string::npos &&
        set.title.find("Spectroscopic Analysis Package") != std::string::npos)
        refuseToSave("A file without header cannot have a title that reads as the header");

    std::string out;
    auto line = [&out](std::string_view text) {
        out += text;
        out += '\n';
    };
    if (set.version != 1) line("\"" + std::string(kParameterFileHeader) + "\"");
    line("\"" + set.title + " {" + set.note + "}\"");
    line("\"" + set.description + "\"");
    line(std::string(kSlaterLabel) + std::to_string(static_cast<int>(set.slaterType)));
    for (const FreeIonRow& row : set.mainFreeIon) {
        requireSingleLine(row.name, "name of a free-ion parameter");
        line(row.name.empty() ? cellText(row.cell) : row.name + "  " + cellText(row.cell));
    }
    line(labelled(set.electronCountLabel, set.electronCount));
    line(labelled(set.foldLabel, set.fold));
    line(std::string(kOtherCountLabel) + std::to_string(set.otherFreeIon.size()));
    for (const FreeIonRow& row : set.otherFreeIon) {
        if (row.name.empty() || row.name.find_first_of(" \t\r\n") != std::string::npos)
            refuseToSave("Invalid Other Free-ion Parameter name: " + row.name);
        const std::string value = withoutBlanks(row.cell.text);
        line(value.empty() ? row.name : row.name + "  " + value);
    }
    line(std::string(crystalFieldCountLabel(set.cfConvention)) +
         std::to_string(set.crystalField.size()));
    for (const CrystalFieldRow& row : set.crystalField) line(crystalFieldRowText(row));

    RunSwitches switches = set.switches;
    switches.correlationSections = switches.correlationSections || !set.correlationCF.empty();
    const std::string options = runSwitchesText(switches);
    if (set.hasOptionLine || !options.empty()) line(options);
    if (switches.correlationSections) {
        for (const CorrelationSection& section : set.correlationCF) {
            line(correlationMarker(section.kind));
            line("No. of " + std::string(correlationName(section.kind)) + " parameters = " +
                 std::to_string(section.rows.size()));
            for (const CrystalFieldRow& row : section.rows)
                line(std::string(correlationRowPrefix(section.kind)) + crystalFieldRowText(row));
        }
    }
    if (!set.fitSetup.empty()) line("Fit options = " + std::to_string(set.fitSetup.size()));
    for (const FitSetupRow& row : set.fitSetup) {
        if (row.name.empty() || row.name.find_first_of(" \t\r\n") != std::string::npos ||
            row.linkedTo.find_first_of(" \t\r\n") != std::string::npos)
            refuseToSave("The names of a fit option must be single words: " + row.name + " " +
                         row.linkedTo);
        line(row.name + "  " + std::to_string(row.option) +
             (row.linkedTo.empty() ? "" : "  " + row.linkedTo));
    }
    // What is written must read back: a cell the reader refuses is refused here.
    try {
        (void)parseParameterText(out, "(parameters to be saved)");
    } catch (const UserError& error) {
        refuseToSave("The parameters cannot be saved as they stand: " + error.describe());
    }
    return out;
}

void writeParameterFile(const std::filesystem::path& path, const ParameterSet& set) {
    writeFileAtomically(path, parameterFileText(set));
}

}  // namespace orvane
