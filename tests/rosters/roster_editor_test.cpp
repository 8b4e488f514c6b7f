// The two roster editors driven as the office uses them, on a copy of the
// school's file: their filters and counts, a cell corrected in the grid and
// read back by another reader, the building that follows a boarder's sex,
// the room list, and the photo finders putting a picture's path into the
// grid's current cell.

#include <algorithm>
#include <functional>

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QTest>

#include "rosters/form11.h"
#include "rosters/frmpansiyon.h"
#include "rosters/photo_finder.h"
#include "shell/form1.h"
#include "shell/window_registry.h"
#include "tests/reports/report_reading.h"
#include "tests/rosters/roster_testing.h"
#include "tests/shell/window_driver.h"

namespace {

using reports::testing::exported;
using reports::testing::pick;
using reports::testing::Rows;
using rosters::Form11;
using rosters::frmpansiyon;
using rosters::resimbul;
using rosters::resimbul2;
using windows::testing::MessageBoxAnswerer;
using windows::testing::SchoolWindowTest;
using windows::testing::type;
using namespace rosters::testing;

// Pansiyon's columns as mdb-export gives them.
constexpr int kPansiyonNo = 0;
constexpr int kPansiyonSoyadi = 2;
constexpr int kPansiyonOda = 3;
constexpr int kPansiyonCinsiyet = 4;
constexpr int kPansiyonOkulNo = 5;
constexpr int kPansiyonBina = 6;
constexpr int kPansiyonResim = 7;

long count(const Rows& rows, const std::function<bool(const QStringList&)>& wanted) {
    return static_cast<long>(std::count_if(rows.begin(), rows.end(), wanted));
}

class RosterEditors : public SchoolWindowTest {
protected:
    // A window as the main window's menu item opens it.
    template <class Window>
    Window& open(QAction* shell::Form1::*item) {
        (shell::instance<shell::Form1>().*item)->trigger();
        EXPECT_TRUE(shell::isLoaded<Window>());
        Window& window = shell::instance<Window>();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        return window;
    }

    Rows table(const char* name) const { return exported(folder_->database(), name); }

    // Pictures in the program's folder, where the finder's folder list
    // starts, and a file of another kind beside them.
    void addPictures() const {
        QImage face(60, 80, QImage::Format_RGB32);
        face.fill(Qt::darkCyan);
        ASSERT_TRUE(face.save(QString::fromStdString((folder_->path() / "ogrenci.jpg").string())));
        ASSERT_TRUE(
            face.save(QString::fromStdString((folder_->path() / "yeni.jpeg").string()), "JPEG"));
        ASSERT_TRUE(face.save(QString::fromStdString((folder_->path() / "logo.png").string())));
    }

    // What the finder stores for a file of the program's folder.
    QString storedPath(const char* file) const {
        return QString::fromStdString(folder_->path().string()) + QStringLiteral("\\") +
               QString::fromLatin1(file);
    }

    static void doubleClickCell(kit::DataGrid* grid, int row, int column) {
        clickCell(grid, row, column);
        const QModelIndex cell = grid->model().index(row, column);
        QTest::mouseDClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(cell).center());
    }

    // Types into a cell's editor and ends with Enter, as a user does.
    static void typeIntoCell(kit::DataGrid* grid, int row, int column, const QString& text) {
        clickCell(grid, row, column);
        grid->edit(grid->model().index(row, column));
        // The editors closed before may linger hidden until deleted.
        QLineEdit* editor = nullptr;
        for (QLineEdit* open : grid->viewport()->findChildren<QLineEdit*>()) {
            if (open->isVisible())
                editor = open;
        }
        ASSERT_NE(editor, nullptr);
        editor->selectAll();
        type(editor, text);
        QTest::keyClick(editor, Qt::Key_Return);
        // Enter commits through a queued call.
        QCoreApplication::processEvents();
    }

