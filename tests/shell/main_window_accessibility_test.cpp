// The main window as assistive technology sees it: every control reached
// by a meaningful name. And the window fits a 1024x768 screen.

#include <QAccessible>
#include <QLabel>
#include <QMultiMap>

#include "shell/form1.h"
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

    const QStringList boxes = found.values(QAccessible::EditableText);
    for (const char* label :
         {"Ad  :", "Soyad  :", "Okul No  :", "T.C.", "Adı", "Soyadı", "Okul NO", "Sınıfı"}) {
        EXPECT_TRUE(boxes.contains(QString::fromUtf8(label))) << label;
    }
    EXPECT_EQ(boxes.count(QStringLiteral("Okul No  :")), 2);  // Text11 and Text4
    EXPECT_TRUE(found.values(QAccessible::ComboBox).contains(QStringLiteral("Sınıf  :")));
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

}  // namespace
