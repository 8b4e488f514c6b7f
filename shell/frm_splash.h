#pragma once

#include <QLabel>
#include <QTimer>
#include <QWidget>

namespace shell {

// The window the run begins with: the product and its version for about
// three seconds, then the login or the main window.
class frmSplash : public QWidget {
    Q_OBJECT
public:
    frmSplash();

    QLabel* lblProductName;
    QLabel* lblVersion;
    QTimer Timer1;
    QTimer Timer2;

    void Form_Load();
    void Timer1_Timer();
    void Timer2_Timer();
};

// Reads the password of the settings row: with one set the login window
// comes up, otherwise the main window. No error handling: a missing file
// ends the program through the run-time error report.
void sifrevarmi();

}  // namespace shell
