// The main window as a clerk uses it: find a student, press Enter, see the
// permit saved where the gate program reads it.

#include <QTest>

#include <QImage>

#include "shell/clock.h"
#include "shell/form1.h"
#include "shell/kit/connection_strings.h"
#include "shell/program_state.h"
#include "shell/window_registry.h"
#include "store/jet/database.h"
#include "store/jet/integrity_check.h"
#include "store/jet/text.h"
#include "tests/shell/window_driver.h"

namespace {

using jet::testing::readRows;
using jet::testing::runCommand;
using jet::testing::shellQuote;
using windows::testing::kvlFixture;
using windows::testing::MessageBoxAnswerer;
using windows::testing::SchoolWindowTest;

std::size_t columnOf(const jet::Database& database, const char16_t* table, const char16_t* name) {
    const jet::TableDefinition definition = database.table(table);
    for (std::size_t c = 0; c < definition.columns.size(); ++c) {
        if (definition.columns[c].name == name)
            return c;
    }
    throw std::runtime_error("no column");
}

std::vector<std::vector<jet::Value>> permits(const std::filesystem::path& file) {
    return readRows(jet::Database(file.string()), u"IZINLER");
}

// A student whose school number is his alone.
struct Student {
    int numara = 0;
    double tc = 0;
};

// The `skip`-th such student, from 0.
Student uniqueStudent(const std::filesystem::path& file, int skip = 0) {
    const jet::Database database(file.string());
    const auto rows = readRows(database, u"ORNEK");
    const std::size_t numara = columnOf(database, u"ORNEK", u"Numara");
    const std::size_t tc = columnOf(database, u"ORNEK", u"TCKimlikNo");
    for (const auto& row : rows) {
        if (row[numara].isNull() || row[tc].isNull())
            continue;
        const auto same = std::count_if(rows.begin(), rows.end(), [&](const auto& other) {
            return !other[numara].isNull() && other[numara].asInteger() == row[numara].asInteger();
        });
        if (same == 1 && skip-- == 0)
            return {row[numara].asInteger(), row[tc].asDouble()};
    }
    throw std::runtime_error("no student with a number of his own");
}

class MainWindow : public SchoolWindowTest {
protected:
    void SetUp() override {
        SchoolWindowTest::SetUp();
        if (!IsSkipped())
            shell::setTodayForTests(QDate(2027, 3, 10));
    }
    shell::Form1& open() {
        shell::Form1& form = shell::instance<shell::Form1>();
        form.show();
        return form;
    }
    void quickEntry(shell::Form1& form, int numara) {
        form.Text11->clear();
        QTest::keyClicks(form.Text11, QString::number(numara));
        QTest::keyClick(form.Text11, Qt::Key_Return);
    }
};

TEST_F(MainWindow, QuickEntryRegistersOncePerMonthWhateverCombo2Shows) {
    const Student student = uniqueStudent(folder_->database());
    const std::size_t before = permits(folder_->database()).size();
    shell::Form1& form = open();
    EXPECT_EQ(form.Combo2->currentText(), QStringLiteral("MART"));
    form.Combo2->setCurrentIndex(7);  // Combo2 is never read
    form.Option2->setChecked(true);

    MessageBoxAnswerer answerer;
    quickEntry(form, student.numara);
    auto rows = permits(folder_->database());
    ASSERT_EQ(rows.size(), before + 1);
    jet::Database database(folder_->database().string());
    const auto column = [&](const char16_t* name) { return columnOf(database, u"IZINLER", name); };
    EXPECT_EQ(rows.back()[column(u"Numara")].asInteger(), student.numara);
    EXPECT_EQ(rows.back()[column(u"TCKimlikNo")].asDouble(), student.tc);
    EXPECT_EQ(rows.back()[column(u"ay")].asInteger(), 3);
    EXPECT_EQ(rows.back()[column(u"yıl")].asInteger(), 2027);
    EXPECT_TRUE(answerer.seen.isEmpty());
    EXPECT_TRUE(form.Option1->isChecked());
    EXPECT_EQ(form.Label16->text(), QString::number(before + 1));
    EXPECT_EQ(form.DataGrid4->model().rowCount(), static_cast<int>(before + 1));

    // After Enter the next number overwrites the old one from the start,
    // as far as the student's first name is long.
    EXPECT_EQ(form.Text11->selectionStart(), 0);
    EXPECT_EQ(form.Text11->selectedText().size(),
              std::min(form.Text1->text().size(), form.Text11->text().size()));

    // The same student again in the same month: a message, no row.
    quickEntry(form, student.numara);
    const MessageBoxAnswerer::Box already{
        QStringLiteral("Sofravan"),
        QStringLiteral("Öğrenci daha önce bu ay için kaydedilmiş."),
        QMessageBox::Warning,
        {QStringLiteral("Tamam")}};
    EXPECT_EQ(answerer.boxes, QList{already});
    EXPECT_EQ(permits(folder_->database()).size(), before + 1);

    // The test reads what the identity box shows, not the column: another
    // student, new this month, with the first one's number in the box
    // counts as registered.
    const Student other = uniqueStudent(folder_->database(), 1);
    form.Text11->clear();
    QTest::keyClicks(form.Text11, QString::number(other.numara));
    const QString othersBox = form.Text24->text();
    form.Text24->setText(QString::number(static_cast<long long>(student.tc)));
    QTest::mouseClick(form.Command1, Qt::LeftButton);
    EXPECT_EQ(answerer.boxes, (QList{already, already}));
    EXPECT_EQ(permits(folder_->database()).size(), before + 1);
    form.Text24->setText(othersBox);

    // On the first of the next month the student is registered anew.
    shell::setTodayForTests(QDate(2027, 4, 1));
    quickEntry(form, student.numara);
    rows = permits(folder_->database());
    ASSERT_EQ(rows.size(), before + 2);
    EXPECT_EQ(rows.back()[column(u"ay")].asInteger(), 4);

    // Another reader sees both rows.
    const std::string csv =
        runCommand("mdb-export " + shellQuote(folder_->database().string()) + " IZINLER");
    const std::string tc = std::to_string(static_cast<long long>(student.tc));
    EXPECT_NE(csv.find(tc + ",", csv.find(tc + ",") + 1), std::string::npos) << csv.substr(0, 400);
    EXPECT_EQ(jet::checkIntegrity(jet::Database(folder_->database().string()).file()),
              std::vector<std::string>{});
}

TEST_F(MainWindow, NumbersThatAreNoStudentOrNoNumberSaveNothing) {
    const std::size_t before = permits(folder_->database()).size();
    shell::Form1& form = open();
    MessageBoxAnswerer answerer;
    quickEntry(form, 98765432);
    EXPECT_TRUE(answerer.seen.isEmpty());
    QTest::keyClick(form.Text11, Qt::Key_Backspace);
    form.Text11->clear();
    QTest::keyClick(form.Text11, Qt::Key_Return);  // Enter in an empty box
    QTest::keyClicks(form.Text11, QStringLiteral("12a"));
    EXPECT_EQ(answerer.seen.value(0), QStringLiteral("Rakam&Sayı giriniz."));
    QTest::keyClick(form.Text11, Qt::Key_Return);
    EXPECT_EQ(permits(folder_->database()).size(), before);

    // After the message the cursor goes to the start and selects as many
    // characters as the current student's first name has.
    const Student student = uniqueStudent(folder_->database());
    form.Text11->setText(QString::number(student.numara));
    const QString name = form.Text1->text();
    ASSERT_FALSE(name.isEmpty());
    const QString typed = QString::number(student.numara) + QString(40, u'x');
    form.Text11->setText(typed);
    EXPECT_EQ(form.Text11->selectionStart(), 0);
    EXPECT_EQ(form.Text11->selectedText(), typed.left(name.size()));
    const MessageBoxAnswerer::Box notANumber{QStringLiteral("Sofravan"),
                                             QStringLiteral("Rakam&Sayı giriniz."),
                                             QMessageBox::Critical,
                                             {QStringLiteral("Tamam")}};
    EXPECT_EQ(answerer.boxes.last(), notANumber);

    // The begun row of the failed click is not written by a later one.
    quickEntry(form, uniqueStudent(folder_->database()).numara);
    EXPECT_EQ(permits(folder_->database()).size(), before + 1);
}

TEST_F(MainWindow, SearchBoxesNarrowTheRosterEachOnItsOwn) {
    shell::Form1& form = open();
    store::Recordset& roster = form.ornek.Recordset();
    const long all = roster.recordCount();
    QTest::keyClicks(form.Text10, QStringLiteral("  ay"));
    EXPECT_EQ(QString::fromStdU16String(roster.filter()), QStringLiteral(" Adi like 'ay%'"));
    const long prefix = roster.recordCount();
    EXPECT_GT(prefix, 0);
    EXPECT_LT(prefix, all);
    EXPECT_TRUE(form.Text1->text().startsWith(QStringLiteral("Ay"), Qt::CaseInsensitive))
        << form.Text1->text().toStdString();

    // The surname box by its trimmed prefix, replacing the name's filter.
    const QString surname = form.Text2->text();
    ASSERT_FALSE(surname.isEmpty());
    windows::testing::type(form.Text9, surname.left(2) + QStringLiteral(" "));
    EXPECT_EQ(QString::fromStdU16String(roster.filter()),
              QStringLiteral(" Soyadi like '") + surname.left(2) + QStringLiteral("%'"));
    EXPECT_TRUE(form.Text2->text().startsWith(surname.left(2)));
    EXPECT_GE(roster.recordCount(), 1);
    EXPECT_LT(roster.recordCount(), all);
    form.Text9->setText(QStringLiteral("x"));

    // Clearing a box reloads the whole table; the other boxes keep theirs.
    form.Text10->clear();
    EXPECT_EQ(roster.recordCount(), all);
    EXPECT_EQ(form.Text9->text(), QStringLiteral("x"));

    const QString someClass = form.Combo1->itemText(1);
    form.Combo1->setListIndex(1);
    EXPECT_EQ(QString::fromStdU16String(roster.filter()),
              QStringLiteral(" SINIF = '") + someClass + "'");
    EXPECT_EQ(form.Text6->text(), someClass);
    form.Combo1->setListIndex(0);  // "Tümü"
    EXPECT_EQ(roster.recordCount(), all);

    const Student student = uniqueStudent(folder_->database());
    form.Text23->setText(QString::number(static_cast<long long>(student.tc)));
    EXPECT_EQ(roster.recordCount(), 1);
    EXPECT_EQ(form.Text5->text(), QString::number(student.numara));
}

TEST_F(MainWindow, PhotographFollowsTheCurrentStudentAndNullShowsNoLogo) {
    const Student withPicture = uniqueStudent(folder_->database());
    const QString picture = QString::fromStdString((folder_->path() / "foto.jpg").string());
    QImage face(60, 80, QImage::Format_RGB32);
    face.fill(Qt::darkCyan);
    ASSERT_TRUE(face.save(picture));
    QImage logo(10, 10, QImage::Format_RGB32);
    ASSERT_TRUE(logo.save(QString::fromStdString((folder_->path() / "logo.jpg").string())));
    {
        store::Connection connection;
        connection.Open(kit::relativeConnectionString().toStdString());
        store::Recordset roster;
        roster.open(u"select* from ORNEK where Numara=" +
                        QString::number(withPicture.numara).toStdU16String(),
                    connection);
        roster.setField(u"resim", jet::Value::text(picture.toStdU16String()));
        roster.update();
    }
    shell::Form1& form = open();
    QTest::keyClicks(form.Text11, QString::number(withPicture.numara));
    EXPECT_EQ(form.Image1->pixmap().size(), QSize(60, 80));

    // The reload may land on the same student: Text5 keeps its text, so
    // the picture is not loaded again.
    form.Text11->clear();
    form.ornek.Recordset().moveFirst();
    if (form.Text5->text() == QString::number(withPicture.numara)) {
        EXPECT_FALSE(form.Image1->pixmap().isNull());
        form.ornek.Recordset().moveNext();
    }
    // The fixture's first students have no path: no picture, no logo.
    EXPECT_TRUE(form.Image1->pixmap().isNull());
}

// Each step of the load fails on its own. Started from another folder:
// connections that code opens find the file beside the program, the data
// controls look in the working folder, and the class lists still begin
// with "Tümü". A scratch record set left open by an earlier routine: the
// school's name is not read, but the shared connection is still closed and
// released.
TEST_F(MainWindow, LoadStepsFailEachOnTheirOwn) {
    {
        jet::testing::TempDir elsewhere;
        std::filesystem::current_path(elsewhere.path());
        MessageBoxAnswerer answerer;
        shell::Form1& form = open();
        EXPECT_EQ(answerer.seen.size(), 4);  // one for each data control
        EXPECT_FALSE(form.ornek.isOpen());
        EXPECT_EQ(form.Text12->text(), QStringLiteral("Şehit Öğretmen Anadolu Lisesi"));
        for (const kit::ComboBox* combo : {form.Combo1, form.Combo3}) {
            EXPECT_EQ(combo->count(), 1);
            EXPECT_EQ(combo->itemText(0), QStringLiteral("Tümü"));
        }
        EXPECT_EQ(form.Combo2->count(), 12);
        delete &form;
        std::filesystem::current_path(folder_->path());
    }
    store::Connection earlier;
    earlier.Open(kit::relativeConnectionString().toStdString());
    shell::kayit = std::make_unique<store::Recordset>();
    shell::kayit->open(u"select* from ORNEK", earlier);
    shell::Form1& form = open();
    EXPECT_TRUE(form.Text12->text().isEmpty());
    EXPECT_EQ(shell::baglanti, nullptr);
    EXPECT_EQ(shell::kayit, nullptr);
    EXPECT_GT(form.Combo3->count(), 1);
}

// An apostrophe breaks the name filter; the handler has no error handling,
// so the run-time error report ends the program.
TEST_F(MainWindow, ApostropheInTheNameBoxEndsTheProgram) {
    shell::Form1& form = open();
    EXPECT_EXIT(
        {
            MessageBoxAnswerer answerer;
            QTest::keyClicks(form.Text10, QStringLiteral("O'"));
        },
        ::testing::ExitedWithCode(1), "Run-time error");
}

}  // namespace
