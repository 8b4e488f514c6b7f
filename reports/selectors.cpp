#include "reports/selectors.h"

#include "shell/clock.h"

namespace reports {

// Each window loads as it is made: its controls, then Form_Load.
MonthSelector::MonthSelector(const QString& name, const QString& caption) : ReportWindow(caption) {
    setObjectName(name);
    const MonthChoice choice = addMonthChoice(this);
    Label1 = choice.Label1;
    Combo1 = choice.Combo1;
    Text1 = choice.Text1;
    kit::on(Combo1, &kit::ComboBox::Click, this, [this] { Combo1_Click(); });
    Form_Load();
}

void MonthSelector::Form_Load() {
    fillMonthCombo(Combo1);
}

void MonthSelector::Combo1_Click() {
    Text1->setText(monthNumberText(Combo1->currentText()));
    showMonthReport();
}

DaySelector::DaySelector(const QString& name, const QString& caption) : ReportWindow(caption) {
    setObjectName(name);
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
    Form_Load();
}

void DaySelector::Form_Load() {
    // Today, with no report: the event of a pick does not run for it.
    const QSignalBlocker quiet(takvim);
    takvim->setDate(shell::today());
}

Form2::Form2()
    : MonthList(QStringLiteral("Form2"), QStringLiteral("Aylara göre yemek izni olanlar listesi")) {
    Text2 = new QLineEdit(QStringLiteral("Text2"), this);
    Text2->setObjectName(QStringLiteral("Text2"));
    Text2->setAccessibleName(QStringLiteral("Text2"));
    Text2->setGeometry(260, 1, 40, 22);
}

}  // namespace reports
