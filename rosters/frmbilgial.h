#pragma once

#include <optional>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QString>
#include <QWidget>

#include "shell/kit/combo_box.h"
#include "shell/kit/file_boxes.h"

namespace rosters {

// Replaces both rosters, ORNEK and Pansiyon, with those of the roll-call
// program's database: the user walks to its folder, and "Bilgileri al"
// deletes the school's rows and copies the other program's in their place,
// after a copy of the school's file has been written beside it.
class frmBilgial : public QWidget {
    Q_OBJECT
public:
    frmBilgial();

    QLineEdit* Text1;  // the chosen file's full path
    kit::DriveListBox* Drive1;
    kit::DirListBox* Dir1;
    kit::FileListBox* File1;  // hidden: finds kvl.mdb in the folder
    QLabel* Label1;
    QPushButton* Command2;
    kit::ComboBox* Combo1;  // hidden, no role
    QPushButton* Command1;  // hidden, no role

    void Form_Load();
    void Drive1_Change();
    void Dir1_Change();
    void File1_Click();
    void File1_PathChange();
    void Text1_Change();
    void Command2_Click();

private:
    std::optional<QString> backUpSchoolFile(bool schoolWasOpen);
    void replaceRosters();
};

}  // namespace rosters
