// CREATE TABLE: the parser, and tables made in new and existing databases as
// our reader and mdbtools see them.

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/create_table.h"
#include "store/jet/database.h"
#include "store/jet/error.h"
#include "store/jet/format.h"
#include "store/jet/index_page.h"
#include "store/jet/integrity_check.h"
#include "store/jet/text.h"
#include "tests/store/jet/test_files.h"
#include "tools/mdb_export_format.h"

namespace jet {
namespace {

using testing::runCommand;
using testing::shellQuote;

const std::u16string kTmpMenu =
    u"CREATE TABLE TMPMENU (TARIH DATETIME, GUN CHAR, SABAH MEMO, OGLE MEMO, AKSAM MEMO, "
    u"ARA_OGUN MEMO, CONSTRAINT MyTableConstraint UNIQUE (TARIH, GUN, SABAH, OGLE, AKSAM, "
    u"ARA_OGUN));";

bool haveMdbTools() {
    return std::filesystem::exists(MDB_EXPORT_EXECUTABLE);
}

std::string mdbTool(const std::string& tool, const std::string& arguments) {
    const auto path = std::filesystem::path(MDB_EXPORT_EXECUTABLE).parent_path() / tool;
    int status = 0;
    std::string out =
        runCommand(shellQuote(path.string()) + " " + arguments + " 2>/dev/null", &status);
    EXPECT_EQ(status, 0) << tool << " " << arguments;
    return out;
}

std::string errorOf(const std::u16string& sql) {
    try {
        parseCreateTable(sql);
    } catch (const Error& error) {
        return error.what();
    }
    return "";
}

TEST(CreateTable, ParsesJetTypesConstraintsAndNames) {
    const NewTable table = parseCreateTable(
        u"create table [Tüm Türler] (a TEXT(20), b text, c CHAR, d char(3), e VarChar(7), f MEMO, "
        u"g LONG, h INTEGER, i SHORT, j SMALLINT, k BYTE, l DOUBLE, m SINGLE, n REAL, o CURRENCY, "
        u"p DATETIME, q YESNO, r BIT, s COUNTER PRIMARY KEY, t AUTOINCREMENT, [yıl] LONG UNIQUE, "
        u"u TEXT(5) WITH COMPRESSION NULL, CONSTRAINT ab UNIQUE ([a], B), UNIQUE (c))");
    EXPECT_EQ(table.name, u"Tüm Türler");
    using T = ColumnType;
    struct Expected {
        const char16_t* name;
        T type;
        std::uint16_t length;
        bool fixed;
        bool autoNumber;
    };
    const std::vector<Expected> expected = {
        {u"a", T::Text, 20, false, false},         {u"b", T::Text, 255, false, false},
        {u"c", T::Text, 255, true, false},         {u"d", T::Text, 3, true, false},
        {u"e", T::Text, 7, false, false},          {u"f", T::Memo, 0, false, false},
        {u"g", T::LongInteger, 0, false, false},   {u"h", T::LongInteger, 0, false, false},
        {u"i", T::Integer, 0, false, false},       {u"j", T::Integer, 0, false, false},
        {u"k", T::Byte, 0, false, false},          {u"l", T::Double, 0, false, false},
        {u"m", T::Single, 0, false, false},        {u"n", T::Single, 0, false, false},
        {u"o", T::Currency, 0, false, false},      {u"p", T::DateTime, 0, false, false},
        {u"q", T::Boolean, 0, false, false},       {u"r", T::Boolean, 0, false, false},
        {u"s", T::LongInteger, 0, false, true},    {u"t", T::LongInteger, 0, false, true},
        {u"yıl", T::LongInteger, 0, false, false}, {u"u", T::Text, 5, false, false},
    };
    ASSERT_EQ(table.columns.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(toUtf8(expected[i].name));
        EXPECT_EQ(table.columns[i].name, expected[i].name);
        EXPECT_EQ(table.columns[i].type, expected[i].type);
        if (expected[i].length != 0) {
            EXPECT_EQ(table.columns[i].length, expected[i].length);
        }
        EXPECT_EQ(table.columns[i].fixedLength, expected[i].fixed);
        EXPECT_EQ(table.columns[i].autoNumber, expected[i].autoNumber);
    }
    EXPECT_TRUE(table.columns.back().compressedUnicode);
    ASSERT_EQ(table.indexes.size(), 4u);
    EXPECT_EQ(table.indexes[0].name, u"PrimaryKey");
    EXPECT_TRUE(table.indexes[0].primaryKey);
    EXPECT_EQ(table.indexes[1].name, u"yıl");
    EXPECT_TRUE(table.indexes[1].unique);
    EXPECT_EQ(table.indexes[2].name, u"ab");
    EXPECT_EQ(table.indexes[2].columns, (std::vector<std::u16string>{u"a", u"B"}));
    EXPECT_EQ(table.indexes[3].name, u"c");

    // The layout: fixed columns packed in order, Booleans in the null mask.
    const TableDefinition layout = layOutTable(table);
    EXPECT_EQ(layout.columns[2].fixedOffset, 0);  // c: CHAR, 255 characters
    EXPECT_EQ(layout.columns[2].length, 510);
    EXPECT_EQ(layout.columns[3].fixedOffset, 510);
    EXPECT_EQ(layout.columns[6].fixedOffset, 516);  // g after d's 6 bytes
    EXPECT_EQ(layout.columns[16].flags & format::kColumnFixed, format::kColumnFixed);
    EXPECT_EQ(layout.realIndexes[0].flags,
              format::kIndexAccessFlag | format::kIndexUnique | format::kIndexRequired);
    EXPECT_EQ(layout.realIndexes[2].columns.size(), 2u);
    EXPECT_EQ(layout.realIndexes[2].columns[1].columnNumber, 1);

    // Errors name what was not understood.
    EXPECT_NE(errorOf(u"CREATE TABLE t (a LUNG)").find("\"LUNG\""), std::string::npos);
    EXPECT_NE(errorOf(u"CREATE TABEL t (a LONG)").find("\"TABEL\""), std::string::npos);
    EXPECT_NE(errorOf(u"CREATE TABLE t (a LONG").find("end of the statement"), std::string::npos);
    EXPECT_NE(errorOf(u"CREATE TABLE t (a LONG) x").find("\"x\""), std::string::npos);
    EXPECT_NE(errorOf(u"CREATE TABLE t (a LONG NOT NULL)").find("NOT NULL"), std::string::npos);
    EXPECT_THROW(layOutTable(parseCreateTable(u"CREATE TABLE t (a LONG, A TEXT)")), Error);
    EXPECT_THROW(layOutTable(parseCreateTable(u"CREATE TABLE t (a TEXT(256))")), Error);
    EXPECT_THROW(layOutTable(parseCreateTable(u"CREATE TABLE t (a LONG, UNIQUE (b))")), Error);
    EXPECT_THROW(
        layOutTable(parseCreateTable(u"CREATE TABLE t (a LONG PRIMARY KEY, PRIMARY KEY (a))")),
        Error);
}

// The catalog's indexes must hold every catalog row after a table was made.
void expectCatalogIndexed(const Database& database) {
    const TableDefinition objects = database.table(u"MSysObjects");
    const std::size_t rows = database.catalog().size();
    for (const RealIndex& index : objects.realIndexes) {
        EXPECT_EQ(readIndexEntries(database.file(), index).size(), rows);
    }
}

std::string dumpWithOurReader(const Database& database, const std::u16string& name) {
    const TableDefinition table = database.table(name);
    std::string csv;
    appendMdbExportHeader(csv, table);
    TableCursor cursor = database.scan(table);
    std::vector<Value> values;
    while (cursor.next()) {
        cursor.values(values);
        appendMdbExportRow(csv, table, values);
    }
    return csv;
}

TEST(CreateTable, EveryTypeHoldsRowsThatMdbToolsReads) {
    testing::TempDir dir;
    const std::string path = (dir.path() / "types.mdb").string();
    Database::create(path, {u"HtRvZpQsD2019", 0, std::nullopt});
    Database database(path, PageFile::Mode::ReadWrite);
    database.createTable(
        u"CREATE TABLE Types (id COUNTER, t TEXT(10), v VARCHAR(40), m MEMO, l LONG, i INTEGER, "
        u"s SHORT, b BYTE, d DOUBLE, f SINGLE, c CURRENCY, dt DATETIME, yn YESNO, [yıl] LONG)");
    expectCatalogIndexed(database);
    EXPECT_EQ(database.userTableNames(), std::vector<std::u16string>{u"Types"});

    const Date date = Date::fromCivil({2025, 11, 3, 12, 31, 5});
    const std::u16string longMemo(3000, u'ş');
    database.insertRows(
        u"Types",
        {{Value(), Value::text(u"Ayşe"), Value::text(u"O'Neil \"x\""), Value::text(longMemo),
          Value::integer(-7), Value::integer(123456), Value::integer(-32768), Value::integer(255),
          Value::real(2.5), Value::real(0.25), Value::currency({123450}), Value::date(date),
          Value::boolean(true), Value::integer(2026)},
         {Value(), Value(), Value(), Value(), Value(), Value(), Value(), Value(), Value(), Value(),
          Value(), Value(), Value::boolean(false), Value()}});
    const std::string ours = dumpWithOurReader(database, u"Types");
    EXPECT_NE(ours.find("1,\"Ayşe\",\"O'Neil \"\"x\"\"\""), std::string::npos) << ours;
    EXPECT_NE(ours.find("2,,,,"), std::string::npos) << ours;
    if (haveMdbTools()) {
        EXPECT_EQ(mdbTool("mdb-export", shellQuote(path) + " Types"), ours);
        EXPECT_EQ(runCommand(shellQuote(JETDUMP_EXECUTABLE) + " " + shellQuote(path) + " Types"),
                  ours);
    }
}

TEST(CreateTable, TmpMenuAndDuplicates) {
    testing::TempDir dir;
    const std::string path = (dir.path() / "menu.mdb").string();
    Database::create(path, {});
    {
        Database database(path, PageFile::Mode::ReadWrite);
        database.createTable(kTmpMenu);
        expectCatalogIndexed(database);
        const TableDefinition table = database.table(u"TMPMENU");
        ASSERT_EQ(table.columns.size(), 6u);
        EXPECT_TRUE(table.columns[1].isFixed());
        EXPECT_EQ(table.columns[1].length, 510);
        ASSERT_EQ(table.indexes.size(), 1u);
        EXPECT_EQ(table.indexes[0].name, u"MyTableConstraint");
        EXPECT_TRUE(table.realIndexes[0].isUnique());
        EXPECT_EQ(table.realIndexes[0].columns.size(), 6u);
        EXPECT_TRUE(readIndexEntries(database.file(), table.realIndexes[0]).empty());
    }
    const auto before = testing::readFileBytes(path);
    Database database(path, PageFile::Mode::ReadWrite);
    for (const std::u16string& sql : {kTmpMenu, std::u16string(u"create table [tmpmenu] (x long)"),
                                      std::u16string(u"CREATE TABLE msysobjects (x LONG)"),
                                      std::u16string(u"CREATE TABLE x (a LONG, a LONG)"),
                                      std::u16string(u"CREATE TABLE y (a LONG")}) {
        EXPECT_THROW(database.createTable(sql), Error) << toUtf8(sql);
    }
    try {
        database.createTable(u"create table tmpMenu (x long)");
        ADD_FAILURE() << "a second TMPMENU was made";
    } catch (const Error& error) {
        EXPECT_NE(std::string(error.what()).find("TMPMENU exists"), std::string::npos)
            << error.what();
    }
    EXPECT_EQ(testing::readFileBytes(path), before);
    if (haveMdbTools()) {
        const std::string schema =
            mdbTool("mdb-schema", "--indexes " + shellQuote(path) + " postgres");
        EXPECT_NE(
            schema.find("CREATE UNIQUE INDEX \"tmpmenu_mytableconstraint_idx\" ON \"tmpmenu\" "
                        "(\"tarih\", \"gun\", \"sabah\", \"ogle\", \"aksam\", \"ara_ogun\")"),
            std::string::npos)
            << schema;
    }
}

// A table made in a database another engine wrote: the new table appears
// with its columns and index, and the old tables read as before.
TEST(CreateTable, IntoFilesOfAccessAndTheKvlDatabase) {
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    for (const char* name : {"access/blankAccess2000.mdb", "kvl/kvl.mdb"}) {
        SCOPED_TRACE(name);
        const auto path = dir.path() / std::filesystem::path(name).filename();
        std::filesystem::copy_file(testing::fixturesDir() / name, path);
        std::filesystem::permissions(path, std::filesystem::perms::owner_write,
                                     std::filesystem::perm_options::add);
        const std::string quoted = shellQuote(path.string());
        const std::string tablesBefore =
            haveMdbTools() ? mdbTool("mdb-tables", "-1 " + quoted) : "";
        const std::string tmpBefore =
            haveMdbTools() && tablesBefore.find("TMP\n") != std::string::npos
                ? mdbTool("mdb-export", quoted + " TMP")
                : "";
        {
            Database database(path.string(), PageFile::Mode::ReadWrite);
            database.createTable(kTmpMenu);
            database.createTable(
                u"CREATE TABLE Yoklama (No LONG, Ad TEXT(50), [yıl] SHORT, CONSTRAINT pk PRIMARY "
                u"KEY (No))");
            expectCatalogIndexed(database);
            database.insertRows(u"Yoklama",
                                {{Value::integer(1), Value::text(u"Işıl"), Value::integer(2026)}});
        }
        if (!haveMdbTools())
            continue;
        EXPECT_EQ(mdbTool("mdb-tables", "-1 " + quoted), tablesBefore + "TMPMENU\nYoklama\n");
        const std::string schema = mdbTool("mdb-schema", "--indexes " + quoted + " postgres");
        EXPECT_NE(schema.find("\"ara_ogun\"\t\t\tTEXT"), std::string::npos) << schema;
        EXPECT_NE(schema.find("CREATE UNIQUE INDEX \"tmpmenu_mytableconstraint_idx\""),
                  std::string::npos);
        EXPECT_NE(
            schema.find(
                "ALTER TABLE \"yoklama\" ADD CONSTRAINT \"yoklama_pkey\" PRIMARY KEY (\"no\")"),
            std::string::npos)
            << schema;
        EXPECT_EQ(mdbTool("mdb-export", quoted + " Yoklama"), "No,Ad,yıl\n1,\"Işıl\",2026\n");
        if (!tmpBefore.empty()) {
            EXPECT_EQ(mdbTool("mdb-export", quoted + " TMP"), tmpBefore);
        }
    }
}

// The month menu print empties TMPMENU and fills it with one row a day:
// weekday names in the fixed GUN column, meals as lines joined by CR LF.
TEST(CreateTable, TmpMenuFilledAndRefilledMonthByMonth) {
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string path = (dir.path() / "kvl.mdb").string();
    std::filesystem::copy_file(testing::fixturesDir() / "kvl" / "kvl.mdb", path);
    const std::u16string weekdays[] = {u"Pazar", u"Pazartesi", u"Salı", u"Çarşamba",
                                       u"Perşembe", u"Cuma", u"Cumartesi"};
    const auto month = [&](int first, int days) {
        std::vector<std::vector<Value>> rows;
        for (int day = 0; day < days; ++day) {
            const double date = 46000 + first + day;
            const std::u16string n = fromUtf8(std::to_string(day + 1));
            rows.push_back({Value::date(Date{date}),
                            Value::text(weekdays[(static_cast<int>(date) + 6) % 7]),
                            Value::text(u"PEYNİR\r\nZEYTİN\r\nÇAY " + n),
                            Value::text(u"MERCİMEK ÇORBASI\r\nTAVUK SOTE\r\nPİRİNÇ PİLAVI\r\nAYRAN"),
                            Value::text(u"\r\nIZGARA KÖFTE\r\nŞEHRİYE " + n),
                            day % 3 == 0 ? Value() : Value::text(u"KEK,SÜT")});
        }
        return rows;
    };
    std::vector<std::vector<Value>> last;
    {
        Database database(path, PageFile::Mode::ReadWrite);
        database.createTable(kTmpMenu);
        for (int print = 0; print < 12; ++print) {
            std::vector<RowId> old;
            const TableDefinition menu = database.table(u"TMPMENU");
            TableCursor cursor = database.scan(menu);
            while (cursor.next()) old.push_back(cursor.rowId());
            database.deleteRows(u"TMPMENU", old);
            // The last fill is a long one: a few hundred rows at once.
            last = month(print * 31, print == 11 ? 300 : 28 + print % 4);
            database.insertRows(u"TMPMENU", last);
        }
        // The unique constraint holds over all six columns.
        EXPECT_THROW(database.insertRows(u"TMPMENU", {last[3]}), Error);
    }
    const Database database(path);
    EXPECT_EQ(checkIntegrity(database.file()), std::vector<std::string>{});
    const TableDefinition table = database.table(u"TMPMENU");
    TableCursor cursor = database.scan(table);
    std::vector<Value> values;
    std::string ours;
    appendMdbExportHeader(ours, table);
    for (const auto& row : last) {
        ASSERT_TRUE(cursor.next());
        cursor.values(values);
        // CHAR keeps its full 255 characters, padded with spaces.
        std::u16string padded = row[1].asText();
        padded.resize(255, u' ');
        EXPECT_EQ(values[1], Value::text(padded));
        EXPECT_EQ(values[0], row[0]);
        EXPECT_EQ(values[2], row[2]);
        EXPECT_EQ(values[5], row[5]);
        appendMdbExportRow(ours, table, values);
    }
    EXPECT_FALSE(cursor.next());
    if (haveMdbTools()) {
        EXPECT_EQ(mdbTool("mdb-export", shellQuote(path) + " TMPMENU"), ours);
    }
}

}  // namespace
}  // namespace jet
