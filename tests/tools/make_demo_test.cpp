// make-demo: the database it makes has the dining hall's schema, passes
// jetcheck, reads the same through mdbtools, and holds data in the forms the
// program and the gate program expect; the pictures it names are there.

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <QImageReader>
#include <QString>

#include "store/jet/database.h"
#include "store/jet/integrity_check.h"
#include "store/jet/text.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

using testing::runCommand;
using testing::shellQuote;

// In the sanitized build, LeakSanitizer's own tracer may crash at the tool's
// exit on the thread storage of Qt's plugins (it depends on the memory's
// layout), so the tool runs without the leak check; the engine it drives is
// leak-checked by the engine's tests, in process.
int makeDemo(const std::filesystem::path& folder, const std::string& arguments) {
    int status = 0;
    runCommand("ASAN_OPTIONS=detect_leaks=0 " + shellQuote(MAKE_DEMO_EXECUTABLE) + " " +
                   shellQuote(folder.string()) + " " + arguments + " 2>/dev/null",
               &status);
    return status;
}

// The size of a JPEG file, or an empty size when it is none.
QSize jpegSize(const std::filesystem::path& path) {
    QImageReader reader(QString::fromStdString(path.string()), "jpeg");
    return reader.read().size();
}

std::vector<std::u16string> columnNames(const TableDefinition& table) {
    std::vector<std::u16string> names;
    for (const Column& column : table.columns) names.push_back(column.name);
    return names;
}

