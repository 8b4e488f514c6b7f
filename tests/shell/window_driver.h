#pragma once

#include <filesystem>
#include <memory>

#include <QList>
#include <QMessageBox>
#include <QStringList>
#include <QTimer>
#include <QWidget>

#include "tests/store/jet/test_files.h"

namespace windows::testing {

// A copy of a school's file in a folder of its own, which is the program's
// folder and the working folder while the object lives.
class SchoolFolder {
public:
    explicit SchoolFolder(const std::filesystem::path& database);
    ~SchoolFolder();
    SchoolFolder(const SchoolFolder&) = delete;
    SchoolFolder& operator=(const SchoolFolder&) = delete;

    const std::filesystem::path& path() const { return folder_.path(); }
    std::filesystem::path database() const { return folder_.path() / "kvl.mdb"; }

private:
    jet::testing::TempDir folder_;
    std::filesystem::path previous_;
};

// Answers every message box that comes up while it lives with the button
// of the given caption, as a user would, and keeps the texts it saw. A box
// with a single button is answered with that one.
class MessageBoxAnswerer {
public:
    explicit MessageBoxAnswerer(QString button = QStringLiteral("Tamam"));
    // A box as the user saw it.
    struct Box {
        QString title;
        QString text;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
        QStringList buttons;
        friend bool operator==(const Box&, const Box&) = default;
    };
    QStringList seen;  // the texts
    QList<Box> boxes;

private:
    QString button_;
    QTimer timer_;
};

// Types the text into the widget key by key, as a user would; Turkish
// letters included.
void type(QWidget* widget, const QString& text);

// A test of the windows on a copy of the fixture school's file: skipped
// without the fixtures; the windows, the folder and the clock are put back
// after it.
class SchoolWindowTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    std::unique_ptr<SchoolFolder> folder_;
};

// The fixture school's file, or an empty path without the fixtures.
std::filesystem::path kvlFixture();

}  // namespace windows::testing
