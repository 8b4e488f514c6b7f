// A keystroke in a search box: a new filter text parsed, checked against the
// roster's columns and run over every row of ORNEK held by the record set.

#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "store/jet/database.h"
#include "store/sql/filter.h"

namespace {

const std::string kLargeDatabase = std::string(SOFRAVAN_FIXTURES_DIR) + "/perf/kvl-546k.mdb";

void run(benchmark::State& state, const std::u16string& text) {
    if (!std::filesystem::exists(kLargeDatabase)) {
        state.SkipWithError(("missing " + kLargeDatabase).c_str());
        return;
    }
    jet::Database database(kLargeDatabase);
    const jet::TableDefinition table = database.table(u"ORNEK");
    std::vector<std::u16string> names;
    std::vector<jet::ColumnType> types;
    for (const jet::Column& column : table.columns) {
        names.push_back(column.name);
        types.push_back(column.type);
    }
    std::vector<std::vector<jet::Value>> rows;
    jet::TableCursor cursor = database.scan(table);
    while (cursor.next()) {
        rows.emplace_back();
        cursor.values(rows.back());
    }
    std::size_t kept = 0;
    for (auto _ : state) {
        const sql::Filter filter = sql::parseFilter(text);
        const sql::Filter::Binding binding = filter.bind(names, types);
        kept = 0;
        for (const auto& row : rows) {
            kept += filter.matches(binding, row) ? 1 : 0;
        }
        benchmark::DoNotOptimize(kept);
    }
    state.counters["rows"] = static_cast<double>(rows.size());
    state.counters["kept"] = static_cast<double>(kept);
}

void BM_FilterSurnamePrefix(benchmark::State& state) {
    run(state, u" Soyadi like 'ka%'");
}
BENCHMARK(BM_FilterSurnamePrefix)->Unit(benchmark::kMicrosecond);

void BM_FilterSchoolNumber(benchmark::State& state) {
    run(state, u" Numara like 116");
}
BENCHMARK(BM_FilterSchoolNumber)->Unit(benchmark::kMicrosecond);

}  // namespace
