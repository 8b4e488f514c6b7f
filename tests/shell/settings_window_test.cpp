// The settings and about windows driven as the office uses them, on a copy
// of the fixture school's file: a save read back with mdb-export and then
// accepted by the login, the clear button, hours and passwords the masks and
// the code page do not expect, the system-information button with and
// without a tool.

#include <QApplication>
#include <QFile>
#include <QMessageBox>
#include <QSettings>
#include <QTest>

#include "shell/form1.h"
#include "shell/form9.h"
#include "shell/frm_splash.h"
#include "shell/frmabout.h"
#include "shell/frmayar.h"
#include "shell/kit/connection_strings.h"
#include "shell/scramble.h"
#include "shell/window_registry.h"
#include "store/connection.h"
#include "store/jet/database.h"
#include "store/jet/integrity_check.h"
#include "store/recordset.h"
#include "tests/reports/report_reading.h"
#include "tests/shell/window_driver.h"

namespace {

using reports::testing::exported;
using windows::testing::MessageBoxAnswerer;
using windows::testing::type;

// The settings row as the file holds it: ID, OKUL, MRD, MDRYRD, SABAH_SAATI,
// OGLE_SAATI, AKSAM_SAATI, SIFRE.
class SettingsTest : public windows::testing::SchoolWindowTest {
protected:
    void SetUp() override {
        SchoolWindowTest::SetUp();
        if (!folder_)
            return;
        // The registry stand-in of this platform goes to the test's folder.
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope,
                           QString::fromStdString((folder_->path() / "settings").string()));
    }

    QStringList settingsRow() const {
        const reports::testing::Rows rows = exported(folder_->database(), "AYAR");
        EXPECT_EQ(rows.size(), 1U);
        return rows.empty() ? QStringList() : rows.front();
    }

    void expectSound() const {
        EXPECT_EQ(jet::checkIntegrity(jet::Database(folder_->database().string()).file()),
                  std::vector<std::string>{});
    }

    static void setColumn(std::u16string_view column, const jet::Value& value) {
        store::Connection connection;
        connection.Open(kit::relativeConnectionString().toStdString());
        store::Recordset settings;
        settings.open(u"select* from AYAR", connection);
        settings.setField(column, value);
        settings.update();
    }

    static shell::FRMAYAR& openSettings() {
        shell::showWindow<shell::FRMAYAR>();
        shell::FRMAYAR& window = shell::instance<shell::FRMAYAR>();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        return window;
    }

