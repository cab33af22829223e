#include "report/state_vector_file.hpp"

#include <algorithm>
#include <cmath>
#include <ostream>

#include <fmt/format.h>

#include "core/number_format.hpp"

#include "core/atomic_file.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {

namespace {

constexpr ErrorCategory kReadError = ErrorCategory::Main;

[[noreturn]] void fail(const std::string& file, int line, const std::string& message) {
    throw UserError(kReadError, message, FileLocation{file, line});
}

// Line-by-line reader over the whole text, counting lines for messages.
class LineReader {
public:
    LineReader(const std::string& text, std::string file) : text_(text), file_(std::move(file)) {}
    // The fields of the next line; fails with `what` at the end of the text.
    std::vector<std::string> next(const char* what) {
        if (position_ >= text_.size()) fail(file_, line_ + 1, std::string("unexpected end of file: ") + what);
        auto end = text_.find('\n', position_);
        if (end == std::string::npos) end = text_.size();
        const std::string_view line(text_.data() + position_, end - position_);
        position_ = end + 1;
        ++line_;
        last_ = line;
        return splitFields(line);
    }
    std::string_view lastLine() const { return last_; }
    int line() const { return line_; }
    const std::string& file() const { return file_; }
    bool atEnd() const { return trim(std::string_view(text_).substr(std::min(position_, text_.size()))).empty(); }

private:
    const std::string& text_;
    std::string file_;
    std::size_t position_ = 0;
    int line_ = 0;
    std::string_view last_;
};

int integerField(const LineReader& in, const std::vector<std::string>& fields, std::size_t i, const char* what) {
    if (i >= fields.size()) fail(in.file(), in.line(), std::string(what) + " missing");
    const auto value = parseInteger(fields[i]);
    if (!value) fail(in.file(), in.line(), std::string(what) + " is not an integer: \"" + fields[i] + "\"");
    return *value;
}

double numberField(const LineReader& in, const std::vector<std::string>& fields, std::size_t i, const char* what) {
    if (i >= fields.size()) fail(in.file(), in.line(), std::string(what) + " missing");
    const auto value = parseNumber(fields[i]);
    if (!value) fail(in.file(), in.line(), std::string(what) + " is not a finite number: \"" + fields[i] + "\"");
    return *value;
}

// The value following keyword `key` on the header line.
std::string headerValue(const LineReader& in, const std::vector<std::string>& fields, const char* key) {
    for (std::size_t i = 0; i + 1 < fields.size(); i += 2)
        if (fields[i] == key) return fields[i + 1];
    fail(in.file(), in.line(), std::string("header line lacks \"") + key + "\"");
}

}  // namespace

