#pragma once
// The help window: the pages of the documentation, carried inside the
// program as resources (":/help/<page>.md"), shown with their links.
#include <QStringList>
#include <QTextBrowser>

namespace orvane::app {

inline constexpr const char* kNoHelpMessage =
    "Unable to display Help Contents. There is no Help associated with this project.";

// The pages the program carries, by file name ("cli.md", ...), sorted.
QStringList helpPages();

class HelpWindow final : public QTextBrowser {
    Q_OBJECT
public:
    // Opens on `page` (a name from helpPages()), or on the contents page.
    explicit HelpWindow(const QString& page = {}, QWidget* parent = nullptr);
    void showPage(const QString& page);
    void showContents();
};

}  // namespace orvane::app
