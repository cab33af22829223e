#include "tables/published_tables.hpp"

#include <cmath>
#include <map>

#include <fmt/format.h>

#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {

namespace {

constexpr const char* kTitle = "Error in reading published tables";

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        auto end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        std::string line(text.substr(start, end - start));
        if (!line.empty() && line.back() == '\r') line.pop_back();
        // DOS end-of-file marks (Ctrl-Z) after the last block are not content.
        if (line.find('\x1a') != std::string::npos) line.erase(line.find('\x1a'));
        lines.push_back(std::move(line));
        start = end + 1;
    }
    return lines;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

struct Reader {
    const std::vector<std::string>& lines;
    const std::string& file;
    std::size_t next = 0;

    [[noreturn]] void fail(const std::string& message) const {
        throw UserError(kTitle, message, FileLocation{file, static_cast<int>(next)});
    }
    bool atEnd() const { return next >= lines.size(); }
    const std::string& take() {
        if (atEnd()) fail("the file ends inside a block");
        return lines[next++];
    }
};

// "FOR F" with any run of blanks between the words.
bool isBlockTitle(std::string_view line) {
    const auto at = line.find("FOR");
    if (at == std::string_view::npos) return false;
    const auto rest = trim(line.substr(at + 3));
    return !rest.empty() && rest[0] == 'F';
}

bool isEndLine(std::string_view line) { return trim(line).substr(0, 3) == "END"; }

std::map<std::string, int> labelIndex(const std::vector<std::string>& labels) {
    std::map<std::string, int> index;
    for (std::size_t i = 0; i < labels.size(); ++i) index.emplace(labels[i], static_cast<int>(i));
    return index;
}

void readParentage(Reader& reader, PublishedTables& tables) {
    const int T = static_cast<int>(tables.labels.size());
    std::vector<std::array<double, 3>> entries;
    int parents = 0;
    while (true) {
        const std::string& head = reader.take();
        if (isEndLine(head)) break;
        const auto fields = splitFields(head);
        if (fields.size() < 3) reader.fail("expected \"index label count\" of a term");
        const auto term = parseInteger(fields[0]);
        const auto count = parseInteger(fields.back());
        if (!term || !count || *term < 1 || *term > T || *count < 0)
            reader.fail("bad term line in the CFP block");
        int read = 0;
        while (read < *count) {
            const std::string& line = reader.take();
            // Fixed fields: I4 index, F12.9 value, 16 characters a pair.
            for (std::size_t pos = 0; pos + 4 < line.size() && read < *count; pos += 16) {
                const auto index = parseInteger(trim(line.substr(pos, 4)));
                const auto value = parseNumber(trim(line.substr(pos + 4, 12)));
                if (!index || !value || *index < 1) reader.fail("bad parent pair in the CFP block");
                entries.push_back({static_cast<double>(*term), static_cast<double>(*index), *value});
                parents = std::max(parents, *index);
                ++read;
            }
        }
    }
    tables.cfp = Eigen::MatrixXd::Zero(T, parents);
    for (const auto& e : entries)
        tables.cfp(static_cast<int>(e[0]) - 1, static_cast<int>(e[1]) - 1) = e[2];
    tables.hasParentage = true;
}

template <std::size_t Columns>
void readPairRows(Reader& reader, const PublishedTables& tables, std::array<Eigen::MatrixXd, Columns>& matrices) {
    const int T = static_cast<int>(tables.labels.size());
    const auto index = labelIndex(tables.labels);
    for (auto& m : matrices) m = Eigen::MatrixXd::Zero(T, T);
    while (true) {
        const std::string& line = reader.take();
        if (isEndLine(line)) break;
        const auto fields = splitFields(line);
        if (fields.size() < 2) reader.fail("expected \"label label values\"");
        const auto a = index.find(fields[0]);
        const auto b = index.find(fields[1]);
        if (a == index.end() || b == index.end()) reader.fail("unknown term label in a row");
        // The numbers after the two labels (labels hold digits, so skip them first).
        const auto afterLabels = line.find(fields[1], line.find(fields[0]) + fields[0].size()) + fields[1].size();
        const auto values = numbersInLine(std::string_view(line).substr(afterLabels));
        if (values.size() != Columns)
            reader.fail(fmt::format("expected {} values, found {}", Columns, values.size()));
        for (int k = 0; k < static_cast<int>(Columns); ++k) matrices[static_cast<std::size_t>(k)](a->second, b->second) = values[static_cast<std::size_t>(k)];
    }
}

