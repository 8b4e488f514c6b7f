// The identity cards of a whole school: the cards of 2,000 day students,
// with the photographs make-demo gives them, laid out from the file, and the
// laid-out cards written into a PDF, with the PDF's size.
//
// The school is built by make-demo into a temporary folder at start; each
// benchmark works on a copy of its file beside the card background.

#include <filesystem>

#include <QFileInfo>

#include <benchmark/benchmark.h>

#include "bench/window_bench.h"
#include "reports/engine/page_output.h"
#include "rosters/gkimlik.h"

namespace {

namespace fs = std::filesystem;
using bench::ProgramFolder;

const bench::MadeUpSchool& demoSchool() {
    static const bench::MadeUpSchool school("sofravan-cards", "--students 2000 --meal-days 5");
    return school;
}

// The school's file in a program folder of its own, with the card
// background the cards are printed on.
struct CardFolder {
    explicit CardFolder(const bench::MadeUpSchool& school) : program(school.database()) {
        fs::copy_file(school.folder() / "GunduzluKimlik.jpg",
                      program.database().parent_path() / "GunduzluKimlik.jpg");
    }
    ProgramFolder program;
};

// Every student's card, "Tümü", from the file to the last page.
void BM_CardsOf2000StudentsLaidOut(benchmark::State& state) {
    const bench::MadeUpSchool& school = demoSchool();
    if (school.skip(state))
        return;
    const CardFolder folder(school);
    std::size_t pages = 0;
    for (auto _ : state) {
        rosters::gkimlik cards;
        cards.Run();
        pages = cards.pages().size();
    }
    state.counters["pages"] = static_cast<double>(pages);
}
BENCHMARK(BM_CardsOf2000StudentsLaidOut)->Unit(benchmark::kMillisecond)->Iterations(3);

// The laid-out cards into a PDF, as "Pdf kaydet" writes them after its run.
void BM_CardsOf2000StudentsToPdf(benchmark::State& state) {
    const bench::MadeUpSchool& school = demoSchool();
    if (school.skip(state))
        return;
    const CardFolder folder(school);
    rosters::gkimlik cards;
    cards.Run();
    const QString pdf =
        QString::fromStdString((folder.program.database().parent_path() / "kartlar.pdf").string());
    for (auto _ : state) {
        const QString failure = engine::savePdf(cards.pages(), pdf, cards.definition().title);
        if (!failure.isEmpty()) {
            state.SkipWithError(failure.toStdString().c_str());
            return;
        }
    }
    state.counters["pages"] = static_cast<double>(cards.pages().size());
    state.counters["megabytes"] = static_cast<double>(QFileInfo(pdf).size()) / (1024 * 1024);
}
BENCHMARK(BM_CardsOf2000StudentsToPdf)->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace
