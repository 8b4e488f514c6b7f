#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

#include "shell/kit/combo_box.h"
#include "shell/kit/data_control.h"
#include "shell/kit/data_grid.h"
#include "shell/kit/navigation_bar.h"
#include "shell/kit/resizer.h"

namespace menus {

// The copy of a workbook's menu into MENULER: the sheet (Adodc1) beside the
// program's menu of the same month (Adodc2). Form13 sets the workbook's
// path in Text3 and the sheet's name in Text4, then presses Command1,
// which loads the sheet and offers the month of its first row.
class Form15 : public QWidget {
    Q_OBJECT
public:
    Form15();

    kit::ComboBox* Combo2;  // the month being copied; filters both grids
    kit::ComboBox* Combo1;  // hidden: turns a month number into a list position
    kit::DataControl Adodc1;
    kit::NavigationBar* Adodc1Bar;
    kit::DataGrid* DataGrid1;
    kit::DataControl Adodc2;
    kit::NavigationBar* Adodc2Bar;
    kit::DataGrid* DataGrid2;
    QPushButton* Command2;
    QPushButton* Command1;  // hidden: pressed by Form13
    QLineEdit* Text1;       // hidden: days of the chosen month
    QLineEdit* Text2;       // hidden: the chosen month's number
    QLineEdit* Text3;       // hidden: the workbook's path
    QLineEdit* Text4;       // hidden: the sheet's name without "$"
    kit::Resizer* Resizer1;

    void Command1_Click();
    void Command2_Click();
    void Combo2_Click();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void copyRows(bool noonFromOgle);
};

}  // namespace menus