    // Closed as with the window's close button; the instance goes with it.
    static void closeSettings() {
        shell::instance<shell::FRMAYAR>().close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    static QStringList hourBoxes(const shell::FRMAYAR& window) {
        QStringList texts;
        for (const kit::MaskedBox* box : {window.MaskEdBox1, window.MaskEdBox4, window.MaskEdBox2,
                                          window.MaskEdBox5, window.MaskEdBox3, window.MaskEdBox6})
            texts << box->Text();
        return texts;
    }

    // The school, the two principals and the password, as the boxes show them.
    static QStringList nameBoxes(const shell::FRMAYAR& window) {
        return {window.Text6->text(), window.Text7->text(), window.Text8->text(),
                window.Text4->text()};
    }

    // Types over a box's text from its start, as a user fixing an hour does.
    static void retype(QLineEdit* box, const QString& text) {
        QTest::keyClick(box, Qt::Key_Home);
        type(box, text);
    }

    static void replace(QLineEdit* box, const QString& text) {
        box->selectAll();
        QTest::keyClick(box, Qt::Key_Delete);
        type(box, text);
    }

    // The login of a fresh start: the splash's decision, then the password
    // typed. True when the main window opened.
    static bool logsIn(const QString& password, MessageBoxAnswerer& notices) {
        if (shell::isLoaded<shell::Form1>())
            delete &shell::instance<shell::Form1>();
        shell::sifrevarmi();
        if (!shell::isLoaded<shell::Form9>())
            return shell::isLoaded<shell::Form1>();
        shell::Form9& login = shell::instance<shell::Form9>();
        const qsizetype before = notices.seen.size();
        type(login.Text1, password);
        QTest::keyClick(login.Text1, Qt::Key_Return);
        if (notices.seen.size() > before) {
            EXPECT_EQ(notices.seen.constLast(), QStringLiteral("Giriş başarısız!"));
            return false;
        }
        return shell::isLoaded<shell::Form1>();
    }

    static void expectNothingOverlaps(const QWidget* parent) {
        const QList<QWidget*> children = parent->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
        for (qsizetype i = 0; i < children.size(); ++i) {
            if (!children[i]->isVisible())
                continue;
            EXPECT_TRUE(parent->rect().contains(children[i]->geometry()))
                << children[i]->objectName().toStdString();
            for (qsizetype j = i + 1; j < children.size(); ++j) {
                if (children[j]->isVisible())
                    EXPECT_FALSE(children[i]->geometry().intersects(children[j]->geometry()))
                        << children[i]->objectName().toStdString() << " "
                        << children[j]->objectName().toStdString();
            }
            expectNothingOverlaps(children[i]);
        }
    }
};

TEST_F(SettingsTest, SaveWritesTheWholeRowAndTheLoginTakesThePassword) {
    shell::Form1& main = shell::instance<shell::Form1>();
    main.show();
    main.ayarlar->trigger();
    ASSERT_TRUE(shell::isLoaded<shell::FRMAYAR>());
    shell::FRMAYAR& window = shell::instance<shell::FRMAYAR>();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(window.windowTitle(), QStringLiteral("Ayarlar"));
    EXPECT_EQ(hourBoxes(window),
              (QStringList{"07:00", "08:30", "12:00", "13:30", "17:30", "19:00"}));
    EXPECT_EQ(window.MaskEdBox1->ClipText(), QStringLiteral("0700"));
    EXPECT_EQ(nameBoxes(window),
              (QStringList{"Şehit Öğretmen Anadolu Lisesi", "Ayşe Yılmaz", "Mehmet Öztürk", ""}));
    expectNothingOverlaps(&window);
    EXPECT_EQ(window.MaskEdBox1->nextInFocusChain(), window.MaskEdBox4);
    window.grab().save(QStringLiteral(SOFRAVAN_SCREENSHOT_DIR "/frmayar.png"));

    // Letters go nowhere in an hour; 25:00 is taken as typed.
    retype(window.MaskEdBox1, QStringLiteral("0645"));
    retype(window.MaskEdBox2, QStringLiteral("ab"));
    retype(window.MaskEdBox3, QStringLiteral("2500"));
    retype(window.MaskEdBox6, QStringLiteral("19:30"));
    EXPECT_EQ(hourBoxes(window),
              (QStringList{"06:45", "08:30", "12:00", "13:30", "25:00", "19:30"}));
    const QString school = QStringLiteral("Atatürk'ün Adını Taşıyan Fen Lisesi");
    replace(window.Text6, school);
    replace(window.Text8, QStringLiteral("Gülşen O'Neil"));
    type(window.Text4, QStringLiteral("Çiğdem1"));

    MessageBoxAnswerer notices;
    QTest::mouseClick(window.Command1, Qt::LeftButton);
    EXPECT_EQ(notices.seen,
              QStringList{QStringLiteral("Lütfen Şifrenizi not ediniz. Aksi taktirde\n"
                                         "programa giriş yapamazsınız.")});
    EXPECT_EQ(notices.boxes.value(0).icon, QMessageBox::Critical);
    const QString scrambled = shell::sifrele(shell::scrambleKey, u"Çiğdem1");
    EXPECT_EQ(settingsRow(), (QStringList{"1", school, "Ayşe Yılmaz", "Gülşen O'Neil",
                                          "06:45-08:30", "12:00-13:30", "25:00-19:30", scrambled}));
    expectSound();

    // Closing hands the main window the name the file now holds.
    EXPECT_NE(main.Text12->text(), school);
    closeSettings();
    EXPECT_FALSE(shell::isLoaded<shell::FRMAYAR>());
    EXPECT_EQ(main.Text12->text(), school);

    // The next start asks for the password, case and all.
    EXPECT_FALSE(logsIn(QStringLiteral("çiğdem1"), notices));
    EXPECT_TRUE(logsIn(QStringLiteral("Çiğdem1"), notices));
    EXPECT_FALSE(shell::isLoaded<shell::Form9>());
}

TEST_F(SettingsTest, ClearKeepsThePasswordAndAnEmptyOneSwitchesTheLoginOff) {
    setColumn(u"SIFRE",
              jet::Value::text(shell::sifrele(shell::scrambleKey, u"Eski1").toStdU16String()));
    shell::FRMAYAR& window = openSettings();
    const QStringList before = settingsRow();
    QTest::mouseClick(window.Command2, Qt::LeftButton);
    // The password stays readable, as the office wants.
    EXPECT_EQ(nameBoxes(window), (QStringList{"", "", "", "Eski1"}));
    EXPECT_EQ(hourBoxes(window), QStringList(6, QStringLiteral("__:__")));
    EXPECT_EQ(window.MaskEdBox4->ClipText(), QString());
    EXPECT_EQ(window.MaskEdBox4->Mask(), QStringLiteral("##:##"));
    EXPECT_EQ(settingsRow(), before);  // the clear writes nothing

    // A save after it stores the unfilled masks as they stand and keeps the
    // password; the note comes though the password did not change.
    MessageBoxAnswerer notices;
    QTest::mouseClick(window.Command1, Qt::LeftButton);
    EXPECT_EQ(notices.seen.size(), 1);
    const QString blank = QStringLiteral("__:__-__:__");
    EXPECT_EQ(settingsRow(), (QStringList{"1", "", "", "", blank, blank, blank,
                                          shell::sifrele(shell::scrambleKey, u"Eski1")}));

    // Without a password the row says so, and the next start needs none.
    window.Text4->clear();
    QTest::mouseClick(window.Command1, Qt::LeftButton);
    EXPECT_EQ(notices.seen.size(), 1);
    EXPECT_EQ(settingsRow().constLast(), QString());
    expectSound();
    closeSettings();
    EXPECT_TRUE(logsIn(QString(), notices));
    EXPECT_EQ(notices.seen.size(), 1);
}

TEST_F(SettingsTest, OddStoredHoursAndAPasswordOutsideTheCodePage) {
    setColumn(u"OGLE_SAATI", jet::Value::text(u"12:00"));
    setColumn(u"AKSAM_SAATI", jet::Value::text(u"7:30-8:30"));
    setColumn(u"SABAH_SAATI", jet::Value());
    shell::FRMAYAR& window = openSettings();
    // A missing part, a text the mask refuses and a Null leave their boxes
    // unfilled.
    EXPECT_EQ(hourBoxes(window),
              (QStringList{"__:__", "__:__", "12:00", "__:__", "__:__", "__:__"}));

    // Lunch and dinner went back into the row as the masks show them, and
    // the row is written as the window goes down; breakfast is untouched.
    closeSettings();
    QStringList row = settingsRow();
    ASSERT_EQ(row.size(), 8);
    EXPECT_EQ(row.mid(4, 3), (QStringList{"", "12:00-__:__", "__:__-__:__"}));

    // Letters the code page lacks are stored as "?", and only "?" opens.
    shell::FRMAYAR& again = openSettings();
    type(again.Text4, QStringLiteral("Пароль"));
    MessageBoxAnswerer notices;
    QTest::mouseClick(again.Command1, Qt::LeftButton);
    EXPECT_EQ(settingsRow().constLast(), shell::sifrele(shell::scrambleKey, u"??????"));
    closeSettings();
    EXPECT_EQ(openSettings().Text4->text(), QStringLiteral("??????"));
    closeSettings();
    expectSound();
    EXPECT_FALSE(logsIn(QStringLiteral("Пароль"), notices));
    EXPECT_TRUE(logsIn(QStringLiteral("??????"), notices));
}

TEST_F(SettingsTest, AboutWindowAndItsSystemInformationButton) {
    shell::Form1& main = shell::instance<shell::Form1>();
    main.show();
    main.about->trigger();
    ASSERT_TRUE(shell::isLoaded<shell::frmAbout>());
    shell::frmAbout& about = shell::instance<shell::frmAbout>();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&about));
    EXPECT_EQ(
        (QStringList{about.windowTitle(), about.lblTitle->text(), about.lblVersion->text(),
                     about.cmdOK->text(), about.cmdSysInfo->text()}),
        (QStringList{"Hakkında Sofravan", "Sofravan", "Version 1.0.15", "OK", "&System Info..."}));
    EXPECT_TRUE(about.Text1->Text().startsWith(QStringLiteral("KULLANIM KOŞULLARI\r\n")));
    EXPECT_TRUE(about.Text1->isReadOnly());
    EXPECT_FALSE(about.lblDisclaimer->text().isEmpty());
    EXPECT_FALSE(about.picIcon->pixmap().isNull());
    expectNothingOverlaps(&about);
    about.grab().save(QStringLiteral(SOFRAVAN_SCREENSHOT_DIR "/frmabout.png"));

    // No tool named in the registry, then a folder without it.
    MessageBoxAnswerer notices;
    const QString unavailable = QStringLiteral("System Information Is Unavailable At This Time");
    QTest::mouseClick(about.cmdSysInfo, Qt::LeftButton);
    EXPECT_EQ(notices.seen, QStringList{unavailable});
    EXPECT_EQ(notices.boxes.value(0).icon, QMessageBox::NoIcon);
    const std::filesystem::path tools = folder_->path() / "Shared Tools";
    std::filesystem::create_directories(tools);
    QSettings registry(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Sofravan"),
                       QStringLiteral("registry"));
    auto registerTool = [&](const QString& key, const std::filesystem::path& path) {
        registry.setValue(QStringLiteral("HKEY_LOCAL_MACHINE/SOFTWARE/Microsoft/") + key,
                          QString::fromStdString(path.string()));
        registry.sync();
    };
    registerTool(QStringLiteral("Shared Tools Location/MSINFO"), tools);
    QTest::mouseClick(about.cmdSysInfo, Qt::LeftButton);
    EXPECT_EQ(notices.seen.size(), 2);

    // The tool in that folder is started, and nothing is said.
    const std::filesystem::path started = folder_->path() / "started";
    QFile tool(QString::fromStdString((tools / "MSINFO32.EXE").string()));
    ASSERT_TRUE(tool.open(QIODevice::WriteOnly));
    tool.write(QByteArray("#!/bin/sh\ntouch '") + started.string().c_str() + "'\n");
    tool.close();
    tool.setPermissions(tool.permissions() | QFileDevice::ExeOwner);
    QTest::mouseClick(about.cmdSysInfo, Qt::LeftButton);
    EXPECT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(started); }, 5000));
    EXPECT_EQ(notices.seen.size(), 2);

    // A path that names no program is told as no tool at all.
    registerTool(QStringLiteral("Shared Tools/MSINFO/PATH"), tools / "yok.exe");
    QTest::mouseClick(about.cmdSysInfo, Qt::LeftButton);
    EXPECT_EQ(notices.seen, QStringList(3, unavailable));

    QTest::mouseClick(about.cmdOK, Qt::LeftButton);
    EXPECT_FALSE(shell::isLoaded<shell::frmAbout>());
}

}  // namespace
