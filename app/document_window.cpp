#include "app/document_window.hpp"

#include <QFont>
#include <QTextDocument>

#include "app/log_book_window.hpp"
#include "app/rich_text_file.hpp"
#include "core/atomic_file.hpp"
#include "core/text.hpp"
#include "core/user_error.hpp"

namespace orvane::app {

namespace {

// Bytes shown per turn of the event loop: large enough to load tens of
// megabytes in seconds, small enough to keep each turn short.
constexpr std::size_t kPieceBytes = 256 * 1024;
// Rich-text files are converted whole; larger ones are refused.
constexpr std::uintmax_t kMaxRichTextBytes = 64u << 20;

void useFixedFont(QPlainTextEdit& editor) {
    QFont font("Monospace");
    font.setStyleHint(QFont::TypeWriter);
    editor.setFont(font);
    editor.setLineWrapMode(QPlainTextEdit::NoWrap);
}

}  // namespace

DocumentWindow::DocumentWindow(const QString& caption, const QString& text, QWidget* parent) : QPlainTextEdit(parent) {
    useFixedFont(*this);
    setWindowTitle(caption);
    setPlainText(text);
}

DocumentWindow::DocumentWindow(const std::filesystem::path& file, QWidget* parent) : QPlainTextEdit(parent), file_(file) {
    useFixedFont(*this);
    setWindowTitle(QString::fromStdString(file.string()));
    if (toLower(file.extension().string()) == ".rtf") {
        setPlainText(QString::fromStdString(plainTextOfRichText(readTextFile(file, kMaxRichTextBytes))));
        QTimer::singleShot(0, this, &DocumentWindow::loaded);
        return;
    }
    stream_ = std::make_unique<std::ifstream>(file, std::ios::binary);
    if (!*stream_) throw UserError("Error in opening file", file.string() + ": cannot be opened");
    setReadOnly(true);
    pieceTimer_.setInterval(0);
    connect(&pieceTimer_, &QTimer::timeout, this, &DocumentWindow::loadNextPiece);
    pieceTimer_.start();
}

void DocumentWindow::loadNextPiece() {
    std::string piece(kPieceBytes, '\0');
    stream_->read(piece.data(), static_cast<std::streamsize>(piece.size()));
    piece.resize(static_cast<std::size_t>(stream_->gcount()));
    // End the piece at a line break so that appendPlainText's paragraphs are the file's lines.
    if (stream_->good()) {
        std::string rest;
        std::getline(*stream_, rest);
        piece += rest;
    } else if (!piece.empty() && piece.back() == '\n') {
        piece.pop_back();
    }
    if (!piece.empty() || stream_->good()) {
        if (!piece.empty() && piece.back() == '\r') piece.pop_back();
        QString text = QString::fromUtf8(piece.data(), static_cast<qsizetype>(piece.size()));
        text.remove('\r');
        appendPlainText(text);
    }
    if (!stream_->good()) {
        pieceTimer_.stop();
        stream_.reset();
        setReadOnly(false);
        document()->setModified(false);
        moveCursor(QTextCursor::Start);
        emit loaded();
    }
}

void DocumentWindow::saveTo(const std::filesystem::path& path) {
    saveDocumentText(*document(), path);
    document()->setModified(false);
}

}  // namespace orvane::app
