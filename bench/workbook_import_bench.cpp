// The workbook import through Form15 on a copy of the fixture school's file:
// a sheet of 400 rows loaded into the window's grid (Form13's press of
// Command1), and a month of 124 rows copied into MENULER (AKTARIM YAP, the
// way without a question). The workbooks are made by the sample workbook's
// script, a sheet of April day blocks as long as asked for.

#include <cstdlib>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/window_bench.h"
#include "menus/form15.h"
#include "shell/kit/message_box.h"
#include "shell/window_registry.h"
#include "store/connection.h"

namespace {

namespace fs = std::filesystem;
using bench::ProgramFolder;
using bench::skipWithout;

const fs::path kSchool = fs::path(SOFRAVAN_FIXTURES_DIR) / "kvl" / "kvl.mdb";

// A workbook of `days` day blocks, four rows each, beside the school's
// file; nothing, the benchmark skipped, when the script cannot run.
fs::path makeWorkbook(benchmark::State& state, const ProgramFolder& folder, int days) {
    const fs::path workbook = folder.database().parent_path() / "menu.xls";
    const std::string command = "perl " SOFRAVAN_SOURCE_DIR "/tools/make_sample_workbook.pl '" +
                                workbook.string() + "' " + std::to_string(days);
    if (std::system(command.c_str()) != 0) {
        state.SkipWithError("the sample workbook's script could not run");
        return {};
    }
    return workbook;
}

menus::Form15& loadSheet(const fs::path& workbook) {
    menus::Form15& window = shell::instance<menus::Form15>();
    window.Text3->setText(QString::fromStdString(workbook.string()));
    window.Text4->setText(QStringLiteral("Sayfa1"));
    window.Command1_Click();
    return window;
}

void BM_LoadSheetIntoGrid(benchmark::State& state) {
    if (skipWithout(state, kSchool))
        return;
    const ProgramFolder folder(kSchool);
    const fs::path workbook = makeWorkbook(state, folder, 100);
    if (workbook.empty())
        return;
    int rows = 0;
    for (auto _ : state) {
        menus::Form15& window = loadSheet(workbook);
        rows = window.DataGrid1->model().rowCount();
        state.PauseTiming();
        delete &window;
        state.ResumeTiming();
    }
    state.counters["rows"] = rows;
}
BENCHMARK(BM_LoadSheetIntoGrid)->Unit(benchmark::kMillisecond);

void BM_ImportMonth(benchmark::State& state) {
    if (skipWithout(state, kSchool))
        return;
    const ProgramFolder folder(kSchool);
    const fs::path workbook = makeWorkbook(state, folder, 31);
    if (workbook.empty())
        return;
    kit::setMessageBoxesUnattended(true);
    store::Connection connection;
    connection.Open("Data Source=" + folder.database().string() +
                    ";Jet OLEDB:Database Password=HtRvZpQsD2019");
    long copied = 0;
    for (auto _ : state) {
        state.PauseTiming();
        connection.Execute(u"delete * from MENULER where ay=4");
        menus::Form15& window = loadSheet(workbook);
        state.ResumeTiming();
        window.Command2_Click();
        state.PauseTiming();
        copied = window.Adodc2.Recordset().recordCount();
        delete &window;
        state.ResumeTiming();
    }
    kit::setMessageBoxesUnattended(false);
    state.counters["rows"] = static_cast<double>(copied);
}
BENCHMARK(BM_ImportMonth)->Unit(benchmark::kMillisecond);

}  // namespace
