#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "reports/report_window.h"
#include "shell/kit/combo_box.h"

namespace menus {

// The month menu print ("Aylık Yemek Menüsü"): the month chosen in Combo1
// is folded from MENULER, four rows a day, into the scratch table TMPMENU,
// one row a day, and the report yemekmenusu prints TMPMENU in the viewer.
// Every handler but Form_Unload is bare: a failure ends the program.
class Form16 : public reports::ReportWindow {
    Q_OBJECT
public:
    Form16();

    QLabel* Label1;
    kit::ComboBox* Combo1;  // the twelve months in calendar order
    QLineEdit* Text1;       // hidden: the chosen month's number
    QPushButton* Command1;  // hidden "GÖSTER": fills TMPMENU
    QPushButton* Command2;  // hidden "DURDUR": creates TMPMENU

    void Form_Load();
    void Combo1_Click();
    void Command1_Click();
    void Command2_Click();

protected:
    void Form_Unload() override;
};

}  // namespace menus
