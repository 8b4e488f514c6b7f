// The workbook import as the office does it: Form13 walks to a workbook
// and lists its sheets, Form15 shows the sheet beside MENULER and copies
// the month, the first time without the noon column, the second time whole.

#include <fstream>

#include <QDesktopServices>
#include <QTest>
#include <QUrl>

#include "menus/form13.h"
#include "menus/form15.h"
#include "shell/window_registry.h"
#include "store/connection.h"
#include "store/jet/database.h"
#include "tests/reports/report_reading.h"
#include "tests/shell/window_driver.h"

namespace {

namespace fs = std::filesystem;
using reports::testing::exported;
using reports::testing::Rows;
using windows::testing::MessageBoxAnswerer;
using windows::testing::SchoolWindowTest;

fs::path workbookFixture(const char* name) {
    return jet::testing::fixturesDir() / "xls" / name;
}

// MENULER's rows of one month, in table order, as mdbtools reads them:
// ay, gun, sabah, oglen, aksam, ara_ogun.
Rows monthRows(const fs::path& database, int month) {
    Rows rows;
    for (const QStringList& row : exported(database, "MENULER")) {
        if (row.value(0) == QString::number(month))
            rows.push_back(row);
    }
    return rows;
}

void execute(const fs::path& database, const std::u16string& statement) {
    store::Connection connection;
    connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + database.string() +
                    ";Jet OLEDB:Database Password=HtRvZpQsD2019");
    connection.Execute(statement);
}

// Walks Form13 to the workbook, in the school's folder unless another is
// given, and picks the sheet.
menus::Form13& chooseSheet(const QString& workbook, const QString& sheet,
                           const fs::path& folder = {}) {
    shell::showWindow<menus::Form13>();
    menus::Form13& picker = shell::instance<menus::Form13>();
    if (!folder.empty())
        picker.Dir1->setPath(QString::fromStdString(folder.string()));
    const QList<QListWidgetItem*> found = picker.File1->findItems(workbook, Qt::MatchExactly);
    EXPECT_EQ(found.size(), 1) << workbook.toStdString();
    if (!found.isEmpty())
        picker.File1->setListIndex(picker.File1->row(found.front()));
    picker.Combo1->setCurrentIndex(picker.Combo1->findText(sheet));
    return picker;
}

// AKTARIM YAP, every question answered with `answer`; the texts asked.
QStringList copy(menus::Form15& import, const QString& answer = QStringLiteral("Tamam")) {
    MessageBoxAnswerer answerer(answer);
    QTest::mouseClick(import.Command2, Qt::LeftButton);
    return answerer.seen;
}

