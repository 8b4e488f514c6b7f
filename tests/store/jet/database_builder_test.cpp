// New databases: what createDatabase writes must read back with our reader
// and open in mdbtools, an independent reader.

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/database_builder.h"
#include "store/jet/error.h"
#include "store/jet/format.h"
#include "store/jet/index_page.h"
#include "store/jet/table_definition_builder.h"
#include "store/jet/text.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

using testing::runCommand;
using testing::shellQuote;

bool haveMdbTools() {
    return std::filesystem::exists(MDB_EXPORT_EXECUTABLE);
}

std::string mdbTool(const std::string& tool, const std::string& arguments) {
    const auto path = std::filesystem::path(MDB_EXPORT_EXECUTABLE).parent_path() / tool;
    int status = 0;
    std::string out = runCommand(shellQuote(path.string()) + " " + arguments + " 2>&1", &status);
    EXPECT_EQ(status, 0) << tool << " " << arguments << ": " << out;
    return out;
}

const Date kCreated = Date::fromCivil({2019, 9, 2, 8, 30, 0});

// Checks the new database through our own reader: header, catalog, indexes.
void expectNewDatabase(const std::string& path, const NewDatabaseOptions& options) {
    const Database database(path);
    EXPECT_EQ(database.header().version, format::kVersionJet4);
    EXPECT_EQ(database.header().codePage, 1252);
    EXPECT_EQ(database.header().sortOrder, 0x409);
    EXPECT_EQ(database.header().encodingKey, options.encodingKey);
    EXPECT_EQ(database.header().password, options.password);
    EXPECT_EQ(database.header().created, kCreated);

    std::map<std::u16string, CatalogEntry> byName;
    for (const CatalogEntry& entry : database.catalog())
        byName[entry.name] = entry;
    ASSERT_EQ(byName.size(), 8u);
    EXPECT_EQ(byName[u"Tables"].id, format::kTablesContainerId);
    EXPECT_EQ(byName[u"Tables"].type, format::kObjectTypeContainer);
    EXPECT_EQ(byName[u"MSysDb"].parentId, format::kDatabasesContainerId);
    const std::vector<std::u16string> tables = {u"MSysObjects", u"MSysACEs", u"MSysQueries",
                                                u"MSysRelationships"};
    for (std::size_t i = 0; i < tables.size(); ++i) {
        const CatalogEntry& entry = byName[tables[i]];
        EXPECT_TRUE(entry.isSystemTable()) << toUtf8(tables[i]);
        EXPECT_EQ(entry.definitionPage(), i + 2);
        EXPECT_EQ(entry.parentId, format::kTablesContainerId);
    }
    EXPECT_TRUE(database.userTableNames().empty());

    // The catalog's two indexes hold every row, in key order, each pointing
    // at the row it was taken from.
    const TableDefinition objects = database.table(u"MSysObjects");
    ASSERT_EQ(objects.indexes.size(), 2u);
    EXPECT_EQ(objects.indexes[1].name, u"Id");
    EXPECT_TRUE(objects.indexes[1].isPrimaryKey());
    for (const RealIndex& index : objects.realIndexes) {
        EXPECT_TRUE(index.isUnique());
        const std::vector<IndexEntry> entries = readIndexEntries(database.file(), index);
        ASSERT_EQ(entries.size(), 8u);
        EXPECT_EQ(index.rowCount, 8u);
        EXPECT_TRUE(
            std::is_sorted(entries.begin(), entries.end(),
                           [](const IndexEntry& a, const IndexEntry& b) { return a.key < b.key; }));
    }
    for (const std::u16string& name : tables) {
        const TableDefinition table = database.table(name);
        for (const RealIndex& index : table.realIndexes) {
            EXPECT_EQ(readIndexEntries(database.file(), index).size(),
                      name == u"MSysObjects" ? 8u : 0u);
        }
    }
}

TEST(DatabaseBuilder, NewDatabaseReadsBackWithOurReaderAndMdbTools) {
    testing::TempDir dir;
    struct Case {
        const char* file;
        NewDatabaseOptions options;
    };
    const std::vector<Case> cases = {
        {"plain.mdb", {u"", 0, kCreated}},
        {"password.mdb", {u"HtRvZpQsD2019", 0, kCreated}},
        {"longest-password.mdb", {u"ığüşöçİĞÜŞÖÇabcdefgh", 0, kCreated}},
        {"encoded.mdb", {u"secret", 0x5a3c9e17, kCreated}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.file);
        const std::string path = (dir.path() / c.file).string();
        Database::create(path, c.options);
        expectNewDatabase(path, c.options);
        EXPECT_FALSE(std::filesystem::exists(path + ".new"));
        if (!haveMdbTools())
            continue;
        EXPECT_EQ(mdbTool("mdb-tables", "-S -1 " + shellQuote(path)),
                  "MSysObjects\nMSysACEs\nMSysQueries\nMSysRelationships\n");
        const std::string objects = mdbTool("mdb-export", shellQuote(path) + " MSysObjects");
        EXPECT_NE(objects.find("\"Relationships\",3,\"09/02/19 08:30:00\""), std::string::npos)
            << objects;
        EXPECT_NE(objects.find("5,251658241,\"MSysRelationships\",1,"), std::string::npos)
            << objects;
        EXPECT_NE(mdbTool("mdb-schema", "-T MSysObjects " + shellQuote(path)).find("[LvExtra]"),
                  std::string::npos);
    }
    // Encoded pages are not stored plain.
    const auto bytes = testing::readFileBytes(dir.path() / "encoded.mdb");
    ASSERT_GE(bytes.size(), 3 * format::kPageSize);
    EXPECT_NE(bytes[2 * format::kPageSize], format::kPageTableDefinition);
}

