#pragma once

#include <functional>

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

#include "shell/kit/data_grid.h"
#include "shell/kit/file_boxes.h"

namespace rosters {

// The dialog that walks the disks to one picture, shows it and, on "Seç",
// puts its full path into the current cell of a roster's grid. It is given
// nothing when it opens and returns nothing: it reaches over to its grid,
// whichever cell is current there at that moment. The picture stays where
// it is; only its path is stored.
class PhotoFinder : public QWidget {
    Q_OBJECT
public:
    kit::DriveListBox* Drive1;
    kit::DirListBox* Dir1;
    kit::FileListBox* File1;
    QLabel* Image1;
    QLineEdit* Text1;  // the chosen file's full path: what is stored
    QPushButton* Command2;
    QPushButton* Command1;

    void Form_Load();
    void Drive1_Change();
    void Dir1_Change();
    void File1_Click();
    void Command1_Click();
    void Command2_Click();

protected:
    // `targetGrid` finds the grid when the user confirms; `unloadSelf`
    // unloads the default instance of the concrete dialog.
    PhotoFinder(const QString& caption, const char* name,
                std::function<kit::DataGrid*()> targetGrid, std::function<void()> unloadSelf);

private:
    std::function<kit::DataGrid*()> targetGrid_;
    std::function<void()> unloadSelf_;
};

// The finder of the day students' grid, Form11's DataGrid1.
class resimbul : public PhotoFinder {
    Q_OBJECT
public:
    resimbul();
};

// The finder of the boarders' grid, frmpansiyon's TDBGrid1.
class resimbul2 : public PhotoFinder {
    Q_OBJECT
public:
    resimbul2();
};

}  // namespace rosters
