#pragma once

#include <QAction>
#include <QLabel>
#include <QPushButton>

#include "reports/report_window.h"
#include "shell/kit/combo_box.h"

namespace rosters {

// "Öğrenci Kimlik basımı": the day students' identity cards of one class,
// or of all, in the viewer, with a tool that saves them as a PDF. Unlike
// the list windows it keeps the default instance of its report on close;
// only the report's own close request releases it.
class kimlik : public reports::ReportWindow {
    Q_OBJECT
public:
    kimlik();

    QLabel* Label1;
    kit::ComboBox* Combo1;  // "Tümü" and the classes of the main window's list
    QPushButton* Command1;  // "GÖSTER"
    QPushButton* Command2;  // "DURDUR"
    QAction* pdfTool;       // "Pdf kaydet" on the viewer's tool bar

    void Form_Load();
    void Command1_Click();
    void Command2_Click();
};

}  // namespace rosters
