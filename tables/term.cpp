#include "tables/term.hpp"

#include "core/text.hpp"

namespace orvane {

char orbitalLetter(int L) {
    if (L < 0 || L >= static_cast<int>(kOrbitalLetters.size())) return '?';
    return kOrbitalLetters[static_cast<std::size_t>(L)];
}

std::optional<int> orbitalFromLetter(char letter) {
    const auto position = kOrbitalLetters.find(static_cast<char>(letter));
    if (position == std::string_view::npos) return std::nullopt;
    return static_cast<int>(position);
}

std::optional<int> twiceSpinOfLabel(std::string_view label) {
    if (label.size() < 2 || label[0] < '1' || label[0] > '9') return std::nullopt;
    if (!orbitalFromLetter(label[1])) return std::nullopt;
    return label[0] - '1';
}

std::optional<int> orbitalOfLabel(std::string_view label) {
    if (!twiceSpinOfLabel(label)) return std::nullopt;
    return orbitalFromLetter(label[1]);
}

// Racah 1949, Phys. Rev. 76, 1352: eigenvalue of G(R7) is
// [w1(w1+5) + w2(w2+3) + w3(w3+1)]/10; the stored form is 5 times that.
int r7StoredValue(const std::array<int, 3>& w) {
    return (w[0] * (w[0] + 5) + w[1] * (w[1] + 3) + w[2] * (w[2] + 1)) / 2;
}

// Racah 1949: eigenvalue of G(G2) is (u1^2 + u1 u2 + u2^2 + 5 u1 + 4 u2)/12;
// the stored form is 12 times that.
int g2StoredValue(const std::array<int, 2>& u) {
    return u[0] * u[0] + u[0] * u[1] + u[1] * u[1] + 5 * u[0] + 4 * u[1];
}

std::string r7LabelText(const std::array<int, 3>& w) {
    return std::string{static_cast<char>('0' + w[0]), static_cast<char>('0' + w[1]),
                       static_cast<char>('0' + w[2])};
}

std::string g2LabelText(const std::array<int, 2>& u) {
    return std::string{static_cast<char>('0' + u[0]), static_cast<char>('0' + u[1])};
}

namespace {

// The labels occurring in the f shell, written as numbers ("000" and "0" are 0).
constexpr std::array<std::array<int, 3>, 10> kR7Labels{{{0, 0, 0}, {1, 0, 0}, {1, 1, 0},
                                                        {1, 1, 1}, {2, 0, 0}, {2, 1, 0},
                                                        {2, 1, 1}, {2, 2, 0}, {2, 2, 1},
                                                        {2, 2, 2}}};
constexpr std::array<std::array<int, 2>, 9> kG2Labels{
    {{0, 0}, {1, 0}, {1, 1}, {2, 0}, {2, 1}, {2, 2}, {3, 0}, {3, 1}, {4, 0}}};

std::optional<int> labelNumber(std::string_view text) {
    const auto field = trim(text);
    if (field.empty()) return std::nullopt;
    for (char c : field)
        if (c < '0' || c > '9') return std::nullopt;
    return parseInteger(field);
}

}  // namespace

std::optional<int> r7ValueOfLabel(std::string_view wText) {
    const auto number = labelNumber(wText);
    if (!number) return std::nullopt;
    for (const auto& w : kR7Labels)
        if (*number == w[0] * 100 + w[1] * 10 + w[2]) return r7StoredValue(w);
    return std::nullopt;
}

std::optional<int> g2ValueOfLabel(std::string_view uText) {
    const auto number = labelNumber(uText);
    if (!number) return std::nullopt;
    for (const auto& u : kG2Labels)
        if (*number == u[0] * 10 + u[1]) return g2StoredValue(u);
    return std::nullopt;
}

}  // namespace orvane
