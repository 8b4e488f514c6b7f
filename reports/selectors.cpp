#include "reports/selectors.h"

#include "reports/period_lists.h"
#include "shell/clock.h"

namespace reports {

MonthSelector::MonthSelector(const QString& caption) : ReportWindow(caption) {
    const MonthChoice choice = addMonthChoice(this);
    Label1 = choice.Label1;
    Combo1 = choice.Combo1;
    Text1 = choice.Text1;
    kit::on(Combo1, &kit::ComboBox::Click, this, [this] { Combo1_Click(); });
}

void MonthSelector::Form_Load() {
    fillMonthCombo(Combo1);
}

void MonthSelector::Combo1_Click() {
    Text1->setText(monthNumberText(Combo1->currentText()));
    showMonthReport();
}

DaySelector::DaySelector(const QString& caption) : ReportWindow(caption) {
    Label1 = new QLabel(QStringLiteral("Tarih"), this);
    Label1->setObjectName(QStringLiteral("Label1"));
    Label1->setGeometry(8, 2, 40, 20);
    takvim = new QDateEdit(this);
    takvim->setObjectName(QStringLiteral("takvim"));
    takvim->setAccessibleName(QStringLiteral("Tarih"));
    takvim->setCalendarPopup(true);
    takvim->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    takvim->setLocale(QLocale(QLocale::Turkish));
    takvim->setGeometry(50, 1, 130, 22);
    Label1->setBuddy(takvim);
    Text1 = new QLineEdit(this);
    Text1->setObjectName(QStringLiteral("Text1"));
    Text1->setAccessibleName(QStringLiteral("Text1"));
    Text1->setGeometry(190, 1, 40, 22);
    // Every change of the value is a pick, by the calendar or by the keys.
    kit::on(takvim, &QDateEdit::dateChanged, this, [this] { takvim_Change(); });
}

void DaySelector::Form_Load() {
    // Today, with no report: the event of a pick does not run for it.
    const QSignalBlocker quiet(takvim);
    takvim->setDate(shell::today());
}

Form2::Form2() : MonthSelector(QStringLiteral("Aylara göre yemek izni olanlar listesi")) {
    setObjectName(QStringLiteral("Form2"));
    Text2 = new QLineEdit(QStringLiteral("Text2"), this);
    Text2->setObjectName(QStringLiteral("Text2"));
    Text2->setAccessibleName(QStringLiteral("Text2"));
    Text2->setGeometry(260, 1, 40, 22);
    Form_Load();
}

void Form2::showMonthReport() {
    showReport<izinliler>();
}

void Form2::Form_Unload() {
    releaseReport<izinliler>();
}

Form3::Form3() : MonthSelector(QStringLiteral("Aylara göre yemek yiyenler listesi")) {
    setObjectName(QStringLiteral("Form3"));
    Form_Load();
}

void Form3::showMonthReport() {
    showReport<yemekyiyenler>();
}

void Form3::Form_Unload() {
    releaseReport<yemekyiyenler>();
}

Form5::Form5() : MonthSelector(QStringLiteral("Aylara göre ücret vermeyenler listesi")) {
    setObjectName(QStringLiteral("Form5"));
    Form_Load();
}

void Form5::showMonthReport() {
    showReport<ucretvermeyen>();
}

void Form5::Form_Unload() {
    releaseReport<ucretvermeyen>();
}

Form4::Form4() : DaySelector(QStringLiteral("Günlere göre yemek yiyenler listesi")) {
    setObjectName(QStringLiteral("Form4"));
    Form_Load();
}

void Form4::takvim_Change() {
    showReport<gunyemek>();
}

void Form4::Form_Unload() {
    releaseReport<gunyemek>();
}

Form6::Form6() : DaySelector(QStringLiteral("Günlere göre ücret vermeyenler listesi")) {
    setObjectName(QStringLiteral("Form6"));
    Form_Load();
}

void Form6::takvim_Change() {
    showReport<gunucret>();
}

void Form6::Form_Unload() {
    releaseReport<gunucret>();
}

}  // namespace reports
