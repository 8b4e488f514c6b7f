// The main window's start as the clerk waits for it, with the update check
// at its end: off line (no check), against an update page on the loopback
// interface, against a port that refuses the connection, and against a
// server that takes it and never answers (the check's time limit). The
// difference to the start off line is what the check adds. On a copy of
// kvl/kvl.mdb; skipped without the file.
//
// The first start with a check pays for the browser engine's own start;
// BM_FirstStartWithUpdatePage runs once, before any other, to show it.

#include <filesystem>

#include <QApplication>

#include <benchmark/benchmark.h>

#include "bench/window_bench.h"
#include "shell/form1.h"
#include "shell/platform.h"
#include "shell/program_state.h"
#include "shell/window_registry.h"
#include "tests/shell/update_site.h"

namespace {

namespace fs = std::filesystem;
using shell::testing::UpdateSite;

const fs::path kSchoolDatabase = fs::path(SOFRAVAN_FIXTURES_DIR) / "kvl" / "kvl.mdb";

// One start of the main window: made, loaded (the check included), shown;
// then it goes again, outside the timing.
void startMainWindow(benchmark::State& state) {
    shell::Form1& form = shell::instance<shell::Form1>();
    form.show();
    QCoreApplication::processEvents();
    state.PauseTiming();
    delete &form;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    state.ResumeTiming();
}

// The starts with the update page at the address, on line or off.
void startWith(benchmark::State& state, const QString& page, bool online) {
    if (bench::skipWithout(state, kSchoolDatabase))
        return;
    const bench::ProgramFolder folder(kSchoolDatabase);
    qputenv("SOFRAVAN_UPDATE_PAGE", page.toUtf8());
    shell::setInternetForTests(online);
    for (auto _ : state)
        startMainWindow(state);
    state.counters["announced"] = shell::yenisurumvar ? 1 : 0;
    shell::setInternetForTests(std::nullopt);
    qunsetenv("SOFRAVAN_UPDATE_PAGE");
}

void BM_FirstStartWithUpdatePage(benchmark::State& state) {
    const UpdateSite site(shell::testing::versionPage(QStringLiteral("1.0.15")));
    startWith(state, site.page(), true);
}
BENCHMARK(BM_FirstStartWithUpdatePage)->Iterations(1)->Unit(benchmark::kMillisecond);

void BM_StartOffLine(benchmark::State& state) {
    const UpdateSite site(shell::testing::versionPage(QStringLiteral("1.0.15")));
    startWith(state, site.page(), false);
    state.counters["requests"] = site.requests();
}
BENCHMARK(BM_StartOffLine)->Unit(benchmark::kMillisecond);

void BM_StartWithUpdatePage(benchmark::State& state) {
    const UpdateSite site(shell::testing::versionPage(QStringLiteral("1.0.15")));
    startWith(state, site.page(), true);
    state.counters["requests"] = site.requests();
}
BENCHMARK(BM_StartWithUpdatePage)->Unit(benchmark::kMillisecond);

void BM_StartUpdatePortRefuses(benchmark::State& state) {
    startWith(state, shell::testing::refusingPage(), true);
}
BENCHMARK(BM_StartUpdatePortRefuses)->Unit(benchmark::kMillisecond);

void BM_StartUpdateServerSilent(benchmark::State& state) {
    const UpdateSite site(QString(), false);
    startWith(state, site.page(), true);
    state.counters["requests"] = site.requests();
}
BENCHMARK(BM_StartUpdateServerSilent)->Iterations(3)->Unit(benchmark::kMillisecond);

}  // namespace
