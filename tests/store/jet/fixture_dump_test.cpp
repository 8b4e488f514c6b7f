// Our reader against mdbtools, an independent reader: every table of every
// fixture must dump byte for byte as `mdb-export FILE TABLE` writes it.

#include <algorithm>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/text.h"
#include "tests/store/jet/test_files.h"
#include "tools/mdb_export_format.h"

namespace jet {
namespace {

using testing::runCommand;
using testing::shellQuote;

struct Dump {
    std::string csv;
    bool hasMovedRows = false;
};

Dump dumpWithOurReader(const Database& database, const std::u16string& name) {
    const TableDefinition table = database.table(name);
    Dump dump;
    appendMdbExportHeader(dump.csv, table);
    TableCursor cursor = database.scan(table);
    std::vector<Value> values;
    while (cursor.next()) {
        cursor.values(values);
        appendMdbExportRow(dump.csv, table, values);
        dump.hasMovedRows = dump.hasMovedRows || cursor.rowMoved();
    }
    return dump;
}

bool haveMdbTools() { return std::filesystem::exists(MDB_EXPORT_EXECUTABLE); }

std::string mdbExport(const std::filesystem::path& file, const std::string& table) {
    return runCommand(shellQuote(MDB_EXPORT_EXECUTABLE) + " " + shellQuote(file.string()) + " " +
                      shellQuote(table));
}

// Every table, system tables too. mdb-export lists a moved row where its
// data lies rather than where the row stands, and loses it when the data lies
// on a page outside the table's map; for such tables each line mdb-export
// writes must be ours, and the order is checked on its own below.
TEST(FixtureDump, EveryTableOfEveryFixtureMatchesMdbExport) {
    SKIP_WITHOUT_FIXTURES();
    if (!haveMdbTools()) GTEST_SKIP() << "mdb-export is not installed: test skipped";
    int exact = 0;
    int withMovedRows = 0;
    for (const std::filesystem::path& file : testing::fixtureDatabases()) {
        SCOPED_TRACE(file.string());
        const Database database(file.string());
        std::string ourList;
        for (const std::u16string& name : database.userTableNames()) {
            ourList += toUtf8(name) + "\n";
        }
        EXPECT_EQ(ourList, runCommand("mdb-tables -1 " + shellQuote(file.string())));
        for (const CatalogEntry& entry : database.catalog()) {
            if (!entry.isTable()) continue;
            SCOPED_TRACE(toUtf8(entry.name));
            const Dump ours = dumpWithOurReader(database, entry.name);
            const std::string theirs = mdbExport(file, toUtf8(entry.name));
            if (!ours.hasMovedRows) {
                EXPECT_EQ(ours.csv, theirs);
                ++exact;
                continue;
            }
            const std::multiset<std::string> ourLines = testing::csvRecords(ours.csv);
            const std::multiset<std::string> theirLines = testing::csvRecords(theirs);
            EXPECT_TRUE(std::includes(ourLines.begin(), ourLines.end(), theirLines.begin(),
                                      theirLines.end()));
            ++withMovedRows;
        }
    }
    EXPECT_GE(exact, 140);
    EXPECT_EQ(withMovedRows, 3);
}

TEST(FixtureDump, MovedRowsKeepTheirPlaceInTheStoredOrder) {
    SKIP_WITHOUT_FIXTURES();
    const std::filesystem::path file = testing::fixturesDir() / "access" / "overflowTestV2000.mdb";
    const Database database(file.string());
    // Rows 3 and 5 were moved to another page when they grew; they stay third and fifth.
    EXPECT_EQ(dumpWithOurReader(database, u"Table1").csv,
              "data1,data3,data4,data5,data6,data7,data8,data9,data10\n"
              "\"row1col1\",,,,,,,,\n"
              "\"row2col1\",\"row2col3\",,,,,,,\n"
              ",\"row3col3\",,,,,,\"row3col9\",\n"
              "\"row4col1\",\"row4col2\",,,,,,,\n"
              ",\"row5col2\",,,,,,,\n"
              ",\"row6col2\",\"row6col3\",,,,,,\n"
              "\"row7col1\",,,,,\"row7col7\",,,\n");
}

TEST(FixtureDump, JetdumpCommandMatchesMdbExportCommand) {
    SKIP_WITHOUT_FIXTURES();
    if (!haveMdbTools()) GTEST_SKIP() << "mdb-export is not installed: test skipped";
    const std::filesystem::path file = testing::fixturesDir() / "kvl" / "kvl.mdb";
    const std::string jetdump = shellQuote(JETDUMP_EXECUTABLE);
    for (const std::string table : {"ORNEK", "YEMEK", "IZINLER", "MENULER"}) {
        int status = -1;
        const std::string ours =
            runCommand(jetdump + " " + shellQuote(file.string()) + " " + table, &status);
        EXPECT_EQ(status, 0);
        EXPECT_EQ(ours, mdbExport(file, table)) << table;
    }
    // Table names are found regardless of the case of ASCII letters, as mdb-export does.
    EXPECT_EQ(runCommand(jetdump + " " + shellQuote(file.string()) + " izinler"),
              mdbExport(file, "IZINLER"));
    EXPECT_EQ(runCommand(jetdump + " " + shellQuote(file.string())),
              "AYAR\nORNEK\nPansiyon\nIZINLER\nYEMEK\nMENULER\nTMP\n");
}

TEST(FixtureDump, JetdumpReportsErrorsAndExitsNonZero) {
    testing::TempDir dir;
    const std::filesystem::path text = dir.path() / "notes.txt";
    testing::writeFileBytes(text, {'h', 'e', 'l', 'l', 'o', '\n'});
    const std::string jetdump = shellQuote(JETDUMP_EXECUTABLE);
    int status = 0;
    const std::string output =
        runCommand(jetdump + " " + shellQuote(text.string()) + " 2>&1", &status);
    EXPECT_EQ(status, 1);
    EXPECT_NE(output.find("is not an Access database"), std::string::npos) << output;

    runCommand(jetdump + " 2>/dev/null", &status);
    EXPECT_EQ(status, 2);

    if (testing::fixturesDir().empty()) return;
    const std::filesystem::path kvl = testing::fixturesDir() / "kvl" / "kvl.mdb";
    const std::string missing =
        runCommand(jetdump + " " + shellQuote(kvl.string()) + " NOSUCHTABLE 2>&1", &status);
    EXPECT_EQ(status, 1);
    EXPECT_NE(missing.find("table NOSUCHTABLE does not exist"), std::string::npos) << missing;
}

}  // namespace
}  // namespace jet

namespace jet {
namespace {

// A long value stored as a chain of pages comes back whole: 22,970 bytes
// over six long value pages, compared with what mdb-export reads.
TEST(FixtureDump, LongValueChainsReadWhole) {
    SKIP_WITHOUT_FIXTURES();
    const Database database((testing::fixturesDir() / "access" / "test2V2000.mdb").string());
    const TableDefinition table = database.table(u"MSP_PROJECTS");
    TableCursor cursor = database.scan(table);
    ASSERT_TRUE(cursor.next());
    std::vector<Value> values;
    cursor.values(values);
    const Value& data = values.back();
    ASSERT_EQ(data.kind(), Value::Kind::Bytes);
    EXPECT_EQ(data.asBytes().size(), 22970u);
    EXPECT_FALSE(cursor.next());
}

}  // namespace
}  // namespace jet
