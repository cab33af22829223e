#include "interactive/table_file_prompts.hpp"

#include <optional>
#include <string>

#include "core/text.hpp"

namespace orvane {

namespace {

// The first existing file: `file`, or the answers to `prompt`; std::nullopt
// when the user gives up.
std::optional<std::filesystem::path> existingFile(const std::filesystem::path& file, const char* prompt,
                                                  Asker& asker) {
    std::filesystem::path path = file;
    while (!std::filesystem::exists(path)) {
        const auto answer = asker.askLine({prompt, "Input Dialog Box", ""});
        if (!answer || trim(*answer).empty()) return std::nullopt;
        path = std::string(trim(*answer));
    }
    return path;
}

}  // namespace

ParentageTable ReadFractionalParentage(int n, const std::filesystem::path& file, Asker& asker) {
    const auto path = existingFile(file, "GIVE FILE NAME FOR CFP from ", asker);
    return readFractionalParentageFile(n, path ? *path : file);
}

std::vector<TermRecord> ReadStateLabels(const std::filesystem::path& file, StateLabelForm form, LogBook& log,
                                        Asker& asker, bool skipTitle) {
    const auto path = existingFile(file, "get State labels from file ", asker);
    auto parsed = readStateLabelFile(path ? *path : file, form, skipTitle);
    for (const auto& warning : parsed.warnings) asker.showMessage("Warning", warning);
    if (parsed.terms.empty()) log.appendLine("ZERO State LABELS!!!");
    return std::move(parsed.terms);
}

}  // namespace orvane
