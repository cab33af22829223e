#pragma once
// The log book: a rich-text document window, caption "Log Book", into which
// every calculation appends its lines. Clearing asks first and keeps a backup
// ("~Logbook.rtf" in the per-user data folder) that "Recover" opens again as
// "Old Log Book", also after a restart. The content can be saved as HTML,
// plain text, rich text or PDF, and printed.
#include <QString>
#include <QTextEdit>
#include <filesystem>
#include <optional>

#include "core/log_book.hpp"
#include "interactive/asker.hpp"

class QPrinter;

namespace orvane::app {

inline constexpr const char* kLogBookCaption = "Log Book";
inline constexpr const char* kOldLogBookCaption = "Old Log Book";
inline constexpr const char* kLogBookBackupName = "~Logbook.rtf";
inline constexpr const char* kClearLogBookTitle = "Clear Log Book";
inline constexpr const char* kClearLogBookQuestion = "Clear the Log Book now without saving its content?";

class LogBookWindow final : public QTextEdit {
    Q_OBJECT
public:
    explicit LogBookWindow(std::filesystem::path dataFolder, QWidget* parent = nullptr);

    // "Orvane Log Book started on " date " at " time, then the line of 55 '#'.
    void startRecord();
    void appendLine(const QString& line);
    // Lines and warnings are appended (warnings in dark red); progress is not.
    void appendEvent(const orvane::LogEvent& event);
    QString plainContent() const { return toPlainText(); }

    // Asks kClearLogBookQuestion; on Yes saves the backup, empties the window
    // and restarts the record ("... cleared and re-started on ..."). True when cleared.
    bool clearAsking(Asker& asker);
    // The backup's text, or std::nullopt when there is none.
    std::optional<QString> backupContent() const;
    std::filesystem::path backupPath() const { return dataFolder_ / kLogBookBackupName; }

    // Writes the content in the form the suffix names: .html/.htm, .rtf, .pdf, else plain text.
    // Through a temporary file and a rename; throws UserError naming the file.
    void saveTo(const std::filesystem::path& path) const;
    void printTo(QPrinter& printer) const;

private:
    void appendStamp(const char* opening);
    std::filesystem::path dataFolder_;
};

// Writes `text` (UTF-8) in the form the suffix of `path` names; shared by the log book and document windows.
void saveDocumentText(const QTextDocument& document, const std::filesystem::path& path);

}  // namespace orvane::app
