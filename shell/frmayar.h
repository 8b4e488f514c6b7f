#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

#include "shell/kit/bound_text_box.h"
#include "shell/kit/data_control.h"
#include "shell/kit/masked_box.h"

namespace shell {

// The settings ("Ayarlar"): the one row of AYAR, that is the hours of the
// three meals for the gate program, the school's and its heads' names, and
// the password, shown in plain text and stored scrambled. KAYDET writes the
// row; TEMİZLE empties the boxes and writes nothing. Closing the window
// gives the main window the school's name as the file now holds it.
//
// There is no check of what is typed: the masks take any four digits
// ("99:99"), and an unfilled box is stored with its prompts. KAYDET and
// TEMİZLE are bare (a failure ends the program); loading and closing pass
// failures over, statement by statement.
class FRMAYAR : public QWidget {
    Q_OBJECT
public:
    FRMAYAR();

    kit::DataControl Adodc1{QStringLiteral("AYAR"), QString(), this};

    QGroupBox* Frame1;  // the meal hours
    QLabel* Label6;
    QLabel* Label2;
    QLabel* Label1;
    // Start of breakfast, lunch and dinner, then their ends.
    kit::MaskedBox* MaskEdBox1;
    kit::MaskedBox* MaskEdBox2;
    kit::MaskedBox* MaskEdBox3;
    kit::MaskedBox* MaskEdBox4;
    kit::MaskedBox* MaskEdBox5;
    kit::MaskedBox* MaskEdBox6;
    QLabel* Label8;
    QLabel* Label9;
    QLabel* Label10;

    QGroupBox* Frame2;  // the institution
    QLabel* Label3;
    QLabel* Label4;
    QLabel* Label5;
    kit::BoundTextBox* Text6;  // OKUL
    kit::BoundTextBox* Text7;  // MRD
    kit::BoundTextBox* Text8;  // MDRYRD

    QGroupBox* Frame3;  // the password
    QLabel* Label7;
    QLineEdit* Text4;  // not bound: SIFRE is written scrambled
    QLabel* Label11;

    QPushButton* Command1;  // KAYDET
    QPushButton* Command2;  // TEMİZLE

    void Form_Load();
    void Command1_Click();
    void Command2_Click();
    void Form_Unload();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void placeControls();
    void connectHandlers();
};

}  // namespace shell
