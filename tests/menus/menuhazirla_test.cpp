// The menu preparation window driven as the office uses it, on a copy of the
// school's file: making a month's day blocks, filling them from the pick
// lists, clearing and deleting, the meal options and the weekday tool tip.

#include <algorithm>
#include <array>

#include <QHelpEvent>
#include <QTest>
#include <QToolTip>

#include "menus/menuhazirla.h"
#include "shell/clock.h"
#include "shell/form1.h"
#include "shell/kit/value_text.h"
#include "shell/window_registry.h"
#include "store/jet/database.h"
#include "tests/reports/report_reading.h"
#include "tests/shell/window_driver.h"

namespace {

using menus::menuhazirla;
using reports::testing::exported;
using reports::testing::pick;
using windows::testing::MessageBoxAnswerer;
using windows::testing::SchoolWindowTest;

const QString kClearQuestion = QStringLiteral(
    "Bu ay için önceden menü listesi oluşturulmuş\nlisteyi temizlemek istermisiniz?");
const QString kDeleteMonth = QStringLiteral("Seçili ay menüsü tamamen silinsin mi?");
const QString kDeleteAll = QStringLiteral("Tüm menüler tamamen silinsin mi?");
const QString kYes = QStringLiteral("Evet");

class MenuPreparation : public SchoolWindowTest {
protected:
    // The window as the main window's menu item opens it.
    menuhazirla& open() {
        shell::instance<shell::Form1>().mnhzirla->trigger();
        EXPECT_TRUE(shell::isLoaded<menuhazirla>());
        menuhazirla& window = shell::instance<menuhazirla>();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        return window;
    }

    // Closing unloads the window: the next opening starts anew.
    menuhazirla& reopen() {
        shell::instance<menuhazirla>().close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_FALSE(shell::isLoaded<menuhazirla>());
        return open();
    }

    // The MENULER rows of a month, or of all, as our engine reads them: ay,
    // gun, then the meals, Null as "(Null)" so that an unset cell and "" differ.
    std::vector<QStringList> stored(int month = 0) const {
        std::vector<QStringList> rows;
        for (const auto& row :
             jet::testing::readRows(jet::Database(folder_->database().string()), u"MENULER")) {
            QStringList cells;
            for (const jet::Value& value : row)
                cells << (value.isNull() ? QStringLiteral("(Null)") : kit::displayText(value));
            if (month == 0 || cells[0] == QString::number(month))
                rows.push_back(cells);
        }
        return rows;
    }

    // What somebody else's reader finds of a month: its gun column in order.
    QStringList exportedDays(int month) const {
        QStringList days;
        for (const QStringList& row : exported(folder_->database(), "MENULER")) {
            if (row[0] == QString::number(month))
                days << row[1];
        }
        return days;
    }

    // Rows of 30 November with these mornings alone, before the window opens.
    void addMornings(std::initializer_list<std::u16string_view> mornings) {
        std::vector<std::vector<jet::Value>> rows;
        for (const std::u16string_view sabah : mornings)
            rows.push_back({jet::Value::integer(11), jet::Value::integer(30),
                            jet::Value::text(std::u16string(sabah)), jet::Value(), jet::Value(),
                            jet::Value()});
        jet::Database(folder_->database().string(), jet::PageFile::Mode::ReadWrite)
            .insertRows(u"MENULER", rows);
    }

    static void clickCell(kit::DataGrid* grid, int row, int column) {
        const QModelIndex cell = grid->model().index(row, column);
        grid->scrollTo(cell);
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(cell).center());
    }

    static void doubleClick(QListWidget* list, const QString& entry) {
        const QList<QListWidgetItem*> items = list->findItems(entry, Qt::MatchExactly);
        ASSERT_FALSE(items.isEmpty()) << entry.toStdString();
        list->scrollToItem(items.first());
        const QPoint at = list->visualItemRect(items.first()).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
    }

    static void press(QPushButton* button, const QString& answer, const QStringList& questions) {
        MessageBoxAnswerer answerer(answer);
        QTest::mouseClick(button, Qt::LeftButton);
        EXPECT_EQ(answerer.seen, questions);
    }

