// The month menu print through Form16: the month's four-row day blocks of
// MENULER folded into TMPMENU, read back with mdbtools, and the report
// yemekmenusu as it prints, read back from its PDF.

#include <QRegularExpression>
#include <QTest>

#include "menus/form16.h"
#include "reports/school_name.h"
#include "shell/clock.h"
#include "shell/window_registry.h"
#include "store/jet/database.h"
#include "tests/reports/report_reading.h"
#include "tests/shell/window_driver.h"

namespace {

namespace fs = std::filesystem;
using jet::testing::runCommand;
using jet::testing::shellQuote;
using reports::testing::exportedMemos;
using reports::testing::pick;
using reports::testing::printedText;
using reports::testing::Rows;
using windows::testing::SchoolWindowTest;

const QString kSchool = QStringLiteral("Deneme Lisesi");
const QString kHeads = QStringLiteral("TARİH\\s+SABAH\\s+ÖĞLE\\s+AKŞAM\\s+ARA ÖĞÜN");

// The month as a person folds it from the export of MENULER: each four rows
// in table order are the next day, their lines of each meal one under the
// other; a last block of fewer rows is no day. The rows of the fixture have
// a morning dish in every block's first row, so nothing is replaced.
Rows foldedByHand(const Rows& menuler, int month, int year) {
    Rows month_rows;
    for (const QStringList& row : menuler) {
        if (row[0].toInt() == month)
            month_rows.push_back(row);
    }
    Rows days;
    for (std::size_t first = 0; first + 4 <= month_rows.size(); first += 4) {
        const QDate date(year, month, static_cast<int>(first / 4) + 1);
        QStringList day{date.toString(QStringLiteral("dd.MM.yyyy")),
                        QLocale(QLocale::Turkish).dayName(date.dayOfWeek())};
        for (int meal = 0; meal < 4; ++meal) {
            QStringList lines;
            for (std::size_t row = first; row < first + 4; ++row)
                lines << month_rows[row][2 + meal];
            day << lines.join(QStringLiteral("\r\n"));
        }
        days.push_back(day);
    }
    return days;
}

// Rows as lines of text, the line breaks in memos shown as | , for
// comparisons that print readably.
std::string lines(const Rows& rows) {
    QString text;
    for (const QStringList& row : rows)
        text += row.join(u',').replace(QLatin1String("\r\n"), QLatin1String("|")) + u'\n';
    return text.toStdString();
}

// The dates the page shows in the first column, in the order printed.
QStringList printedDates(const QString& text) {
    static const QRegularExpression date(
        QStringLiteral("^\\s*(\\d\\d-\\w{3}-\\d{4})\\b"),
        QRegularExpression::MultilineOption | QRegularExpression::UseUnicodePropertiesOption);
    QStringList dates;
    for (auto match = date.globalMatch(text); match.hasNext();)
        dates << match.next().captured(1);
    return dates;
}

// A row of MENULER: its day and one line of each meal; null is unset.
struct MenuRow {
    int gun;
    const char16_t* sabah;
    const char16_t* oglen = u"";
    const char16_t* aksam = u"";
    const char16_t* ara_ogun = u"";
};

// Rows of a month as the preparation window writes them, appended in order.
void addMenuRows(const fs::path& file, int month, const std::vector<MenuRow>& rows) {
    const auto cell = [](const char16_t* text) {
        return text == nullptr ? jet::Value() : jet::Value::text(text);
    };
    std::vector<std::vector<jet::Value>> values;
    values.reserve(rows.size());
    for (const MenuRow& row : rows)
        values.push_back({jet::Value::integer(month), jet::Value::integer(row.gun), cell(row.sabah),
                          cell(row.oglen), cell(row.aksam), cell(row.ara_ogun)});
    jet::Database(file.string(), jet::PageFile::Mode::ReadWrite).insertRows(u"MENULER", values);
}

class MonthMenu : public SchoolWindowTest {
protected:
    void SetUp() override {
        SchoolWindowTest::SetUp();
        if (IsSkipped())
            return;
        shell::setTodayForTests(QDate(2026, 1, 20));
        reports::setSchoolNameWithoutMainWindow(kSchool);
    }

