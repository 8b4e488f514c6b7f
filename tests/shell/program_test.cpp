// The program-wide helpers and the two ways the program ends.

#include <fstream>

#include <QFile>
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
    EXPECT_FALSE(form.rasyon->isEnabled());
    form.ayarlar->trigger();  // its window does not exist yet: nothing happens
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

// Closing the main window starts the updater when a new version was
// announced; leaving by "Çıkış" never does.
TEST(Program, OnlyClosingTheMainWindowStartsTheUpdater) {
    SKIP_WITHOUT_FIXTURES();
    SchoolFolder folder(kvlFixture());
    const std::filesystem::path marker = folder.path() / "updater-ran";
    const std::filesystem::path updater = folder.path() / "tazele.exe";
    {
        std::ofstream script(updater);
        script << "#!/bin/sh\necho \"$1\" > '" << marker.string() << "'\n";
    }
    std::filesystem::permissions(updater, std::filesystem::perms::owner_all);
    shell::yenisurumvar = true;
    // The ending runs in a forked copy of this process, which shares the
    // folder (a fresh run of the test would make another one).
    GTEST_FLAG_SET(death_test_style, "fast");

    EXPECT_EXIT(shell::instance<shell::Form1>().cik->trigger(), ::testing::ExitedWithCode(0), "");
    QTest::qWait(300);
    EXPECT_FALSE(std::filesystem::exists(marker));

    EXPECT_EXIT(shell::instance<shell::Form1>().close(), ::testing::ExitedWithCode(0), "");
    ASSERT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(marker); }, 3000));
    std::ifstream argument(marker);
    std::string word;
    argument >> word;
    EXPECT_EQ(word, "-z");
    shell::yenisurumvar = false;
    GTEST_FLAG_SET(death_test_style, "threadsafe");
}

}  // namespace
