// The integrity check against every file Access wrote, which must pass, and
// against copies damaged byte by byte, each fault of which it must name.

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/data_page.h"
#include "store/jet/database.h"
#include "store/jet/error.h"
#include "store/jet/format.h"
#include "store/jet/index_page.h"
#include "store/jet/integrity_check.h"
#include "store/jet/text.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

using testing::fixturesDir;
using testing::runCommand;
using testing::shellQuote;

IntegrityReport reportOf(const std::filesystem::path& file) {
    const Database database(file.string());
    return checkIntegrityInDetail(database.file());
}

std::string problemsOf(const std::filesystem::path& file) {
    std::string all;
    for (const std::string& problem : reportOf(file).problems)
        all += problem + "\n";
    return all;
}

// Runs the jetcheck tool; returns its exit status, `output` what it printed.
int jetcheck(const std::filesystem::path& file, std::string* output = nullptr) {
    int status = -1;
    const std::string printed = runCommand(
        shellQuote(JETCHECK_EXECUTABLE) + " " + shellQuote(file.string()) + " 2>&1", &status);
    if (output != nullptr)
        *output = printed;
    return status;
}

// A copy of a fixture in a temporary folder, edited as bytes. The fixtures
// edited here are stored plain (no database password).
class DamagedCopy {
public:
    explicit DamagedCopy(const std::string& fixture)
        : path_(dir_.path() / fixture),
          bytes_(testing::readFileBytes(fixturesDir() / "access" / fixture)) {
        save();
    }
    const std::filesystem::path& path() const { return path_; }
    std::uint8_t* page(std::uint32_t number) { return bytes_.data() + number * format::kPageSize; }
    std::uint32_t u32(std::uint32_t page, std::size_t offset) {
        std::uint32_t value;
        std::memcpy(&value, this->page(page) + offset, 4);
        return value;
    }
    void putU32(std::uint32_t page, std::size_t offset, std::uint32_t value) {
        std::memcpy(this->page(page) + offset, &value, 4);
    }
    // The offset of a row's first byte on its page.
    std::size_t rowStart(RowId row) {
        Page copy{};
        std::memcpy(copy.data(), page(row.page), copy.size());
        return DataPage(copy, row.page).slot(row.row).start;
    }
    void save() { testing::writeFileBytes(path_, bytes_); }

private:
    testing::TempDir dir_;
    std::filesystem::path path_;
    std::vector<unsigned char> bytes_;
};

// Writes a leaf's entries anew, without a shared prefix: the way to drop,
// reorder or change entries of an index page.
void rewriteLeaf(std::uint8_t* page, const std::vector<IndexPageEntry>& entries) {
    namespace x = format::index;
    std::memset(page + x::kEntryMaskOffset, 0, format::kPageSize - x::kEntryMaskOffset);
    page[x::kPrefixLengthOffset] = 0;
    page[x::kPrefixLengthOffset + 1] = 0;
    std::size_t end = 0;  // in the entry area
    for (const IndexPageEntry& entry : entries) {
        std::uint8_t* at = page + x::kEntriesOffset + end;
        std::memcpy(at, entry.key.data(), entry.key.size());
        at += entry.key.size();
        at[0] = static_cast<std::uint8_t>(entry.row.page >> 16);
        at[1] = static_cast<std::uint8_t>(entry.row.page >> 8);
        at[2] = static_cast<std::uint8_t>(entry.row.page);
        at[3] = static_cast<std::uint8_t>(entry.row.row);
        end += entry.key.size() + x::kRowPointerSize;
        page[x::kEntryMaskOffset + end / 8] |= static_cast<std::uint8_t>(1u << (end % 8));
    }
}

std::vector<IndexPageEntry> leafEntries(DamagedCopy& copy, std::uint32_t number) {
    Page bytes{};
    std::memcpy(bytes.data(), copy.page(number), bytes.size());
    const IndexPage leaf(bytes, number);
    EXPECT_TRUE(leaf.isLeaf());
    return leaf.entries();
}

