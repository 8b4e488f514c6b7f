// Writing rows: what the engine writes must read back the same through our
// reader and through mdbtools, leave the rest of the file alone, and survive
// a crash at any write and a second writer on the same file.

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <functional>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/integrity_check.h"
#include "store/jet/journal.h"
#include "store/jet/row_decoder.h"
#include "store/jet/row_encoder.h"
#include "store/jet/table_writer.h"
#include "store/jet/text.h"
#include "store/jet/usage_map.h"
#include "tests/store/jet/test_files.h"
#include "tools/mdb_export_format.h"

namespace jet {
namespace {

using testing::runCommand;
using testing::shellQuote;

// A writable copy of a fixture in a temporary folder.
std::string copyFixture(const testing::TempDir& dir, const std::filesystem::path& relative) {
    const std::filesystem::path target = dir.path() / relative.filename();
    std::filesystem::copy_file(testing::fixturesDir() / relative, target);
    std::filesystem::permissions(target, std::filesystem::perms::owner_write,
                                 std::filesystem::perm_options::add);
    return target.string();
}

std::string ourCsv(const Database& database, std::u16string_view name) {
    const TableDefinition table = database.table(name);
    std::string out;
    appendMdbExportHeader(out, table);
    for (const auto& row : testing::readRows(database, name)) appendMdbExportRow(out, table, row);
    return out;
}

// mdbtools reads the same rows (in its own order where rows were moved).
void expectMdbExportAgrees(const std::string& file, std::u16string_view table) {
    if (std::string_view(MDB_EXPORT_EXECUTABLE).empty()) return;  // no mdbtools, as on Windows
    const Database database(file);
    const std::string theirs = runCommand(shellQuote(MDB_EXPORT_EXECUTABLE) + " " + shellQuote(file) + " " +
                                          shellQuote(toUtf8(table)) + " 2>/dev/null");
    EXPECT_EQ(testing::csvRecords(ourCsv(database, table)), testing::csvRecords(theirs)) << toUtf8(table);
}

std::vector<Value> permit(int number, std::u16string surname) {
    return {Value::real(10000000000.0 + number), Value::text(u"Gülşen"), Value::text(std::move(surname)),
            Value::text(u"10A"), Value::integer(number), Value::text(u"K"), Value(),
            Value::integer(11), Value::integer(2026), Value()};
}

TEST(RowEncoder, EveryFixtureRowEncodesBackToItsValues) {
    SKIP_WITHOUT_FIXTURES();
    int rowsChecked = 0;
    for (const auto& file : testing::fixtureDatabases()) {
        const Database database(file.string());
        for (const CatalogEntry& entry : database.catalog()) {
            if (!entry.isTable()) continue;
            const TableDefinition table = database.table(entry.name);
            TableCursor cursor = database.scan(table);
            std::vector<Value> values;
            std::vector<Value> again;
            while (cursor.next()) {
                cursor.values(values);
                // Long values kept inline, so that the row alone holds everything.
                const auto inlineStore = [](const Column&, const Bytes& stored) {
                    const auto length = static_cast<std::uint32_t>(stored.size()) | 0x80000000u;
                    Bytes field;
                    field.reserve(12 + stored.size());
                    for (int i = 0; i < 4; ++i) field.push_back(static_cast<std::uint8_t>(length >> (8 * i)));
                    field.resize(12, 0);
                    field.insert(field.end(), stored.begin(), stored.end());
                    return field;
                };
                Bytes row;
                try {
                    row = encodeRow(table, values, inlineStore);
                } catch (const Error& error) {
                    // Only a long value kept inline may overflow the page here, and
                    // columns of kinds the engine does not know are not written.
                    const std::string message = error.what();
                    EXPECT_TRUE(message.find("does not fit") != std::string::npos ||
                                message.find("(type ") != std::string::npos)
                        << message;
                    continue;
                }
                decodeRow(database.file(), table, ByteView(row.data(), row.size()), again);
                ASSERT_EQ(again, values) << file << " " << toUtf8(entry.name);
                ++rowsChecked;
            }
        }
    }
    EXPECT_GT(rowsChecked, 10000);
}

TEST(RowEncoder, RefusesValuesTheColumnCannotHold) {
    SKIP_WITHOUT_FIXTURES();
    const Database database((testing::fixturesDir() / "kvl" / "kvl.mdb").string());
    const TableDefinition permits = database.table(u"IZINLER");
    const auto store = [](const Column&, const Bytes& b) { return b; };
    std::vector<Value> row = permit(1, u"Ak");
    row[7] = Value::integer(40000);  // ay is an Integer
    EXPECT_THROW(encodeRow(permits, row, store), Error);
    row = permit(1, std::u16string(256, u'a'));  // Soyadi holds 255 characters
    EXPECT_THROW(encodeRow(permits, row, store), Error);
    row = permit(1, u"Ak");
    row[4] = Value::text(u"12");  // Numara is a number
    EXPECT_THROW(encodeRow(permits, row, store), Error);
    row.pop_back();
    EXPECT_THROW(encodeRow(permits, row, store), Error);
}

TEST(TableWriter, InsertUpdateDeleteReadBackThroughBothReaders) {
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string file = copyFixture(dir, "kvl/kvl.mdb");
    const std::string ornekBefore = runCommand(shellQuote(MDB_EXPORT_EXECUTABLE) + " " + shellQuote(file) + " ORNEK");
    std::vector<std::vector<Value>> expected;
    {
        Database database(file, PageFile::Mode::ReadWrite);
        expected = testing::readRows(database, u"IZINLER");
        std::vector<std::vector<Value>> added;
        for (int i = 0; i < 400; ++i) added.push_back(permit(5000 + i, u"Işıkçı-" + fromUtf8(std::to_string(i))));
        const std::vector<RowId> ids = database.insertRows(u"IZINLER", added);
        const std::size_t first = expected.size();  // expected[first + k] is row ids[k]
        expected.insert(expected.end(), added.begin(), added.end());
        // Grown past its page: the row moves and keeps its place.
        std::vector<Value> grown = permit(5000, std::u16string(250, u'Ş'));
        grown[9] = Value::text(std::u16string(255, u'ü'));
        database.updateRow(u"IZINLER", ids[0], grown);
        expected[first] = grown;
        // Shrunk in place.
        database.updateRow(u"IZINLER", ids[5], permit(5005, u"O'Neil"));
        expected[first + 5] = permit(5005, u"O'Neil");
        database.deleteRows(u"IZINLER", {ids[1], ids[399]});
        expected.erase(expected.begin() + static_cast<long>(first + 399));
        expected.erase(expected.begin() + static_cast<long>(first + 1));
    }
    const Database reopened(file);
    EXPECT_EQ(testing::readRows(reopened, u"IZINLER"), expected);
    EXPECT_EQ(reopened.table(u"IZINLER").rowCount, expected.size());
    EXPECT_EQ(checkIntegrity(reopened.file()), std::vector<std::string>{});
    expectMdbExportAgrees(file, u"IZINLER");
    EXPECT_EQ(runCommand(shellQuote(MDB_EXPORT_EXECUTABLE) + " " + shellQuote(file) + " ORNEK"), ornekBefore);
    EXPECT_FALSE(std::filesystem::exists(RollbackJournal::journalPath(file)));
}

// The menu format depends on stored order: a month deleted and inserted
// again comes back at the end, in the order inserted.
TEST(TableWriter, RowsReinsertedComeLastInInsertionOrder) {
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string file = copyFixture(dir, "kvl/kvl.mdb");
    Database database(file, PageFile::Mode::ReadWrite);
    const TableDefinition menus = database.table(u"MENULER");
    std::vector<RowId> november;
    std::vector<std::vector<Value>> others;
    {
        TableCursor cursor = database.scan(menus);
        std::vector<Value> values;
        while (cursor.next()) {
            cursor.values(values);
            if (values[0] == Value::integer(11)) {
                november.push_back(cursor.rowId());
            } else {
                others.push_back(values);
            }
        }
    }
    ASSERT_FALSE(november.empty());
    database.deleteRows(u"MENULER", november);
    std::vector<std::vector<Value>> month;
    for (int day = 1; day <= 30; ++day) {
        for (const char16_t* line : {u"Çorba", u"Pilav", u"Ayran", u"Meyve"}) {
            month.push_back({Value::integer(11), Value::integer(day), Value::text(line),
                             Value::text(u"Öğle"), Value::text(u"Akşam"), Value()});
        }
    }
    database.insertRows(u"MENULER", month);
    std::vector<std::vector<Value>> expected = others;
    expected.insert(expected.end(), month.begin(), month.end());
    EXPECT_EQ(testing::readRows(Database(file), u"MENULER"), expected);
    expectMdbExportAgrees(file, u"MENULER");
}

TEST(TableWriter, MemoValuesInlineOnOnePageAndChained) {
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string file = copyFixture(dir, "access/fixedNumericTestV2000.mdb");
    const auto memoRow = [](std::u16string text) {
        return std::vector<Value>{Value::text(std::move(text)), Value(), Value(), Value(),
                                  Value(),  Value(), Value()};
    };
    std::u16string lines;
    for (int i = 0; i < 900; ++i) lines += u"Mercimek çorbası, pilav\r\n";  // about 22,000 bytes
    Database database(file, PageFile::Mode::ReadWrite);
    const std::vector<RowId> ids = database.insertRows(
        u"test", {memoRow(u"kısa"), memoRow(std::u16string(1500, u'a')), memoRow(lines),
                  memoRow(std::u16string(3000, u'ğ'))});
    std::vector<std::vector<Value>> rows = testing::readRows(database, u"test");
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[1][0], Value::text(u"kısa"));
    EXPECT_EQ(rows[2][0], Value::text(std::u16string(1500, u'a')));
    EXPECT_EQ(rows[3][0], Value::text(lines));
    EXPECT_EQ(rows[4][0], Value::text(std::u16string(3000, u'ğ')));
    expectMdbExportAgrees(file, u"test");

