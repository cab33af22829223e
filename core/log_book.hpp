#pragma once
// The log book: the running record into which every calculation appends its
// progress lines and results. Calculations see only this seam; the terminal,
// the tests and the desktop program each provide an implementation.
#include <filesystem>
#include <fstream>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

class LogBook {
public:
    virtual ~LogBook() = default;
    // Appends the text and a line break.
    virtual void appendLine(std::string_view line) = 0;
};

// Keeps the lines in memory (tests, and documents built before display).
class MemoryLogBook final : public LogBook {
public:
    void appendLine(std::string_view line) override { lines_.emplace_back(line); }
    const std::vector<std::string>& lines() const { return lines_; }
    std::string text() const;  // all lines joined by '\n', with a final '\n'
    bool contains(std::string_view fragment) const;
    void clear() { lines_.clear(); }

private:
    std::vector<std::string> lines_;
};

// Writes each line to a stream (the terminal's standard output).
class StreamLogBook final : public LogBook {
public:
    explicit StreamLogBook(std::ostream& out) : out_(out) {}
    void appendLine(std::string_view line) override;

private:
    std::ostream& out_;
};

// Appends each line to a file, flushing after every line so that a crash keeps
// everything logged so far.
class FileLogBook final : public LogBook {
public:
    explicit FileLogBook(const std::filesystem::path& path);  // throws UserError if unopenable
    void appendLine(std::string_view line) override;

private:
    std::ofstream out_;
};

// A line of 55 '#', the separator the log book uses between runs.
std::string logSeparatorLine();

}  // namespace orvane