TEST(IntegrityCheck, EveryFixturePasses) {
    SKIP_WITHOUT_FIXTURES();
    for (const auto& file : testing::fixtureDatabases()) {
        EXPECT_EQ(problemsOf(file), "") << file;
        std::string printed;
        EXPECT_EQ(jetcheck(file, &printed), 0) << file;
        EXPECT_NE(printed.find("OK\n"), std::string::npos) << file << ": " << printed;
    }
    // Keys of Cyrillic text are not known to the encoder: noted, not damage.
    const IntegrityReport unicode = reportOf(fixturesDir() / "access" / "testUnicodeCompV2003.mdb");
    ASSERT_EQ(unicode.notes.size(), 1u);
    EXPECT_NE(unicode.notes[0].find("keys not verified"), std::string::npos);
}

TEST(IntegrityCheck, PagesAndCountsThatDoNotAddUp) {
    SKIP_WITHOUT_FIXTURES();
    // testV2000.mdb: Table1 (definition on page 24) has its two rows on data
    // page 27; Table2's definition is on page 30.
    const auto damaged = [](const auto& edit) {
        DamagedCopy copy("testV2000.mdb");
        edit(copy);
        copy.save();
        std::string printed;
        EXPECT_EQ(jetcheck(copy.path(), &printed), 1) << printed;
        return problemsOf(copy.path());
    };
    {
        const std::string problems = damaged([](DamagedCopy& copy) {
            ASSERT_EQ(copy.u32(27, format::data::kOwnerOffset), 24u);
            copy.putU32(27, format::data::kOwnerOffset, 30);
        });
        EXPECT_NE(problems.find("data page 27 belongs to table Table2, but the table's usage map "
                                "does not mark it"),
                  std::string::npos)
            << problems;
        EXPECT_NE(problems.find("table Table1 has 0 live rows, but its definition counts 2"),
                  std::string::npos)
            << problems;
    }
    {
        const std::string problems =
            damaged([](DamagedCopy& copy) { copy.putU32(24, format::tdef::kRowCountOffset, 3); });
        EXPECT_EQ(problems, "table Table1 has 2 live rows, but its definition counts 3\n");
    }
    {
        // The map of free pages is inline, its window starting at page 0.
        const std::string problems = damaged([](DamagedCopy& copy) {
            const std::size_t map = copy.rowStart(RowId{1, 0});
            ASSERT_EQ(copy.page(1)[map], format::usage::kInlineMap);
            ASSERT_EQ(copy.u32(1, map + 1), 0u);
            copy.page(1)[map + 5 + 27 / 8] |= 1u << (27 % 8);
        });
        EXPECT_EQ(problems,
                  "page 27 is marked free in the map of free pages but holds rows of table "
                  "Table1\n");
    }
    {
        // Table1's primary key made to start on the page of its other index.
        const TableDefinition table =
            Database((fixturesDir() / "access" / "testV2000.mdb").string()).table(u"Table1");
        const RealIndex& primary = table.realIndexes[0];
        const RealIndex& other = table.realIndexes[1];
        const std::string problems = damaged([&](DamagedCopy& copy) {
            // The index's entry holds its usage map pointer, then its first page.
            std::uint8_t pattern[8];
            std::memcpy(pattern, &primary.usageMap, 4);
            std::memcpy(pattern + 4, &primary.firstPage, 4);
            std::uint8_t* page = copy.page(table.page);
            std::uint8_t* found =
                std::search(page, page + format::kPageSize, pattern, pattern + sizeof pattern);
            ASSERT_NE(found, page + format::kPageSize);
            std::memcpy(found + 4, &other.firstPage, 4);
        });
        EXPECT_NE(problems.find("page " + std::to_string(other.firstPage) + " is used both for "),
                  std::string::npos)
            << problems;
        EXPECT_NE(problems.find("index page " + std::to_string(primary.firstPage) +
                                " belongs to no index of table Table1"),
                  std::string::npos)
            << problems;
    }
}

