// The five lists, driven through their windows as the office uses them, and
// the print-report tool; what they print is read back from the PDF.

#include <QRegularExpression>
#include <QTest>

#include "reports/period_lists.h"
#include "reports/school_name.h"
#include "reports/selectors.h"
#include "shell/clock.h"
#include "shell/form1.h"
#include "store/jet/database.h"
#include "tests/reports/report_reading.h"
#include "tests/shell/window_driver.h"

namespace {

using jet::testing::runCommand;
using jet::testing::shellQuote;
using reports::testing::exported;
using reports::testing::pick;
using reports::testing::printedText;
using reports::testing::Rows;
using windows::testing::MessageBoxAnswerer;
using windows::testing::SchoolWindowTest;

long countWhere(const Rows& rows, const std::function<bool(const QStringList&)>& keep) {
    return std::count_if(rows.begin(), rows.end(), keep);
}

// The numbers at the head of the printed rows, in print order.
std::vector<int> rowNumbers(const QString& text) {
    static const QRegularExpression row(QStringLiteral("^\\s*(\\d+)\\s+\\S"),
                                        QRegularExpression::MultilineOption);
    std::vector<int> numbers;
    for (auto match = row.globalMatch(text); match.hasNext();)
        numbers.push_back(match.next().captured(1).toInt());
    return numbers;
}

std::vector<int> oneTo(long count) {
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 1);
    return numbers;
}

class PeriodLists : public SchoolWindowTest {
protected:
    void SetUp() override {
        SchoolWindowTest::SetUp();
        if (IsSkipped())
            return;
        shell::setTodayForTests(QDate(2026, 11, 25));
        main_ = &shell::instance<shell::Form1>();
        school_ = main_->Text12->text();
    }
    shell::Form1* main_ = nullptr;
    QString school_;
};

TEST_F(PeriodLists, MonthWindowsListTheChosenMonthOfThisYear) {
    const Rows meals = exported(folder_->database(), "YEMEK");
    const Rows permits = exported(folder_->database(), "IZINLER");
    MessageBoxAnswerer answerer;
    EXPECT_FALSE(school_.isEmpty());

    main_->yemekliste->trigger();
    reports::Form3& form3 = shell::instance<reports::Form3>();
    EXPECT_TRUE(form3.isVisible());
    EXPECT_EQ(form3.Combo1->currentText(), QStringLiteral("Ay seçiniz..."));
    // Typing a month's name runs nothing; a click on the entry does.
    QTest::keyClicks(form3.Combo1->lineEdit(), QStringLiteral("KASIM"));
    EXPECT_EQ(form3.arv->ReportSource(), nullptr);
    pick(form3.Combo1, QStringLiteral("KASIM"));
    EXPECT_EQ(form3.Text1->text(), QStringLiteral("11"));
    engine::Report* first = form3.arv->ReportSource();
    ASSERT_NE(first, nullptr);
    const QString month = printedText(first, folder_->path());
    EXPECT_TRUE(
        month.simplified().contains(school_ + QStringLiteral(" KASIM AYI YEMEK YİYENLER LİSTESİ")));
    EXPECT_TRUE(month.contains(QRegularExpression(QStringLiteral(
        "SNo\\s+Sınıf\\s+No\\s+Adı\\s+Soyadı\\s+Tarih\\s+Saat\\s+Öğün\\s+Açıklama"))));
    const long novembers = countWhere(meals, [](const QStringList& row) {
        return row[2] == QLatin1String("11") && row[3] == QLatin1String("2026");
    });
    EXPECT_EQ(rowNumbers(month), oneTo(novembers));
    // A meal logged with a time of day belongs to its month all the same.
    EXPECT_TRUE(month.contains(QStringLiteral("18:51:08")));

    // The same month again: a new report from the file, numbered from 1.
    pick(form3.Combo1, QStringLiteral("KASIM"));
    ASSERT_NE(form3.arv->ReportSource(), nullptr);
    EXPECT_EQ(rowNumbers(printedText(form3.arv->ReportSource(), folder_->path())),
              oneTo(novembers));

    // A month without meals this year: the page header alone.
    pick(form3.Combo1, QStringLiteral("OCAK"));
    const QString january = printedText(form3.arv->ReportSource(), folder_->path());
    EXPECT_EQ(form3.arv->ReportSource()->pages().size(), 1U);
    EXPECT_TRUE(january.simplified().contains(school_ +
                                              QStringLiteral(" OCAK AYI YEMEK YİYENLER LİSTESİ")));
    EXPECT_TRUE(rowNumbers(january).empty());

    // Unpaid: the note exactly, a trailing blank leaves the row out.
    main_->ucret->trigger();
    reports::Form5& form5 = shell::instance<reports::Form5>();
    pick(form5.Combo1, QStringLiteral("KASIM"));
    const QString unpaid = printedText(form5.arv->ReportSource(), folder_->path());
    EXPECT_TRUE(unpaid.simplified().contains(
        school_ + QStringLiteral(" KASIM AYI ÜCRET VERMEYENLER LİSTESİ")));
    const long unpaidNovembers = countWhere(meals, [](const QStringList& row) {
        return row[2] == QLatin1String("11") && row[3] == QLatin1String("2026") &&
               row[8] == QStringLiteral("Yemek Ücretini Ödeyiniz");
    });
    EXPECT_GT(unpaidNovembers, 0);
    EXPECT_EQ(rowNumbers(unpaid), oneTo(unpaidNovembers));

    main_->izinliste->trigger();
    reports::Form2& form2 = shell::instance<reports::Form2>();
    EXPECT_EQ(form2.Text2->text(), QStringLiteral("Text2"));
    pick(form2.Combo1, QStringLiteral("EKİM"));
    const QString permitted = printedText(form2.arv->ReportSource(), folder_->path());
    EXPECT_TRUE(permitted.simplified().contains(
        school_ + QStringLiteral(" EKİM AYI YEMEK İZNİ OLANLAR LİSTESİ")));
    EXPECT_TRUE(permitted.contains(QRegularExpression(
        QStringLiteral("SNo\\s+Sınıf\\s+T.C. No\\s+No\\s+Adı\\s+Soyadı\\s+Açıklama"))));
    EXPECT_EQ(rowNumbers(permitted), oneTo(countWhere(permits, [](const QStringList& row) {
                  return row[7] == QLatin1String("10") && row[8] == QLatin1String("2026");
              })));

    // Closing drops the window and its report without a word; the next
    // opening starts anew.
    form3.close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(shell::isLoaded<reports::Form3>());
    EXPECT_FALSE(shell::isLoaded<reports::yemekyiyenler>());
    main_->yemekliste->trigger();
    EXPECT_EQ(shell::instance<reports::Form3>().arv->ReportSource(), nullptr);
    EXPECT_TRUE(answerer.seen.isEmpty());
}

