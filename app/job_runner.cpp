#include "app/job_runner.hpp"

#include <exception>

#include "core/user_error.hpp"

namespace orvane::app {

namespace {

// The job's view of the log book: passes every event on, reports progress to
// the runner and unwinds the job once Cancel was pressed.
class JobLogBook final : public LogBook {
public:
    JobLogBook(LogBook& target, const std::atomic<bool>& cancel, std::function<void(const LogEvent&)> onProgress)
        : target_(target), cancel_(cancel), onProgress_(std::move(onProgress)) {}
    void record(const LogEvent& event) override {
        if (cancel_) throw JobCancelled{};
        if (event.kind == LogEventKind::Progress) onProgress_(event);
        target_.record(event);
    }

private:
    LogBook& target_;
    const std::atomic<bool>& cancel_;
    std::function<void(const LogEvent&)> onProgress_;
};

}  // namespace

JobRunner::JobRunner(LogBook& log, QObject* parent) : QObject(parent), log_(log) {
    qRegisterMetaType<orvane::app::JobEnd>();
}

JobRunner::~JobRunner() {
    cancel();
    wait();
}

bool JobRunner::start(const QString& name, Work work) {
    if (worker_) return false;
    name_ = name;
    cancelRequested_ = false;
    end_ = JobEnd::Completed;
    message_.clear();
    worker_ = QThread::create([this, work = std::move(work)] {
        JobLogBook log(log_, cancelRequested_, [this](const LogEvent& event) {
            emit progressed(QString::fromStdString(event.text), event.done, event.total);
        });
        try {
            work(log);
            if (cancelRequested_) end_ = JobEnd::Cancelled;
        } catch (const JobCancelled&) {
            end_ = JobEnd::Cancelled;
        } catch (const UserError& error) {
            end_ = JobEnd::Failed;
            message_ = QString::fromStdString(error.title() + ": " + error.describe());
        } catch (const std::exception& error) {
            end_ = JobEnd::Failed;
            message_ = QString::fromStdString(error.what());
        }
    });
    connect(worker_, &QThread::finished, this, &JobRunner::workerDone, Qt::QueuedConnection);
    emit started(name_);
    worker_->start();
    return true;
}

void JobRunner::workerDone() {
    if (!worker_) return;
    worker_->wait();
    worker_->deleteLater();
    worker_ = nullptr;
    emit finished(name_, end_, message_);
}

void JobRunner::wait() {
    if (worker_) worker_->wait();
    workerDone();
}

}  // namespace orvane::app
