#pragma once
// A text document window: result files (.gen, .eng, .ev), text and rich-text
// files, or a text the program shows. A file is read in pieces between turns
// of the event loop, so a state-vector file of many megabytes opens without
// freezing the window.
#include <QPlainTextEdit>
#include <QTimer>
#include <filesystem>
#include <fstream>
#include <memory>

namespace orvane::app {

class DocumentWindow final : public QPlainTextEdit {
    Q_OBJECT
public:
    // A window showing `text` under `caption`.
    DocumentWindow(const QString& caption, const QString& text, QWidget* parent = nullptr);
    // A window that loads `file` (rich text is shown as its text). Throws
    // UserError naming the file when it cannot be opened.
    explicit DocumentWindow(const std::filesystem::path& file, QWidget* parent = nullptr);

    const std::filesystem::path& filePath() const { return file_; }
    bool loading() const { return stream_ != nullptr; }
    // Writes the shown text in the form the suffix names (see saveDocumentText).
    void saveTo(const std::filesystem::path& path);

signals:
    void loaded();

private:
    void loadNextPiece();
    std::filesystem::path file_;
    std::unique_ptr<std::ifstream> stream_;
    QTimer pieceTimer_;
};

}  // namespace orvane::app
