#include "reports/period_lists.h"

#include <QLocale>

#include "reports/school_name.h"
#include "reports/selectors.h"

namespace reports {
namespace {

const QString kUnpaid = QStringLiteral("'Yemek Ücretini Ödeyiniz'");

// The day as the engine's date literal wants it, whatever the system's
// date format: month/day/year, no leading zeros.
QString dateLiteral(QDate day) {
    return QStringLiteral("%1/%2/%3").arg(day.month()).arg(day.day()).arg(day.year());
}

// A month list's title: the school, the month as chosen, the list's words.
QString monthTitle(const MonthSelector& window, const QString& tail) {
    return schoolName() + QStringLiteral(" ") + upperCase(window.Combo1->currentText()) + tail;
}

// A day list's title: the school, the day in the short date form with
// slashes (day first, unlike the literal), the weekday's name, the list's
// words. The week counts from Monday, as the system's does on a Turkish
// Windows.
QString dayTitle(const DaySelector& window, const QString& tail) {
    const QDate day = window.takvim->date();
    const QLocale turkish(QLocale::Turkish);
    const QString shortDate = day.toString(QStringLiteral("dd.MM.yyyy")).replace(u'.', u'/');
    const QString weekday = upperCase(turkish.dayName(day.dayOfWeek(), QLocale::LongFormat));
    return schoolName() + QStringLiteral(" ") + shortDate + QStringLiteral(" ") + weekday + tail;
}

}  // namespace

izinliler::izinliler(QObject* parent) : ListReport(permitListDesign(), parent) {}

void izinliler::ActiveReport_ReportStart() {
    DataControl1.Source = QStringLiteral("select* from IZINLER where ay=") +
                          shell::instance<Form2>().Text1->text() + QStringLiteral(" and YIL=") +
                          presentYear();
}

void izinliler::PageHeader_Format() {
    Label7->Caption =
        monthTitle(shell::instance<Form2>(), QStringLiteral(" AYI YEMEK İZNİ OLANLAR LİSTESİ"));
}

yemekyiyenler::yemekyiyenler(QObject* parent) : ListReport(mealListDesign(), parent) {}

void yemekyiyenler::ActiveReport_ReportStart() {
    DataControl1.Source = QStringLiteral("select* from yemek where ay=") +
                          shell::instance<Form3>().Text1->text() + QStringLiteral(" and YIL=") +
                          QStringLiteral("'") + presentYear() + QStringLiteral("'");
}

void yemekyiyenler::PageHeader_Format() {
    Label7->Caption =
        monthTitle(shell::instance<Form3>(), QStringLiteral(" AYI YEMEK YİYENLER LİSTESİ"));
}

ucretvermeyen::ucretvermeyen(QObject* parent) : ListReport(mealListDesign(), parent) {}

void ucretvermeyen::ActiveReport_ReportStart() {
    DataControl1.Source = QStringLiteral("select* from yemek where ay=") +
                          shell::instance<Form5>().Text1->text() + QStringLiteral(" and YIL=") +
                          QStringLiteral("'") + presentYear() + QStringLiteral("'") +
                          QStringLiteral(" and ACIKLAMA=") + kUnpaid;
}

void ucretvermeyen::PageHeader_Format() {
    Label7->Caption =
        monthTitle(shell::instance<Form5>(), QStringLiteral(" AYI ÜCRET VERMEYENLER LİSTESİ"));
}

gunyemek::gunyemek(QObject* parent) : ListReport(mealListDesign(), parent) {}

void gunyemek::ActiveReport_ReportStart() {
    const QString day = dateLiteral(shell::instance<Form4>().takvim->date());
    DataControl1.Source = QStringLiteral("select* from yemek where YEMEKTARIH=#") + day +
                          QStringLiteral("#") + QStringLiteral(" order by SINIF asc");
}

void gunyemek::PageHeader_Format() {
    Label7->Caption =
        dayTitle(shell::instance<Form4>(), QStringLiteral(" GÜNÜ YEMEK YİYENLER LİSTESİ"));
}

gunucret::gunucret(QObject* parent) : ListReport(mealListDesign(), parent) {}

void gunucret::ActiveReport_ReportStart() {
    const QString day = dateLiteral(shell::instance<Form6>().takvim->date());
    DataControl1.Source = QStringLiteral("select* from YEMEK where YEMEKTARIH=#") + day +
                          QStringLiteral("#") + QStringLiteral(" and ACIKLAMA=") + kUnpaid +
                          QStringLiteral(" order by SINIF asc");
}

void gunucret::PageHeader_Format() {
    Label7->Caption =
        dayTitle(shell::instance<Form6>(), QStringLiteral(" GÜNÜ ÜCRET VERMEYENLER LİSTESİ"));
}

}  // namespace reports