void readElectrostatic(Reader& reader, const std::string& title, PublishedTables& tables) {
    const int T = static_cast<int>(tables.labels.size());
    const auto counts = numbersInLine(title);  // n, T, P, O
    if (counts.size() < 4) reader.fail("E-S title without its counts");
    const int parameters = static_cast<int>(counts[2]);
    for (auto& m : tables.coulombCentred) m = Eigen::MatrixXd::Zero(T, T);
    for (auto& m : tables.threeBody) m = Eigen::MatrixXd::Zero(T, T);
    for (int block = 0; block < parameters / 6; ++block)
        for (int i = 0; i < T; ++i) {
            const std::string& line = reader.take();
            const auto fields = splitFields(line);
            if (fields.empty()) reader.fail("empty diagonal row in the E-S block");
            const auto values = numbersInLine(std::string_view(line).substr(line.find(fields[0]) + fields[0].size()));
            if (values.size() != 6) reader.fail("expected 6 values in an E-S diagonal row");
            if (block == 0)
                for (int k = 0; k < 3; ++k) tables.coulombCentred[static_cast<std::size_t>(k)](i, i) = values[static_cast<std::size_t>(k)];
            if (block == 1)
                for (int k = 0; k < 6; ++k) tables.threeBody[static_cast<std::size_t>(k)](i, i) = values[static_cast<std::size_t>(k)];
        }
    while (true) {
        const std::string& line = reader.take();
        if (isEndLine(line)) break;
        const auto values = numbersInLine(line);
        if (values.size() % 2 != 0) reader.fail("E-S off-diagonal entries come in pairs");
        for (std::size_t p = 0; p < values.size(); p += 2) {
            const long code = std::lround(values[p + 1]);
            const int parameter = static_cast<int>(code / 1000000);
            const int i = static_cast<int>((code / 1000) % 1000);
            const int j = static_cast<int>(code % 1000);
            if (i < 1 || j < 1 || i > T || j > T) reader.fail("E-S code with a term index out of range");
            if (parameter >= 1 && parameter <= 3)
                tables.coulombCentred[static_cast<std::size_t>(parameter - 1)](std::min(i, j) - 1, std::max(i, j) - 1) = values[p];
            if (parameter >= 7 && parameter <= 12)
                tables.threeBody[static_cast<std::size_t>(parameter - 7)](std::min(i, j) - 1, std::max(i, j) - 1) = values[p];
        }
    }
    tables.hasElectrostatic = true;
    tables.hasThreeBody = parameters >= 12;
}

void skipBlock(Reader& reader) {
    while (!isEndLine(reader.take())) {
    }
}

}  // namespace

std::vector<double> numbersInLine(std::string_view line) {
    std::vector<double> numbers;
    std::size_t i = 0;
    while (i < line.size()) {
        const bool negative = line[i] == '-' && i + 1 < line.size() && (isDigit(line[i + 1]) || line[i + 1] == '.');
        if (!negative && !isDigit(line[i])) {
            ++i;
            continue;
        }
        std::size_t j = negative ? i + 1 : i;
        while (j < line.size() && isDigit(line[j])) ++j;
        if (j < line.size() && line[j] == '.') {
            ++j;
            while (j < line.size() && isDigit(line[j])) ++j;
        }
        numbers.push_back(std::strtod(std::string(line.substr(i, j - i)).c_str(), nullptr));
        i = j;
    }
    return numbers;
}

PublishedTables parsePublishedTables(std::string_view text, const std::string& fileName) {
    const auto lines = linesOf(text);
    Reader reader{lines, fileName};
    PublishedTables tables;
    const auto head = numbersInLine(reader.take());
    if (head.size() < 2) reader.fail("the first line must read \"F n  T STATES\"");
    tables.electrons = static_cast<int>(head[0]);
    const int T = static_cast<int>(head[1]);
    if (T < 1 || T > 200) reader.fail("implausible number of terms");
    while (static_cast<int>(tables.labels.size()) < T) {
        const std::string& line = reader.take();
        if (isBlockTitle(line)) reader.fail("fewer term labels than the header counts");
        for (auto& label : splitFields(line)) tables.labels.push_back(label);
    }
    while (!reader.atEnd()) {
        const std::string& title = reader.take();
        if (trim(title).empty()) continue;
        if (!isBlockTitle(title)) reader.fail("expected a block title containing \"FOR F\"");
        if (title.find("CFP") != std::string::npos) {
            readParentage(reader, tables);
        } else if (title.find("V(1K)") != std::string::npos) {
            readPairRows(reader, tables, tables.doubleTensor);
            tables.hasDoubleTensors = true;
        } else if (title.find("U(K)") != std::string::npos) {
            readPairRows(reader, tables, tables.unitTensor);
            tables.hasUnitTensors = true;
        } else if (title.find("MK,PK") != std::string::npos) {
            readPairRows(reader, tables, tables.magnetic);
            tables.hasMagnetic = true;
        } else if (title.find("E-S") != std::string::npos) {
            readElectrostatic(reader, title, tables);
        } else {
            skipBlock(reader);
        }
    }
    return tables;
}

}  // namespace orvane
