// The data control's static record set over the whole meal log: the query
// run, the rows taken over by the record set, and the memory they hold.

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/resident_memory.h"
#include "store/connection.h"
#include "store/recordset.h"

namespace {

const std::string kLargeDatabase = std::string(SOFRAVAN_FIXTURES_DIR) + "/perf/kvl-546k.mdb";

// The system's connection string, opened for reading alone so that the
// benchmark never writes to the shared file.
const std::string kConnectionString =
    "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + kLargeDatabase +
    ";Persist Security Info=True;Jet OLEDB:database Password=HtRvZpQsD2019;Mode=Read";

void BM_OpenStaticYemek(benchmark::State& state) {
    if (!std::filesystem::exists(kLargeDatabase)) {
        state.SkipWithError(("missing " + kLargeDatabase).c_str());
        return;
    }
    store::Connection connection;
    connection.Open(kConnectionString);
    long rows = 0;
    double held = 0;
    for (auto _ : state) {
        const double before = bench::residentBytes();
        store::Recordset recordset;
        recordset.open(u"select* from yemek", connection, store::CursorType::Static);
        rows = recordset.recordCount();
        state.PauseTiming();
        held = std::max(held, bench::residentBytes() - before);
        recordset.close();
        // Freed memory goes back to the system, so that every run pays for
        // fresh pages as the program's one open does.
        malloc_trim(0);
        state.ResumeTiming();
    }
    state.counters["rows"] = static_cast<double>(rows);
    state.counters["held_MB"] = held / 1e6;
}
BENCHMARK(BM_OpenStaticYemek)->Unit(benchmark::kMillisecond);

}  // namespace
