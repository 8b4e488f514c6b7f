// The photo workshop's save by number as the office waits for it: the click
// on "Sırala ve Kaydet" until every path is written, on a made-up school of
// 2,000 day students (make-demo, built into a temporary folder at start)
// and a folder of 2,000 pictures, one a student, named by school number and
// name. Every student is paired with every file, so this is the window's
// slowest run over a whole school.

#include <filesystem>
#include <string>
#include <vector>

#include <QImage>

#include <benchmark/benchmark.h>

#include "bench/window_bench.h"
#include "rosters/form10.h"
#include "shell/window_registry.h"
#include "store/jet/database.h"

namespace {

namespace fs = std::filesystem;
using bench::ProgramFolder;

constexpr int kStudents = 2000;

const bench::MadeUpSchool& demoSchool() {
    static const bench::MadeUpSchool school(
        "sofravan-photos", "--students " + std::to_string(kStudents) + " --meal-days 5");
    return school;
}

// One picture for each day student, "<Numara> <Adi>.jpg", copies of one
// real JPEG.
void takePictures(const fs::path& database, const fs::path& folder) {
    const jet::Database school(database.string());
    const jet::TableDefinition table = school.table(u"ORNEK");
    const std::size_t numara = table.columnPosition(u"Numara");
    const std::size_t adi = table.columnPosition(u"Adi");
    fs::create_directories(folder);
    const fs::path sample = folder.parent_path() / "sample.jpg";
    QImage picture(120, 150, QImage::Format_RGB32);
    picture.fill(QColor(180, 200, 230));
    picture.save(QString::fromStdString(sample.string()), "JPG");
    std::vector<jet::Value> row;
    jet::TableCursor cursor = school.scan(table);
    while (cursor.next()) {
        cursor.values(row);
        const std::string name = std::to_string(row[numara].asInteger()) + " " +
                                 QString::fromStdU16String(row[adi].asText()).toStdString() +
                                 ".jpg";
        fs::copy_file(sample, folder / name);
    }
}

void BM_SaveByNumberWholeSchool(benchmark::State& state) {
    const bench::MadeUpSchool& school = demoSchool();
    if (school.skip(state))
        return;
    const ProgramFolder folder(school.database());
    // A folder of its own beside make-demo's photographs.
    const fs::path pictures = school.folder() / "numarali";
    if (!fs::exists(pictures))
        takePictures(folder.database(), pictures);
    auto* window = &shell::instance<rosters::Form10>();
    window->show();
    window->Dir1->setPath(QString::fromStdString(pictures.string()));
    for (auto _ : state) {
        window->Command2->click();
        state.PauseTiming();
        state.counters["students"] = window->Adodc1.Recordset().recordCount();
        state.counters["files"] = window->File1->ListCount();
        state.counters["matched"] = window->List1->count();
        window->List1->clear();
        state.ResumeTiming();
    }
    delete window;
}
BENCHMARK(BM_SaveByNumberWholeSchool)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
