#pragma once

#include "reports/numbered_list.h"

namespace reports {

// The five lists of the office, each shown by its own selector window and
// reading that window's choice while it runs: the month's number in Text1
// and its name in Combo1, or the day in takvim.

// Who may eat in a month (Form2).
class izinliler : public ListReport<izinliler> {
public:
    explicit izinliler(QObject* parent = nullptr);
    void ActiveReport_ReportStart() override;
    void PageHeader_Format() override;
};

// Who ate in a month (Form3).
class yemekyiyenler : public ListReport<yemekyiyenler> {
public:
    explicit yemekyiyenler(QObject* parent = nullptr);
    void ActiveReport_ReportStart() override;
    void PageHeader_Format() override;
};

// Who ate without paying in a month (Form5).
class ucretvermeyen : public ListReport<ucretvermeyen> {
public:
    explicit ucretvermeyen(QObject* parent = nullptr);
    void ActiveReport_ReportStart() override;
    void PageHeader_Format() override;
};

// Who ate on a day, by class (Form4).
class gunyemek : public ListReport<gunyemek> {
public:
    explicit gunyemek(QObject* parent = nullptr);
    void ActiveReport_ReportStart() override;
    void PageHeader_Format() override;
};

// Who ate without paying on a day, by class (Form6).
class gunucret : public ListReport<gunucret> {
public:
    explicit gunucret(QObject* parent = nullptr);
    void ActiveReport_ReportStart() override;
    void PageHeader_Format() override;
};

}  // namespace reports
