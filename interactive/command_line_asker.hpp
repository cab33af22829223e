#pragma once
// The asker of a command-line command that is not a dialog (run, batch,
// eigen, sm): standard input is never read, so nothing can wait for an
// answer. Messages go to a stream; a question takes the next answer given
// in advance on the command line, and a question without one is refused
// with a UserError that quotes it, so the command ends with a non-zero exit.
#include <deque>
#include <iosfwd>
#include <string>
#include <vector>

#include "interactive/asker.hpp"

namespace orvane {

class CommandLineAsker final : public Asker {
public:
    explicit CommandLineAsker(std::ostream& out, std::vector<std::string> answers = {},
                              std::vector<Choice> choices = {});
    std::optional<std::string> askLine(const Question& question) override;
    void showMessage(std::string_view title, std::string_view text) override;
    // Buttons::Ok shows the message; other questions take the next choice
    // given in advance or are refused.
    Choice askChoice(std::string_view title, std::string_view text, Buttons buttons) override;

private:
    std::ostream& out_;
    std::deque<std::string> answers_;
    std::deque<Choice> choices_;
};

}  // namespace orvane
