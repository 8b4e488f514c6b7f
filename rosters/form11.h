#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

#include "shell/kit/combo_box.h"
#include "shell/kit/data_control.h"
#include "shell/kit/data_grid.h"
#include "shell/kit/navigation_bar.h"
#include "shell/kit/resizer.h"

namespace rosters {

// The grid column of the picture path in both roster editors.
inline constexpr int RESIM_KOLONU = 7;

// The day students' roster, ORNEK, in one editable grid: narrowed by class
// or by one of four search boxes, the position in the record set in the
// navigation bar, the current row's photograph beside it, and the photo
// finder on a double click in the RESIM column.
class Form11 : public QWidget {
    Q_OBJECT
public:
    Form11();

    kit::DataControl Adodc1;  // the roster
    kit::NavigationBar* Adodc1Bar;
    kit::DataGrid* DataGrid1;
    kit::DataControl Adodc2;  // the classes; out of sight with DataGrid2
    kit::DataGrid* DataGrid2;
    QGroupBox* Frame3;
    QLabel* Label3;
    QLineEdit* Text23;
    QLabel* Label15;
    QLineEdit* Text11;
    QLabel* Label14;
    kit::ComboBox* Combo1;
    QLabel* Label13;
    QLineEdit* Text10;
    QLabel* Label12;
    QLineEdit* Text9;
    QPushButton* Command2;  // hidden: reloads the roster for the search boxes
    QLabel* Image1;
    QLabel* Label4;
    QLabel* Label2;
    QLabel* Label1;
    kit::Resizer* Resizer1;

    void Form_Load();
    void Adodc1_MoveComplete();
    void Combo1_Click();
    void Text10_Change();
    void Text9_Change();
    void Text11_Change();
    void Text23_Change();
    void Command2_Click();
    void DataGrid1_DblClick();
    void DataGrid1_RowColChange();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildSearchFrame();
};

}  // namespace rosters
