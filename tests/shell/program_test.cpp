// The program-wide helpers and the two ways the program ends.

#include <fstream>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTest>

#include "shell/clock.h"
#include "shell/form1.h"
#include "shell/load_data_into_file.h"
#include "shell/months.h"
#include "shell/platform.h"
#include "shell/program_state.h"
#include "shell/window_registry.h"
#include "tests/shell/window_driver.h"

namespace {

using windows::testing::kvlFixture;
using windows::testing::MessageBoxAnswerer;
using windows::testing::SchoolFolder;

TEST(Program, MonthDaysFollowThePresentYearForFebruary) {
    shell::setTodayForTests(QDate(2028, 6, 1));
    EXPECT_EQ(shell::aygunu(2), 29);
    EXPECT_EQ(shell::aygunu(4), 30);
    EXPECT_EQ(shell::aygunu(12), 31);
    EXPECT_EQ(shell::aygunu(0), 0);
    EXPECT_EQ(shell::aygunu(13), 0);
    shell::setTodayForTests(QDate(2027, 6, 1));
    EXPECT_EQ(shell::aygunu(2), 28);
    shell::setTodayForTests(QDate());
    EXPECT_EQ(shell::aylar().size(), 12);
    EXPECT_EQ(shell::ayAdi(4), QStringLiteral("NİSAN"));
    EXPECT_EQ(shell::ayAdi(8), QStringLiteral("AĞUSTOS"));
}

TEST(Program, FileLookupsRegistryAndTheSampleWorkbook) {
    jet::testing::TempDir folder;
    const QString base = QString::fromStdString(folder.path().string());
    const QString workbook = base + QStringLiteral("/YEMEK_MENUSU.XLS");
    EXPECT_FALSE(shell::FileFolderExists(workbook));
    EXPECT_FALSE(shell::DosyaVarmı(workbook));
    EXPECT_TRUE(shell::FileFolderExists(base));
    EXPECT_FALSE(shell::FileFolderExists(QString()));

    shell::LoadDataIntoFile(101, workbook);
    ASSERT_TRUE(shell::DosyaVarmı(workbook));
    QFile written(workbook);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_TRUE(
        written.readAll().startsWith(QByteArray::fromHex("d0cf11e0a1b11ae1")));  // a compound file
    written.close();
    // A file already there stays as it is.
    ASSERT_TRUE(written.open(QIODevice::WriteOnly | QIODevice::Truncate));
    written.write("eski");
    written.close();
    shell::LoadDataIntoFile(101, workbook);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll(), QByteArray("eski"));

    const QString key = QStringLiteral("SOFTWARE\\Test\\FEATURE");
    shell::RegSetDword(shell::RegistryRoot::LocalMachine, key, QStringLiteral("sofravan.exe"),
                       11000);
    EXPECT_EQ(
        shell::RegGetDword(shell::RegistryRoot::LocalMachine, key, QStringLiteral("sofravan.exe")),
        11000);
    shell::RegSetDword(shell::RegistryRoot::CurrentUser, key, QStringLiteral("en büyük"),
                       0xFFFFFFFF);
    EXPECT_EQ(shell::RegGetDword(shell::RegistryRoot::CurrentUser, key, QStringLiteral("en büyük")),
              0xFFFFFFFF);
    // A 32-bit number, which the Windows registry keeps as REG_DWORD.
    EXPECT_EQ(shell::registryDword(11000).metaType(), QMetaType::fromType<quint32>());
    // Written to the tests' own settings folder, not the user's.
    EXPECT_TRUE(QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Sofravan"),
                          QStringLiteral("registry"))
                    .fileName()
                    .startsWith(QDir::tempPath()));
}

