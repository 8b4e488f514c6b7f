// Indexes of real files: those of the fixtures hold their rows in trees of
// the shape this writer keeps; after inserts, updates and deletes every
// index holds exactly the table's rows under their keys, its tree keeps
// Jet's shape, mdbtools reads the rows, and refused writes change nothing.

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/catalog.h"
#include "store/jet/database.h"
#include "store/jet/format.h"
#include "store/jet/index_key.h"
#include "store/jet/index_page.h"
#include "store/jet/index_page_builder.h"
#include "store/jet/integrity_check.h"
#include "store/jet/table_writer.h"
#include "store/jet/text.h"
#include "store/jet/usage_map.h"
#include "tests/store/jet/test_files.h"
#include "tools/mdb_export_format.h"

namespace jet {
namespace {

namespace fs = std::filesystem;
namespace x = format::index;

using Rows = std::map<std::pair<std::uint32_t, std::uint16_t>, std::vector<Value>>;

Rows readRows(const PageSource& file, const TableDefinition& table) {
    Rows rows;
    for (TableCursor cursor(file, table); cursor.next();) {
        cursor.values(rows[{cursor.rowId().page, cursor.rowId().row}]);
    }
    return rows;
}

// Walks the tree under `page` and checks Jet's shape: each entry of an
// intermediate page is its child's last entry, the last child is the tail
// unless it is the only one, intermediate children are linked among
// themselves only. Returns the subtree's last entry.
struct TreeWalk {
    const PageSource& file;
    std::set<std::uint32_t> pages;
    std::vector<std::uint32_t> leaves;

