#pragma once

#include <QLineEdit>
#include <QPushButton>
#include <QWidget>

namespace shell {

// The login: the password of the settings row, typed before the main
// window opens.
class Form9 : public QWidget {
    Q_OBJECT
public:
    Form9();

    QLineEdit* Text1;
    QPushButton* Command1;

    void Command1_Click();
    void Text1_KeyPress(int keyAscii);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace shell
