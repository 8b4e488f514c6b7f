// The photo workshop's save by number as the office waits for it: the click
// on "Sırala ve Kaydet" until every path is written, on a made-up school of
// 2,000 day students (make-demo, built into a temporary folder at start)
// and a folder of 2,000 pictures, one a student, named by school number and
// name. Every student is paired with every file, so this is the window's
// slowest run over a whole school.

#include <cstdlib>
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
using bench::freshTempFolder;
using bench::ProgramFolder;

constexpr int kStudents = 2000;

// The made-up school's file, built once; empty with the reason in `why`
// when make-demo failed.
struct DemoSchool {
    fs::path folder;
    std::string why;
    ~DemoSchool() {
        if (!folder.empty())
            fs::remove_all(folder);
    }
};

const DemoSchool& demoSchool() {
    static DemoSchool school = [] {
        DemoSchool made;
        made.folder = freshTempFolder("sofravan-photos");
        const std::string command = std::string("'") + MAKE_DEMO_EXECUTABLE + "' '" +
                                    (made.folder / "okul").string() + "' --students " +
                                    std::to_string(kStudents) + " --meal-days 5 > /dev/null";
        if (std::system(command.c_str()) != 0)
            made.why = "make-demo failed: " + command;
        return made;
    }();
    return school;
}

// One picture for each day student, "<Numara> <Adi>.jpg", copies of one
// real JPEG.
void takePictures(const fs::path& database, const fs::path& folder) {
    const jet::Database school(database.string());
    const jet::TableDefinition table = school.table(u"ORNEK");
    std::size_t numara = 0;
    std::size_t adi = 0;
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
        if (table.columns[c].name == u"Numara")
            numara = c;
        if (table.columns[c].name == u"Adi")
            adi = c;
    }
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
    const DemoSchool& school = demoSchool();
    if (!school.why.empty()) {
        state.SkipWithError(school.why.c_str());
        return;
    }
    const ProgramFolder folder(school.folder / "okul" / "kvl.mdb");
    const fs::path pictures = school.folder / "resimler";
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
