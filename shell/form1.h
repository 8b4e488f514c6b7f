#pragma once

#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QRadioButton>

#include "shell/kit/bound_text_box.h"
#include "shell/kit/combo_box.h"
#include "shell/kit/data_control.h"
#include "shell/kit/data_grid.h"
#include "shell/kit/navigation_bar.h"
#include "shell/kit/web_browser.h"

namespace shell {

// The main window: the permit registration above, the permit list below,
// the menu that opens every other window. It stays for the whole run.
class Form1 : public QMainWindow {
    Q_OBJECT
public:
    Form1();

    // Data controls, open as long as the window lives.
    kit::DataControl Adodc1{QStringLiteral("SELECT ORNEK.SINIF From ORNEK GROUP BY ORNEK.SINIF"),
                            QString(), this};
    kit::DataControl Adodc2{QStringLiteral("AYAR"), QStringLiteral("ayarlar"), this};
    kit::DataControl ornek{QStringLiteral("ORNEK"), QStringLiteral("Kayıtlı Öğrenciler"), this};
    kit::DataControl izinler{QStringLiteral("IZINLER"), QStringLiteral("YEMEK İZNİ OLANLAR"), this};

    // Hidden: the school's name for the reports, the settings row's number.
    QLineEdit* Text12;
    kit::BoundTextBox* Text13;
    kit::DataGrid* DataGrid2;
    // The update check's browser, hidden; made when the check runs, so that
    // a start without a network does not start the browser's engine.
    kit::WebBrowser* wb = nullptr;

    // Student search.
    QGroupBox* Frame3;
    kit::ComboBox* Combo1;
    QLineEdit* Text10;
    QLineEdit* Text9;
    QLineEdit* Text11;
    QLineEdit* Text23;

    // The current student.
    QGroupBox* Frame2;
    kit::BoundTextBox* Text1;
    kit::BoundTextBox* Text2;
    kit::BoundTextBox* Text5;
    kit::BoundTextBox* Text6;
    kit::BoundTextBox* Text24;
    QLabel* Image1;
    kit::NavigationBar* ornekBar;
    QPushButton* Command1;
    QLabel* Label17;
    QLabel* Label4;
    kit::ComboBox* Combo2;

    // The permit list.
    QGroupBox* Frame1;
    kit::ComboBox* Combo3;
    QLineEdit* Text3;
    QLineEdit* Text7;
    QLineEdit* Text4;
    QLineEdit* Text8;
    QRadioButton* Option1;
    QRadioButton* Option2;
    QLabel* Label16;
    QPushButton* Command5;
    QPushButton* Command4;
    kit::DataGrid* DataGrid4;
    kit::NavigationBar* izinlerBar;

    // Beyond the window's right edge: reached only by other handlers.
    QPushButton* Command2;
    QPushButton* Command3;

    // Menu items, by their names.
    QAction* ayarlar;
    QAction* ogrencial;
    QAction* pyoklama;
    QAction* gunduzluduzenle;
    QAction* yatiliduzenle;
    QAction* foto;
    QAction* mnhzirla;
    QAction* excelal;
    QAction* menu;
    QAction* kay;
    QAction* cik;
    QAction* kimlikbas;
    QAction* izinliste;
    QAction* yemekliste;
    QAction* ucret;
    QAction* gunliste;
    QAction* gunucret;
    QAction* ymenulist;
    QAction* rasyon;
    QAction* about;

    void Form_Load();
    void Form_Unload();
    void cik_Click();
    void ogrencial_Click();
    void Command2_Click();
    void Command3_Click();

    // Student search and registration.
    void Combo1_Click();
    void Text10_Change();
    void Text9_Change();
    void Text11_Change();
    void Text11_KeyPress(int keyAscii);
    void Text23_Change();
    bool izinkontrol();
    void Command1_Click();
    void Text5_Change();

    // The permit list.
    void Option1_Click();
    void Option2_Click();
    void Combo3_Click();
    void Text3_Change();
    void Text7_Change();
    void Text4_Change();
    void Text8_Change();
    void Command5_Click();
    void Command4_Click();
    void DataGrid4_Click();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildMenu();
    QWidget* buildStudentArea();
    QWidget* buildPermitArea();
    void connectHandlers();
    void loadPicture(kit::DataControl& control);
};

}  // namespace shell
