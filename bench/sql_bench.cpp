// The system's SQL on the large benchmark database: the tally's grouped
// Count for one day and meal, and the day list's date equality.

#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "store/jet/database.h"
#include "store/sql/executor.h"

namespace {

const std::string kLargeDatabase = std::string(SOFRAVAN_FIXTURES_DIR) + "/perf/kvl-546k.mdb";

// `cold`: the grouped tables kept from the run before are forgotten first.
void run(benchmark::State& state, const std::u16string& statement, bool cold = false) {
    if (!std::filesystem::exists(kLargeDatabase)) {
        state.SkipWithError(("missing " + kLargeDatabase).c_str());
        return;
    }
    jet::Database database(kLargeDatabase);
    std::size_t rows = 0;
    for (auto _ : state) {
        if (cold)
            sql::clearResultCache();
        const sql::ExecuteResult result = sql::execute(database, statement);
        rows = result.query.rows.size();
        benchmark::DoNotOptimize(result.query.rows.data());
    }
    state.counters["rows"] = static_cast<double>(rows);
}

const std::u16string kTallyOneDayAndMeal =
    u"SELECT Count(yemek.gunduzlu) AS Saygunduzlu, yemek.gun, yemek.ay, "
    u"yemek.gunduzlu,yemek.ogun From yemek GROUP BY yemek.gun, yemek.ay, "
    u"yemek.gunduzlu,yemek.ogun HAVING yemek.gun=5 AND yemek.ay=11 and "
    u"yemek.ogun='Öğle yemeği' AND yemek.gunduzlu=1";

void BM_TallyOneDayAndMeal(benchmark::State& state) {
    run(state, kTallyOneDayAndMeal);
}
BENCHMARK(BM_TallyOneDayAndMeal)->Unit(benchmark::kMillisecond);

// The tally's first statement of a month: the whole log grouped once.
void BM_TallyOneDayAndMealCold(benchmark::State& state) {
    run(state, kTallyOneDayAndMeal, true);
}
BENCHMARK(BM_TallyOneDayAndMealCold)->Unit(benchmark::kMillisecond);

void BM_DayList(benchmark::State& state) {
    run(state, u"select* from yemek where YEMEKTARIH=#11/5/2025# order by SINIF asc");
}
BENCHMARK(BM_DayList)->Unit(benchmark::kMillisecond);

}  // namespace