void writeStateVectorText(std::ostream& out, const StateVectorHeader& header, const ResultBasis& basis,
                          const std::vector<EngineTerm>& terms, const std::vector<ResultLevel>& levels, int count) {
    const int stored = (count <= 0 || count > static_cast<int>(levels.size())) ? static_cast<int>(levels.size())
                                                                                : count;
    std::string text;
    auto put = std::back_inserter(text);
    fmt::format_to(put, "State vectors: {}\n", header.title);
    fmt::format_to(put, "basis {} states {} vectors {} complex {} unit {} shift {}\n",
                   basis.withProjections ? "SLJM" : "SLJ", basis.states.size(), stored, header.complex ? 1 : 0,
                   header.unit, header.shift);
    for (std::size_t i = 0; i < basis.states.size(); ++i) {
        const auto& state = basis.states[i];
        const auto& term = terms[state.term];
        fmt::format_to(put, "{} {} {} {} {}", i + 1, term.label, term.twiceS, term.L, state.twiceJ);
        if (basis.withProjections) fmt::format_to(put, " {}", state.twiceM);
        text.push_back('\n');
    }
    for (int n = 0; n < stored; ++n) {
        const auto& level = levels[n];
        fmt::format_to(put, "Statevector # {} {:.6f} {} {}\n", n + 1, level.energy + header.shift,
                       level.components.size(), level.label);
        for (const auto& component : level.components) {
            const fmt::format_int index(component.basisIndex + 1);
            text.append(index.data(), index.size());
            text.push_back(' ');
            appendFixed(text, component.coefficient.real(), 10);
            if (header.complex) {
                text.push_back(' ');
                appendFixed(text, component.coefficient.imag(), 10);
            }
            text.push_back('\n');
        }
        if (text.size() > (1u << 22)) {
            out.write(text.data(), static_cast<std::streamsize>(text.size()));
            text.clear();
        }
    }
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

StateVectorFileContents parseStateVectorText(const std::string& text, const std::string& file) {
    StateVectorFileContents contents;
    LineReader in(text, file);
    in.next("title line");
    contents.title = std::string(trim(in.lastLine()));
    const auto header = in.next("header line");
    const auto kind = headerValue(in, header, "basis");
    if (kind != "SLJM" && kind != "SLJ") fail(file, in.line(), "basis must be SLJM or SLJ, found \"" + kind + "\"");
    contents.withProjections = kind == "SLJM";
    const auto states = parseInteger(headerValue(in, header, "states"));
    const auto vectors = parseInteger(headerValue(in, header, "vectors"));
    const auto complexFlag = parseInteger(headerValue(in, header, "complex"));
    const auto shift = parseNumber(headerValue(in, header, "shift"));
    if (!states || *states < 1 || !vectors || *vectors < 0 || !complexFlag || *complexFlag < 0 || *complexFlag > 1 ||
        !shift)
        fail(file, in.line(), "header line has an invalid count, complex flag or shift");
    if (static_cast<std::size_t>(*states) > text.size() || static_cast<std::size_t>(*vectors) > text.size())
        fail(file, in.line(), "header line announces more entries than the file can hold");
    contents.complex = *complexFlag == 1;
    contents.unit = headerValue(in, header, "unit");
    contents.shift = *shift;

    for (int i = 0; i < *states; ++i) {
        const auto fields = in.next("basis state");
        if (integerField(in, fields, 0, "basis index") != i + 1) fail(file, in.line(), "basis index out of sequence");
        if (fields.size() < 5) fail(file, in.line(), "basis state needs index, term, 2S, L, 2J");
        StateVectorBasisState state;
        state.term = fields[1];
        state.twiceS = integerField(in, fields, 2, "2S");
        state.L = integerField(in, fields, 3, "L");
        state.twiceJ = integerField(in, fields, 4, "2J");
        if (contents.withProjections) {
            state.twiceM = integerField(in, fields, 5, "2MJ");
            if (std::abs(state.twiceM) > state.twiceJ || (state.twiceJ - state.twiceM) % 2 != 0)
                fail(file, in.line(), "2MJ is not a projection of 2J");
        }
        contents.basis.push_back(std::move(state));
    }
    contents.vectors.reserve(std::min(*vectors, 1 << 16));  // counts are checked as lines arrive
    for (int n = 0; n < *vectors; ++n) {
        const auto fields = in.next("statevector line");
        if (fields.size() < 5 || fields[0] != "Statevector" || fields[1] != "#")
            fail(file, in.line(), "\"Statevector # n energy count label\" expected");
        StoredStateVector vector;
        vector.number = integerField(in, fields, 2, "statevector number");
        if (vector.number != n + 1) fail(file, in.line(), "statevector number out of sequence");
        vector.energy = numberField(in, fields, 3, "energy");
        const int count = integerField(in, fields, 4, "component count");
        if (count < 0 || count > *states) fail(file, in.line(), "component count outside 0 .. number of basis states");
        if (fields.size() > 5) vector.label = fields[5];
        vector.components.reserve(std::min(count, 1 << 12));
        for (int c = 0; c < count; ++c) {
            const auto line = in.next("component line");
            const int index = integerField(in, line, 0, "basis index");
            if (index < 1 || index > *states) fail(file, in.line(), "basis index outside 1 .. number of basis states");
            const double re = numberField(in, line, 1, "coefficient");
            const double im = contents.complex ? numberField(in, line, 2, "imaginary part") : 0.0;
            vector.components.push_back({index - 1, {re, im}});
        }
        contents.vectors.push_back(std::move(vector));
    }
    if (!in.atEnd()) fail(file, in.line() + 1, "text after the last announced statevector");
    return contents;
}

StateVectorFileContents readStateVectorFile(const std::filesystem::path& path) {
    return parseStateVectorText(readTextFile(path, 1024u * 1024u * 1024u), path.string());
}

}  // namespace orvane
