#include "interactive/asker.hpp"

#include <istream>
#include <ostream>

#include "core/text.hpp"

namespace orvane {

std::optional<std::string> TerminalAsker::askLine(const Question& question) {
    if (!question.title.empty()) out_ << "[" << question.title << "] ";
    out_ << question.prompt;
    if (!question.defaultAnswer.empty()) out_ << " [" << question.defaultAnswer << "]";
    out_ << ' ' << std::flush;
    std::string line;
    if (!std::getline(in_, line)) return std::nullopt;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (trim(line).empty() && !question.defaultAnswer.empty()) return question.defaultAnswer;
    return line;
}

void TerminalAsker::showMessage(std::string_view title, std::string_view text) {
    out_ << title << ": " << text << '\n' << std::flush;
}

std::string_view buttonHint(Buttons buttons) {
    switch (buttons) {
        case Buttons::Ok: return "[OK]";
        case Buttons::OkCancel: return "[o]k/[c]ancel";
        case Buttons::YesNo: return "[y]es/[n]o";
        case Buttons::YesNoCancel: return "[y]es/[n]o/[c]ancel";
        case Buttons::AbortRetryIgnore: return "[a]bort/[r]etry/[i]gnore";
    }
    return "";
}

namespace {

std::optional<Choice> readChoice(std::string_view reply, Buttons buttons) {
    const std::string answer = toUpper(trim(reply));
    if (answer.empty()) return std::nullopt;
    if (buttons == Buttons::AbortRetryIgnore) {
        if (answer[0] == 'A') return Choice::Abort;
        if (answer[0] == 'R') return Choice::Retry;
        if (answer[0] == 'I') return Choice::Ignore;
        return std::nullopt;
    }
    const bool hasYes = buttons == Buttons::YesNo || buttons == Buttons::YesNoCancel;
    const bool hasCancel = buttons == Buttons::OkCancel || buttons == Buttons::YesNoCancel;
    if (hasYes && answer[0] == 'Y') return Choice::Yes;
    if (hasYes && answer[0] == 'N') return Choice::No;
    if (!hasYes && answer[0] == 'O') return Choice::Ok;
    if (hasCancel && answer[0] == 'C') return Choice::Cancel;
    return std::nullopt;
}

}  // namespace

// The answer taken when no answer can be had (closed input, exhausted script).
Choice cautiousChoice(Buttons buttons) {
    if (buttons == Buttons::YesNo) return Choice::No;
    if (buttons == Buttons::AbortRetryIgnore) return Choice::Abort;
    return Choice::Cancel;
}

Choice TerminalAsker::askChoice(std::string_view title, std::string_view text, Buttons buttons) {
    if (buttons == Buttons::Ok) {
        showMessage(title, text);
        return Choice::Ok;
    }
    for (;;) {
        out_ << title << ": " << text << ' ' << buttonHint(buttons) << ' ' << std::flush;
        std::string line;
        if (!std::getline(in_, line)) return cautiousChoice(buttons);
        if (auto choice = readChoice(line, buttons)) return *choice;
    }
}

ScriptedAsker::ScriptedAsker(std::vector<std::string> answers, std::vector<Choice> choices)
    : answers_(answers.begin(), answers.end()), choices_(choices.begin(), choices.end()) {}

std::optional<std::string> ScriptedAsker::askLine(const Question& question) {
    questions_.push_back(question);
    if (answers_.empty()) return std::nullopt;
    std::string answer = std::move(answers_.front());
    answers_.pop_front();
    if (trim(answer).empty() && !question.defaultAnswer.empty()) return question.defaultAnswer;
    return answer;
}

void ScriptedAsker::showMessage(std::string_view title, std::string_view text) {
    messages_.push_back(std::string(title) + ": " + std::string(text));
}

Choice ScriptedAsker::askChoice(std::string_view title, std::string_view text, Buttons buttons) {
    messages_.push_back(std::string(title) + ": " + std::string(text));
    if (buttons == Buttons::Ok) return Choice::Ok;
    if (choices_.empty()) return cautiousChoice(buttons);
    const Choice choice = choices_.front();
    choices_.pop_front();
    return choice;
}

}  // namespace orvane