    // Replacing and deleting long values; the pages of the chain go back to
    // the free pages, and a longer chain takes them again.
    const std::size_t freeBefore = readFreePages(database.file()).size();
    database.updateRow(u"test", ids[2], memoRow(u"yeni"));
    EXPECT_GE(readFreePages(database.file()).size(), freeBefore + 5);
    database.updateRow(u"test", ids[0], memoRow(lines + lines));
    EXPECT_LE(readFreePages(database.file()).size(), freeBefore);
    database.deleteRows(u"test", {ids[3]});
    EXPECT_GE(readFreePages(database.file()).size(), freeBefore + 1);
    EXPECT_EQ(checkIntegrity(database.file()), std::vector<std::string>{});
    rows = testing::readRows(Database(file), u"test");
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[1][0], Value::text(lines + lines));
    EXPECT_EQ(rows[3][0], Value::text(u"yeni"));
    expectMdbExportAgrees(file, u"test");
}

TEST(TableWriter, RefusalsLeaveTheFileUnchanged) {
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string file = copyFixture(dir, "kvl/kvl.mdb");
    const std::vector<unsigned char> before = testing::readFileBytes(file);
    Database database(file, PageFile::Mode::ReadWrite);
    // A surname in Greek letters cannot be keyed in the Soyadi index.
    std::vector<Value> student(21);
    student[3] = Value::text(u"Παπαδόπουλος");
    EXPECT_THROW(database.insertRows(u"ORNEK", {std::vector<Value>(21), student}), Error);
    // The second row is bad: the first is not written either.
    std::vector<Value> bad = permit(2, u"Ak");
    bad[8] = Value::text(u"2026");
    EXPECT_THROW(database.insertRows(u"IZINLER", {permit(1, u"Ak"), bad}), Error);
    EXPECT_THROW(database.insertRows(u"NOSUCH", {permit(1, u"Ak")}), Error);
    EXPECT_TRUE(testing::readFileBytes(file) == before);
}