    // Chooses a month and deletes its rows.
    static void deleteMonth(menuhazirla& window, const QString& month) {
        pick(window.Combo1, month);
        press(window.Command4, kYes, {kDeleteMonth});
    }

    static qsizetype entries(QListWidget* list, const QString& entry) {
        return list->findItems(entry, Qt::MatchExactly).size();
    }
};

TEST_F(MenuPreparation, MakesClearsAndDeletesMonths) {
    shell::setTodayForTests(QDate(2026, 11, 15));
    const std::size_t fixtureRows = stored().size();
    menuhazirla& window = open();
    EXPECT_EQ(window.Combo1->itemText(0), QStringLiteral("EYLÜL"));
    EXPECT_EQ(window.Combo1->itemText(11), QStringLiteral("AĞUSTOS"));
    EXPECT_FALSE(window.Text1->isVisible() || window.Text2->isVisible() ||
                 window.Command3->isVisible());
    EXPECT_EQ(window.TDBGrid1->model().rowCount(), static_cast<int>(fixtureRows));

    // April: 30 day blocks of four rows, in order, with only ay and gun set.
    pick(window.Combo1, QStringLiteral("NİSAN"));
    EXPECT_EQ(window.Text2->text(), QStringLiteral("4"));
    EXPECT_EQ(window.Text1->text(), QStringLiteral("30"));
    EXPECT_EQ(window.TDBGrid1->model().rowCount(), 0);
    press(window.Command1, kYes, {});
    EXPECT_EQ(window.TDBGrid1->model().rowCount(), 120);
    QStringList days;
    for (int row = 0; row < 120; ++row)
        days << QString::number(row / 4 + 1);
    EXPECT_EQ(exportedDays(4), days);
    for (const QStringList& row : stored(4))
        EXPECT_EQ(row.mid(2), QStringList(4, QStringLiteral("(Null)")));
    EXPECT_EQ(window.TDBGrid1->columnText(0), QStringLiteral("NİSAN"));

    // A month with rows asks first: No keeps them, Yes puts "" in every meal
    // of the month's rows and keeps the rows.
    pick(window.Combo1, QStringLiteral("KASIM"));
    const std::vector<QStringList> november = stored(11);
    ASSERT_EQ(november.size(), 120U);
    press(window.Command1, QStringLiteral("Hayır"), {kClearQuestion});
    EXPECT_EQ(stored(11), november);
    press(window.Command1, kYes, {kClearQuestion});
    std::vector<QStringList> cleared = november;
    for (QStringList& row : cleared)
        row = row.mid(0, 2) + QStringList(4, QString());
    EXPECT_EQ(stored(11), cleared);
    EXPECT_EQ(stored().size(), fixtureRows + 120);

    // February follows the clock's year: 29 days in a leap year, else 28.
    deleteMonth(window, QStringLiteral("ŞUBAT"));
    EXPECT_TRUE(stored(2).empty());
    EXPECT_EQ(stored(11).size(), 120U);
    for (const auto& [year, days] : {std::pair{2028, 29}, {2027, 28}}) {
        shell::setTodayForTests(QDate(year, 1, 10));
        press(window.Command1, kYes, {});
        EXPECT_EQ(window.Text1->text(), QString::number(days)) << year;
        EXPECT_EQ(exportedDays(2).size(), 4 * days) << year;
        EXPECT_EQ(exportedDays(2).last(), QString::number(days)) << year;
        press(window.Command4, kYes, {kDeleteMonth});
    }

    // With no month chosen every row is in view: Command1 clears all of
    // them, Command4 deletes all of them.
    menuhazirla& fresh = reopen();
    press(fresh.Command1, kYes, {kClearQuestion});
    for (const QStringList& row : stored())
        EXPECT_EQ(row.mid(2), QStringList(4, QString()));
    press(fresh.Command4, QStringLiteral("Hayır"), {kDeleteAll});
    EXPECT_FALSE(stored().empty());
    press(fresh.Command4, kYes, {kDeleteAll});
    EXPECT_TRUE(exported(folder_->database(), "MENULER").empty());

    // An empty table and no month: Text1 becomes "0", no row, no question.
    press(fresh.Command1, kYes, {});
    EXPECT_EQ(fresh.Text1->text(), QStringLiteral("0"));
    EXPECT_TRUE(stored().empty());
}

