#include "tables/table_seal.hpp"

#include <cctype>
#include <cstdint>
#include <vector>

#include <fmt/format.h>

#include "core/atomic_file.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"
#include "tables/table_directory.hpp"
#include "tables/term_generator.hpp"

namespace orvane {

namespace {

constexpr std::string_view kMarker = "[Orvane tables generator";

std::uint64_t fnv1a64(std::string_view bytes) {
    std::uint64_t hash = 0xcbf29ce484222325ULL;
    for (unsigned char c : bytes) {
        hash ^= c;
        hash *= 0x100000001b3ULL;
    }
    return hash;
}

int recordCount(std::string_view body) {
    int records = 0;
    std::size_t start = 0;
    while (start < body.size()) {
        auto end = body.find('\n', start);
        if (end == std::string_view::npos) end = body.size();
        if (!trim(body.substr(start, end - start)).empty()) ++records;
        start = end + 1;
    }
    return records;
}

struct Split {
    std::string_view title, body;
};

Split splitTitle(std::string_view text) {
    const auto end = text.find('\n');
    if (end == std::string_view::npos) return {text, {}};
    return {text.substr(0, end), text.substr(end + 1)};
}

std::string sealOf(std::string_view fileName, std::string_view body) {
    return fmt::format("[{}; {}; {} records; fnv1a64 {:016x}]", kTableGeneratorVersion, fileName, recordCount(body),
                       fnv1a64(body));
}

// The fields of the bracket, separated by ';'.
std::vector<std::string_view> fieldsOf(std::string_view inside) {
    std::vector<std::string_view> fields;
    std::size_t start = 0;
    for (auto end = inside.find(';'); end != std::string_view::npos; end = inside.find(';', start)) {
        fields.push_back(inside.substr(start, end - start));
        start = end + 1;
    }
    fields.push_back(inside.substr(start));
    return fields;
}

bool sameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    return true;
}

}  // namespace

std::string sealedTableText(std::string_view fileName, std::string_view text) {
    const auto [title, body] = splitTitle(text);
    const std::string plain = std::string("[") + kTableGeneratorVersion + "]";
    const auto at = title.find(plain);
    if (at == std::string_view::npos) return std::string(text);
    std::string sealed(title.substr(0, at));
    sealed += sealOf(fileName, body);
    sealed += title.substr(at + plain.size());
    sealed += '\n';
    sealed += body;
    return sealed;
}

std::optional<std::string> tableTextProblem(std::string_view fileName, std::string_view text) {
    if (trim(text).empty()) return "is empty";
    const auto [title, body] = splitTitle(text);
    const auto at = title.find(kMarker);
    if (at == std::string_view::npos) return std::nullopt;  // from elsewhere
    const auto close = title.find(']', at);
    const auto bracket = title.substr(at, close == std::string_view::npos ? std::string_view::npos : close - at + 1);
    if (bracket.find(std::string("[") + kTableGeneratorVersion + ";") != 0 &&
        bracket.find(std::string("[") + kTableGeneratorVersion + "]") != 0)
        return "was written by another version of the generator (" + std::string(bracket) + ")";
    const auto fields = fieldsOf(bracket.substr(1, bracket.size() - 2));
    if (fields.size() != 4) return std::string("has no record count and checksum in its title line");
    const auto storedName = trim(fields[1]);
    if (!sameName(storedName, fileName)) return "holds the table " + std::string(storedName);
    const auto expected = sealOf(fileName, body);
    if (expected == bracket) return std::nullopt;
    const auto records = std::to_string(recordCount(body)) + " records";
    if (trim(fields[2]) != records)
        return "has " + records + " where its title line announces " + std::string(trim(fields[2])) + " (truncated?)";
    return std::string("does not match the checksum of its title line (values changed or reordered)");
}

std::optional<std::string> generatedTableProblem(const std::filesystem::path& directory, const std::string& name) {
    if (auto problem = tableFileProblem(directory, name)) return problem;
    if (readTextFile(*findCaseBlind(directory, name)).substr(0, 4096).find(kMarker) == std::string::npos)
        return "has no version line of " + std::string(kTableGeneratorVersion) + " in its title";
    return std::nullopt;
}

std::filesystem::path freshGeneratedTable(const std::filesystem::path& directory, const std::string& name,
                                          const std::function<std::filesystem::path()>& build, LogBook& log) {
    const auto problem = generatedTableProblem(directory, name);
    if (!problem) return *findCaseBlind(directory, name);
    if (*problem != "is missing")
        log.appendLine(fmt::format("The table {} {}; it is generated again", (directory / name).string(), *problem));
    return build();
}

std::optional<std::string> tableFileProblem(const std::filesystem::path& directory, const std::string& name) {
    const auto found = findCaseBlind(directory, name);
    if (!found) return std::string("is missing");
    try {
        return tableTextProblem(name, readTextFile(*found));
    } catch (const UserError& error) {
        return std::string("cannot be read: ") + error.what();
    }
}

void writeGeneratedTable(const std::filesystem::path& path, std::string_view text) {
    writeFileAtomically(path, sealedTableText(path.filename().string(), text));
}

}  // namespace orvane
