// The monthly tally through Form7, against the 93 filtered updates and 93
// grouped queries it stands for, and the report puantaj as it prints.

#include <QLocale>
#include <QRegularExpression>
#include <QTest>

#include "reports/form7.h"
#include "reports/school_name.h"
#include "shell/kit/connection_strings.h"
#include "shell/kit/value_text.h"
#include "store/data_control.h"
#include "store/jet/database.h"
#include "store/sql/executor.h"
#include "tests/reports/report_reading.h"
#include "tests/shell/window_driver.h"

namespace {

namespace fs = std::filesystem;
using jet::testing::readRows;
using jet::testing::runCommand;
using jet::testing::shellQuote;
using reports::testing::exported;
using reports::testing::pick;
using reports::testing::printedText;
using reports::testing::Rows;
using windows::testing::kvlFixture;
using windows::testing::SchoolWindowTest;

const std::u16string kMeals[] = {u"Kahvaltı", u"Öğle yemeği", u"Akşam yemeği"};
const std::u16string kColumns[] = {u"sabah", u"ogle", u"aksam"};

std::u16string number(int value) {
    return QString::number(value).toStdU16String();
}

void ignoringFailures(const std::function<void()>& statement) {
    try {
        statement();
    } catch (const std::exception&) {
    }
}

// The tally as the window's algorithm spells it, statement by statement,
// every failure passed over: on a file of its own, with its own data controls.
void tallyLiterally(const fs::path& file, int month) {
    const std::string connection =
        kit::connectionString(QString::fromStdString(file.string())).toStdString();
    store::DataControl adodc1;
    adodc1.connectionString = connection;
    store::DataControl temp;
    temp.connectionString = connection;
    temp.recordSource = u"tmp";
    temp.Refresh();
    store::Recordset& tmp = temp.recordset();
    tmp.setSort(u"tarih asc");
    for (const std::u16string& column : kColumns) {
        for (int day = 1; day <= 31; ++day) {
            ignoringFailures([&] { tmp.setFilter(u"tarih=" + number(day)); });
            ignoringFailures([&] { tmp.setField(column, jet::Value::integer(0)); });
            ignoringFailures([&] { tmp.update(); });
        }
    }
    for (std::size_t pass = 0; pass < 3; ++pass) {
        for (int day = 1; day <= 31; ++day) {
            adodc1.recordSource =
                u"SELECT Count(yemek.gunduzlu) AS Saygunduzlu, yemek.gun, yemek.ay, "
                u"yemek.gunduzlu,yemek.ogun From yemek GROUP BY yemek.gun, yemek.ay, "
                u"yemek.gunduzlu,yemek.ogun HAVING yemek.gun=" +
                number(day) + u" AND yemek.ay=" + number(month) + u" and yemek.ogun='" +
                kMeals[pass] + u"' AND yemek.gunduzlu=1";
            ignoringFailures([&] { adodc1.Refresh(); });
            ignoringFailures([&] {
                const jet::Value count = adodc1.recordset().field(u"saygunduzlu");
                tmp.setFilter(u"tarih=" + number(day));
                tmp.setField(kColumns[pass], count);
                tmp.update();
            });
        }
    }
}

// Rows as lines of text, for comparisons that print readably.
std::string lines(const Rows& rows) {
    QString text;
    for (const QStringList& row : rows)
        text += row.join(u',') + u'\n';
    return text.toStdString();
}

// The month's meals of YEMEK by day and pass, of day students, from
// mdbtools' export: the count a person would make, reading a meal's name in
// any case but with its Turkish letters.
std::array<std::array<int, 3>, 32> countedByHand(const Rows& meals, int month) {
    const QLocale turkish(QLocale::Turkish);
    std::array<std::array<int, 3>, 32> counts{};
    for (const QStringList& row : meals) {
        if (row[2].toInt() != month || row[7] != QLatin1String("1"))
            continue;
        for (std::size_t pass = 0; pass < 3; ++pass) {
            if (turkish.toLower(row[6]) == turkish.toLower(QString::fromStdU16String(kMeals[pass])))
                ++counts.at(row[1].toUInt())[pass];
        }
    }
    return counts;
}

class Tally : public SchoolWindowTest {
protected:
    void SetUp() override {
        SchoolWindowTest::SetUp();
        if (IsSkipped())
            return;
        fs::copy_file(kvlFixture(), literal_.path() / "kvl.mdb");
        // A breakfast logged in capitals, which Jet's texts match.
        for (const fs::path& file : {folder_->database(), literalFile()}) {
            jet::Database database(file.string(), jet::PageFile::Mode::ReadWrite);
            database.insertRows(
                u"YEMEK", {{jet::Value(), jet::Value::integer(3), jet::Value::integer(11),
                            jet::Value::text(u"2026"), jet::Value(), jet::Value::text(u"07:10:00"),
                            jet::Value::text(u"KAHVALTI"), jet::Value::integer(1), jet::Value(),
                            jet::Value::text(u"9A"), jet::Value::integer(1),
                            jet::Value::text(u"Ad"), jet::Value::text(u"Soyad")}});
        }
        reports::setSchoolNameWithoutMainWindow(QStringLiteral("Deneme Lisesi"));
        form_ = &shell::instance<reports::Form7>();
        form_->show();
    }
    fs::path literalFile() const { return literal_.path() / "kvl.mdb"; }