TEST(IntegrityCheck, IndexEntriesMissingSwappedOrWrong) {
    SKIP_WITHOUT_FIXTURES();
    // testV2000.mdb: Table1's primary key lives on the one leaf page 28.
    const std::uint32_t leaf = Database((fixturesDir() / "access" / "testV2000.mdb").string())
                                   .table(u"Table1")
                                   .realIndexes[0]
                                   .firstPage;
    const auto damaged = [&](const auto& edit) {
        DamagedCopy copy("testV2000.mdb");
        std::vector<IndexPageEntry> entries = leafEntries(copy, leaf);
        EXPECT_EQ(entries.size(), 2u);
        edit(entries);
        rewriteLeaf(copy.page(leaf), entries);
        copy.save();
        std::string printed;
        EXPECT_EQ(jetcheck(copy.path(), &printed), 1) << printed;
        return problemsOf(copy.path());
    };
    // Rewritten unchanged (without its prefix), the page still passes.
    {
        DamagedCopy copy("testV2000.mdb");
        rewriteLeaf(copy.page(leaf), leafEntries(copy, leaf));
        copy.save();
        EXPECT_EQ(problemsOf(copy.path()), "");
    }
    const std::string index = "index PrimaryKey of table Table1";
    std::string problems =
        damaged([](std::vector<IndexPageEntry>& entries) { entries.pop_back(); });
    EXPECT_NE(problems.find(index + " has no entry for row "), std::string::npos) << problems;

    problems =
        damaged([](std::vector<IndexPageEntry>& entries) { std::swap(entries[0], entries[1]); });
    EXPECT_NE(problems.find(index + ": on index page " + std::to_string(leaf) + ", the entry for "),
              std::string::npos)
        << problems;
    EXPECT_NE(problems.find("is out of key order"), std::string::npos) << problems;

    // A key that sorts in its place but is not the row's: what an index
    // writer that forgot an update would leave.
    problems =
        damaged([](std::vector<IndexPageEntry>& entries) { entries.back().key.push_back(0x01); });
    EXPECT_NE(problems.find("but the row's values give"), std::string::npos) << problems;

    problems = damaged([](std::vector<IndexPageEntry>& entries) { entries.back().row.row = 7; });
    EXPECT_NE(problems.find("which is no row the index should hold"), std::string::npos)
        << problems;
}