void closeImport() {
    shell::unload<menus::Form15>();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

menus::Form15& goOn(menus::Form13& picker) {
    QTest::mouseClick(picker.Command2, Qt::LeftButton);
    EXPECT_FALSE(shell::isLoaded<menus::Form13>());
    return shell::instance<menus::Form15>();
}

// Stands in for the desktop's application: what it was asked to open.
class UrlCatcher : public QObject {
    Q_OBJECT
public:
    QStringList opened;
public slots:
    void open(const QUrl& url) { opened << url.toLocalFile(); }
};

class WorkbookImportTest : public SchoolWindowTest {
protected:
    fs::path copyWorkbook(const char* name, const fs::path& folder) {
        fs::create_directories(folder);
        const fs::path target = folder / name;
        fs::copy_file(workbookFixture(name), target);
        fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
        return target;
    }
};

TEST_F(WorkbookImportTest, TemplateIntoAprilWithoutNoonFirstThenWhole) {
    const fs::path database = folder_->database();
    execute(database, u"delete * from MENULER where ay=4");
    const std::size_t othersBefore = exported(database, "MENULER").size();
    copyWorkbook("template.xls", folder_->path());

    menus::Form13& picker = chooseSheet(QStringLiteral("template.xls"), QStringLiteral("Sayfa1"));
    EXPECT_EQ(picker.Dir1->Path(), QString::fromStdString(folder_->path().string()));
    EXPECT_EQ(picker.Text1->text(),
              QString::fromStdString(folder_->path().string()) + QStringLiteral("\\template.xls"));
    // The named range "Menu" loses its last letter as the sheets lose "$".
    QStringList sheets;
    for (int index = 0; index < picker.Combo1->count(); ++index)
        sheets << picker.Combo1->itemText(index);
    EXPECT_EQ(sheets, (QStringList{"Men", "Sayfa1", "Sayfa2", "Sayfa3"}));

    picker.grab().save(QStringLiteral(SOFRAVAN_SCREENSHOT_DIR "/form13.png"));
    menus::Form15& import = goOn(picker);
    EXPECT_EQ(import.Text4->text(), QStringLiteral("Sayfa1"));
    EXPECT_EQ(import.Combo2->currentText(), QStringLiteral("NİSAN"));
    EXPECT_EQ(import.Text2->text(), QStringLiteral("4"));
    EXPECT_EQ(import.Text1->text(), QStringLiteral("30"));
    EXPECT_EQ(import.DataGrid1->model().rowCount(), 120);
    EXPECT_EQ(import.DataGrid1->model().headerData(3, Qt::Horizontal, Qt::DisplayRole),
              QStringLiteral("ogle"));
    EXPECT_EQ(import.Adodc2.Recordset().filter(), u" ay=4");
    EXPECT_EQ(import.DataGrid2->model().rowCount(), 0);

    // The first copy takes the second way: no question, and the noon column
    // named the other way round stays unset.
    EXPECT_EQ(copy(import), QStringList{"Excel menüsü programa aktarıldı."});
    Rows april = monthRows(database, 4);
    ASSERT_EQ(april.size(), 120u);
    for (std::size_t row = 0; row < april.size(); ++row) {
        EXPECT_EQ(april[row][1], QString::number(row / 4 + 1)) << row;
        EXPECT_EQ(april[row][3], QString()) << row;
    }
    EXPECT_FALSE(april[0][2].isEmpty());
    EXPECT_FALSE(april[0][5].isEmpty());

    // No: nothing changes.
    EXPECT_EQ(copy(import, QStringLiteral("Hayır")),
              QStringList{"Programda kayıtlı NİSAN ayı menüsü silinecek.\nDevam edilsin mi?"});
    EXPECT_EQ(monthRows(database, 4), april);

    // Yes: the month goes and comes back whole, and the table's grid shows
    // every month.
    const QStringList asked = copy(import, QStringLiteral("Evet"));
    EXPECT_EQ(asked.size(), 2);
    EXPECT_EQ(asked.value(1), QStringLiteral("Excel menüsü programa aktarıldı."));
    import.grab().save(QStringLiteral(SOFRAVAN_SCREENSHOT_DIR "/form15.png"));
    const Rows whole = monthRows(database, 4);
    ASSERT_EQ(whole.size(), 120u);
    for (std::size_t row = 0; row < whole.size(); ++row) {
        EXPECT_FALSE(whole[row][3].isEmpty()) << row;
        EXPECT_EQ(whole[row][2], april[row][2]) << row;
    }
    EXPECT_EQ(exported(database, "MENULER").size(), othersBefore + 120);
    EXPECT_TRUE(import.Adodc2.Recordset().filter().empty());
    EXPECT_EQ(import.DataGrid2->model().rowCount(), static_cast<int>(othersBefore + 120));
}

TEST_F(WorkbookImportTest, OtherWorkbooksAndBadOnes) {
    const fs::path database = folder_->database();
    // A folder with Turkish letters and a blank in its name.
    const fs::path folder = folder_->path() / "Menü Çalışması";
    copyWorkbook("two-months.xls", folder);
    copyWorkbook("thirty-one-days.xls", folder);
    copyWorkbook("type-change.xls", folder);
    copyWorkbook("template.xlsx", folder);
    fs::create_directories(folder);
    { std::ofstream(folder / "notlar.xls") << "ay;gun;sabah\n"; }
    execute(database, u"delete * from MENULER where ay=11 or ay=12 or ay=5");

    shell::showWindow<menus::Form13>();
    menus::Form13& picker = shell::instance<menus::Form13>();
    picker.Dir1->setPath(QString::fromStdString(folder.string()));
    QStringList files;
    for (int index = 0; index < picker.File1->ListCount(); ++index)
        files << picker.File1->item(index)->text();
    EXPECT_EQ(files, (QStringList{"notlar.xls", "thirty-one-days.xls", "two-months.xls",
                                  "type-change.xls"}));

    // What is no workbook lists nothing and says nothing; going on all the
    // same, the load fails and the run-time error report says why.
    picker.File1->setListIndex(0);
    EXPECT_EQ(picker.Combo1->count(), 0);
    EXPECT_EQ(picker.Combo1->currentText(), QStringLiteral("Sayfa adı seçiniz..."));
    EXPECT_EXIT(
        {
            MessageBoxAnswerer answerer;
            QTest::mouseClick(picker.Command2, Qt::LeftButton);
        },
        ::testing::ExitedWithCode(1), "Excel .al..ma kitab. de.il");

    // Two months: the first row's month is offered, the other chosen.
    menus::Form15& import = goOn(chooseSheet(QStringLiteral("two-months.xls"), "Sayfa1", folder));
    EXPECT_EQ(import.Combo2->currentText(), QStringLiteral("KASIM"));
    EXPECT_EQ(import.DataGrid1->model().rowCount(), 120);
    reports::testing::pick(import.Combo2, QStringLiteral("ARALIK"));
    EXPECT_EQ(import.Text1->text(), QStringLiteral("31"));
    EXPECT_EQ(import.DataGrid1->model().rowCount(), 124);
    copy(import);
    EXPECT_EQ(monthRows(database, 12).size(), 124u);
    EXPECT_EQ(monthRows(database, 11).size(), 0u);
    closeImport();

    // Thirty-one days for November: nothing limits the copy.
    menus::Form15& longMonth =
        goOn(chooseSheet(QStringLiteral("thirty-one-days.xls"), QStringLiteral("Sayfa1"), folder));
    EXPECT_EQ(longMonth.Text1->text(), QStringLiteral("30"));
    copy(longMonth);
    EXPECT_EQ(monthRows(database, 11).size(), 124u);
    closeImport();

    // A cell that does not fit its column's type arrives unset: the day of
    // data row 10 and the morning of data row 3.
    menus::Form15& mixed =
        goOn(chooseSheet(QStringLiteral("type-change.xls"), QStringLiteral("Sayfa1"), folder));
    EXPECT_EQ(mixed.Combo2->currentText(), QStringLiteral("MAYIS"));
    copy(mixed);
    const Rows may = monthRows(database, 5);
    ASSERT_EQ(may.size(), 124u);
    EXPECT_EQ(may[9][1], QString());
    EXPECT_EQ(may[8][1], QStringLiteral("3"));
    EXPECT_EQ(may[2][2], QString());
    EXPECT_FALSE(may[3][2].isEmpty());

    // "Excel ile aç" hands the workbook to the desktop and stays open.
    shell::showWindow<menus::Form13>();
    menus::Form13& again = shell::instance<menus::Form13>();
    again.Dir1->setPath(QString::fromStdString(folder.string()));
    again.File1->setListIndex(1);
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler(QStringLiteral("file"), &catcher, "open");
    QTest::mouseClick(again.Command3, Qt::LeftButton);
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    EXPECT_EQ(catcher.opened,
              QStringList{QString::fromStdString((folder / "thirty-one-days.xls").string())});
    EXPECT_TRUE(shell::isLoaded<menus::Form13>());
}

}  // namespace

#include "workbook_import_test.moc"
