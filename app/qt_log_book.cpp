#include "app/qt_log_book.hpp"

namespace orvane::app {

QtLogBook::QtLogBook(QObject* parent) : QObject(parent) { qRegisterMetaType<orvane::LogEvent>(); }

void QtLogBook::record(const LogEvent& event) { emit eventRecorded(event); }

}  // namespace orvane::app