    static QString cell(kit::DataGrid* grid, int row, int column) {
        return grid->model().data(grid->model().index(row, column), Qt::DisplayRole).toString();
    }

    // Chooses a file in the open finder by its name.
    template <class Finder>
    static Finder& choose(const QString& file) {
        Finder& finder = shell::instance<Finder>();
        const QList<QListWidgetItem*> found = finder.File1->findItems(file, Qt::MatchExactly);
        EXPECT_EQ(found.size(), 1) << file.toStdString();
        if (!found.isEmpty())
            finder.File1->setListIndex(finder.File1->row(found.first()));
        return finder;
    }

    static void unloaded() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }
};

TEST_F(RosterEditors, DayStudentEditorFiltersEditsAndTakesAPicture) {
    const Rows students = table("ORNEK");
    const long all = static_cast<long>(students.size());
    Form11& form = open<Form11>(&shell::Form1::gunduzluduzenle);
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Gündüzlü Öğrenci Bilgileri Düzenle"));
    EXPECT_EQ(form.Adodc1.Caption(), QStringLiteral("1/%1").arg(all));
    EXPECT_EQ(
        form.DataGrid1->model().headerData(rosters::RESIM_KOLONU, Qt::Horizontal, Qt::DisplayRole),
        QStringLiteral("RESIM"));

    // "Tümü" and every class once, the empty class too, in sorted order.
    QStringList classes;
    for (const QStringList& row : students)
        classes << row[kOrnekSinif];
    classes.removeDuplicates();
    EXPECT_EQ(form.Combo1->count(), classes.size() + 1);
    EXPECT_EQ(form.Combo1->itemText(0), QString());
    EXPECT_EQ(form.Combo1->itemText(1), QStringLiteral("10A"));
    EXPECT_EQ(form.Combo1->itemText(form.Combo1->count() - 1), QStringLiteral("Tümü"));
    EXPECT_EQ(form.Combo1->currentText(), QStringLiteral("Sınıf seçiniz...."));

    // A class, then a first name: the name's filter replaces the class's,
    // and clearing the name reloads the whole table.
    const auto withCaption = [&](long rows) {
        EXPECT_EQ(form.Adodc1.Recordset().recordCount(), rows);
        EXPECT_EQ(form.Adodc1.Caption(), QStringLiteral("%1/%2").arg(rows > 0 ? 1 : -1).arg(rows));
    };
    pick(form.Combo1, QStringLiteral("9A"));
    withCaption(count(students, [](const QStringList& r) { return r[kOrnekSinif] == "9A"; }));
    type(form.Text10, QStringLiteral("me"));
    withCaption(count(students, [](const QStringList& r) {
        return r[kOrnekAdi].startsWith(QStringLiteral("Me"));
    }));
    EXPECT_GT(form.Adodc1.Recordset().recordCount(), 2);
    form.Text10->clear();
    withCaption(all);
    type(form.Text9, QStringLiteral("Akın"));
    withCaption(count(students, [](const QStringList& r) { return r[kOrnekSoyadi] == "Akın"; }));
    form.Text9->clear();

    // The identity number matches on its last digit only; digits then
    // letters filter on the digits, letters alone on 0.
    type(form.Text23, QStringLiteral("5250967884"));
    withCaption(0);
    type(form.Text23, QStringLiteral("2"));
    withCaption(1);
    EXPECT_EQ(form.DataGrid1->columnText(2), QStringLiteral("Ali"));
    type(form.Text23, QStringLiteral("x"));
    withCaption(1);
    form.Text23->setText(QStringLiteral("abc"));
    withCaption(0);
    form.Text23->clear();
    withCaption(all);
    // The school number goes in as typed: a text that breaks the filter is
    // passed over and the last filter stands.
    type(form.Text11, QStringLiteral("111"));
    withCaption(count(students, [](const QStringList& r) { return r[kOrnekNumara] == "111"; }));
    type(form.Text11, QStringLiteral(" or"));
    withCaption(count(students, [](const QStringList& r) { return r[kOrnekNumara] == "111"; }));
    form.Text11->clear();
    withCaption(all);
    pick(form.Combo1, QStringLiteral("Tümü"));
    withCaption(all);

    // A surname corrected in the grid is written when the row is left; a
    // school number that is no number is refused with the engine's words.
    typeIntoCell(form.DataGrid1, 1, 3, QStringLiteral("Işıkçı"));
    {
        MessageBoxAnswerer answerer;
        typeIntoCell(form.DataGrid1, 1, 4, QStringLiteral("12a"));
        EXPECT_EQ(answerer.seen.size(), 1);
    }
    EXPECT_EQ(cell(form.DataGrid1, 1, 4), students[1][kOrnekNumara]);
    clickCell(form.DataGrid1, 3, 0);
    EXPECT_EQ(form.Adodc1.Caption(), QStringLiteral("4/%1").arg(all));
    Rows now = table("ORNEK");
    EXPECT_EQ(now[1][kOrnekSoyadi], QStringLiteral("Işıkçı"));
    EXPECT_EQ(now[1][kOrnekNumara], students[1][kOrnekNumara]);
    now[1][kOrnekSoyadi] = students[1][kOrnekSoyadi];
    EXPECT_EQ(now, students);

    // A double click elsewhere than RESIM opens nothing; on RESIM the
    // finder comes up, and "Vazgeç" leaves the cell as it was.
    addPictures();
    doubleClickCell(form.DataGrid1, 2, 3);
    EXPECT_FALSE(shell::isLoaded<resimbul>());
    doubleClickCell(form.DataGrid1, 2, rosters::RESIM_KOLONU);
    ASSERT_TRUE(shell::isLoaded<resimbul>());
    resimbul& finder = shell::instance<resimbul>();
    EXPECT_EQ(finder.windowTitle(), QStringLiteral("Resim İşlemleri"));
    EXPECT_EQ(finder.Dir1->Path(), QString::fromStdString(folder_->path().string()));
    EXPECT_EQ(finder.File1->ListCount(), 2);  // .jpeg and .jpg, not .png
    choose<resimbul>(QStringLiteral("ogrenci.jpg"));
    EXPECT_EQ(finder.Text1->text(), storedPath("ogrenci.jpg"));
    EXPECT_FALSE(finder.Image1->pixmap().isNull());
    finder.grab().save(SOFRAVAN_SCREENSHOT_DIR "/resimbul.png");
    QTest::mouseClick(finder.Command1, Qt::LeftButton);
    unloaded();
    EXPECT_FALSE(shell::isLoaded<resimbul>());
    EXPECT_EQ(cell(form.DataGrid1, 2, rosters::RESIM_KOLONU), students[2][kOrnekResim]);

    // "Seç" puts the path into the current cell; leaving the row writes it
    // and coming back shows the picture.
    doubleClickCell(form.DataGrid1, 2, rosters::RESIM_KOLONU);
    choose<resimbul>(QStringLiteral("ogrenci.jpg"));
    QTest::mouseClick(shell::instance<resimbul>().Command2, Qt::LeftButton);
    unloaded();
    EXPECT_FALSE(shell::isLoaded<resimbul>());
    EXPECT_EQ(cell(form.DataGrid1, 2, rosters::RESIM_KOLONU), storedPath("ogrenci.jpg"));
    EXPECT_TRUE(form.Image1->pixmap().isNull());
    clickCell(form.DataGrid1, 0, 0);
    EXPECT_TRUE(form.Image1->pixmap().isNull());  // the fixture's C:\ path is not here
    EXPECT_EQ(table("ORNEK")[2][kOrnekResim], storedPath("ogrenci.jpg"));
    clickCell(form.DataGrid1, 2, 0);
    EXPECT_FALSE(form.Image1->pixmap().isNull());
    expectSound(folder_->database());
    form.grab().save(SOFRAVAN_SCREENSHOT_DIR "/Form11.png");

    // A name with an apostrophe breaks the unguarded filter: the program
    // ends through the run-time error report.
    EXPECT_EXIT(
        {
            MessageBoxAnswerer answerer;
            type(form.Text9, QStringLiteral("O'"));
        },
        ::testing::ExitedWithCode(1), "Run-time error");
}

