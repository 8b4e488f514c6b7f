#include "tests/shell/window_driver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>

#include "display/form8.h"
#include "menus/form13.h"
#include "menus/form15.h"
#include "menus/form16.h"
#include "menus/menuhazirla.h"
#include "portal/form12.h"
#include "reports/form7.h"
#include "reports/selectors.h"
#include "rosters/form10.h"
#include "rosters/form11.h"
#include "rosters/frmbilgial.h"
#include "rosters/frmpansiyon.h"
#include "rosters/gkimlik.h"
#include "rosters/kimlik.h"
#include "rosters/photo_finder.h"
#include "shell/clock.h"
#include "shell/form1.h"
#include "shell/form9.h"
#include "shell/frm_splash.h"
#include "shell/frmabout.h"
#include "shell/frmayar.h"
#include "shell/kit/app_path.h"
#include "shell/platform.h"
#include "shell/window_registry.h"

namespace windows::testing {

SchoolFolder::SchoolFolder(const std::filesystem::path& database)
    : previous_(std::filesystem::current_path()) {
    std::filesystem::copy_file(database, folder_.path() / "kvl.mdb");
    std::filesystem::current_path(folder_.path());
    kit::setAppPathForTests(QString::fromStdString(folder_.path().string()));
    // No test reaches a network unless it says so: the main window's
    // update check stays off.
    shell::setInternetForTests(false);
}

SchoolFolder::~SchoolFolder() {
    shell::setInternetForTests(std::nullopt);
    kit::setAppPathForTests(QString());
    std::filesystem::current_path(previous_);
}

MessageBoxAnswerer::MessageBoxAnswerer(QString button) : button_(std::move(button)) {
    timer_.setInterval(5);
    QObject::connect(&timer_, &QTimer::timeout, [this] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr || !box->isVisible())
            return;
        const QList<QAbstractButton*> buttons = box->buttons();
        for (QAbstractButton* candidate : buttons) {
            // A notice with one button is acknowledged whatever the answer.
            if (candidate->text() == button_ || buttons.size() == 1) {
                seen << box->text();
                Box shown{box->windowTitle(), box->text(), box->icon(), {}};
                for (const QAbstractButton* each : buttons)
                    shown.buttons << each->text();
                boxes << shown;
                candidate->click();
                return;
            }
        }
    });
    timer_.start();
}

void type(QWidget* widget, const QString& text) {
    for (const QChar character : text) {
        QTest::sendKeyEvent(QTest::Press, widget, Qt::Key_unknown, QString(character),
                            Qt::NoModifier);
        QTest::sendKeyEvent(QTest::Release, widget, Qt::Key_unknown, QString(character),
                            Qt::NoModifier);
    }
}

namespace {

template <class Window>
void deleteIfLoaded() {
    if (shell::isLoaded<Window>())
        delete &shell::instance<Window>();
}

}  // namespace

void SchoolWindowTest::SetUp() {
    SKIP_WITHOUT_FIXTURES();
    folder_ = std::make_unique<SchoolFolder>(kvlFixture());
}

void SchoolWindowTest::TearDown() {
    if (shell::isLoaded<shell::Form1>())
        delete &shell::instance<shell::Form1>();
    if (shell::isLoaded<shell::Form9>())
        delete &shell::instance<shell::Form9>();
    if (shell::isLoaded<shell::frmSplash>())
        delete &shell::instance<shell::frmSplash>();
    deleteIfLoaded<reports::Form2>();
    deleteIfLoaded<reports::Form3>();
    deleteIfLoaded<reports::Form4>();
    deleteIfLoaded<reports::Form5>();
    deleteIfLoaded<reports::Form6>();
    deleteIfLoaded<reports::Form7>();
    deleteIfLoaded<menus::Form13>();
    deleteIfLoaded<menus::Form15>();
    deleteIfLoaded<menus::menuhazirla>();
    deleteIfLoaded<menus::Form16>();
    deleteIfLoaded<portal::Form12>();
    deleteIfLoaded<display::Form8>();
    deleteIfLoaded<rosters::frmBilgial>();
    deleteIfLoaded<rosters::Form10>();
    deleteIfLoaded<rosters::resimbul>();
    deleteIfLoaded<rosters::resimbul2>();
    deleteIfLoaded<rosters::Form11>();
    deleteIfLoaded<rosters::frmpansiyon>();
    deleteIfLoaded<rosters::kimlik>();
    deleteIfLoaded<rosters::gkimlik>();
    deleteIfLoaded<shell::FRMAYAR>();
    deleteIfLoaded<shell::frmAbout>();
    // Windows unloaded during the test go with the events they left.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    shell::setTodayForTests(QDate());
    shell::setNowForTests(QDateTime());
    folder_.reset();
}

std::filesystem::path kvlFixture() {
    const std::filesystem::path fixtures = jet::testing::fixturesDir();
    return fixtures.empty() ? fixtures : fixtures / "kvl" / "kvl.mdb";
}

}  // namespace windows::testing
