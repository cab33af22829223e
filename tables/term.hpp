#pragma once
// Term records of f^n: the Russell-Saunders terms |f^n v W U S L> with their
// labels and group-theoretical classification.
//
// A label is the multiplicity digit 2S+1, the letter of L from "SPDFGHIKLMNOQ"
// and, when several terms share S and L, a number counting them (2F1, 2F10).
// The R7 label W = (w1 w2 w3) and the G2 label U = (u1 u2) are stored as the
// values 2x and 12x of the Casimir eigenvalues (the stored form of the
// state-label files): W -> [w1(w1+5) + w2(w2+3) + w3(w3+1)] / 2,
// U -> u1^2 + u1 u2 + u2^2 + 5 u1 + 4 u2.
#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

inline constexpr std::string_view kOrbitalLetters = "SPDFGHIKLMNOQ";
inline constexpr int kTermLabelWidth = 4;

struct TermRecord {
    std::string label;   // at most 4 characters
    int seniority = 0;   // v
    int r7Value = 0;     // stored R7 value (5 G(R7))
    int g2Value = 0;     // stored G2 value (12 G(G2))
};

// The letter of L (0..12); '?' outside the table.
char orbitalLetter(int L);
// L from a letter of the table; std::nullopt for any other character.
std::optional<int> orbitalFromLetter(char letter);

// 2S from the multiplicity digit of a label, L from its letter; std::nullopt
// when the label does not start with a digit and a letter of the table.
std::optional<int> twiceSpinOfLabel(std::string_view label);
std::optional<int> orbitalOfLabel(std::string_view label);

// Stored values of the group labels as written in the files ("221", "31";
// a label written "0" is the number 0). std::nullopt for an unknown label.
std::optional<int> r7ValueOfLabel(std::string_view wText);
std::optional<int> g2ValueOfLabel(std::string_view uText);

// Racah 1949: the R7 Casimir eigenvalue times 5, stored form of W (w1 w2 w3).
int r7StoredValue(const std::array<int, 3>& w);
// Racah 1949: the G2 Casimir eigenvalue times 12, stored form of U (u1 u2).
int g2StoredValue(const std::array<int, 2>& u);

// "221" and "31" forms of the labels.
std::string r7LabelText(const std::array<int, 3>& w);
std::string g2LabelText(const std::array<int, 2>& u);

}  // namespace orvane
