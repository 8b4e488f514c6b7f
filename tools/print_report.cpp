// print-report: runs one of the office's lists as its window would, on the
// given database, and writes the pages as a PDF, with nobody at the screen.
//
//   print-report FILE REPORT [--month N | --day D.M.YYYY] OUT.pdf
//
// Exit status: 0 written; 1 the run failed as the window's would (the
// run-time error on standard error, no PDF); 2 bad arguments, a file that
// cannot be read or a PDF that cannot be written.

#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

#include <QApplication>
#include <QDate>
#include <QFileInfo>
#include <QStringList>

#include "menus/form16.h"
#include "menus/yemekmenusu.h"
#include "reports/engine/page_output.h"
#include "reports/form7.h"
#include "reports/period_lists.h"
#include "reports/puantaj.h"
#include "reports/school_name.h"
#include "reports/selectors.h"
#include "shell/kit/connection_strings.h"
#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/months.h"
#include "store/connection.h"
#include "store/recordset.h"

namespace {

constexpr int kBadInput = 2;

int fail(const QString& message) {
    std::fputs((QStringLiteral("print-report: ") + message + QStringLiteral("\n"))
                   .toLocal8Bit()
                   .constData(),
               stderr);
    return kBadInput;
}

const char* const kUsage =
    "kullanım: print-report DOSYA RAPOR [--month N | --day G.A.YYYY] ÇIKTI.pdf\n"
    "raporlar: izinliler, yemekyiyenler, ucretvermeyen, puantaj, yemekmenusu (--month), "
    "gunyemek, gunucret (--day)";

// The school's name as the main window would have it, from AYAR.OKUL.
QString schoolNameIn(const QString& connection) {
    store::Connection database;
    database.Open(connection.toStdString());
    store::Recordset ayar;
    ayar.open(u"SELECT* from AYAR", database);
    const jet::Value okul = ayar.field(u"OKUL");
    return okul.isNull() ? QString() : QString::fromStdU16String(okul.asText());
}

// The month window's choice as a click on the month's entry leaves it.
template <class Window>
void chooseMonth(int month) {
    Window& window = shell::instance<Window>();
    window.Combo1->setCurrentIndex(month - 1);
    window.Text1->setText(reports::monthNumberText(window.Combo1->currentText()));
}

template <class Window>
void chooseDay(QDate day) {
    const QSignalBlocker quiet(shell::instance<Window>().takvim);
    shell::instance<Window>().takvim->setDate(day);
}

// A report of the tool: whether its window chooses a month or a day, and
// how it makes the choice and the report object.
struct ReportKind {
    const char* name;
    bool byMonth;
    std::function<std::unique_ptr<engine::Report>(int month, QDate day)> make;
};

template <class Window, class ReportClass>
ReportKind monthReport(const char* name) {
    return {name, true, [](int month, QDate) {
                chooseMonth<Window>(month);
                return std::make_unique<ReportClass>();
            }};
}

template <class Window, class ReportClass>
ReportKind dayReport(const char* name) {
    return {name, false, [](int, QDate day) {
                chooseDay<Window>(day);
                return std::make_unique<ReportClass>();
            }};
}

const ReportKind* findReport(const QString& name) {
    static const std::vector<ReportKind> kinds = {
        monthReport<reports::Form2, reports::izinliler>("izinliler"),
        monthReport<reports::Form3, reports::yemekyiyenler>("yemekyiyenler"),
        monthReport<reports::Form5, reports::ucretvermeyen>("ucretvermeyen"),
        dayReport<reports::Form4, reports::gunyemek>("gunyemek"),
        dayReport<reports::Form6, reports::gunucret>("gunucret"),
        // The tally counts the month into TMP first, as its window does.
        {"puantaj", true,
         [](int month, QDate) {
             chooseMonth<reports::Form7>(month);
             shell::instance<reports::Form7>().Tally();
             return std::make_unique<reports::puantaj>();
         }},
        // The month's menu is folded into TMPMENU first, as its window does.
        {"yemekmenusu", true,
         [](int month, QDate) {
             chooseMonth<menus::Form16>(month);
             shell::instance<menus::Form16>().Command1_Click();
             return std::make_unique<menus::yemekmenusu>();
         }},
    };
    for (const ReportKind& kind : kinds) {
        if (name == QLatin1String(kind.name))
            return &kind;
    }
    return nullptr;
}

}  // namespace

int main(int argc, char* argv[]) {
    // No screen is needed: the windows are made, never shown.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    kit::setMessageBoxesUnattended(true);

    QStringList arguments = QApplication::arguments().mid(1);
    int month = 0;
    QDate day;
    for (int i = 0; i + 1 < arguments.size(); ++i) {
        if (arguments[i] == QLatin1String("--month")) {
            bool number = false;
            month = arguments[i + 1].toInt(&number);
            if (!number || month < 1 || month > 12)
                return fail(QStringLiteral("geçersiz ay: ") + arguments[i + 1]);
            arguments.remove(i, 2);
            break;
        }
        if (arguments[i] == QLatin1String("--day")) {
            day = QDate::fromString(arguments[i + 1], QStringLiteral("d.M.yyyy"));
            if (!day.isValid())
                return fail(QStringLiteral("geçersiz gün: ") + arguments[i + 1]);
            arguments.remove(i, 2);
            break;
        }
    }
    if (arguments.size() != 3)
        return fail(QString::fromUtf8(kUsage));
    const QString file = QFileInfo(arguments[0]).absoluteFilePath();
    const QString& reportName = arguments[1];
    const QString& output = arguments[2];

    const ReportKind* kind = findReport(reportName);
    if (kind == nullptr)
        return fail(QStringLiteral("bilinmeyen rapor: ") + reportName + QStringLiteral("\n") +
                    QString::fromUtf8(kUsage));
    if (kind->byMonth ? month == 0 : !day.isValid())
        return fail(kind->byMonth ? QStringLiteral("bu rapor --month N ister")
                                  : QStringLiteral("bu rapor --day G.A.YYYY ister"));

    try {
        reports::setSchoolNameWithoutMainWindow(schoolNameIn(kit::connectionString(file)));
    } catch (const std::exception& error) {
        return fail(QStringLiteral("veritabanı okunamadı: ") + file + QStringLiteral(": ") +
                    QString::fromUtf8(error.what()));
    }
    kit::setRelativeDataSourceForTools(file);
    // A failure of the choice or of the run is the window's: the run-time
    // error, status 1.
    std::unique_ptr<engine::Report> report;
    kit::bare([&] { report = kind->make(month, day); });
    kit::bare([&] { report->Run(); });
    const QString message = engine::savePdf(report->pages(), output, report->definition().title);
    if (!message.isEmpty())
        return fail(message);
    return 0;
}
