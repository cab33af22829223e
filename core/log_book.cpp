#include "core/log_book.hpp"

#include <ostream>

#include "core/user_error.hpp"

namespace orvane {

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

void StreamLogBook::appendLine(std::string_view line) { out_ << line << '\n' << std::flush; }

FileLogBook::FileLogBook(const std::filesystem::path& path) : out_(path, std::ios::app) {
    if (!out_) throw UserError("Log Book", "Cannot open the log file " + path.string());
}

void FileLogBook::appendLine(std::string_view line) { out_ << line << '\n' << std::flush; }

std::string logSeparatorLine() { return std::string(55, '#'); }

}  // namespace orvane
