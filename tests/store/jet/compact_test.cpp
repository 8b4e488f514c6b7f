// Compact and Repair: the fresh copy reads as the original through mdbtools
// and our reader, keeps its indexes, properties and password, passes the
// integrity check; a database in use, bad input and an existing target are
// refused without leaving a file behind.

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/compact.h"
#include "store/jet/database.h"
#include "store/jet/format.h"
#include "store/jet/in_use.h"
#include "store/jet/jet_users.h"
#include "store/jet/os_file.h"
#include "store/jet/text.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

namespace fs = std::filesystem;
using testing::runCommand;
using testing::shellQuote;

const std::map<std::string, std::string>& passwords() {
    static const std::map<std::string, std::string> known = {{"kvl.mdb", "HtRvZpQsD2019"},
                                                             {"yurtsayim-kvl.mdb", "HtRvZpSw2019"}};
    return known;
}

std::string mdbTool(const std::string& tool) {
    return shellQuote((fs::path(MDB_EXPORT_EXECUTABLE).parent_path() / tool).string());
}

// Runs jetcompact; its exit status.
int compact(const fs::path& in, const fs::path& out, const std::string& password = "") {
    int status = -1;
    runCommand(shellQuote(JETCOMPACT_EXECUTABLE) +
                   (password.empty() ? "" : " --password " + shellQuote(password)) + " " +
                   shellQuote(in.string()) + " " + shellQuote(out.string()) + " 2>/dev/null",
               &status);
    return status;
}

std::string command(const std::string& tool, const fs::path& file, const std::string& rest = "") {
    return runCommand(tool + " " + shellQuote(file.string()) + rest + " 2>&1");
}

// The properties (LvProp) of each catalog object, by name.
std::map<std::u16string, Bytes> catalogProperties(const Database& database) {
    std::map<std::u16string, Bytes> found;
    const TableDefinition objects = database.table(u"MSysObjects");
    const std::size_t name = objects.columnPosition(u"Name");
    const std::size_t properties = objects.columnPosition(u"LvProp");
    for (const std::vector<Value>& row : testing::readRows(database, u"MSysObjects")) {
        if (row[properties].kind() == Value::Kind::Bytes)
            found[row[name].asText()] = row[properties].asBytes();
    }
    return found;
}

// A table's indexes as Access shows them: name, kind, flags and columns (by name and order).
std::vector<std::string> indexes(const TableDefinition& table) {
    std::vector<std::string> out;
    for (const LogicalIndex& logical : table.indexes) {
        if (logical.type == format::kIndexTypeForeignKey)
            continue;
        const RealIndex& real = table.realIndexes.at(logical.realIndex);
        std::string text = toUtf8(logical.name) + " type " + std::to_string(logical.type) +
                           " flags " + std::to_string(real.flags) + ":";
        for (const IndexColumn& column : real.columns)
            text += " " + toUtf8(table.columnByNumber(column.columnNumber)->name) +
                    (column.ascending ? "" : " DESC");
        out.push_back(text);
    }
    return out;
}

// Columns as their definitions give them, numbers included.
std::vector<std::string> columns(const TableDefinition& table) {
    std::vector<std::string> out;
    for (const Column& c : table.columns) {
        out.push_back(toUtf8(c.name) + " " + std::to_string(static_cast<int>(c.type)) + " #" +
                      std::to_string(c.number) + " len " + std::to_string(c.length) + " flags " +
                      std::to_string(c.flags) + (c.compressedUnicode ? " compressed" : "") +
                      " sort " + std::to_string(c.sortOrder) + " " + std::to_string(c.precision) +
                      "," + std::to_string(c.scale));
    }
    return out;
}