TEST_F(MenuPreparation, PicksDishesIntoTheCurrentRow) {
    addMornings({u"  SİMİT ", u""});
    menuhazirla& window = open();
    // Whole cells, once each, sorted; "" is an entry, Null is none.
    EXPECT_EQ(window.List1->item(0)->text(), QString());
    EXPECT_EQ(entries(window.List1, QStringLiteral("  SİMİT ")), 1);
    EXPECT_EQ(entries(window.List4, QStringLiteral("PATLAMIŞ MISIR,PORTAKAL")), 1);
    EXPECT_EQ(entries(window.List2, QStringLiteral("TAVUK SOTE")), 1);

    // A pick into a month without rows has no row to write into: the handler
    // has no error handling, so the run-time error report ends the program.
    pick(window.Combo1, QStringLiteral("MART"));
    ASSERT_EQ(window.TDBGrid1->model().rowCount(), 0);
    EXPECT_EXIT(
        {
            MessageBoxAnswerer answerer;
            doubleClick(window.List1, QStringLiteral("ÇAY"));
        },
        ::testing::ExitedWithCode(1), "Run-time error");

    // July's rows are made empty, and shown with a bare month number.
    pick(window.Combo1, QStringLiteral("TEMMUZ"));
    press(window.Command1, kYes, {});
    kit::DataGrid* grid = window.TDBGrid1;
    EXPECT_EQ(grid->columnText(0), QStringLiteral("7"));
    const auto sabah = [&](int row) {
        return grid->model().data(grid->model().index(row, 2), Qt::DisplayRole).toString();
    };

    // Under "Sabah" the current cell is the one written: the first pick
    // alone and trimmed, the second joined by "," with no blank.
    clickCell(grid, 1, 2);
    doubleClick(window.List1, QStringLiteral("  SİMİT "));
    EXPECT_EQ(sabah(1), QStringLiteral("SİMİT"));
    doubleClick(window.List1, QStringLiteral("ÇAY"));
    EXPECT_EQ(sabah(1), QStringLiteral("SİMİT,ÇAY"));
    // An empty entry does nothing; the other meals' lists are switched off.
    doubleClick(window.List1, QString());
    EXPECT_EQ(sabah(1), QStringLiteral("SİMİT,ÇAY"));
    EXPECT_FALSE(window.List2->isEnabled());
    doubleClick(window.List2, QStringLiteral("TAVUK SOTE"));

    // The pick is an edit of the row: written when the grid leaves the row.
    EXPECT_EQ(stored(7)[1][2], QStringLiteral("(Null)"));
    clickCell(grid, 2, 2);
    EXPECT_EQ(stored(7)[1].mid(2).join(u'|'), QStringLiteral("SİMİT,ÇAY|(Null)|(Null)|(Null)"));

    // Under "Tümü" the test looks at the current cell while the write goes
    // to the list's own column: from a filled SABAH cell a pick into the
    // empty ÖĞLEN begins with ",", from an empty cell it replaces.
    window.Option5->setChecked(true);
    EXPECT_TRUE(window.List2->isEnabled());
    clickCell(grid, 1, 2);
    doubleClick(window.List2, QStringLiteral("TAVUK SOTE"));
    clickCell(grid, 3, 3);
    EXPECT_EQ(stored(7)[1][3], QStringLiteral(",TAVUK SOTE"));
    clickCell(grid, 3, 4);
    doubleClick(window.List1, QStringLiteral("ÇAY"));
    doubleClick(window.List1, QStringLiteral("PEYNİR"));
    clickCell(grid, 0, 4);
    EXPECT_EQ(stored(7)[3][2], QStringLiteral("PEYNİR"));

    // The lists are filled when the window opens: a deleted dish stays in
    // them until then.
    deleteMonth(window, QStringLiteral("TEMMUZ"));
    deleteMonth(window, QStringLiteral("KASIM"));
    EXPECT_EQ(entries(window.List1, QStringLiteral("  SİMİT ")), 1);
    EXPECT_EQ(entries(reopen().List1, QStringLiteral("  SİMİT ")), 0);
}