    menus::Form16& open() {
        menus::Form16& form = shell::instance<menus::Form16>();
        form.show();
        return form;
    }

    // Chooses the month and reads back what the report prints.
    QString choose(menus::Form16& form, const QString& month, const char* pdf) {
        pick(form.Combo1, month);
        return printedText(form.arv->ReportSource(), folder_->path(), pdf);
    }

    // TMPMENU as lines of text; GUN is a CHAR column, fixed in length, so
    // its names come padded with blanks.
    std::string tmpmenu() {
        Rows rows = exportedMemos(folder_->database(), "TMPMENU").value_or(Rows{});
        for (QStringList& row : rows)
            row[1] = row[1].trimmed();
        return lines(rows);
    }
    std::size_t tmpmenuDays() {
        return exportedMemos(folder_->database(), "TMPMENU").value_or(Rows{}).size();
    }
};

TEST_F(MonthMenu, Form16FoldsEachMonthIntoADayARowAndPrintsIt) {
    const fs::path file = folder_->database();
    const Rows menuler = *exportedMemos(file, "MENULER");
    EXPECT_FALSE(exportedMemos(file, "TMPMENU").has_value());

    // The first opening makes TMPMENU; a second finds it and leaves it be
    // (making it again would fail and end the program).
    menus::Form16* form = &open();
    ASSERT_EQ(form->Combo1->count(), 12);
    EXPECT_EQ(form->Combo1->itemText(0), QStringLiteral("OCAK"));
    EXPECT_EQ(form->Combo1->itemText(11), QStringLiteral("ARALIK"));
    EXPECT_FALSE(form->Text1->isVisible() || form->Command1->isVisible() ||
                 form->Command2->isVisible());
    EXPECT_EQ(form->arv->ReportSource(), nullptr);
    EXPECT_EQ(exportedMemos(file, "TMPMENU"), Rows{});
    form->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    form = &open();

    // November: thirty blocks, thirty days of the year on the clock.
    const QString november = choose(*form, QStringLiteral("KASIM"), "kasim");
    EXPECT_EQ(form->Text1->text(), QStringLiteral("11"));
    ASSERT_EQ(tmpmenuDays(), 30U);
    const std::string days = tmpmenu();
    EXPECT_EQ(days, lines(foldedByHand(menuler, 11, 2026)));
    // The line breaks are CR LF; an empty later morning is an empty line, a
    // comma stays a comma.
    const Rows exported = *exportedMemos(file, "TMPMENU");
    EXPECT_EQ(exported[0][5], QStringLiteral("PATLAMIŞ MISIR,PORTAKAL\r\n\r\n\r\n"));
    EXPECT_EQ(exported[2][2], QStringLiteral("MENEMEN\r\nBAL,TEREYAĞI\r\n\r\nÇAY"));
    EXPECT_TRUE(days.starts_with("01.11.2026,Pazar,PEYNİR|ZEYTİN|DOMATES|ÇAY,")) << days;

    EXPECT_TRUE(november.contains(kSchool + QStringLiteral(" KASIM AYI YEMEK MENÜSÜ")))
        << november.toStdString();
    EXPECT_TRUE(november.contains(QRegularExpression(kHeads)));
    QStringList expectedDates;
    for (int day = 1; day <= 30; ++day)
        expectedDates << QStringLiteral("%1-Kas-2026").arg(day, 2, 10, QLatin1Char('0'));
    EXPECT_EQ(printedDates(november), expectedDates) << november.toStdString();
    // The weekday under its date, the meals' lines beside it.
    for (const char* seen : {"Pazar", "Pazartesi", "Salı", "Çarşamba", "Perşembe", "Cuma",
                             "Cumartesi", "LAHANA, HAVUÇ SALATASI", "İZMİR KÖFTE", "KEMALPAŞA"})
        EXPECT_TRUE(november.contains(QString::fromUtf8(seen))) << seen;
    EXPECT_TRUE(november.contains(QRegularExpression(
        QStringLiteral("01-Kas-2026\\s+PEYNİR\\s+MERCİMEK ÇORBASI\\s+TARHANA ÇORBASI\\s+"
                       "PATLAMIŞ\\s*\\n\\s*Pazar\\s+ZEYTİN\\s+TAVUK SOTE\\s+ET "
                       "SOTE\\s+MISIR,PORTAKAL\\s*\\n\\s*DOMATES\\s+PİRİNÇ PİLAVI\\s+PATATES "
                       "PÜRESİ\\s*\\n\\s*ÇAY\\s+"
                       "AYRAN\\s+MEYVE"))))
        << november.toStdString();
    EXPECT_EQ(runCommand("pdftoppm -r 70 -f 1 -l 1 -png " +
                         shellQuote((folder_->path() / "kasim.pdf").string()) + " " +
                         shellQuote(SOFRAVAN_SCREENSHOT_DIR "/yemekmenusu")),
              "");

    // October: 31 days and a stray fifth row after the last, which is no day.
    const QString october = choose(*form, QStringLiteral("EKİM"), "ekim");
    EXPECT_EQ(tmpmenu(), lines(foldedByHand(menuler, 10, 2026)));
    EXPECT_EQ(printedDates(october).size(), 31);
    EXPECT_EQ(printedDates(october).back(), QStringLiteral("31-Eki-2026"));
    EXPECT_TRUE(october.contains(kSchool + QStringLiteral(" EKİM AYI YEMEK MENÜSÜ")));
    EXPECT_FALSE(october.contains(QStringLiteral("KASIM")));
    EXPECT_FALSE(october.contains(QStringLiteral("FAZLA SATIR")));

    // December has no rows: the page header alone, with its title.
    const QString december = choose(*form, QStringLiteral("ARALIK"), "aralik");
    EXPECT_EQ(tmpmenuDays(), 0U);
    EXPECT_TRUE(december.contains(kSchool + QStringLiteral(" ARALIK AYI YEMEK MENÜSÜ")));
    EXPECT_TRUE(december.contains(QRegularExpression(kHeads)));
    EXPECT_EQ(printedDates(december), QStringList{});
    EXPECT_FALSE(december.contains(QStringLiteral("EKİM")));
}

// The blocks are taken four rows at a time whatever gun says, SABAH alone
// decides between replacing and adding a line, the year is the clock's, and
// a day the month lacks in that year ends the program.
TEST_F(MonthMenu, BlocksGoByPositionAndTheMorningDecides) {
    const fs::path file = folder_->database();
    // April: the first row lacks the morning, so its noon, evening and snack
    // are replaced by the second row's; the third row's morning is "".
    addMenuRows(file, 4,
                {{1, nullptr, u"KAYIP ÇORBA", u"KAYIP PİLAV", u"KAYIP MEYVE"},
                 {1, u"SİMİT", u"EZOGELİN", u"KÖFTE", nullptr},
                 {1, u"", u"PİLAV", u"CACIK", u"AYRAN"},
                 {1, u"ÇAY", u"TATLI", u"", u"KEK"},
                 {2, u"PEYNİR", u"SOS", u"PİDE", u"ELMA"},
                 {2, u"ZEYTİN", nullptr, nullptr, nullptr},
                 {2, u"REÇEL", nullptr, nullptr, nullptr},
                 {2, u"SÜT", nullptr, nullptr, nullptr}});
    // May: the first day has three rows, so every later day moves up a row.
    std::vector<MenuRow> may;
    for (const char16_t* sabah :
         {u"A1", u"A2", u"A3", u"B1", u"B2", u"B3", u"B4", u"C1", u"C2", u"C3", u"C4"})
        may.push_back({sabah[0] - u'A' + 1, sabah});
    addMenuRows(file, 5, may);
    menus::Form16& form = open();

    const QString april = choose(form, QStringLiteral("NİSAN"), "nisan");
    EXPECT_EQ(tmpmenu(),
              "01.04.2026,Çarşamba,SİMİT||ÇAY,EZOGELİN|PİLAV|TATLI,KÖFTE|CACIK|,|AYRAN|KEK\n"
              "02.04.2026,Perşembe,PEYNİR|ZEYTİN|REÇEL|SÜT,SOS|||,PİDE|||,ELMA|||\n");
    EXPECT_EQ(printedDates(april), (QStringList{"01-Nis-2026", "02-Nis-2026"}));
    EXPECT_TRUE(april.contains(QRegularExpression(
        QStringLiteral("01-Nis-2026\\s+SİMİT\\s+EZOGELİN\\s+KÖFTE\\s*\\n\\s*Çarşamba\\s+PİLAV"))))
        << april.toStdString();
    EXPECT_FALSE(april.contains(QStringLiteral("KAYIP")));

    choose(form, QStringLiteral("MAYIS"), "mayis");
    EXPECT_EQ(tmpmenu(),
              "01.05.2026,Cuma,A1|A2|A3|B1,|||,|||,|||\n"
              "02.05.2026,Cumartesi,B2|B3|B4|C1,|||,|||,|||\n");

    // February prints in 2028 with a 29th day; in 2026 it has none.
    addMenuRows(file, 2, {{29, u"SON"}, {29, u""}, {29, u""}, {29, u""}});
    shell::setTodayForTests(QDate(2028, 3, 1));
    const QString leap = choose(form, QStringLiteral("ŞUBAT"), "subat");
    EXPECT_EQ(tmpmenuDays(), 29U);
    EXPECT_EQ(printedDates(leap).back(), QStringLiteral("29-Şub-2028"));
    EXPECT_TRUE(leap.contains(QRegularExpression(QStringLiteral("29-Şub-2028[^\\n]*\\n\\s*Salı"))));
    shell::setTodayForTests(QDate(2026, 3, 1));
    EXPECT_EXIT(
        {
            windows::testing::MessageBoxAnswerer answerer;
            pick(form.Combo1, QStringLiteral("ŞUBAT"));
        },
        ::testing::ExitedWithCode(1), "Run-time error");
}

// print-report folds and prints a month as the window does, the school's
// name from the file; a month outside 1 to 12 is refused.
TEST_F(MonthMenu, PrintReportPrintsTheMonthMenu) {
    const std::string pdf = (folder_->path() / "tool.pdf").string();
    const auto printReport = [&](const char* month) {
        int status = -1;
        runCommand(std::string(PRINT_REPORT_EXECUTABLE) + " " +
                       shellQuote(folder_->database().string()) + " yemekmenusu --month " + month +
                       " " + shellQuote(pdf) + " 2>/dev/null",
                   &status);
        return status;
    };
    ASSERT_EQ(printReport("11"), 0);
    const QString text =
        QString::fromStdString(runCommand("pdftotext -layout " + shellQuote(pdf) + " -"));
    EXPECT_TRUE(
        text.contains(QStringLiteral("Şehit Öğretmen Anadolu Lisesi KASIM AYI YEMEK MENÜSÜ")))
        << text.toStdString();
    const int year = QDate::currentDate().year();
    const QStringList dates = printedDates(text);
    ASSERT_EQ(dates.size(), 30);
    EXPECT_EQ(dates.front(), QStringLiteral("01-Kas-%1").arg(year));
    EXPECT_EQ(tmpmenuDays(), 30U);
    EXPECT_EQ(printReport("13"), 2);
}

}  // namespace
