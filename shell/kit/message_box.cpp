#include "shell/kit/message_box.h"

#include <cstdio>

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

namespace kit {
namespace {

QMessageBox::Icon iconOf(int style) {
    switch (style & 0x70) {
        case 16:
            return QMessageBox::Critical;
        case 32:
            return QMessageBox::Question;
        case 48:
            return QMessageBox::Warning;
        case 64:
            return QMessageBox::Information;
        default:
            return QMessageBox::NoIcon;
    }
}

bool unattended = false;

}  // namespace

void setMessageBoxesUnattended(bool value) {
    unattended = value;
}

bool messageBoxesUnattended() {
    return unattended;
}

int MsgBox(const QString& prompt, int style, const QString& title) {
    if (unattended) {
        std::fputs((title + QStringLiteral(": ") + prompt + QStringLiteral("\n"))
                       .toLocal8Bit()
                       .constData(),
                   stderr);
        return (style & 0x0f) == 4 ? vbYes : vbOK;
    }
    QMessageBox box(iconOf(style), title, prompt, QMessageBox::NoButton,
                    QApplication::activeWindow());
    box.setAccessibleName(title);
    box.setAccessibleDescription(prompt);
    if ((style & 0x0f) == 4) {
        QPushButton* yes = box.addButton(QStringLiteral("Evet"), QMessageBox::YesRole);
        QPushButton* no = box.addButton(QStringLiteral("Hayır"), QMessageBox::NoRole);
        box.setDefaultButton(yes);
        box.setEscapeButton(no);
        box.exec();
        return box.clickedButton() == yes ? vbYes : vbNo;
    }
    QPushButton* ok = box.addButton(QStringLiteral("Tamam"), QMessageBox::AcceptRole);
    box.setDefaultButton(ok);
    box.setEscapeButton(ok);
    box.exec();
    return vbOK;
}

}  // namespace kit
