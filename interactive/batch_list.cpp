#include "interactive/batch_list.hpp"

#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane {

std::vector<BatchEntry> parseBatchList(std::string_view text, const std::filesystem::path& listPath) {
    std::vector<BatchEntry> entries;
    int lineNumber = 0;
    while (!text.empty()) {
        const auto end = text.find('\n');
        const std::string_view entry = trim(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        ++lineNumber;
        if (entry.empty() || entry.front() == '#') continue;
        for (const char c : entry)
            if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
                throw UserError(ErrorCategory::File, "The path holds a control byte: " + std::string(entry),
                                FileLocation{listPath.string(), lineNumber});
        std::filesystem::path file{std::string(entry)};
        entries.push_back({file.is_relative() ? listPath.parent_path() / file : file, lineNumber});
    }
    return entries;
}

}  // namespace orvane