TEST_F(PeriodLists, DayWindowsListTheDayByClassNumberedThrough) {
    const Rows meals = exported(folder_->database(), "YEMEK");
    const auto onDay = [](const char* stored) {
        return [stored](const QStringList& row) { return row[4] == QLatin1String(stored); };
    };

    main_->gunliste->trigger();
    reports::Form4& form4 = shell::instance<reports::Form4>();
    EXPECT_EQ(form4.takvim->date(), QDate(2026, 11, 25));
    EXPECT_EQ(form4.arv->ReportSource(), nullptr);
    // A day and a month both below 13: the literal is built from the parts.
    form4.takvim->setDate(QDate(2026, 10, 3));
    QString day = printedText(form4.arv->ReportSource(), folder_->path());
    EXPECT_TRUE(day.simplified().contains(
        school_ + QStringLiteral(" 03/10/2026 CUMARTESİ GÜNÜ YEMEK YİYENLER LİSTESİ")));
    EXPECT_EQ(rowNumbers(day), oneTo(countWhere(meals, onDay("10/03/26 00:00:00"))));

    form4.takvim->setDate(QDate(2026, 10, 19));
    day = printedText(form4.arv->ReportSource(), folder_->path());
    EXPECT_TRUE(day.simplified().contains(
        QStringLiteral(" 19/10/2026 PAZARTESİ GÜNÜ YEMEK YİYENLER LİSTESİ")));
    const std::vector<int> numbers = rowNumbers(day);
    EXPECT_EQ(numbers, oneTo(countWhere(meals, onDay("10/19/26 00:00:00"))));
    // The window as the clerk sees it on a small screen.
    form4.resize(1024, 768);
    QTest::qWait(50);
    EXPECT_TRUE(form4.grab().save(QStringLiteral(SOFRAVAN_SCREENSHOT_DIR "/gunyemek.png")));
    EXPECT_EQ(form4.arv->geometry(), QRect(0, 24, 1024, 768 - 24));
    // One row per meal: the student who ate three times shows three times.
    EXPECT_EQ(day.count(QRegularExpression(QStringLiteral("\\s458\\s"))), 3);
    // Sorted by class, numbered through the classes without a restart.
    static const QRegularExpression rowClass(QStringLiteral("^\\s*\\d+\\s+(\\d+[A-Z]+)\\s"),
                                             QRegularExpression::MultilineOption);
    QStringList classes;
    for (auto match = rowClass.globalMatch(day); match.hasNext();)
        classes << match.next().captured(1);
    EXPECT_GT(classes.size(), 10);
    EXPECT_TRUE(std::is_sorted(classes.begin(), classes.end()));

    // The unpaid of a day: the entry logged at 12:02 of that day is not found.
    main_->gunucret->trigger();
    reports::Form6& form6 = shell::instance<reports::Form6>();
    form6.takvim->setDate(QDate(2026, 11, 4));
    const QString unpaid = printedText(form6.arv->ReportSource(), folder_->path());
    EXPECT_TRUE(unpaid.simplified().contains(
        QStringLiteral(" 04/11/2026 ÇARŞAMBA GÜNÜ ÜCRET VERMEYENLER LİSTESİ")));
    EXPECT_EQ(rowNumbers(unpaid), oneTo(countWhere(meals, [](const QStringList& row) {
                  return row[4] == QLatin1String("11/04/26 00:00:00") &&
                         row[8] == QStringLiteral("Yemek Ücretini Ödeyiniz");
              })));
    EXPECT_FALSE(unpaid.contains(QStringLiteral("12:44:14")));
}

