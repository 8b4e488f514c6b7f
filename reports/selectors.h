#pragma once

#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>

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
    explicit MonthSelector(const QString& caption);
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
    explicit DaySelector(const QString& caption);
    // The date-picked event: shows the window's report.
    virtual void takvim_Change() = 0;
};

class Form2 : public MonthSelector {
    Q_OBJECT
public:
    Form2();
    QLineEdit* Text2;

protected:
    void showMonthReport() override;
    void Form_Unload() override;
};

class Form3 : public MonthSelector {
    Q_OBJECT
public:
    Form3();

protected:
    void showMonthReport() override;
    void Form_Unload() override;
};

class Form5 : public MonthSelector {
    Q_OBJECT
public:
    Form5();

protected:
    void showMonthReport() override;
    void Form_Unload() override;
};

class Form4 : public DaySelector {
    Q_OBJECT
public:
    Form4();

protected:
    void takvim_Change() override;
    void Form_Unload() override;
};

class Form6 : public DaySelector {
    Q_OBJECT
public:
    Form6();

protected:
    void takvim_Change() override;
    void Form_Unload() override;
};

}  // namespace reports
