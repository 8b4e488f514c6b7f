// The import from the roll-call program as the office does it: frmBilgial
// opened from the main window's menu, the folder of the other program's
// kvl.mdb chosen, "Bilgileri al" answered; both rosters replaced, a copy of
// the school's file written first, the copies thinned to five.

#include <fstream>
#include <vector>

#include <QTest>

#include "rosters/frmbilgial.h"
#include "shell/clock.h"
#include "shell/form1.h"
#include "shell/program_state.h"
#include "shell/window_registry.h"
#include "store/connection.h"
#include "store/recordset.h"
#include "tests/reports/report_reading.h"
#include "tests/rosters/roster_testing.h"
#include "tests/shell/window_driver.h"

namespace {

namespace fs = std::filesystem;
using reports::testing::exported;
using reports::testing::Rows;
using rosters::frmBilgial;
using rosters::testing::expectSound;
using rosters::testing::pathText;
using windows::testing::MessageBoxAnswerer;
using windows::testing::SchoolWindowTest;

const QString kQuestion =
    QStringLiteral("Mevcut veriler silinecek ve diğer programdan alınacak.\nOnaylıyor musunuz?");
const QString kDone = QStringLiteral("Veri aktarımı gerçekleştirildi.");
const QString kFailed = QStringLiteral("Hata oluştu.Tekrar deneyiniz.");

// The ORNEK columns the import copies, by their place in the table: sno,
// TCKimlikNo, Adi, Soyadi, Numara, Sinif, Cinsiyet, Seviye, resim.
const int kCopiedColumns[] = {0, 1, 2, 3, 4, 5, 6, 7, 19};

// The backups beside the school's file, by name (not the lock files that
// reading them in the test leaves).
std::vector<std::string> backups(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with("kvl-yedek-") && name.ends_with(".mdb"))
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

class RosterImportTest : public SchoolWindowTest {
protected:
    void SetUp() override {
        SchoolWindowTest::SetUp();
        if (IsSkipped())
            return;
        rollCall_ = folder_->path() / "Yurtsayim";
        fs::create_directories(rollCall_);
        fs::copy_file(jet::testing::fixturesDir() / "kvl" / "yurtsayim" / "kvl.mdb",
                      rollCall_ / "kvl.mdb");
        fs::permissions(rollCall_ / "kvl.mdb", fs::perms::owner_write, fs::perm_options::add);
        shell::setNowForTests(QDateTime(QDate(2026, 9, 14), QTime(8, 30, 5)));
    }

    void TearDown() override {
        // What the import leaves open goes with the run.
        shell::kayit.reset();
        shell::kayit2.reset();
        shell::baglanti.reset();
        shell::baglanti2.reset();
        shell::setNowForTests(QDateTime());
        SchoolWindowTest::TearDown();
    }

    // The window as the main window's menu item opens it.
    frmBilgial& open() {
        shell::instance<shell::Form1>().pyoklama->trigger();
        EXPECT_TRUE(shell::isLoaded<frmBilgial>());
        frmBilgial& window = shell::instance<frmBilgial>();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
        return window;
    }

    // "Bilgileri al", the question answered with `answer`; the texts shown.
    static QStringList import(frmBilgial& window, const QString& answer = QStringLiteral("Evet")) {
        MessageBoxAnswerer answerer(answer);
        QTest::mouseClick(window.Command2, Qt::LeftButton);
        return answerer.seen;
    }

    fs::path rollCallFile() const { return rollCall_ / "kvl.mdb"; }

