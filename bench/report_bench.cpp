// The lists as the office waits for them, through their windows: from the
// choice of a day to the first page on the screen, to the last page laid
// out, to the whole report in a PDF; and a month of 32,000 meals laid out,
// with the memory its pages hold.
//
// The day lists run on the busiest days of perf/kvl-546k.mdb (about 6,000
// meals each); the month list on a copy of kvl/kvl.mdb with 32,000 meals
// logged in one month. Each works on a copy in a folder of its own and
// skips, saying why, when its file is absent.

#include <filesystem>

#include <benchmark/benchmark.h>

#include "bench/resident_memory.h"
#include "bench/window_bench.h"
#include "reports/engine/page_output.h"
#include "reports/period_lists.h"
#include "reports/school_name.h"
#include "reports/selectors.h"
#include "shell/clock.h"
#include "shell/window_registry.h"
#include "store/jet/database.h"

namespace {

namespace fs = std::filesystem;
using bench::ProgramFolder;
using bench::skipWithout;
using bench::waitFor;

const fs::path kFixtures(SOFRAVAN_FIXTURES_DIR);
const fs::path kLargeDatabase = kFixtures / "perf" / "kvl-546k.mdb";
const fs::path kSchoolDatabase = kFixtures / "kvl" / "kvl.mdb";

// Two days of about 6,000 meals each, taken in turn so that each pick is a
// change of the date.
const QDate kBusyDays[] = {QDate(2026, 11, 12), QDate(2025, 10, 21)};

// The resident memory of the process, in megabytes.
double residentMegabytes() {
    return bench::residentBytes() / (1024 * 1024);
}

// Picks the day in the day window and waits for the report to reach the
// stage; the clean-up of the previous report stays out of the figures.
template <class Stage>
void pickDays(benchmark::State& state, Stage reached) {
    if (skipWithout(state, kLargeDatabase))
        return;
    ProgramFolder folder(kLargeDatabase);
    reports::setSchoolNameWithoutMainWindow(QStringLiteral("Okul"));
    // The report reads the day from the window's default instance.
    auto* window = &shell::instance<reports::Form4>();
    window->resize(1024, 768);
    window->show();
    std::size_t turn = 0;
    for (auto _ : state) {
        window->takvim->setDate(kBusyDays[turn++ % 2]);
        engine::Report* report = window->arv->ReportSource();
        reached(*window, *report);
        state.PauseTiming();
        waitFor([report] { return report->done(); });
        state.counters["pages"] = static_cast<double>(report->pages().size());
        state.ResumeTiming();
    }
    delete window;
}

void BM_DayListFirstPageOnScreen(benchmark::State& state) {
    pickDays(state, [](reports::Form4& window, engine::Report& report) {
        waitFor([&report] { return !report.pages().empty(); });
        window.arv->repaint();
    });
}
BENCHMARK(BM_DayListFirstPageOnScreen)->Unit(benchmark::kMillisecond);

void BM_DayListAllPagesLaidOut(benchmark::State& state) {
    pickDays(state, [](reports::Form4&, engine::Report& report) {
        waitFor([&report] { return report.done(); });
    });
}
BENCHMARK(BM_DayListAllPagesLaidOut)->Unit(benchmark::kMillisecond);

void BM_DayListToPdf(benchmark::State& state) {
    const fs::path pdf = bench::freshTempFolder("sofravan-pdf") / "gunyemek.pdf";
    pickDays(state, [&pdf](reports::Form4&, engine::Report& report) {
        waitFor([&report] { return report.done(); });
        engine::savePdf(report.pages(), QString::fromStdString(pdf.string()),
                        QStringLiteral("gunyemek"));
    });
    fs::remove_all(pdf.parent_path());
}
BENCHMARK(BM_DayListToPdf)->Unit(benchmark::kMillisecond);

void BM_MonthOf32000MealsLaidOut(benchmark::State& state) {
    if (skipWithout(state, kSchoolDatabase))
        return;
    ProgramFolder folder(kSchoolDatabase);
    {
        jet::Database database(folder.database().string(), jet::PageFile::Mode::ReadWrite);
        const std::vector<jet::Value> meal = {jet::Value(),
                                              jet::Value::integer(14),
                                              jet::Value::integer(1),
                                              jet::Value::text(u"2026"),
                                              jet::Value(),
                                              jet::Value::text(u"12:31:05"),
                                              jet::Value::text(u"Öğle yemeği"),
                                              jet::Value::integer(1),
                                              jet::Value(),
                                              jet::Value::text(u"10FENA"),
                                              jet::Value::integer(1380),
                                              jet::Value::text(u"Özlem"),
                                              jet::Value::text(u"Ünal")};
        for (int statement = 0; statement < 8; ++statement)
            database.insertRows(u"YEMEK", std::vector<std::vector<jet::Value>>(4000, meal));
    }
    shell::setTodayForTests(QDate(2026, 1, 20));
    reports::setSchoolNameWithoutMainWindow(QStringLiteral("Okul"));
    auto* window = &shell::instance<reports::Form3>();
    window->show();
    // The memory before the first choice against that with the last
    // report held: each choice frees the report before it.
    const double before = residentMegabytes();
    for (auto _ : state) {
        window->Combo1->setCurrentIndex(0);
        emit window->Combo1->activated(0);
        engine::Report* report = window->arv->ReportSource();
        waitFor([report] { return report->done(); });
        state.counters["pages"] = static_cast<double>(report->pages().size());
    }
    state.counters["held_MB"] = residentMegabytes() - before;
    delete window;
    shell::setTodayForTests(QDate());
}
BENCHMARK(BM_MonthOf32000MealsLaidOut)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
