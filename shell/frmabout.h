#pragma once

#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include "shell/kit/multi_line_text_box.h"

namespace shell {

// The about window: the program's name and version, its terms of use and a
// legal note, and a button that starts the system's information tool where
// the registry names one.
class frmAbout : public QWidget {
    Q_OBJECT
public:
    frmAbout();

    QLabel* picIcon;
    QLabel* lblTitle;
    QLabel* lblVersion;
    QLabel* Image1;
    kit::MultiLineTextBox* Text1;  // the terms of use, read only
    QLabel* lblDisclaimer;
    QPushButton* cmdOK;
    QPushButton* cmdSysInfo;

    void Form_Load();
    void cmdOK_Click();
    void cmdSysInfo_Click();
    // Starts the tool that the registry names, or tells that there is none;
    // a tool that will not start is told the same way.
    void StartSysInfo();

private:
    void placeControls();
    void connectHandlers();
};

}  // namespace shell
