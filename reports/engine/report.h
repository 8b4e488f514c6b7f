#pragma once

#include <memory>
#include <vector>

#include <QDeadlineTimer>
#include <QObject>
#include <QString>
#include <QStringView>

#include "reports/engine/display_list.h"
#include "reports/engine/report_definition.h"

namespace engine {

class PageBuilder;
class ReportRunner;

// A report object: a definition and the report's handlers, which a report
// class overrides under the names of the events. The controls and
// DataControl1 are the definition's own; handlers change them while the
// report runs and the pages show what they held at each moment.
//
// A run goes: ActiveReport_ReportStart; DataControl1's Source is opened;
// the first page begins (PageHeader_Format, the page header, the group
// header); then for each record ActiveReport_FetchData with EOF clear, the
// bound fields take the record's values, Detail_Format, the Detail band is
// placed (a full page ends with its footer and a new page begins with
// PageHeader_Format); when the data ends ActiveReport_FetchData with EOF
// set, GroupFooter1_Format, the group footer and the last page footer. A
// handler that sets EOF itself ends the data there.
//
// A failure in a handler or in the data leaves the run through the caller
// of Run or through the runner (the run-time error report). A report class
// calls its ActiveReport_Initialize at the end of its constructor, since the
// event comes when the object is made.
class Report : public QObject {
    Q_OBJECT
public:
    explicit Report(ReportDefinition definition, QObject* parent = nullptr);
    ~Report() override;

    // The control of the given name in any band. REQUIRES: the design has it.
    Control& control(QStringView name);
    ReportDataControl& DataControl1;
    const ReportDefinition& definition() const { return definition_; }

    // Runs the report to its end at once, without showing it (the
    // original's Run): a run under way in slices is finished, otherwise a
    // new one begins. Throws what a handler or the data throws; the pages
    // finished until then stay and the run is over. Called from inside the
    // report's own handlers it throws std::logic_error.
    void Run();
    // Begins a run in slices on the event loop (see ReportRunner); pages are
    // announced as they are finished. A failure goes to the run-time error
    // report, as an unhandled error of the report's handlers does. A run
    // under way goes on, and a report that has run keeps its pages: starting
    // it again does nothing.
    void start();
    // Ends a running report; the pages finished so far stay, the one being
    // filled is dropped, finished() is emitted. Without a run it does
    // nothing. From inside a handler the record under way is laid out
    // first.
    void Stop();
    // Drops the pages and runs again from the start, in slices, on the same
    // object: its handlers run again.
    void Restart();
    bool running() const;
    bool done() const { return done_; }

    // The finished pages (the original's Pages collection).
    const std::vector<Page>& pages() const { return pages_; }

    // Lays out until the deadline (a QDeadlineTimer's remaining time, in ms)
    // passes or the report ends; true while more remains. The runner calls
    // it. Throws what a handler or the data throws, and std::logic_error when
    // called from inside the report's own handlers.
    bool step(qint64 budgetMs);
    // Whether the report's layout is on the stack: a handler runs, or a
    // message box opened by one is being answered.
    bool layingOut() const { return layingOut_; }

    // Events, under the system's names. The base does nothing.
    virtual void ActiveReport_Initialize() {}
    virtual void ActiveReport_ReportStart() {}
    virtual void ActiveReport_FetchData(bool& eof) { (void)eof; }
    virtual void PageHeader_Format() {}
    virtual void Detail_Format() {}
    virtual void GroupFooter1_Format() {}
    virtual void ActiveReport_QueryClose(int& cancel, int closeMode) {
        (void)cancel, (void)closeMode;
    }
    virtual void ActiveReport_ToolbarClick(const QString& toolCaption) { (void)toolCaption; }

signals:
    void pageAdded(int index);
    void finished();  // the run ended, at the end of the data or by Stop

private:
    friend class PageBuilder;
    friend void unload(Report* report);
    void beginRun();
    bool layOut(const QDeadlineTimer& deadline);
    void addPage(Page page);
    void endRun();
    void abandonRun();
    void settle();

    ReportDefinition definition_;
    std::unique_ptr<PageBuilder> builder_;  // the run under way, or null
    std::unique_ptr<ReportRunner> runner_;  // its slices on the event loop
    std::vector<Page> pages_;
    bool done_ = false;
    // Laying out runs the report's handlers, and one of them may open a
    // message box whose event loop lets the user stop, restart or unload
    // the report meanwhile. The builder under way is not torn down then:
    // what was asked is done when the layout returns.
    bool layingOut_ = false;
    bool stopPending_ = false;
    bool restartPending_ = false;
    bool deletePending_ = false;
};

// The original's Unload of a report object: asks it to close
// (ActiveReport_QueryClose with close mode 1, from code) and, unless the
// handler cancels, stops it and deletes it. Null does nothing.
//
// The report is deleted at once, so that code which assigns a new report
// next never finds the old one. Only while its layout is on the stack (a
// message box of one of its handlers lets the user choose again) is it
// stopped now and deleted with deleteLater() when the layout returns.
void unload(Report* report);

}  // namespace engine