TEST(DatabaseBuilder, RefusesExistingFilesAndLongPasswords) {
    testing::TempDir dir;
    const auto path = dir.path() / "exists.mdb";
    testing::writeFileBytes(path, {1, 2, 3});
    EXPECT_THROW(Database::create(path.string(), {}), Error);
    EXPECT_EQ(testing::readFileBytes(path), (std::vector<unsigned char>{1, 2, 3}));

    const auto other = dir.path() / "long.mdb";
    EXPECT_THROW(Database::create(other.string(), {u"123456789012345678901", 0, kCreated}), Error);
    EXPECT_FALSE(std::filesystem::exists(other));
    EXPECT_FALSE(std::filesystem::exists(other.string() + ".new"));
}

// Pages held in memory, for reading back a built definition.
class MemoryPages : public PageSource {
public:
    std::map<std::uint32_t, Page> pages;
    std::uint32_t pageCount() const override {
        return pages.empty() ? 0 : pages.rbegin()->first + 1;
    }
    void read(std::uint32_t number, Page& page) const override {
        const auto found = pages.find(number);
        if (found == pages.end())
            throw Error("no page " + std::to_string(number));
        page = found->second;
    }
};

// Every definition Access wrote, rebuilt by our builder, reads back the same:
// columns, indexes and chained definitions of many pages.
TEST(DatabaseBuilder, TableDefinitionsOfAccessRebuildTheSame) {
    SKIP_WITHOUT_FIXTURES();
    std::size_t chained = 0;
    for (const auto& file : testing::fixtureDatabases()) {
        const Database database(file.string());
        for (const CatalogEntry& entry : database.catalog()) {
            if (!entry.isTable())
                continue;
            SCOPED_TRACE(file.filename().string() + " " + toUtf8(entry.name));
            const TableDefinition original =
                readTableDefinition(database.file(), entry.definitionPage());
            TableDefinition copy = original;
            copy.pages.resize(tableDefinitionPageCount(copy));
            for (std::size_t i = 0; i < copy.pages.size(); ++i) {
                copy.pages[i] = 1000 + static_cast<std::uint32_t>(i);
            }
            copy.page = copy.pages.front();
            chained += copy.pages.size() > 1 ? 1 : 0;
            MemoryPages memory;
            const std::vector<Page> built = buildTableDefinition(copy);
            for (std::size_t i = 0; i < built.size(); ++i)
                memory.pages[copy.pages[i]] = built[i];
            const TableDefinition back = readTableDefinition(memory, copy.page);
            EXPECT_EQ(back.pages, copy.pages);
            EXPECT_EQ(back.rowCount, original.rowCount);
            EXPECT_EQ(back.nextAutoNumber, original.nextAutoNumber);
            EXPECT_EQ(back.tableType, original.tableType);
            EXPECT_EQ(back.maxColumns, original.maxColumns);
            EXPECT_EQ(back.variableColumnCount, original.variableColumnCount);
            EXPECT_EQ(back.usageMap, original.usageMap);
            EXPECT_EQ(back.freeSpaceMap, original.freeSpaceMap);
            ASSERT_EQ(back.columns.size(), original.columns.size());
            for (std::size_t i = 0; i < back.columns.size(); ++i) {
                const Column& a = back.columns[i];
                const Column& b = original.columns[i];
                EXPECT_EQ(a.name, b.name);
                EXPECT_EQ(a.type, b.type);
                EXPECT_EQ(a.number, b.number);
                EXPECT_EQ(a.variableIndex, b.variableIndex);
                EXPECT_EQ(a.fixedOffset, b.fixedOffset);
                EXPECT_EQ(a.length, b.length);
                EXPECT_EQ(a.flags, b.flags);
                EXPECT_EQ(a.compressedUnicode, b.compressedUnicode);
                EXPECT_EQ(a.sortOrder, b.sortOrder);
                EXPECT_EQ(a.precision, b.precision);
                EXPECT_EQ(a.scale, b.scale);
            }
            ASSERT_EQ(back.realIndexes.size(), original.realIndexes.size());
            for (std::size_t i = 0; i < back.realIndexes.size(); ++i) {
                const RealIndex& a = back.realIndexes[i];
                const RealIndex& b = original.realIndexes[i];
                ASSERT_EQ(a.columns.size(), b.columns.size());
                for (std::size_t k = 0; k < a.columns.size(); ++k) {
                    EXPECT_EQ(a.columns[k].columnNumber, b.columns[k].columnNumber);
                    EXPECT_EQ(a.columns[k].ascending, b.columns[k].ascending);
                }
                EXPECT_EQ(a.usageMap, b.usageMap);
                EXPECT_EQ(a.firstPage, b.firstPage);
                EXPECT_EQ(a.flags, b.flags);
                EXPECT_EQ(a.rowCount, b.rowCount);
            }
            ASSERT_EQ(back.indexes.size(), original.indexes.size());
            for (std::size_t i = 0; i < back.indexes.size(); ++i) {
                EXPECT_EQ(back.indexes[i].name, original.indexes[i].name);
                EXPECT_EQ(back.indexes[i].number, original.indexes[i].number);
                EXPECT_EQ(back.indexes[i].realIndex, original.indexes[i].realIndex);
                EXPECT_EQ(back.indexes[i].type, original.indexes[i].type);
            }
        }
    }
    EXPECT_GT(chained, 0u) << "no fixture has a definition of several pages";
}

}  // namespace
}  // namespace jet
