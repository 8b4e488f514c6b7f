#include "shell/form9.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>

#include "shell/form1.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/scramble.h"
#include "shell/stored_password.h"
#include "shell/window_registry.h"
#include "shell/window_role.h"
#include "store/data_error.h"

namespace shell {
namespace {

// Both ways of logging in run these steps. No error handling: a missing
// file or a Null password ends the program through the run-time error
// report.
void login(Form9& window) {
    const jet::Value stored = storedPassword();
    if (stored.kind() != jet::Value::Kind::Text) {
        throw store::DataError("invalid use of Null");
    }
    const QString password = sifrecoz(scrambleKey, QString::fromStdU16String(stored.asText()));
    if (password != window.Text1->text()) {
        kit::MsgBox(QStringLiteral("Giriş başarısız!"), 0);
        window.Text1->clear();
        window.Text1->setFocus();
        return;
    }
    instance<Form1>().show();
    unload<Form9>();
}

}  // namespace

Form9::Form9() {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Giriş"));
    setAccessibleRole(this, QAccessible::Dialog);
    setAccessibleDescription(QStringLiteral("Sofravan'a giriş: şifrenizi yazıp Tamam'a basınız."));
    Text1 = new QLineEdit;
    Text1->setEchoMode(QLineEdit::Password);
    Text1->setAccessibleName(QStringLiteral("Şifre"));
    Command1 = new QPushButton(QStringLiteral("Tamam"));
    auto* label = new QLabel(QStringLiteral("Şifre :"));
    label->setBuddy(Text1);
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(Text1);
    layout->addWidget(Command1);
    kit::on(Command1, &QPushButton::clicked, this, [this] { Command1_Click(); });
    Text1->installEventFilter(this);
}

void Form9::Command1_Click() {
    login(*this);
}

void Form9::Text1_KeyPress(int keyAscii) {
    if (keyAscii == 13)
        login(*this);
}

bool Form9::eventFilter(QObject* watched, QEvent* event) {
    if (watched == Text1 && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            kit::bare([this] { Text1_KeyPress(13); });
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace shell
