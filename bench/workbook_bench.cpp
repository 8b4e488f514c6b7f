// The menu import's read of a workbook: the connection opened on the file
// (the whole workbook parsed) and the sheet taken into a record set, for the
// largest menu fixture, two months of 244 rows. Goal: well under 50 ms.

#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "store/connection.h"
#include "store/recordset.h"

namespace {

const std::string kWorkbook = std::string(SOFRAVAN_FIXTURES_DIR) + "/xls/two-months.xls";

void BM_OpenWorkbookSheet(benchmark::State& state) {
    if (!std::filesystem::exists(kWorkbook)) {
        state.SkipWithError(("missing " + kWorkbook).c_str());
        return;
    }
    long rows = 0;
    for (auto _ : state) {
        store::Connection connection;
        connection.Open(
            "Provider=MSDASQL.1;Persist Security Info=False;Extended Properties=DBQ=" + kWorkbook +
            ";DefaultDir=;Driver={Microsoft Excel Driver (*.xls)};DriverId=790;"
            "FIL=excel 8.0;MaxScanRows=8;ReadOnly=1;");
        store::Recordset records;
        records.open(u"select* from `Sayfa1$`", connection);
        rows = records.recordCount();
        benchmark::DoNotOptimize(rows);
    }
    state.counters["rows"] = static_cast<double>(rows);
    state.counters["us_per_row"] =
        benchmark::Counter(static_cast<double>(rows) * static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_OpenWorkbookSheet)->Unit(benchmark::kMillisecond);

}  // namespace
