#include "tests/shell/window_driver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>

#include "shell/kit/app_path.h"

namespace windows::testing {

SchoolFolder::SchoolFolder(const std::filesystem::path& database)
    : previous_(std::filesystem::current_path()) {
    std::filesystem::copy_file(database, folder_.path() / "kvl.mdb");
    std::filesystem::current_path(folder_.path());
    kit::setAppPathForTests(QString::fromStdString(folder_.path().string()));
}

SchoolFolder::~SchoolFolder() {
    kit::setAppPathForTests(QString());
    std::filesystem::current_path(previous_);
}

MessageBoxAnswerer::MessageBoxAnswerer(QString button) : button_(std::move(button)) {
    timer_.setInterval(5);
    QObject::connect(&timer_, &QTimer::timeout, [this] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr || !box->isVisible())
            return;
        for (QAbstractButton* candidate : box->buttons()) {
            if (candidate->text() == button_) {
                seen << box->text();
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

std::filesystem::path kvlFixture() {
    const std::filesystem::path fixtures = jet::testing::fixturesDir();
    return fixtures.empty() ? fixtures : fixtures / "kvl" / "kvl.mdb";
}

}  // namespace windows::testing
