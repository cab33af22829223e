#include "app/help_window.hpp"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QFile>
#include <QUrl>

namespace orvane::app {

namespace {

constexpr const char* kHelpRoot = ":/help";

QString pageTitle(const QString& page) {
    QFile file(QString(kHelpRoot) + '/' + page);
    if (!file.open(QIODevice::ReadOnly)) return page;
    const QString first = QString::fromUtf8(file.readLine()).trimmed();
    return first.startsWith('#') ? first.mid(first.indexOf(' ') + 1) : page;
}

}  // namespace

QStringList helpPages() {
    QStringList pages = QDir(kHelpRoot).entryList({"*.md"}, QDir::Files, QDir::Name);
    return pages;
}

HelpWindow::HelpWindow(const QString& page, QWidget* parent) : QTextBrowser(parent) {
    setWindowTitle("Orvane Help");
    // Links between pages are followed here; others go to the desktop's browser.
    setOpenLinks(false);
    connect(this, &QTextBrowser::anchorClicked, this, [this](const QUrl& url) {
        if (url.isRelative() && url.path().endsWith(".md"))
            showPage(QFileInfo(url.path()).fileName());
        else if (url.isRelative() && url.hasFragment())
            scrollToAnchor(url.fragment());
        else
            QDesktopServices::openUrl(url);
    });
    if (page.isEmpty())
        showContents();
    else
        showPage(page);
}

void HelpWindow::showPage(const QString& page) {
    setSource(QUrl(QString("qrc") + kHelpRoot + '/' + page), QTextDocument::MarkdownResource);
}

void HelpWindow::showContents() {
    QString markdown = "# Orvane documentation\n\n";
    for (const QString& page : helpPages()) markdown += "- [" + pageTitle(page) + "](" + page + ")\n";
    setMarkdown(markdown);
}

}  // namespace orvane::app
