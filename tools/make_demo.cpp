// make-demo DIR [--students N] [--boarders N] [--meal-days N] [--roll-call]
//
// Creates DIR/kvl.mdb: the dining hall's database with every table, index and
// the password, filled with a made-up school, written through the engine's
// public write path; then the students' photographs that it names, under
// DIR/resimler, and the card background and logo, GunduzluKimlik.jpg and
// logo.jpg. Large arguments make benchmark files. With --roll-call the file
// is the roll-call program's instead: ORNEK and Pansiyon alone, without
// indexes, behind that program's password. The build without Qt writes the
// same database and no pictures, and says so on standard error.

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "store/jet/database.h"
#include "store/jet/error.h"
#include "store/jet/os_file.h"
#include "store/jet/table_definition_builder.h"
#include "store/jet/text.h"
#include "tools/demo_school.h"
#include "tools/picture_writer.h"
#include "tools/utf8_args.h"

namespace {

using jet::os::utf8Text;

using jet::ColumnType;
using jet::NewColumn;
using jet::NewIndex;
using jet::NewTable;

constexpr char16_t kPassword[] = u"HtRvZpQsD2019";
constexpr char16_t kRollCallPassword[] = u"HtRvZpSw2019";

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

// The roll-call program's tables: the two rosters, columns as above, no index.
std::vector<NewTable> rollCallSchema() {
    std::vector<NewTable> tables;
    for (NewTable& table : schema()) {
        if (table.name == u"ORNEK" || table.name == u"Pansiyon") {
            table.indexes.clear();
            tables.push_back(std::move(table));
        }
    }
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
    std::fputs("usage: make-demo DIR [--students N] [--boarders N] [--meal-days N] [--roll-call]\n",
               stderr);
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    const std::shared_ptr<void> pictures = demo::startPictures(argc, argv);
    const tools::Utf8Arguments arguments(argc, argv);
    argc = arguments.count();
    argv = arguments.values();
    if (argc < 2) return usage();
    const std::filesystem::path folder = jet::os::utf8Path(argv[1]);
    demo::SchoolSize size;
    bool rollCall = false;
    for (int i = 2; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--roll-call") {
            rollCall = true;
            continue;
        }
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
    try {
        std::filesystem::create_directories(folder);
        const std::filesystem::path file = folder / "kvl.mdb";
        if (std::filesystem::exists(file)) {
            std::fprintf(stderr, "make-demo: %s exists; remove it first\n", utf8Text(file).c_str());
            return 1;
        }
        const std::filesystem::path pictureFolder = std::filesystem::absolute(folder / "resimler");
        const demo::School school = demo::makeSchool(size, jet::fromUtf8(utf8Text(pictureFolder)));
        jet::NewDatabaseOptions options;
        options.password = rollCall ? kRollCallPassword : kPassword;
        jet::Database::create(utf8Text(file), options);
        jet::Database database(utf8Text(file), jet::PageFile::Mode::ReadWrite);
        for (const NewTable& table : rollCall ? rollCallSchema() : schema())
            database.createTable(table);
        if (!rollCall)
            insertInStatements(database, u"AYAR", school.settings);
        insertInStatements(database, u"ORNEK", school.students);
        insertInStatements(database, u"Pansiyon", school.boarders);
        if (!rollCall) {
            insertInStatements(database, u"IZINLER", school.permits);
            insertInStatements(database, u"YEMEK", school.meals);
            insertInStatements(database, u"MENULER", school.menus);
            insertInStatements(database, u"TMP", school.tally);
        }
        const bool drawn = demo::writePictures(folder, school.portraits);
        if (rollCall) {
            std::printf("%s: the roll-call program's, %zu students, %zu boarders\n",
                        utf8Text(file).c_str(), school.students.size(), school.boarders.size());
        } else {
            std::printf("%s: %zu students, %zu boarders, %zu permits, %zu meals, %zu menu rows\n",
                        utf8Text(file).c_str(), school.students.size(), school.boarders.size(),
                        school.permits.size(), school.meals.size(), school.menus.size());
        }
        if (drawn) {
            std::printf("%s: %zu photographs\n", utf8Text(folder / "resimler").c_str(),
                        school.portraits.size());
        } else {
            std::fputs(
                "make-demo: this build has no Qt and draws no pictures: the photographs, "
                "card background and logo the database names are not written\n",
                stderr);
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make-demo: %s\n", error.what());
        return 1;
    }
    return 0;
}
