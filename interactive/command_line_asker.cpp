#include "interactive/command_line_asker.hpp"

#include <ostream>

#include "core/user_error.hpp"

namespace orvane {
namespace {

constexpr std::string_view kUnanswered = "Question without an answer";

[[noreturn]] void refuse(std::string_view title, std::string_view question) {
    throw UserError(std::string(title.empty() ? kUnanswered : title),
                    "The command line cannot answer \"" + std::string(question) +
                        "\" (standard input is not read; give the value as an option)");
}

}  // namespace

CommandLineAsker::CommandLineAsker(std::ostream& out, std::vector<std::string> answers,
                                   std::vector<Choice> choices)
    : out_(out), answers_(answers.begin(), answers.end()), choices_(choices.begin(), choices.end()) {}

std::optional<std::string> CommandLineAsker::askLine(const Question& question) {
    if (answers_.empty()) refuse(question.title, question.prompt);
    std::string answer = std::move(answers_.front());
    answers_.pop_front();
    return answer;
}

void CommandLineAsker::showMessage(std::string_view title, std::string_view text) {
    out_ << title << ": " << text << '\n' << std::flush;
}

Choice CommandLineAsker::askChoice(std::string_view title, std::string_view text, Buttons buttons) {
    if (buttons == Buttons::Ok) {
        showMessage(title, text);
        return Choice::Ok;
    }
    if (choices_.empty()) refuse(title, std::string(text) + " " + std::string(buttonHint(buttons)));
    const Choice choice = choices_.front();
    choices_.pop_front();
    return choice;
}

}  // namespace orvane
