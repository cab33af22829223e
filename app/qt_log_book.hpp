#pragma once
// The log-book seam for the desktop: every event is handed on as a Qt
// signal. Emitted from a worker thread it is queued to the receiver's thread,
// so the lines of a calculation reach the log-book window in the order they
// were produced while the calculation still runs.
#include <QObject>

#include "core/log_book.hpp"

Q_DECLARE_METATYPE(orvane::LogEvent)

namespace orvane::app {

class QtLogBook final : public QObject, public LogBook {
    Q_OBJECT
public:
    explicit QtLogBook(QObject* parent = nullptr);
    void record(const LogEvent& event) override;

signals:
    void eventRecorded(const orvane::LogEvent& event);
};

}  // namespace orvane::app
