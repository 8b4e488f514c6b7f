// The roster editors as a clerk feels them: opening each window until it
// stands painted with its grid, list and count, and a keystroke in a name
// box until the grid shows the narrowed rows (with the photograph of the
// first of them).
//
// They run on a made-up school of 2,000 day students and 400 boarders,
// with their photographs, that make-demo builds into a temporary folder at
// start; each benchmark works on a copy of its file in a folder of its own.

#include <filesystem>

#include <QApplication>

#include <benchmark/benchmark.h>

#include "bench/window_bench.h"
#include "rosters/form11.h"
#include "rosters/frmpansiyon.h"
#include "shell/window_registry.h"

namespace {

namespace fs = std::filesystem;
using bench::ProgramFolder;

const bench::MadeUpSchool& demoSchool() {
    static const bench::MadeUpSchool school("sofravan-rosters",
                                            "--students 2000 --boarders 400 --meal-days 5");
    return school;
}

template <class Window>
Window& openWindow() {
    shell::showWindow<Window>();
    QCoreApplication::processEvents();
    return shell::instance<Window>();
}

template <class Window>
void closeWindow() {
    delete &shell::instance<Window>();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

template <class Window>
void BM_OpenEditor(benchmark::State& state) {
    const bench::MadeUpSchool& school = demoSchool();
    if (school.skip(state))
        return;
    ProgramFolder folder(school.database());
    long rows = 0;
    for (auto _ : state) {
        rows = openWindow<Window>().Adodc1.Recordset().recordCount();
        state.PauseTiming();
        closeWindow<Window>();
        state.ResumeTiming();
    }
    state.counters["rows"] = static_cast<double>(rows);
}
BENCHMARK(BM_OpenEditor<rosters::Form11>)
    ->Name("BM_OpenDayStudentEditor")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OpenEditor<rosters::frmpansiyon>)
    ->Name("BM_OpenBoarderEditor")
    ->Unit(benchmark::kMillisecond);

// One key more or less in the first-name box, in turn: "A" and "Ay".
template <class Window>
void BM_NameKeystroke(benchmark::State& state) {
    const bench::MadeUpSchool& school = demoSchool();
    if (school.skip(state))
        return;
    ProgramFolder folder(school.database());
    Window& window = openWindow<Window>();
    bool longer = false;
    long narrowed = 0;
    for (auto _ : state) {
        window.Text10->setText(longer ? QStringLiteral("Ay") : QStringLiteral("A"));
        QCoreApplication::processEvents();
        if (longer)
            narrowed = window.Adodc1.Recordset().recordCount();
        longer = !longer;
    }
    state.counters["rows_for_Ay"] = static_cast<double>(narrowed);
    closeWindow<Window>();
}
BENCHMARK(BM_NameKeystroke<rosters::Form11>)
    ->Name("BM_DayStudentNameKeystroke")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_NameKeystroke<rosters::frmpansiyon>)
    ->Name("BM_BoarderNameKeystroke")
    ->Unit(benchmark::kMillisecond);

}  // namespace
