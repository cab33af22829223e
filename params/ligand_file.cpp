#include "params/ligand_file.hpp"

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/log_book.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane::params {

namespace {

const char* kLigandTitle = "Error in reading ligand positions";
const char* kSuperpositionDataTitle = "Error in reading superposition model data";
constexpr std::uintmax_t kMaxLigandFileBytes = 1024 * 1024;

[[noreturn]] void fail(const char* title, const std::string& message, const std::string& file,
                       int line) {
    throw UserError(title, message, FileLocation{file, line});
}

std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = text.find('\n', start);
        if (end == std::string::npos) {
            if (start < text.size()) lines.push_back(text.substr(start));
            break;
        }
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

// The numbers of a line's fields; std::nullopt naming the first bad field.
std::vector<double> numbersOrFail(const std::vector<std::string>& fields, std::size_t count,
                                  const char* title, const std::string& what,
                                  const std::string& file, int line) {
    if (fields.size() < count)
        fail(title, "expected " + std::to_string(count) + " numbers (" + what + "), found " +
                        std::to_string(fields.size()) + " fields",
             file, line);
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i) {
        const auto value = parseNumber(fields[i]);
        if (!value) fail(title, "\"" + fields[i] + "\" is not a finite number (" + what + ")", file, line);
        values.push_back(*value);
    }
    return values;
}

bool hasKey(std::string_view line, std::string_view key) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos) return false;
    return iequals(trim(line.substr(0, equals)), key);
}

std::string number(double value) { return fmt::format("{}", value); }

}  // namespace

LigandFile parseLigandText(const std::string& text, const std::string& fileName) {
    if (text.find('\0') != std::string::npos)
        fail(kLigandTitle, "the file is not a text file (it holds a NUL byte)", fileName, 1);
    LigandFile out;
    std::optional<LatticeCell> lattice;
    const auto lines = splitLines(text);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const int lineNo = static_cast<int>(i) + 1;
        const std::string_view line = trim(lines[i]);
        if (line.empty() || line.front() == '#' || line.front() == '!') continue;
        if (hasKey(line, "R0")) {
            const auto fields = splitAnswerFields(rightOfFirstEquals(line));
            const double r0 = numbersOrFail(fields, 1, kLigandTitle, "R0", fileName, lineNo)[0];
            if (!ligandDistanceInRange(r0))
                fail(kLigandTitle, "the reference distance R0 must lie between 0.001 and 1000", fileName, lineNo);
            out.r0 = r0;
            continue;
        }
        if (hasKey(line, "lattice")) {
            const auto fields = splitAnswerFields(rightOfFirstEquals(line));
            const auto v = numbersOrFail(fields, 6, kLigandTitle, "a b c alpha beta gamma",
                                         fileName, lineNo);
            if (v[0] <= 0.0 || v[1] <= 0.0 || v[2] <= 0.0)
                fail(kLigandTitle, "lattice constants must be positive", fileName, lineNo);
            lattice = LatticeCell{v[0], v[1], v[2], v[3], v[4], v[5]};
            if (!latticeToPolar({0.0, 0.0, 1.0}, *lattice))
                fail(kLigandTitle, "the lattice angles close no cell", fileName, lineNo);
            continue;
        }
        const auto fields = splitAnswerFields(line);
        if (fields.size() > 4)
            fail(kLigandTitle, "too many fields (expected three numbers and an optional label)",
                 fileName, lineNo);
        Ligand ligand;
        if (lattice) {
            const auto v = numbersOrFail(fields, 3, kLigandTitle, "fractional x y z", fileName, lineNo);
            const auto polar = latticeToPolar({v[0], v[1], v[2]}, *lattice);
            if (!polar) fail(kLigandTitle, "the ligand sits on the central ion", fileName, lineNo);
            ligand = *polar;
        } else {
            const auto v = numbersOrFail(fields, 3, kLigandTitle, "R theta phi", fileName, lineNo);
            if (!ligandDistanceInRange(v[0]))
                fail(kLigandTitle, "the distance R must lie between 0.001 and 1000, found " + fields[0],
                     fileName, lineNo);
            ligand = Ligand{v[0], v[1], v[2]};
        }
        if (out.ligands.size() >= static_cast<std::size_t>(kMaxLigands))
            fail(kLigandTitle, "more than " + std::to_string(kMaxLigands) + " ligands", fileName, lineNo);
        out.ligands.push_back(ligand);
        out.labels.push_back(fields.size() == 4 ? fields[3] : std::string());
    }
    if (out.ligands.empty())
        fail(kLigandTitle, "no ligand positions in the file", fileName,
             static_cast<int>(lines.size()) == 0 ? 1 : static_cast<int>(lines.size()));
    return out;
}

