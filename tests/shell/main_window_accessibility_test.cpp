// The main window as assistive technology sees it: every control reached
// by a meaningful name. And the window fits a 1024x768 screen.

#include <QAccessible>
#include <QLabel>
#include <QMultiMap>
#include <QSet>

#include "shell/form1.h"
#include "shell/form9.h"
#include "shell/frm_splash.h"
#include "shell/window_registry.h"
#include "tests/shell/window_driver.h"

namespace {

using windows::testing::kvlFixture;
using windows::testing::SchoolFolder;

// Role and name of every accessible object below the interface.
void collect(QAccessibleInterface* node, QMultiMap<QAccessible::Role, QString>& found,
             QStringList& unnamed) {
    for (int i = 0; i < node->childCount(); ++i) {
        QAccessibleInterface* child = node->child(i);
        if (child == nullptr || child->state().invisible)
            continue;
        const QAccessible::Role role = child->role();
        QString name = child->text(QAccessible::Name);
        // On Linux a combo box's name is its entry; screen readers name it
        // by the label that the relation points to.
        if (role == QAccessible::ComboBox) {
            for (const auto& [label, relation] : child->relations(QAccessible::Label)) {
                if (qobject_cast<QLabel*>(label->object()))
                    name = label->text(QAccessible::Name);
            }
        }
        found.insert(role, name);
        const bool control = role == QAccessible::EditableText || role == QAccessible::ComboBox ||
                             role == QAccessible::PushButton || role == QAccessible::RadioButton ||
                             role == QAccessible::Table;
        if (control && name.trimmed().isEmpty())
            unnamed << child->object()->metaObject()->className();
        if (role != QAccessible::Table)
            collect(child, found, unnamed);
    }
}

TEST(MainWindowAccessibility, EveryControlHasTheNameAUserSees) {
    SKIP_WITHOUT_FIXTURES();
    SchoolFolder folder(kvlFixture());
    shell::Form1& form = shell::instance<shell::Form1>();
    form.resize(1024, 768);
    form.show();

    QAccessibleInterface* window = QAccessible::queryAccessibleInterface(&form);
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->text(QAccessible::Name), QStringLiteral("Sofravan 1.0.15"));
    QMultiMap<QAccessible::Role, QString> found;
    QStringList unnamed;
    collect(window, found, unnamed);
    EXPECT_TRUE(unnamed.isEmpty()) << unnamed.join(", ").toStdString();

    // The two search frames have the same captions: each box says whose
    // search it is, and no two boxes sound alike.
    const QStringList boxes = found.values(QAccessible::EditableText);
    for (const char* label : {"Öğrenci arama: Ad", "Öğrenci arama: Soyad", "Öğrenci arama: Okul No",
                              "Öğrenci arama: T.C. kimlik no", "İzin listesinde arama: Ad",
                              "İzin listesinde arama: Soyad", "İzin listesinde arama: Okul No",
                              "İzin listesinde arama: T.C. kimlik no", "Öğrencinin T.C. kimlik no",
                              "Adı", "Soyadı", "Okul NO", "Sınıfı"}) {
        EXPECT_TRUE(boxes.contains(QString::fromUtf8(label))) << label;
    }
    EXPECT_EQ(QSet<QString>(boxes.begin(), boxes.end()).size(), boxes.size())
        << boxes.join(", ").toStdString();
    for (kit::ComboBox* combo : {form.Combo1, form.Combo3}) {
        QAccessibleInterface* box = QAccessible::queryAccessibleInterface(combo);
        EXPECT_EQ(box->text(QAccessible::Name),
                  combo == form.Combo1 ? QStringLiteral("Öğrenci arama: Sınıf")
                                       : QStringLiteral("İzin listesinde arama: Sınıf"));
    }
    // The count beside the option buttons is read out with its number.
    QAccessibleInterface* count = QAccessible::queryAccessibleInterface(form.Label16);
    EXPECT_EQ(count->text(QAccessible::Name),
              QString::number(form.izinler.Recordset().recordCount()));
    EXPECT_EQ(count->text(QAccessible::Description), QStringLiteral("Listedeki kayıt sayısı"));
    EXPECT_TRUE(found.values(QAccessible::ComboBox).contains(QStringLiteral("Kaydedilecek ay")));
    for (const char* caption : {"İzinlere Aktar", "Sil", "Tümünü Sil"}) {
        EXPECT_TRUE(found.values(QAccessible::PushButton).contains(QString::fromUtf8(caption)))
            << caption;
    }
    EXPECT_TRUE(found.values(QAccessible::RadioButton).contains(QStringLiteral("Tüm kayıtlar")));
    EXPECT_TRUE(
        found.values(QAccessible::RadioButton).contains(QStringLiteral("Bu ayki kayıtlar")));
    EXPECT_TRUE(found.values(QAccessible::Table).contains(QStringLiteral("YEMEK İZNİ OLANLAR")));

    // Usable on a 1024x768 screen; the picture is kept for a look.
    EXPECT_LE(form.minimumSizeHint().width(), 1024);
    EXPECT_LE(form.minimumSizeHint().height(), 768 - 40);
    form.grab().save(QStringLiteral(SOFRAVAN_SCREENSHOT_DIR "/main_window.png"));
    delete &form;
}

// The splash and the login announce themselves as windows, each saying
// which it is.
TEST(MainWindowAccessibility, SplashAndLoginAreWindowsWithNames) {
    SKIP_WITHOUT_FIXTURES();
    SchoolFolder folder(kvlFixture());
    auto* splash = new shell::frmSplash;
    splash->Timer1.stop();
    QAccessibleInterface* first = QAccessible::queryAccessibleInterface(splash);
    EXPECT_EQ(first->role(), QAccessible::Window);
    EXPECT_EQ(first->text(QAccessible::Name), QStringLiteral("Sofravan açılış ekranı"));
    EXPECT_EQ(first->text(QAccessible::Description),
              QStringLiteral("Program açılıyor, Version 1.0.15"));
    delete splash;

    auto* login = new shell::Form9;
    QAccessibleInterface* second = QAccessible::queryAccessibleInterface(login);
    EXPECT_EQ(second->role(), QAccessible::Dialog);
    EXPECT_EQ(second->text(QAccessible::Name), QStringLiteral("Giriş"));
    EXPECT_TRUE(second->text(QAccessible::Description).contains(QStringLiteral("şifre")));
    delete login;
}

}  // namespace
