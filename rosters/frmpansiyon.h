#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QWidget>

#include "rosters/boarder_filters.h"
#include "shell/kit/combo_box.h"
#include "shell/kit/data_control.h"
#include "shell/kit/data_grid.h"
#include "shell/kit/navigation_bar.h"
#include "shell/kit/resizer.h"

namespace rosters {

// The boarders' roster, Pansiyon, in one grid whose cells can be corrected:
// narrowed by sex and by a room or one of three search boxes, with the count
// of what is shown, the current row's photograph, the building that follows
// from the sex in every row written, and the photo finder on a double click
// in the RESIM column.
class frmpansiyon : public QWidget {
    Q_OBJECT
public:
    frmpansiyon();

    kit::DataControl Adodc1;
    kit::NavigationBar* Adodc1Bar;
    kit::DataGrid* TDBGrid1;
    QGroupBox* Frame3;
    QRadioButton* Option1;
    QRadioButton* Option2;
    QRadioButton* Option3;
    QLabel* Label15;
    QLineEdit* Text11;
    QLabel* Label14;
    kit::ComboBox* Combo1;
    QLabel* Label13;
    QLineEdit* Text10;
    QLabel* Label12;
    QLineEdit* Text9;
    QLabel* Label1;  // the grid's column after a double click
    QLabel* Label2;  // the count line
    QLabel* Label3;
    QLabel* Label4;
    QLabel* Label5;
    QLabel* Image1;
    kit::Resizer* Resizer1;

    void Form_Load();
    void Option1_Click();
    void Option2_Click();
    void Option3_Click();
    void Combo1_Click();
    void Text10_Change();
    void Text9_Change();
    void Text11_Change();
    void TDBGrid1_DblClick();
    void TDBGrid1_RowColChange();
    // The building rule, before an edited row is written.
    void TDBGrid1_BeforeUpdate();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildSearchFrame();
    void writeCount();
    // The sex option, looked at in the order Kız, Erkek, Tümü.
    Sex chosenSex() const;
    void applyFilter(const QString& fragment);
    void odalistesi(Sex sex);
};

}  // namespace rosters