    std::optional<IndexEntry> walk(std::uint32_t number, int depth) {
        EXPECT_LT(depth, 10);
        EXPECT_TRUE(pages.insert(number).second) << "page " << number << " reached twice";
        Page bytes;
        file.read(number, bytes);
        const IndexPage page(bytes, number);
        if (page.isLeaf()) {
            leaves.push_back(number);
            if (page.entries().empty())
                return std::nullopt;
            return IndexEntry{page.entries().back().key, page.entries().back().row};
        }
        std::vector<std::uint32_t> children;
        std::optional<IndexEntry> last;
        for (const IndexPageEntry& entry : page.entries()) {
            children.push_back(entry.childPage);
            last = walk(entry.childPage, depth + 1);
            EXPECT_TRUE(last && last->key == entry.key && last->row == entry.row)
                << "entry for child " << entry.childPage << " of page " << number
                << " is not the child's last entry";
        }
        if (page.tailPage() != 0) {
            EXPECT_FALSE(page.entries().empty()) << "page " << number << " has only its tail";
            children.push_back(page.tailPage());
            last = walk(page.tailPage(), depth + 1);
        } else {
            EXPECT_EQ(page.entries().size(), 1u) << "page " << number << " has no tail";
        }
        for (std::size_t i = 0; i < children.size(); ++i) {
            Page child;
            file.read(children[i], child);
            const IndexPage childPage(child, children[i]);
            if (childPage.isLeaf())
                continue;
            EXPECT_EQ(childPage.prevPage(), i == 0 ? 0 : children[i - 1]);
            EXPECT_EQ(childPage.nextPage(), i + 1 == children.size() ? 0 : children[i + 1]);
        }
        return last;
    }
};

// The index's tree has Jet's shape, its leaves are linked in key order, and
// its pages are those of its usage map. Returns the number of its pages.
std::size_t expectTreeOfJetsShape(const PageSource& file, const RealIndex& index) {
    TreeWalk walk{file, {}, {}};
    walk.walk(index.firstPage, 0);
    for (std::size_t k = 0; k < walk.leaves.size(); ++k) {
        Page bytes;
        file.read(walk.leaves[k], bytes);
        const IndexPage leaf(bytes, walk.leaves[k]);
        EXPECT_EQ(leaf.prevPage(), k == 0 ? 0 : walk.leaves[k - 1]);
        EXPECT_EQ(leaf.nextPage(), k + 1 == walk.leaves.size() ? 0 : walk.leaves[k + 1]);
        if (walk.leaves.size() > 1) {
            EXPECT_FALSE(leaf.entries().empty());
        }
    }
    const std::vector<std::uint32_t> mapped = readUsageMap(file, index.usageMap);
    EXPECT_EQ(std::set<std::uint32_t>(mapped.begin(), mapped.end()), walk.pages);
    return walk.pages.size();
}

// Every index of the table holds exactly the keys of its rows, in order, in
// a tree of Jet's shape whose pages are those of the index's usage map.
// Returns the number of index pages.
std::size_t expectIndexesHoldRows(const PageSource& file, const TableDefinition& table) {
    const Rows rows = readRows(file, table);
    std::size_t pages = 0;
    for (std::size_t i = 0; i < table.realIndexes.size(); ++i) {
        SCOPED_TRACE("real index " + std::to_string(i) + " of " + toUtf8(table.name));
        const RealIndex& index = table.realIndexes[i];
        std::vector<std::pair<Bytes, std::pair<std::uint32_t, std::uint16_t>>> expected;
        for (const auto& [id, values] : rows) {
            if (isRowIndexed(table, index, values)) {
                expected.emplace_back(encodeIndexKey(table, index, values), id);
            }
        }
        std::sort(expected.begin(), expected.end());
        const std::vector<IndexEntry> actual = readIndexEntries(file, index);
        EXPECT_EQ(actual.size(), expected.size());
        for (std::size_t k = 0; k < std::min(actual.size(), expected.size()); ++k) {
            EXPECT_EQ(actual[k].key, expected[k].first) << "entry " << k;
            EXPECT_EQ(actual[k].row, (RowId{expected[k].second.first, expected[k].second.second}))
                << "entry " << k;
            if (::testing::Test::HasFailure())
                break;
        }
        pages += expectTreeOfJetsShape(file, index);
    }
    return pages;
}

// mdb-export reads the same rows as we do (as a multiset: it may list moved
// rows elsewhere).
void expectMdbExportReads(const fs::path& path, const PageSource& file,
                          const TableDefinition& table) {
    if (!fs::exists(MDB_EXPORT_EXECUTABLE))
        return;
    std::string ours;
    appendMdbExportHeader(ours, table);
    for (const auto& [id, values] : readRows(file, table))
        appendMdbExportRow(ours, table, values);
    const std::string theirs = testing::runCommand(testing::shellQuote(MDB_EXPORT_EXECUTABLE) +
                                                   " " + testing::shellQuote(path.string()) + " " +
                                                   testing::shellQuote(toUtf8(table.name)));
    EXPECT_EQ(testing::csvRecords(theirs), testing::csvRecords(ours)) << "mdb-export reads other rows";
}

// Why a text could not be keyed: a character outside ASCII, Latin-1 and the
// Turkish letters. Returns the character's code, or 0 for another reason.
unsigned refusedCharacter(const std::string& message) {
    const std::string marker = "the character U+";
    const std::size_t at = message.find(marker);
    if (at == std::string::npos ||
        message.find("has no known place in the General sort order") == std::string::npos) {
        return 0;
    }
    return static_cast<unsigned>(std::stoul(message.substr(at + marker.size(), 4), nullptr, 16));
}

bool isTurkishLetter(unsigned c) {
    return c == 0x11e || c == 0x11f || c == 0x130 || c == 0x131 || c == 0x15e || c == 0x15f;
}

struct RowOfTable {
    RowId id;
    bool moved = false;
    std::vector<Value> values;
};

// A copy of a fixture to write to.
class FixtureCopy {
public:
    FixtureCopy(const fs::path& fixture) : path_(dir_.path() / fixture.filename()) {
        fs::copy_file(fixture, path_);
    }
    const fs::path& path() const { return path_; }
    std::vector<unsigned char> bytes() const { return testing::readFileBytes(path_); }

private:
    testing::TempDir dir_;
    fs::path path_;
};

const std::u16string kTurkish = u"abcçdefgğhıijklmnoöprsştuüvyzABCÇDEFGĞHIİJKLMNOÖPRSŞTUÜVYZ";

std::u16string randomName(std::mt19937& random, std::size_t longest) {
    std::uniform_int_distribution<std::size_t> length(1, longest);
    std::uniform_int_distribution<std::size_t> letter(0, kTurkish.size() - 1);
    std::u16string name;
    const std::size_t n = length(random);
    while (name.size() < n)
        name.push_back(kTurkish[letter(random)]);
    if (n >= 3 && random() % 10 == 0)
        name[n - 2] = u' ';
    return name;
}

// A value for a column, sometimes Null; few distinct values, so that keys repeat.
Value randomValue(std::mt19937& random, const Column& column) {
    if (column.isAutoNumber())
        return Value();
    if (random() % 16 == 0 && column.type != ColumnType::Boolean)
        return Value();
    switch (column.type) {
        case ColumnType::Boolean:
            return Value::boolean(random() % 2 == 0);
        case ColumnType::Byte:
            return Value::integer(static_cast<std::int32_t>(random() % 256));
        case ColumnType::Integer:
            return Value::integer(static_cast<std::int32_t>(random() % 2000) - 1000);
        case ColumnType::LongInteger:
            return Value::integer(static_cast<std::int32_t>(random() % 200000) - 1000);
        case ColumnType::Double:
            return Value::real(static_cast<double>(random() % 100000) / 8);
        case ColumnType::DateTime:
            return Value::date(
                Date{45931.0 + static_cast<double>(random() % 400) +
                     (random() % 3 == 0 ? static_cast<double>(random() % 86400) / 86400 : 0)});
        case ColumnType::Text:
            return Value::text(randomName(random, std::min<std::size_t>(column.length / 2, 60)));
        case ColumnType::Memo:
            return Value::text(randomName(random, 40));
        default:
            return Value();
    }
}

std::vector<Value> randomRow(std::mt19937& random, const TableDefinition& table) {
    std::vector<Value> values;
    for (const Column& column : table.columns)
        values.push_back(randomValue(random, column));
    return values;
}

// Inserts, updates and deletes random rows in statements of `perStatement`,
// checking the indexes after each round. Returns the index pages at the end.
std::size_t churn(const fs::path& path, const std::u16string& tableName, int inserts,
                  int perStatement, unsigned seed) {
    std::mt19937 random(seed);
    Database database(path.string(), PageFile::Mode::ReadWrite);
    for (int done = 0; done < inserts; done += perStatement) {
        database.write([&](WriteStatement& statement) {
            const TableDefinition table = database.table(tableName);
            TableWriter writer(statement, table);
            for (int i = 0; i < perStatement; ++i)
                writer.insert(randomRow(random, table));
            // Updates and deletes among all rows, old ones included.
            std::vector<RowId> ids;
            for (TableCursor cursor(statement, table); cursor.next();)
                ids.push_back(cursor.rowId());
            for (int i = 0; i < perStatement / 4 && !ids.empty(); ++i) {
                const RowId id = ids[random() % ids.size()];
                std::vector<Value> values = randomRow(random, table);
                for (std::size_t c = 0; c < table.columns.size(); ++c) {
                    if (table.columns[c].isAutoNumber())
                        values[c] = Value::integer(0x40000000 + i + done);
                }
                writer.update(id, values);
            }
            std::shuffle(ids.begin(), ids.end(), random);
            for (int i = 0; i < perStatement / 3 && i < static_cast<int>(ids.size()); ++i) {
                writer.remove(ids[i]);
            }
        });
        const TableDefinition table = database.table(tableName);
        expectIndexesHoldRows(database.file(), table);
        if (::testing::Test::HasFailure())
            return 0;
    }
    const TableDefinition table = database.table(tableName);
    expectMdbExportReads(path, database.file(), table);
    EXPECT_EQ(checkIntegrity(database.file()), std::vector<std::string>{});
    return expectIndexesHoldRows(database.file(), table);
}

// Every index of every fixture, against the rows of its table: each row
// under its own key, in key order; and the trees in the shape this writer
// keeps.
TEST(IndexFixtures, EveryIndexHoldsEveryRowUnderItsOwnKey) {
    SKIP_WITHOUT_FIXTURES();
    std::size_t indexes = 0;
    std::size_t keys = 0;
    std::size_t movedRows = 0;
    std::size_t treePages = 0;
    std::set<char16_t> textCharacters;
    std::map<unsigned, std::size_t> refusals;  // character: count
    for (const auto& path : testing::fixtureDatabases()) {
        SCOPED_TRACE(path.string());
        const Database database(path.string());
        for (const CatalogEntry& entry : database.catalog()) {
            if (!entry.isTable())
                continue;
            SCOPED_TRACE(toUtf8(entry.name));
            const TableDefinition table =
                readTableDefinition(database.file(), entry.definitionPage());
            // Trees this writer could have made: those of tables whose every
            // key it can make; the Unicode file's are left out.
            bool keyable = path.filename() != "testUnicodeCompV2003.mdb";
            for (const RealIndex& index : table.realIndexes) {
                for (const IndexColumn& column : index.columns) {
                    try {
                        checkKeyableColumn(*table.columnByNumber(column.columnNumber));
                    } catch (const Error&) {
                        keyable = false;
                    }
                }
            }
            std::vector<RowOfTable> rows;
            for (TableCursor cursor = database.scan(table); cursor.next();) {
                rows.push_back(RowOfTable{cursor.rowId(), cursor.rowMoved(), {}});
                cursor.values(rows.back().values);
            }
            for (std::size_t i = 0; i < table.realIndexes.size(); ++i) {
                SCOPED_TRACE("real index " + std::to_string(i));
                const RealIndex& index = table.realIndexes[i];
                const std::vector<IndexEntry> entries = readIndexEntries(database.file(), index);
                ++indexes;

                std::map<std::pair<std::uint32_t, std::uint16_t>, const RowOfTable*> expected;
                for (const RowOfTable& row : rows) {
                    if (isRowIndexed(table, index, row.values)) {
                        expected[{row.id.page, row.id.row}] = &row;
                    }
                }
                ASSERT_EQ(entries.size(), expected.size());
                for (std::size_t k = 0; k < entries.size(); ++k) {
                    const IndexEntry& indexEntry = entries[k];
                    if (k > 0) {
                        EXPECT_LE(entries[k - 1].key, indexEntry.key);
                        // Equal keys go in row order in the trees this writer keeps.
                        if (keyable && entries[k - 1].key == indexEntry.key) {
                            const RowId previous = entries[k - 1].row;
                            EXPECT_LT(std::pair(previous.page, previous.row),
                                      std::pair(indexEntry.row.page, indexEntry.row.row));
                        }
                    }
                    const auto found = expected.find({indexEntry.row.page, indexEntry.row.row});
                    ASSERT_NE(found, expected.end())
                        << "an entry for row " << indexEntry.row.row << " of page "
                        << indexEntry.row.page << ", which the table does not have";
                    const RowOfTable& row = *found->second;
                    expected.erase(found);
                    if (row.moved)
                        ++movedRows;
                    try {
                        EXPECT_EQ(encodeIndexKey(table, index, row.values), indexEntry.key)
                            << "row " << row.id.row << " of page " << row.id.page;
                        ++keys;
                        for (const IndexColumn& indexColumn : index.columns) {
                            for (std::size_t c = 0; c < table.columns.size(); ++c) {
                                if (table.columns[c].number == indexColumn.columnNumber &&
                                    row.values[c].kind() == Value::Kind::Text) {
                                    for (char16_t ch : row.values[c].asText())
                                        textCharacters.insert(ch);
                                }
                            }
                        }
                    } catch (const Error& error) {
                        const unsigned character = refusedCharacter(error.what());
                        EXPECT_TRUE(character > 0xff && !isTurkishLetter(character))
                            << "refused for another reason: " << error.what();
                        EXPECT_FALSE(keyable) << error.what();
                        ++refusals[character];
                    }
                }
                EXPECT_TRUE(expected.empty()) << expected.size() << " rows have no entry";
                if (keyable)
                    treePages += expectTreeOfJetsShape(database.file(), index);
            }
        }
    }
    std::cout << "verified " << keys << " keys of " << indexes << " indexes (" << movedRows
              << " of moved rows); refused:";
    for (const auto& [character, count] : refusals) {
        std::cout << " U+" << std::hex << std::uppercase << character << std::dec << " x" << count;
    }
    std::cout << "\n";

    // The fixtures hold keys of every character of Latin-1 but NUL, and the
    // Turkish letters other than the capitals İ and Ğ.
    for (char16_t c = 0x01; c <= 0xff; ++c)
        EXPECT_TRUE(textCharacters.count(c)) << int(c);
    for (const char16_t c : std::u16string_view(u"ğıŞş")) {
        EXPECT_TRUE(textCharacters.count(c)) << int(c);
    }
    EXPECT_GE(indexes, 240u);
    EXPECT_GE(keys, 15000u);
    EXPECT_GE(treePages, 250u);
}

TEST(IndexPageBuilder, RebuildsEveryFixtureIndexPageByteForByte) {
    SKIP_WITHOUT_FIXTURES();
    int rebuilt = 0;
    for (const fs::path& path : testing::fixtureDatabases()) {
        SCOPED_TRACE(path.string());
        const PageFile file(path.string());
        const Database database(path.string());
        for (std::uint32_t number = 1; number < database.file().pageCount(); ++number) {
            Page stored;
            database.file().read(number, stored);
            if (stored[0] != format::kPageIndexLeaf &&
                stored[0] != format::kPageIndexIntermediate) {
                continue;
            }
            const IndexPage page(stored, number);
            IndexPageContents contents;
            contents.leaf = page.isLeaf();
            contents.owner = page.owner();
            contents.prevPage = page.prevPage();
            contents.nextPage = page.nextPage();
            contents.tailPage = page.tailPage();
            contents.entries = page.entries();
            EXPECT_GE(sharedKeyPrefix(contents.entries),
                      page.prefixLength() > 0 ? page.prefixLength() : 0u);
            Page built;
            buildIndexPage(built, contents, page.prefixLength());
            const std::size_t end = format::kPageSize - page.freeSpace();
            // Access leaves old bytes after the entries; byte 0x1a is one it
            // sometimes sets on intermediate pages and no reader uses.
            for (std::size_t at = 0; at < end; ++at) {
                if (at == 0x1a)
                    continue;
                ASSERT_EQ(built[at], stored[at]) << "page " << number << " offset " << at;
            }
            EXPECT_TRUE(std::all_of(built.begin() + static_cast<std::ptrdiff_t>(end), built.end(),
                                    [](std::uint8_t b) { return b == 0; }));
            // What the builder lays out reads back the same.
            const IndexPage reread(built, number);
            EXPECT_EQ(reread.entries().size(), page.entries().size());
            ++rebuilt;
        }
    }
    EXPECT_GE(rebuilt, 280);
}

TEST(IndexWriter, YemekKeepsItsPrimaryKeyAndDateIndexThroughThousandsOfRows) {
    SKIP_WITHOUT_FIXTURES();
    const FixtureCopy copy(testing::fixturesDir() / "kvl" / "kvl.mdb");
    const std::size_t pages = churn(copy.path(), u"YEMEK", 3000, 750, 1);
    // 5,460 rows and more: both indexes grew by splits.
    EXPECT_GT(pages, 34u);
}

TEST(IndexWriter, OrnekKeepsItsTextIndexesOnTurkishNames) {
    SKIP_WITHOUT_FIXTURES();
    const FixtureCopy copy(testing::fixturesDir() / "kvl" / "kvl.mdb");
    EXPECT_GT(churn(copy.path(), u"ORNEK", 4000, 1000, 2), 20u);
}

TEST(IndexWriter, CompoundAndLargeIndexesOfAccessFiles) {
    SKIP_WITHOUT_FIXTURES();
    const FixtureCopy compound(testing::fixturesDir() / "access" / "compIndexTestV2000.mdb");
    EXPECT_GT(churn(compound.path(), u"Table1", 3000, 1000, 3), 10u);
    const FixtureCopy large(testing::fixturesDir() / "access" / "bigIndexTestV2000.mdb");
    EXPECT_GT(churn(large.path(), u"Table1", 2000, 500, 4), 10u);
}

// Flips the order of every column of the table's real indexes in its
// definition, which must be one page.
void makeIndexesDescending(Database& database, const std::u16string& tableName) {
    database.write([&](WriteStatement& statement) {
        const TableDefinition table = database.table(tableName);
        ASSERT_EQ(table.pages.size(), 1u);
        Page& page = statement.change(table.page);
        std::size_t at = format::tdef::kRealIndexCountsOffset +
                         table.realIndexes.size() * format::tdef::kRealIndexCountEntrySize +
                         table.columns.size() * format::tdef::kColumnEntrySize;
        for (std::size_t c = 0; c < table.columns.size(); ++c) {
            std::uint16_t length;
            std::memcpy(&length, page.data() + at, 2);
            at += 2 + length;
        }
        for (std::size_t i = 0; i < table.realIndexes.size(); ++i) {
            for (std::size_t k = 0; k < table.realIndexes[i].columns.size(); ++k) {
                std::uint8_t& order = page[at + format::tdef::kRealIndexColumnsOffset + 3 * k + 2];
                order = order == 0x01 ? 0x00 : 0x01;
            }
            at += format::tdef::kRealIndexEntrySize;
        }
    });
}

TEST(IndexWriter, DescendingTextIndexesEmptiedAndRefilled) {
    SKIP_WITHOUT_FIXTURES();
    const FixtureCopy copy(testing::fixturesDir() / "kvl" / "kvl.mdb");
    {
        Database database(copy.path().string(), PageFile::Mode::ReadWrite);
        // Every row leaves: the trees shrink to an empty root leaf.
        database.write([&](WriteStatement& statement) {
            const TableDefinition table = database.table(u"ORNEK");
            std::vector<RowId> ids;
            for (TableCursor cursor(statement, table); cursor.next();)
                ids.push_back(cursor.rowId());
            TableWriter writer(statement, table);
            for (const RowId id : ids)
                writer.remove(id);
        });
        const TableDefinition table = database.table(u"ORNEK");
        expectIndexesHoldRows(database.file(), table);
        for (const RealIndex& index : table.realIndexes) {
            Page root;
            database.file().read(index.firstPage, root);
            EXPECT_EQ(root[0], format::kPageIndexLeaf);
            EXPECT_EQ(readUsageMap(database.file(), index.usageMap).size(), 1u);
        }
        makeIndexesDescending(database, u"ORNEK");
        const TableDefinition flipped = database.table(u"ORNEK");
        for (const RealIndex& index : flipped.realIndexes)
            EXPECT_FALSE(index.columns[0].ascending);
    }
    EXPECT_GT(churn(copy.path(), u"ORNEK", 3000, 1000, 5), 20u);
}

TEST(IndexWriter, DuplicateKeysAreRefusedAndTheFileStaysByteIdentical) {
    SKIP_WITHOUT_FIXTURES();
    const FixtureCopy copy(testing::fixturesDir() / "kvl" / "kvl.mdb");
    const std::vector<unsigned char> before = copy.bytes();
    Database database(copy.path().string(), PageFile::Mode::ReadWrite);
    const TableDefinition pansiyon = database.table(u"Pansiyon");
    const Rows rows = readRows(database.file(), pansiyon);
    ASSERT_GE(rows.size(), 2u);
    const std::vector<Value> first = rows.begin()->second;
    const RowId secondId{std::next(rows.begin())->first.first,
                         std::next(rows.begin())->first.second};

    // A new row with the key of an existing one.
    try {
        database.insertRows(u"Pansiyon", {first});
        ADD_FAILURE() << "a duplicate primary key was accepted";
    } catch (const Error& error) {
        EXPECT_NE(std::string(error.what()).find("Pansiyon"), std::string::npos) << error.what();
        EXPECT_NE(std::string(error.what()).find("unique index"), std::string::npos)
            << error.what();
    }
    // Two new rows of one statement with the same new key.
    const std::size_t number = pansiyon.columnPosition(u"PANSIYONNO");
    std::vector<Value> fresh = first;
    fresh[number] = Value::integer(987654);
    EXPECT_THROW(database.insertRows(u"Pansiyon", {fresh, fresh}), Error);
    // An update to the key of another row, and a Null primary key.
    EXPECT_THROW(database.updateRow(u"Pansiyon", secondId, first), Error);
    std::vector<Value> nullKey = first;
    nullKey[number] = Value();
    EXPECT_THROW(database.insertRows(u"Pansiyon", {nullKey}), Error);
    // A name that cannot be keyed in ORNEK's Soyadi index.
    const TableDefinition ornek = database.table(u"ORNEK");
    std::vector<Value> greek = readRows(database.file(), ornek).begin()->second;
    greek[ornek.columnPosition(u"Soyadi")] = Value::text(u"Παπαδόπουλος");
    EXPECT_THROW(database.insertRows(u"ORNEK", {greek}), Error);
    EXPECT_TRUE(copy.bytes() == before) << "a refused write changed the file";

    // The same row with its own key again is an update like any other.
    database.updateRow(u"Pansiyon", RowId{rows.begin()->first.first, rows.begin()->first.second},
                       first);
    expectIndexesHoldRows(database.file(), database.table(u"Pansiyon"));
}

TEST(IndexWriter, DistinctKeyCountRisesForNewKeysOnly) {
    SKIP_WITHOUT_FIXTURES();
    const FixtureCopy copy(testing::fixturesDir() / "kvl" / "kvl.mdb");
    Database database(copy.path().string(), PageFile::Mode::ReadWrite);
    const TableDefinition before = database.table(u"YEMEK");
    std::vector<Value> row = readRows(database.file(), before).begin()->second;
    for (std::size_t c = 0; c < before.columns.size(); ++c) {
        if (before.columns[c].isAutoNumber())
            row[c] = Value();
    }
    std::vector<Value> newDate = row;
    newDate[before.columnPosition(u"YEMEKTARIH")] = Value::date(Date{50000.5});
    // An existing date, a new one twice: one new key for the date index, three for the key.
    database.insertRows(u"YEMEK", {row, newDate, newDate});
    const TableDefinition after = database.table(u"YEMEK");
    ASSERT_EQ(after.realIndexes.size(), 2u);
    EXPECT_EQ(after.realIndexes[0].rowCount, before.realIndexes[0].rowCount + 3);
    EXPECT_EQ(after.realIndexes[1].rowCount, before.realIndexes[1].rowCount + 1);
    // Access never lowers the count.
    const Rows rows = readRows(database.file(), after);
    database.deleteRows(u"YEMEK", {RowId{rows.rbegin()->first.first, rows.rbegin()->first.second}});
    EXPECT_EQ(database.table(u"YEMEK").realIndexes[1].rowCount, after.realIndexes[1].rowCount);
    expectIndexesHoldRows(database.file(), database.table(u"YEMEK"));
}

}  // namespace
}  // namespace jet