#ifndef NO_FORK
// A child process runs `work`, one write statement, and is killed before its
// n-th write, for every n until the statement completes. Each time the file
// must read, through a copy that had it open, and open, pass the integrity
// check, and hold all of the statement or none of it, as `outcome` tells: 0
// none, 1 all, anything else a part.
void crashAtEveryWrite(const std::string& original, const std::string& file,
                       const std::function<void(Database&)>& work,
                       const std::function<int(const Database&)>& outcome) {
    int crashes = 0;
    for (long writes = 0;; ++writes) {
        std::filesystem::copy_file(original, file, std::filesystem::copy_options::overwrite_existing);
        // Another copy, open before the crash: its first read undoes what
        // the dead writer left half done.
        const Database watcher(file, PageFile::Mode::ReadWrite);
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            Database database(file, PageFile::Mode::ReadWrite);
            setCrashAfterWrites(writes);
            work(database);
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        const bool killed = WIFSIGNALED(status);
        ASSERT_TRUE(killed || (WIFEXITED(status) && WEXITSTATUS(status) == 0));
        EXPECT_EQ(outcome(watcher), killed ? 0 : 1) << "read after " << writes << " writes";
        {
            // Opening for writing rolls back what the dead writer left.
            const Database recovered(file, PageFile::Mode::ReadWrite);
            EXPECT_FALSE(std::filesystem::exists(RollbackJournal::journalPath(file)));
            EXPECT_EQ(checkIntegrity(recovered.file()), std::vector<std::string>{})
                << "after " << writes << " writes";
            EXPECT_EQ(outcome(recovered), killed ? 0 : 1) << "after " << writes << " writes";
        }
        if (!killed) break;
        ++crashes;
        ASSERT_LT(writes, 2000) << "the workload never completes";
    }
    EXPECT_GT(crashes, 10) << "too few writes to test";
}