// What the copy must keep of the original, read both ways.
void expectSameContent(const fs::path& original, const fs::path& copy, bool accessFile) {
    SCOPED_TRACE(copy.string());
    const std::string jetdump = shellQuote(JETDUMP_EXECUTABLE);
    const Database before(original.string());
    const Database after(copy.string());
    EXPECT_EQ(after.header().password, before.header().password);
    EXPECT_EQ(after.header().codePage, before.header().codePage);
    EXPECT_EQ(after.header().sortOrder, before.header().sortOrder);
    EXPECT_EQ(after.header().encodingKey, before.header().encodingKey);
    ASSERT_EQ(after.userTableNames(), before.userTableNames());
    for (const std::u16string& name : before.userTableNames()) {
        const std::string table = toUtf8(name);
        SCOPED_TRACE(table);
        // Our reader keeps a moved row in its place; mdbtools reads it
        // where its data lies, so the original is read with ours.
        const std::string rows = command(jetdump, original, " " + shellQuote(table));
        EXPECT_EQ(command(jetdump, copy, " " + shellQuote(table)), rows);
        EXPECT_EQ(command(shellQuote(MDB_EXPORT_EXECUTABLE), copy, " " + shellQuote(table)), rows);
        // mdb-prop shows another object's properties for a table without
        // any, which only the Access files give all their tables.
        if (accessFile) {
            EXPECT_EQ(command(mdbTool("mdb-prop"), copy, " " + shellQuote(table)),
                      command(mdbTool("mdb-prop"), original, " " + shellQuote(table)));
        }
        const TableDefinition from = before.table(name);
        const TableDefinition to = after.table(name);
        EXPECT_EQ(indexes(to), indexes(from));
        EXPECT_EQ(to.nextAutoNumber, from.nextAutoNumber);
        EXPECT_EQ(to.maxColumns, to.columns.size()) << "no room of deleted columns";
        if (from.deletedColumnNumbers().empty()) {
            EXPECT_EQ(columns(to), columns(from));
        }
    }
    // The properties of the tables and of the database itself.
    const std::map<std::u16string, Bytes> properties = catalogProperties(after);
    const std::vector<std::u16string> tables = before.userTableNames();
    for (const auto& [name, value] : catalogProperties(before)) {
        if (name == u"MSysDb" || std::find(tables.begin(), tables.end(), name) != tables.end()) {
            ASSERT_EQ(properties.count(name), 1u) << toUtf8(name);
            EXPECT_EQ(properties.at(name), value) << toUtf8(name);
        }
    }
    // mdbtools misreads the indexes of two of the originals; it must read
    // every copy.
    const std::string schema = mdbTool("mdb-schema") + " --indexes --no-relations --not-null";
    const std::string copied = command(schema, copy, " postgres");
    EXPECT_EQ(copied.find("ERROR"), std::string::npos) << copied;
    EXPECT_EQ(copied.find("CRITICAL"), std::string::npos) << copied;
    const std::string originalSchema = command(schema, original, " postgres");
    if (originalSchema.find("ERROR") == std::string::npos) {
        const auto tables = [](const std::string& text) {
            return text.substr(0, text.find("-- CREATE Rel"));
        };
        EXPECT_EQ(tables(copied), tables(originalSchema));
    }
}

