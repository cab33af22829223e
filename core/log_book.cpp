#include "core/log_book.hpp"

#include <ostream>

#include "core/user_error.hpp"

namespace orvane {

bool isPrintedEvent(const LogEvent& event) { return event.kind != LogEventKind::Progress; }

void LogBook::appendBlock(std::string_view lines, LogCategory category) {
    for (std::size_t start = 0;;) {
        const auto end = lines.find('\n', start);
        appendLine(lines.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start),
                   category);
        if (end == std::string_view::npos) return;
        start = end + 1;
    }
}

void MemoryLogBook::record(const LogEvent& event) {
    events_.push_back(event);
    if (isPrintedEvent(event)) lines_.push_back(event.text);
}

std::string MemoryLogBook::text() const {
    std::string all;
    for (const auto& line : lines_) {
        all += line;
        all += '\n';
    }
    return all;
}

bool MemoryLogBook::contains(std::string_view fragment) const {
    for (const auto& line : lines_)
        if (line.find(fragment) != std::string::npos) return true;
    return false;
}

void StreamLogBook::record(const LogEvent& event) {
    if (isPrintedEvent(event)) out_ << event.text << '\n' << std::flush;
}

FileLogBook::FileLogBook(const std::filesystem::path& path) : out_(path, std::ios::app) {
    if (!out_) throw UserError(ErrorCategory::LogBook, "Cannot open the log file " + path.string());
}

void FileLogBook::record(const LogEvent& event) {
    if (isPrintedEvent(event)) out_ << event.text << '\n' << std::flush;
}

std::string logSeparatorLine() { return std::string(55, '#'); }

}  // namespace orvane
