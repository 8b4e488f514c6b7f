// The e-Okul transfer as the office waits for it: one meal button pressed on
// a portal page of 31 days, from the records of the fetched month to the
// 31 text areas written, against the stand-in portal of the tests on the
// loopback interface. On a copy of kvl/kvl.mdb, whose October has 31 days;
// skipped without the file.

#include <filesystem>

#include <QSignalSpy>

#include <benchmark/benchmark.h>

#include "bench/window_bench.h"
#include "portal/form12.h"
#include "shell/window_registry.h"
#include "tests/portal/portal_site.h"

namespace {

namespace fs = std::filesystem;

const fs::path kSchoolDatabase = fs::path(SOFRAVAN_FIXTURES_DIR) / "kvl" / "kvl.mdb";

void loadAndWait(portal::Form12& window, const QString& address) {
    QSignalSpy loaded(window.wb, &QWebEngineView::loadFinished);
    window.wb->load(QUrl(address));
    loaded.wait(15000);
}

void BM_OneMealIntoA31DayPage(benchmark::State& state) {
    if (bench::skipWithout(state, kSchoolDatabase))
        return;
    const bench::ProgramFolder folder(kSchoolDatabase);
    const portal::testing::PortalSite site;
    qputenv("SOFRAVAN_EOKUL_SITE", site.address().toUtf8());
    auto& window = shell::instance<portal::Form12>();
    window.show();
    loadAndWait(window, site.address() + QStringLiteral("/menu.aspx?ay=10"));
    window.Command2->click();
    for (auto _ : state)
        window.cmdsabah->click();
    state.counters["areas"] = 31;
    delete &window;
}
BENCHMARK(BM_OneMealIntoA31DayPage)->Unit(benchmark::kMillisecond);

}  // namespace