TEST(IntegrityCheck, MovedRowsAndLongValuesThatLeadAstray) {
    SKIP_WITHOUT_FIXTURES();
    {
        // overflowTestV2000.mdb holds rows moved to other pages.
        DamagedCopy copy("overflowTestV2000.mdb");
        RowId moved;
        std::string table;
        {
            const Database database(copy.path().string());
            for (const std::u16string& name : database.userTableNames()) {
                const TableDefinition definition = database.table(name);
                TableCursor cursor = database.scan(definition);
                while (cursor.next() && !cursor.rowMoved()) {
                }
                if (cursor.rowMoved()) {
                    moved = cursor.rowId();
                    table = toUtf8(name);
                    break;
                }
            }
        }
        ASSERT_FALSE(table.empty());
        const std::size_t start = copy.rowStart(moved);
        copy.page(moved.page)[start] = 0x09;  // the pointer's row byte: a row the page lacks
        copy.save();
        std::string printed;
        EXPECT_EQ(jetcheck(copy.path(), &printed), 1) << printed;
        const std::string problems = problemsOf(copy.path());
        EXPECT_NE(problems.find("row " + std::to_string(moved.row) + " of page " +
                                std::to_string(moved.page) + " of table " + table +
                                " is moved to row 9 of page "),
                  std::string::npos)
            << problems;
        // Its old data row is now reached by nothing.
        EXPECT_NE(problems.find("is marked as the data of a moved row, but no row points to it"),
                  std::string::npos)
            << problems;
    }
    {
        // The page a moved row's data lies on marked free and left out of
        // its table's usage map: only the pointer still reaches it.
        DamagedCopy copy("overflowTestV2000.mdb");
        RowId moved;
        std::uint32_t usageMap = 0;
        {
            const Database database(copy.path().string());
            const TableDefinition definition = database.table(u"Table1");
            usageMap = definition.usageMap;
            TableCursor cursor = database.scan(definition);
            while (cursor.next() && !cursor.rowMoved()) {
            }
            ASSERT_TRUE(cursor.rowMoved());
            moved = cursor.rowId();
        }
        const std::uint32_t target =
            pointerPage(copy.u32(moved.page, copy.rowStart(moved)));
        const auto setBit = [&](std::uint32_t map, bool on) {
            const std::size_t start = copy.rowStart(RowId{pointerPage(map), pointerRow(map)});
            ASSERT_EQ(copy.page(pointerPage(map))[start], format::usage::kInlineMap);
            const std::uint32_t bit = target - copy.u32(pointerPage(map), start + 1);
            std::uint8_t& byte = copy.page(pointerPage(map))[start + 5 + bit / 8];
            byte = static_cast<std::uint8_t>(on ? byte | (1u << (bit % 8))
                                                : byte & ~(1u << (bit % 8)));
        };
        setBit(format::usage::kFreePagesMap, true);
        setBit(usageMap, false);
        copy.save();
        EXPECT_NE(problemsOf(copy.path())
                      .find("row " + std::to_string(moved.row) + " of page " +
                            std::to_string(moved.page) + " of table Table1 is moved to row " +
                            std::to_string(pointerRow(copy.u32(moved.page, copy.rowStart(moved)))) +
                            " of page " + std::to_string(target) +
                            ", on a page the map of free pages marks free"),
                  std::string::npos)
            << problemsOf(copy.path());
    }
    {
        // test2V2000.mdb: a value of MSP_PROJECTS is a chain of long value
        // rows; its first row is made to point to itself.
        DamagedCopy copy("test2V2000.mdb");
        std::uint32_t first = 0;
        {
            const Database database(copy.path().string());
            TableDefinition references = database.table(u"MSP_PROJECTS");
            for (Column& column : references.columns) {
                if (column.isLongValue())
                    column.type = ColumnType::Binary;
            }
            TableCursor cursor(database.file(), references);
            std::vector<Value> values;
            while (first == 0 && cursor.next()) {
                cursor.values(values);
                for (const Value& value : values) {
                    if (value.kind() != Value::Kind::Bytes || value.asBytes().size() < 12)
                        continue;
                    const Bytes& reference = value.asBytes();
                    if ((reference[3] & 0xc0) != 0)
                        continue;  // inline or one row
                    std::memcpy(&first, reference.data() + 4, 4);
                    break;
                }
            }
        }
        ASSERT_NE(first, 0u);
        const std::size_t start = copy.rowStart(RowId{pointerPage(first), pointerRow(first)});
        copy.putU32(pointerPage(first), start, first);
        copy.save();
        std::string printed;
        EXPECT_EQ(jetcheck(copy.path(), &printed), 1) << printed;
        EXPECT_NE(problemsOf(copy.path())
                      .find("the chain of the value loops back to row " +
                            std::to_string(pointerRow(first)) + " of page " +
                            std::to_string(pointerPage(first))),
                  std::string::npos)
            << problemsOf(copy.path());
    }
}

TEST(IntegrityCheck, DamagedFilesNeverCrashTheCheck) {
    SKIP_WITHOUT_FIXTURES();
    testing::TempDir dir;
    const auto foreign = dir.path() / "foreign.mdb";
    testing::writeFileBytes(foreign, std::vector<unsigned char>(3 * format::kPageSize, 0x41));
    std::string printed;
    EXPECT_EQ(jetcheck(foreign, &printed), 2);
    EXPECT_NE(printed.find("is not an Access database"), std::string::npos) << printed;

    // Random bytes over pages of files with every kind of page; the check
    // must end with a report or, for a ruined header, an error.
    std::mt19937 random(20261123);
    for (const char* fixture :
         {"testV2000.mdb", "overflowTestV2000.mdb", "bigIndexTestV2000.mdb", "test2V2000.mdb"}) {
        const auto whole = testing::readFileBytes(fixturesDir() / "access" / fixture);
        const std::size_t pages = whole.size() / format::kPageSize;
        for (int round = 0; round < 40; ++round) {
            std::vector<unsigned char> bytes = whole;
            const std::size_t page = 1 + random() % (pages - 1);
            for (int k = 0; k < 1 + round % 8; ++k) {
                const std::size_t at = page * format::kPageSize + random() % format::kPageSize;
                bytes[at] = static_cast<unsigned char>(random());
            }
            const auto path = dir.path() / "mutated.mdb";
            testing::writeFileBytes(path, bytes);
            try {
                reportOf(path);
            } catch (const Error&) {
            }
            if (round % 10 == 0) {
                const int status = jetcheck(path, &printed);
                EXPECT_TRUE(status >= 0 && status <= 2) << fixture << ": " << printed;
            }
        }
    }
}

}  // namespace
}  // namespace jet
