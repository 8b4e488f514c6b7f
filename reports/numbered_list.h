#pragma once

#include "reports/engine/report.h"
#include "reports/report_window.h"

namespace reports {

// What the five period lists share: a title in the page header, numbered
// Detail rows, and the row counter behind the numbers. The counter is the
// report object's own, a 16-bit Integer from 0, never reset within a run:
// the 32,768th row overflows and the run fails.
class NumberedList : public engine::Report {
    Q_OBJECT
public:
    void ActiveReport_FetchData(bool& eof) override;

protected:
    NumberedList(engine::ReportDefinition definition, QObject* parent);

    engine::Control* Label7;  // the title
    engine::Control* Field4;  // the row number

private:
    qint16 counter_ = 0;
};

// A list of its own class: a close request stops and drops the class's
// default instance, every error ignored.
template <class Self>
class ListReport : public NumberedList {
public:
    void ActiveReport_QueryClose(int& /*cancel*/, int /*closeMode*/) override {
        releaseReport<Self>();
    }

protected:
    ListReport(engine::ReportDefinition definition, QObject* parent)
        : NumberedList(std::move(definition), parent) {}
};

// The layout of the permit list, and the one the four lists of the meal
// log share, each with the source its design carries.
engine::ReportDefinition permitListDesign();
engine::ReportDefinition mealListDesign();

// The present year as the lists compare it: from the clock, at the moment
// the report starts.
QString presentYear();

// The text of a month or day window's choice as a title shows it.
QString upperCase(const QString& text);

}  // namespace reports
