#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QWidget>

#include "shell/kit/data_control.h"
#include "shell/kit/data_grid.h"
#include "shell/kit/resizer.h"
#include "shell/kit/web_browser.h"

namespace portal {

// "Yemek menüsü aktarımı": the e-Okul portal in a browser, and the month's
// menu from MENULER written into the text areas of the portal page the
// clerk has opened, one meal at a time. The clerk logs in, chooses the month
// in the page and saves it with the portal's own button; the program only
// reads the page's month list and writes its text areas.
class Form12 : public QWidget {
    Q_OBJECT
public:
    Form12();

    kit::WebBrowser* wb;

    // The menu beside the page; Fetch month narrows it to the page's month.
    kit::DataControl Adodc1{QStringLiteral("select* from menuler"), QStringLiteral("Adodc1"), this};
    kit::DataGrid* TDBGrid1;

    // The meal that MENÜ AKTAR transfers; "Tümü" transfers none.
    QGroupBox* Frame1;
    QRadioButton* Option1;
    QRadioButton* Option2;
    QRadioButton* Option3;
    QRadioButton* Option4;
    QRadioButton* Option5;

    QPushButton* Command1;
    QPushButton* Command2;
    QPushButton* Command3;
    QPushButton* cmdsabah;
    QPushButton* cmdogle;
    QPushButton* cmdaksam;
    QPushButton* cmdara;

    QLineEdit* Text1;  // the month's number of days, for the eye only
    QLineEdit* Text2;  // the month read from the page; empty when none is
    QLabel* Label1;
    // The designed window has two resizers over the same controls; one
    // does the work of both.
    kit::Resizer* Resizer1;

    void Form_Load();
    void Command1_Click();
    void Command2_Click();
    void Command3_Click();
    void cmdsabah_Click();
    void cmdogle_Click();
    void cmdaksam_Click();
    void cmdara_Click();
    void Option1_Click() {}
    void Option2_Click() {}
    void Option3_Click() {}
    void Option4_Click() {}
    void Option5_Click();

private:
    void placeControls();
    void placeMealButtons();
    void connectHandlers();
    void transferMeal(int position, std::u16string_view column);
    void moveToFirstRecord();
};

}  // namespace portal
