// The permit list of the main window: narrowing it, and the two deletions.

#include <QTest>

#include "shell/clock.h"
#include "shell/form1.h"
#include "shell/kit/vb_number.h"
#include "shell/window_registry.h"
#include "store/jet/database.h"
#include "store/jet/integrity_check.h"
#include "tests/shell/window_driver.h"

namespace {

using jet::testing::readRows;
using jet::testing::runCommand;
using jet::testing::shellQuote;
using windows::testing::kvlFixture;
using windows::testing::MessageBoxAnswerer;
using windows::testing::SchoolWindowTest;

class PermitList : public SchoolWindowTest {
protected:
    std::size_t storedPermits() const {
        return readRows(jet::Database(folder_->database().string()), u"IZINLER").size();
    }
    std::size_t exportedPermits() const {
        const std::string csv =
            runCommand("mdb-export " + shellQuote(folder_->database().string()) + " IZINLER");
        return static_cast<std::size_t>(std::count(csv.begin(), csv.end(), '\n')) - 1;
    }
};

TEST_F(PermitList, OptionsAndSearchBoxesNarrowAndLabel16KeepsItsCount) {
    shell::setTodayForTests(QDate(2026, 11, 15));
    shell::Form1& form = shell::instance<shell::Form1>();
    store::Recordset& list = form.izinler.Recordset();
    const long all = list.recordCount();
    EXPECT_EQ(form.Label16->text(), QString::number(all));

    form.Option2->setChecked(true);
    EXPECT_EQ(QString::fromStdU16String(list.filter()), QStringLiteral("yıl=2026 and ay=11"));
    const long month = list.recordCount();
    EXPECT_GT(month, 0);
    EXPECT_LT(month, all);
    EXPECT_EQ(form.Label16->text(), QString::number(month));
    EXPECT_EQ(form.DataGrid4->model().rowCount(), month);

    // A search box replaces the month's filter; Label16 stays as it was.
    QTest::keyClicks(form.Text3, QStringLiteral("a"));
    EXPECT_EQ(QString::fromStdU16String(list.filter()), QStringLiteral(" Adi like 'a%'"));
    EXPECT_EQ(form.Label16->text(), QString::number(month));
    form.Text3->clear();
    EXPECT_EQ(list.recordCount(), all);
    EXPECT_TRUE(form.Option2->isChecked());

    // The surname by its trimmed prefix, the identity number as a number:
    // the first row's own values find it.
    list.moveFirst();
    const QString surname = QString::fromStdU16String(list.field(u"Soyadi").asText());
    const QString identity = kit::plainNumber(list.field(u"TCKimlikNo").asDouble());
    windows::testing::type(form.Text7, QStringLiteral(" ") + surname.left(2));
    EXPECT_EQ(QString::fromStdU16String(list.filter()),
              QStringLiteral(" Soyadi like '") + surname.left(2) + QStringLiteral("%'"));
    EXPECT_GT(list.recordCount(), 0);
    EXPECT_LT(list.recordCount(), all);
    form.Text7->clear();
    EXPECT_EQ(list.recordCount(), all);
    QTest::keyClicks(form.Text8, identity + QStringLiteral("x"));
    EXPECT_EQ(QString::fromStdU16String(list.filter()), QStringLiteral("TCKimlikno=") + identity);
    EXPECT_GE(list.recordCount(), 1);
    EXPECT_EQ(kit::plainNumber(list.field(u"TCKimlikNo").asDouble()), identity);
    form.Text8->clear();
    EXPECT_EQ(list.recordCount(), all);
    EXPECT_TRUE(list.filter().empty());

    // A new month with no registrations: an empty list, and a count of 0.
    shell::setTodayForTests(QDate(2030, 1, 2));
    form.Option1->setChecked(true);
    form.Option2->setChecked(true);
    EXPECT_EQ(list.recordCount(), 0);
    EXPECT_EQ(form.Label16->text(), QStringLiteral("0"));

    // A failing number filter is passed over and the old filter stays.
    QTest::keyClicks(form.Text4, QStringLiteral("1x"));
    EXPECT_EQ(QString::fromStdU16String(list.filter()), QStringLiteral(" Numara like 1"));
}

TEST_F(PermitList, DeletionsAskAndReloadWhateverTheAnswer) {
    const std::size_t before = storedPermits();
    shell::Form1& form = shell::instance<shell::Form1>();
    store::Recordset& list = form.izinler.Recordset();
    const auto question = [](const char* text) {
        return MessageBoxAnswerer::Box{QStringLiteral("Sofravan"),
                                       QString::fromUtf8(text),
                                       QMessageBox::Question,
                                       {QStringLiteral("Evet"), QStringLiteral("Hayır")}};
    };

    // No: nothing deleted, but the class filter is gone.
    const QString someClass = form.Combo3->itemText(1);
    form.Combo3->setListIndex(1);
    ASSERT_LT(list.recordCount(), static_cast<long>(before));
    {
        MessageBoxAnswerer no(QStringLiteral("Hayır"));
        QTest::mouseClick(form.Command5, Qt::LeftButton);
        EXPECT_EQ(no.boxes, QList{question("Seçili kayıt silinsin mi?")});
    }
    EXPECT_EQ(list.recordCount(), static_cast<long>(before));
    EXPECT_EQ(form.Combo3->currentText(), someClass);

    // Yes on the row chosen in the grid: that row goes.
    form.DataGrid4->setCurrentIndex(form.DataGrid4->model().index(2, 0));
    EXPECT_EQ(list.absolutePosition(), 3);
    {
        MessageBoxAnswerer yes(QStringLiteral("Evet"));
        QTest::mouseClick(form.Command5, Qt::LeftButton);
    }
    EXPECT_EQ(storedPermits(), before - 1);
    EXPECT_EQ(exportedPermits(), before - 1);
    EXPECT_EQ(list.recordCount(), static_cast<long>(before - 1));

    // Yes on an empty list: the deletion fails, the handler ends there and
    // the list is not reloaded, so its filter stays.
    QTest::keyClicks(form.Text8, QStringLiteral("1"));
    ASSERT_EQ(list.recordCount(), 0);
    {
        MessageBoxAnswerer yes(QStringLiteral("Evet"));
        QTest::mouseClick(form.Command5, Qt::LeftButton);
        EXPECT_EQ(yes.seen.size(), 1);
    }
    EXPECT_EQ(QString::fromStdU16String(list.filter()), QStringLiteral("TCKimlikno=1"));
    EXPECT_EQ(storedPermits(), before - 1);

    // No at "Tümünü Sil": nothing deleted, the filter gone.
    form.Combo3->setListIndex(1);
    {
        MessageBoxAnswerer no(QStringLiteral("Hayır"));
        QTest::mouseClick(form.Command4, Qt::LeftButton);
        EXPECT_EQ(no.boxes, QList{question("Tüm seçili kayıtlar silinsin mi?")});
    }
    EXPECT_EQ(list.recordCount(), static_cast<long>(before - 1));
    EXPECT_EQ(storedPermits(), before - 1);

    // "Tümünü Sil" in a filtered list, from its second row: the filtered
    // count of rounds runs out of rows, the first row stays.
    form.Combo3->setListIndex(1);
    const long inClass = list.recordCount();
    ASSERT_GE(inClass, 2);
    list.moveNext();
    {
        MessageBoxAnswerer yes(QStringLiteral("Evet"));
        QTest::mouseClick(form.Command4, Qt::LeftButton);
    }
    const std::size_t left = before - 1 - static_cast<std::size_t>(inClass - 1);
    EXPECT_EQ(storedPermits(), left);
    EXPECT_EQ(exportedPermits(), left);
    form.Combo3->setListIndex(1);
    EXPECT_EQ(list.recordCount(), 1);

    // Without a filter, from the first row: every permit of every month.
    form.Combo3->setListIndex(0);
    list.moveFirst();
    {
        MessageBoxAnswerer yes(QStringLiteral("Evet"));
        QTest::mouseClick(form.Command4, Qt::LeftButton);
    }
    EXPECT_EQ(storedPermits(), 0U);
    EXPECT_EQ(exportedPermits(), 0U);
    EXPECT_EQ(list.recordCount(), 0);
    EXPECT_EQ(jet::checkIntegrity(jet::Database(folder_->database().string()).file()),
              std::vector<std::string>{});
}

}  // namespace
