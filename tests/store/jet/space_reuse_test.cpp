// Reusing space: the writes the program repeats month after month leave the
// file about as large as their first round did, and every table still scans
// in the order its rows were written, for our reader and for mdbtools.

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/data_page.h"
#include "store/jet/database.h"
#include "store/jet/integrity_check.h"
#include "store/jet/table_writer.h"
#include "store/jet/text.h"
#include "store/jet/usage_map.h"
#include "store/sql/executor.h"
#include "tests/store/jet/test_files.h"
#include "tools/mdb_export_format.h"

namespace jet {
namespace {

using testing::runCommand;
using testing::shellQuote;
using Rows = std::vector<std::vector<Value>>;

// How much larger than after its first round a workload may leave the file.
constexpr double kAllowedGrowth = 1.10;

constexpr std::u16string_view kTmpMenu =
    u"CREATE TABLE TMPMENU (TARIH DATETIME, GUN CHAR, SABAH MEMO, OGLE MEMO, AKSAM MEMO, "
    u"ARA_OGUN MEMO, CONSTRAINT MyTableConstraint UNIQUE (TARIH, GUN, SABAH, OGLE, AKSAM, "
    u"ARA_OGUN));";

std::u16string number(int n) { return fromUtf8(std::to_string(n)); }

class SpaceReuse : public ::testing::Test {
protected:
    void SetUp() override {
        SKIP_WITHOUT_FIXTURES();
        useCopyOf("kvl/kvl.mdb");
    }

    void useCopyOf(const std::filesystem::path& fixture) {
        path_ = (dir_.path() / fixture.filename()).string();
        std::filesystem::copy_file(testing::fixturesDir() / fixture, path_);
        std::filesystem::permissions(path_, std::filesystem::perms::owner_write,
                                     std::filesystem::perm_options::add);
    }

    std::uintmax_t fileSize() const { return std::filesystem::file_size(path_); }

    // The table scans as `rows`, in that order, through our reader; mdbtools
    // reads the same text (the same rows where a row was moved, as it reads
    // moved rows where their data lies); the file passes the integrity check.
    void expectFileHolds(std::u16string_view name, const Rows& rows) const {
        const Database database(path_);
        const TableDefinition table = database.table(name);
        TableCursor cursor = database.scan(table);
        Rows read;
        bool moved = false;
        std::string ours;
        appendMdbExportHeader(ours, table);
        std::vector<Value> values;
        while (cursor.next()) {
            cursor.values(values);
            moved = moved || cursor.rowMoved();
            appendMdbExportRow(ours, table, values);
            read.push_back(values);
        }
        EXPECT_TRUE(read == rows) << toUtf8(name) << ": " << read.size() << " rows read, "
                                  << rows.size() << " written";
        EXPECT_EQ(table.rowCount, rows.size());
        EXPECT_EQ(checkIntegrity(database.file()), std::vector<std::string>{});
        if (std::string_view(MDB_EXPORT_EXECUTABLE).empty()) return;  // no mdbtools, as on Windows
        const std::string theirs = runCommand(shellQuote(MDB_EXPORT_EXECUTABLE) + " " +
                                              shellQuote(path_) + " " +
                                              shellQuote(toUtf8(name)) + " 2>/dev/null");
        if (moved) {
            EXPECT_EQ(testing::csvRecords(theirs), testing::csvRecords(ours)) << toUtf8(name);
        } else {
            EXPECT_EQ(theirs, ours) << toUtf8(name);
        }
    }

    void expectGrowthWithinBound(std::uintmax_t firstRound, const char* workload) const {
        EXPECT_LE(static_cast<double>(fileSize()), kAllowedGrowth * static_cast<double>(firstRound))
            << workload << ": " << firstRound << " bytes after the first round, " << fileSize()
            << " at the end";
    }

