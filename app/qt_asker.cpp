#include "app/qt_asker.hpp"

#include <QApplication>
#include <QInputDialog>
#include <QMessageBox>
#include <QThread>

namespace orvane::app {

namespace {

QString qtText(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

QMessageBox::StandardButtons standardButtons(Buttons buttons) {
    switch (buttons) {
    case Buttons::Ok: return QMessageBox::Ok;
    case Buttons::OkCancel: return QMessageBox::Ok | QMessageBox::Cancel;
    case Buttons::YesNo: return QMessageBox::Yes | QMessageBox::No;
    case Buttons::YesNoCancel: return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case Buttons::AbortRetryIgnore: return QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore;
    }
    return QMessageBox::Ok;
}

// A closed dialog (Escape, the window's close button) answers as Cancel would.
Choice choiceOf(int button, Buttons buttons) {
    switch (button) {
    case QMessageBox::Ok: return Choice::Ok;
    case QMessageBox::Yes: return Choice::Yes;
    case QMessageBox::No: return Choice::No;
    case QMessageBox::Abort: return Choice::Abort;
    case QMessageBox::Retry: return Choice::Retry;
    case QMessageBox::Ignore: return Choice::Ignore;
    case QMessageBox::Cancel: return Choice::Cancel;
    default: return cautiousChoice(buttons);
    }
}

}  // namespace

QtAsker::QtAsker(QWidget* dialogParent) : parent_(dialogParent) {}

template <typename Result, typename Dialog>
Result QtAsker::onInterfaceThread(Dialog dialog) {
    if (QThread::currentThread() == thread()) return dialog();
    Result result{};
    QMetaObject::invokeMethod(this, [&] { result = dialog(); }, Qt::BlockingQueuedConnection);
    return result;
}

std::optional<std::string> QtAsker::askLine(const Question& question) {
    return onInterfaceThread<std::optional<std::string>>([&]() -> std::optional<std::string> {
        bool ok = false;
        const QString answer = QInputDialog::getText(parent_, qtText(question.title.empty() ? "Orvane" : question.title),
                                                     qtText(question.prompt), QLineEdit::Normal,
                                                     qtText(question.defaultAnswer), &ok);
        if (!ok) return std::nullopt;
        if (answer.isEmpty()) return question.defaultAnswer;
        return answer.toStdString();
    });
}

void QtAsker::showMessage(std::string_view title, std::string_view text) {
    onInterfaceThread<bool>([&] {
        QMessageBox::information(parent_, qtText(title), qtText(text));
        return true;
    });
}

Choice QtAsker::askChoice(std::string_view title, std::string_view text, Buttons buttons) {
    return onInterfaceThread<Choice>([&] {
        QMessageBox box(QMessageBox::Question, qtText(title), qtText(text), standardButtons(buttons), parent_);
        return choiceOf(box.exec(), buttons);
    });
}

}  // namespace orvane::app
