// The raw scan of the meal log: rows per second through the engine's cursor,
// values decoded, on the large benchmark database.

#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "store/jet/database.h"

namespace {

const std::string kLargeDatabase = std::string(SOFRAVAN_FIXTURES_DIR) + "/perf/kvl-546k.mdb";

void BM_ScanMealLog(benchmark::State& state) {
    if (!std::filesystem::exists(kLargeDatabase)) {
        state.SkipWithError(("missing " + kLargeDatabase).c_str());
        return;
    }
    const jet::Database database(kLargeDatabase);
    const jet::TableDefinition table = database.table(u"YEMEK");
    std::vector<jet::Value> values;
    std::int64_t rows = 0;
    for (auto _ : state) {
        jet::TableCursor cursor = database.scan(table);
        while (cursor.next()) {
            cursor.values(values);
            ++rows;
        }
        benchmark::DoNotOptimize(values.data());
    }
    state.counters["rows/s"] =
        benchmark::Counter(static_cast<double>(rows), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_ScanMealLog)->Unit(benchmark::kMillisecond);

}  // namespace
