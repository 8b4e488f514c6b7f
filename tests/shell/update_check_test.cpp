// The update check of the main window's start against update pages served
// on the loopback interface, and the updater at the close.

#include <fstream>

#include <QElapsedTimer>
#include <QTest>

#include "shell/form1.h"
#include "shell/platform.h"
#include "shell/program_state.h"
#include "shell/update_check.h"
#include "shell/window_registry.h"
#include "store/data_error.h"
#include "tests/shell/update_site.h"
#include "tests/shell/window_driver.h"

namespace {

using shell::testing::refusingPage;
using shell::testing::UpdateSite;
using shell::testing::versionPage;
using windows::testing::MessageBoxAnswerer;
using windows::testing::SchoolWindowTest;

const MessageBoxAnswerer::Box kAnnouncement{
    QStringLiteral("Yurtsayim"),
    QStringLiteral("Program güncellemesi bulundu.\nÇıkışta program güncellenecek."),
    QMessageBox::Information,
    {QStringLiteral("Tamam")}};

TEST(UpdateNumbers, DigitsJoinedAgainstThePageWithoutItsDots) {
    EXPECT_EQ(shell::versionNumber(1, 0, 15), 1015);
    EXPECT_EQ(shell::versionNumber(3, 27, 67), 32767);
    EXPECT_THROW(shell::versionNumber(3, 27, 68), std::overflow_error);
    EXPECT_TRUE(shell::pageIsNewer(QStringLiteral("1016"), 1015));
    EXPECT_FALSE(shell::pageIsNewer(QStringLiteral("1015"), 1015));
    EXPECT_FALSE(shell::pageIsNewer(QStringLiteral("110"), 1015));  // 1.1.0, not group by group
    EXPECT_FALSE(shell::pageIsNewer(std::nullopt, 1015));           // unread: 0
    EXPECT_FALSE(shell::pageIsNewer(std::nullopt, 0));
    // With the own number lost to an overflow, any page number above 0.
    EXPECT_TRUE(shell::pageIsNewer(QStringLiteral("1"), 0));
    EXPECT_THROW(shell::pageIsNewer(QStringLiteral("abc"), 1015), store::DataError);
    EXPECT_THROW(shell::pageIsNewer(QString(), 1015), store::DataError);
}

class UpdateCheck : public SchoolWindowTest {
protected:
    void SetUp() override {
        SchoolWindowTest::SetUp();
        shell::setInternetForTests(true);
        shell::yenisurumvar = false;
    }
    void TearDown() override {
        qunsetenv("SOFRAVAN_UPDATE_PAGE");
        shell::yenisurumvar = false;
        SchoolWindowTest::TearDown();
    }
    // The main window's start with the update page at the address; the
    // boxes it showed, and whether its browser was made.
    QList<MessageBoxAnswerer::Box> start(const QString& page, bool* browserMade = nullptr) {
        qputenv("SOFRAVAN_UPDATE_PAGE", page.toUtf8());
        MessageBoxAnswerer answerer;
        shell::Form1& form = shell::instance<shell::Form1>();
        if (browserMade != nullptr)
            *browserMade = form.wb != nullptr;
        delete &form;
        return answerer.boxes;
    }
};

TEST_F(UpdateCheck, PageVersionsDecideTheAnnouncement) {
    struct Case {
        QString body;
        bool newer;
    };
    const QList<Case> cases = {
        {versionPage(QStringLiteral("1.0.16")), true},
        {versionPage(QStringLiteral("1.0.15")), false},
        {versionPage(QStringLiteral("2.0")), false},
        {versionPage(QStringLiteral("1.1.0")), false},
        {versionPage(QStringLiteral("abc")), true},  // no number: the comparison fails into it
        {QStringLiteral("<html><body><p>Bakımdayız</p></body></html>"), false},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.body.toStdString());
        shell::yenisurumvar = false;
        UpdateSite site(each.body);
        bool browserMade = false;
        const QList<MessageBoxAnswerer::Box> boxes = start(site.page(), &browserMade);
        EXPECT_TRUE(browserMade);
        EXPECT_GE(site.requests(), 1);
        EXPECT_EQ(shell::yenisurumvar, each.newer);
        EXPECT_EQ(boxes, each.newer ? QList{kAnnouncement} : QList<MessageBoxAnswerer::Box>{});
    }
}

TEST_F(UpdateCheck, OfflineRefusedOrSilentServerAnnouncesNothing) {
    // Off line: no browser, no request.
    UpdateSite site(versionPage(QStringLiteral("9.9.9")));
    shell::setInternetForTests(false);
    bool browserMade = true;
    EXPECT_TRUE(start(site.page(), &browserMade).isEmpty());
    EXPECT_FALSE(browserMade);
    EXPECT_EQ(site.requests(), 0);
    EXPECT_FALSE(shell::yenisurumvar);

    shell::setInternetForTests(true);
    EXPECT_TRUE(start(refusingPage()).isEmpty());
    EXPECT_FALSE(shell::yenisurumvar);

    // A server that never answers holds the start until the check's time
    // is up, then the window comes all the same.
    UpdateSite silent(QString(), false);
    QElapsedTimer clock;
    clock.start();
    EXPECT_TRUE(start(silent.page()).isEmpty());
    EXPECT_GE(clock.elapsed(), shell::kUpdateCheckLimitMs - 100);
    EXPECT_GE(silent.requests(), 1);
    EXPECT_FALSE(shell::yenisurumvar);
}

// The announced update runs at the close of the main window, and only
// there: leaving by "Çıkış" skips it.
TEST_F(UpdateCheck, AnnouncedUpdateRunsWhenTheMainWindowCloses) {
    UpdateSite site(versionPage(QStringLiteral("1.0.16")));
    qputenv("SOFRAVAN_UPDATE_PAGE", site.page().toUtf8());
    const std::filesystem::path marker = folder_->path() / "updater-ran";
    const std::filesystem::path updater = folder_->path() / "tazele";
    {
        std::ofstream script(updater);
        script << "#!/bin/sh\necho \"$@\" > '" << marker.string() << ".part' && mv '"
               << marker.string() << ".part' '" << marker.string() << "'\n";
    }
    std::filesystem::permissions(updater, std::filesystem::perms::owner_all);
    MessageBoxAnswerer answerer;
    shell::Form1& form = shell::instance<shell::Form1>();
    ASSERT_TRUE(shell::yenisurumvar);
    EXPECT_EQ(answerer.boxes, QList{kAnnouncement});
    // The ending runs in a forked copy of this process, which shares the
    // folder (a fresh run of the test would make another one).
    GTEST_FLAG_SET(death_test_style, "fast");
    EXPECT_EXIT(form.cik->trigger(), ::testing::ExitedWithCode(0), "");
    QTest::qWait(300);
    EXPECT_FALSE(std::filesystem::exists(marker));

    EXPECT_EXIT(form.close(), ::testing::ExitedWithCode(0), "");
    ASSERT_TRUE(QTest::qWaitFor([&] { return std::filesystem::exists(marker); }, 3000));
    std::ifstream arguments(marker);
    std::string line;
    std::getline(arguments, line);
    EXPECT_EQ(line, "-z");
    GTEST_FLAG_SET(death_test_style, "threadsafe");
}

}  // namespace
