#pragma once

#include <QObject>

#include "reports/engine/report.h"

namespace menus {

// The month's menu as printed: TMPMENU, one line a day in date order, the
// date with its weekday and the four meals of the day, each a cell of up to
// four lines, under a title naming the school and Form16's month.
class yemekmenusu : public engine::Report {
    Q_OBJECT
public:
    explicit yemekmenusu(QObject* parent = nullptr);

    void ActiveReport_ReportStart() override;
    void PageHeader_Format() override;
    void Detail_Format() override;
    void ActiveReport_QueryClose(int& cancel, int closeMode) override;

private:
    engine::Control* Label1;  // the title
};

}  // namespace menus
