// The e-Okul window driven as the office uses it, against a stand-in portal
// on the loopback interface: logging in, choosing the month in the page,
// fetching it and writing the meals into the page's text areas, then read
// back through the page itself.

#include <QImage>
#include <QJsonArray>
#include <QSignalSpy>
#include <QTest>

#include "menus/menuhazirla.h"
#include "portal/form12.h"
#include "shell/clock.h"
#include "shell/form1.h"
#include "shell/months.h"
#include "shell/window_registry.h"
#include "tests/portal/portal_site.h"
#include "tests/reports/report_reading.h"
#include "tests/shell/page_picture.h"
#include "tests/shell/window_driver.h"

namespace {

using portal::Form12;
using reports::testing::exported;
using windows::testing::MessageBoxAnswerer;
using windows::testing::SchoolWindowTest;

const QString kNoMonthChosen = QStringLiteral("Menü girilecek ay seçimi yapılmamış");
const QString kMonthUnreadable =
    QStringLiteral("Gerekli ay bilgileri alınamıyor.Bilgileri tekrar giriniz...");

class PortalEntry : public SchoolWindowTest {
protected:
    void SetUp() override {
        SchoolWindowTest::SetUp();
        qputenv("SOFRAVAN_EOKUL_SITE", site_.address().toUtf8());
    }
    void TearDown() override {
        qunsetenv("SOFRAVAN_EOKUL_SITE");
        SchoolWindowTest::TearDown();
    }

    // Runs the step and waits until the page it leads to has loaded.
    static void loadAfter(Form12& window, const std::function<void()>& step) {
        QSignalSpy loaded(window.wb, &QWebEngineView::loadFinished);
        step();
        ASSERT_TRUE(loaded.wait(15000));
        ASSERT_TRUE(loaded.first().first().toBool());
    }

    // A month chosen in the page's list, as a user picks it.
    static void chooseInPage(Form12& window, int month) {
        loadAfter(window, [&] {
            window.wb->evaluate(QStringLiteral("var list = document.getElementById('ddlAy');"
                                               " list.value = '%1';"
                                               " list.dispatchEvent(new Event('change'));")
                                    .arg(month));
        });
    }

    // What the menu table's text areas hold, in document order.
    static QStringList menuAreas(Form12& window) {
        QStringList texts;
        for (const QVariant& text :
             window.wb
                 ->evaluate(QStringLiteral("return Array.from(document.querySelectorAll("
                                           "'#menu textarea'), area => area.value);"))
                 .toList())
            texts.append(text.toString());
        return texts;
    }

    // What the page should show after the given meals of the month went in
    // over a page of `days` days: each day's area holds the day's four lines
    // of the meal, Null as an empty line; other areas keep `before` but
    // for the word "null", which the cleaning after a transfer takes out.
    QStringList expectedAreas(int month, int days, const QList<int>& meals,
                              QStringList before) const {
        for (QString& text : before)
            text.remove(QStringLiteral("null"));
        const auto rows = exported(folder_->database(), "MENULER");
        std::vector<QStringList> ofMonth;
        for (const QStringList& row : rows)
            if (row.at(0) == QString::number(month))
                ofMonth.push_back(row);
        for (int day = 0; day < days; ++day)
            for (const int meal : meals) {
                QStringList lines;
                for (int line = 0; line < 4; ++line)
                    lines.append(ofMonth.at(day * 4 + line).at(1 + meal));
                before[day * 4 + meal - 1] = lines.join(u'\n');
            }
        return before;
    }

