#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

#include "shell/kit/combo_box.h"
#include "shell/kit/file_boxes.h"

namespace menus {

// The first step of the workbook import: the user walks to a workbook,
// picks one of its sheets and goes on to Form15 with the path and the
// sheet's name.
class Form13 : public QWidget {
    Q_OBJECT
public:
    Form13();

    kit::DriveListBox* Drive1;
    kit::DirListBox* Dir1;
    kit::FileListBox* File1;
    QLineEdit* Text1;  // hidden: the chosen workbook's full path
    kit::ComboBox* Combo1;
    QPushButton* Command2;
    QPushButton* Command3;
    QPushButton* Command1;  // hidden

    void Form_Load();
    void Drive1_Change();
    void Dir1_Change();
    void File1_Click();
    void Text1_Change();
    void Command1_Click();
    void Command2_Click();
    void Command3_Click();
};

}  // namespace menus
