#pragma once

#include <string_view>

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QWidget>

#include "shell/kit/combo_box.h"
#include "shell/kit/data_control.h"
#include "shell/kit/data_grid.h"
#include "shell/kit/resizer.h"

namespace menus {

// The window in which the office prepares a month's menu by hand: it makes
// the month's day blocks in MENULER, shows them, writes the dishes used so
// far into them from four pick lists, and clears or deletes a month. The
// controls stand where the designed window has them; Resizer1 scales them
// with the window, so the window has no resize handling of its own.
class menuhazirla : public QWidget {
    Q_OBJECT
public:
    menuhazirla();

    // The grid's rows: the whole table, narrowed to a month by its filter.
    kit::DataControl Adodc1{QStringLiteral("select* from menuler"), QStringLiteral("Menü listesi"),
                            this};

    kit::ComboBox* Combo1;
    QPushButton* Command1;
    QPushButton* Command2;
    QPushButton* Command3;  // hidden
    QPushButton* Command4;

    // Which meal is being edited.
    QGroupBox* Frame1;
    QRadioButton* Option1;
    QRadioButton* Option2;
    QRadioButton* Option3;
    QRadioButton* Option4;
    QRadioButton* Option5;

    // The dishes used so far, one list a meal, each under its label.
    QLabel* Label1;
    QLabel* Label2;
    QLabel* Label3;
    QLabel* Label4;
    QListWidget* List1;
    QListWidget* List2;
    QListWidget* List3;
    QListWidget* List4;
    QLabel* Label5;

    // Hidden: the number of days of the chosen month, and its number.
    QLineEdit* Text1;
    QLineEdit* Text2;

    kit::DataGrid* TDBGrid1;
    kit::Resizer* Resizer1;

    void Form_Load();
    void Combo1_Click();
    void Command1_Click();
    void Command2_Click();
    void Command3_Click();
    void Command4_Click();
    void List1_DblClick();
    void List2_DblClick();
    void List3_DblClick();
    void List4_DblClick();
    void Option1_Click();
    void Option2_Click();
    void Option3_Click();
    void Option4_Click();
    void Option5_Click();
    void TDBGrid1_Click();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void placeControls();
    void placeMealChoice();
    void placePickLists();
    void connectHandlers();
    void fillPickList(QListWidget* list, std::u16string_view query, std::u16string_view column,
                      bool fromFirstRow);
    void pickDish(QListWidget* list, std::u16string_view column);
    void showMeal(int column);
    void showAllMeals();
};

}  // namespace menus