    portal::testing::PortalSite site_;
};

TEST_F(PortalEntry, TheMonthsMealsGoIntoThePortalsMenuPage) {
    shell::setTodayForTests(QDate(2026, 11, 23));
    MessageBoxAnswerer boxes;
    // Opened from the menu preparation, which goes; the portal's start page loads.
    shell::instance<shell::Form1>().mnhzirla->trigger();
    shell::instance<menus::menuhazirla>().Command2->click();
    EXPECT_FALSE(shell::isLoaded<menus::menuhazirla>());
    ASSERT_TRUE(shell::isLoaded<Form12>());
    Form12& window = shell::instance<Form12>();
    kit::Wait(*window.wb);
    EXPECT_EQ(window.wb->url().toString(), site_.address() + QStringLiteral("/main.aspx"));
    EXPECT_EQ(window.Text1->text(), QStringLiteral("30"));
    EXPECT_TRUE(window.Option5->isChecked());

    // The login page has no month list; the menu page has one with no month yet.
    window.Command2->click();
    window.Command1->click();
    loadAfter(window, [&] { window.wb->evaluate(QStringLiteral("giris.click();")); });
    window.Command2->click();
    EXPECT_EQ(boxes.seen, QStringList({kMonthUnreadable, kNoMonthChosen, kNoMonthChosen}));
    EXPECT_TRUE(window.Text2->text().isEmpty());

    // November: 30 days. The page's own text is read and cleaned; "Tümü"
    // transfers nothing; then each meal by its option.
    chooseInPage(window, 11);
    window.Command3->click();
    QStringList before = menuAreas(window);
    ASSERT_EQ(before.size(), 120);
    EXPECT_EQ(before.at(0), QStringLiteral("eski kahvaltı"));
    EXPECT_EQ(before.at(7), QStringLiteral("Kek "));
    window.Command2->click();
    EXPECT_EQ(window.Text2->text(), QStringLiteral("11"));
    EXPECT_EQ(window.Adodc1.Recordset().recordCount(), 120);
    window.Command1->click();
    EXPECT_EQ(menuAreas(window), before);
    QRadioButton* options[] = {window.Option1, window.Option2, window.Option3, window.Option4};
    for (int meal = 1; meal <= 4; ++meal) {
        options[meal - 1]->click();
        window.Command1->click();
    }
    EXPECT_EQ(menuAreas(window), expectedAreas(11, 30, {1, 2, 3, 4}, before));
    EXPECT_EQ(menuAreas(window).at(0), QStringLiteral("PEYNİR\nZEYTİN\nDOMATES\nÇAY"));
    EXPECT_EQ(menuAreas(window).at(3), QStringLiteral("PATLAMIŞ MISIR,PORTAKAL\n\n\n"));
    EXPECT_EQ(window.wb->evaluate(QStringLiteral("return duyuru.value;")).toString(),
              QStringLiteral("Duyuru"));

    // October: 31 days, and its stray fifth row after the last day is left
    // over. The month changed in the page is fetched again by MENÜ AKTAR;
    // the meal buttons go on with it.
    chooseInPage(window, 10);
    before = menuAreas(window);
    ASSERT_EQ(before.size(), 124);
    window.Option1->click();
    window.Command1->click();
    EXPECT_EQ(window.Text1->text(), QStringLiteral("31"));
    EXPECT_EQ(window.Adodc1.Recordset().recordCount(), 125);
    window.cmdogle->click();
    window.cmdaksam->click();
    window.cmdara->click();
    EXPECT_EQ(menuAreas(window), expectedAreas(10, 31, {1, 2, 3, 4}, before));
    windows::testing::windowPicture(window).save(
        QStringLiteral(SOFRAVAN_SCREENSHOT_DIR "/form12.png"));

    // February on a page of 20 days: the first 20 days go in. On a menu
    // table of one class more nothing is written.
    loadAfter(window, [&] {
        window.wb->load(QUrl(site_.address() + QStringLiteral("/menu.aspx?ay=2&gunler=20")));
    });
    before = menuAreas(window);
    window.Command1->click();
    EXPECT_EQ(window.Text1->text(), QStringLiteral("28"));
    EXPECT_EQ(menuAreas(window), expectedAreas(2, 20, {1}, before));
    loadAfter(window, [&] {
        window.wb->load(QUrl(site_.address() + QStringLiteral("/menu.aspx?ay=2&sinif=farkli")));
    });
    before = menuAreas(window);
    ASSERT_EQ(before.size(), 112);
    window.Command1->click();
    window.Command3->click();
    EXPECT_EQ(menuAreas(window), before);
    EXPECT_EQ(boxes.seen.size(), 3);

    // "Tümü" shows every month again.
    window.Option5->click();
    EXPECT_EQ(window.Adodc1.Recordset().recordCount(), 357);

    // The main window's menu item opens it too.
    window.close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    shell::instance<shell::Form1>().menu->trigger();
    EXPECT_TRUE(shell::isLoaded<Form12>());
}

}  // namespace
