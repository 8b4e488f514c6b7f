#include "reports/engine/report.h"

#include <stdexcept>
#include <utility>

#include "reports/engine/page_builder.h"
#include "reports/engine/report_runner.h"

namespace engine {

Report::Report(ReportDefinition definition, QObject* parent)
    : QObject(parent),
      DataControl1(definition_.dataControl),
      definition_(std::move(definition)),
      runner_(std::make_unique<ReportRunner>(*this)) {}

// REQUIRES: the report's layout is not on the stack (unload() waits for it).
Report::~Report() = default;

// Names are matched as the original matches them, without regard to case.
Control& Report::control(QStringView name) {
    for (Band& band : definition_.bands) {
        for (Control& control : band.controls) {
            if (control.name.compare(name, Qt::CaseInsensitive) == 0)
                return control;
        }
    }
    throw std::out_of_range("the report has no control named " + name.toString().toStdString());
}

void Report::Run() {
    if (layingOut_)
        throw std::logic_error("a report cannot be run from inside its own events");
    runner_->stop();
    if (!builder_)
        beginRun();
    layOut(QDeadlineTimer(QDeadlineTimer::Forever));
}

void Report::start() {
    if (builder_ || done_)
        return;
    beginRun();
    runner_->start();
}

void Report::Stop() {
    if (!builder_)
        return;
    runner_->stop();
    if (layingOut_) {
        stopPending_ = true;
        return;
    }
    endRun();
}

void Report::Restart() {
    Stop();
    if (layingOut_) {
        restartPending_ = true;
        return;
    }
    beginRun();
    runner_->start();
}

bool Report::running() const {
    return builder_ != nullptr;
}

bool Report::step(qint64 budgetMs) {
    if (layingOut_)
        throw std::logic_error("a report cannot be laid out from inside its own events");
    if (!builder_)
        return false;
    return layOut(QDeadlineTimer(budgetMs));
}

void Report::beginRun() {
    pages_.clear();
    done_ = false;
    builder_ = std::make_unique<PageBuilder>(*this);
}

// Lays out record after record until the deadline passes (one record at
// least), the data ends or a handler stops the report; then does what was
// asked of the report while it was busy. True while the run goes on.
bool Report::layOut(const QDeadlineTimer& deadline) {
    layingOut_ = true;
    bool more = false;
    try {
        do {
            more = builder_->next();
        } while (more && !stopPending_ && !deadline.hasExpired());
    } catch (...) {
        layingOut_ = false;
        abandonRun();
        throw;
    }
    layingOut_ = false;
    if (!more || stopPending_) {
        stopPending_ = false;
        endRun();
    }
    settle();
    return running();
}

void Report::addPage(Page page) {
    pages_.push_back(std::move(page));
    emit pageAdded(static_cast<int>(pages_.size()) - 1);
}

void Report::endRun() {
    runner_->stop();
    builder_.reset();
    done_ = true;
    emit finished();
}

// A failure ends the run where it stood: the finished pages stay, and no
// finished() is emitted, since the run did not come to an end of its own.
void Report::abandonRun() {
    runner_->stop();
    builder_.reset();
    stopPending_ = false;
    restartPending_ = false;
    if (deletePending_)
        deleteLater();
}

// What an unload or a Restart from inside the layout asked for, now that
// the builder is off the stack.
void Report::settle() {
    if (deletePending_) {
        restartPending_ = false;
        deleteLater();
        return;
    }
    if (restartPending_) {
        restartPending_ = false;
        beginRun();
        runner_->start();
    }
}

void unload(Report* report) {
    if (report == nullptr)
        return;
    int cancel = 0;
    report->ActiveReport_QueryClose(cancel, 1);
    if (cancel != 0)
        return;
    report->Stop();
    if (report->layingOut_) {
        report->deletePending_ = true;
        return;
    }
    delete report;
}

}  // namespace engine
