// make-demo DIR [--students N] [--boarders N] [--meal-days N]
//
// Creates DIR/kvl.mdb: the dining hall's database with every table, index and
// the password, filled with a made-up school, written through the engine's
// public write path; then the students' photographs that it names, under
// DIR/resimler, and the card background and logo, GunduzluKimlik.jpg and
// logo.jpg. Large arguments make benchmark files.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <QGuiApplication>

#include "store/jet/database.h"
#include "store/jet/error.h"
#include "store/jet/table_definition_builder.h"
#include "store/jet/text.h"
#include "tools/demo_pictures.h"
#include "tools/demo_school.h"

namespace {

using jet::ColumnType;
using jet::NewColumn;
using jet::NewIndex;
using jet::NewTable;

constexpr char16_t kPassword[] = u"HtRvZpQsD2019";

NewColumn text(std::u16string name, std::uint16_t length = 255) {
    return {std::move(name), ColumnType::Text, length, false, false, true, false};
}
NewColumn column(std::u16string name, ColumnType type) {
    return {std::move(name), type, 0, false, false, false, false};
}
NewColumn autoNumber(std::u16string name) {
    return {std::move(name), ColumnType::LongInteger, 0, false, true, false, false};
}
NewIndex primaryKey(std::u16string column) {
    NewIndex index;
    index.name = u"PrimaryKey";
    index.columns = {std::move(column)};
    index.primaryKey = true;
    return index;
}
NewIndex plainIndex(std::u16string column) {
    NewIndex index;
    index.name = column;
    index.columns = {std::move(column)};
    return index;
}

// The tables of the dining hall's database, columns in their stored order.
std::vector<NewTable> schema() {
    const auto l = ColumnType::LongInteger;
    const auto d = ColumnType::Double;
    const auto t = ColumnType::DateTime;
    const auto i = ColumnType::Integer;
    std::vector<NewTable> tables;
    tables.push_back({u"AYAR", false,
                      {column(u"ID", l), text(u"OKUL"), text(u"MRD"), text(u"MDRYRD"),
                       text(u"SABAH_SAATI", 50), text(u"OGLE_SAATI", 50), text(u"AKSAM_SAATI", 50),
                       text(u"SIFRE")},
                      {primaryKey(u"ID")}});
    tables.push_back({u"ORNEK", false,
                      {column(u"sno", l), column(u"TCKimlikNo", d), text(u"Adi"), text(u"Soyadi"),
                       column(u"Numara", l), text(u"Sinif"), text(u"Cinsiyet"), text(u"Seviye"),
                       text(u"BabaAdi"), text(u"AnneAdi"), column(u"DogumTarihi", t),
                       text(u"DogumYeri"), text(u"Adres"), text(u"Telefon"), text(u"VeliAdi"),
                       text(u"VeliTelefon"), column(u"KayitTarihi", t), text(u"Aciklama"),
                       text(u"OkulAdi"), text(u"resim"), text(u"yatililik")},
                      {plainIndex(u"Numara"), plainIndex(u"Soyadi"), plainIndex(u"Sinif")}});
    tables.push_back({u"Pansiyon", false,
                      {column(u"PANSIYONNO", l), text(u"ADI"), text(u"SOYADI"),
                       text(u"A_Ogr_Oda_No", 10), text(u"CINSIYET", 1), column(u"A_Ogr_Okul_No", l),
                       text(u"A_Ogr_Bina_No", 5), text(u"RESIM"), text(u"OKUL"), text(u"SINIF"),
                       column(u"TC", d)},
                      {primaryKey(u"PANSIYONNO")}});
    tables.push_back({u"IZINLER", false,
                      {column(u"TCKimlikNo", d), text(u"Adi"), text(u"Soyadi"), text(u"Sinif"),
                       column(u"Numara", l), text(u"cinsiyet", 10), text(u"resim"), column(u"ay", i),
                       column(u"yıl", l), text(u"aciklama")},
                      {}});
    tables.push_back({u"YEMEK", false,
                      {autoNumber(u"ID"), column(u"gun", i), column(u"ay", i), text(u"YIL", 10),
                       column(u"YEMEKTARIH", t), text(u"yemeksaati", 10), text(u"ogun", 50),
                       column(u"gunduzlu", i), text(u"ACIKLAMA"), text(u"SINIF", 50),
                       column(u"Numara", l), text(u"Adi"), text(u"Soyadi")},
                      {primaryKey(u"ID"), plainIndex(u"YEMEKTARIH")}});
    tables.push_back({u"MENULER", false,
                      {column(u"ay", i), column(u"gun", i), text(u"sabah"), text(u"oglen"),
                       text(u"aksam"), text(u"ara_ogun")},
                      {}});
    tables.push_back({u"TMP", false,
                      {column(u"tarih", i), column(u"sabah", l), column(u"ogle", l),
                       column(u"aksam", l)},
                      {}});
    return tables;
}

// Rows go in statements of a few thousand: each is journaled and durable.
void insertInStatements(jet::Database& database, std::u16string_view table,
                        const std::vector<demo::Row>& rows) {
    constexpr std::size_t kRowsPerStatement = 5000;
    for (std::size_t start = 0; start < rows.size(); start += kRowsPerStatement) {
        const std::size_t end = std::min(rows.size(), start + kRowsPerStatement);
        database.insertRows(table, std::vector<demo::Row>(rows.begin() + static_cast<long>(start),
                                                          rows.begin() + static_cast<long>(end)));
    }
}

int usage() {
    std::fputs("usage: make-demo DIR [--students N] [--boarders N] [--meal-days N]\n", stderr);
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return usage();
    const std::filesystem::path folder = argv[1];
    demo::SchoolSize size;
    for (int i = 2; i < argc; ++i) {
        const std::string option = argv[i];
        if (i + 1 >= argc) return usage();
        char* end = nullptr;
        const long value = std::strtol(argv[++i], &end, 10);
        if (*end != '\0' || value < 0 || value > 10'000'000) return usage();
        if (option == "--students") {
            size.students = static_cast<int>(value);
        } else if (option == "--boarders") {
            size.boarders = static_cast<int>(value);
        } else if (option == "--meal-days") {
            size.mealDays = static_cast<int>(value);
        } else {
            return usage();
        }
    }
    // The pictures' text needs a GUI application, but no screen.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QGuiApplication application(argc, argv);
    try {
        std::filesystem::create_directories(folder);
        const std::filesystem::path file = folder / "kvl.mdb";
        if (std::filesystem::exists(file)) {
            std::fprintf(stderr, "make-demo: %s exists; remove it first\n", file.string().c_str());
            return 1;
        }
        const demo::School school =
            demo::makeSchool(size, jet::fromUtf8(std::filesystem::absolute(folder / "resimler").string()));
        jet::NewDatabaseOptions options;
        options.password = kPassword;
        jet::Database::create(file.string(), options);
        jet::Database database(file.string(), jet::PageFile::Mode::ReadWrite);
        for (const NewTable& table : schema()) database.createTable(table);
        insertInStatements(database, u"AYAR", school.settings);
        insertInStatements(database, u"ORNEK", school.students);
        insertInStatements(database, u"Pansiyon", school.boarders);
        insertInStatements(database, u"IZINLER", school.permits);
        insertInStatements(database, u"YEMEK", school.meals);
        insertInStatements(database, u"MENULER", school.menus);
        insertInStatements(database, u"TMP", school.tally);
        demo::writePictures(folder, school.portraits);
        std::printf("%s: %zu students, %zu boarders, %zu permits, %zu meals, %zu menu rows\n",
                    file.string().c_str(), school.students.size(), school.boarders.size(),
                    school.permits.size(), school.meals.size(), school.menus.size());
        std::printf("%s: %zu photographs\n", (folder / "resimler").string().c_str(),
                    school.portraits.size());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make-demo: %s\n", error.what());
        return 1;
    }
    return 0;
}
