// Window tests drive real windows on Qt's offscreen platform.

#include <QApplication>
#include <QStandardPaths>

#include <gtest/gtest.h>

int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The browser's engine runs as root here, without a graphics card.
    qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    qputenv("QTWEBENGINE_CHROMIUM_FLAGS", "--disable-gpu");
    QStandardPaths::setTestModeEnabled(true);
    testing::InitGoogleTest(&argc, argv);
    // Windows that end the program are run in a fresh copy of the test.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