TEST(Compact, EveryFixtureReadsTheSameAfterCompactingOnceAndTwice) {
    SKIP_WITHOUT_FIXTURES();
    if (!fs::exists(MDB_EXPORT_EXECUTABLE))
        GTEST_SKIP() << "mdbtools is not installed: test skipped";
    const testing::TempDir dir;
    for (const fs::path& fixture : testing::fixtureDatabases()) {
        const bool accessFile = fixture.parent_path().filename() == "access";
        const std::string name = fixture.parent_path().filename() == "yurtsayim"
                                     ? "yurtsayim-kvl.mdb"
                                     : fixture.filename().string();
        SCOPED_TRACE(name);
        const fs::path original = dir.path() / name;
        fs::copy_file(fixture, original);
        const auto password = passwords().find(name);
        const std::string given = password != passwords().end() ? password->second : "";
        const fs::path once = dir.path() / ("once-" + name);
        const fs::path twice = dir.path() / ("twice-" + name);

        ASSERT_EQ(compact(original, once, given), 0);
        EXPECT_FALSE(fs::exists(once.string() + ".compacting"));
        // No deleted rows, free pages or leftovers: smaller than what Access kept.
        if (accessFile) {
            EXPECT_LT(fs::file_size(once), fs::file_size(original));
        }
        expectSameContent(original, once, accessFile);
        int status = -1;
        EXPECT_EQ(
            runCommand(shellQuote(JETCHECK_EXECUTABLE) + " " + shellQuote(once.string()), &status),
            "OK\n");
        EXPECT_EQ(status, 0);

        if (!given.empty()) {
            // The copy keeps the password: it opens with it and not without.
            EXPECT_EQ(compact(once, dir.path() / "without.mdb"), 2);
            EXPECT_EQ(compact(once, dir.path() / "wrong.mdb", given + "x"), 2);
            EXPECT_FALSE(fs::exists(dir.path() / "without.mdb"));
        }
        ASSERT_EQ(compact(once, twice, given), 0);
        expectSameContent(once, twice, accessFile);
        EXPECT_EQ(fs::file_size(twice), fs::file_size(once));
    }
}

TEST(Compact, DeletedColumnsAndRowsLeaveNothingBehind) {
    SKIP_WITHOUT_FIXTURES();
    const testing::TempDir dir;
    const fs::path access = testing::fixturesDir() / "access";
    const fs::path columnsOut = dir.path() / "columns.mdb";
    compactDatabase((access / "delColTestV2000.mdb").string(), columnsOut.string());
    const TableDefinition table = Database(columnsOut.string()).table(u"Table1");
    // The columns after a deleted one move up; the index follows them.
    std::vector<std::string> numbered;
    for (const Column& c : table.columns)
        numbered.push_back(toUtf8(c.name) + "#" + std::to_string(c.number));
    EXPECT_EQ(numbered, (std::vector<std::string>{"id#0", "id2#1", "data#2", "data2#3"}));
    EXPECT_TRUE(table.deletedColumnNumbers().empty());

    const fs::path rowsOut = dir.path() / "rows.mdb";
    compactDatabase((access / "delTestV2000.mdb").string(), rowsOut.string());
    const Database compacted(rowsOut.string());
    const TableDefinition rows = compacted.table(u"Table");
    EXPECT_EQ(rows.rowCount, testing::readRows(compacted, u"Table").size());
}

TEST(Compact, RefusesADatabaseInUse) {
    SKIP_WITHOUT_FIXTURES();
    const testing::TempDir dir;
    const fs::path in = dir.path() / "kvl.mdb";
    fs::copy_file(testing::fixturesDir() / "kvl" / "kvl.mdb", in);
    const std::string password = passwords().at("kvl.mdb");
    const fs::path out = dir.path() / "out.mdb";

#ifdef NO_FORK
    std::cout << "[ NOTE ] the check with a second process needs fork(), which Windows has not\n";
#else
    {
        // Another copy of the program has it open: a child process.
        testing::DatabaseInOtherProcess other(in.string(), PageFile::Mode::ReadOnly);
        ASSERT_TRUE(other.isOpen());
        EXPECT_THROW(compactDatabase(in.string(), out.string(), fromUtf8(password)), InUseError);
        EXPECT_FALSE(fs::exists(out));
        EXPECT_EQ(other.leave(), 0);
    }
#endif
    {
        // This process has it open, for the tool and for itself.
        const Database open(in.string());
        EXPECT_EQ(compact(in, out, password), 1);
        EXPECT_THROW(compactDatabase(in.string(), out.string(), fromUtf8(password)), InUseError);
        EXPECT_FALSE(fs::exists(out));
    }
    // A Jet user holds the first or the last user slot of the .ldb: the
    // byte 0x10000001 or 0x100000ff.
    const fs::path ldb = dir.path() / "kvl.ldb";
    constexpr std::uint64_t kFirstSlot = 0x10000001;
    for (const std::uint64_t slot : {0, 254}) {
        os::File user = os::File::open(ldb.string(), os::File::Mode::OpenOrCreate);
        ASSERT_TRUE(user.isOpen());
        // A lock of this open file, which the look at the .ldb through
        // another open file of it does not release.
        ASSERT_EQ(user.tryLock(kFirstSlot + slot, os::LockKind::Exclusive), os::LockResult::Taken);
        EXPECT_FALSE(connectedJetUsers(in.string()).empty());
        EXPECT_EQ(compact(in, out, password), 1);
        EXPECT_FALSE(fs::exists(out));
    }  // the user leaves; the .ldb stays, as Jet may leave it
    // A lock beside the slots (Jet's other bytes) is no user.
    {
        os::File other = os::File::open(ldb.string(), os::File::Mode::ReadWrite);
        ASSERT_TRUE(other.isOpen());
        ASSERT_EQ(other.tryLock(kFirstSlot + 255, os::LockKind::Exclusive), os::LockResult::Taken);
        EXPECT_TRUE(connectedJetUsers(in.string()).empty());
    }
    EXPECT_TRUE(connectedJetUsers(in.string()).empty());
    EXPECT_EQ(compact(in, out, password), 0);
    // While it ran, no copy of ours could open the file; afterwards one can.
    EXPECT_NO_THROW(Database(in.string()));
}