TEST_F(RosterEditors, BoarderEditorFiltersBySexAndRoomAndKeepsTheBuilding) {
    const Rows boarders = table("Pansiyon");
    const long all = static_cast<long>(boarders.size());
    const auto of = [&](const char* sex) {
        return [sex](const QStringList& r) { return r[kPansiyonCinsiyet] == sex; };
    };
    frmpansiyon& form = open<frmpansiyon>(&shell::Form1::yatiliduzenle);
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Yatılı Öğrenci Bilgileri Düzenle"));
    EXPECT_TRUE(form.Option1->isChecked());
    const auto counted = [&](long rows) {
        EXPECT_EQ(form.Adodc1.Recordset().recordCount(), rows);
        EXPECT_EQ(form.Label2->text(), QStringLiteral("Seçili öğrenci sayısı : %1").arg(rows));
    };
    counted(all);
    EXPECT_EQ(cell(form.TDBGrid1, 0, 4), QStringLiteral("KIZ"));
    EXPECT_EQ(cell(form.TDBGrid1, 1, 4), QStringLiteral("ERKEK"));

    // The room lists: one entry for each sex and room.
    const auto rooms = [&](const char* sex) {
        QStringList list;
        for (const QStringList& row : boarders) {
            if (sex == nullptr || row[kPansiyonCinsiyet] == sex)
                list << row[kPansiyonOda];
        }
        list.removeDuplicates();
        return list.size() + 1;
    };
    EXPECT_EQ(form.Combo1->count(), rooms(nullptr));
    EXPECT_EQ(form.Combo1->currentText(), QStringLiteral("Oda no seçiniz...."));
    QTest::mouseClick(form.Option2, Qt::LeftButton);
    counted(count(boarders, of("K")));
    EXPECT_EQ(form.Combo1->count(), rooms("K"));
    EXPECT_EQ(form.Combo1->findText(QStringLiteral("110")), -1);

    // Under Kız: "Tümü" leaves the girls, a room narrows them.
    pick(form.Combo1, QStringLiteral("Tümü"));
    counted(count(boarders, of("K")));
    pick(form.Combo1, QStringLiteral("10"));
    counted(count(boarders, [](const QStringList& r) { return r[kPansiyonOda] == "10"; }));

    // Under Erkek a surname replaces the room; clearing it shows all boys.
    QTest::mouseClick(form.Option3, Qt::LeftButton);
    counted(count(boarders, of("E")));
    pick(form.Combo1, QStringLiteral("111"));
    counted(count(boarders, [](const QStringList& r) { return r[kPansiyonOda] == "111"; }));
    type(form.Text9, QStringLiteral("aslan"));
    counted(count(boarders, [](const QStringList& r) {
        return r[kPansiyonSoyadi] == "Aslan" && r[kPansiyonCinsiyet] == "E";
    }));
    EXPECT_GT(form.Adodc1.Recordset().recordCount(), 0);
    form.Text9->clear();
    counted(count(boarders, of("E")));

    // Under Tümü the school number is an equality on the number the text
    // begins with; blanks in the name box match every name.
    QTest::mouseClick(form.Option1, Qt::LeftButton);
    counted(all);
    type(form.Text11, QStringLiteral("2001"));
    counted(1);
    type(form.Text11, QStringLiteral("ab"));
    counted(1);
    form.Text11->setText(QStringLiteral("ab"));
    counted(0);
    form.Text11->clear();
    counted(all);
    type(form.Text10, QStringLiteral("   "));
    counted(all);
    form.Text10->clear();

    // A boy made a girl in the grid: the row is written with building B,
    // and a building typed by hand does not survive the write.
    const int boy = 1;  // İsmail, room 110
    ASSERT_EQ(boarders[boy][kPansiyonCinsiyet], QStringLiteral("E"));
    typeIntoCell(form.TDBGrid1, boy, 4, QStringLiteral("KIZ"));
    typeIntoCell(form.TDBGrid1, 2, 6, QStringLiteral("Z"));
    EXPECT_EQ(cell(form.TDBGrid1, 2, 6), QStringLiteral("Z"));
    {
        MessageBoxAnswerer answerer;
        typeIntoCell(form.TDBGrid1, 3, 3, QStringLiteral("12345678901"));
        EXPECT_EQ(answerer.seen.size(), 1);  // room numbers hold ten characters
    }
    clickCell(form.TDBGrid1, 5, 0);
    Rows now = table("Pansiyon");
    EXPECT_EQ(now[boy][kPansiyonCinsiyet], QStringLiteral("K"));
    EXPECT_EQ(now[boy][kPansiyonBina], QStringLiteral("B"));
    EXPECT_EQ(now[2][kPansiyonBina], QStringLiteral("A"));
    EXPECT_EQ(now[3][kPansiyonOda], boarders[3][kPansiyonOda]);
    EXPECT_EQ(cell(form.TDBGrid1, 2, 6), QStringLiteral("A"));
    now[boy][kPansiyonCinsiyet] = boarders[boy][kPansiyonCinsiyet];
    now[boy][kPansiyonBina] = boarders[boy][kPansiyonBina];
    EXPECT_EQ(now, boarders);

    // Room 110 now holds a girl and boys: Tümü lists it twice, Kız once.
    QTest::mouseClick(form.Option2, Qt::LeftButton);
    EXPECT_NE(form.Combo1->findText(QStringLiteral("110")), -1);
    QTest::mouseClick(form.Option1, Qt::LeftButton);
    EXPECT_EQ(form.Combo1->count(), rooms(nullptr) + 1);
    int entries110 = 0;
    for (int index = 0; index < form.Combo1->count(); ++index)
        entries110 += form.Combo1->itemText(index) == QStringLiteral("110") ? 1 : 0;
    EXPECT_EQ(entries110, 2);

    // A double click writes the column into Label1; on RESIM it opens the
    // finder, whose path goes into the grid's current cell and is written
    // with the row.
    addPictures();
    doubleClickCell(form.TDBGrid1, 4, 3);
    EXPECT_EQ(form.Label1->text(), QStringLiteral("3"));
    EXPECT_FALSE(shell::isLoaded<resimbul2>());
    doubleClickCell(form.TDBGrid1, 4, rosters::RESIM_KOLONU);
    EXPECT_EQ(form.Label1->text(), QStringLiteral("7"));
    ASSERT_TRUE(shell::isLoaded<resimbul2>());
    EXPECT_EQ(shell::instance<resimbul2>().windowTitle(), QStringLiteral("Resim kaydet"));
    QTest::mouseClick(choose<resimbul2>(QStringLiteral("yeni.jpeg")).Command2, Qt::LeftButton);
    unloaded();
    clickCell(form.TDBGrid1, 0, 0);
    now = table("Pansiyon");
    EXPECT_EQ(now[4][kPansiyonResim], storedPath("yeni.jpeg"));
    EXPECT_EQ(now[4][kPansiyonNo], boarders[4][kPansiyonNo]);
    EXPECT_EQ(now[4][kPansiyonOkulNo], boarders[4][kPansiyonOkulNo]);
    clickCell(form.TDBGrid1, 4, 0);
    EXPECT_FALSE(form.Image1->pixmap().isNull());
    expectSound(folder_->database());
    form.grab().save(SOFRAVAN_SCREENSHOT_DIR "/frmpansiyon.png");
}

}  // namespace