    testing::TempDir dir_;
    std::string path_;
};

// A month's permits, one per day student, as the main window copies them.
Rows permitsOf(const Rows& students, int month) {
    Rows permits;
    for (const auto& s : students) {
        // TCKimlikNo, Adi, Soyadi, Sinif, Numara, cinsiyet, resim, ay, yıl, aciklama
        permits.push_back({s[1], s[2], s[3], s[5], s[4], s[6], s[19], Value::integer(month),
                           Value::integer(2027), Value()});
    }
    return permits;
}

TEST_F(SpaceReuse, MonthlyPermitsRegisteredAndDeleted) {
    Rows students;
    Rows before;
    std::uintmax_t firstRound = 0;
    {
        Database database(path_, PageFile::Mode::ReadWrite);
        students = testing::readRows(database, u"ORNEK");
        before = testing::readRows(database, u"IZINLER");
        ASSERT_EQ(students.size(), 480u);
        for (int month = 1; month <= 12; ++month) {
            const Rows permits = permitsOf(students, month);
            const std::vector<RowId> ids = database.insertRows(u"IZINLER", permits);
            Rows expected = before;
            expected.insert(expected.end(), permits.begin(), permits.end());
            ASSERT_TRUE(testing::readRows(database, u"IZINLER") == expected) << "month " << month;
            // Deleted in four statements, as a permit list deletes its selection.
            for (std::size_t from = 0; from < ids.size(); from += 120) {
                database.deleteRows(u"IZINLER", {ids.begin() + static_cast<long>(from),
                                                 ids.begin() + static_cast<long>(from + 120)});
            }
            if (month == 1) firstRound = fileSize();
        }
    }
    expectFileHolds(u"IZINLER", before);
    expectGrowthWithinBound(firstRound, "permits");
}

// Long value pages not marked free.
std::size_t longValuePagesInUse(const Database& database) {
    const std::vector<std::uint32_t> free = readFreePages(database.file());
    std::size_t count = 0;
    Page page{};
    for (std::uint32_t number = 1; number < database.file().pageCount(); ++number) {
        database.file().read(number, page);
        if (page[0] == format::kPageData && DataPage(page, number).isLongValuePage() &&
            !std::binary_search(free.begin(), free.end(), number)) {
            ++count;
        }
    }
    return count;
}

// The month menu print: TMPMENU emptied, a day a row written, then each
// day's meals written again with the lines the fold adds.
TEST_F(SpaceReuse, MonthMenuPrintedAgainAndAgain) {
    const std::u16string weekdays[] = {u"Pazar", u"Pazartesi", u"Salı", u"Çarşamba",
                                       u"Perşembe", u"Cuma", u"Cumartesi"};
    const auto day = [&](int print, int d, bool folded) {
        const double date = 46000 + 31 * (print % 12) + d;
        std::u16string weekday = weekdays[(static_cast<int>(date) + 6) % 7];
        weekday.resize(255, u' ');  // a CHAR column holds its full width
        const std::u16string n = number(d + 1);
        std::u16string breakfast = u"PEYNİR\r\nZEYTİN\r\nDOMATES, SALATALIK\r\nÇAY " + n;
        std::u16string lunch = u"MERCİMEK ÇORBASI\r\nTAVUK SOTE\r\nPİRİNÇ PİLAVI\r\nAYRAN " + n;
        std::u16string dinner = u"EZOGELİN ÇORBASI\r\nIZGARA KÖFTE\r\nŞEHRİYE PİLAVI " + n;
        std::u16string snack = u"KEK, SÜT " + n;
        if (folded) {
            for (std::u16string* meal : {&breakfast, &lunch, &dinner, &snack})
                *meal += u"\r\nMEVSİM MEYVESİ\r\nYOĞURT " + number(print);
        }
        return std::vector<Value>{Value::date(Date{date}), Value::text(weekday),
                                  Value::text(breakfast), Value::text(lunch), Value::text(dinner),
                                  d % 3 == 0 && !folded ? Value() : Value::text(snack)};
    };
    Rows expected;
    std::uintmax_t firstRound = 0;
    const std::size_t longValuePagesBefore = longValuePagesInUse(Database(path_));
    {
        Database database(path_, PageFile::Mode::ReadWrite);
        database.createTable(kTmpMenu);
        for (int print = 0; print < 100; ++print) {
            sql::execute(database, u"delete* from TMPMENU");
            Rows days;
            for (int d = 0; d < 30; ++d) days.push_back(day(print, d, false));
            const std::vector<RowId> ids = database.insertRows(u"TMPMENU", days);
            // One statement, but each day by a writer of its own, as when
            // the days are written one by one.
            expected.clear();
            database.write([&](WriteStatement& statement) {
                const TableDefinition table = findTable(statement, u"TMPMENU");
                for (int d = 0; d < 30; ++d) {
                    expected.push_back(day(print, d, true));
                    TableWriter(statement, table).update(ids[static_cast<std::size_t>(d)],
                                                         expected.back());
                }
            });
            ASSERT_TRUE(testing::readRows(database, u"TMPMENU") == expected) << "print " << print;
            if (print == 0) firstRound = fileSize();
        }
    }
    expectFileHolds(u"TMPMENU", expected);
    expectGrowthWithinBound(firstRound, "month menu");
    // Values written by thirty writers share pages: they take about the
    // pages their bytes fill, not a page a writer.
    std::size_t valueBytes = 0;  // at most
    for (const auto& row : expected) {
        for (std::size_t c = 2; c < row.size(); ++c) valueBytes += 2 * row[c].asText().size() + 2;
    }
    EXPECT_LE(longValuePagesInUse(Database(path_)) - longValuePagesBefore, valueBytes / 4000 + 2);
}

TEST_F(SpaceReuse, RostersReplacedWhole) {
    Rows students;
    Rows boarders;
    std::uintmax_t firstRound = 0;
    {
        Database database(path_, PageFile::Mode::ReadWrite);
        students = testing::readRows(database, u"ORNEK");
        boarders = testing::readRows(database, u"Pansiyon");
        ASSERT_EQ(boarders.size(), 60u);
        for (int round = 0; round < 10; ++round) {
            sql::execute(database, u"delete* from ORNEK");
            database.insertRows(u"ORNEK", students);
            sql::execute(database, u"delete* from Pansiyon");
            database.insertRows(u"Pansiyon", boarders);
            ASSERT_TRUE(testing::readRows(database, u"ORNEK") == students) << "round " << round;
            ASSERT_TRUE(testing::readRows(database, u"Pansiyon") == boarders) << "round " << round;
            if (round == 0) firstRound = fileSize();
        }
    }
    expectFileHolds(u"ORNEK", students);
    expectFileHolds(u"Pansiyon", boarders);
    expectGrowthWithinBound(firstRound, "rosters");
}

// Rows added after deletions come after every remaining row, whether the
// last rows or rows in the middle were deleted: the space of the middle is
// not taken.
TEST_F(SpaceReuse, RowsAddedAfterDeletionsComeLast) {
    Database database(path_, PageFile::Mode::ReadWrite);
    const Rows students = testing::readRows(database, u"ORNEK");
    const TableDefinition table = database.table(u"IZINLER");
    const auto current = [&]() {
        std::vector<RowId> ids;
        TableCursor cursor = database.scan(table);
        while (cursor.next()) ids.push_back(cursor.rowId());
        return ids;
    };
    const auto after = [](RowId a, RowId b) {
        return a.page != b.page ? a.page > b.page : a.row > b.row;
    };
    Rows expected = testing::readRows(database, u"IZINLER");
    ASSERT_GT(expected.size(), 600u);

    // The last rows go, new ones follow the rest.
    std::vector<RowId> ids = current();
    database.deleteRows(u"IZINLER", {ids.end() - 150, ids.end()});
    expected.resize(expected.size() - 150);
    const RowId lastKept = ids[ids.size() - 151];
    Rows added = permitsOf({students.begin(), students.begin() + 100}, 3);
    for (const RowId id : database.insertRows(u"IZINLER", added))
        EXPECT_TRUE(after(id, lastKept));
    expected.insert(expected.end(), added.begin(), added.end());
    EXPECT_TRUE(testing::readRows(database, u"IZINLER") == expected);

    // A third of the rows go from the middle; the new rows still come last.
    ids = current();
    const std::size_t from = ids.size() / 3;
    const std::size_t to = 2 * ids.size() / 3;
    database.deleteRows(u"IZINLER", {ids.begin() + static_cast<long>(from),
                                     ids.begin() + static_cast<long>(to)});
    EXPECT_FALSE(readFreePages(database.file()).empty()) << "no page of the middle was freed";
    expected.erase(expected.begin() + static_cast<long>(from),
                   expected.begin() + static_cast<long>(to));
    added = permitsOf({students.begin() + 100, students.end()}, 4);
    for (const RowId id : database.insertRows(u"IZINLER", added))
        EXPECT_TRUE(after(id, ids.back()));
    expected.insert(expected.end(), added.begin(), added.end());
    // The first row after the gap grows in place: its page drops the bytes
    // of the deleted rows before it, whose slots stay.
    ASSERT_GT(ids[to].row, 0) << "no deleted row before it on its page";
    expected[from][9] = Value::text(u"izin uzatıldı, veli dilekçesi dosyada");
    database.updateRow(u"IZINLER", ids[to], expected[from]);
    {
        TableCursor cursor = database.scan(table);
        while (cursor.next() && !(cursor.rowId() == ids[to])) {
        }
        EXPECT_TRUE(cursor.rowId() == ids[to] && !cursor.rowMoved());
    }
    expectFileHolds(u"IZINLER", expected);

    // The pages of the middle serve a new table, which every reader lists.
    const std::uint32_t pages = database.file().pageCount();
    const std::string tables = runCommand("mdb-tables -1 " + shellQuote(path_));
    database.createTable(kTmpMenu);
    EXPECT_EQ(database.file().pageCount(), pages);
    EXPECT_EQ(checkIntegrity(database.file()), std::vector<std::string>{});
    if (!std::string_view(MDB_EXPORT_EXECUTABLE).empty()) {  // mdbtools, not on Windows
        EXPECT_EQ(runCommand("mdb-tables -1 " + shellQuote(path_)), tables + "TMPMENU\n");
    }
}

// A file grown past the inline window of its map of free pages: the map
// goes by reference and keeps every page, so freed pages are found again.
TEST_F(SpaceReuse, FreePagesOfALargeFileFoundAgain) {
    Database database(path_, PageFile::Mode::ReadWrite);
    const Rows students = testing::readRows(database, u"ORNEK");
    const Rows before = testing::readRows(database, u"IZINLER");
    Rows many;
    for (int month = 1; many.size() < 12000; month = month % 12 + 1) {
        const Rows permits = permitsOf(students, month);
        many.insert(many.end(), permits.begin(), permits.end());
    }
    const std::uint32_t pagesBefore = database.file().pageCount();
    std::vector<RowId> ids = database.insertRows(u"IZINLER", many);
    const std::uint32_t pagesGrown = database.file().pageCount();
    ASSERT_GT(pagesGrown, 512u) << "the file stays within the inline window";
    Page mapPage{};
    database.file().read(1, mapPage);
    const DataPage map(mapPage, 1);
    EXPECT_EQ(map.rowBytes(map.slot(0)).u8(0), format::usage::kReferenceMap);

    database.deleteRows(u"IZINLER", ids);
    // Every page the rows took is free but the one they shared with older rows.
    EXPECT_GE(readFreePages(database.file()).size() + 1, pagesGrown - pagesBefore - 2);
    ids = database.insertRows(u"IZINLER", many);
    EXPECT_LE(database.file().pageCount(), pagesGrown + 2);
    Rows expected = before;
    expected.insert(expected.end(), many.begin(), many.end());
    expectFileHolds(u"IZINLER", expected);
}

// An Access file with moved rows and free pages: rows added after them and
// deleted again, round after round, leave Access's rows reading as before.
TEST_F(SpaceReuse, AccessRowsStayAsTheyWere) {
    useCopyOf("access/overflowTestV2000.mdb");
    Rows original;
    std::uintmax_t firstRound = 0;
    {
        Database database(path_, PageFile::Mode::ReadWrite);
        original = testing::readRows(database, u"Table1");
        ASSERT_EQ(original.size(), 7u);
        for (int round = 0; round < 10; ++round) {
            Rows added;
            for (int copy = 0; copy < 150; ++copy) {
                added.push_back(original[static_cast<std::size_t>(copy) % original.size()]);
                added.back()[8] = Value::text(u"kopya " + number(round) + u"." + number(copy));
            }
            const std::vector<RowId> ids = database.insertRows(u"Table1", added);
            Rows expected = original;
            expected.insert(expected.end(), added.begin(), added.end());
            ASSERT_TRUE(testing::readRows(database, u"Table1") == expected) << "round " << round;
            database.deleteRows(u"Table1", {ids.begin() + 10, ids.end()});
            database.deleteRows(u"Table1", {ids.begin(), ids.begin() + 10});
            if (round == 0) firstRound = fileSize();
        }
    }
    expectFileHolds(u"Table1", original);
    expectGrowthWithinBound(firstRound, "Access rows");
}

}  // namespace
}  // namespace jet
