// The month menu print as the office waits for it: Form16's choice of a
// month, from the click on the list entry, through the fold of its 124
// MENULER rows into TMPMENU, until the report's first page is painted in the
// viewer. On a copy of kvl/kvl.mdb given a full January of 31 days, four
// rows a day; skipped without the file.

#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/window_bench.h"
#include "menus/form16.h"
#include "reports/school_name.h"
#include "shell/clock.h"
#include "shell/window_registry.h"
#include "store/jet/database.h"

namespace {

namespace fs = std::filesystem;
using bench::ProgramFolder;
using bench::skipWithout;
using bench::waitFor;

const fs::path kSchoolDatabase = fs::path(SOFRAVAN_FIXTURES_DIR) / "kvl" / "kvl.mdb";

// January's rows as the preparation window leaves them: each day four lines
// of each meal, a snack only in the first.
void addJanuary(const fs::path& file) {
    jet::Database database(file.string(), jet::PageFile::Mode::ReadWrite);
    std::vector<std::vector<jet::Value>> rows;
    for (int day = 1; day <= 31; ++day) {
        const std::u16string number = QString::number(day).toStdU16String();
        for (int line = 1; line <= 4; ++line) {
            const std::u16string suffix = number + u"." + QString::number(line).toStdU16String();
            rows.push_back({jet::Value::integer(1), jet::Value::integer(day),
                            jet::Value::text(u"KAHVALTILIK " + suffix),
                            jet::Value::text(u"MERCİMEK ÇORBASI " + suffix),
                            jet::Value::text(u"İZMİR KÖFTE " + suffix),
                            line == 1 ? jet::Value::text(u"MEYVE " + suffix) : jet::Value()});
        }
    }
    database.insertRows(u"MENULER", rows);
}

void BM_MonthChoiceToFirstPageOnScreen(benchmark::State& state) {
    if (skipWithout(state, kSchoolDatabase))
        return;
    const ProgramFolder folder(kSchoolDatabase);
    addJanuary(folder.database());
    shell::setTodayForTests(QDate(2026, 1, 20));
    reports::setSchoolNameWithoutMainWindow(QStringLiteral("Okul"));
    // The first opening makes TMPMENU, outside the figures.
    auto* window = &shell::instance<menus::Form16>();
    window->resize(1024, 768);
    window->show();
    const int january = window->Combo1->findText(QStringLiteral("OCAK"));
    for (auto _ : state) {
        window->Combo1->setCurrentIndex(january);
        emit window->Combo1->activated(january);
        engine::Report* report = window->arv->ReportSource();
        waitFor([report] { return !report->pages().empty(); });
        window->arv->repaint();
        state.PauseTiming();
        waitFor([report] { return report->done(); });
        state.counters["pages"] = static_cast<double>(report->pages().size());
        state.ResumeTiming();
    }
    delete window;
    shell::setTodayForTests(QDate());
}
BENCHMARK(BM_MonthChoiceToFirstPageOnScreen)->Unit(benchmark::kMillisecond);

}  // namespace
