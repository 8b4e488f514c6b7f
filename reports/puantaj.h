#pragma once

#include <QObject>

#include "reports/engine/report.h"

namespace reports {

// The monthly tally as printed: TMP, one row per day 1 to 31, under a title
// naming the school and Form7's month, with the column sums and the
// window's general total at the end.
class puantaj : public engine::Report {
    Q_OBJECT
public:
    explicit puantaj(QObject* parent = nullptr);

    void ActiveReport_Initialize() override;
    void ActiveReport_QueryClose(int& cancel, int closeMode) override;
    void GroupFooter1_Format() override;

    // The engine has no summary fields: the sums under SABAH, ÖĞLE and AKŞAM
    // are kept here, record by record, and written into the group footer.
    void ActiveReport_ReportStart() override;
    void Detail_Format() override;

private:
    double sabahSum_ = 0;  // Field3 of every record so far
    double ogleSum_ = 0;   // Field4
    double aksamSum_ = 0;  // Field5
};

}  // namespace reports
