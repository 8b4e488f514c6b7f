// "Tümünü Sil" as the permit list runs it: a thousand permits deleted one by
// one through the list's record set, made durable together in one write
// scope, against the same deletes each made durable on its own.

#include <filesystem>
#include <optional>
#include <string>

#include <benchmark/benchmark.h>

#include "store/connection.h"
#include "store/recordset.h"
#include "store/write_scope.h"

namespace {

namespace fs = std::filesystem;

const fs::path kFixture = fs::path(SOFRAVAN_FIXTURES_DIR) / "kvl" / "kvl.mdb";
constexpr long kDeletes = 1000;

void deletePermits(benchmark::State& state, bool inOneScope) {
    if (!fs::exists(kFixture)) {
        state.SkipWithError(("missing " + kFixture.string()).c_str());
        return;
    }
    const fs::path dir = fs::temp_directory_path() / "sofravan-scope-bench";
    fs::create_directories(dir);
    const fs::path path = dir / "kvl.mdb";
    for (auto _ : state) {
        state.PauseTiming();
        fs::copy_file(kFixture, path, fs::copy_options::overwrite_existing);
        store::Connection connection;
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + path.string() +
                        ";Jet OLEDB:Database Password=HtRvZpQsD2019");
        store::Recordset permits;
        permits.open(u"select* from IZINLER", connection);
        state.ResumeTiming();
        std::optional<store::WriteScope> scope;
        if (inOneScope)
            scope.emplace(permits);
        for (long i = 0; i < kDeletes; ++i) {
            permits.remove();
            permits.moveNext();
        }
        if (scope)
            scope->commit();
    }
    state.counters["deletes"] = kDeletes;
}

void BM_ThousandPermitDeletesInOneScope(benchmark::State& state) {
    deletePermits(state, true);
}
BENCHMARK(BM_ThousandPermitDeletesInOneScope)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_ThousandPermitDeletesEachDurable(benchmark::State& state) {
    deletePermits(state, false);
}
BENCHMARK(BM_ThousandPermitDeletesEachDurable)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