TEST_F(MenuPreparation, MealOptionsToolTipsAndScaling) {
    shell::setTodayForTests(QDate(2026, 11, 15));
    menuhazirla& window = open();
    kit::DataGrid* grid = window.TDBGrid1;
    const std::array<QListWidget*, 4> lists = {window.List1, window.List2, window.List3,
                                               window.List4};

    // The hidden Command3: the weekday of 3 February 2020, a Monday.
    press(window.Command3, QStringLiteral("Tamam"), {QStringLiteral("Pzt")});

    // Each meal option shows its column alone beside AY and GÜN, as wide as
    // the grid less 2500 twips, and leaves its pick list alone enabled.
    // "Tümü" shows them all and leaves their widths while not maximised.
    const std::array<QRadioButton*, 5> options = {window.Option1, window.Option2, window.Option3,
                                                  window.Option4, window.Option5};
    EXPECT_TRUE(window.Option1->isChecked());
    const int wide = kit::twipsToPixels(grid->width() * 15 - 2500);
    for (const int meal : {3, 2, 1, 0, 4}) {
        SCOPED_TRACE(meal);
        const bool all = meal == 4;
        options.at(meal)->setChecked(true);
        for (int column = 0; column < 6; ++column)
            EXPECT_EQ(grid->isColumnHidden(column), !all && column >= 2 && column != meal + 2)
                << column;
        EXPECT_EQ(grid->columnWidth(all ? 2 : meal + 2), wide);
        for (int list = 0; list < 4; ++list)
            EXPECT_EQ(lists.at(list)->isEnabled(), all || list == meal) << list;
    }
    // A filter reloads the rows and keeps the columns as the option left them.
    window.Option2->setChecked(true);
    pick(window.Combo1, QStringLiteral("KASIM"));
    EXPECT_TRUE(grid->isColumnHidden(2));
    EXPECT_FALSE(grid->isColumnHidden(3));

    // A click on a row: its weekday, Monday first, from gun, the month's name
    // and the clock's year. 2 November 2026 is a Monday.
    clickCell(grid, 4, 1);
    EXPECT_EQ(grid->toolTip(), QStringLiteral("Pzt"));
    clickCell(grid, 23, 3);
    EXPECT_EQ(grid->toolTip(), QStringLiteral("Cum"));
    QHelpEvent hover(QEvent::ToolTip, grid->visualRect(grid->model().index(0, 1)).center(),
                     grid->viewport()->mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(grid->viewport(), &hover);
    EXPECT_EQ(QToolTip::text(), QStringLiteral("Cum"));
    // August's rows show the bare number and give no weekday.
    pick(window.Combo1, QStringLiteral("AĞUSTOS"));
    press(window.Command1, kYes, {});
    EXPECT_EQ(grid->columnText(0), QStringLiteral("8"));
    clickCell(grid, 8, 1);
    EXPECT_EQ(grid->toolTip(), QString());

    // The controls keep their proportions as the window grows.
    window.Option5->setChecked(true);
    pick(window.Combo1, QStringLiteral("KASIM"));
    const QRect designedGrid = grid->geometry();
    const QRect designedOption = window.Option4->geometry();
    const QSize designed = window.size();
    window.resize(designed * 2);
    EXPECT_EQ(grid->geometry(), QRect(designedGrid.topLeft() * 2, designedGrid.size() * 2));
    EXPECT_EQ(window.Option4->geometry(),
              QRect(designedOption.topLeft() * 2, designedOption.size() * 2));
    window.resize(designed);
    EXPECT_EQ(grid->geometry(), designedGrid);
    window.Option1->setChecked(true);
    clickCell(grid, 4, 2);
    EXPECT_TRUE(window.grab().save(QStringLiteral(SOFRAVAN_SCREENSHOT_DIR "/menuhazirla.png")));

    // Maximised, "Tümü" spreads the meals over the grid's width.
    window.showMaximized();
    QTest::qWait(50);
    if (window.isMaximized()) {
        window.Option1->setChecked(true);
        window.Option5->setChecked(true);
        // A grid narrower than the subtrahend gives its columns no width.
        const int width = grid->width() * 15;
        EXPECT_EQ(grid->columnWidth(3), kit::twipsToPixels(std::max(width - 8000, 0)));
        EXPECT_EQ(grid->columnWidth(5), kit::twipsToPixels(std::max(width - 11000, 0)));
    }
}

}  // namespace