LigandFile readLigandFile(const std::filesystem::path& path) {
    return parseLigandText(readTextFile(path, kMaxLigandFileBytes), path.string());
}

std::string formatSuperpositionData(const SuperpositionData& data) {
    const SuperpositionParameters& p = data.parameters;
    std::string text = "Superposition model data\n";
    text += "Reference distance R0 = " + number(p.r0) + "\n";
    text += std::string("Stevens-type normalisation = ") + (p.stevensType ? "1" : "0") + "\n";
    for (int i = 0; i < 3; ++i)
        text += "Intrinsic Bk and Exponent tk of rank " + std::to_string(2 * (i + 1)) + " = " +
                number(p.bk[i]) + " " + number(p.tk[i]) + "\n";
    text += "No. of ligands = " + std::to_string(data.ligands.size()) + "\n";
    for (const Ligand& l : data.ligands)
        text += number(l.r) + " " + number(l.thetaDeg) + " " + number(l.phiDeg) + "\n";
    return text;
}

SuperpositionData parseSuperpositionData(const std::string& text, const std::string& fileName) {
    const auto lines = splitLines(text);
    auto lineAt = [&](std::size_t i) -> std::string_view {
        if (i >= lines.size())
            fail(kSuperpositionDataTitle, "the file ends too early", fileName, static_cast<int>(i) + 1);
        return lines[i];
    };
    auto numbersAt = [&](std::size_t i, std::size_t count, const std::string& what) {
        return numbersOrFail(splitAnswerFields(rightOfFirstEquals(lineAt(i))), count, kSuperpositionDataTitle,
                             what, fileName, static_cast<int>(i) + 1);
    };
    if (trim(lineAt(0)) != "Superposition model data")
        fail(kSuperpositionDataTitle, "not a superposition model data file (first line)", fileName, 1);
    SuperpositionData data;
    data.parameters.r0 = numbersAt(1, 1, "R0")[0];
    data.parameters.stevensType = numbersAt(2, 1, "Stevens-type switch")[0] != 0.0;
    for (int i = 0; i < 3; ++i) {
        const auto v = numbersAt(3 + i, 2, "bk tk");
        data.parameters.bk[i] = v[0];
        data.parameters.tk[i] = v[1];
    }
    const auto count = parseInteger(trim(rightOfFirstEquals(lineAt(6))));
    if (!count || *count < 0 || *count > kMaxLigands)
        fail(kSuperpositionDataTitle, "the number of ligands must be 0.." + std::to_string(kMaxLigands), fileName, 7);
    for (int i = 0; i < *count; ++i) {
        const std::size_t index = 7 + static_cast<std::size_t>(i);
        const auto v = numbersOrFail(splitAnswerFields(lineAt(index)), 3, kSuperpositionDataTitle,
                                     "R theta phi", fileName, static_cast<int>(index) + 1);
        data.ligands.push_back(Ligand{v[0], v[1], v[2]});
    }
    return data;
}

void writeSuperpositionData(const std::filesystem::path& path, const SuperpositionData& data) {
    writeFileAtomically(path, formatSuperpositionData(data));
}

SuperpositionData readSuperpositionData(const std::filesystem::path& path) {
    return parseSuperpositionData(readTextFile(path, kMaxLigandFileBytes), path.string());
}

void appendSuperpositionLog(const std::filesystem::path& path, const std::vector<std::string>& lines) {
    FileLogBook log(path);
    for (const std::string& line : lines) log.appendLine(line);
}

}  // namespace orvane::params
