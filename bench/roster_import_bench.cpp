// The roster import through frmBilgial: 2,000 day students and 400 boarders
// of a roll-call file made by make-demo replace the rosters of a copy of the
// fixture school's file (480 and 60), the copy of that file written first
// and the copies thinned to five, as "Bilgileri al" answered Yes does it.

#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/window_bench.h"
#include "rosters/frmbilgial.h"
#include "shell/clock.h"
#include "shell/kit/message_box.h"
#include "shell/program_state.h"
#include "shell/window_registry.h"
#include "store/connection.h"
#include "store/recordset.h"

namespace {

namespace fs = std::filesystem;
using bench::ProgramFolder;
using bench::skipWithout;

const fs::path kSchool = fs::path(SOFRAVAN_FIXTURES_DIR) / "kvl" / "kvl.mdb";

constexpr int kStudents = 2000;
constexpr int kBoarders = 400;

// The import leaves its connections and record sets open; each run starts
// without them, as the first import of a run does.
void forgetLastImport() {
    shell::kayit.reset();
    shell::kayit2.reset();
    shell::baglanti.reset();
    shell::baglanti2.reset();
}

long rowsOf(const fs::path& database, const char* password, std::u16string_view query) {
    store::Connection connection;
    connection.Open("Data Source=" + database.string() +
                    ";Jet OLEDB:Database Password=" + password);
    store::Recordset rows;
    rows.open(query, connection);
    return rows.recordCount();
}

void BM_ImportRosters(benchmark::State& state) {
    if (skipWithout(state, kSchool))
        return;
    const bench::MadeUpSchool rollCall(
        "sofravan-yurtsayim", "--roll-call --students " + std::to_string(kStudents) +
                                  " --boarders " + std::to_string(kBoarders) + " --meal-days 1");
    if (rollCall.skip(state))
        return;
    const ProgramFolder folder(kSchool);
    kit::setMessageBoxesUnattended(true);
    rosters::frmBilgial& window = shell::instance<rosters::frmBilgial>();
    window.Text1->setText(QString::fromStdString(rollCall.database().string()));
    QDateTime moment(QDate(2026, 9, 14), QTime(8, 0, 0));
    for (auto _ : state) {
        state.PauseTiming();
        forgetLastImport();
        moment = moment.addSecs(1);  // each copy a name of its own
        shell::setNowForTests(moment);
        state.ResumeTiming();
        window.Command2_Click();
    }
    forgetLastImport();
    delete &window;
    kit::setMessageBoxesUnattended(false);
    shell::setNowForTests(QDateTime());
    const long students = rowsOf(folder.database(), "HtRvZpQsD2019", u"select* from ORNEK");
    const long boarders = rowsOf(folder.database(), "HtRvZpQsD2019", u"select* from Pansiyon");
    if (students != kStudents || boarders != kBoarders)
        state.SkipWithError("the import did not copy every row");
    state.counters["students"] = static_cast<double>(students);
    state.counters["boarders"] = static_cast<double>(boarders);
}
BENCHMARK(BM_ImportRosters)->Unit(benchmark::kMillisecond);

}  // namespace