#endif

TEST(CrashSafety, LongValuesInsertedAllOrNothing) {
#ifdef NO_FORK
    SKIP_WITHOUT_FORK();
#else
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string original = copyFixture(dir, "access/fixedNumericTestV2000.mdb");
    std::u16string memo;
    for (int i = 0; i < 400; ++i) memo += u"Kuru fasulye, pilav, turşu\n";
    const std::size_t before = testing::readRows(Database(original), u"test").size();
    crashAtEveryWrite(
        original, (dir.path() / "work.mdb").string(),
        [&](Database& database) {
            std::vector<std::vector<Value>> rows;
            for (int i = 0; i < 60; ++i) {
                rows.push_back({Value::text(i % 3 == 0 ? memo : u"satır " + fromUtf8(std::to_string(i))),
                                Value(), Value(), Value(), Value(), Value(), Value()});
            }
            database.insertRows(u"test", rows);
        },
        [&](const Database& database) {
            const std::size_t rows = testing::readRows(database, u"test").size();
            EXPECT_EQ(database.table(u"test").rowCount, rows);
            return rows == before ? 0 : rows == before + 60 ? 1 : -1;
        });
#endif
}

// The meal log's primary key and date index split pages as rows arrive.
TEST(CrashSafety, IndexedRowsInsertedAllOrNothing) {
#ifdef NO_FORK
    SKIP_WITHOUT_FORK();
#else
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string original = copyFixture(dir, "kvl/kvl.mdb");
    const std::size_t before = testing::readRows(Database(original), u"YEMEK").size();
    crashAtEveryWrite(
        original, (dir.path() / "work.mdb").string(),
        [&](Database& database) {
            std::vector<std::vector<Value>> rows;
            for (int i = 0; i < 700; ++i) {
                rows.push_back({Value(), Value::integer(1 + i % 28), Value::integer(12),
                                Value::text(u"2026"), Value::date(Date{46357.0 + i % 28}),
                                Value::text(u"12:10:00"), Value::text(u"Öğle yemeği"),
                                Value::integer(1), Value(), Value::text(u"10A"),
                                Value::integer(100 + i), Value::text(u"Şükrü"), Value::text(u"Işık")});
            }
            database.insertRows(u"YEMEK", rows);
        },
        [&](const Database& database) {
            const std::size_t rows = testing::readRows(database, u"YEMEK").size();
            return rows == before ? 0 : rows == before + 700 ? 1 : -1;
        });
#endif
}

TEST(CrashSafety, CreateTableAllOrNothing) {
#ifdef NO_FORK
    SKIP_WITHOUT_FORK();
#else
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string original = copyFixture(dir, "kvl/kvl.mdb");
    const std::size_t tablesBefore = Database(original).userTableNames().size();
    crashAtEveryWrite(
        original, (dir.path() / "work.mdb").string(),
        [](Database& database) {
            database.createTable(
                u"CREATE TABLE TMPMENU (TARIH DATETIME, GUN CHAR, SABAH MEMO, OGLE MEMO, AKSAM "
                u"MEMO, ARA_OGUN MEMO, CONSTRAINT MyTableConstraint UNIQUE (TARIH, GUN, SABAH, "
                u"OGLE, AKSAM, ARA_OGUN));");
        },
        [&](const Database& database) {
            const std::size_t tables = database.userTableNames().size();
            return tables == tablesBefore ? 0 : tables == tablesBefore + 1 ? 1 : -1;
        });
#endif
}