// print-report, as a school runs it from a scheduled task.
class PrintReport : public ::testing::Test {
protected:
    void SetUp() override {
        SKIP_WITHOUT_FIXTURES();
        std::filesystem::copy_file(windows::testing::kvlFixture(), folder_.path() / "okul.mdb");
    }
    int run(const std::string& arguments, std::string* errors = nullptr) {
        int status = 0;
        const std::string output = runCommand(
            std::string(PRINT_REPORT_EXECUTABLE) + " " +
                shellQuote((folder_.path() / "okul.mdb").string()) + " " + arguments + " 2>&1",
            &status);
        if (errors != nullptr)
            *errors = output;
        return status;
    }
    std::string out(const char* name) const { return shellQuote((folder_.path() / name).string()); }
    jet::testing::TempDir folder_;
};

TEST_F(PrintReport, WritesTheListOrSaysWhyNot) {
    EXPECT_EQ(run("gunyemek --day 19.10.2026 " + out("day.pdf")), 0);
    const QString day =
        QString::fromStdString(runCommand("pdftotext -layout " + out("day.pdf") + " -"));
    EXPECT_TRUE(day.simplified().contains(QStringLiteral(
        "Şehit Öğretmen Anadolu Lisesi 19/10/2026 PAZARTESİ GÜNÜ YEMEK YİYENLER LİSTESİ")));
    EXPECT_FALSE(rowNumbers(day).empty());

    // The tally counts the month into TMP first, as its window does.
    EXPECT_EQ(run("puantaj --month 11 " + out("tally.pdf")), 0);
    const QString tally =
        QString::fromStdString(runCommand("pdftotext -layout " + out("tally.pdf") + " -"));
    EXPECT_TRUE(tally.simplified().contains(
        QStringLiteral("Şehit Öğretmen Anadolu Lisesi KASIM AYI YEMEK PUANTAJI")));
    EXPECT_TRUE(tally.contains(QStringLiteral("GENEL TOPLAM")));

    std::string errors;
    EXPECT_EQ(run("puanlar --month 3 " + out("x.pdf"), &errors), 2);
    EXPECT_NE(errors.find("bilinmeyen rapor"), std::string::npos);
    EXPECT_EQ(run("yemekyiyenler --month 13 " + out("x.pdf")), 2);
    EXPECT_EQ(run("gunyemek --month 3 " + out("x.pdf")), 2);
    EXPECT_EQ(run("gunyemek --day 19.10.2026 " + out("no/such/folder/x.pdf"), &errors), 2);
    EXPECT_NE(errors.find("PDF"), std::string::npos);
    std::filesystem::remove(folder_.path() / "okul.mdb");
    EXPECT_EQ(run("gunyemek --day 19.10.2026 " + out("x.pdf"), &errors), 2);
    EXPECT_FALSE(std::filesystem::exists(folder_.path() / "x.pdf"));
}

// The row counter is a 16-bit Integer: a month of 32,767 rows fails at the
// end of its data, as the window's run would, and leaves no PDF; one row
// fewer prints.
TEST_F(PrintReport, TheRowCounterOverflowsAtItsLimit) {
    // January of the year on the computer's clock, which the tool reads.
    const QString year = QString::number(QDate::currentDate().year());
    const std::vector<jet::Value> meal = {jet::Value(),
                                          jet::Value::integer(1),
                                          jet::Value::integer(1),
                                          jet::Value::text(year.toStdU16String()),
                                          jet::Value(),
                                          jet::Value::text(u"12:00:00"),
                                          jet::Value::text(u"Öğle yemeği"),
                                          jet::Value::integer(1),
                                          jet::Value(),
                                          jet::Value::text(u"9A"),
                                          jet::Value::integer(1),
                                          jet::Value::text(u"Ad"),
                                          jet::Value::text(u"Soyad")};
    const auto logMeals = [&](int count) {
        jet::Database database((folder_.path() / "okul.mdb").string(),
                               jet::PageFile::Mode::ReadWrite);
        for (int start = 0; start < count; start += 5000) {
            database.insertRows(u"YEMEK", std::vector<std::vector<jet::Value>>(
                                              std::min(5000, count - start), meal));
        }
    };
    logMeals(32766);
    EXPECT_EQ(run("yemekyiyenler --month 1 " + out("full.pdf")), 0);
    // 51 rows to a page under the page header.
    const std::string info = runCommand("pdfinfo " + out("full.pdf"));
    EXPECT_TRUE(QString::fromStdString(info).contains(
        QRegularExpression(QStringLiteral("Pages:\\s+643\\n"))))
        << info;

    logMeals(1);
    std::string errors;
    EXPECT_EQ(run("yemekyiyenler --month 1 " + out("over.pdf"), &errors), 1);
    EXPECT_NE(errors.find("Run-time error '6'"), std::string::npos) << errors;
    EXPECT_NE(errors.find("Overflow"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(folder_.path() / "over.pdf"));
}

}  // namespace
