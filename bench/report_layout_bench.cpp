// A meal list of 32,000 rows laid out to its end: the layout's time and the
// memory its pages (about 640 of 50 rows, nine fields each) hold beside the
// record set. The database is made by our engine in a temporary folder.

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <QString>

#include <benchmark/benchmark.h>

#include "reports/engine/report.h"
#include "store/jet/database.h"

namespace {

constexpr int kRows = 32000;

double residentBytes() {
    std::FILE* statm = std::fopen("/proc/self/statm", "r");
    if (statm == nullptr)
        return 0;
    long pages = 0;
    long resident = 0;
    const int read = std::fscanf(statm, "%ld %ld", &pages, &resident);
    std::fclose(statm);
    return read == 2 ? static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE))
                     : 0;
}

// The meal log's columns the lists print, filled with rows of a month.
std::string makeMealLog() {
    const std::filesystem::path folder = std::filesystem::temp_directory_path() /
                                         ("report_layout_bench_" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    const std::string path = (folder / "kvl.mdb").string();
    std::filesystem::remove(path);
    jet::Database::create(path, {});
    jet::Database database(path, jet::PageFile::Mode::ReadWrite);
    database.createTable(
        u"CREATE TABLE YEMEK (Sinif TEXT(10), Numara LONG, Adi TEXT(50), Soyadi TEXT(50), "
        u"yemektarih DATETIME, yemeksaati TEXT(10), ogun TEXT(20), aciklama TEXT(60))");
    std::vector<std::vector<jet::Value>> rows;
    rows.reserve(kRows);
    for (int i = 0; i < kRows; ++i) {
        rows.push_back({jet::Value::text(u"9-" + std::u16string(1, u'A' + i % 6)),
                        jet::Value::integer(100 + i % 900),
                        jet::Value::text(u"Ayşe Nur " + QString::number(i).toStdU16String()),
                        jet::Value::text(u"Yıldırım"),
                        jet::Value::date(jet::Date::fromCivil({2026, 11, 1 + i % 30})),
                        jet::Value::text(u"12:3" + std::u16string(1, u'0' + i % 10)),
                        jet::Value::text(i % 3 == 0 ? u"Kahvaltı" : u"Öğle yemeği"),
                        jet::Value::text(i % 7 == 0 ? u"Yemek Ücretini Ödeyiniz" : u"")});
    }
    database.insertRows(u"YEMEK", rows);
    return path;
}

engine::Control field(const char* name, int left, int width, const char* column) {
    engine::Control control;
    control.kind = engine::ControlKind::Field;
    control.name = QString::fromLatin1(name);
    control.box = {left, 0, width, 283};
    control.border = true;
    control.DataField = QString::fromLatin1(column);
    return control;
}

// The layout of the lists on the meal log, on A4 with a page footer.
engine::ReportDefinition mealList(const std::string& path) {
    engine::ReportDefinition definition;
    engine::Control title;
    title.name = QStringLiteral("Label7");
    title.box = {1701, 0, 7370, 709};
    title.Caption = QStringLiteral("OKUL KASIM AYI YEMEK YİYENLER LİSTESİ");
    definition.bands.push_back({engine::BandKind::PageHeader, 1130, {title}});
    definition.bands.push_back(
        {engine::BandKind::Detail,
         283,
         {field("Field4", 0, 567, ""), field("Field5", 567, 567, "Sinif"),
          field("Field6", 1134, 567, "Numara"), field("Field2", 1701, 1701, "Adi"),
          field("Field3", 3402, 1700, "Soyadi"), field("Field7", 5102, 1134, "yemektarih"),
          field("Field8", 6236, 1134, "yemeksaati"), field("Field9", 7370, 1134, "ogun"),
          field("Field10", 8504, 2268, "aciklama")}});
    definition.bands.push_back({engine::BandKind::PageFooter, 400, {}});
    definition.dataControl = {QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=") +
                                  QString::fromStdString(path),
                              QStringLiteral("select* from yemek")};
    return definition;
}

// Numbers its rows as the lists do.
class MealList : public engine::Report {
public:
    explicit MealList(engine::ReportDefinition definition) : Report(std::move(definition)) {}
    void ActiveReport_FetchData(bool& eof) override {
        if (!eof)
            control(u"Field4").Text = QString::number(counter_ + 1);
        ++counter_;
    }

private:
    int counter_ = 0;
};

void BM_LayOutMealList(benchmark::State& state) {
    const std::string path = makeMealLog();
    std::size_t pages = 0;
    double held = 0;
    for (auto _ : state) {
        const double before = residentBytes();
        MealList report(mealList(path));
        report.Run();
        pages = report.pages().size();
        state.PauseTiming();
        held = std::max(held, residentBytes() - before);
        state.ResumeTiming();
    }
    state.counters["pages"] = static_cast<double>(pages);
    state.counters["held_MB"] = held / 1e6;
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peak_MB"] = static_cast<double>(usage.ru_maxrss) / 1e3;
    std::filesystem::remove_all(std::filesystem::path(path).parent_path());
}
BENCHMARK(BM_LayOutMealList)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
