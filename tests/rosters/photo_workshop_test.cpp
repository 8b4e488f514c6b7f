// The photo workshop as the office uses it: a class picked, a folder of a
// class's photographs chosen, and the paths saved by number, by position or
// one at a time, read back from the file with mdbtools.

#include <map>

#include <QApplication>
#include <QFileDialog>
#include <QImage>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include "rosters/form10.h"
#include "shell/form1.h"
#include "shell/window_registry.h"
#include "store/jet/database.h"
#include "tests/reports/report_reading.h"
#include "tests/rosters/roster_testing.h"
#include "tests/shell/window_driver.h"

// Texts in failure messages as text, not as arrays of characters.
void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace {

namespace fs = std::filesystem;
using reports::testing::exported;
using reports::testing::pick;
using reports::testing::Rows;
using windows::testing::MessageBoxAnswerer;
using windows::testing::SchoolWindowTest;
using namespace rosters::testing;

// Real JPEG files, one colour each, under the given names.
void takePictures(const fs::path& folder, const QStringList& names) {
    fs::create_directories(folder);
    int shade = 0;
    for (const QString& name : names)
        writePicture(folder / name.toStdString(), QColor::fromHsv((shade += 37) % 360, 120, 220));
}

// ORNEK's rows by their running number: a row written longer may move in
// the file, so the stored order is not kept.
using Students = std::map<QString, QStringList>;
Students bySno(const Rows& rows) {
    Students students;
    for (const QStringList& row : rows)
        students[row.value(0)] = row;
    return students;
}

// ORNEK as the file holds it now, row by row against the expected.
void expectStudents(const fs::path& database, const Students& expected) {
    const Students found = bySno(exported(database, "ORNEK"));
    EXPECT_EQ(found.size(), expected.size());
    for (const auto& [sno, row] : expected)
        EXPECT_EQ(found.count(sno) ? found.at(sno) : QStringList(), row)
            << "sno " << sno.toStdString();
}

class PhotoWorkshop : public SchoolWindowTest {
protected:
    rosters::Form10& open() {
        shell::showWindow<rosters::Form10>();
        return shell::instance<rosters::Form10>();
    }
    static void click(QAbstractButton* button) { QTest::mouseClick(button, Qt::LeftButton); }
    // A click on the file's entry in File1.
    static void chooseFile(rosters::Form10& form, const QString& name) {
        const QList<QListWidgetItem*> found = form.File1->findItems(name, Qt::MatchExactly);
        ASSERT_EQ(found.size(), 1) << name.toStdString();
        QTest::mouseClick(form.File1->viewport(), Qt::LeftButton, {},
                          form.File1->visualItemRect(found.front()).center());
    }
    // A click on a row of DataGrid1.
};

TEST_F(PhotoWorkshop, ClassFilterThenSavingByTheNumberAtTheStartOfTheName) {
    const fs::path database = folder_->database();
    const Rows before = exported(database, "ORNEK");
    const Rows nineA = classRows(before, QStringLiteral("9A"));
    ASSERT_EQ(nineA.size(), 29u);
    const QString first = nineA[0][kOrnekNumara];
    const QString second = nineA[1][kOrnekNumara];
    const QString third = nineA[2][kOrnekNumara];
    const QString last = nineA[28][kOrnekNumara];

    rosters::Form10& form = open();
    // The lists stand in the program's folder; nothing has changed yet.
    EXPECT_EQ(form.Dir1->Path(), pathText(folder_->path()));
    EXPECT_EQ(form.Text1->text(), QStringLiteral("Text1"));
    EXPECT_EQ(form.Text2->text(), QString());
    EXPECT_EQ(form.Label1->text(), QString());
    QStringList classes;
    for (int index = 0; index < form.Combo1->count(); ++index)
        classes << form.Combo1->itemText(index);
    EXPECT_EQ(classes, (QStringList{"10A", "10B", "10C", "10FENA", "11A", "11B", "11C", "11TMA",
                                    "12A", "12B", "12FENA", "12TMC", "9A", "9B", "9C", "9D"}));

    // A class's folder: a name with the number alone, one with a name
    // behind it, two of one student (the later stays), one with text
    // before the number (0: nobody), one of another class's student, and
    // the last 9A student without a picture.
    const fs::path pictures = folder_->path() / "resimler 9A";
    QStringList names;
    for (std::size_t row = 3; row + 1 < nineA.size(); ++row)
        names << nineA[row][kOrnekNumara] + QStringLiteral(".jpg");
    names << first + QStringLiteral(".jpg") << second + QStringLiteral(" Emine Işık.jpg")
          << third + QStringLiteral(" a.jpg") << third + QStringLiteral(" b.jpg")
          << QStringLiteral("Ali ") + last + QStringLiteral(".jpg")
          << classRows(before, QStringLiteral("10A"))[0][kOrnekNumara] + QStringLiteral(".jpg");
    takePictures(pictures, names);
    takePictures(folder_->path() / "resimler 9A", {QStringLiteral("notlar.png")});
    form.Dir1->setPath(pathText(pictures));
    EXPECT_EQ(form.Text1->text(), pathText(pictures) + QStringLiteral("/"));
    EXPECT_EQ(form.Text2->text(), QString::number(names.size()));
    chooseFile(form, first + QStringLiteral(".jpg"));
    EXPECT_EQ(form.Text1->text(), pathText(pictures / (first + ".jpg").toStdString()));

    pick(form.Combo1, QStringLiteral("9A"));
    EXPECT_EQ(form.Label1->text(), QStringLiteral("29"));
    EXPECT_EQ(form.DataGrid1->model().rowCount(), 29);
    EXPECT_EQ(form.DataGrid1->model().headerData(4, Qt::Horizontal, Qt::DisplayRole),
              QStringLiteral("resim"));

    click(form.Command2);
    QStringList logged;
    for (int line = 0; line < form.List1->count(); ++line)
        logged << form.List1->item(line)->text();
    QStringList expectedLog;
    for (std::size_t row = 0; row + 1 < nineA.size(); ++row) {
        expectedLog << nineA[row][kOrnekNumara];
        if (row == 2)
            expectedLog << third;
    }
    EXPECT_EQ(logged, expectedLog);
    Students expected = bySno(before);
    for (auto& [sno, row] : expected) {
        const QString numara = row[kOrnekNumara];
        if (row[kOrnekSinif] == QStringLiteral("9A") && numara != last) {
            QString name = numara + QStringLiteral(".jpg");
            if (numara == second)
                name = second + QStringLiteral(" Emine Işık.jpg");
            if (numara == third)
                name = third + QStringLiteral(" b.jpg");
            row[kOrnekResim] = pathText(pictures / name.toStdString());
        }
    }
    expectStudents(database, expected);
    // The stored path loads as it stands; the list stands on its last file.
    const QString stored = bySno(exported(database, "ORNEK"))[nineA[1][0]][kOrnekResim];
    EXPECT_FALSE(QImage(stored).isNull()) << stored.toStdString();
    EXPECT_EQ(form.File1->ListIndex(), form.File1->ListCount() - 1);
    EXPECT_EQ(form.Text1->text(), pathText(pictures) + QStringLiteral("/") +
                                      form.File1->item(names.size() - 1)->text());
    expectSound(database);
    form.resize(1024, 700);
    form.grab().save(QStringLiteral(SOFRAVAN_SCREENSHOT_DIR "/form10.png"));

    // Under a filter that leaves nobody, saving ends the program.
    form.Adodc1.Recordset().setFilter(u" SINIF ='YOK'");
    EXPECT_EXIT(
        {
            MessageBoxAnswerer answerer;
            click(form.Command2);
        },
        ::testing::ExitedWithCode(1), "");
}

TEST_F(PhotoWorkshop, SavingByPositionTrustsTheOrderOnceTheCountsMeet) {
    const fs::path database = folder_->database();
    {
        // A class named as the list's "all" entry, the one way to reach it.
        std::vector<jet::Value> row(21);
        row[0] = jet::Value::integer(9999);
        row[2] = jet::Value::text(u"Deneme");
        row[4] = jet::Value::integer(9999);
        row[5] = jet::Value::text(u"Tümü");
        jet::Database(database.string(), jet::PageFile::Mode::ReadWrite)
            .insertRows(u"ORNEK", {row});
    }
    const Rows before = exported(database, "ORNEK");
    const Rows tenA = classRows(before, QStringLiteral("10A"));
    ASSERT_EQ(tenA.size(), 30u);

    rosters::Form10& form = open();
    EXPECT_EQ(form.Combo1->itemText(form.Combo1->count() - 1), QStringLiteral("Tümü"));
    pick(form.Combo1, QStringLiteral("9B"));
    EXPECT_EQ(form.Label1->text(), QStringLiteral("30"));
    pick(form.Combo1, QStringLiteral("Tümü"));
    EXPECT_EQ(form.Adodc1.Recordset().filter(), u"");
    EXPECT_EQ(form.Label1->text(), QString::number(before.size()));
    EXPECT_EQ(form.DataGrid1->model().rowCount(), int(before.size()));
    pick(form.Combo1, QStringLiteral("10A"));
    EXPECT_EQ(form.Label1->text(), QStringLiteral("30"));

    // 29 files for 30 students: a message and nothing written; by number
    // the 29 are saved.
    const fs::path numbered = folder_->path() / "numarali";
    QStringList names;
    for (std::size_t row = 0; row + 1 < tenA.size(); ++row)
        names << tenA[row][kOrnekNumara] + QStringLiteral(".jpg");
    takePictures(numbered, names);
    form.Dir1->setPath(pathText(numbered));
    form.Adodc1.Recordset().moveLast();
    {
        MessageBoxAnswerer answerer;
        click(form.Command1);
        EXPECT_EQ(answerer.seen, QStringList{"Öğrenci sayısı ile fotoğraf sayısı uyuşmuyor!"});
    }
    EXPECT_EQ(form.Adodc1.Recordset().absolutePosition(), 1);
    Students expected = bySno(before);
    expectStudents(database, expected);
    click(form.Command2);
    for (std::size_t row = 0; row + 1 < tenA.size(); ++row)
        expected[tenA[row][0]][kOrnekResim] = pathText(numbered / names[int(row)].toStdString());
    expectStudents(database, expected);

    // 30 files named so that their order is the class's backwards: each
    // student gets the file at his place in the list, the wrong one,
    // without a word; the path goes into ordinal 19, resim.
    const fs::path backwards = folder_->path() / "ters";
    QStringList reversed;
    for (std::size_t row = 0; row < tenA.size(); ++row) {
        reversed << QStringLiteral("%1 %2.jpg")
                        .arg(29 - int(row), 2, 10, QLatin1Char('0'))
                        .arg(tenA[row][kOrnekNumara]);
    }
    takePictures(backwards, reversed);
    form.Dir1->setPath(pathText(backwards));
    {
        MessageBoxAnswerer answerer;
        click(form.Command1);
        EXPECT_EQ(answerer.seen, QStringList{});
    }
    for (std::size_t row = 0; row < tenA.size(); ++row) {
        expected[tenA[row][0]][kOrnekResim] =
            pathText(backwards / reversed[29 - int(row)].toStdString());
    }
    expectStudents(database, expected);
    EXPECT_EQ(form.Text1->text(), pathText(backwards / reversed[0].toStdString()));
    expectSound(database);
}

TEST_F(PhotoWorkshop, OneFileAtATimeAndTheMainWindowReloadedOnClosing) {
    const fs::path database = folder_->database();
    const Rows before = exported(database, "ORNEK");
    shell::Form1& main = shell::instance<shell::Form1>();
    main.show();
    main.foto->trigger();
    ASSERT_TRUE(shell::isLoaded<rosters::Form10>());
    rosters::Form10& form = shell::instance<rosters::Form10>();
    EXPECT_TRUE(form.isVisible());

    const fs::path pictures = folder_->path() / "tek";
    takePictures(pictures, {QStringLiteral("kart.jpg"), QStringLiteral("portre.jpg")});
    form.Dir1->setPath(pathText(pictures));
    clickCell(form.DataGrid1, 3, 0);
    chooseFile(form, QStringLiteral("portre.jpg"));
    click(form.Command3);
    // The single save writes ordinal 20, the column beside resim.
    Students expected = bySno(before);
    expected[before[3][0]][kOrnekYatililik] = pathText(pictures / "portre.jpg");
    expectStudents(database, expected);

    // In an empty folder: by number nothing, one at a time the folder alone.
    const fs::path empty = folder_->path() / "bos";
    fs::create_directories(empty);
    form.Dir1->setPath(pathText(empty));
    EXPECT_EQ(form.Text2->text(), QStringLiteral("0"));
    click(form.Command2);
    expectStudents(database, expected);
    clickCell(form.DataGrid1, 5, 0);
    click(form.Command3);
    expected[before[5][0]][kOrnekYatililik] = pathText(empty) + QStringLiteral("/");
    expectStudents(database, expected);
    expectSound(database);

    // The card picture's dialog: cancelled, then answered; nothing saves it.
    const auto answerDialog = [](const fs::path& file) {
        QTimer::singleShot(50, [file] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            if (file.empty()) {
                dialog->reject();
            } else {
                // The name typed into the dialog's own box, as a user does.
                dialog->setDirectory(pathText(file.parent_path()));
                auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
                ASSERT_NE(name, nullptr);
                name->setText(pathText(file.filename()));
                static_cast<QDialog*>(dialog)->accept();
            }
        });
    };
    form.Text3->setText(QStringLiteral("önceki"));
    answerDialog({});
    click(form.Command4);
    EXPECT_EQ(form.Text3->text(), QStringLiteral("önceki"));
    answerDialog(pictures / "kart.jpg");
    click(form.Command4);
    EXPECT_EQ(form.Text3->text(), pathText(pictures / "kart.jpg"));
    click(form.Command5);
    expectStudents(database, expected);

    // The main window's students hold what was read before until the
    // workshop closes; then they are read again, whole.
    main.ornek.Recordset().setFilter(u" Numara like " + before[3][kOrnekNumara].toStdU16String());
    EXPECT_TRUE(main.ornek.Recordset().field(u"yatililik").isNull());
    form.close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(shell::isLoaded<rosters::Form10>());
    EXPECT_EQ(main.ornek.Recordset().filter(), u"");
    EXPECT_EQ(main.ornek.Recordset().recordCount(), static_cast<long>(before.size()));
    main.ornek.Recordset().setFilter(u" Numara like " + before[3][kOrnekNumara].toStdU16String());
    EXPECT_EQ(QString::fromStdU16String(main.ornek.Recordset().field(u"yatililik").asText()),
              pathText(pictures / "portre.jpg"));

    // Without the main window, closing reloads nothing and loads nothing.
    delete &main;
    open().close();
    EXPECT_FALSE(shell::isLoaded<shell::Form1>());
}

}  // namespace
