#pragma once

#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>

#include "reports/period_lists.h"
#include "reports/report_window.h"

namespace reports {

// A window that shows a list for a month chosen in Combo1: each click on a
// month runs the list anew; Text1 carries the month's number to the report.
class MonthSelector : public ReportWindow {
    Q_OBJECT
public:
    QLabel* Label1;
    kit::ComboBox* Combo1;
    QLineEdit* Text1;

    void Form_Load();

protected:
    MonthSelector(const QString& name, const QString& caption);
    // Shows the window's report; Combo1_Click has written Text1 first.
    virtual void showMonthReport() = 0;

private:
    void Combo1_Click();
};

// A window that shows a list for the day picked in takvim.
class DaySelector : public ReportWindow {
    Q_OBJECT
public:
    QLabel* Label1;
    QDateEdit* takvim;
    QLineEdit* Text1;

    void Form_Load();

protected:
    DaySelector(const QString& name, const QString& caption);
    // The date-picked event: shows the window's report.
    virtual void takvim_Change() = 0;
};

// The selector of one list: a choice shows a fresh instance of the list,
// closing the window releases the list's default instance.
template <class ReportClass>
class MonthList : public MonthSelector {
protected:
    using MonthSelector::MonthSelector;
    void showMonthReport() override { showReport<ReportClass>(); }
    void Form_Unload() override { releaseReport<ReportClass>(); }
};

template <class ReportClass>
class DayList : public DaySelector {
protected:
    using DaySelector::DaySelector;
    void takvim_Change() override { showReport<ReportClass>(); }
    void Form_Unload() override { releaseReport<ReportClass>(); }
};

class Form2 : public MonthList<izinliler> {
public:
    Form2();
    QLineEdit* Text2;  // no logic touches it
};

class Form3 : public MonthList<yemekyiyenler> {
public:
    Form3()
        : MonthList(QStringLiteral("Form3"), QStringLiteral("Aylara göre yemek yiyenler listesi")) {
    }
};

class Form5 : public MonthList<ucretvermeyen> {
public:
    Form5()
        : MonthList(QStringLiteral("Form5"),
                    QStringLiteral("Aylara göre ücret vermeyenler listesi")) {}
};

class Form4 : public DayList<gunyemek> {
public:
    Form4()
        : DayList(QStringLiteral("Form4"), QStringLiteral("Günlere göre yemek yiyenler listesi")) {}
};

class Form6 : public DayList<gunucret> {
public:
    Form6()
        : DayList(QStringLiteral("Form6"),
                  QStringLiteral("Günlere göre ücret vermeyenler listesi")) {}
};

}  // namespace reports
