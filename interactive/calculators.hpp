#pragma once
// The five interactive calculators of the angular-momentum core: 3j, 6j and 9j
// symbols, the reduced matrix element <l||C(k)||l'> and the rotation matrix
// d(J)(beta). Each is a loop of one-line questions through the Asker; every
// result goes to the log book; an empty answer (or a cancelled question) ends
// the calculator.
//
// Reading of an answer, common to all five: every ',' and ';' counts as a
// blank, the line is split on runs of blanks, and too few fields or a field
// that is not a number make the line incorrect; extra fields are ignored. An
// incorrect line is answered by the retry question and prints nothing.
//
// Printed forms (one log line per correct answer):
//   3j:   "3j(j1 j2 j3 / m1 m2 m3) = " and the value
//   6j:   "6j{j1 j2 j3 / j4 j5 j6} = " and the value
//   9j:   "9j{j1 j2 j3 / j4 j5 j6 / j7 j8 j9} = " and the value
//   C(k): "RME <L||C(k)|L'>(" the line as typed ") = " and the value
// with the fields as the user typed them and the value in the runtime's general
// number form (generalNumber: " .577350269189626", "-1.3662601021279").
// d(J) prints a block, described at rotationMatrixBlock.
//
// A symbol that needs a factorial beyond 79! is reported with a message box
// titled "Subscript out of range" (the table's limit) and the retry question
// follows; nothing is printed for it.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "interactive/asker.hpp"
#include "core/log_book.hpp"

namespace orvane {

void runThreeJCalculator(Asker& asker, LogBook& log);
void runSixJCalculator(Asker& asker, LogBook& log);
void runNineJCalculator(Asker& asker, LogBook& log);
void runReducedCkCalculator(Asker& asker, LogBook& log);
void runRotationMatrixCalculator(Asker& asker, LogBook& log);

// The first `count` numbers of an answer; std::nullopt when there are fewer
// fields or one of them is not a number.
std::optional<std::vector<double>> readCalculatorNumbers(std::string_view line, std::size_t count);

// The result lines of the 3j, 6j, 9j and C(k) calculators for an answer that
// holds enough numbers (see the printed forms above); std::nullopt for an
// incorrect answer. May throw FactorialRangeError.
std::optional<std::string> threeJResultLine(std::string_view line);
std::optional<std::string> sixJResultLine(std::string_view line);
std::optional<std::string> nineJResultLine(std::string_view line);
std::optional<std::string> reducedCkResultLine(std::string_view line);

// One request of the d(J) calculator: "J beta [order [heading]]".
struct RotationMatrixRequest {
    double J = 0.0;            // as read; the matrix has 2J+1 rounded rows
    double betaDegrees = 0.0;
    int order = 1;             // below 1: rows and columns from m = +J down to -J
    int heading = 1;           // non-zero: print the "J= " heading line and row labels
};

// Reads "J beta [order [heading]]". J and beta are numbers, or a text with a
// '/' after its first character, read as the number before the '/' divided by
// 2 whatever follows it ("7/2" and "7/4" both give 3.5). order and heading are
// integers. std::nullopt when fewer than two fields, a field is unreadable or
// J is negative.
std::optional<RotationMatrixRequest> readRotationMatrixRequest(std::string_view line);

// The printed block of d(J)mm'(beta):
//   "Rotation matrix d(J)mm'(beta) for J = 2.5 and beta = 90"
//   "J= 2.5<TAB> m'=-5/2<TAB> m'=-3/2 ..."          (when heading is non-zero)
//   " m=-5/2<TAB> 0.176777<TAB>-0.306186 ..."        (row label when heading is non-zero)
// Elements use the picture "#0.######"; projections the picture " #0;-#0"
// after " m'=" (columns) or " m=" (rows), a half-integral projection being
// printed as its double over 2 ("-5/2"). May throw FactorialRangeError.
std::vector<std::string> rotationMatrixBlock(const RotationMatrixRequest& request);

}  // namespace orvane
