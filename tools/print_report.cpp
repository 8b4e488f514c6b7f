// print-report: runs one of the office's lists as its window would, on the
// given database, and writes the pages as a PDF, with nobody at the screen.
//
//   print-report FILE REPORT [--month N | --day D.M.YYYY | --class C] OUT.pdf
//
// The identity cards (gkimlik, --class C or "Tümü") take their pictures as
// the program does: the photographs at the paths the file stores, the card
// background from the folder of FILE.
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
#include "reports/report_window.h"
#include "reports/school_name.h"
#include "reports/selectors.h"
#include "rosters/gkimlik.h"
#include "shell/kit/app_path.h"
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
    "kullanım: print-report DOSYA RAPOR [--month N | --day G.A.YYYY | --class SINIF] ÇIKTI.pdf\n"
    "raporlar: izinliler, yemekyiyenler, ucretvermeyen, puantaj, yemekmenusu (--month), "
    "gunyemek, gunucret (--day), gkimlik (--class, \"Tümü\" for every class)";

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

// What a report's window chooses before the report runs.
enum class Choice { Month, Day, Class };

// The choice as the command line gives it.
struct Chosen {
    int month = 0;
    QDate day;
    QString schoolClass;
};

// A report of the tool: what its window chooses, and how it makes the
// choice and the report object.
struct ReportKind {
    const char* name;
    Choice choice;
    std::function<std::unique_ptr<engine::Report>(const Chosen& chosen)> make;
};

template <class Window, class ReportClass>
ReportKind monthReport(const char* name) {
    return {name, Choice::Month, [](const Chosen& chosen) {
                chooseMonth<Window>(chosen.month);
                return std::make_unique<ReportClass>();
            }};
}

template <class Window, class ReportClass>
ReportKind dayReport(const char* name) {
    return {name, Choice::Day, [](const Chosen& chosen) {
                chooseDay<Window>(chosen.day);
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
        {"puantaj", Choice::Month,
         [](const Chosen& chosen) {
             chooseMonth<reports::Form7>(chosen.month);
             shell::instance<reports::Form7>().Tally();
             return std::make_unique<reports::puantaj>();
         }},
        // The month's menu is folded into TMPMENU first, as its window does.
        {"yemekmenusu", Choice::Month,
         [](const Chosen& chosen) {
             chooseMonth<menus::Form16>(chosen.month);
             shell::instance<menus::Form16>().Command1_Click();
             return std::make_unique<menus::yemekmenusu>();
         }},
        // The cards' window is not made: it would need the main window.
        {"gkimlik", Choice::Class,
         [](const Chosen& chosen) {
             rosters::setCardClassWithoutWindow(chosen.schoolClass);
             return std::make_unique<rosters::gkimlik>();
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
    Chosen chosen;
    for (int i = 0; i + 1 < arguments.size(); ++i) {
        const QString& option = arguments[i];
        const QString& value = arguments[i + 1];
        if (option == QLatin1String("--month")) {
            bool number = false;
            chosen.month = value.toInt(&number);
            if (!number || chosen.month < 1 || chosen.month > 12)
                return fail(QStringLiteral("geçersiz ay: ") + value);
        } else if (option == QLatin1String("--day")) {
            chosen.day = QDate::fromString(value, QStringLiteral("d.M.yyyy"));
            if (!chosen.day.isValid())
                return fail(QStringLiteral("geçersiz gün: ") + value);
        } else if (option == QLatin1String("--class")) {
            chosen.schoolClass = value;
        } else {
            continue;
        }
        arguments.remove(i, 2);
        break;
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
    switch (kind->choice) {
        case Choice::Month:
            if (chosen.month == 0)
                return fail(QStringLiteral("bu rapor --month N ister"));
            break;
        case Choice::Day:
            if (!chosen.day.isValid())
                return fail(QStringLiteral("bu rapor --day G.A.YYYY ister"));
            break;
        case Choice::Class:
            if (chosen.schoolClass.isNull())
                return fail(QStringLiteral("bu rapor --class SINIF ister (ya da \"Tümü\")"));
            break;
    }

    try {
        reports::setSchoolNameWithoutMainWindow(schoolNameIn(kit::connectionString(file)));
    } catch (const std::exception& error) {
        return fail(QStringLiteral("veritabanı okunamadı: ") + file + QStringLiteral(": ") +
                    QString::fromUtf8(error.what()));
    }
    kit::setRelativeDataSourceForTools(file);
    // The program's folder, where the card background lies, is the file's.
    kit::setAppPathForTests(QFileInfo(file).absolutePath());
    // A failure of the choice or of the run is the window's: the run-time
    // error, status 1.
    std::unique_ptr<engine::Report> report;
    kit::bare([&] { report = kind->make(chosen); });
    kit::bare([&] { report->Run(); });
    // A card whose picture failed stopped the default instance, made for it.
    reports::clearDefaultInstance<rosters::gkimlik>();
    const QString message = engine::savePdf(report->pages(), output, report->definition().title);
    if (!message.isEmpty())
        return fail(message);
    return 0;
}