// A write scope: hundreds of statements (deletes, inserts, and one that the
// engine refuses) made durable together. The refused one is undone alone;
// a crash anywhere leaves all of the scope or nothing of it.
TEST(CrashSafety, WriteScopeAllOrNothing) {
#ifdef NO_FORK
    SKIP_WITHOUT_FORK();
#else
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string original = copyFixture(dir, "kvl/kvl.mdb");
    std::vector<RowId> permits;
    std::size_t before = 0;
    {
        const Database database(original);
        const TableDefinition table = database.table(u"IZINLER");
        TableCursor cursor = database.scan(table);
        while (cursor.next()) {
            if (permits.size() < 300) permits.push_back(cursor.rowId());
            ++before;
        }
    }
    ASSERT_EQ(permits.size(), 300u);
    const auto work = [&](Database& database) {
        const Database::WriteScope scope(database);
        for (const RowId row : permits) database.deleteRows(u"IZINLER", {row});
        // Deleted already: refused, and nothing of it stays.
        EXPECT_THROW(database.deleteRows(u"IZINLER", {permits[0]}), Error);
        database.insertRows(u"IZINLER", {permit(1, u"Kapsam"), permit(2, u"Kapsam")});
    };
    crashAtEveryWrite(original, (dir.path() / "work.mdb").string(), work,
                      [&](const Database& database) {
                          const std::size_t rows = testing::readRows(database, u"IZINLER").size();
                          EXPECT_EQ(database.table(u"IZINLER").rowCount, rows);
                          return rows == before ? 0 : rows == before - 300 + 2 ? 1 : -1;
                      });
    expectMdbExportAgrees((dir.path() / "work.mdb").string(), u"IZINLER");
#endif
}

// Pages given back and taken again in one statement: the boarders replaced
// whole, their data and index pages going to the free pages and out again.
TEST(CrashSafety, FreedPagesTakenAgainAllOrNothing) {
#ifdef NO_FORK
    SKIP_WITHOUT_FORK();
#else
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string original = copyFixture(dir, "kvl/kvl.mdb");
    const std::vector<std::vector<Value>> boarders =
        testing::readRows(Database(original), u"Pansiyon");
    std::vector<std::vector<Value>> replaced = boarders;
    for (auto& row : replaced) row[2] = Value::text(u"Yılmaz");
    const std::string file = (dir.path() / "work.mdb").string();
    crashAtEveryWrite(
        original, file,
        [&](Database& database) {
            database.write([&](WriteStatement& statement) {
                const TableDefinition table = findTable(statement, u"Pansiyon");
                std::vector<RowId> ids;
                TableCursor cursor(statement, table);
                while (cursor.next()) ids.push_back(cursor.rowId());
                TableWriter writer(statement, table);
                for (const RowId id : ids) writer.remove(id);
                for (const auto& row : replaced) writer.insert(row);
            });
        },
        [&](const Database& database) {
            const auto rows = testing::readRows(database, u"Pansiyon");
            return rows == boarders ? 0 : rows == replaced ? 1 : -1;
        });
    EXPECT_EQ(std::filesystem::file_size(file), std::filesystem::file_size(original));
#endif
}

// Two processes insert into one file at the same time; every row of both arrives.
TEST(Sharing, TwoWritersLoseNothing) {
#ifdef NO_FORK
    SKIP_WITHOUT_FORK();
#else
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const std::string file = copyFixture(dir, "kvl/kvl.mdb");
    const std::size_t before = testing::readRows(Database(file), u"IZINLER").size();
    std::vector<pid_t> children;
    for (int writer = 0; writer < 2; ++writer) {
        const pid_t child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            Database database(file, PageFile::Mode::ReadWrite);
            for (int statement = 0; statement < 40; ++statement) {
                std::vector<std::vector<Value>> rows;
                for (int i = 0; i < 5; ++i) rows.push_back(permit(writer * 1000 + statement * 5 + i, u"Paylaşım"));
                database.insertRows(u"IZINLER", rows);
            }
            ::_exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    const Database database(file);
    std::set<std::int32_t> numbers;
    for (const auto& row : testing::readRows(database, u"IZINLER")) {
        if (row[2] == Value::text(u"Paylaşım")) numbers.insert(row[4].asInteger());
    }
    EXPECT_EQ(numbers.size(), 400u);
    EXPECT_EQ(database.table(u"IZINLER").rowCount, before + 400);
    expectMdbExportAgrees(file, u"IZINLER");
#endif
}

}  // namespace
}  // namespace jet