    // Chooses the month in the window and tallies the other copy the literal
    // way: TMP must export the same from both, and read the same with ours.
    Rows chooseAndCompare(const QString& month) {
        pick(form_->Combo1, month);
        tallyLiterally(literalFile(), form_->Text1->text().toInt());
        const Rows tmp = exported(folder_->database(), "TMP");
        EXPECT_EQ(lines(tmp), lines(exported(literalFile(), "TMP"))) << month.toStdString();
        Rows ours;
        for (const std::vector<jet::Value>& row :
             readRows(jet::Database(folder_->database().string()), u"TMP")) {
            ours.emplace_back();
            for (const jet::Value& value : row)
                ours.back() << kit::displayText(value);
        }
        EXPECT_EQ(lines(tmp), lines(ours)) << month.toStdString();
        return tmp;
    }

    jet::testing::TempDir literal_;
    reports::Form7* form_ = nullptr;
};

TEST_F(Tally, Form7CountsAsTheNinetyThreeQueriesDo) {
    const Rows meals = exported(folder_->database(), "YEMEK");
    EXPECT_EQ(form_->windowTitle(), QStringLiteral("Puantaj"));
    EXPECT_EQ(form_->Combo1->currentText(), QStringLiteral("Ay seçiniz..."));
    EXPECT_EQ(form_->Text2->text(), QStringLiteral("Text2"));
    for (const char* name :
         {"Label1", "Combo1", "Text1", "Text2", "DataGrid1", "DataGrid2", "DataGrid3", "arv"})
        EXPECT_NE(form_->findChild<QWidget*>(QLatin1String(name)), nullptr) << name;
    EXPECT_EQ(form_->temp.Recordset().recordCount(), 31);

    // November of 2025 and 2026 together; boarders and "Ogle yemegi" count
    // nowhere; days 23 to 31 have no meals in either year.
    const Rows november = chooseAndCompare(QStringLiteral("KASIM"));
    EXPECT_EQ(form_->Text1->text(), QStringLiteral("11"));
    const auto byHand = countedByHand(meals, 11);
    ASSERT_EQ(november.size(), 31U);
    for (int day = 1; day <= 31; ++day) {
        const QStringList& row = november[day - 1];
        EXPECT_EQ(row[0].toInt(), day);
        for (std::size_t pass = 0; pass < 3; ++pass)
            EXPECT_EQ(row[1 + pass].toInt(), byHand.at(day)[pass]) << day;
    }
    const auto holds = [&](const std::function<bool(const QStringList&)>& keep) {
        return std::any_of(meals.begin(), meals.end(), keep);
    };
    const auto inNovember = [](const QStringList& row) { return row[2] == QLatin1String("11"); };
    EXPECT_TRUE(holds([&](const QStringList& r) { return inNovember(r) && r[3] == "2025"; }));
    EXPECT_TRUE(holds([&](const QStringList& r) { return inNovember(r) && r[3] == "2026"; }));
    EXPECT_TRUE(holds([&](const QStringList& r) {
        return inNovember(r) && r[6] == QLatin1String("Ogle yemegi") && r[7] == "1";
    }));
    EXPECT_TRUE(holds([&](const QStringList& r) { return inNovember(r) && r[7] == "0"; }));
    EXPECT_TRUE(holds([&](const QStringList& r) { return r[6] == QLatin1String("KAHVALTI"); }));
    EXPECT_FALSE(holds([&](const QStringList& r) { return inNovember(r) && r[1] == "25"; }));
    EXPECT_EQ(november[24], (QStringList{"25", "0", "0", "0"}));
    EXPECT_GT(byHand[3][1], 0);
    // The general total: the first row's day, breakfasts and lunches.
    EXPECT_EQ(
        form_->Text2->text(),
        QString::number(november[0][0].toInt() + november[0][1].toInt() + november[0][2].toInt()));

    // October fills the last days; February, a short month, clears them to
    // 0 and still has 31 rows.
    const Rows october = chooseAndCompare(QStringLiteral("EKİM"));
    EXPECT_GT(october[30][2].toInt(), 0);
    const Rows february = chooseAndCompare(QStringLiteral("ŞUBAT"));
    ASSERT_EQ(february.size(), 31U);
    for (int day = 29; day <= 31; ++day)
        EXPECT_EQ(february[day - 1], (QStringList{QString::number(day), "0", "0", "0"}));
    EXPECT_EQ(form_->Text2->text(), QStringLiteral("1"));

    // Another program deletes day 2's row and adds a second row for day 4
    // while the window is open: day 2's update fails and the day is skipped,
    // only the first row of day 4 is written; the next choice finds TMP so.
    for (const fs::path& file : {folder_->database(), literalFile()}) {
        jet::Database database(file.string(), jet::PageFile::Mode::ReadWrite);
        sql::execute(database, u"delete* from tmp where tarih=2");
        database.insertRows(u"TMP", {{jet::Value::integer(4), jet::Value::integer(7),
                                      jet::Value::integer(7), jet::Value::integer(7)}});
    }
    for (const QString& month : {QStringLiteral("EKİM"), QStringLiteral("KASIM")}) {
        const Rows changed = chooseAndCompare(month);
        ASSERT_EQ(changed.size(), 31U);
        EXPECT_EQ(changed[1][0], QStringLiteral("3"));
        EXPECT_EQ(changed[30], (QStringList{"4", "7", "7", "7"}));
    }
    EXPECT_EQ(exported(folder_->database(), "TMP")[1], november[2]);
}

// What the report prints: the title, the heads, a row per day with the
// breakfasts under "GÜN" too, the column sums and the window's general total.
TEST_F(Tally, PuantajPrintsTmpWithItsSums) {
    pick(form_->Combo1, QStringLiteral("KASIM"));
    const QString text = printedText(form_->arv->ReportSource(), folder_->path(), "puantaj");
    const fs::path pdf = folder_->path() / "puantaj.pdf";
    EXPECT_TRUE(text.contains(QStringLiteral("Deneme Lisesi KASIM AYI YEMEK PUANTAJI")))
        << text.toStdString();
    EXPECT_TRUE(text.contains(
        QRegularExpression(QStringLiteral("TARİH\\s+GÜN\\s+SABAH\\s+ÖĞLE\\s+AKŞAM"))));

    const Rows tmp = exported(folder_->database(), "TMP");
    static const QRegularExpression row(
        QStringLiteral("^\\s*(\\d+)\\s+(\\d+)\\s+(\\d+)\\s+(\\d+)\\s+(\\d+)\\s*$"),
        QRegularExpression::MultilineOption);
    Rows printed;
    for (auto match = row.globalMatch(text); match.hasNext();) {
        const QRegularExpressionMatch line = match.next();
        printed.push_back({line.captured(1), line.captured(3), line.captured(4), line.captured(5)});
        EXPECT_EQ(line.captured(2), line.captured(3)) << "GÜN prints the breakfasts";
    }
    EXPECT_EQ(printed, tmp);

    int sums[3] = {};
    for (const QStringList& day : tmp) {
        for (int pass = 0; pass < 3; ++pass)
            sums[pass] += day[1 + pass].toInt();
    }
    const QRegularExpression totals(QStringLiteral("TOPLAM :\\s+(\\d+)\\s+(\\d+)\\s+(\\d+)"));
    const QRegularExpressionMatch total = totals.match(text);
    ASSERT_TRUE(total.hasMatch()) << text.toStdString();
    EXPECT_EQ(total.captured(1).toInt(), sums[0]);
    EXPECT_EQ(total.captured(2).toInt(), sums[1]);
    EXPECT_EQ(total.captured(3).toInt(), sums[2]);
    // Not a total of the month: the first row's day, breakfasts and lunches.
    const QRegularExpressionMatch general =
        QRegularExpression(QStringLiteral("GENEL TOPLAM :\\s+(\\d+)")).match(text);
    EXPECT_EQ(general.captured(1), form_->Text2->text());
    EXPECT_NE(general.captured(1).toInt(), sums[0] + sums[1] + sums[2]);

    EXPECT_EQ(runCommand("pdftoppm -r 60 -png " + shellQuote(pdf.string()) + " " +
                         shellQuote(SOFRAVAN_SCREENSHOT_DIR "/puantaj")),
              "");
}

}  // namespace
