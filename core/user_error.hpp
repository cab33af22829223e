#pragma once
// The error a user-level operation reports: a title naming what was being done
// ("Error in Main", "Error in real CF main program", ...) and the message the
// user reads. Numeric routines never throw it; they return neutral values and
// the operation that called them decides what to tell the user.
#include <optional>
#include <stdexcept>
#include <string>

namespace orvane {

// Where in a text file a problem was found (1-based line number).
struct FileLocation {
    std::string file;
    int line = 0;
};

class UserError : public std::runtime_error {
public:
    UserError(std::string title, const std::string& message,
              std::optional<FileLocation> where = std::nullopt)
        : std::runtime_error(message), title_(std::move(title)), where_(std::move(where)) {}

    const std::string& title() const { return title_; }
    const std::optional<FileLocation>& where() const { return where_; }
    // "file:line: message" when the location is known, else the message.
    std::string describe() const {
        if (!where_) return what();
        return where_->file + ":" + std::to_string(where_->line) + ": " + what();
    }

private:
    std::string title_;
    std::optional<FileLocation> where_;
};

}  // namespace orvane
