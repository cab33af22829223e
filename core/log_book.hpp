#pragma once
// The log book: the running record into which every calculation reports what
// it does. A calculation emits structured events (a log line, a warning, the
// progress of a long stage), each with the category of work it belongs to;
// appendLine is the convenience for a plain log line. Calculations see only
// this seam; the terminal, the tests, the desktop program and the Python
// binding each provide an implementation (CallbackLogBook hands every event to
// a function).
#include <filesystem>
#include <fstream>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

enum class LogCategory { General, Tables, FreeIon, CrystalField, Parameters, Fit, Files, Run };

enum class LogEventKind {
    Line,      // a line of the record
    Warning,   // something the user should notice; printed as a line
    Progress,  // `done` of `total` steps of the stage `text` are finished
};

struct LogEvent {
    LogEventKind kind = LogEventKind::Line;
    LogCategory category = LogCategory::General;
    std::string text;  // the line, the warning, or the name of the stage
    int done = 0;      // progress only
    int total = 0;     // progress only
};

class LogBook {
public:
    virtual ~LogBook() = default;
    // Receives every event.
    virtual void record(const LogEvent& event) = 0;

    // A log line (the text and a line break).
    void appendLine(std::string_view line, LogCategory category = LogCategory::General) {
        record({LogEventKind::Line, category, std::string(line), 0, 0});
    }
    // Several lines at once, separated by '\n' (no final break). A log book
    // that writes a stream may take them in one piece; by default each line
    // is recorded on its own.
    virtual void appendBlock(std::string_view lines, LogCategory category = LogCategory::General);
    void warn(LogCategory category, std::string_view text) {
        record({LogEventKind::Warning, category, std::string(text), 0, 0});
    }
    void progress(LogCategory category, std::string_view stage, int done, int total) {
        record({LogEventKind::Progress, category, std::string(stage), done, total});
    }
};

// Whether a line-oriented log book prints the event: lines and warnings are
// printed as their text, progress is not.
bool isPrintedEvent(const LogEvent& event);

// Keeps the lines in memory (tests, and documents built before display), and
// every event.
class MemoryLogBook final : public LogBook {
public:
    void record(const LogEvent& event) override;
    const std::vector<std::string>& lines() const { return lines_; }
    const std::vector<LogEvent>& events() const { return events_; }
    std::string text() const;  // all lines joined by '\n', with a final '\n'
    bool contains(std::string_view fragment) const;
    void clear() {
        lines_.clear();
        events_.clear();
    }

private:
    std::vector<std::string> lines_;
    std::vector<LogEvent> events_;
};

// Writes each line to a stream (the terminal's standard output).
class StreamLogBook final : public LogBook {
public:
    explicit StreamLogBook(std::ostream& out) : out_(out) {}
    void record(const LogEvent& event) override;

private:
    std::ostream& out_;
};

// Appends each line to a file, flushing after every line so that a crash keeps
// everything logged so far.
class FileLogBook final : public LogBook {
public:
    explicit FileLogBook(const std::filesystem::path& path);  // throws UserError if unopenable
    void record(const LogEvent& event) override;

private:
    std::ofstream out_;
};

// Hands every event to a function (the desktop program, the Python binding).
class CallbackLogBook final : public LogBook {
public:
    explicit CallbackLogBook(std::function<void(const LogEvent&)> sink) : sink_(std::move(sink)) {}
    void record(const LogEvent& event) override {
        if (sink_) sink_(event);
    }

private:
    std::function<void(const LogEvent&)> sink_;
};

// Discards every event.
class NullLogBook final : public LogBook {
public:
    void record(const LogEvent&) override {}
};

// A line of 55 '#', the separator the log book uses between runs.
std::string logSeparatorLine();

}  // namespace orvane
