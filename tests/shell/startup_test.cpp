// From the splash to the main window: with and without a password, with a
// Null password, without a database.

#include <QElapsedTimer>
#include <QTest>

#include "shell/form1.h"
#include "shell/form9.h"
#include "shell/frm_splash.h"
#include "shell/kit/connection_strings.h"
#include "shell/kit/failure_modes.h"
#include "shell/scramble.h"
#include "shell/window_registry.h"
#include "store/connection.h"
#include "store/recordset.h"
#include "tests/shell/window_driver.h"

namespace {

using windows::testing::kvlFixture;
using windows::testing::MessageBoxAnswerer;
using windows::testing::SchoolWindowTest;

void setPassword(const jet::Value& stored) {
    store::Connection connection;
    connection.Open(kit::relativeConnectionString().toStdString());
    store::Recordset settings;
    settings.open(u"select* from AYAR", connection);
    settings.setField(u"SIFRE", stored);
    settings.update();
}

class StartUp : public SchoolWindowTest {};

TEST_F(StartUp, SplashLeadsToTheMainWindowWhenNoPasswordIsSet) {
    setPassword(jet::Value::text(u""));
    QElapsedTimer shown;
    shown.start();
    shell::instance<shell::frmSplash>().show();
    EXPECT_EQ(shell::instance<shell::frmSplash>().lblVersion->text(),
              QStringLiteral("Version 1.0.15"));
    ASSERT_TRUE(QTest::qWaitFor([] { return shell::isLoaded<shell::Form1>(); }, 6000));
    // About three seconds: the two timers, 1000 and 2000 ms, one after the
    // other (coarse timers may each come a little early).
    EXPECT_GE(shown.elapsed(), 2800);
    EXPECT_FALSE(shell::isLoaded<shell::frmSplash>());
    EXPECT_FALSE(shell::isLoaded<shell::Form9>());
    shell::Form1& form = shell::instance<shell::Form1>();
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Sofravan 1.0.15"));
    EXPECT_FALSE(form.Text12->text().isEmpty());  // the school's name
    EXPECT_EQ(form.Combo1->itemText(0), QStringLiteral("Tümü"));
    EXPECT_EQ(form.Combo1->count(), form.Combo3->count());
    // The sample workbook is written beside the program.
    EXPECT_TRUE(std::filesystem::exists(folder_->path() / "YEMEK_MENUSU.XLS"));
}

TEST_F(StartUp, NullPasswordOpensTheMainWindowAndASetOneAsksForIt) {
    setPassword(jet::Value());
    shell::sifrevarmi();
    EXPECT_TRUE(shell::isLoaded<shell::Form1>());
    delete &shell::instance<shell::Form1>();

    setPassword(jet::Value::text(shell::sifrele(shell::scrambleKey, u"Şifre1").toStdU16String()));
    shell::sifrevarmi();
    ASSERT_TRUE(shell::isLoaded<shell::Form9>());
    EXPECT_FALSE(shell::isLoaded<shell::Form1>());
    shell::Form9& login = shell::instance<shell::Form9>();
    EXPECT_EQ(login.windowTitle(), QStringLiteral("Giriş"));

    MessageBoxAnswerer answerer;
    windows::testing::type(login.Text1, QStringLiteral("şifre1"));  // case counts
    QTest::mouseClick(login.Command1, Qt::LeftButton);
    const MessageBoxAnswerer::Box failed{QStringLiteral("Sofravan"),
                                         QStringLiteral("Giriş başarısız!"),
                                         QMessageBox::NoIcon,
                                         {QStringLiteral("Tamam")}};
    EXPECT_EQ(answerer.boxes, QList{failed});
    EXPECT_TRUE(login.Text1->text().isEmpty());
    EXPECT_FALSE(shell::isLoaded<shell::Form1>());

    windows::testing::type(login.Text1, QStringLiteral("Şifre1"));
    QTest::keyClick(login.Text1, Qt::Key_Return);
    EXPECT_TRUE(shell::isLoaded<shell::Form1>());
    EXPECT_FALSE(shell::isLoaded<shell::Form9>());
    EXPECT_EQ(answerer.seen.size(), 1);
}

// No message of the program's own: the platform's report, then the end.
TEST_F(StartUp, MissingDatabaseEndsThroughTheRunTimeErrorReport) {
    std::filesystem::remove(folder_->database());
    EXPECT_EXIT(
        {
            MessageBoxAnswerer answerer;
            kit::bare([] { shell::sifrevarmi(); });
        },
        ::testing::ExitedWithCode(1), "Run-time error '-2147217900 \\(80040e14\\)'");
}

// A value that a field cannot take shows the provider's own number.
TEST_F(StartUp, RefusedFieldValueReportsTheProvidersNumber) {
    EXPECT_EXIT(
        {
            MessageBoxAnswerer answerer;
            kit::bare([] {
                store::Connection connection;
                connection.Open(kit::relativeConnectionString().toStdString());
                store::Recordset tally;
                tally.open(u"select* from TMP", connection);
                tally.setField(u"sabah", jet::Value::text(u"on iki"));
            });
        },
        ::testing::ExitedWithCode(1),
        "Run-time error '-2147217887 \\(80040e21\\)':\n\nMultiple-step operation generated errors");
}

}  // namespace
