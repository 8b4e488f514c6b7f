// The monthly tally on the large database (perf/kvl-546k.mdb, 546,000 meal
// log rows): what the counting costs read the two ways it can be read, the
// whole log grouped by the SQL executor (the statement the tally's 93
// queries share, without their HAVING) or the four columns read with the
// table cursor and counted as they come; and Form7's choice of a month, from
// the click on the list entry until the report's first page is on the
// screen. Each works on a copy of the file in a folder of its own, never on
// the fixture, and skips without it.

#include <filesystem>

#include <benchmark/benchmark.h>

#include "bench/window_bench.h"
#include "reports/form7.h"
#include "reports/school_name.h"
#include "reports/tally.h"
#include "shell/window_registry.h"
#include "store/jet/database.h"
#include "store/sql/executor.h"

namespace {

namespace fs = std::filesystem;
using bench::ProgramFolder;
using bench::skipWithout;
using bench::waitFor;

const fs::path kLargeDatabase = fs::path(SOFRAVAN_FIXTURES_DIR) / "perf" / "kvl-546k.mdb";

const std::u16string kWholeLogGrouped =
    u"SELECT Count(yemek.gunduzlu) AS Saygunduzlu, yemek.gun, yemek.ay, "
    u"yemek.gunduzlu,yemek.ogun From yemek GROUP BY yemek.gun, yemek.ay, "
    u"yemek.gunduzlu,yemek.ogun";

// The executor's grouping of the whole log, its kept groups forgotten
// before each run: the price of the first of the 93 queries.
void BM_GroupedQueryWholeLog(benchmark::State& state) {
    if (skipWithout(state, kLargeDatabase))
        return;
    const ProgramFolder folder(kLargeDatabase);
    jet::Database database(folder.database().string());
    std::size_t groups = 0;
    for (auto _ : state) {
        sql::clearResultCache();
        groups = sql::execute(database, kWholeLogGrouped).query.rows.size();
    }
    state.counters["groups"] = static_cast<double>(groups);
}
BENCHMARK(BM_GroupedQueryWholeLog)->Unit(benchmark::kMillisecond);

// The tally's own pass: the table cursor, the numbers of every row and the
// meal's text of the month's day students only.
void BM_CountMealsByCursor(benchmark::State& state) {
    if (skipWithout(state, kLargeDatabase))
        return;
    const ProgramFolder folder(kLargeDatabase);
    jet::Database database(folder.database().string());
    long counted = 0;
    for (auto _ : state) {
        const reports::TallyCounts counts = reports::countMeals(database, 11);
        counted = 0;
        for (const auto& day : counts) {
            for (const std::int32_t meals : day)
                counted += meals;
        }
    }
    state.counters["counted"] = static_cast<double>(counted);
}
BENCHMARK(BM_CountMealsByCursor)->Unit(benchmark::kMillisecond);

// Form7's choice as the clerk waits for it: the click on a month, the
// tally written into TMP, the report's first page painted in the viewer.
// November and October in turn, so that each choice changes TMP.
void BM_ChoiceToReportOnScreen(benchmark::State& state) {
    if (skipWithout(state, kLargeDatabase))
        return;
    const ProgramFolder folder(kLargeDatabase);
    reports::setSchoolNameWithoutMainWindow(QStringLiteral("Okul"));
    // The default instance: the report reads the window's controls through it.
    reports::Form7* window = &shell::instance<reports::Form7>();
    window->resize(1024, 768);
    window->show();
    const int months[] = {window->Combo1->findText(QStringLiteral("KASIM")),
                          window->Combo1->findText(QStringLiteral("EKİM"))};
    std::size_t turn = 0;
    for (auto _ : state) {
        const int month = months[turn++ % 2];
        window->Combo1->setCurrentIndex(month);
        emit window->Combo1->activated(month);
        engine::Report* report = window->arv->ReportSource();
        waitFor([report] { return !report->pages().empty(); });
        window->arv->repaint();
        state.PauseTiming();
        waitFor([report] { return report->done(); });
        state.ResumeTiming();
    }
    delete window;
}
BENCHMARK(BM_ChoiceToReportOnScreen)->Unit(benchmark::kMillisecond);

}  // namespace
