#pragma once

#include <QObject>
#include <QTimer>

namespace engine {

class Report;

// Runs a report in slices on the one user-interface thread: a zero-interval
// timer lays out for a short time budget, returns to the event loop so the
// window keeps painting and answering, and comes back. The budget grows
// after the first slice, which only has to bring the first page. A failure
// in a slice goes to the run-time error report.
class ReportRunner : public QObject {
    Q_OBJECT
public:
    explicit ReportRunner(Report& report);
    void start();
    void stop();
    bool running() const { return timer_.isActive(); }

private:
    void slice();

    Report& report_;
    QTimer timer_;
    qint64 budgetMs_;
};

}  // namespace engine
