#pragma once
// The question-and-answer seam: one-line prompts with an optional title and
// default answer, message boxes, and Yes/No/Cancel questions. The terminal,
// scripted tests and the desktop program each implement it.
#include <cstddef>
#include <deque>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

struct Question {
    std::string prompt;
    std::string title;          // window title of the input dialog; may be empty
    std::string defaultAnswer;  // offered to the user; returned for an empty reply
};

enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel, AbortRetryIgnore };
enum class Choice { Ok, Cancel, Yes, No, Abort, Retry, Ignore };

class Asker {
public:
    virtual ~Asker() = default;
    // One line of text. std::nullopt when the user cancels or the input has
    // ended; an empty string when the user answers with an empty line and
    // there is no default.
    virtual std::optional<std::string> askLine(const Question& question) = 0;
    // A message box with an OK button.
    virtual void showMessage(std::string_view title, std::string_view text) = 0;
    // A question answered with one of the buttons.
    virtual Choice askChoice(std::string_view title, std::string_view text, Buttons buttons) = 0;
};

// The keys a terminal offers for the buttons: "[y]es/[n]o", "[a]bort/[r]etry/[i]gnore", ...
std::string_view buttonHint(Buttons buttons);

// The answer taken when no answer can be had: No for Yes/No, Abort for
// Abort/Retry/Ignore, Cancel otherwise.
Choice cautiousChoice(Buttons buttons);

// Reads answers from a stream and writes prompts and messages to another.
class TerminalAsker final : public Asker {
public:
    TerminalAsker(std::istream& in, std::ostream& out) : in_(in), out_(out) {}
    std::optional<std::string> askLine(const Question& question) override;
    void showMessage(std::string_view title, std::string_view text) override;
    Choice askChoice(std::string_view title, std::string_view text, Buttons buttons) override;

private:
    std::istream& in_;
    std::ostream& out_;
};

// Answers from a prepared list and records everything asked and shown; when the
// list is exhausted, askLine returns std::nullopt and askChoice returns Cancel
// (No for Yes/No questions, Abort for Abort/Retry/Ignore).
class ScriptedAsker final : public Asker {
public:
    explicit ScriptedAsker(std::vector<std::string> answers = {},
                           std::vector<Choice> choices = {});
    std::optional<std::string> askLine(const Question& question) override;
    void showMessage(std::string_view title, std::string_view text) override;
    Choice askChoice(std::string_view title, std::string_view text, Buttons buttons) override;

    void addAnswer(std::string answer) { answers_.push_back(std::move(answer)); }
    const std::vector<Question>& questions() const { return questions_; }
    // Messages and choice questions as "title: text".
    const std::vector<std::string>& messages() const { return messages_; }
    std::size_t answersLeft() const { return answers_.size(); }

private:
    std::deque<std::string> answers_;
    std::deque<Choice> choices_;
    std::vector<Question> questions_;
    std::vector<std::string> messages_;
};

}  // namespace orvane
