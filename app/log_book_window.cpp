#include "app/log_book_window.hpp"

#include <QFile>
#include <QPdfWriter>
#include <QPrinter>
#include <QScrollBar>
#include <QTextCursor>
#include <QTextDocumentWriter>

#include "app/rich_text_file.hpp"
#include "core/atomic_file.hpp"
#include "core/number_format.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane::app {

namespace {

std::string lowerSuffix(const std::filesystem::path& path) { return toLower(path.extension().string()); }

}  // namespace

LogBookWindow::LogBookWindow(std::filesystem::path dataFolder, QWidget* parent)
    : QTextEdit(parent), dataFolder_(std::move(dataFolder)) {
    setWindowTitle(kLogBookCaption);
    setObjectName("logBook");
    setAcceptRichText(true);
    setLineWrapMode(QTextEdit::NoWrap);
    QFont font("Monospace");
    font.setStyleHint(QFont::TypeWriter);
    setFont(font);
}

void LogBookWindow::appendStamp(const char* opening) {
    const std::tm now = localNow();
    appendLine(QString::fromStdString(std::string(opening) + formatDate(now) + " at " + formatTime(now)));
    appendLine(QString::fromStdString(logSeparatorLine()));
}

void LogBookWindow::startRecord() { appendStamp("Orvane Log Book started on "); }

void LogBookWindow::appendLine(const QString& line) {
    QScrollBar* bar = verticalScrollBar();
    const bool atEnd = bar->value() == bar->maximum();
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(line + '\n', QTextCharFormat());
    if (atEnd) bar->setValue(bar->maximum());
}

void LogBookWindow::appendEvent(const orvane::LogEvent& event) {
    if (!isPrintedEvent(event)) return;
    const QString text = QString::fromStdString(event.text);
    if (event.kind != LogEventKind::Warning) {
        appendLine(text);
        return;
    }
    QTextCursor cursor(document());
    cursor.movePosition(QTextCursor::End);
    QTextCharFormat warning;
    warning.setForeground(QColor(160, 0, 0));
    cursor.insertText(text, warning);
    cursor.insertText("\n", QTextCharFormat());
}

bool LogBookWindow::clearAsking(Asker& asker) {
    if (asker.askChoice(kClearLogBookTitle, kClearLogBookQuestion, Buttons::YesNoCancel) != Choice::Yes) return false;
    std::filesystem::create_directories(dataFolder_);
    writeFileAtomically(backupPath(), richTextOf(toPlainText().toStdString()));
    clear();
    appendStamp("Orvane Log Book cleared and re-started on ");
    return true;
}

std::optional<QString> LogBookWindow::backupContent() const {
    std::error_code error;
    if (!std::filesystem::is_regular_file(backupPath(), error)) return std::nullopt;
    return QString::fromStdString(plainTextOfRichText(readTextFile(backupPath(), 64u << 20)));
}

void saveDocumentText(const QTextDocument& document, const std::filesystem::path& path) {
    const std::string suffix = lowerSuffix(path);
    if (suffix == ".pdf") {
        // QPdfWriter writes the file itself: write beside it, then rename.
        const auto temporary = std::filesystem::path(path.string() + ".part");
        {
            QPdfWriter writer(QString::fromStdString(temporary.string()));
            document.print(&writer);
        }
        std::error_code error;
        std::filesystem::rename(temporary, path, error);
        if (error) {
            std::filesystem::remove(temporary, error);
            throw UserError("Error in saving", path.string() + ": cannot be written");
        }
        return;
    }
    std::string content;
    if (suffix == ".html" || suffix == ".htm")
        content = document.toHtml().toStdString();
    else if (suffix == ".rtf")
        content = richTextOf(document.toPlainText().toStdString());
    else
        content = document.toPlainText().toStdString();
    writeFileAtomically(path, content);
}

void LogBookWindow::saveTo(const std::filesystem::path& path) const { saveDocumentText(*document(), path); }

void LogBookWindow::printTo(QPrinter& printer) const { document()->print(&printer); }

}  // namespace orvane::app
