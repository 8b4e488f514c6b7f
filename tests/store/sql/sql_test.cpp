#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/format.h"
#include "store/jet/index_key.h"
#include "store/jet/index_page.h"
#include "store/jet/integrity_check.h"
#include "store/jet/text.h"
#include "store/sql/collation.h"
#include "store/sql/executor.h"
#include "store/sql/parser.h"
#include "tests/store/jet/test_files.h"

namespace {

using jet::Value;
using jet::testing::fixturesDir;
using jet::testing::TempDir;
using Row = std::vector<Value>;

// A copy of the school's database, so that statements may write to it.
class SchoolCopy {
public:
    SchoolCopy() : path_(dir_.path() / "kvl.mdb") {
        std::filesystem::copy_file(fixturesDir() / "kvl" / "kvl.mdb", path_);
        std::filesystem::permissions(
            path_, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    }
    std::string path() const { return path_.string(); }

private:
    TempDir dir_;
    std::filesystem::path path_;
};

// Every row of a table read with the engine's plain cursor, for answers
// computed without the SQL executor.
struct TableRows {
    jet::TableDefinition table;
    std::vector<Row> rows;
    std::vector<jet::RowId> ids;

    TableRows(const jet::Database& database, std::u16string_view name)
        : table(database.table(name)) {
        jet::TableCursor cursor = database.scan(table);
        Row values;
        while (cursor.next()) {
            cursor.values(values);
            rows.push_back(values);
            ids.push_back(cursor.rowId());
        }
    }
    int column(std::u16string_view name) const {
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
            if (table.columns[i].name == name)
                return static_cast<int>(i);
        }
        ADD_FAILURE() << "no column " << jet::toUtf8(name);
        return 0;
    }
    std::vector<Row> where(const std::function<bool(const Row&)>& keep) const {
        std::vector<Row> out;
        std::copy_if(rows.begin(), rows.end(), std::back_inserter(out), keep);
        return out;
    }
};

bool isText(const Value& v, std::u16string_view text) {
    return v.kind() == Value::Kind::Text && v.asText() == text;
}
bool isNumber(const Value& v, int n) {
    return (v.kind() == Value::Kind::Integer && v.asInteger() == n) ||
           (v.kind() == Value::Kind::Double && v.asDouble() == n);
}

// Rows in collation order, column by column.
bool rowLess(const Row& a, const Row& b) {
    return std::lexicographical_compare(
        a.begin(), a.end(), b.begin(), b.end(),
        [](const Value& x, const Value& y) { return sql::compareValues(x, y) < 0; });
}

// Distinct values of the columns, in collation order, as GROUP BY gives
// them: of keys that collate alike the first stored one.
std::vector<Row> distinctOf(const std::vector<Row>& rows, const std::vector<int>& columns) {
    std::set<Row, decltype(&rowLess)> keys(&rowLess);
    for (const Row& row : rows) {
        Row key;
        for (int c : columns)
            key.push_back(row[c]);
        keys.insert(std::move(key));
    }
    return {keys.begin(), keys.end()};
}

std::string mdbExport(const std::string& file, const std::string& table) {
    return jet::testing::runCommand(jet::testing::shellQuote(MDB_EXPORT_EXECUTABLE) + " " +
                                    jet::testing::shellQuote(file) + " " + table);
}

// Counts the lines of mdb-export's output after the header.
long exportedRows(const std::string& csv) {
    return static_cast<long>(std::count(csv.begin(), csv.end(), '\n')) - 1;
}

// The main window's tally of the day students at one meal of a November day.
std::u16string tallySql(int day, std::u16string_view meal) {
    return u"SELECT Count(yemek.gunduzlu) AS Saygunduzlu, yemek.gun, yemek.ay, "
           u"yemek.gunduzlu,yemek.ogun From yemek GROUP BY yemek.gun, yemek.ay, "
           u"yemek.gunduzlu,yemek.ogun HAVING yemek.gun=" +
           jet::fromUtf8(std::to_string(day)) + u" AND yemek.ay=11 and yemek.ogun='" +
           std::u16string(meal) + u"' AND yemek.gunduzlu=1";
}

// Rows of a query whose rows map 1:1 to table rows: each row is the table
// row its RowId names, in the columns tableColumn names.
void expectRowsMapToTable(const jet::Database& database, const sql::QueryResult& result) {
    ASSERT_FALSE(result.baseTable.empty());
    ASSERT_EQ(result.rowIds.size(), result.rows.size());
    const jet::TableDefinition table = database.table(result.baseTable);
    Row values;
    for (std::size_t r = 0; r < result.rows.size(); ++r) {
        ASSERT_TRUE(jet::readRow(database.file(), table, result.rowIds[r], values));
        for (std::size_t c = 0; c < result.tableColumn.size(); ++c) {
            ASSERT_EQ(result.rows[r][c], values[result.tableColumn[c]]);
        }
    }
}

// Rows sorted by the result column, Nulls first, equal keys in stored order.
void expectSortedStably(const sql::QueryResult& result, int column) {
    for (std::size_t r = 1; r < result.rows.size(); ++r) {
        int c = sql::compareValues(result.rows[r - 1][column], result.rows[r][column]);
        ASSERT_LE(c, 0) << "row " << r;
        if (c == 0 && !result.rowIds.empty()) {
            const jet::RowId a = result.rowIds[r - 1], b = result.rowIds[r];
            ASSERT_TRUE(a.page < b.page || (a.page == b.page && a.row < b.row)) << "row " << r;
        }
    }
}

TEST(Sql, EverySystemStatementOnTheSchoolDatabase) {
    SKIP_WITHOUT_MDBTOOLS();
    SKIP_WITHOUT_FIXTURES();
    SchoolCopy copy;
    jet::Database database(copy.path(), jet::PageFile::Mode::ReadWrite);
    const TableRows ayar(database, u"AYAR"), ornek(database, u"ORNEK"),
        pansiyon(database, u"Pansiyon"), izinler(database, u"IZINLER"), yemek(database, u"YEMEK"),
        menuler(database, u"MENULER"), tmp(database, u"TMP");
    const int sinif = ornek.column(u"Sinif");
    const int cinsiyet = pansiyon.column(u"CINSIYET"), oda = pansiyon.column(u"A_Ogr_Oda_No");
    const int yGun = yemek.column(u"gun"), yAy = yemek.column(u"ay"), yYil = yemek.column(u"YIL"),
              yTarih = yemek.column(u"YEMEKTARIH"), yOgun = yemek.column(u"ogun"),
              yGunduzlu = yemek.column(u"gunduzlu"), yAciklama = yemek.column(u"ACIKLAMA"),
              ySinif = yemek.column(u"SINIF");
    const int iAy = izinler.column(u"ay"), iYil = izinler.column(u"yıl");
    const jet::Date day = jet::Date::fromCivil({2025, 11, 5, 0, 0, 0});
    const std::u16string unpaid = u"Yemek Ücretini Ödeyiniz";

    struct Case {
        std::u16string sql;
        std::vector<Row> expected;  // rows, or (with countOnly) as many rows as expected
        bool countOnly = false;
        int sortedBy = -1;  // result column the rows must be sorted by
        bool emptyAllowed = false;
    };
    auto all = [](const TableRows& t) { return t.rows; };
    const std::vector<Row> novemberMenus =
        menuler.where([&](const Row& r) { return isNumber(r[menuler.column(u"ay")], 11); });
    auto inNovember = [&](const Row& r) {
        return isNumber(r[yAy], 11) && isText(r[yYil], u"2025");
    };
    auto yemekOn = [&](const std::function<bool(const Row&)>& more) {
        return yemek.where([&](const Row& r) {
            return r[yTarih].kind() == Value::Kind::Date && r[yTarih].asDate() == day && more(r);
        });
    };
    // The boarders' rooms, of either sex.
    const std::u16string rooms =
        u"SELECT Pansiyon.CINSIYET, Pansiyon.A_Ogr_Oda_No From Pansiyon GROUP BY "
        u"Pansiyon.CINSIYET, Pansiyon.A_Ogr_Oda_No";
    auto roomsOf = [&](std::u16string_view sex) {
        return distinctOf(pansiyon.where([&](const Row& r) { return isText(r[cinsiyet], sex); }),
                          {cinsiyet, oda});
    };
    std::vector<Case> cases = {
        {u"select* from AYAR", all(ayar)},
        {u"SELECT* from AYAR", all(ayar)},
        {u"SELECT ORNEK.SINIF From ORNEK GROUP BY ORNEK.SINIF", distinctOf(ornek.rows, {sinif})},
        {rooms, distinctOf(pansiyon.rows, {cinsiyet, oda})},
        {rooms + u" HAVING Pansiyon.CINSIYET='K'", roomsOf(u"K")},
        {rooms + u" HAVING Pansiyon.CINSIYET='E'", roomsOf(u"E")},
        {u"SELECT DISTINCT ORNEK.SINIF\r\nFROM ORNEK\r\nGROUP BY ORNEK.SINIF\r\nORDER BY "
         u"ORNEK.SINIF",
         distinctOf(ornek.rows, {sinif}), false, 0},
        {u"SELECT* FROM ORNEK ORDER BY Sinif asc", all(ornek), true, sinif},
        {u"SELECT* from ORNEK ORDER BY ORNEK.SINIF asc", all(ornek), true, sinif},
        {u"SELECT* from ORNEK where SINIF='10A' ORDER BY ORNEK.SINIF asc",
         ornek.where([&](const Row& r) { return isText(r[sinif], u"10A"); }), true, sinif},
        {u"select* from ORNEK", all(ornek)},
        {u"select* from Pansiyon", all(pansiyon)},
        {u"select* from menuler", all(menuler)},
        {u"select* from MENULER where ay=11", novemberMenus},
        {u"select* from IZINLER where ay=11 and YIL=2025", izinler.where([&](const Row& r) {
             return isNumber(r[iAy], 11) && isNumber(r[iYil], 2025);
         })},
        {u"select* from yemek where ay=11 and YIL='2025'", yemek.where(inNovember)},
        {u"select* from yemek where ay=11 and YIL='2025' and ACIKLAMA='Yemek Ücretini Ödeyiniz'",
         yemek.where([&](const Row& r) { return inNovember(r) && isText(r[yAciklama], unpaid); })},
        {u"select* from yemek where YEMEKTARIH=#11/5/2025# order by SINIF asc",
         yemekOn([](const Row&) { return true; }), true, ySinif},
        {u"select* from YEMEK where YEMEKTARIH=#11/5/2025# and ACIKLAMA='Yemek Ücretini "
         u"Ödeyiniz' order by SINIF asc",
         yemekOn([&](const Row& r) { return isText(r[yAciklama], unpaid); }), true, ySinif},
        {u"select* from tmp", all(tmp)},
        {u"select*  from TMP order by TARIH asc", all(tmp), true, 0},
    };
    for (std::u16string meal : {u"Kahvaltı", u"Öğle yemeği", u"Akşam yemeği"}) {
        std::vector<Row> rows = yemek.where([&](const Row& r) {
            return isNumber(r[yGun], 5) && isNumber(r[yAy], 11) && isText(r[yOgun], meal) &&
                   isNumber(r[yGunduzlu], 1);
        });
        // Day students seldom stay for dinner: that tally may be empty.
        std::vector<Row> expected;
        if (!rows.empty()) {
            expected.push_back({Value::integer(static_cast<int>(rows.size())), rows[0][yGun],
                                rows[0][yAy], rows[0][yGunduzlu], rows[0][yOgun]});
        }
        cases.push_back({tallySql(5, meal), expected, false, -1, meal == u"Akşam yemeği"});
    }
    for (std::u16string column : {u"sabah", u"oglen", u"aksam", u"ara_ogun"}) {
        cases.push_back(
            {u"SELECT DISTINCT MENULER." + column + u" From MENULER ORDER BY MENULER." + column,
             distinctOf(menuler.rows, {menuler.column(column)}), false, 0});
    }

    for (const Case& c : cases) {
        SCOPED_TRACE(jet::toUtf8(c.sql));
        const sql::ExecuteResult result = sql::execute(database, c.sql);
        ASSERT_TRUE(result.isQuery);
        ASSERT_TRUE(c.emptyAllowed || !c.expected.empty()) << "a case that selects nothing";
        ASSERT_EQ(result.query.rows.size(), c.expected.size());
        if (c.countOnly) {
            // The same rows, in the order the statement sorts them.
            std::vector<Row> got = result.query.rows, want = c.expected;
            std::stable_sort(got.begin(), got.end(), rowLess);
            std::stable_sort(want.begin(), want.end(), rowLess);
            EXPECT_EQ(got, want);
        } else {
            EXPECT_EQ(result.query.rows, c.expected);
        }
        if (c.sortedBy >= 0)
            expectSortedStably(result.query, c.sortedBy);
        if (!result.query.baseTable.empty())
            expectRowsMapToTable(database, result.query);
    }

    // Names as the statements spell them: the alias, else the table's spelling.
    const sql::QueryResult tally = sql::execute(database, tallySql(5, u"Kahvaltı")).query;
    EXPECT_EQ(tally.columnNames,
              (std::vector<std::u16string>{u"Saygunduzlu", u"gun", u"ay", u"gunduzlu", u"ogun"}));
    EXPECT_TRUE(tally.baseTable.empty());

    // The statements that write: each deletion is seen by our next read and
    // by mdb-export alike.
    struct Deletion {
        std::u16string sql;
        std::string table;
        std::size_t deleted, left;
    };
    const std::size_t menus = menuler.rows.size(), november = novemberMenus.size();
    for (const Deletion& d :
         {Deletion{u"delete * from MENULER where ay=11", "MENULER", november, menus - november},
          Deletion{u"delete* from ORNEK", "ORNEK", ornek.rows.size(), 0},
          Deletion{u"delete* from Pansiyon", "Pansiyon", pansiyon.rows.size(), 0}}) {
        SCOPED_TRACE(jet::toUtf8(d.sql));
        EXPECT_EQ(sql::execute(database, d.sql).rowsAffected, static_cast<long>(d.deleted));
        EXPECT_EQ(
            sql::execute(database, u"select* from " + jet::fromUtf8(d.table)).query.rows.size(),
            d.left);
        EXPECT_EQ(exportedRows(mdbExport(copy.path(), d.table)), static_cast<long>(d.left));
    }
    EXPECT_EQ(sql::execute(database, u"select* from MENULER where ay=11").query.rows.size(), 0u);
    const sql::ExecuteResult created = sql::execute(
        database,
        u"CREATE TABLE TMPMENU (TARIH DATETIME, GUN CHAR, SABAH MEMO, OGLE MEMO, AKSAM MEMO, "
        u"ARA_OGUN MEMO, CONSTRAINT MyTableConstraint UNIQUE (TARIH, GUN, SABAH, OGLE, AKSAM, "
        u"ARA_OGUN));");
    EXPECT_FALSE(created.isQuery);
    EXPECT_EQ(sql::execute(database, u"delete* from TMPMENU").rowsAffected, 0);
    const sql::QueryResult menu = sql::execute(database, u"select* from TMPMENU").query;
    EXPECT_EQ(menu.columnNames, (std::vector<std::u16string>{u"TARIH", u"GUN", u"SABAH", u"OGLE",
                                                             u"AKSAM", u"ARA_OGUN"}));
    database.insertRows(u"TMPMENU", {{Value::date(jet::Date{45000}), Value::text(u"b"),
                                      Value::text(u"x"), Value(), Value(), Value()},
                                     {Value::date(jet::Date{44000}), Value::text(u"a"),
                                      Value::text(u"y"), Value(), Value(), Value()}});
    const sql::QueryResult byDate =
        sql::execute(database, u"select* from TMPMENU ORDER BY TARIH asc").query;
    ASSERT_EQ(byDate.rows.size(), 2u);
    EXPECT_EQ(byDate.rows[0][0], Value::date(jet::Date{44000}));
    EXPECT_EQ(exportedRows(mdbExport(copy.path(), "TMPMENU")), 2);
    EXPECT_EQ(jet::checkIntegrity(database.file()), std::vector<std::string>{});
}

TEST(Sql, ConditionsNamesNullsAndRefusedStatements) {
    SKIP_WITHOUT_FIXTURES();
    SchoolCopy copy;
    jet::Database database(copy.path(), jet::PageFile::Mode::ReadWrite);
    const std::vector<unsigned char> before = jet::testing::readFileBytes(copy.path());
    const TableRows ornek(database, u"ORNEK"), izinler(database, u"IZINLER");
    auto count = [&](std::u16string_view statement) {
        return sql::execute(database, statement).query.rows.size();
    };
    const int tc = ornek.column(u"TCKimlikNo"), adi = ornek.column(u"Adi");
    const int numara = ornek.column(u"Numara");
    auto startsWithA = [&](const Row& r) {
        return r[adi].kind() == Value::Kind::Text && !r[adi].asText().empty() &&
               sql::equalText(r[adi].asText().substr(0, 1), u"A");
    };
    auto in500s = [&](const Row& r) {
        return !r[numara].isNull() && sql::compareValues(r[numara], Value::integer(500)) >= 0 &&
               sql::compareValues(r[numara], Value::integer(600)) < 0;
    };
    const std::size_t tenA = count(u"select* from ORNEK where Sinif='10A'");
    const std::size_t nulls = ornek.where([&](const Row& r) { return r[tc].isNull(); }).size();
    const std::size_t notNull = ornek.rows.size() - nulls;
    // The classes' sizes, for LIKE with digits, sets and ranges and for HAVING.
    const int sinif = ornek.column(u"Sinif");
    std::map<std::u16string, int> perClass;
    for (const Row& r : ornek.rows) {
        if (r[sinif].kind() == Value::Kind::Text)
            ++perClass[r[sinif].asText()];
    }
    std::size_t likeCount = 0, bigClasses = 0;
    for (const auto& [name, n] : perClass) {
        if (name.size() == 3 && name[0] == u'1' && name[1] >= u'0' && name[1] <= u'1' &&
            (name[2] == u'A' || name[2] == u'B')) {
            likeCount += n;
        }
        if (n > 20)
            ++bigClasses;
    }
    const std::vector<std::pair<std::u16string, std::size_t>> counts = {
        // Keywords in any case, no blanks around symbols, names in any case
        // and with every i: the same rows.
        {u"SeLeCt*FrOm ornek WhErE sınıf='10A'", tenA},
        {u"select* from ORNEK where Sinif='10a'", tenA},
        {u"select* from IZINLER where yıl=2025", count(u"select* from IZINLER where YIL=2025")},
        {u"select * from ORNEK where Soyadi='O''Neil'", 1},
        // Null: no comparison with it is true, not even a negated one.
        {u"select* from ORNEK where TCKimlikNo IS NULL", nulls},
        {u"select* from ORNEK where TCKimlikNo is not null", notNull},
        {u"select* from ORNEK where TCKimlikNo<>1", notNull},
        {u"select* from ORNEK where NOT (TCKimlikNo=1)", notNull},
        {u"select* from ORNEK where TCKimlikNo=1 or not TCKimlikNo=1", notNull},
        // LIKE with either wildcard, ranges, OR, parentheses.
        {u"select* from ORNEK where Adi like 'a%'", ornek.where(startsWithA).size()},
        {u"select* from ORNEK where Adi LIKE 'A*'", ornek.where(startsWithA).size()},
        {u"select* from ORNEK where Adi not like 'a%' or Adi like 'a%'",
         ornek.where([&](const Row& r) { return !r[adi].isNull(); }).size()},
        {u"select* from ORNEK where (Numara>=500 and Numara<600) or Numara=-1",
         ornek.where(in500s).size()},
        {u"select* from ORNEK where Sinif like '1[0-1][ab]'", likeCount},
        {u"select* from ORNEK where Sinif like '1#[!c-z]' and Sinif like '?[!2-9]_'", likeCount},
    };
    // Every case selects some rows, so that none passes on an empty answer.
    for (const auto& [statement, expected] : counts) {
        EXPECT_GT(expected, 0u) << jet::toUtf8(statement);
        EXPECT_EQ(count(statement), expected) << jet::toUtf8(statement);
    }
    EXPECT_EQ(sql::execute(database, u"select adi, SOYADI from ornek").query.columnNames,
              (std::vector<std::u16string>{u"Adi", u"Soyadi"}));

    // HAVING on an aggregate.
    const sql::QueryResult big =
        sql::execute(database,
                     u"select Sinif, Count(*) as n from ORNEK group by Sinif having Count(*)>20")
            .query;
    ASSERT_GT(bigClasses, 0u);
    EXPECT_EQ(big.rows.size(), bigClasses);
    for (const Row& r : big.rows)
        EXPECT_EQ(r[1].asInteger(), perClass[r[0].asText()]);

    // Aggregates without GROUP BY give one row, named Expr1000 when unnamed.
    const sql::QueryResult total =
        sql::execute(database, u"select Count(*), max(Numara) as m from ORNEK").query;
    EXPECT_EQ(total.columnNames, (std::vector<std::u16string>{u"Expr1000", u"m"}));
    ASSERT_EQ(total.rows.size(), 1u);
    EXPECT_EQ(total.rows[0][0], Value::integer(static_cast<int>(ornek.rows.size())));

    // ORDER BY descending and on several keys, stable for equal keys.
    const sql::QueryResult sorted =
        sql::execute(database, u"select Sinif, Adi from ORNEK order by Sinif desc, Adi").query;
    std::vector<Row> want;
    for (const Row& r : ornek.rows)
        want.push_back({r[sinif], r[adi]});
    std::stable_sort(want.begin(), want.end(), [](const Row& a, const Row& b) {
        const int c = sql::compareValues(a[0], b[0]);
        return c != 0 ? c > 0 : sql::compareValues(a[1], b[1]) < 0;
    });
    EXPECT_EQ(sorted.rows, want);
    EXPECT_TRUE(sorted.rows.back()[0].isNull() || sorted.rows.back()[0] == Value::text(u""));

    // Statements outside the subset fail naming what (a piece the message
    // must hold), and write nothing.
    const std::vector<std::pair<std::u16string, std::string>> bad = {
        {u"UPDATE ORNEK SET Adi='x'", "UPDATE"},
        {u"INSERT INTO ORNEK (Adi) VALUES ('x')", "INSERT"},
        {u"select* from ORNEK, IZINLER", ","},
        {u"select* from ORNEK where", "end"},
        {u"select* from ORNEK where Adi='abc", "not closed"},
        {u"select* from ORNEK where Adi=='x'", "="},
        {u"select* from yemek where YEMEKTARIH=#13/45/2025#", "date"},
        {u"select* from NOTABLE", "NOTABLE"},
        {u"select nosuch from ORNEK", "nosuch"},
        {u"select* from ORNEK where IZINLER.ay=1", "IZINLER"},
        {u"select Adi from ORNEK group by Sinif", "Adi"},
        {u"select* from ORNEK where Adi=1", "mismatch"},
        {u"delete* from ORNEK where Count(Adi)=1", "HAVING"},
        {u"select* from ORNEK order by", "column"},
        {u"DROP TABLE ORNEK", "DROP"},
        {u"select* from `Sayfa1$", "not closed"},
    };
    for (const auto& [statement, named] : bad) {
        SCOPED_TRACE(jet::toUtf8(statement));
        try {
            sql::execute(database, statement);
            ADD_FAILURE() << "accepted";
        } catch (const sql::Error& error) {
            EXPECT_NE(std::string(error.what()).find(named), std::string::npos) << error.what();
        }
    }
    EXPECT_EQ(jet::testing::readFileBytes(copy.path()), before);

    // Back quotes, as the Excel driver's names are written, hold any character.
    auto tableOf = [](std::u16string_view text) {
        return std::get<sql::SelectStatement>(sql::parse(text)).table;
    };
    EXPECT_EQ(tableOf(u"select* from `Sayfa1$`"), u"Sayfa1$");
    EXPECT_EQ(tableOf(u"select* from `'Kasım Menüsü$'`;"), u"'Kasım Menüsü$'");
    const auto select = std::get<sql::SelectStatement>(sql::parse(u"select `from`, [ay] from `x`"));
    EXPECT_EQ(select.items.at(0).value.column.name, u"from");
}

// The tally's grouped counts are kept between statements that differ in
// their HAVING only; a write to the table, here a meal logged as the gate
// program would, shows in the next count, even when the file's size and
// time stamp stay as they were.
TEST(Sql, GroupedCountsFollowWritesToTheFile) {
    SKIP_WITHOUT_FIXTURES();
    SchoolCopy copy;
    jet::Database database(copy.path(), jet::PageFile::Mode::ReadWrite);
    auto tally = [&](int day) {
        const sql::QueryResult result = sql::execute(database, tallySql(day, u"Kahvaltı")).query;
        return result.rows.empty() ? 0 : result.rows[0][0].asInteger();
    };
    // Through a WHERE the rows are counted afresh each time.
    auto counted = [&](int day) {
        return static_cast<int>(
            sql::execute(database, u"select* from yemek where gun=" +
                                       jet::fromUtf8(std::to_string(day)) +
                                       u" and ay=11 and ogun='kahvaltı' and gunduzlu=1")
                .query.rows.size());
    };
    const int fifth = tally(5), sixth = tally(6);
    ASSERT_GT(fifth, 0);
    EXPECT_EQ(fifth, counted(5));
    EXPECT_EQ(sixth, counted(6));
    EXPECT_EQ(tally(5), fifth);

    const jet::TableDefinition table = database.table(u"YEMEK");
    const std::map<std::u16string, Value> meal = {
        {u"gun", Value::integer(5)},
        {u"ay", Value::integer(11)},
        {u"gunduzlu", Value::integer(1)},
        {u"ogun", Value::text(u"Kahvaltı")},
        {u"YEMEKTARIH", Value::date(jet::Date::fromCivil({2026, 11, 5}))}};
    Row row;
    for (const jet::Column& column : table.columns)
        row.push_back(meal.contains(column.name) ? meal.at(column.name) : Value());
    // Logged as the gate program logs: by another engine, which raises no
    // counter of ours, into room on a page, within one tick of the file's clock.
    const std::uintmax_t size = std::filesystem::file_size(copy.path());
    const std::filesystem::file_time_type time = std::filesystem::last_write_time(copy.path());
    const std::string lockFile = jet::LockFile::lockPath(copy.path());
    const std::vector<unsigned char> counter = jet::testing::readFileBytes(lockFile);
    jet::Database(copy.path(), jet::PageFile::Mode::ReadWrite).insertRows(u"YEMEK", {row});
    jet::testing::writeFileBytes(lockFile, counter);
    std::filesystem::last_write_time(copy.path(), time);
    ASSERT_EQ(std::filesystem::file_size(copy.path()), size);
    EXPECT_EQ(tally(5), fifth + 1);
    EXPECT_EQ(tally(6), sixth);
    // A write of ours is known by the counter as well.
    database.insertRows(u"YEMEK", {row});
    EXPECT_EQ(tally(5), fifth + 2);
    EXPECT_EQ(tally(6), sixth);
    EXPECT_EQ(sql::execute(database,
                           u"delete* from yemek where gun=5 and ay=11 and "
                           u"ogun='Kahvaltı' and gunduzlu=1")
                  .rowsAffected,
              fifth + 2);
    EXPECT_EQ(tally(5), 0);
    EXPECT_EQ(jet::checkIntegrity(database.file()), std::vector<std::string>{});
}

// The day list's date equality walks the index: a damaged data page that
// holds none of the day's rows stops a scan but not the query.
TEST(Sql, IndexedEqualityReadsOnlyTheRowsOfTheKey) {
    SKIP_WITHOUT_FIXTURES();
    SchoolCopy copy;
    const std::u16string query = u"select* from yemek where YEMEKTARIH=#11/5/2025#";
    std::vector<Row> expected;
    std::vector<jet::RowId> expectedIds;
    std::uint32_t spare = 0;
    {
        jet::Database database(copy.path());
        const TableRows yemek(database, u"YEMEK");
        const int tarih = yemek.column(u"YEMEKTARIH");
        const Value day = Value::date(jet::Date::fromCivil({2025, 11, 5, 0, 0, 0}));
        // The row identities of each day of the log, and the pages that hold
        // rows of some other day only.
        std::map<double, std::multiset<std::uint64_t>> byDay;
        std::set<std::uint32_t> dayPages, allPages;
        for (std::size_t i = 0; i < yemek.rows.size(); ++i) {
            const Value& date = yemek.rows[i][tarih];
            const jet::RowId id = yemek.ids[i];
            allPages.insert(id.page);
            if (date.kind() == Value::Kind::Date)
                byDay[date.asDate().oleDays].insert(std::uint64_t{id.page} << 8 | id.row);
            if (date == day) {
                dayPages.insert(id.page);
                expected.push_back(yemek.rows[i]);
                expectedIds.push_back(id);
            }
        }
        ASSERT_FALSE(expected.empty());
        for (std::uint32_t page : allPages) {
            if (!dayPages.count(page))
                spare = page;
        }
        ASSERT_NE(spare, 0u);
        // The same rows by index as by a scan, for every day of the log.
        const jet::TableDefinition& table = yemek.table;
        const auto index = std::find_if(
            table.realIndexes.begin(), table.realIndexes.end(), [&](const jet::RealIndex& real) {
                return table.columnByNumber(real.columns[0].columnNumber)->name == u"YEMEKTARIH";
            });
        ASSERT_NE(index, table.realIndexes.end());
        for (const auto& [d, byScan] : byDay) {
            jet::Bytes key;
            jet::appendColumnKey(key, table.columns[tarih], true, Value::date(jet::Date{d}));
            std::multiset<std::uint64_t> byIndex;
            for (const jet::IndexEntry& e : jet::findIndexEntries(database.file(), *index, key))
                byIndex.insert(std::uint64_t{e.row.page} << 8 | e.row.row);
            ASSERT_EQ(byIndex, byScan) << "day " << d;
        }
        EXPECT_EQ(sql::execute(database, query).query.rows, expected);
    }
    // Damage the page: a row count no page can hold.
    std::vector<unsigned char> bytes = jet::testing::readFileBytes(copy.path());
    const std::size_t at =
        std::size_t{spare} * jet::format::kPageSize + jet::format::data::kRowCountOffset;
    bytes[at] = 0xff;
    bytes[at + 1] = 0xff;
    jet::testing::writeFileBytes(copy.path(), bytes);

    jet::Database database(copy.path());
    EXPECT_EQ(sql::execute(database, query).query.rows, expected);
    EXPECT_THROW(sql::execute(database, u"select* from yemek where gun=5"), jet::Error);
    // A row identity that names no live row of the table reads as none.
    const jet::TableDefinition table = database.table(u"YEMEK");
    Row values;
    EXPECT_THROW(jet::readRow(database.file(), table, jet::RowId{spare, 0}, values), jet::Error);
    EXPECT_FALSE(
        jet::readRow(database.file(), table, jet::RowId{expectedIds[0].page, 255}, values));
    EXPECT_FALSE(jet::readRow(database.file(), table, jet::RowId{table.page, 0}, values));
    EXPECT_FALSE(jet::readRow(database.file(), table, jet::RowId{1u << 23, 0}, values));
}

TEST(Sql, JetsqlPrintsRowsAndCounts) {
    SKIP_WITHOUT_MDBTOOLS();
    SKIP_WITHOUT_FIXTURES();
    SchoolCopy copy;
    using jet::testing::shellQuote;
    // jetsql's output for a statement on a file; a refusal sets `status`.
    auto jetsql = [](const std::string& file, const std::string& statement, int* status) {
        return jet::testing::runCommand(shellQuote(JETSQL_EXECUTABLE) + " " + shellQuote(file) +
                                            " " + shellQuote(statement) + " 2>/dev/null",
                                        status);
    };
    int tmp = 1, tally = 1, deletion = 1, update = 0, other = 1;
    EXPECT_EQ(jetsql(copy.path(), "select* from TMP", &tmp), mdbExport(copy.path(), "TMP"));
    const std::string counts = jetsql(copy.path(), jet::toUtf8(tallySql(5, u"Kahvaltı")), &tally);
    EXPECT_EQ(counts.substr(0, counts.find('\n')), "Saygunduzlu,gun,ay,gunduzlu,ogun");
    EXPECT_NE(counts.find(",5,11,1,\"Kahvaltı\"\n"), std::string::npos) << counts;
    const long menuBefore = exportedRows(mdbExport(copy.path(), "MENULER"));
    const std::string deleted = jetsql(copy.path(), "delete * from MENULER where ay=2", &deletion);
    EXPECT_EQ(deleted,
              std::to_string(menuBefore - exportedRows(mdbExport(copy.path(), "MENULER"))) + "\n");
    EXPECT_NE(deleted, "0\n");
    jetsql(copy.path(), "update ORNEK set Adi='x'", &update);
    EXPECT_NE(update, 0);
    // The roll-call program's file opens with its own password.
    const std::string roll = (fixturesDir() / "kvl" / "yurtsayim" / "kvl.mdb").string();
    EXPECT_EQ(jetsql(roll, "select* from Pansiyon", &other), mdbExport(roll, "Pansiyon"));
    EXPECT_EQ((std::vector<int>{tmp, tally, deletion, other}), (std::vector<int>{0, 0, 0, 0}));
}

}  // namespace