TEST(Compact, BadInputGivesStatusTwoAndNoFile) {
    SKIP_WITHOUT_FIXTURES();
    const testing::TempDir dir;
    const fs::path kvl = dir.path() / "kvl.mdb";
    fs::copy_file(testing::fixturesDir() / "kvl" / "kvl.mdb", kvl);
    const std::string password = passwords().at("kvl.mdb");
    const std::vector<unsigned char> bytes = testing::readFileBytes(kvl);

    const fs::path text = dir.path() / "text.mdb";
    testing::writeFileBytes(text, {'n', 'o', ' ', 'd', 'b', '\n'});
    const fs::path header = dir.path() / "header.mdb";
    testing::writeFileBytes(header, {bytes.begin(), bytes.begin() + 16 * 4096});
    const fs::path half = dir.path() / "half.mdb";
    testing::writeFileBytes(half, {bytes.begin(), bytes.begin() + bytes.size() / 2});

    const fs::path out = dir.path() / "out.mdb";
    EXPECT_EQ(compact(text, out), 2);
    EXPECT_EQ(compact(dir.path() / "missing.mdb", out), 2);
    EXPECT_EQ(compact(header, out, password), 2);
    EXPECT_EQ(compact(half, out, password), 2);
    EXPECT_EQ(compact(kvl, out), 2);
    EXPECT_EQ(compact(kvl, out, "htrvzpqsd2019"), 2);
    EXPECT_EQ(compact(kvl, dir.path() / "no-such-folder" / "out.mdb", password), 2);
    int status = -1;
    runCommand(shellQuote(JETCOMPACT_EXECUTABLE) + " " + shellQuote(kvl.string()), &status);
    EXPECT_EQ(status, 2);
    // Nothing is left of the target, nor a lock file beside what is no database.
    for (const auto& entry : fs::directory_iterator(dir.path())) {
        const std::string name = entry.path().filename().string();
        EXPECT_TRUE(name.rfind("kvl.mdb", 0) == 0 || name.rfind("header.mdb", 0) == 0 ||
                    name.rfind("half.mdb", 0) == 0 || name == "text.mdb")
            << name;
    }

    // An existing target is never replaced, not even by a good copy.
    testing::writeFileBytes(out, {'k', 'e', 'e', 'p'});
    EXPECT_EQ(compact(kvl, out, password), 2);
    EXPECT_EQ(testing::readFileBytes(out), (std::vector<unsigned char>{'k', 'e', 'e', 'p'}));
    EXPECT_FALSE(fs::exists(out.string() + ".compacting"));
}

}  // namespace
}  // namespace jet
