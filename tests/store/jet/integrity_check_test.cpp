// jetcheck against files Access wrote, which must pass, and against copies
// damaged in the ways that matter, each of which it must name.

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/format.h"
#include "store/jet/index_key.h"
#include "store/jet/index_writer.h"
#include "store/jet/integrity_check.h"
#include "store/jet/usage_map_writer.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

using testing::runCommand;
using testing::shellQuote;

std::string problemsOf(const std::string& file) {
    std::string all;
    for (const std::string& problem : checkIntegrity(Database(file).file())) all += problem + "\n";
    return all;
}

int jetcheckStatus(const std::string& file, std::string* output = nullptr) {
    int status = 0;
    const std::string printed =
        runCommand(shellQuote(JETCHECK_EXECUTABLE) + " " + shellQuote(file) + " 2>&1", &status);
    if (output != nullptr) *output = printed;
    return status;
}

// A copy of testV2000.mdb, whose Table1 has rows and a primary key.
struct DamagedCopy {
    testing::TempDir dir;
    std::string file = (dir.path() / "damaged.mdb").string();
    DamagedCopy() {
        std::filesystem::copy_file(testing::fixturesDir() / "access" / "testV2000.mdb", file);
    }
    RowId firstRow() const {
        const Database database(file);
        const TableDefinition table = database.table(u"Table1");
        TableCursor cursor = database.scan(table);
        EXPECT_TRUE(cursor.next());
        return cursor.rowId();
    }
};

TEST(IntegrityCheck, EveryFileAccessWrotePasses) {
    SKIP_WITHOUT_FIXTURES();
    for (const auto& file : testing::fixtureDatabases()) {
        EXPECT_EQ(problemsOf(file.string()), "") << file;
    }
    std::string printed;
    EXPECT_EQ(jetcheckStatus((testing::fixturesDir() / "kvl" / "kvl.mdb").string(), &printed), 0);
    EXPECT_EQ(printed, "OK\n");
}

TEST(IntegrityCheck, DamageIsNamed) {
    SKIP_WITHOUT_FIXTURES();
    {
        // The row count of the definition off by one.
        DamagedCopy copy;
        const std::uint32_t page = Database(copy.file).table(u"Table1").page;
        std::vector<unsigned char> bytes = testing::readFileBytes(copy.file);
        bytes[page * format::kPageSize + format::tdef::kRowCountOffset] += 1;
        testing::writeFileBytes(copy.file, bytes);
        EXPECT_NE(problemsOf(copy.file).find("table Table1 has 2 rows, its definition says 3"),
                  std::string::npos)
            << problemsOf(copy.file);
        std::string printed;
        EXPECT_EQ(jetcheckStatus(copy.file, &printed), 1);
        EXPECT_NE(printed.find("Table1"), std::string::npos);
    }
    {
        // An index entry gone: its row is no longer found through the index.
        DamagedCopy copy;
        const RowId row = copy.firstRow();
        Database database(copy.file, PageFile::Mode::ReadWrite);
        database.write([&](WriteStatement& statement) {
            const TableDefinition table = findTable(statement, u"Table1");
            TableCursor cursor(statement, table);
            std::vector<Value> values;
            ASSERT_TRUE(cursor.next());
            cursor.values(values);
            IndexWriter(statement, table, 0).remove(encodeIndexKey(table, table.realIndexes[0], values), row);
        });
        EXPECT_NE(problemsOf(copy.file).find("index 0 of table Table1 holds 1 entries for 2 rows"),
                  std::string::npos)
            << problemsOf(copy.file);
    }
    {
        // A page of the table marked free, where the next writer would take it.
        DamagedCopy copy;
        const RowId row = copy.firstRow();
        Database database(copy.file, PageFile::Mode::ReadWrite);
        database.write([&](WriteStatement& statement) { releasePage(statement, row.page); });
        EXPECT_NE(problemsOf(copy.file).find("page " + std::to_string(row.page) +
                                             " of table Table1 is marked free"),
                  std::string::npos)
            << problemsOf(copy.file);
    }
    {
        // A data page handed to another table: its rows vanish from Table1.
        DamagedCopy copy;
        const RowId row = copy.firstRow();
        const std::uint32_t other = Database(copy.file).table(u"Table2").page;
        std::vector<unsigned char> bytes = testing::readFileBytes(copy.file);
        for (int i = 0; i < 4; ++i) {
            bytes[row.page * format::kPageSize + format::data::kOwnerOffset + i] =
                static_cast<unsigned char>(other >> (8 * i));
        }
        testing::writeFileBytes(copy.file, bytes);
        const std::string problems = problemsOf(copy.file);
        EXPECT_NE(problems.find("table Table1 has 0 rows"), std::string::npos) << problems;
    }
    {
        // Not a database at all.
        testing::TempDir dir;
        const std::string file = (dir.path() / "notes.mdb").string();
        testing::writeFileBytes(file, {'n', 'o', 't', 'e', 's'});
        std::string printed;
        EXPECT_EQ(jetcheckStatus(file, &printed), 2);
        EXPECT_NE(printed.find("is not an Access database"), std::string::npos);
    }
}

}  // namespace
}  // namespace jet
