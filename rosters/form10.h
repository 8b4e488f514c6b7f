#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QWidget>

#include "shell/kit/combo_box.h"
#include "shell/kit/data_control.h"
#include "shell/kit/data_grid.h"
#include "shell/kit/file_boxes.h"

namespace rosters {

// The photo workshop ("Resim işlemleri"): the day students on the left,
// narrowed by class, the pictures of a folder on the right, and three ways
// of writing a picture's full path into the students' rows: file by file in
// list order, by the school number at the start of the file name, or one
// file to the current student. No picture file is copied or renamed.
// The saving buttons are bare: a failure ends the program.
class Form10 : public QWidget {
    Q_OBJECT
public:
    Form10();

    // The students, written "ornek" as the design has it, and the classes.
    kit::DataControl Adodc1{QStringLiteral("ornek"), QString(), this};
    kit::DataControl Adodc2{QStringLiteral("SELECT DISTINCT ORNEK.SINIF\r\nFROM ORNEK\r\n"
                                           "GROUP BY ORNEK.SINIF\r\nORDER BY ORNEK.SINIF"),
                            QString(), this};

    kit::DirListBox* Dir1;
    kit::FileListBox* File1;
    QLineEdit* Text1;  // the folder, or the chosen file
    QLineEdit* Text2;  // the number of files in the folder
    kit::ComboBox* Combo1;
    QLabel* Label1;  // the number of students under the class filter
    kit::DataGrid* DataGrid1;
    QListWidget* List1;  // the numbers Command2 matched
    QPushButton* Command1;
    QPushButton* Command2;
    QPushButton* Command3;
    QLabel* Label2;
    QLineEdit* Text3;  // bound to nothing: no code reads it
    QPushButton* Command4;
    QPushButton* Command5;  // no handler

    void Form_Load();
    void Form_Unload();
    void Dir1_Change();
    void File1_Click();
    void Combo1_Click();
    void Command1_Click();
    void Command2_Click();
    void Command3_Click();
    void Command4_Click();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void placeControls();
    void connectHandlers();
    // File1's folder joined with its chosen file's name.
    QString chosenFile() const;
};

}  // namespace rosters