TEST(Program, MenuTreeCarriesEveryItemAndTheSharedConnectionOpensQuietly) {
    SKIP_WITHOUT_FIXTURES();
    SchoolFolder folder(kvlFixture());
    shell::Form1& form = shell::instance<shell::Form1>();
    const std::vector<std::pair<const char*, const char*>> items = {
        {"ayarlar", "Program ayarları"},
        {"ogrencial", "e okul öğrenci bilgilerini al"},
        {"pyoklama", "Yurtsayim öğrenci bilgileri al"},
        {"gunduzluduzenle", "Gündüzlü Öğrenci Bilgileri Düzenle"},
        {"yatiliduzenle", "Yatılı Öğrenci Bilgileri Düzenle"},
        {"foto", "Fotğraf İşlemleri"},
        {"mnhzirla", "Menü hazırlama"},
        {"excelal", "Excel den yemek menüsü al"},
        {"menu", "e-okul Yemek Menüsü Girişi"},
        {"kay", "Kayan Yazı"},
        {"cik", "Çıkış"},
        {"kimlikbas", "Öğrenci kimlik basımı"},
        {"izinliste", "Aylara göre yemek izni olanlar listesi"},
        {"yemekliste", "Aylara göre yemek yiyenler listesi"},
        {"ucret", "Aylara göre ücret vermeyenler listesi"},
        {"gunliste", "Günlere göre yemek yiyenler listesi"},
        {"gunucret", "Günlere göre ücret vermeyenler listesi"},
        {"ymenulist", "Yemek Menüsü"},
        {"rasyon", "Puantaj"},
        {"about", "Hakkında"}};
    for (const auto& [name, caption] : items) {
        auto* action = form.findChild<QAction*>(QString::fromLatin1(name));
        ASSERT_NE(action, nullptr) << name;
        EXPECT_EQ(action->text(), QString::fromUtf8(caption)) << name;
    }
    // "Puantaj" is switched off: choosing it opens nothing.
    EXPECT_FALSE(form.rasyon->isEnabled());
    const QWidgetList windowsBefore = QApplication::topLevelWidgets();
    form.rasyon->trigger();
    QCoreApplication::processEvents();
    EXPECT_EQ(QApplication::topLevelWidgets(), windowsBefore);
    delete &form;

    shell::baglantiac();
    ASSERT_TRUE(shell::baglanti && shell::baglanti->isOpen());
    shell::baglantiac();  // a second Open fails, and the failure is swallowed
    shell::baglanti.reset();
    std::filesystem::remove(folder.database());
    shell::baglantiac();
    EXPECT_FALSE(shell::baglanti->isOpen());
    shell::baglanti.reset();
}

// "e okul öğrenci bilgilerini al" starts the outside tool beside the
// program and goes on; without the tool the run-time error report ends the
// program.
TEST(Program, StudentToolStartsAndAMissingOneEndsTheProgram) {
    SKIP_WITHOUT_FIXTURES();
    SchoolFolder folder(kvlFixture());
    const std::filesystem::path marker = folder.path() / "tool-ran";
    const std::filesystem::path tool = folder.path() / "ogrencicek";
    {
        std::ofstream script(tool);
        script << "#!/bin/sh\necho \"$@\" > '" << marker.string() << ".part' && mv '"
               << marker.string() << ".part' '" << marker.string() << "'\n";
    }
    std::filesystem::permissions(tool, std::filesystem::perms::owner_all);
    shell::Form1& form = shell::instance<shell::Form1>();
    form.ogrencial->trigger();
    ASSERT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(marker); }, 3000));
    std::ifstream arguments(marker);
    std::string line;
    std::getline(arguments, line);
    EXPECT_EQ(line, "-oha");
    EXPECT_TRUE(shell::isLoaded<shell::Form1>());

    std::filesystem::remove(tool);
    EXPECT_EXIT(
        {
            MessageBoxAnswerer answerer;
            form.ogrencial->trigger();
        },
        ::testing::ExitedWithCode(1), "Run-time error '53':\n\nFile not found");
    delete &form;
}

}  // namespace
