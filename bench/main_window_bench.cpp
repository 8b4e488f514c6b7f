// The main window as a clerk feels it: a keystroke in the school number box
// until the student's row is in view, Enter until the permit is saved and the
// list shows it again, and the window's start on a large database.
//
// The keystroke and Enter run on a made-up school of 2,000 students and
// about 20,000 permits: the folder named by SOFRAVAN_DEMO_SCHOOL when set
// (made with `make-demo DIR --students 2000 --meal-days 300`), otherwise
// one that make-demo builds into a temporary folder at start. The start runs
// on perf/kvl-546k.mdb of the fixtures. Each benchmark works on a copy of its
// file in a folder of its own and skips, saying why, when the file is absent.

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <benchmark/benchmark.h>

#include "bench/window_bench.h"
#include "shell/clock.h"
#include "shell/form1.h"
#include "shell/kit/app_path.h"
#include "shell/window_registry.h"
#include "store/jet/database.h"

namespace {

namespace fs = std::filesystem;
using bench::freshTempFolder;
using bench::ProgramFolder;

const fs::path kLargeDatabase = fs::path(SOFRAVAN_FIXTURES_DIR) / "perf" / "kvl-546k.mdb";

// A month outside the made-up school's term: no student has a permit for it
// yet, so every Enter saves a row.
const QDate kToday(2031, 1, 15);

// The made-up school: built once, on first use, unless the environment
// names one. Empty with the reason in `why` when there is none.
struct DemoSchool {
    fs::path folder;
    std::string why;
    bool temporary = false;
    ~DemoSchool() {
        if (temporary)
            fs::remove_all(folder);
    }
};

const DemoSchool& demoSchool() {
    static DemoSchool school = [] {
        DemoSchool found;
        if (const char* named = std::getenv("SOFRAVAN_DEMO_SCHOOL");
            named != nullptr && *named != '\0') {
            found.folder = named;
            if (!fs::exists(found.folder / "kvl.mdb")) {
                found.why = "SOFRAVAN_DEMO_SCHOOL has no kvl.mdb: " + found.folder.string();
            }
            return found;
        }
        found.folder = freshTempFolder("sofravan-demo");
        found.temporary = true;
        const std::string command = std::string("'") + MAKE_DEMO_EXECUTABLE + "' '" +
                                    found.folder.string() +
                                    "' --students 2000 --meal-days 300 > /dev/null";
        if (std::system(command.c_str()) != 0)
            found.why = "make-demo failed: " + command;
        return found;
    }();
    return school;
}

// Counts the message boxes that come up and closes them, so that one
// would show in the figures rather than stop the run.
class MessageBoxCounter {
public:
    MessageBoxCounter() {
        timer_.setInterval(5);
        QObject::connect(&timer_, &QTimer::timeout, [this] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box == nullptr || !box->isVisible())
                return;
            ++seen;
            box->buttons().constFirst()->click();
        });
        timer_.start();
    }
    int seen = 0;

private:
    QTimer timer_;
};

std::vector<std::int32_t> schoolNumbers(const fs::path& file) {
    const jet::Database database(file.string());
    const jet::TableDefinition table = database.table(u"ORNEK");
    std::size_t numara = 0;
    while (table.columns.at(numara).name != u"Numara")
        ++numara;
    std::vector<std::int32_t> numbers;
    std::vector<jet::Value> row;
    jet::TableCursor cursor = database.scan(table);
    while (cursor.next()) {
        cursor.values(row);
        if (!row[numara].isNull())
            numbers.push_back(row[numara].asInteger());
    }
    return numbers;
}

shell::Form1& openMainWindow() {
    shell::Form1& form = shell::instance<shell::Form1>();
    form.show();
    QCoreApplication::processEvents();
    return form;
}

void closeMainWindow() {
    delete &shell::instance<shell::Form1>();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void BM_SchoolNumberKeystroke(benchmark::State& state) {
    const DemoSchool& school = demoSchool();
    if (!school.why.empty()) {
        state.SkipWithError(school.why.c_str());
        return;
    }
    const std::vector<std::int32_t> numbers = schoolNumbers(school.folder / "kvl.mdb");
    ProgramFolder folder(school.folder / "kvl.mdb");
    shell::setTodayForTests(kToday);
    shell::Form1& form = openMainWindow();
    const QString first = QString::number(numbers.at(numbers.size() / 3));
    const QString second = QString::number(numbers.at(numbers.size() * 2 / 3));
    bool odd = false;
    for (auto _ : state) {
        form.Text11->setText(odd ? first : second);
        QCoreApplication::processEvents();
        odd = !odd;
    }
    state.counters["students"] = static_cast<double>(numbers.size());
    state.counters["rows_in_view"] = static_cast<double>(form.ornek.Recordset().recordCount());
    closeMainWindow();
    shell::setTodayForTests(QDate());
}
BENCHMARK(BM_SchoolNumberKeystroke)->Unit(benchmark::kMillisecond);

void BM_EnterSavesPermit(benchmark::State& state) {
    const DemoSchool& school = demoSchool();
    if (!school.why.empty()) {
        state.SkipWithError(school.why.c_str());
        return;
    }
    const std::vector<std::int32_t> numbers = schoolNumbers(school.folder / "kvl.mdb");
    ProgramFolder folder(school.folder / "kvl.mdb");
    shell::setTodayForTests(kToday);
    shell::Form1& form = openMainWindow();
    const long permitsBefore = form.izinler.Recordset().recordCount();
    MessageBoxCounter messages;
    std::size_t next = 0;
    for (auto _ : state) {
        state.PauseTiming();
        // Students in turn, each new to this month's permits; a full round
        // goes on in the next month.
        if (next == numbers.size()) {
            next = 0;
            shell::setTodayForTests(shell::today().addMonths(1));
        }
        form.Text11->setText(QString::number(numbers[next++]));
        QCoreApplication::processEvents();
        state.ResumeTiming();
        QTest::keyClick(form.Text11, Qt::Key_Return);
        QCoreApplication::processEvents();
    }
    state.counters["permits_before"] = static_cast<double>(permitsBefore);
    state.counters["saved"] =
        static_cast<double>(form.izinler.Recordset().recordCount() - permitsBefore);
    state.counters["messages"] = messages.seen;
    closeMainWindow();
    shell::setTodayForTests(QDate());
}
BENCHMARK(BM_EnterSavesPermit)->Unit(benchmark::kMillisecond);

// After the splash: the window made, its data controls opened, its
// Form_Load run and the window shown. The sample workbook that the first
// start writes is there already, as after any earlier start.
void BM_MainWindowStart(benchmark::State& state) {
    if (bench::skipWithout(state, kLargeDatabase))
        return;
    ProgramFolder folder(kLargeDatabase);
    openMainWindow();
    closeMainWindow();
    for (auto _ : state) {
        openMainWindow();
        state.PauseTiming();
        closeMainWindow();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_MainWindowStart)->Unit(benchmark::kMillisecond);

}  // namespace
