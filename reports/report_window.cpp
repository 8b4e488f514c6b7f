#include "reports/report_window.h"

#include <QCloseEvent>
#include <QResizeEvent>

#include "shell/months.h"

namespace reports {
namespace {

// The viewer's top edge: 360 twips at 15 twips to a screen pixel.
constexpr int kViewerTop = 24;

}  // namespace

ReportWindow::ReportWindow(const QString& caption) {
    setWindowTitle(caption);
    setAccessibleName(caption);
    setAttribute(Qt::WA_DeleteOnClose);
    arv = new engine::Viewer(this);
    arv->setObjectName(QStringLiteral("arv"));
    arv->move(0, kViewerTop);
    resize(1000, 700);
}

void ReportWindow::Form_Resize() {
    const int top = arv->y();
    // Computed in single precision, as the window's own arithmetic is.
    const float height = static_cast<float>(this->height()) - static_cast<float>(top);
    if (height < 0)
        return;  // the size the platform refuses: ignored, the viewer keeps its size
    arv->setGeometry(0, top, width(), static_cast<int>(height));
}

void ReportWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Form_Resize();
}

void ReportWindow::closeEvent(QCloseEvent* event) {
    Form_Unload();
    event->accept();
}

MonthChoice addMonthChoice(ReportWindow* window) {
    MonthChoice choice{};
    choice.Label1 = new QLabel(QStringLiteral("Ay"), window);
    choice.Label1->setObjectName(QStringLiteral("Label1"));
    choice.Label1->setGeometry(8, 2, 30, 20);
    choice.Combo1 = new kit::ComboBox(window);
    choice.Combo1->setObjectName(QStringLiteral("Combo1"));
    choice.Combo1->setEditable(true);
    choice.Combo1->setAccessibleName(QStringLiteral("Ay"));
    choice.Combo1->setGeometry(40, 1, 160, 22);
    choice.Label1->setBuddy(choice.Combo1);
    choice.Text1 = new QLineEdit(window);
    choice.Text1->setObjectName(QStringLiteral("Text1"));
    choice.Text1->setAccessibleName(QStringLiteral("Ayın numarası"));
    choice.Text1->setGeometry(210, 1, 40, 22);
    return choice;
}

void fillMonthCombo(kit::ComboBox* combo) {
    combo->addItems(shell::aylar());
    combo->setCurrentIndex(-1);
    combo->setEditText(QStringLiteral("Ay seçiniz..."));
}

int monthNumber(const QString& name) {
    int number = 0;
    for (int month = 1; month <= 12; ++month) {
        if (name == shell::ayAdi(month))
            number = month;
    }
    return number;
}

QString monthNumberText(const QString& name) {
    const int number = monthNumber(name);
    return number == 0 ? QString() : QString::number(number);
}

}  // namespace reports