TEST(MakeDemo, SchoolDatabaseAsTheProgramsExpectIt) {
    testing::TempDir dir;
    const auto folder = dir.path() / "okul";
    ASSERT_EQ(makeDemo(folder, "--students 300 --meal-days 12"), 0);
    EXPECT_EQ(makeDemo(folder, ""), 1) << "an existing kvl.mdb must not be overwritten";
    EXPECT_EQ(makeDemo(dir.path() / "x", "--students"), 2);
    EXPECT_EQ(makeDemo(dir.path() / "x", "--pupils 3"), 2);

    const std::string file = (folder / "kvl.mdb").string();
    const Database database(file);
    EXPECT_EQ(database.header().password, u"HtRvZpQsD2019");
    EXPECT_EQ(database.userTableNames(),
              (std::vector<std::u16string>{u"AYAR", u"ORNEK", u"Pansiyon", u"IZINLER", u"YEMEK",
                                           u"MENULER", u"TMP"}));
    EXPECT_EQ(checkIntegrity(database.file()), std::vector<std::string>{});

    const TableDefinition students = database.table(u"ORNEK");
    ASSERT_EQ(students.columns.size(), 21u);
    EXPECT_EQ(students.columns[19].name, u"resim");
    EXPECT_EQ(students.columns[20].name, u"yatililik");
    EXPECT_EQ(students.realIndexes.size(), 3u);
    EXPECT_EQ(columnNames(database.table(u"IZINLER")),
              (std::vector<std::u16string>{u"TCKimlikNo", u"Adi", u"Soyadi", u"Sinif", u"Numara",
                                           u"cinsiyet", u"resim", u"ay", u"yıl", u"aciklama"}));
    const TableDefinition meals = database.table(u"YEMEK");
    EXPECT_TRUE(meals.columns[0].isAutoNumber());
    ASSERT_EQ(meals.indexes.size(), 2u);
    EXPECT_TRUE(meals.indexes[0].isPrimaryKey());

    EXPECT_EQ(testing::readRows(database, u"ORNEK").size(), 300u);
    EXPECT_EQ(testing::readRows(database, u"AYAR").size(), 1u);
    const auto tally = testing::readRows(database, u"TMP");
    ASSERT_EQ(tally.size(), 31u);
    for (int day = 1; day <= 31; ++day) EXPECT_EQ(tally[day - 1][0], Value::integer(day));

    // Menus: four rows a day, in day order.
    const auto menus = testing::readRows(database, u"MENULER");
    ASSERT_FALSE(menus.empty());
    ASSERT_EQ(menus.size() % 4, 0u);
    for (std::size_t i = 0; i < menus.size(); i += 4) {
        for (std::size_t k = 1; k < 4; ++k) {
            EXPECT_EQ(menus[i + k][0], menus[i][0]);
            EXPECT_EQ(menus[i + k][1], menus[i][1]);
        }
    }
    // The meal log: the gate program's three names, day students and boarders.
    std::set<std::u16string> mealNames;
    std::set<std::int32_t> kinds;
    for (const auto& meal : testing::readRows(database, u"YEMEK")) {
        mealNames.insert(meal[6].asText());
        kinds.insert(meal[7].asInteger());
    }
    EXPECT_EQ(mealNames, (std::set<std::u16string>{u"Kahvaltı", u"Öğle yemeği", u"Akşam yemeği"}));
    EXPECT_EQ(kinds, (std::set<std::int32_t>{0, 1}));

    // Photographs for the rows that name one, the same on every run; the
    // card background and the logo.
    std::size_t photographs = 0;
    for (const auto& [table, column] : {std::pair{u"ORNEK", 19}, std::pair{u"Pansiyon", 7}}) {
        for (const auto& row : testing::readRows(database, table)) {
            if (row[column].isNull())
                continue;
            ++photographs;
            EXPECT_EQ(jpegSize(toUtf8(row[column].asText())), QSize(240, 320))
                << toUtf8(row[column].asText());
        }
    }
    EXPECT_GT(photographs, 100u);
    EXPECT_EQ(jpegSize(folder / "GunduzluKimlik.jpg"), QSize(1000, 600));
    EXPECT_EQ(jpegSize(folder / "logo.jpg"), QSize(256, 256));
    const auto again = dir.path() / "again";
    ASSERT_EQ(makeDemo(again, "--students 10 --meal-days 1"), 0);
    for (const auto& picture : std::filesystem::directory_iterator(again / "resimler")) {
        EXPECT_EQ(testing::readFileBytes(picture.path()),
                  testing::readFileBytes(folder / "resimler" / picture.path().filename()));
    }

    // Every table reads byte for byte the same through mdbtools.
    if (!std::filesystem::exists(MDB_EXPORT_EXECUTABLE)) GTEST_SKIP() << "mdbtools is absent";
    for (const std::u16string& name : database.userTableNames()) {
        const std::string table = shellQuote(toUtf8(name));
        EXPECT_EQ(runCommand(shellQuote(JETDUMP_EXECUTABLE) + " " + shellQuote(file) + " " + table),
                  runCommand(shellQuote(MDB_EXPORT_EXECUTABLE) + " " + shellQuote(file) + " " + table))
            << toUtf8(name);
    }
}

// The roll-call program's file, as the roster import reads it: the two
// rosters alone, no index, that program's password, boarders as many as asked.
TEST(MakeDemo, RollCallDatabase) {
    testing::TempDir dir;
    const auto folder = dir.path() / "yoklama";
    ASSERT_EQ(makeDemo(folder, "--students 40 --boarders 7 --roll-call --meal-days 1"), 0);
    const Database database((folder / "kvl.mdb").string());
    EXPECT_EQ(database.header().password, u"HtRvZpSw2019");
    EXPECT_EQ(database.userTableNames(), (std::vector<std::u16string>{u"ORNEK", u"Pansiyon"}));
    EXPECT_TRUE(database.table(u"ORNEK").realIndexes.empty());
    EXPECT_EQ(database.table(u"Pansiyon").columns.size(), 11u);
    EXPECT_EQ(testing::readRows(database, u"ORNEK").size(), 40u);
    EXPECT_EQ(testing::readRows(database, u"Pansiyon").size(), 7u);
    EXPECT_EQ(checkIntegrity(database.file()), std::vector<std::string>{});
}

}  // namespace
}  // namespace jet
