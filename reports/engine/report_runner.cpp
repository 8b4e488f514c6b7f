#include "reports/engine/report_runner.h"

#include <algorithm>

#include "reports/engine/report.h"
#include "shell/kit/failure_modes.h"

namespace engine {
namespace {

// The first slice only has to bring the first page; later ones may take
// longer, as long as the window still answers between them.
constexpr qint64 kFirstSliceMs = 15;
constexpr qint64 kLongestSliceMs = 100;

}  // namespace

ReportRunner::ReportRunner(Report& report) : report_(report), budgetMs_(kFirstSliceMs) {
    timer_.setInterval(0);
    connect(&timer_, &QTimer::timeout, this, &ReportRunner::slice);
}

void ReportRunner::start() {
    budgetMs_ = kFirstSliceMs;
    timer_.start();
}

void ReportRunner::stop() {
    timer_.stop();
}

// The timer stays off while a slice runs: a message box opened by a handler
// runs an event loop of its own, in which the timer must not fire again.
void ReportRunner::slice() {
    if (report_.layingOut())
        return;
    timer_.stop();
    bool more = false;
    kit::bare([&] { more = report_.step(budgetMs_); });
    // A Restart asked for during the slice has started the timer anew.
    if (more && !timer_.isActive()) {
        budgetMs_ = std::min(budgetMs_ * 2, kLongestSliceMs);
        timer_.start();
    }
}

}  // namespace engine
