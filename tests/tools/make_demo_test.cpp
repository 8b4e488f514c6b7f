// make-demo: the database it makes has the dining hall's schema, passes
// jetcheck, reads the same through mdbtools, and holds data in the forms the
// program and the gate program expect.

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/integrity_check.h"
#include "store/jet/text.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

using testing::runCommand;
using testing::shellQuote;

int makeDemo(const std::filesystem::path& folder, const std::string& arguments) {
    int status = 0;
    runCommand(shellQuote(MAKE_DEMO_EXECUTABLE) + " " + shellQuote(folder.string()) + " " +
                   arguments + " 2>/dev/null",
               &status);
    return status;
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

    // Every table reads byte for byte the same through mdbtools.
    if (!std::filesystem::exists(MDB_EXPORT_EXECUTABLE)) GTEST_SKIP() << "mdbtools is absent";
    for (const std::u16string& name : database.userTableNames()) {
        const std::string table = shellQuote(toUtf8(name));
        EXPECT_EQ(runCommand(shellQuote(JETDUMP_EXECUTABLE) + " " + shellQuote(file) + " " + table),
                  runCommand(shellQuote(MDB_EXPORT_EXECUTABLE) + " " + shellQuote(file) + " " + table))
            << toUtf8(name);
    }
}

}  // namespace
}  // namespace jet
