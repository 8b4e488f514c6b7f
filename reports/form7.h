#pragma once

#include <QLabel>
#include <QLineEdit>

#include "reports/report_window.h"
#include "shell/kit/combo_box.h"
#include "shell/kit/data_control.h"
#include "shell/kit/data_grid.h"

namespace reports {

// The monthly tally ("Puantaj"): the month chosen in Combo1 is counted from
// the meal log YEMEK into the scratch table TMP, one row per day, and the
// report puantaj prints TMP with its sums. No menu item opens it.
class Form7 : public ReportWindow {
    Q_OBJECT
public:
    Form7();

    QLabel* Label1;
    kit::ComboBox* Combo1;
    QLineEdit* Text1;  // the month's number, as the counting reads it
    QLineEdit* Text2;  // the general total that the report prints

    // Data controls, open as long as the window lives: the counting's
    // query, TMP to be written (kept sorted by day), TMP for the total.
    kit::DataControl Adodc1{QStringLiteral("select* from yemek"), QStringLiteral("Adodc1"), this};
    kit::DataControl temp{QStringLiteral("tmp"), QStringLiteral("temp"), this};
    kit::DataControl Adodc2{QStringLiteral("select* from tmp"), QStringLiteral("Adodc2"), this};
    // Working views of the three, with no logic of their own.
    kit::DataGrid* DataGrid1;
    kit::DataGrid* DataGrid2;
    kit::DataGrid* DataGrid3;

    void Form_Load();
    void Combo1_Click();
    // What a choice does before the report: the month's number into Text1,
    // the month counted into TMP, the general total into Text2.
    void Tally();

protected:
    void Form_Unload() override;
};

}  // namespace reports
