// Inserts with indexes kept in step: the meal log (primary key and date
// index) filled in statements of 1,000 rows, single durable inserts, each
// its own journaled, locked statement, as the gate and the office make them,
// and a roster refilled into the pages its deletion freed.

#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "store/jet/catalog.h"
#include "store/jet/database.h"
#include "store/jet/table_writer.h"

namespace {

namespace fs = std::filesystem;

const fs::path kFixture = fs::path(SOFRAVAN_FIXTURES_DIR) / "kvl" / "kvl.mdb";

// A fresh copy of the fixture in a temporary folder.
fs::path freshCopy() {
    const fs::path dir = fs::temp_directory_path() / "sofravan-index-bench";
    fs::create_directories(dir);
    const fs::path path = dir / "kvl.mdb";
    fs::copy_file(kFixture, path, fs::copy_options::overwrite_existing);
    return path;
}

// The table's first row, its AutoNumber left for the engine to give, its
// date moved by `day` days.
std::vector<jet::Value> templateRow(const jet::Database& database,
                                    const jet::TableDefinition& table) {
    std::vector<jet::Value> values;
    jet::TableCursor cursor = database.scan(table);
    cursor.next();
    cursor.values(values);
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        if (table.columns[c].isAutoNumber())
            values[c] = jet::Value();
    }
    return values;
}

void setDates(const jet::TableDefinition& table, std::vector<jet::Value>& values, int day) {
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        if (table.columns[c].type == jet::ColumnType::DateTime) {
            values[c] = jet::Value::date(jet::Date{45931.0 + day % 400 + 0.5});
        }
    }
}

void BM_MealLog100kInsertsInStatementsOf1000(benchmark::State& state) {
    if (!fs::exists(kFixture)) {
        state.SkipWithError(("missing " + kFixture.string()).c_str());
        return;
    }
    constexpr int kRows = 100000;
    constexpr int kPerStatement = 1000;
    for (auto _ : state) {
        state.PauseTiming();
        const fs::path path = freshCopy();
        jet::Database database(path.string(), jet::PageFile::Mode::ReadWrite);
        std::vector<jet::Value> row = templateRow(database, database.table(u"YEMEK"));
        state.ResumeTiming();
        for (int done = 0; done < kRows; done += kPerStatement) {
            database.write([&](jet::WriteStatement& statement) {
                const jet::TableDefinition table = jet::findTable(statement, u"YEMEK");
                jet::TableWriter writer(statement, table);
                for (int i = 0; i < kPerStatement; ++i) {
                    setDates(table, row, (done + i) * 7);
                    writer.insert(row);
                }
            });
        }
    }
    state.counters["rows/s"] = benchmark::Counter(static_cast<double>(kRows) * state.iterations(),
                                                  benchmark::Counter::kIsRate);
}
BENCHMARK(BM_MealLog100kInsertsInStatementsOf1000)->Unit(benchmark::kMillisecond)->Iterations(3);

// One row per statement: the statement's lock, journal and two flushes.
void oneRowInserts(benchmark::State& state, const std::u16string& tableName) {
    if (!fs::exists(kFixture)) {
        state.SkipWithError(("missing " + kFixture.string()).c_str());
        return;
    }
    const fs::path path = freshCopy();
    jet::Database database(path.string(), jet::PageFile::Mode::ReadWrite);
    const jet::TableDefinition table = database.table(tableName);
    std::vector<jet::Value> row = templateRow(database, table);
    int day = 0;
    for (auto _ : state) {
        setDates(table, row, day++);
        database.insertRows(tableName, {row});
    }
}

void BM_OneDurableInsertIzinler(benchmark::State& state) {
    oneRowInserts(state, u"IZINLER");
}
BENCHMARK(BM_OneDurableInsertIzinler)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly(true);

void BM_OneDurableInsertMealLog(benchmark::State& state) {
    oneRowInserts(state, u"YEMEK");
}
BENCHMARK(BM_OneDurableInsertMealLog)
    ->Unit(benchmark::kMicrosecond)
    ->Repetitions(7)
    ->ReportAggregatesOnly(true);

// The day-student roster replaced whole, as the roll-call import does: its
// rows deleted in one statement, written again in another. The second takes
// the data and index pages the first freed.
void BM_RosterEmptiedAndRefilled(benchmark::State& state) {
    if (!fs::exists(kFixture)) {
        state.SkipWithError(("missing " + kFixture.string()).c_str());
        return;
    }
    const fs::path path = freshCopy();
    jet::Database database(path.string(), jet::PageFile::Mode::ReadWrite);
    const jet::TableDefinition table = database.table(u"ORNEK");
    std::vector<std::vector<jet::Value>> students;
    {
        jet::TableCursor cursor = database.scan(table);
        std::vector<jet::Value> values;
        while (cursor.next()) {
            cursor.values(values);
            students.push_back(values);
        }
    }
    for (auto _ : state) {
        std::vector<jet::RowId> rows;
        jet::TableCursor cursor = database.scan(table);
        while (cursor.next())
            rows.push_back(cursor.rowId());
        database.deleteRows(u"ORNEK", rows);
        database.insertRows(u"ORNEK", students);
    }
    state.counters["rows/s"] = benchmark::Counter(
        static_cast<double>(students.size()) * state.iterations(), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_RosterEmptiedAndRefilled)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

}  // namespace
