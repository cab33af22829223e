#pragma once
// Long work (runs, table generation, batches) on a worker thread, one job at
// a time. The job writes to the log book it is given; every event it records
// is passed on at once, so the log-book window shows the lines as they come.
// Cancel is checked at each event the job records (every log line and every
// progress step): the job is unwound by an exception, and the result files,
// written through temporaries, stay as they were.
#include <QObject>
#include <QString>
#include <QThread>
#include <atomic>
#include <functional>
#include <memory>

#include "core/log_book.hpp"

namespace orvane::app {

// Thrown inside a job's log book once Cancel was pressed.
struct JobCancelled {};

enum class JobEnd { Completed, Cancelled, Failed };

class JobRunner final : public QObject {
    Q_OBJECT
public:
    using Work = std::function<void(LogBook& log)>;
    // `log` receives the job's events (the desktop's QtLogBook).
    explicit JobRunner(LogBook& log, QObject* parent = nullptr);
    ~JobRunner() override;

    // Starts `work` on a worker thread; false (and nothing started) while a job runs.
    bool start(const QString& name, Work work);
    bool busy() const { return worker_ != nullptr; }
    QString currentJob() const { return name_; }
    void cancel() { cancelRequested_ = true; }
    // Waits for the running job (used when the program closes).
    void wait();

signals:
    void started(const QString& name);
    void progressed(const QString& stage, int done, int total);
    // `message`: the error's text for a failed job.
    void finished(const QString& name, orvane::app::JobEnd end, const QString& message);

private:
    void workerDone();
    LogBook& log_;
    QThread* worker_ = nullptr;
    QString name_;
    std::atomic<bool> cancelRequested_ = false;
    JobEnd end_ = JobEnd::Completed;
    QString message_;
};

}  // namespace orvane::app