    fs::path rollCall_;
};

TEST_F(RosterImportTest, ReplacesBothRostersOnceInARun) {
    const fs::path school = folder_->database();
    const Rows ornekBefore = exported(school, "ORNEK");
    const Rows pansiyonBefore = exported(school, "Pansiyon");
    ASSERT_EQ(ornekBefore.size(), 480u);
    ASSERT_EQ(pansiyonBefore.size(), 60u);

    frmBilgial& window = open();
    // Nothing is chosen at first, though the program's folder holds a kvl.mdb.
    EXPECT_EQ(window.Dir1->Path(), pathText(folder_->path()));
    EXPECT_TRUE(window.Text1->text().isEmpty());
    EXPECT_TRUE(window.Label1->text().isEmpty());
    EXPECT_FALSE(window.Command2->isEnabled());
    EXPECT_FALSE(window.File1->isVisible());
    EXPECT_FALSE(window.Combo1->isVisible());
    EXPECT_FALSE(window.Command1->isVisible());

    // A folder without the file, then one with KVL.mdb in capitals: listed,
    // but not taken.
    const fs::path empty = folder_->path() / "Boş klasör";
    fs::create_directories(empty);
    window.Dir1->setPath(pathText(empty));
    EXPECT_EQ(window.Text1->text(), pathText(empty) + QStringLiteral("\\"));
    EXPECT_EQ(window.Label1->text(), QStringLiteral("Veri tabanı bulunamadı.."));
    EXPECT_FALSE(window.Command2->isEnabled());
    const fs::path capitals = folder_->path() / "Eski";
    fs::create_directories(capitals);
    fs::copy_file(rollCallFile(), capitals / "KVL.mdb");
    window.Dir1->setPath(pathText(capitals));
    EXPECT_EQ(window.File1->ListCount(), 1);
    EXPECT_EQ(window.Text1->text(), pathText(capitals) + QStringLiteral("\\KVL.mdb"));
    EXPECT_EQ(window.Label1->text(), QStringLiteral("Veri tabanı bulunamadı.."));
    EXPECT_FALSE(window.Command2->isEnabled());

    window.Dir1->setPath(pathText(rollCall_));
    EXPECT_EQ(window.Text1->text(), pathText(rollCall_) + QStringLiteral("\\kvl.mdb"));
    EXPECT_EQ(window.Label1->text(), QStringLiteral("Veri tabanı bulundu"));
    EXPECT_TRUE(window.Command2->isEnabled());
    window.grab().save(QStringLiteral(SOFRAVAN_SCREENSHOT_DIR "/frmbilgial.png"));

    // No: nothing changes, and no copy is written.
    EXPECT_EQ(import(window, QStringLiteral("Hayır")), QStringList{kQuestion});
    EXPECT_EQ(exported(school, "ORNEK"), ornekBefore);
    EXPECT_TRUE(backups(folder_->path()).empty());

    EXPECT_EQ(import(window), (QStringList{kQuestion, kDone}));
    const Rows source = exported(rollCallFile(), "ORNEK");
    const Rows ornek = exported(school, "ORNEK");
    ASSERT_EQ(source.size(), 150u);
    ASSERT_EQ(ornek.size(), source.size());
    for (std::size_t row = 0; row < ornek.size(); ++row) {
        // In the source's order, the nine columns as they were there, every
        // other column empty, yatililik among them.
        for (int column = 0; column < ornek[row].size(); ++column) {
            const bool copied = std::find(std::begin(kCopiedColumns), std::end(kCopiedColumns),
                                          column) != std::end(kCopiedColumns);
            EXPECT_EQ(ornek[row][column], copied ? source[row][column] : QString())
                << "row " << row << " column " << column;
        }
    }
    EXPECT_EQ(ornek[0][2], source[0][2]);
    EXPECT_FALSE(ornek[0][2].isEmpty());
    EXPECT_EQ(exported(school, "Pansiyon"), exported(rollCallFile(), "Pansiyon"));
    expectSound(school);

    // The copy written before the first delete holds the rosters as they were.
    const fs::path backup = folder_->path() / "kvl-yedek-20260914-083005.mdb";
    EXPECT_EQ(backups(folder_->path()), std::vector<std::string>{backup.filename().string()});
    EXPECT_EQ(exported(backup, "ORNEK"), ornekBefore);
    EXPECT_EQ(exported(backup, "Pansiyon"), pansiyonBefore);
    expectSound(backup);

    // The window stays; a second import in the same run fails before it
    // deletes or copies anything.
    EXPECT_TRUE(window.isVisible());
    shell::setNowForTests(QDateTime(QDate(2026, 9, 14), QTime(8, 31, 0)));
    EXPECT_EQ(import(window), (QStringList{kQuestion, kFailed}));
    EXPECT_EQ(exported(school, "ORNEK"), ornek);
    EXPECT_EQ(backups(folder_->path()), std::vector<std::string>{backup.filename().string()});
}

// The roll-call program keys nothing: two boarders with one PANSIYONNO,
// which the school's primary key refuses. The day students are in by then,
// the boarders up to the refused row; the copy written first still holds
// both rosters as they were. The copies are thinned to the newest five.
TEST_F(RosterImportTest, FailsPartWayAndTheCopyHoldsTheRostersAsTheyWere) {
    const fs::path school = folder_->database();
    const Rows ornekBefore = exported(school, "ORNEK");
    const Rows pansiyonBefore = exported(school, "Pansiyon");
    {
        store::Connection connection;
        connection.Open("Data Source=" + rollCallFile().string() +
                        ";Jet OLEDB:Database Password=HtRvZpSw2019");
        store::Recordset boarders;
        boarders.open(u"select* from Pansiyon", connection);
        boarders.setAbsolutePosition(5);
        const jet::Value taken = boarders.field(u"PANSIYONNO");
        boarders.setAbsolutePosition(21);
        boarders.setField(u"PANSIYONNO", taken);
        boarders.update();
    }
    const Rows sourceBoarders = exported(rollCallFile(), "Pansiyon");
    ASSERT_EQ(sourceBoarders[20][0], sourceBoarders[4][0]);

    const char* older[] = {"kvl-yedek-20250301-101010.mdb", "kvl-yedek-20250402-101010.mdb",
                           "kvl-yedek-20250503-101010.mdb", "kvl-yedek-20251104-101010.mdb",
                           "kvl-yedek-20260105-101010.mdb", "kvl-yedek-20260206-101010.mdb"};
    for (const char* name : older)
        std::ofstream(folder_->path() / name) << name;
    std::ofstream(folder_->path() / "kvl-yedek-eylul.mdb") << "elle alınmış";

    frmBilgial& window = open();
    // Typed, not walked to.
    windows::testing::type(window.Text1, pathText(rollCall_) + QStringLiteral("/kvl.mdb"));
    EXPECT_TRUE(window.Command2->isEnabled());
    EXPECT_EQ(import(window), (QStringList{kQuestion, kFailed}));

    EXPECT_EQ(exported(school, "ORNEK").size(), 150u);
    const Rows boarders = exported(school, "Pansiyon");
    EXPECT_EQ(boarders, Rows(sourceBoarders.begin(), sourceBoarders.begin() + 20));
    expectSound(school);

    const fs::path backup = folder_->path() / "kvl-yedek-20260914-083005.mdb";
    EXPECT_EQ(exported(backup, "ORNEK"), ornekBefore);
    EXPECT_EQ(exported(backup, "Pansiyon"), pansiyonBefore);
    EXPECT_EQ(
        backups(folder_->path()),
        (std::vector<std::string>{"kvl-yedek-20250503-101010.mdb", "kvl-yedek-20251104-101010.mdb",
                                  "kvl-yedek-20260105-101010.mdb", "kvl-yedek-20260206-101010.mdb",
                                  "kvl-yedek-20260914-083005.mdb", "kvl-yedek-eylul.mdb"}));
}

// A folder stands where the copy would go: the import does not start, the
// clerk is told why, and once the way is clear the next try goes through.
TEST_F(RosterImportTest, NoImportWithoutTheCopy) {
    const fs::path school = folder_->database();
    const Rows ornekBefore = exported(school, "ORNEK");
    const Rows pansiyonBefore = exported(school, "Pansiyon");
    const fs::path blocked = folder_->path() / "kvl-yedek-20260914-083005.mdb";
    fs::create_directory(blocked);

    frmBilgial& window = open();
    window.Dir1->setPath(pathText(rollCall_));
    const QStringList seen = import(window);
    ASSERT_EQ(seen.size(), 2);
    EXPECT_EQ(seen[0], kQuestion);
    EXPECT_TRUE(seen[1].startsWith(QStringLiteral(
        "Veri tabanının yedeği alınamadığı için aktarım başlatılmadı; mevcut bilgiler olduğu "
        "gibi duruyor.")))
        << seen[1].toStdString();
    EXPECT_TRUE(
        seen[1].contains(QStringLiteral("\"kvl-yedek-20260914-083005.mdb\" adında bir "
                                        "dosya ya da klasör zaten var")))
        << seen[1].toStdString();
    EXPECT_EQ(exported(school, "ORNEK"), ornekBefore);
    EXPECT_EQ(exported(school, "Pansiyon"), pansiyonBefore);
    EXPECT_TRUE(fs::is_directory(blocked));

    fs::remove(blocked);
    EXPECT_EQ(import(window), (QStringList{kQuestion, kDone}));
    EXPECT_EQ(exported(school, "ORNEK").size(), 150u);
    EXPECT_EQ(exported(blocked, "ORNEK"), ornekBefore);
    expectSound(school);
}

}  // namespace
