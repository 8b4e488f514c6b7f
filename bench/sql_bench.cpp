// The system's SQL on the large benchmark database: the tally's grouped
// Count for one day and meal, and the day list's date equality.

#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "store/jet/database.h"
#include "store/sql/executor.h"

namespace {

const std::string kLargeDatabase = std::string(SOFRAVAN_FIXTURES_DIR) + "/perf/kvl-546k.mdb";

void run(benchmark::State& state, const std::u16string& statement) {
    if (!std::filesystem::exists(kLargeDatabase)) {
        state.SkipWithError(("missing " + kLargeDatabase).c_str());
        return;
    }
    jet::Database database(kLargeDatabase);
    std::size_t rows = 0;
    for (auto _ : state) {
        const sql::ExecuteResult result = sql::execute(database, statement);
        rows = result.query.rows.size();
        benchmark::DoNotOptimize(result.query.rows.data());
    }
    state.counters["rows"] = static_cast<double>(rows);
}

void BM_TallyOneDayAndMeal(benchmark::State& state) {
    run(state,
        u"SELECT Count(yemek.gunduzlu) AS Saygunduzlu, yemek.gun, yemek.ay, "
        u"yemek.gunduzlu,yemek.ogun From yemek GROUP BY yemek.gun, yemek.ay, "
        u"yemek.gunduzlu,yemek.ogun HAVING yemek.gun=5 AND yemek.ay=11 and "
        u"yemek.ogun='Öğle yemeği' AND yemek.gunduzlu=1");
}
BENCHMARK(BM_TallyOneDayAndMeal)->Unit(benchmark::kMillisecond);

void BM_DayList(benchmark::State& state) {
    run(state, u"select* from yemek where YEMEKTARIH=#11/5/2025# order by SINIF asc");
}
BENCHMARK(BM_DayList)->Unit(benchmark::kMillisecond);

}  // namespace
