// Compact and Repair of the large benchmark database (546,000 meal log
// rows): the time of one compaction and the file's size before and after.
// The database is copied to a temporary folder first, as compaction makes
// its lock file beside it.

#include <unistd.h>

#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "store/jet/compact.h"

namespace {

namespace fs = std::filesystem;

const std::string kLargeDatabase = std::string(SOFRAVAN_FIXTURES_DIR) + "/perf/kvl-546k.mdb";

void BM_CompactLargeDatabase(benchmark::State& state) {
    if (!fs::exists(kLargeDatabase)) {
        state.SkipWithError(("missing " + kLargeDatabase).c_str());
        return;
    }
    const fs::path dir =
        fs::temp_directory_path() / ("compact-bench-" + std::to_string(::getpid()));
    fs::create_directories(dir);
    const fs::path in = dir / "kvl.mdb";
    const fs::path out = dir / "compacted.mdb";
    fs::copy_file(kLargeDatabase, in);
    for (auto _ : state) {
        state.PauseTiming();
        fs::remove(out);
        state.ResumeTiming();
        jet::compactDatabase(in.string(), out.string(), u"HtRvZpQsD2019");
    }
    state.counters["MB before"] = static_cast<double>(fs::file_size(in)) / 1e6;
    state.counters["MB after"] = static_cast<double>(fs::file_size(out)) / 1e6;
    fs::remove_all(dir);
}
BENCHMARK(BM_CompactLargeDatabase)->Unit(benchmark::kSecond)->Iterations(3);

}  // namespace
