// The question-and-answer loop shared by the calculators, and the 3j, 6j, 9j
// and C(k) calculators built on it.
#include "interactive/calculators.hpp"

#include <functional>

#include "core/angular.hpp"
#include "core/number_format.hpp"
#include "core/text.hpp"

namespace orvane {

namespace {

constexpr std::string_view kSeparatorHint =
    " (separated by a space or a comma or  a blank entry to terminate):";

// The titles and questions of one calculator. The first question is asked
// under firstTitle, the question after a correct line under nextTitle, the
// retry question after an incorrect line under retryTitle.
struct CalculatorTexts {
    std::string firstTitle;
    std::string nextTitle;
    std::string retryTitle;
    std::string prompt;
    std::string retryPrompt;
};

// Turns an answer into the lines to print, or std::nullopt when it is incorrect.
using Evaluation = std::function<std::optional<std::vector<std::string>>(std::string_view)>;

void runCalculator(Asker& asker, LogBook& log, const CalculatorTexts& texts, const Evaluation& evaluate) {
    Question question{texts.prompt, texts.firstTitle, ""};
    for (;;) {
        const std::optional<std::string> answer = asker.askLine(question);
        if (!answer || trim(*answer).empty()) return;
        std::optional<std::vector<std::string>> lines;
        try {
            lines = evaluate(*answer);
        } catch (const FactorialRangeError& error) {
            asker.showMessage("Subscript out of range", error.what());
        }
        if (!lines) {
            question = Question{texts.retryPrompt, texts.retryTitle, ""};
            continue;
        }
        for (const auto& line : *lines) log.appendLine(line);
        question = Question{texts.prompt, texts.nextTitle, ""};
    }
}

// "a b c / d e f": the first count fields of an answer in rows of perRow.
std::string fieldRows(std::string_view line, std::size_t count, std::size_t perRow) {
    const std::vector<std::string> fields = splitAnswerFields(line);
    std::string text;
    for (std::size_t i = 0; i < count && i < fields.size(); ++i) {
        if (i > 0) text += (i % perRow == 0) ? " / " : " ";
        text += fields[i];
    }
    return text;
}

std::optional<std::vector<std::string>> asLines(std::optional<std::string> line) {
    if (!line) return std::nullopt;
    return std::vector<std::string>{*line};
}

std::string prompt(std::string_view lead) { return std::string(lead) + std::string(kSeparatorHint); }

}  // namespace

std::optional<std::vector<double>> readCalculatorNumbers(std::string_view line, std::size_t count) {
    const std::vector<std::string> fields = splitAnswerFields(line);
    if (fields.size() < count) return std::nullopt;
    std::vector<double> values;
    values.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::optional<double> value = parseNumber(fields[i]);
        if (!value) return std::nullopt;
        values.push_back(*value);
    }
    return values;
}

std::optional<std::string> threeJResultLine(std::string_view line) {
    const auto j = readCalculatorNumbers(line, 6);
    if (!j) return std::nullopt;
    const double value = ThreeJ((*j)[0], (*j)[1], (*j)[2], (*j)[3], (*j)[4], (*j)[5]);
    return "3j(" + fieldRows(line, 6, 3) + ") = " + generalNumber(value);
}

std::optional<std::string> sixJResultLine(std::string_view line) {
    const auto j = readCalculatorNumbers(line, 6);
    if (!j) return std::nullopt;
    const double value = SixJ((*j)[0], (*j)[1], (*j)[2], (*j)[3], (*j)[4], (*j)[5]);
    return "6j{" + fieldRows(line, 6, 3) + "} = " + generalNumber(value);
}

std::optional<std::string> nineJResultLine(std::string_view line) {
    const auto j = readCalculatorNumbers(line, 9);
    if (!j) return std::nullopt;
    const auto& v = *j;
    const double value = NineJ(v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8]);
    return "9j{" + fieldRows(line, 9, 3) + "} = " + generalNumber(value);
}

std::optional<std::string> reducedCkResultLine(std::string_view line) {
    const auto values = readCalculatorNumbers(line, 3);
    if (!values) return std::nullopt;
    const double value = ReducedCk((*values)[0], (*values)[1], (*values)[2]);
    return "RME <L||C(k)|L'>(" + std::string(line) + ") = " + generalNumber(value);
}

void runThreeJCalculator(Asker& asker, LogBook& log) {
    const CalculatorTexts texts{"", "", "", prompt("Give values of j1, j2, j3, m1, m2, m3"),
                                prompt("Please give a correct of values")};
    runCalculator(asker, log, texts, [](std::string_view line) { return asLines(threeJResultLine(line)); });
}

void runSixJCalculator(Asker& asker, LogBook& log) {
    const CalculatorTexts texts{"", "", "", prompt("Give values of j1, j2, j3, j4, j5, j6"),
                                prompt("Please give a correct set of values")};
    runCalculator(asker, log, texts, [](std::string_view line) { return asLines(sixJResultLine(line)); });
}

void runNineJCalculator(Asker& asker, LogBook& log) {
    const CalculatorTexts texts{
        "", "", "", prompt("Give values of j1, j2, j3, j4, j5, j6, j7, j8, j9"),
        "Previous values of j1, j2, j3, j4, j5, j6, j7, j8, j9 are incorrect.\n" +
            prompt("Please give a correct set of values")};
    runCalculator(asker, log, texts, [](std::string_view line) { return asLines(nineJResultLine(line)); });
}

void runReducedCkCalculator(Asker& asker, LogBook& log) {
    const CalculatorTexts texts{"Calculation of Reduced Matrix Element <L||C(k)|L'>",
                                "Another Calculation of Reduced Matrix Element <L||C(k)|L'>",
                                "Re-Calculation of Reduced Matrix Element <L||C(k)|L'>",
                                prompt("Give values of l, k, l'"),
                                "Previous values of l, k, l'  are incorrect.\n" +
                                    prompt("Please give a correct set of values")};
    runCalculator(asker, log, texts, [](std::string_view line) { return asLines(reducedCkResultLine(line)); });
}

void runRotationMatrixCalculator(Asker& asker, LogBook& log) {
    const std::string title = "Calculation of rotation matrix";
    const CalculatorTexts texts{
        title, title, title, prompt("Give values of J and Beta angle in degree for d(J)mm'(Beta)"),
        "Previous values of  J and Beta angle in degree for d(J)mm'(Beta) are incorrect.\n" +
            prompt("Please give a correct pair of values")};
    runCalculator(asker, log, texts, [](std::string_view line) -> std::optional<std::vector<std::string>> {
        const auto request = readRotationMatrixRequest(line);
        if (!request) return std::nullopt;
        return rotationMatrixBlock(*request);
    });
}

}  // namespace orvane
