#pragma once
// The question seam answered with Qt dialogs: one-line prompts in an input
// dialog, messages and Yes/No/Cancel questions in message boxes. A question
// asked from a worker thread is put to the user on the interface thread and
// the worker waits for the answer.
#include <QObject>
#include <QPointer>
#include <QWidget>

#include "interactive/asker.hpp"

namespace orvane::app {

class QtAsker final : public QObject, public Asker {
    Q_OBJECT
public:
    explicit QtAsker(QWidget* dialogParent);
    std::optional<std::string> askLine(const Question& question) override;
    void showMessage(std::string_view title, std::string_view text) override;
    Choice askChoice(std::string_view title, std::string_view text, Buttons buttons) override;

private:
    template <typename Result, typename Dialog>
    Result onInterfaceThread(Dialog dialog);
    QPointer<QWidget> parent_;
};

}  // namespace orvane::app
